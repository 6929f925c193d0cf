#include "catalogue/KvHotineObliqueMercatorProjection.h"

#include "projections/KvHotineObliqueMercator.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvHotineObliqueMercatorProjection::TypeInfo = {
    eHotineObliqueMercator,
    "HOTINE_OBLIQUE_MERCATOR_PROJECTION",
    nullptr,
    "Hotine oblique mercator",
    "Hotine_Oblique_Mercator_Azimuth_Natural_Origin",
    6,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Center_Longitude", "Longitude of center:", eAngle, &CKvPRJParser::SetLongitudeOfCenter},
        {"Center_Latitude", "Latitude of center:", eAngle, &CKvPRJParser::SetLatitudeOfCenter},
        {"Azimuth", "Azimuth:", eAngle, &CKvPRJParser::SetAzimuth},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Hotine Oblique Mercator",
    "RF",
    {0.9996, 0.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvHotineObliqueMercatorProjection::CKvHotineObliqueMercatorProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvHotineObliqueMercatorProjection::CKvHotineObliqueMercatorProjection(const std::string& name,
                                                                       const std::string& branch,
                                                                       const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvHotineObliqueMercatorProjection::CKvHotineObliqueMercatorProjection(
    const std::string& name, const std::string& branch, const std::string& ellipsoidID, double scale,
    double centerLongitude, double centerLatitude, double azimuth, double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centerLongitude, centerLatitude, azimuth, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvHotineObliqueMercatorProjection::CKvHotineObliqueMercatorProjection(const std::string& name,
                                                                       const std::string& branch,
                                                                       const std::string& ellipsoidID,
                                                                       const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvHotineObliqueMercatorProjection::CreateProjection() const
{
    return new CKvHotineObliqueMercator(this);
}
