#include "catalogue/KvLambert1SPProjection.h"

#include "projections/KvLambert1SP.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvLambert1SPProjection::TypeInfo = {
    eLambert1SP,
    "LAMBERT_CONIC_1SP_PROJECTION",
    nullptr,
    "Lambert conformal conic with 1 standard parallel",
    "Lambert_Conformal_Conic_1SP",
    5,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Origin_Longitude", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Lambert 1SP",
    "WE",
    {0.9996, 0.0, 0.0, 500000.0, 0.0},
};

CKvLambert1SPProjection::CKvLambert1SPProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvLambert1SPProjection::CKvLambert1SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvLambert1SPProjection::CKvLambert1SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID, double scale, double originLongitude,
                                                 double originLatitude, double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, originLongitude, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvLambert1SPProjection::CKvLambert1SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvLambert1SPProjection::CreateProjection() const
{
    return new CKvLambert1SP(this);
}
