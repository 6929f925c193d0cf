#include "projections/KvEqualEarth.h"

#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kToDeg = 180.0 / kPi;
constexpr double kA1 = 1.340264, kA2 = -0.081106, kA3 = 0.000893, kA4 = 0.003796;
constexpr double kM = 0.86602540378443865; // sqrt(3) / 2
constexpr double kThetaMax = kPi / 3.0;    // theta of the poles: asin(sqrt(3) / 2)

// The inverse's start, theta / Y as a polynomial in x = Y^2 kStartScale - 1,
// within 7e-10 of the root over the map; written by
// tools/make_equal_earth_start.py.
constexpr double kStartScale = 1.1524424085949865;
constexpr double kStart[10] = {0.7698587941843507,     0.025455084500979778,   0.00120246467565336,
                               -0.0009267399733541142, -0.0005345907451381832, -0.00014074206976161515,
                               -1.2132571450318434e-05, 1.0066180697421161e-05, 6.122509019412805e-06,
                               1.329736419153349e-06};

// v within [lo, hi] by comparisons: no call to libm's fmin and fmax, which the
// compiler does not inline.
inline double Clamp(double v, double lo, double hi)
{
    return v < lo ? lo : v > hi ? hi : v;
}

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
    m_kernel = m_ellipsoidal && e <= CKvMathKernel::EccentricSinhLimit;
    m_invQPole = m_ellipsoidal ? 1.0 / m_authalic.qPole : 1.0;
    m_sinScale = kM * (1.0 - m_authalic.e2) * m_invQPole;
    m_invR = 1.0 / m_R;
}

double CKvEqualEarth::_theta(double lat) const
{
    double sinTheta, cosTheta;
    _sinCosTheta(lat, &sinTheta, &cosTheta);
    return CKvMathKernel::Atan2(sinTheta, cosTheta);
}

void CKvEqualEarth::_sinCosTheta(double lat, double* sinTheta, double* cosTheta) const
{
    // sin phi by the kernel's series (|phi| <= pi/2), q by its kernel on the
    // earth's ellipsoids.
    double sinBeta = CKvMathKernel::SinHalfPi(lat * kDeg);
    if (m_ellipsoidal) {
        sinBeta = (m_kernel ? CKvConformalLatitude::AuthalicQKernel(m_authalic, sinBeta)
                            : CKvConformalLatitude::AuthalicQ(m_authalic, sinBeta)) *
                  m_invQPole;
        // q(phi) / qP reaches 1 at the pole; rounding may take it a hair beyond.
        sinBeta = Clamp(sinBeta, -1.0, 1.0);
    }
    // sin theta = (sqrt 3 / 2) sin beta; cos theta >= 1/2 has no cancellation.
    *sinTheta = kM * sinBeta;
    *cosTheta = std::sqrt((1.0 - *sinTheta) * (1.0 + *sinTheta));
}

void CKvEqualEarth::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    if (!m_kernel) {
        double sinTheta, cosTheta;
        _sinCosTheta(lat, &sinTheta, &cosTheta);
        const double theta = std::asin(sinTheta);
        const double t2 = theta * theta;
        *x = m_FE + m_R * lambda * cosTheta / (kM * PolyDerivative(t2));
        *y = m_FN + m_R * theta * PolyOverTheta(t2);
        return;
    }
    // On the earth's ellipsoids sin theta = M q / qP as a fraction n / w, with
    // q w = (1 - e^2) sin phi (1 + w P(z^2)), w = 1 - e^2 sin^2 phi (the kernel
    // of q before its division), and cos theta = sqrt(w^2 - n^2) / w: one
    // reciprocal of w for both. w^2 - n^2 >= w^2 / 4 (M^2 = 3/4, q <= qP) has
    // no cancellation; rounding beyond the pole moves theta by an ulp, within
    // the inverse's tolerance of the poles' lines. theta by libm's asin of at
    // most sqrt 3 / 2, which costs less than an atan2 here.
    const double s = CKvMathKernel::SinHalfPi(lat * kDeg);
    const double z2 = m_authalic.e2 * s * s, w = 1.0 - z2;
    const double n = m_sinScale * s * (1.0 + w * CKvConformalLatitude::AuthalicSeriesP(z2));
    const double root = std::sqrt((w - n) * (w + n));
    const double invW = 1.0 / w;
    const double theta = std::asin(n * invW);
    const double t2 = theta * theta;
    *x = m_FE + m_R * lambda * root * invW / (kM * PolyDerivative(t2));
    *y = m_FN + m_R * theta * PolyOverTheta(t2);
}

void CKvEqualEarth::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double Y = (y - m_FN) * m_invR;
    const double yMax = kThetaMax * PolyOverTheta(kThetaMax * kThetaMax);
    // Beyond the poles' lines (by more than rounding), or no number: no point.
    if (!(std::fabs(Y) <= yMax * (1.0 + 1e-15)) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    // One Newton step on P(theta) = Y from the start, within 7e-10 of the
    // root: P' stays above 1.13 over the map and |P''| below 0.3, so that the
    // step leaves at most 0.3 / 2.26 (7e-10)^2 < 1e-19.
    const double theta0 = Y * CKvMathKernel::Estrin<10>(Y * Y * kStartScale - 1.0, kStart);
    const double t02 = theta0 * theta0;
    double theta = theta0 - (theta0 * PolyOverTheta(t02) - Y) / PolyDerivative(t02);
    theta = Clamp(theta, -kThetaMax, kThetaMax);
    const double t2 = theta * theta;
    // |theta| <= pi/3: the sine by the kernel's series without reduction, the
    // cosine (at least 1/2) by its root without cancellation.
    const double sinTheta = CKvMathKernel::SinHalfPi(theta);
    const double cosTheta = std::sqrt((1.0 - sinTheta) * (1.0 + sinTheta));
    const double lambdaDeg = (kM * kToDeg) * PolyDerivative(t2) * (x - m_FE) * m_invR / cosTheta;
    // Outside the outline: a longitude beyond the antimeridian of the centre.
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double sinBeta = Clamp(sinTheta * (1.0 / kM), -1.0, 1.0);
    const double phi = !m_ellipsoidal ? std::asin(sinBeta)
                       : m_kernel     ? CKvConformalLatitude::AuthalicLatitudeKernel(m_authalic, sinBeta)
                                      : CKvConformalLatitude::AuthalicLatitude(m_authalic, sinBeta * m_authalic.qPole);
    *lat = phi * kToDeg;
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
