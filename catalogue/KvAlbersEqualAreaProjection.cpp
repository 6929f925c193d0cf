#include "catalogue/KvAlbersEqualAreaProjection.h"

#include "projections/KvAlbersEqualArea.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvAlbersEqualAreaProjection::TypeInfo = {
    eAlbersEqualArea,
    "ALBERS_EQUAL_AREA_PROJECTION",
    nullptr,
    "Albers equal area",
    "Albers_Conic_Equal_Area",
    6,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Parallel_2", "Second parallel:", eAngle, &CKvPRJParser::SetStandardParallel2},
        {"Central_Meridian", "Central Meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Albers Equal Area",
    "WE",
    {5.0, 10.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvAlbersEqualAreaProjection::CKvAlbersEqualAreaProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvAlbersEqualAreaProjection::CKvAlbersEqualAreaProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvAlbersEqualAreaProjection::CKvAlbersEqualAreaProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID, double parallel1,
                                                           double parallel2, double centralMeridian,
                                                           double originLatitude, double falseEasting,
                                                           double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, parallel2, centralMeridian, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvAlbersEqualAreaProjection::CKvAlbersEqualAreaProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvAlbersEqualAreaProjection::CreateProjection() const
{
    return new CKvAlbersEqualArea(this);
}
