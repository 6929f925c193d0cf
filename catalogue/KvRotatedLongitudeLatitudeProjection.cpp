#include "catalogue/KvRotatedLongitudeLatitudeProjection.h"

#include "projections/KvRotatedLongitudeLatitude.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvRotatedLongitudeLatitudeProjection::TypeInfo = {
    eRotatedLongitudeLatitude,
    "ROTATED_LONGITUDE_LATITUDE_PROJECTION",
    nullptr,
    "Rotated longitude/latitude",
    "Rotated_Longitude_Latitude",
    3,
    {
        {"Longitude_of_South_Pole", "Longitude of south pole:", eAngle, &CKvPRJParser::SetLongitudeOfSouthPole},
        {"Latitude_of_South_Pole", "Latitude of south pole:", eAngle, &CKvPRJParser::SetLatitudeOfSouthPole},
        {"Angle_of_Rotation", "Angle of rotation:", eAngle, &CKvPRJParser::SetAngleOfRotation},
    },
    "Default Rotated Longitude/Latitude",
    "XY",
    {0.0, 0.0, 0.0},
};

CKvRotatedLongitudeLatitudeProjection::CKvRotatedLongitudeLatitudeProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvRotatedLongitudeLatitudeProjection::CKvRotatedLongitudeLatitudeProjection(const std::string& name,
                                                                             const std::string& branch,
                                                                             const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvRotatedLongitudeLatitudeProjection::CKvRotatedLongitudeLatitudeProjection(
    const std::string& name, const std::string& branch, const std::string& ellipsoidID, double longitudeOfSouthPole,
    double latitudeOfSouthPole, double angleOfRotation)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {longitudeOfSouthPole, latitudeOfSouthPole, angleOfRotation};
    SetParameters(values);
}

CKvRotatedLongitudeLatitudeProjection::CKvRotatedLongitudeLatitudeProjection(const std::string& name,
                                                                             const std::string& branch,
                                                                             const std::string& ellipsoidID,
                                                                             const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvRotatedLongitudeLatitudeProjection::CreateProjection() const
{
    return new CKvRotatedLongitudeLatitude(this);
}
