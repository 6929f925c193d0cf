#include "projections/KvKrovakModifiedNorth.h"
#include "projections/KvMeridianDirection.h"

CKvKrovakModifiedNorth::CKvKrovakModifiedNorth(const std::string& name, const double* p,
                                               const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_southWest(name, p, ellipsoid)
{
}

void CKvKrovakModifiedNorth::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    double southing, westing;
    m_southWest.CKvKrovakModified::Geo2Proj(lon, lat, &southing, &westing);
    *x = -westing;
    *y = -southing;
}

void CKvKrovakModifiedNorth::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    m_southWest.CKvKrovakModified::Proj2Geo(-y, -x, lon, lat);
}

void CKvKrovakModifiedNorth::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    m_southWest.GetOrigin(&lon, &lat);
    _boxAround(lon, lat, true, x1, y1, x2, y2);
}

double CKvKrovakModifiedNorth::GetConvergence(double lon, double lat) const
{
    return CKvMeridianDirection::Convergence(*this, lon, lat);
}

const CKvMapProjData::STypeInfo CKvKrovakModifiedNorth::TypeInfo = {
    CKvMapProjData::eKrovakModifiedNorth,
    "KROVAK_MODIFIED_NORTH_PROJECTION",
    nullptr,
    "Krovak Modified (North Orientated)",
    "Krovak_Modified_(North_Orientated)",
    7,
    {
        {"Center_Latitude", "Latitude of center:", CKvMapProjData::eAngle, nullptr,
         {"Latitude of projection centre", nullptr, "latitude_of_center", "Latitude_Of_Center"}, "lat_0", false},
        {"Center_Longitude", "Longitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Longitude of origin", nullptr, "longitude_of_center", "Longitude_Of_Center"}, "lon_0", true},
        {"Azimuth", "Co-latitude of cone axis:", CKvMapProjData::eAngle, nullptr,
         {"Co-latitude of cone axis", nullptr, "azimuth", "Azimuth"}, "alpha", false},
        {"Pseudo_Parallel", "Pseudo standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Latitude of pseudo standard parallel", nullptr, "pseudo_standard_parallel_1", "Pseudo_Standard_Parallel_1"},
         nullptr, false},
        {"Scale_At_Pseudo_Parallel", "Scale at pseudo parallel:", CKvMapProjData::eDimensionless, nullptr,
         {"Scale factor on pseudo standard parallel", nullptr, "scale_factor", "Scale_Factor"}, "k", false},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr,
         {"False easting", nullptr, "false_easting", "False_Easting"}, "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False northing", nullptr, "false_northing", "False_Northing"}, "y_0", false, 0.0},
    },
    "Default Krovak Modified (North Orientated)",
    "BR",
    // S-JTSK/05 / Modified Krovak East North (EPSG:5516).
    {49.5, 24.8333333333333, 30.2881397222222, 78.5, 0.9999, 5000000.0, 5000000.0},
    1043,
    "Krovak_Modified_(North_Orientated)",
    {"Krovak Modified (North Orientated)"},
    // PROJ 9.1 has no modified Krovak.
    nullptr,
    &CKvKrovakModified::Problem,
};
