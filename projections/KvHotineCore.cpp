#include "projections/KvHotineCore.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"
#include "projections/KvProjection.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;

// sinh w and cosh w together: by the series of sinh for |w| < 0.5, where
// (E - 1/E) / 2 would lose digits to cancellation, else from one exponential.
// Where cosh overflows both are infinite, and the ratios formed from them NaN.
KVCART_ALWAYS_INLINE void SinhCosh(double w, double& sinhW, double& coshW)
{
    if (std::fabs(w) < 0.5) {
        sinhW = CKvMathKernel::SinhSmall(w);
        coshW = std::sqrt(1.0 + sinhW * sinhW);
    } else {
        const double E = std::exp(w), invE = 1.0 / E;
        sinhW = (E - invE) / 2.0;
        coshW = (E + invE) / 2.0;
    }
}

// sin x and cos x: the series alone within pi/4, the kernel beyond.
KVCART_ALWAYS_INLINE void SinCosQuarter(double x, double& s, double& c)
{
    if (!(std::fabs(x) <= kPi / 4)) {
        CKvMathKernel::SinCosAny(x, s, c);
        return;
    }
    double versine;
    CKvMathKernel::SinVersineQuarterPi(x, s, versine);
    c = 1.0 - versine;
}

// exp(z) - 1 for |z| <= 0.04 by its Taylor series to z^8 (remainder below 3e-19
// relative), libm beyond.
KVCART_ALWAYS_INLINE double ExpM1(double z)
{
    static constexpr double Series[8] = {1.0,       1.0 / 2,   1.0 / 6,    1.0 / 24,
                                         1.0 / 120, 1.0 / 720, 1.0 / 5040, 1.0 / 40320};
    return std::fabs(z) <= 0.04 ? z * CKvMathKernel::Estrin<8>(z, Series) : std::expm1(z);
}

// atanh U as 0.5 ln((1 + U) / (1 - U)), by its series for |U| <= 0.1 (the aposphere
// within some 6 degrees of the centre line's equator, the common case on a grid).
KVCART_ALWAYS_INLINE double AtanhU(double U)
{
    return std::fabs(U) <= 0.1 ? CKvMathKernel::AtanhSmall(U) : 0.5 * std::log((1.0 + U) / (1.0 - U));
}

} // namespace

