#include "projections/KvSinusoidal.h"

#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

// A latitude overshooting a pole by rounding set on it: comparisons, not the
// out-of-line calls of fmin and fmax.
inline double Clamp(double phi)
{
    return phi > kPi / 2.0 ? kPi / 2.0 : phi < -kPi / 2.0 ? -kPi / 2.0 : phi;
}
} // namespace

CKvSinusoidal::CKvSinusoidal(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lon0 = parameters[0];
    m_FE = parameters[1];
    m_FN = parameters[2];
    const double a = _a(), e2 = _e2();
    const bool usable = a > 0.0 && std::isfinite(a) && e2 >= 0.0 && e2 < 1.0 && std::isfinite(m_lon0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN);
    m_a = usable ? a : std::nan("");
    m_e2 = usable ? e2 : 0.0;
    // The meridian distance by Helmert's series in the third flattening
    // (0.1 micrometre from the integral on the earth's ellipsoids).
    if (m_e2 > 0.0) {
        m_meridian = CKvConformalLatitude::MakeMeridian(m_a, m_e2);
        m_quarter = CKvConformalLatitude::MeridianDistance(m_meridian, kPi / 2.0);
    } else {
        m_quarter = m_a * kPi / 2.0;
    }
    m_invA = 1.0 / m_a;
}

void CKvSinusoidal::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    const double phi = lat * kDeg;
    // Both by the library's inline kernel; |phi| <= pi/2 needs no reduction.
    double s, c;
    CKvMathKernel::SinCosHalfPi(phi, s, c);
    if (m_e2 == 0.0) {
        *x = m_FE + m_a * lambda * c;
        *y = m_FN + m_a * phi;
        return;
    }
    // The parallel's radius a cos phi / W; its sin 2phi and cos 2phi for M.
    *x = m_FE + m_a * lambda * c / std::sqrt(1.0 - m_e2 * s * s);
    *y = m_FN + CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
}

void CKvSinusoidal::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double north = y - m_FN;
    // Beyond the poles (by more than rounding), or no number: no point.
    if (!(std::fabs(north) <= m_quarter * (1.0 + 1e-15)) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    // The latitude phi and its sine and cosine; the parallel's radius a cos phi
    // / W over a, inverted.
    double phi, s = 0.0, c, w = 1.0;
    if (m_e2 == 0.0) {
        phi = Clamp(north * m_invA);
        c = std::cos(phi);
    } else if (m_e2 <= 0.01) {
        _footpoint(north, &phi, &s, &c);
        w = std::sqrt(1.0 - m_e2 * s * s);
    } else {
        phi = CKvConformalLatitude::MeridianLatitude(m_meridian, north);
        phi = Clamp(phi);
        s = std::sin(phi);
        c = std::cos(phi);
        w = std::sqrt(1.0 - m_e2 * s * s);
    }
    // The parallel's half length is pi times its radius: a point beyond it is
    // off the map (at a pole, every point but the centre's).
    const double dx = x - m_FE;
    const double lambdaDeg = dx == 0.0 ? 0.0 : dx * w * m_invA / (c * kDeg);
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = phi * (1.0 / kDeg);
    *lon = CKvAngle::EdgeInverseLongitudeDegrees(lambdaDeg, m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

KVCART_ALWAYS_INLINE void CKvSinusoidal::_footpoint(double distance, double* phi, double* sinPhi,
                                                    double* cosPhi) const
{
    // CKvConformalLatitude::MeridianLatitudeKernel's footpoint series and
    // Newton step on M, carried with the sine and cosine of the latitude, which
    // the parallel's radius needs too: the rectifying latitude's sine and
    // cosine by the kernel (no reduction: |mu| <= pi/2), those of 2 mu, 2 phi
    // and phi from them by the double-angle and addition formulas (the
    // corrections stay below 3n/2 <= 0.004, within SinCosSmall's reach), so
    // that one evaluation serves all.
    const double mu = distance / (m_meridian.a * m_meridian.m0);
    double sMu, cMu;
    CKvMathKernel::SinCosHalfPi(mu, sMu, cMu);
    const double s2Mu = 2.0 * sMu * cMu, c2Mu = (cMu - sMu) * (cMu + sMu);
    const double delta = s2Mu * CKvMathKernel::Estrin<4>(c2Mu, m_meridian.footpoint);
    const double phi0 = mu + delta;
    double sd, cd;
    CKvMathKernel::SinCosSmall(delta, sd, cd);
    const double s0 = sMu * cd + cMu * sd, c0 = cMu * cd - sMu * sd;
    const double s2 = 2.0 * s0 * c0, c2 = (c0 - s0) * (c0 + s0);
    const double w = 1.0 - m_e2 * s0 * s0;
    const double step = (distance - CKvConformalLatitude::MeridianDistance(m_meridian, phi0, s2, c2)) *
                        (w * std::sqrt(w)) / (m_meridian.a * (1.0 - m_e2));
    CKvMathKernel::SinCosSmall(step, sd, cd);
    *phi = Clamp(phi0 + step);
    *sinPhi = s0 * cd + c0 * sd;
    *cosPhi = c0 * cd - s0 * sd;
}

void CKvSinusoidal::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvSinusoidal::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_a == m_a))
        return std::nan("");
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    return std::atan(lambda * std::sin(lat * kDeg)) / kDeg;
}

void CKvSinusoidal::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = m_a * kPi;
    *x1 = m_FE - halfWidth;
    *y1 = m_FN - m_quarter;
    *x2 = m_FE + halfWidth;
    *y2 = m_FN + m_quarter;
}

// The method's names and parameters. ESRI and GDAL both write
// "Sinusoidal" (GDAL with longitude_of_center); the EPSG registry has no such
// method.
const CKvMapProjData::STypeInfo CKvSinusoidal::TypeInfo = {
    CKvMapProjData::eSinusoidal,
    "SINUSOIDAL_PROJECTION",
    nullptr,
    "Sinusoidal",
    "Sinusoidal",
    3,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "longitude_of_center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Sinusoidal",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Sinusoidal",
    {"Sinusoidal"},
    "+proj=sinu",
    nullptr,
};
