#include "catalogue/KvLambert2SPProjection.h"

#include "projections/KvLambert2SP.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvLambert2SPProjection::TypeInfo = {
    eLambert2SP,
    "LAMBERT_CONIC_2SP_PROJECTION",
    nullptr,
    "Lambert conformal conic with 2 standard parallels",
    "Lambert_Conformal_Conic_2SP",
    6,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Parallel_2", "Second parallel:", eAngle, &CKvPRJParser::SetStandardParallel2},
        {"Origin_Longitude", "Longitude origin:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Lambert 2SP",
    "WE",
    {5.0, 10.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvLambert2SPProjection::CKvLambert2SPProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvLambert2SPProjection::CKvLambert2SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvLambert2SPProjection::CKvLambert2SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID, double parallel1, double parallel2,
                                                 double originLongitude, double originLatitude, double falseEasting,
                                                 double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, parallel2, originLongitude, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvLambert2SPProjection::CKvLambert2SPProjection(const std::string& name, const std::string& branch,
                                                 const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvLambert2SPProjection::CreateProjection() const
{
    return new CKvLambert2SP(this);
}
