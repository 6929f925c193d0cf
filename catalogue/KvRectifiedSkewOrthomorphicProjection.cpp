#include "catalogue/KvRectifiedSkewOrthomorphicProjection.h"

#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvRectifiedSkewOrthomorphicProjection::TypeInfo = {
    eRectifiedSkewOrthomorphic,
    "RECTIFIED_SKEW_ORTHOMORPHIC_PROJECTION",
    nullptr,
    "Rectified skew orthomorphic",
    "Rectified_Skew_Orthomorphic_Natural_Origin",
    7,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Center_Longitude", "Longitude of center:", eAngle, &CKvPRJParser::SetLongitudeOfCenter},
        {"Center_Latitude", "Latitude of center:", eAngle, &CKvPRJParser::SetLatitudeOfCenter},
        {"Azimuth", "Azimuth:", eAngle, &CKvPRJParser::SetAzimuth},
        {"XY_Plane_Rotation", "XY plane rotation:", eAngle, &CKvPRJParser::SetXYPlaneRotation},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Rectified Skew Orthomorphic",
    "EB",
    {0.9996, 0.0, 0.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvRectifiedSkewOrthomorphicProjection::CKvRectifiedSkewOrthomorphicProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvRectifiedSkewOrthomorphicProjection::CKvRectifiedSkewOrthomorphicProjection(const std::string& name,
                                                                               const std::string& branch,
                                                                               const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvRectifiedSkewOrthomorphicProjection::CKvRectifiedSkewOrthomorphicProjection(
    const std::string& name, const std::string& branch, const std::string& ellipsoidID, double scale,
    double centerLongitude, double centerLatitude, double azimuth, double xYPlaneRotation, double falseEasting,
    double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale,           centerLongitude, centerLatitude, azimuth,
                             xYPlaneRotation, falseEasting,    falseNorthing};
    SetParameters(values);
}

CKvRectifiedSkewOrthomorphicProjection::CKvRectifiedSkewOrthomorphicProjection(const std::string& name,
                                                                               const std::string& branch,
                                                                               const std::string& ellipsoidID,
                                                                               const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvRectifiedSkewOrthomorphicProjection::CreateProjection() const
{
    return new CKvRectifiedSkewOrthomorphic(this);
}
