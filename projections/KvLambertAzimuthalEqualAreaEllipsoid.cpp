#include "projections/KvLambertAzimuthalEqualAreaEllipsoid.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"

#include "catalogue/KvFloatCompareRel.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
constexpr double kToDegrees = 180.0 / 3.141592653589793;

// The geodetic latitude phi (radians) of the authalic latitude whose sine is
// sinBeta, by the shared kernel (from the sine itself rather than from q, which
// would be divided by q_P again), or for eccentricities beyond its reach by the
// general function of q. A sine beyond +-1 by rounding alone is set on the
// pole; further beyond, or NaN, gives NaN.
double LatitudeOfAuthalicSine(const CKvConformalLatitude::SAuthalic& authalic, double sinBeta)
{
    if (std::fabs(sinBeta) > 1.0 && std::fabs(sinBeta) <= 1.0 + 1e-15)
        sinBeta = sinBeta > 0.0 ? 1.0 : -1.0;
    if (authalic.e <= CKvMathKernel::EccentricSinhLimit)
        return CKvConformalLatitude::AuthalicLatitudeKernel(authalic, sinBeta);
    return CKvConformalLatitude::AuthalicLatitude(authalic, authalic.qPole * sinBeta);
}

// q_P - |q(phi)| near a pole, without the cancellation of the difference, which
// would leave cos beta (and the polar aspects' radius) with the square root of
// q's rounding error: millimetres at 1e-4 degree from the pole, metres closer.
// From Snyder's q,
//   q_P - |q| = (1 - s)(1 + e^2 s) / (1 - e^2 s^2) + (1 - e^2) / e atanh(e (1 - s) / (1 - e^2 s)),
// s = |sin phi|, the atanh difference taken as one atanh, and 1 - s = cos^2 phi / (1 + s).
#if defined(__GNUC__)
__attribute__((noinline, cold))
#endif
double PolarGap(const CKvConformalLatitude::SAuthalic& authalic, double phi)
{
    const double s = std::fabs(std::sin(phi)), c = std::cos(phi);
    const double e = authalic.e, e2 = authalic.e2;
    const double oneMinusS = c * c / (1.0 + s);
    const double z = e * oneMinusS / (1.0 - e2 * s);
    const double atanhZ = e <= CKvMathKernel::EccentricSinhLimit ? CKvMathKernel::AtanhSmall(z) : std::atanh(z);
    return oneMinusS * (1.0 + e2 * s) / (1.0 - e2 * s * s) + (1.0 - e2) / e * atanhZ;
}

// Beyond this |sin phi| (8.1 degrees from a pole) the forward takes PolarGap;
// nearer the equator the difference loses no more than 1e-14 relatively.
constexpr double kPolarSine = 0.99;

// atan2 by atan of the quotient where the second argument is positive, the
// common case, where it is as exact and faster.
double Atan2(double y, double x)
{
    return x > 0.0 ? std::atan(y / x) : std::atan2(y, x);
}

using SFigures = CKvLambertAzimuthalEqualAreaEllipsoid::SFigures;

// The fast path of the oblique aspect: the general formulas below with the
// inline kernels (sin phi without reduction, q by CKvConformalLatitude's kernel,
// sin and cos of the longitude difference together), values chosen rather than
// branches, so that the single-point calls and the vectorized batch loops give
// the same bits. false: the point is beyond the path (within 9 degrees of a
// pole, where the cosine of beta takes PolarGap; a longitude difference to be
// reduced; near the antipode; not finite), and the general formulas take it.
constexpr double kFastLatitude = 81.0; // sin 81 degrees < kPolarSine
KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
{
    const double phi = lat * kDeg, dl = lon * kDeg - f.lambda0;
    double sdl, cdl, vdl;
    CKvMathKernel::SinCos(dl, sdl, cdl, vdl);
    const double sb = CKvConformalLatitude::AuthalicQKernel(f.authalic, CKvMathKernel::SinHalfPi(phi)) * f.invQP;
    const double cb = std::sqrt((1.0 - sb) * (1.0 + sb));
    const double sum = 1.0 + f.sinBeta0 * sb + f.cosBeta0 * cb * cdl;
    const double k = std::sqrt(2.0 * sum) * (1.0 / sum);
    x = f.FE + f.RqD * k * cb * sdl;
    y = f.FN + f.RqOverD * k * (f.cosBeta0 * sb - f.sinBeta0 * cb * cdl);
    return (std::fabs(lat) <= kFastLatitude) & (std::fabs(dl) <= CKvAngle::Pi) & (sum > CKvAngle::AntipodeLimit);
}

