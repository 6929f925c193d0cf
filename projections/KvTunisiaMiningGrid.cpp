#include "projections/KvTunisiaMiningGrid.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <limits>

namespace {
// The decree's steps in degrees per metre (a grad is 0.9 degree).
constexpr double kLongitudePerMetre = 0.012185 * 0.9 / 1000.0;
constexpr double kLatitudePerMetreNorth = 0.010015 * 0.9 / 1000.0;
constexpr double kLatitudePerMetreSouth = 0.01002 * 0.9 / 1000.0;
} // namespace

std::string CKvTunisiaMiningGrid::Problem(const double* parameters)
{
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    if (!(std::fabs(parameters[0]) <= 90.0))
        return "the latitude of the false origin lies beyond a pole";
    return "";
}

CKvTunisiaMiningGrid::CKvTunisiaMiningGrid(const std::string& name, const double* parameters,
                                           const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_latF(parameters[0]), m_lonF(parameters[1]), m_EF(parameters[2]),
      m_NF(parameters[3])
{
    // The grid needs no figure, but a system without one is no system of the
    // library: NaN for every point, as for the other methods.
    if (!Problem(parameters).empty() || !(_a() > 0.0 && std::isfinite(_a())))
        m_EF = m_NF = std::nan("");
}

void CKvTunisiaMiningGrid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double dLat = lat - m_latF;
    *x = m_EF + CKvAngle::ReduceLongitudeDegrees(lon - m_lonF) / kLongitudePerMetre;
    *y = m_NF + dLat / (dLat > 0.0 ? kLatitudePerMetreNorth : kLatitudePerMetreSouth);
}

void CKvTunisiaMiningGrid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dLon = (x - m_EF) * kLongitudePerMetre;
    const double dy = y - m_NF;
    // Beyond half a turn of longitude no point of the earth lies on the grid.
    if (!(std::fabs(dLon) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = m_latF + dy * (dy > 0.0 ? kLatitudePerMetreNorth : kLatitudePerMetreSouth);
    *lon = CKvAngle::InverseLongitudeDegrees(m_lonF + dLon);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvTunisiaMiningGrid::GetOrigin(double* x, double* y) const
{
    *x = m_lonF;
    *y = m_latF;
}

double CKvTunisiaMiningGrid::GetConvergence(double lon, double lat) const
{
    return CKvAngle::IsPoint(lon, lat) && m_EF == m_EF ? 0.0 : std::nan("");
}

void CKvTunisiaMiningGrid::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lonF, m_latF, true, x1, y1, x2, y2);
}

// The method's names and parameters: GDAL writes Tunisia_Mapping_Grid with the
// OGC parameter names, the OGC's list Tunisia_Mining_Grid. PROJ has no such
// method.
const CKvMapProjData::STypeInfo CKvTunisiaMiningGrid::TypeInfo = {
    CKvMapProjData::eTunisiaMiningGrid,
    "TUNISIA_MINING_GRID_PROJECTION",
    nullptr,
    "Tunisia Mining Grid",
    "Tunisia_Mining_Grid",
    4,
    {
        {"Origin_Latitude", "Latitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "latitude_of_origin", "Latitude of false origin"}, nullptr, false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Origin_Longitude", "Longitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude of false origin"}, nullptr, true,
         std::numeric_limits<double>::quiet_NaN()},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr,
         {"False_Easting", "false_easting", "Easting at false origin"}, nullptr, false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "Northing at false origin"}, nullptr, false, 0.0},
    },
    "Default Tunisia Mining Grid",
    "WE",
    {32.93676, 9.38823417, 270000.0, 360000.0},
    9816,
    "Tunisia_Mapping_Grid",
    {"Tunisia Mining Grid"},
    nullptr,
    &CKvTunisiaMiningGrid::Problem,
};
