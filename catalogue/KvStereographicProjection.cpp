#include "catalogue/KvStereographicProjection.h"

#include "projections/KvStereographic.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvStereographicProjection::TypeInfo = {
    eStereographic,
    "STEREOGRAPHIC_PROJECTION",
    nullptr,
    "Stereographic",
    "Double_Stereographic",
    5,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Stereographic",
    "WE",
    {1.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvStereographicProjection::CKvStereographicProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvStereographicProjection::CKvStereographicProjection(const std::string& name, const std::string& branch,
                                                       const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvStereographicProjection::CKvStereographicProjection(const std::string& name, const std::string& branch,
                                                       const std::string& ellipsoidID, double scale, double centre,
                                                       double originLatitude, double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvStereographicProjection::CKvStereographicProjection(const std::string& name, const std::string& branch,
                                                       const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvStereographicProjection::CreateProjection() const
{
    return new CKvStereographic(this);
}
