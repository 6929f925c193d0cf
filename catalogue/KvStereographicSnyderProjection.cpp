#include "catalogue/KvStereographicSnyderProjection.h"

#include "projections/KvStereographicSnyder.h"
#include "wkt/KvPRJParser.h"

// Written to WKT under ESRI's name of the method, "Stereographic", with this type:
// a reader that takes that name for the double stereographic gets the oblique
// method of the same parameters instead.
const CKvMapProjData::STypeInfo CKvStereographicSnyderProjection::TypeInfo = {
    eStereographicSnyder,
    "STEREOGRAPHIC_SNYDER_PROJECTION",
    nullptr,
    "Stereographic (Snyder)",
    "Stereographic",
    5,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Stereographic (Snyder)",
    "WE",
    {1.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvStereographicSnyderProjection::CKvStereographicSnyderProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvStereographicSnyderProjection::CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                                                   const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvStereographicSnyderProjection::CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                                                   const std::string& ellipsoidID, double scale,
                                                                   double centre, double originLatitude,
                                                                   double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvStereographicSnyderProjection::CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                                                   const std::string& ellipsoidID,
                                                                   const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvStereographicSnyderProjection::CreateProjection() const
{
    return new CKvStereographicSnyder(this);
}
