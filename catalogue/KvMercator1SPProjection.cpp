#include "catalogue/KvMercator1SPProjection.h"

#include "projections/KvMercator1SP.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvMercator1SPProjection::TypeInfo = {
    eMercator1SP,
    "MERCATOR_1SP_PROJECTION",
    nullptr,
    "Mercator with 1 standard parallel",
    "Mercator_1SP",
    4,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Mercator 1SP",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
};

CKvMercator1SPProjection::CKvMercator1SPProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvMercator1SPProjection::CKvMercator1SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvMercator1SPProjection::CKvMercator1SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID, double scale, double centre,
                                                   double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centre, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvMercator1SPProjection::CKvMercator1SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvMercator1SPProjection::CreateProjection() const
{
    return new CKvMercator1SP(this);
}
