#include "catalogue/KvNewZealandMapGridProjection.h"

#include "projections/KvNewZealandMapGrid.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvNewZealandMapGridProjection::TypeInfo = {
    eNewZealandMapGrid,
    "NEW_ZEALAND_MAP_GRID_PROJECTION",
    nullptr,
    "New Zealand map grid",
    "New_Zealand_Map_Grid",
    4,
    {
        {"Origin_Longitude", "Longitude origin:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default New Zealang Map Grid",
    "IN",
    {173.0, -41.0, 2510000.0, 6023150.0},
};

CKvNewZealandMapGridProjection::CKvNewZealandMapGridProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvNewZealandMapGridProjection::CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch,
                                                               const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvNewZealandMapGridProjection::CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch,
                                                               const std::string& ellipsoidID, double originLongitude,
                                                               double originLatitude, double falseEasting,
                                                               double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {originLongitude, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvNewZealandMapGridProjection::CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch,
                                                               const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvNewZealandMapGridProjection::CreateProjection() const
{
    return new CKvNewZealandMapGrid(this);
}
