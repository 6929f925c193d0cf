#include "catalogue/KvPseudoMercatorProjection.h"

#include "projections/KvPseudoMercator.h"
#include "wkt/KvPRJParser.h"

// Written to WKT under ESRI's name of the method, "Mercator_Auxiliary_Sphere"
// (with the auxiliary sphere of the semi-major axis, type 0), which both readings
// take for this type.
const CKvMapProjData::STypeInfo CKvPseudoMercatorProjection::TypeInfo = {
    ePseudoMercator,
    "PSEUDO_MERCATOR_PROJECTION",
    nullptr,
    "Popular Visualisation Pseudo Mercator",
    "Mercator_Auxiliary_Sphere",
    4,
    {
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Pseudo Mercator",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
};

CKvPseudoMercatorProjection::CKvPseudoMercatorProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvPseudoMercatorProjection::CKvPseudoMercatorProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvPseudoMercatorProjection::CKvPseudoMercatorProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID, double centre,
                                                         double originLatitude, double falseEasting,
                                                         double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvPseudoMercatorProjection::CKvPseudoMercatorProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvPseudoMercatorProjection::CreateProjection() const
{
    return new CKvPseudoMercator(this);
}
