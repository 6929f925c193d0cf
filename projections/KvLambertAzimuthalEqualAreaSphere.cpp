#include "projections/KvLambertAzimuthalEqualAreaSphere.h"
#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
constexpr double kToDegrees = 180.0 / 3.141592653589793;

// atan2 by atan of the quotient where the second argument is positive, the
// common case, where it is as exact and faster.
double Atan2(double y, double x)
{
    return x > 0.0 ? std::atan(y / x) : std::atan2(y, x);
}
} // namespace

CKvLambertAzimuthalEqualAreaSphere::CKvLambertAzimuthalEqualAreaSphere(double lambda0, double phi0, double falseEasting,
                                                                       double falseNorthing,
                                                                       const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid), m_sinPhi0(std::sin(m_phi0)),
      m_cosPhi0(std::cos(m_phi0)), m_aCosPhi0(m_a * m_cosPhi0), m_inv4A2(1.0 / (4.0 * m_a * m_a)),
      m_cosPhi0OverA(m_cosPhi0 / m_a)
{
}

void CKvLambertAzimuthalEqualAreaSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double s = std::sin(phi), c = std::cos(phi), sdl = std::sin(dl), cdl = std::cos(dl);
    // 1 + cos of the arc from the centre; at the antipode k' is infinite.
    const double sum = 1.0 + m_sinPhi0 * s + m_cosPhi0 * c * cdl;
    if (!(sum > CKvAngle::AntipodeLimit)) {
        *x = *y = std::nan("");
        return;
    }
    // k' = sqrt(2 / sum), its square root and reciprocal side by side.
    const double k = std::sqrt(2.0 * sum) * (1.0 / sum);
    *x = m_FE + m_a * k * c * sdl;
    *y = m_FN + m_a * k * (m_cosPhi0 * s - m_sinPhi0 * c * cdl);
}

void CKvLambertAzimuthalEqualAreaSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double rho2 = dx * dx + dy * dy;
    if (rho2 == 0.0) {
        GetOrigin(lon, lat);
        return;
    }
    // s = sin(c/2) and h = cos(c/2) for the arc c from the centre (Snyder's
    // rho = 2R sin(c/2)): sin c = 2 s h = rho h / R and cos c = 1 - 2 s^2, with no
    // square root for rho itself. Beyond the boundary circle (s > 1) h is NaN.
    const double s2 = rho2 * m_inv4A2, h = std::sqrt(1.0 - s2);
    const double cc = 1.0 - 2.0 * s2, dyh = dy * h;
    // Snyder's eqs. 20-14 and 20-15 with sin c / rho = h / R; the longitude's two
    // arguments both divided by the positive rho / R.
    // The sine of the latitude is within [-1, 1] wherever h is a number; beyond
    // by rounding alone it is the pole's (the image of a pole, y = +-2R on the
    // equatorial aspect, would otherwise give NaN). NaN stays NaN.
    const double sinPhi = cc * m_sinPhi0 + dyh * m_cosPhi0OverA;
    *lat = std::asin(sinPhi > 1.0 ? 1.0 : (sinPhi < -1.0 ? -1.0 : sinPhi)) * kToDegrees;
    *lon =
        CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(dx * h, m_aCosPhi0 * cc - dyh * m_sinPhi0)) * kToDegrees);
}
