#include "projections/KvLambertNearConformal.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <limits>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

std::string CKvLambertNearConformal::Problem(const double* parameters)
{
    const double k0 = parameters[0], lat0 = parameters[2];
    if (!(k0 > 0.0 && std::isfinite(k0)))
        return "the scale factor at the natural origin is not a positive number";
    if (!std::isfinite(parameters[1]) || !std::isfinite(parameters[3]) || !std::isfinite(parameters[4]))
        return "a parameter is not a finite number";
    // r0 = k0 nu0 / tan phi0: infinite on the equator, 0 on a pole.
    if (!(std::fabs(lat0) < 90.0) || lat0 == 0.0 || std::fabs(CKvAngle::SnapToPole(lat0)) == 90.0)
        return "the latitude of the natural origin must lie between the equator and a pole";
    return "";
}

CKvLambertNearConformal::CKvLambertNearConformal(const std::string& name, const double* parameters,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[1]), m_lat0(parameters[2]), m_FE(parameters[3]),
      m_FN(parameters[4]), m_k0(parameters[0])
{
    const double a = _a(), e2 = _e2();
    const double phi0 = m_lat0 * kDeg;
    const double s = std::sin(phi0);
    const double w = 1.0 - e2 * s * s;
    const double nu0 = a / std::sqrt(w);
    const double rho0 = a * (1.0 - e2) / (w * std::sqrt(w));
    m_A = 1.0 / (6.0 * rho0 * nu0);
    m_r0 = m_k0 * nu0 / std::tan(phi0);
    m_sinPhi0 = s;
    m_sign = phi0 >= 0.0 ? 1.0 : -1.0;
    m_meridian = CKvConformalLatitude::MakeMeridian(a, e2);
    m_s0 = CKvConformalLatitude::MeridianDistance(m_meridian, phi0);
    // m^3 + m / A - c / A = 0 (c = M / k0) has p = 1 / A > 0 and one real root,
    //   m = 2 / sqrt(3A) sinh(asinh(3 c sqrt(3A) / 2) / 3),
    // the hyperbolic form of Cardano's, with no cancellation.
    m_cubicScale = 2.0 / std::sqrt(3.0 * m_A);
    m_cubicArgument = 1.5 * std::sqrt(3.0 * m_A) / m_k0;
    if (!Problem(parameters).empty() || !(a > 0.0 && std::isfinite(a)))
        m_r0 = m_k0 = m_s0 = std::nan("");
}

void CKvLambertNearConformal::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double m = CKvConformalLatitude::MeridianDistance(m_meridian, lat * kDeg) - m_s0;
    const double M = m_k0 * (m + m_A * m * m * m);
    const double r = m_r0 - M;
    // A longitude is a point of the earth: 540 is 180.
    const double theta = m_sinPhi0 * kDeg * CKvAngle::ReduceLongitudeDegrees(lon - m_lon0);
    // r sin theta tan(theta / 2) = r (1 - cos theta), the versine without cancellation.
    double sinTheta, cosTheta, versine;
    CKvMathKernel::SinCos(theta, sinTheta, cosTheta, versine); // |theta| <= pi
    *x = m_FE + r * sinTheta;
    *y = m_FN + M + r * versine;
}

void CKvLambertNearConformal::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dx = x - m_FE;
    const double dy = m_r0 - (y - m_FN);
    // r' takes the sign of phi0, and theta' with it (the southern cone opens
    // the other way); the apex (0, 0) lies on the central meridian.
    const double r = m_sign * std::sqrt(dx * dx + dy * dy);
    const double theta = r == 0.0 ? 0.0 : std::atan2(m_sign * dx, m_sign * dy);
    const double M = m_r0 - r;
    const double m = m_cubicScale * std::sinh(std::asinh(m_cubicArgument * M) / 3.0);
    *lat = CKvConformalLatitude::MeridianLatitude(m_meridian, m + m_s0) / kDeg;
    // The sheet spans half a turn of longitude either side of the central
    // meridian; the wedge beyond it is the image of no point.
    const double dLon = theta / m_sinPhi0 / kDeg;
    if (!(std::fabs(dLon) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lon = CKvAngle::InverseLongitudeDegrees(dLon + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

double CKvLambertNearConformal::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_k0 == m_k0))
        return std::nan("");
    return m_sinPhi0 * CKvAngle::ReduceLongitudeDegrees(lon - m_lon0);
}

void CKvLambertNearConformal::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvLambertNearConformal::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, false, x1, y1, x2, y2);
}

// The method's names and parameters: GDAL writes the EPSG name and EPSG's
// parameter names. PROJ has no such method.
const CKvMapProjData::STypeInfo CKvLambertNearConformal::TypeInfo = {
    CKvMapProjData::eLambertNearConformal,
    "LAMBERT_NEAR_CONFORMAL_PROJECTION",
    nullptr,
    "Lambert Conic Near-Conformal",
    "Lambert_Conic_Near-Conformal",
    5,
    {
        {"Scale", "Scale:", CKvMapProjData::eDimensionless, nullptr,
         {"Scale_Factor", "Scale factor at natural origin", "scale_factor"}, nullptr, false, 1.0},
        {"Origin_Longitude", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "Longitude of natural origin", "central_meridian"}, nullptr, true, 0.0},
        {"Origin_Latitude", "Latitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "latitude_of_origin"}, nullptr, false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr,
         {"False_Easting", "False easting", "false_easting"}, nullptr, false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "False northing", "false_northing"}, nullptr, false, 0.0},
    },
    "Default Lambert Near-Conformal",
    "WE",
    {0.9996256, 37.35, 34.65, 300000.0, 300000.0},
    9817,
    "Lambert_Conic_Near-Conformal",
    {"Lambert Conic Near-Conformal"},
    nullptr,
    &CKvLambertNearConformal::Problem,
};