CKvHotineCore::CKvHotineCore(double a, double e, double kc, double lambdaC, double phiC, double alphaC, double gammaC,
                             bool variantB, double falseEasting, double falseNorthing)
    : m_e(e), m_FE(falseEasting), m_FN(falseNorthing)
{
    const double e2 = e * e, s = std::sin(phiC), c = std::cos(phiC);
    const double sign = phiC < 0.0 ? -1.0 : 1.0;
    m_B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
    m_A = a * m_B * kc * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
    const double t0 = CKvConformalLatitude::T(phiC, e);
    double D = m_B * std::sqrt(1.0 - e2) / (c * std::sqrt(1.0 - e2 * s * s));
    if (D < 1.0)
        D = 1.0;
    const double F = D + std::sqrt(D * D - 1.0) * sign;
    m_H = F * std::pow(t0, m_B);
    m_lnH = std::log(m_H);
    m_AoverB = m_A / m_B;
    m_BoverA = m_B / m_A;
    m_invB = 1.0 / m_B;
    m_inverse = CKvConformalLatitude::MakeInverse(e);
    m_Bm1 = e2 * c * c * c * c / (1.0 - e2) / (1.0 + m_B); // B - 1 without cancellation
    m_Be = m_B * e;
    m_smallE = e <= CKvMathKernel::EccentricSinhLimit;
    m_lnPLimit = m_smallE ? 0.25 : -1.0;
    m_phiC = phiC;
    m_sinPhiC = s;
    m_cosPhiC = c;
    const double G = (F - 1.0 / F) / 2.0;
    const double gamma0 = std::asin(std::sin(alphaC) / D);
    m_sinGamma0 = std::sin(gamma0);
    m_cosGamma0 = std::cos(gamma0);
    m_sinGammaC = std::sin(gammaC);
    m_cosGammaC = std::cos(gammaC);
    // With a centre line due east or west, G tan(gamma0) is 1 in exact arithmetic;
    // rounding may take it just past 1, so it is clamped like D above.
    m_lambda0 = lambdaC - std::asin(std::fmax(-1.0, std::fmin(1.0, G * std::tan(gamma0)))) / m_B;
    // A centre line running due east or west meets the natural origin at infinity
    // along u; there the guidance note takes u of the centre as A (lambdaC - lambda0).
    const bool eastWest = std::fabs(std::fabs(alphaC) - kPi / 2) < 1e-12;
    if (variantB) {
        if (eastWest)
            m_uc = m_A * (lambdaC - m_lambda0);
        else
            // The magnitude: an azimuth beyond +-90 degrees runs the centre line the
            // other way, which cos(alphaC) < 0 would turn into a sign of u (as PROJ).
            m_uc = std::fabs((m_A / m_B) * std::atan(std::sqrt(D * D - 1.0) / std::cos(alphaC))) * sign;
    }
    // The same centre as a direction on the aposphere, B uc / A, in either variant.
    const double thetaC = eastWest ? m_B * (lambdaC - m_lambda0)
                                   : std::fabs(std::atan(std::sqrt(D * D - 1.0) / std::cos(alphaC))) * sign;

    constexpr double Deg = kPi / 180.0;
    SFigures& f = m_fast;
    f.e = e;
    f.B = m_B;
    f.lnH = m_lnH;
    f.AoverB = m_AoverB;
    f.BoverA = m_BoverA;
    f.invB = m_invB;
    f.BDeg = m_B * Deg;
    f.invBDeg = 1.0 / (m_B * Deg);
    f.halfBDeg = 0.5 * m_B * Deg;
    f.lon0 = m_lambda0 / Deg;
    f.uc = m_uc;
    f.FE = m_FE;
    f.FN = m_FN;
    f.sinGamma0 = m_sinGamma0;
    f.cosGamma0 = m_cosGamma0;
    f.sinGammaC = m_sinGammaC;
    f.cosGammaC = m_cosGammaC;
    f.inverse = m_inverse;
    f.sinThetaC = std::sin(thetaC);
    f.cosThetaC = std::cos(thetaC);
    f.uOffset = variantB ? 0.0 : m_AoverB * thetaC;
    // The kernels' reach: the eccentricity of the isometric latitude's series,
    // and finite figures.
    bool figures = e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit;
    for (double value : {f.B, f.lnH, f.AoverB, f.BoverA, f.invB, f.BDeg, f.invBDeg, f.lon0, f.uc, f.FE,
                         f.FN, f.sinGamma0, f.cosGamma0, f.sinGammaC, f.cosGammaC, f.sinThetaC, f.cosThetaC,
                         f.uOffset})
        figures = figures && std::isfinite(value);
    f.fastForward = figures;
    f.fastInverse = figures && m_inverse.series;
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvHotineCore::SFigures, CKvHotineCore::FastForward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvHotineCore::SFigures, CKvHotineCore::FastInverse)

} // namespace

void CKvHotineCore::ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* lon,
                                 std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                                 std::size_t xStride, double* y, std::size_t yStride)
{
    CKvBatch::ForEachFastBlock(ForwardBlock, f, f.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Geo2Proj(a, b, u, v); });
}

void CKvHotineCore::InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* x,
                                 std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                                 std::size_t lonStride, double* lat, std::size_t latStride)
{
    CKvBatch::ForEachFastBlock(InverseBlock, f, f.fastInverse, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Proj2Geo(a, b, u, v); });
}

