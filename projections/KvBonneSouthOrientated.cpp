#include "projections/KvBonneSouthOrientated.h"

#include "projections/KvAngle.h"
#include "projections/KvBonne.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kRad = 180.0 / kPi;
} // namespace

CKvBonneSouthOrientated::CKvBonneSouthOrientated(const std::string& name, const double* parameters,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3])
{
    if (std::isfinite(m_lon0) && std::isfinite(m_FE) && std::isfinite(m_FN))
        m_core = CKvBonneCore(_a(), _e2(), m_lat0 * kDeg);
}

void CKvBonneSouthOrientated::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !m_core.Usable()) {
        *x = *y = std::nan("");
        return;
    }
    // A longitude and a central meridian within [-180, 180] leave lon - lon0
    // within a turn and a half: one exact subtraction, the same bits.
    const double dLon = std::fabs(lon) <= 180.0 && std::fabs(m_lon0) <= 180.0
                            ? CKvAngle::ReduceNearLongitudeDegrees(lon - m_lon0)
                            : CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0);
    double gx, gy;
    m_core.Forward(lat * kDeg, dLon * kDeg, &gx, &gy);
    *x = m_FE - gx;
    *y = m_FN - gy;
}

void CKvBonneSouthOrientated::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    double phi, dLambda;
    if (!m_core.Usable() || !m_core.Inverse(m_FE - x, m_FN - y, &phi, &dLambda)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = phi * kRad;
    // InverseLongitudeDegrees, by its one exact subtraction wherever that is
    // its answer (a world map's longitudes run past 180 degrees from a central
    // meridian off Greenwich).
    const double l = m_lon0 + dLambda * kRad;
    const bool near = (std::fabs(l) <= 180.0) | ((std::fabs(l) > 180.0 + 1e-9) & (std::fabs(l) < 540.0));
    *lon = near ? CKvAngle::ReduceNearLongitudeDegrees(l) : CKvAngle::InverseLongitudeDegrees(l);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvBonneSouthOrientated::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvBonneSouthOrientated::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !m_core.Usable())
        return std::nan("");
    // The grid's north is the direction of falling southings: the axes' half
    // turn leaves the angle between it and the meridian as on the Bonne grid.
    double dx, dy;
    m_core.MeridianDerivative(
        lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &dx, &dy);
    return std::atan2(-dx, dy) / kDeg;
}

void CKvBonneSouthOrientated::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double C = m_core.Apex();
    const double r = std::fabs(C) + 2.0 * m_core.PoleDistance();
    *x1 = m_FE - r;
    *x2 = m_FE + r;
    *y1 = m_FN - std::max(C - r, C + r);
    *y2 = m_FN - std::min(C - r, C + r);
    if (!m_core.Usable())
        *x1 = *y1 = *x2 = *y2 = std::nan("");
}

// The method's names and parameters as the EPSG registry's texts give them
// (GDAL writes the EPSG method name, "Bonne_(South_Orientated)", with the EPSG
// parameter names); PROJ has no such method, only its Bonne with the axes
// turned (+axis=wsu).
const CKvMapProjData::STypeInfo CKvBonneSouthOrientated::TypeInfo = {
    CKvMapProjData::eBonneSouthOrientated,
    "BONNE_SOUTH_ORIENTATED_PROJECTION",
    nullptr,
    "Bonne (South Orientated)",
    "Bonne_South_Orientated",
    4,
    {
        {"Central_Meridian",
         "Central meridian:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "Longitude of natural origin", "central_meridian", "Longitude_Of_Center"},
         "lon_0",
         true,
         0.0},
        {"Origin_Latitude",
         "Latitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "standard_parallel_1", "Standard_Parallel_1"},
         "lat_1",
         false},
        {"Feast",
         "False easting:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Easting", "False easting", "false_easting"},
         "x_0",
         false,
         0.0},
        {"Fnorth",
         "False northing:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Northing", "False northing", "false_northing"},
         "y_0",
         false,
         0.0},
    },
    "Default Bonne (South Orientated)",
    "WE",
    {0.0, 45.0, 0.0, 0.0},
    9828,
    "Bonne_(South_Orientated)",
    {"Bonne (South Orientated)", "Bonne_(South_Orientated)"},
    // PROJ has no south-orientated Bonne: its +axis=wsu negates the false
    // origin too, which the registry's W = FE - E does not.
    nullptr,
    &CKvBonne::Problem,
    {"WEST", "SOUTH"},
};
