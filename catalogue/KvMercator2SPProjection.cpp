#include "catalogue/KvMercator2SPProjection.h"

#include "projections/KvMercator2SP.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvMercator2SPProjection::TypeInfo = {
    eMercator2SP,
    "MERCATOR_2SP_PROJECTION",
    "MERCATOR_PROJECTION",
    "Mercator with 2 standard parallels",
    "Mercator_2SP",
    4,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Mercator 2SP",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
};

CKvMercator2SPProjection::CKvMercator2SPProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvMercator2SPProjection::CKvMercator2SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvMercator2SPProjection::CKvMercator2SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID, double parallel1, double centre,
                                                   double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, centre, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvMercator2SPProjection::CKvMercator2SPProjection(const std::string& name, const std::string& branch,
                                                   const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvMercator2SPProjection::CreateProjection() const
{
    return new CKvMercator2SP(this);
}
