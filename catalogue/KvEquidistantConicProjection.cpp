#include "catalogue/KvEquidistantConicProjection.h"

#include "projections/KvEquidistantConic.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvEquidistantConicProjection::TypeInfo = {
    eEquidistantConic,
    "EQUIDISTANT_CONIC_PROJECTION",
    nullptr,
    "Equidistant conic",
    "Equidistant_Conic",
    6,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Parallel_2", "Second parallel:", eAngle, &CKvPRJParser::SetStandardParallel2},
        {"Central_Meridian", "Central Meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Equidistant Conic",
    "WE",
    {5.0, 10.0, 0.0, 0.0, 0.0, 0.0},
};

CKvEquidistantConicProjection::CKvEquidistantConicProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvEquidistantConicProjection::CKvEquidistantConicProjection(const std::string& name, const std::string& branch,
                                                             const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvEquidistantConicProjection::CKvEquidistantConicProjection(const std::string& name, const std::string& branch,
                                                             const std::string& ellipsoidID, double parallel1,
                                                             double parallel2, double centralMeridian,
                                                             double originLatitude, double falseEasting,
                                                             double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, parallel2, centralMeridian, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvEquidistantConicProjection::CKvEquidistantConicProjection(const std::string& name, const std::string& branch,
                                                             const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvEquidistantConicProjection::CreateProjection() const
{
    return new CKvEquidistantConic(this);
}
