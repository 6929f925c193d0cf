#include "catalogue/KvObliqueMercatorProjection.h"

#include "projections/KvObliqueMercator.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvObliqueMercatorProjection::TypeInfo = {
    eObliqueMercator,
    "OBLIQUE_MERCATOR_PROJECTION",
    nullptr,
    "Oblique mercator",
    "Hotine_Oblique_Mercator_Azimuth_Center",
    6,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Center_Longitude", "Longitude of center:", eAngle, &CKvPRJParser::SetLongitudeOfCenter},
        {"Center_Latitude", "Latitude of center:", eAngle, &CKvPRJParser::SetLatitudeOfCenter},
        {"Azimuth", "Azimuth:", eAngle, &CKvPRJParser::SetAzimuth},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Oblique Mercator",
    "BR",
    {0.9996, 0.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvObliqueMercatorProjection::CKvObliqueMercatorProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvObliqueMercatorProjection::CKvObliqueMercatorProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvObliqueMercatorProjection::CKvObliqueMercatorProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID, double scale,
                                                           double centerLongitude, double centerLatitude,
                                                           double azimuth, double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centerLongitude, centerLatitude, azimuth, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvObliqueMercatorProjection::CKvObliqueMercatorProjection(const std::string& name, const std::string& branch,
                                                           const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvObliqueMercatorProjection::CreateProjection() const
{
    return new CKvObliqueMercator(this);
}
