#include "projections/KvBonne.h"

#include "projections/KvAngle.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kRad = 180.0 / kPi;
} // namespace

CKvBonne::CKvBonne(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3])
{
    if (std::isfinite(m_lon0) && std::isfinite(m_FE) && std::isfinite(m_FN))
        m_core = CKvBonneCore(_a(), _e2(), m_lat0 * kDeg);
}

std::string CKvBonne::Problem(const double* parameters)
{
    if (parameters[1] == 0.0)
        return "the latitude of origin of a Bonne map must not be 0 (its cone's apex would lie at infinity)";
    if (!CKvAngle::IsLatitude(CKvAngle::SnapToPole(parameters[1])))
        return "the latitude of origin lies beyond a pole";
    return "";
}

void CKvBonne::Geo2Proj(double lon, double lat, double* x, double* y) const
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
    *x = m_FE + gx;
    *y = m_FN + gy;
}

void CKvBonne::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    double phi, dLambda;
    if (!m_core.Usable() || !m_core.Inverse(x - m_FE, y - m_FN, &phi, &dLambda)) {
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

void CKvBonne::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvBonne::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !m_core.Usable())
        return std::nan("");
    double dx, dy;
    m_core.MeridianDerivative(
        lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &dx, &dy);
    return std::atan2(-dx, dy) / kDeg;
}

void CKvBonne::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    // The far pole's circle about the apex (0, a m0 / sin phi0) holds the map.
    const double C = m_core.Apex();
    const double r = std::fabs(C) + 2.0 * m_core.PoleDistance();
    *x1 = m_FE - r;
    *x2 = m_FE + r;
    *y1 = m_FN + std::min(C - r, C + r);
    *y2 = m_FN + std::max(C - r, C + r);
    if (!m_core.Usable())
        *x1 = *y1 = *x2 = *y2 = std::nan("");
}

// The method's names and parameters: ESRI's Bonne names its latitude
// Standard_Parallel_1, GDAL's standard_parallel_1 (PROJ's lat_1), the EPSG
// registry "Latitude of natural origin".
const CKvMapProjData::STypeInfo CKvBonne::TypeInfo = {
    CKvMapProjData::eBonne,
    "BONNE_PROJECTION",
    nullptr,
    "Bonne",
    "Bonne",
    4,
    {
        {"Central_Meridian",
         "Central meridian:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "central_meridian", "Longitude of natural origin", "Longitude_Of_Center"},
         "lon_0",
         true,
         0.0},
        {"Origin_Latitude",
         "Latitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of natural origin", "Latitude_Of_Origin"},
         "lat_1",
         false},
        {"Feast",
         "False easting:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Easting", "false_easting", "False easting"},
         "x_0",
         false,
         0.0},
        {"Fnorth",
         "False northing:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Northing", "false_northing", "False northing"},
         "y_0",
         false,
         0.0},
    },
    "Default Bonne",
    "WE",
    {0.0, 45.0, 0.0, 0.0},
    9827,
    "Bonne",
    {"Bonne"},
    "+proj=bonne",
    &CKvBonne::Problem,
};