// The inverse's fast path, the general formulas of the oblique aspect with the
// kernels: the latitude by the authalic kernel, the longitude by the atan2
// kernel. false: the centre itself, beyond the boundary circle, within a
// degree of the poles (whose rounding overshoot the general formulas set on
// the pole), a longitude to be reduced, not finite.
constexpr double kFastSinBeta = 0.9998; // 88.85 degrees
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    const double dx = x - f.FE, dy = y - f.FN;
    const double rho2 = dx * dx * f.invD2 + f.D2 * dy * dy;
    const double s2 = rho2 * f.inv4Rq2, h = std::sqrt(1.0 - s2);
    const double cc = 1.0 - 2.0 * s2, dyh = dy * h;
    const double sinBeta = cc * f.sinBeta0 + f.D * dyh * f.cosBeta0 * f.invRq;
    lat = CKvConformalLatitude::AuthalicLatitudeKernel(f.authalic, sinBeta) * kToDegrees;
    lon = (f.lambda0 + CKvMathKernel::Atan2(dx * h, f.DRqCosBeta0 * cc - f.D2SinBeta0 * dyh)) * kToDegrees;
    return (rho2 > 0.0) & (s2 <= 1.0) & (std::fabs(sinBeta) <= kFastSinBeta) & (std::fabs(lon) <= 180.0);
}

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, SFigures, Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, SFigures, Inverse)
} // namespace

