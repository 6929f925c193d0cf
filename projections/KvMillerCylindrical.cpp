#include "projections/KvMillerCylindrical.h"

#include "projections/KvAngle.h"
#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// The northing of the poles over R: 5/4 ln tan(pi/4 + pi/5) = 5/4 ln tan(9 pi/20).
const double kPoleY = 1.25 * std::log(std::tan(0.45 * kPi));
} // namespace

CKvMillerCylindrical::CKvMillerCylindrical(const std::string& name, const double* parameters,
                                           const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_FE(parameters[1]), m_FN(parameters[2])
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN);
    m_R = usable ? CKvConformalLatitude::AuthalicRadius(a, _e()) : std::nan("");
    m_invR = 1.0 / m_R;
    m_invRDeg = 1.0 / (m_R * kDeg);
}

void CKvMillerCylindrical::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    *x = m_FE + m_R * kDeg * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    // ln tan(pi/4 + 2 phi/5) is the sphere's isometric latitude of 4/5 phi; at
    // the poles it is finite, and the rounded pole is set on the map's edge.
    *y = std::fabs(lat) == 90.0 ? m_FN + std::copysign(kPoleY, lat) * m_R
                                : m_FN + 1.25 * m_R * CKvConformalLatitude::Isometric(0.8 * lat * kDeg, 0.0);
}

void CKvMillerCylindrical::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double t = (y - m_FN) * m_invR;
    const double dlon = (x - m_FE) * m_invRDeg;
    // Beyond the poles' line or the map's width there is no point of the map.
    if (!(std::fabs(t) <= kPoleY * (1.0 + 1e-15)) || !(std::fabs(dlon) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    // 5/2 atan(exp(4t/5)) - 5 pi/8 = 5/4 gd(4t/5), gd the Gudermannian, gd u =
    // 2 atan(tanh(u/2)), |u| <= 1.85 here, with tanh(u/2) = m / (m + 2), m =
    // e^u - 1 by the inline kernel (no cancellation near the equator, within
    // two ulps). |m| <= m + 2 always: atan(|m| / (m + 2)) is the inline
    // kernel's angle within an eighth turn, one quotient and a polynomial, no
    // call of libm.
    const double m = CKvMathKernel::ExpM1(0.8 * t);
    const double latDeg = std::copysign((2.5 / kDeg) * CKvMathKernel::AtanUnit(std::fabs(m), m + 2.0), m);
    *lat = latDeg > 90.0 ? 90.0 : latDeg < -90.0 ? -90.0 : latDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(dlon + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvMillerCylindrical::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvMillerCylindrical::GetConvergence(double lon, double lat) const
{
    return CKvAngle::IsPoint(lon, lat) && m_R == m_R ? 0.0 : std::nan("");
}

void CKvMillerCylindrical::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    *x1 = m_FE - kPi * m_R;
    *x2 = m_FE + kPi * m_R;
    *y1 = m_FN - kPoleY * m_R;
    *y2 = m_FN + kPoleY * m_R;
}

// The method's names and parameters. ESRI and GDAL both write
// "Miller_Cylindrical"; the EPSG registry has no such method.
const CKvMapProjData::STypeInfo CKvMillerCylindrical::TypeInfo = {
    CKvMapProjData::eMillerCylindrical,
    "MILLER_CYLINDRICAL_PROJECTION",
    nullptr,
    "Miller Cylindrical",
    "Miller_Cylindrical",
    3,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Miller Cylindrical",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Miller_Cylindrical",
    {"Miller Cylindrical"},
    "+proj=mill +R_A",
    nullptr,
};