void CKvHotineCore::Forward(double lambda, double phi, double* x, double* y) const
{
    const double dl = m_B * CKvAngle::ReduceLongitude(lambda - m_lambda0);
    double U, u;
    if (std::fabs(std::fabs(phi) - kPi / 2) > 1e-10) {
        // sin phi and cos phi turned from those of the centre by phi - phiC within
        // 45 degrees of it, with no reduction of the angle and the small terms
        // summed first (within two units in the last place); the kernel farther
        // away and beyond 1.2 rad (69 degrees) from the equator, where the
        // difference that gives cos phi would cancel more.
        double sinPhi, cosPhi;
        const double delta = phi - m_phiC;
        if (std::fabs(delta) <= kPi / 4 && std::fabs(phi) <= 1.2) {
            double sinDelta, versineDelta;
            CKvMathKernel::SinVersineQuarterPi(delta, sinDelta, versineDelta);
            sinPhi = m_sinPhiC + (m_cosPhiC * sinDelta - m_sinPhiC * versineDelta);
            cosPhi = m_cosPhiC - (m_cosPhiC * versineDelta + m_sinPhiC * sinDelta);
        } else {
            double versine;
            CKvMathKernel::SinCos(phi, sinPhi, cosPhi, versine);
        }
        // Q = H / t^B of the guidance note without the isometric latitude's
        // exponential: with P = tan(pi/4 + phi/2), written (1 + sin phi) / cos phi
        // or cos phi / (1 - sin phi) by the sign of phi so that nothing cancels
        // near either pole,
        //   1 / t = P exp(-e atanh(e sin phi)), and
        //   Q = H P exp(z), z = (B - 1) ln P - B e atanh(e sin phi).
        // B - 1 is at most e^2 / 2(1 - e^2) and ln P at most 4.8 within 89 degrees
        // of the equator, so |z| stays below 0.04 for every terrestrial ellipsoid,
        // where the series of exp(z) - 1 to z^8 errs by less than 3e-19; beyond
        // that, libm. ln P = atanh(sin phi) enters through z alone, scaled by
        // B - 1 < 0.005: its rounding weighs a thousandth of Q's, and within
        // |sin phi| <= 0.25 (14 degrees of the equator) the atanh series to
        // sin^21 phi, whose remainder below 7e-16 adds less than 4e-18 to z,
        // stands in for the logarithm (not for eccentricities beyond the earth's,
        // where B - 1 is larger).
        const double P = sinPhi >= 0.0 ? (1.0 + sinPhi) / cosPhi : cosPhi / (1.0 - sinPhi);
        const double es = m_e * sinPhi;
        const double lnP = std::fabs(sinPhi) <= m_lnPLimit ? CKvMathKernel::AtanhSmall(sinPhi) : std::log(P);
        const double z = m_Bm1 * lnP - m_Be * (m_smallE ? CKvMathKernel::AtanhSmall(es) : std::atanh(es));
        const double HP = m_H * P;
        const double Q = HP + HP * ExpM1(z);
        // S and T of the guidance note, (Q - 1/Q) / 2 and (Q + 1/Q) / 2, as Sm / m
        // and Tm / m with m = 2Q > 0 (Q^2 stays far from overflow: ln Q is at most
        // some 50 here): one division for U, none for the arctangent, which m does
        // not change.
        const double Q2 = Q * Q, m = 2.0 * Q;
        const double Sm = Q2 - 1.0, Tm = Q2 + 1.0;
        double V, cosDl;
        SinCosQuarter(dl, V, cosDl);
        const double mV = m * V;
        U = (Sm * m_sinGamma0 - mV * m_cosGamma0) / Tm;
        u = m_AoverB * std::atan2(Sm * m_cosGamma0 + mV * m_sinGamma0, m * cosDl) - m_uc;
    } else {
        // At a pole Q is infinite: U tends to +-sin(gamma0) and u to (A/B) phi,
        // whatever the longitude (a NaN longitude stays no point).
        U = (phi < 0.0 ? -m_sinGamma0 : m_sinGamma0) + 0.0 * dl;
        u = m_AoverB * phi - m_uc;
    }
    // v = (A / 2B) ln((1 - U) / (1 + U)) = -(A / B) atanh U; infinite for U = +-1.
    const double v = -m_AoverB * AtanhU(U);
    *x = v * m_cosGammaC + u * m_sinGammaC + m_FE;
    *y = u * m_cosGammaC - v * m_sinGammaC + m_FN;
}

void CKvHotineCore::Inverse(double x, double y, double* lambda, double* phi) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double v = dx * m_cosGammaC - dy * m_sinGammaC;
    const double u = dy * m_cosGammaC + dx * m_sinGammaC + m_uc;
    // Q = exp(-B v / A): S and T are its sinh and cosh (both infinite, and U NaN,
    // for a v beyond any point of the map).
    double S, Tq;
    SinhCosh(-m_BoverA * v, S, Tq);
    double V, cosBu;
    CKvMathKernel::SinCosAny(m_BoverA * u, V, cosBu);
    const double U = (V * m_cosGamma0 + S * m_sinGamma0) / Tq;
    if (std::fabs(std::fabs(U) - 1.0) < 1e-10) {
        // The poles: the isometric latitude is infinite there.
        *phi = U < 0.0 ? -kPi / 2 : kPi / 2;
        *lambda = m_lambda0;
        return;
    }
    // t = (H / sqrt((1 + U) / (1 - U)))^(1/B) = exp(-psi): the isometric latitude
    // psi = (atanh U - ln H) / B, whose sinh is the tangent of the conformal
    // latitude; the geodetic latitude from it by Karney's series.
    const double psi = (AtanhU(U) - m_lnH) * m_invB;
    double tanChi;
    if (std::fabs(psi) < 0.5) {
        tanChi = CKvMathKernel::SinhSmall(psi);
    } else {
        const double E = std::exp(psi);
        tanChi = (E - 1.0 / E) / 2.0;
    }
    *phi = CKvConformalLatitude::Latitude(m_inverse, tanChi);
    *lambda = m_lambda0 - std::atan2(S * m_cosGamma0 - V * m_sinGamma0, cosBu) * m_invB;
}
