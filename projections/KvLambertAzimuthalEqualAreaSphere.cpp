#include "projections/KvLambertAzimuthalEqualAreaSphere.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
constexpr double kToDegrees = 180.0 / 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;

// atan2 by atan of the quotient where the second argument is positive, the
// common case, where it is as exact and faster.
double Atan2(double y, double x)
{
    return x > 0.0 ? std::atan(y / x) : std::atan2(y, x);
}

using SFigures = CKvLambertAzimuthalEqualAreaSphere::SFigures;

// The fast path: the general formulas below with the inline kernels and values
// chosen rather than branches, so that the single-point calls and the
// vectorized batch loops give the same bits. false: a latitude off the sphere,
// a longitude difference to be reduced, the antipode, not finite; the general
// formulas take those.
KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
{
    const double phi = lat * kDeg, dl = lon * kDeg - f.lambda0;
    // sin phi and cos phi = sin(pi/2 - |phi|) by the series without reduction
    // (pi/2 - |phi| exact from 45 degrees on, by Sterbenz's lemma).
    const double s = CKvMathKernel::SinHalfPi(phi), c = CKvMathKernel::SinHalfPi(kHalfPi - std::fabs(phi));
    double sdl, cdl, vdl;
    CKvMathKernel::SinCos(dl, sdl, cdl, vdl);
    const double sum = 1.0 + f.sinPhi0 * s + f.cosPhi0 * c * cdl;
    const double k = std::sqrt(2.0 * sum) * (1.0 / sum);
    x = f.FE + f.a * k * c * sdl;
    y = f.FN + f.a * k * (f.cosPhi0 * s - f.sinPhi0 * c * cdl);
    return (std::fabs(lat) <= 90.0) & (std::fabs(dl) <= CKvAngle::Pi) & (sum > CKvAngle::AntipodeLimit);
}

// The inverse's fast path: the general formulas below with the kernels' asin
// and atan2. false: the centre itself, the boundary circle and beyond, a sine of
// the latitude beyond +-1 by rounding, a longitude to be reduced, not finite.
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    const double dx = x - f.FE, dy = y - f.FN;
    const double rho2 = dx * dx + dy * dy;
    const double s2 = rho2 * f.inv4A2, h = std::sqrt(std::fabs(1.0 - s2));
    const double cc = 1.0 - 2.0 * s2, dyh = dy * h;
    const double sinPhi = cc * f.sinPhi0 + dyh * f.cosPhi0OverA;
    const double lambda = f.lambda0 + CKvMathKernel::Atan2(dx * h, f.aCosPhi0 * cc - dyh * f.sinPhi0);
    lat = CKvMathKernel::Asin(sinPhi) * kToDegrees;
    lon = lambda * kToDegrees;
    return (rho2 > 0.0) & (s2 < 1.0) & (std::fabs(sinPhi) <= 1.0) & (std::fabs(lambda) <= CKvAngle::Pi);
}

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, SFigures, Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, SFigures, Inverse)
} // namespace

CKvLambertAzimuthalEqualAreaSphere::CKvLambertAzimuthalEqualAreaSphere(double lambda0, double phi0, double falseEasting,
                                                                       double falseNorthing,
                                                                       const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    SFigures& f = m_fast;
    f.a = m_a;
    f.lambda0 = m_lambda0;
    f.FE = m_FE;
    f.FN = m_FN;
    f.sinPhi0 = std::sin(m_phi0);
    f.cosPhi0 = std::cos(m_phi0);
    f.aCosPhi0 = m_a * f.cosPhi0;
    f.inv4A2 = 1.0 / (4.0 * m_a * m_a);
    f.cosPhi0OverA = f.cosPhi0 / m_a;
    f.fast = m_a > 0.0 && std::isfinite(f.inv4A2) && std::isfinite(f.cosPhi0OverA) && std::isfinite(f.aCosPhi0) &&
             std::isfinite(f.lambda0) && std::isfinite(f.FE) && std::isfinite(f.FN);
}

void CKvLambertAzimuthalEqualAreaSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    const SFigures& f = m_fast;
    if (f.fast && Forward(f, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double s = std::sin(phi), c = std::cos(phi), sdl = std::sin(dl), cdl = std::cos(dl);
    // 1 + cos of the arc from the centre; at the antipode k' is infinite.
    const double sum = 1.0 + f.sinPhi0 * s + f.cosPhi0 * c * cdl;
    if (!(sum > CKvAngle::AntipodeLimit)) {
        *x = *y = std::nan("");
        return;
    }
    // k' = sqrt(2 / sum), its square root and reciprocal side by side.
    const double k = std::sqrt(2.0 * sum) * (1.0 / sum);
    *x = m_FE + m_a * k * c * sdl;
    *y = m_FN + m_a * k * (f.cosPhi0 * s - f.sinPhi0 * c * cdl);
}

void CKvLambertAzimuthalEqualAreaSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const SFigures& f = m_fast;
    if (f.fast && Inverse(f, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE, dy = y - m_FN;
    const double rho2 = dx * dx + dy * dy;
    if (rho2 == 0.0) {
        GetOrigin(lon, lat);
        return;
    }
    // s = sin(c/2) and h = cos(c/2) for the arc c from the centre (Snyder's
    // rho = 2R sin(c/2)): sin c = 2 s h = rho h / R and cos c = 1 - 2 s^2, with no
    // square root for rho itself. Beyond the boundary circle (s > 1) h is NaN.
    const double s2 = rho2 * f.inv4A2, h = std::sqrt(1.0 - s2);
    const double cc = 1.0 - 2.0 * s2, dyh = dy * h;
    // Snyder's eqs. 20-14 and 20-15 with sin c / rho = h / R; the longitude's two
    // arguments both divided by the positive rho / R.
    // The sine of the latitude is within [-1, 1] wherever h is a number; beyond
    // by rounding alone it is the pole's (the image of a pole, y = +-2R on the
    // equatorial aspect, would otherwise give NaN). NaN stays NaN.
    const double sinPhi = cc * f.sinPhi0 + dyh * f.cosPhi0OverA;
    *lat = std::asin(sinPhi > 1.0 ? 1.0 : (sinPhi < -1.0 ? -1.0 : sinPhi)) * kToDegrees;
    *lon =
        CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(dx * h, f.aCosPhi0 * cc - dyh * f.sinPhi0)) * kToDegrees);
}

void CKvLambertAzimuthalEqualAreaSphere::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride,
                                                  const double* lat, std::size_t latStride, double* x,
                                                  std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fast, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvLambertAzimuthalEqualAreaSphere::Geo2Proj(a, b, u, v);
                               });
}

void CKvLambertAzimuthalEqualAreaSphere::Proj2Geo(std::size_t n, const double* x, std::size_t xStride,
                                                  const double* y, std::size_t yStride, double* lon,
                                                  std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fast, n, x, xStride, y, yStride, lon, lonStride, lat,
                               latStride, [this](double a, double b, double* u, double* v) {
                                   CKvLambertAzimuthalEqualAreaSphere::Proj2Geo(a, b, u, v);
                               });
}
