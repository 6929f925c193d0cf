#include "projections/KvEqualEarth.h"

#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kA1 = 1.340264, kA2 = -0.081106, kA3 = 0.000893, kA4 = 0.003796;
constexpr double kM = 0.86602540378443865; // sqrt(3) / 2
constexpr double kThetaMax = kPi / 3.0;    // theta of the poles: asin(sqrt(3) / 2)

// P(theta) / theta, and P'(theta), P''(theta) / theta, from theta^2.
inline double PolyOverTheta(double t2)
{
    const double t6 = t2 * t2 * t2;
    return kA1 + kA2 * t2 + t6 * (kA3 + kA4 * t2);
}
inline double PolyDerivative(double t2)
{
    const double t6 = t2 * t2 * t2;
    return kA1 + 3.0 * kA2 * t2 + t6 * (7.0 * kA3 + 9.0 * kA4 * t2);
}
inline double PolySecondOverTheta(double t2)
{
    const double t4 = t2 * t2;
    return 6.0 * kA2 + t4 * (42.0 * kA3 + 72.0 * kA4 * t2);
}
} // namespace

CKvEqualEarth::CKvEqualEarth(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lon0 = parameters[0];
    m_FE = parameters[1];
    m_FN = parameters[2];
    const double a = _a(), e = _e();
    const bool usable = a > 0.0 && std::isfinite(a) && e >= 0.0 && e < 1.0 && std::isfinite(m_lon0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN);
    m_ellipsoidal = e > 0.0;
    if (m_ellipsoidal && usable)
        m_authalic = CKvConformalLatitude::MakeAuthalic(e);
    // Rq = a sqrt(qP / 2), the radius of the sphere with the ellipsoid's area.
    m_R = !usable ? std::nan("") : m_ellipsoidal ? a * std::sqrt(m_authalic.qPole / 2.0) : a;
}

double CKvEqualEarth::_theta(double lat) const
{
    double sinBeta = std::sin(lat * kDeg);
    if (m_ellipsoidal) {
        sinBeta = CKvConformalLatitude::AuthalicQ(m_authalic, sinBeta) / m_authalic.qPole;
        // q(phi) / qP reaches 1 at the pole; rounding may take it a hair beyond.
        if (std::fabs(sinBeta) > 1.0)
            sinBeta = sinBeta > 0.0 ? 1.0 : -1.0;
    }
    return std::asin(kM * sinBeta);
}

void CKvEqualEarth::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    const double theta = _theta(lat);
    const double t2 = theta * theta;
    *x = m_FE + m_R * lambda * std::cos(theta) / (kM * PolyDerivative(t2));
    *y = m_FN + m_R * theta * PolyOverTheta(t2);
}

void CKvEqualEarth::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double Y = (y - m_FN) / m_R;
    const double yMax = kThetaMax * PolyOverTheta(kThetaMax * kThetaMax);
    // Beyond the poles' lines (by more than rounding), or no number: no point.
    if (!(std::fabs(Y) <= yMax * (1.0 + 1e-15)) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    // Newton's method on P(theta) = Y from theta = Y / A1. P' lies between 1.13
    // and A1 over the map, so each step squares the error: after a step below
    // 1e-9 what is left is below 1e-17. A dozen steps bound the work.
    double theta = Y / kA1;
    for (int i = 0; i < 12; ++i) {
        const double t2 = theta * theta;
        const double step = (theta * PolyOverTheta(t2) - Y) / PolyDerivative(t2);
        theta -= step;
        if (std::fabs(step) < 1e-9)
            break;
    }
    if (std::fabs(theta) > kThetaMax)
        theta = theta > 0.0 ? kThetaMax : -kThetaMax;
    const double t2 = theta * theta;
    const double lambdaDeg = kM * PolyDerivative(t2) * (x - m_FE) / (m_R * std::cos(theta)) / kDeg;
    // Outside the outline: a longitude beyond the antimeridian of the centre.
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    double sinBeta = std::sin(theta) / kM;
    if (std::fabs(sinBeta) > 1.0)
        sinBeta = sinBeta > 0.0 ? 1.0 : -1.0;
    const double phi = m_ellipsoidal ? CKvConformalLatitude::AuthalicLatitude(m_authalic, sinBeta * m_authalic.qPole)
                                     : std::asin(sinBeta);
    *lat = phi / kDeg;
    *lon = CKvAngle::EdgeInverseLongitudeDegrees(lambdaDeg, m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvEqualEarth::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvEqualEarth::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    // E = Rq lambda cos theta / (M P'), N = Rq P: along the meridian theta grows
    // with the latitude, dE/dtheta = -Rq lambda (sin theta P' + cos theta P'') /
    // (M P'^2) and dN/dtheta = Rq P'.
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    const double theta = _theta(lat);
    const double t2 = theta * theta;
    const double d1 = PolyDerivative(t2), d2 = theta * PolySecondOverTheta(t2);
    const double east = lambda * (std::sin(theta) * d1 + std::cos(theta) * d2) / (kM * d1 * d1);
    return std::atan2(east, d1) / kDeg;
}

void CKvEqualEarth::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = m_R * kPi / (kM * kA1);
    const double halfHeight = m_R * kThetaMax * PolyOverTheta(kThetaMax * kThetaMax);
    *x1 = m_FE - halfWidth;
    *y1 = m_FN - halfHeight;
    *x2 = m_FE + halfWidth;
    *y2 = m_FN + halfHeight;
}

// The method's names and parameters. ESRI writes "Equal_Earth"
// (EPSG:8857 to 8859 in the registry); EPSG method 1078, "Equal Earth"; GDAL
// has no OGC WKT 1 form of it.
const CKvMapProjData::STypeInfo CKvEqualEarth::TypeInfo = {
    CKvMapProjData::eEqualEarth,
    "EQUAL_EARTH_PROJECTION",
    nullptr,
    "Equal Earth",
    "Equal_Earth",
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
    "Default Equal Earth",
    "WE",
    {0.0, 0.0, 0.0},
    1078,
    nullptr,
    {"Equal Earth"},
    "+proj=eqearth",
    nullptr,
};