CKvLambertAzimuthalEqualAreaEllipsoid::CKvLambertAzimuthalEqualAreaEllipsoid(double lambda0, double phi0,
                                                                             double falseEasting, double falseNorthing,
                                                                             const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    SFigures& f = m_fast;
    f.authalic = CKvConformalLatitude::MakeAuthalic(m_e);
    m_pole = CKvFloatCompareRel::Close(phi0, 90.0) ? 1 : (CKvFloatCompareRel::Close(phi0, -90.0) ? -1 : 0);
    const double qP = f.authalic.qPole;
    const double beta0 = std::asin(CKvConformalLatitude::AuthalicQ(f.authalic, std::sin(m_phi0)) / qP);
    f.sinBeta0 = std::sin(beta0);
    f.cosBeta0 = std::cos(beta0);
    const double Rq = m_a * std::sqrt(qP / 2.0);
    const double s0 = std::sin(m_phi0);
    f.D = m_a * (std::cos(m_phi0) / std::sqrt(1.0 - m_e2 * s0 * s0)) / (Rq * f.cosBeta0);
    f.lambda0 = m_lambda0;
    f.FE = m_FE;
    f.FN = m_FN;
    f.invQP = 1.0 / qP;
    f.RqD = Rq * f.D;
    f.RqOverD = Rq / f.D;
    f.D2 = f.D * f.D;
    f.invD2 = 1.0 / f.D2;
    f.inv4Rq2 = 1.0 / (4.0 * Rq * Rq);
    f.invRq = 1.0 / Rq;
    f.DRqCosBeta0 = f.D * Rq * f.cosBeta0;
    f.D2SinBeta0 = f.D2 * f.sinBeta0;
    m_invA2qP = 1.0 / (m_a * m_a * qP);
    // The kernels hold for the eccentricities of the earth, on the oblique
    // aspects; the polar ones keep the general formulas.
    const bool figures = m_pole == 0 && m_e > 0.0 && m_e <= CKvMathKernel::EccentricSinhLimit &&
                         std::isfinite(f.RqD) && std::isfinite(f.RqOverD) && std::isfinite(f.invD2) &&
                         std::isfinite(f.inv4Rq2) && std::isfinite(f.lambda0) && std::isfinite(f.FE) &&
                         std::isfinite(f.FN);
    f.fastForward = figures;
    f.fastInverse = figures && std::isfinite(f.invRq) && std::isfinite(f.D2) && std::isfinite(f.DRqCosBeta0) &&
                    std::isfinite(f.D2SinBeta0);
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    const SFigures& f = m_fast;
    if (f.fastForward && Forward(f, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double sdl = std::sin(dl), cdl = std::cos(dl);
    const double sinPhi = std::sin(phi), q = CKvConformalLatitude::AuthalicQ(f.authalic, sinPhi);
    const double qP = f.authalic.qPole;
    if (m_pole != 0) {
        const double gap = m_pole * sinPhi > kPolarSine ? PolarGap(f.authalic, phi) : qP - m_pole * q;
        const double rho = m_a * std::sqrt(gap);
        *x = m_FE + rho * sdl;
        *y = m_FN - m_pole * rho * cdl;
        return;
    }
    // The sine and cosine of the authalic latitude beta, the cosine near the
    // poles from 1 - |sin beta| = (q_P - |q|) / q_P.
    const double sb = q * f.invQP;
    double cb;
    if (std::fabs(sinPhi) > kPolarSine) {
        const double g = PolarGap(f.authalic, phi) * f.invQP;
        cb = std::sqrt(g * (2.0 - g));
    } else {
        cb = std::sqrt((1.0 - sb) * (1.0 + sb));
    }
    // 1 + cos of the arc from the centre on the authalic sphere.
    const double sum = 1.0 + f.sinBeta0 * sb + f.cosBeta0 * cb * cdl;
    if (!(sum > CKvAngle::AntipodeLimit)) {
        *x = *y = std::nan("");
        return;
    }
    // k' = sqrt(2 / sum), its square root and reciprocal side by side.
    const double k = std::sqrt(2.0 * sum) * (1.0 / sum);
    *x = m_FE + f.RqD * k * cb * sdl;
    *y = m_FN + f.RqOverD * k * (f.cosBeta0 * sb - f.sinBeta0 * cb * cdl);
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const SFigures& f = m_fast;
    if (f.fastInverse && Inverse(f, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE, dy = y - m_FN;
    if (m_pole != 0) {
        // q = qP - rho^2 / a^2 towards the pole of the origin.
        const double rho2 = dx * dx + dy * dy;
        *lat = LatitudeOfAuthalicSine(f.authalic, m_pole * (1.0 - rho2 * m_invA2qP)) * kToDegrees;
        *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(dx, -m_pole * dy)) * kToDegrees);
        return;
    }
    const double rho2 = dx * dx * f.invD2 + f.D2 * dy * dy;
    if (rho2 == 0.0) {
        GetOrigin(lon, lat);
        return;
    }
    // s = sin(c/2) and h = cos(c/2) for the arc c from the centre on the authalic
    // sphere (Snyder's rho = 2 R_q sin(c/2)): sin c = 2 s h = rho h / R_q and
    // cos c = 1 - 2 s^2, with no square root for rho itself. Beyond the boundary
    // circle (s > 1) h is NaN.
    const double s2 = rho2 * f.inv4Rq2, h = std::sqrt(1.0 - s2);
    const double cc = 1.0 - 2.0 * s2;
    // Snyder's eqs. 24-29 and 24-26 with sin c / rho = h / R_q; the longitude's
    // two arguments both divided by the positive rho / R_q.
    const double dyh = dy * h;
    const double sinBeta = cc * f.sinBeta0 + f.D * dyh * f.cosBeta0 * f.invRq;
    *lat = LatitudeOfAuthalicSine(f.authalic, sinBeta) * kToDegrees;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(dx * h, f.DRqCosBeta0 * cc - f.D2SinBeta0 * dyh)) *
                                            kToDegrees);
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride,
                                                     const double* lat, std::size_t latStride, double* x,
                                                     std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvLambertAzimuthalEqualAreaEllipsoid::Geo2Proj(a, b, u, v);
                               });
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Proj2Geo(std::size_t n, const double* x, std::size_t xStride,
                                                     const double* y, std::size_t yStride, double* lon,
                                                     std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fastInverse, n, x, xStride, y, yStride, lon, lonStride,
                               lat, latStride, [this](double a, double b, double* u, double* v) {
                                   CKvLambertAzimuthalEqualAreaEllipsoid::Proj2Geo(a, b, u, v);
                               });
}
