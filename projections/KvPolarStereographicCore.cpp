#include "projections/KvPolarStereographicCore.h"

#include "projections/KvBatch.h"
#include "projections/KvProjection.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = kPi / 2; // 90 degrees as the engines convert them
constexpr double kQuarterPi = 0.7853981633974483;
constexpr double kHalfPiLow = 6.123233995736766e-17; // pi/2 - kHalfPi

double EccentricityTerm(double e)
{
    return std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
}

} // namespace

CKvPolarStereographicCore CKvPolarStereographicCore::AtPole(double a, double e, int pole, double k0, double lambda0,
                                                            double falseEasting, double falseNorthing)
{
    CKvPolarStereographicCore core;
    SFigures& f = core.m_f;
    core.m_pole = pole >= 0 ? 1 : -1;
    core.m_k0 = k0;
    f.e = e;
    f.sign = core.m_pole;
    f.lambda0 = lambda0;
    f.FE = falseEasting;
    f.FN = falseNorthing;
    f.scaleTerm = 2.0 * a * k0 / EccentricityTerm(e);
    // No map on a figure that is none (an unknown ellipsoid, a <= 0, e >= 1) or with
    // a scale that is not positive: NaN for every point rather than the false
    // origin (a = 0) or a mirrored map.
    if (!(a > 0.0 && std::isfinite(a) && e >= 0.0 && e < 1.0 && k0 > 0.0 && std::isfinite(k0)))
        f.scaleTerm = std::nan("");
    // f(z) = ((1 + z) / (1 - z))^(e/2) = sum c_k z^k: f' (1 - z^2) = e f gives
    // (k + 1) c_{k+1} = e c_k + (k - 1) c_{k-1}, from c_0 = 1 and c_1 = e. The
    // coefficients are about e / k (odd k) and e^2 / k (even k), so that for
    // |z| <= e <= 0.1 the terms from z^16 on sum to less than 2e-19 of f.
    f.scaleTerm2 = f.scaleTerm * f.scaleTerm;
    f.largestRho = LargestSeriesT * f.scaleTerm;
    f.expSeries = e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit;
    if (f.expSeries) {
        f.exp[0] = 1.0;
        f.exp[1] = e;
        for (int k = 1; k + 1 < ExpTerms; ++k)
            f.exp[k + 1] = (e * f.exp[k] + (k - 1) * f.exp[k - 1]) / (k + 1);
    }
    f.inverse = CKvConformalLatitude::MakeInverse(e);
    const bool figures = std::isfinite(f.scaleTerm) && std::isfinite(lambda0) && std::isfinite(falseEasting) &&
                         std::isfinite(falseNorthing);
    f.fastForward = figures && f.expSeries;
    f.fastInverse = figures && f.inverse.series;
    return core;
}

CKvPolarStereographicCore CKvPolarStereographicCore::OnParallel(double a, double e, double phiC, double scale,
                                                                double lambda0, double falseEasting,
                                                                double falseNorthing)
{
    const int pole = phiC < 0.0 ? -1 : 1;
    const double phi = pole * phiC; // the parallel seen from its own pole
    double k0 = 1.0;
    if (!(std::fabs(phiC) <= kPi / 2 + 1e-15)) {
        k0 = std::nan(""); // a parallel beyond the pole
    } else if (std::fabs(phi - kPi / 2) > 1e-15) {
        const double s = std::sin(phi);
        const double mc = std::cos(phi) / std::sqrt(1.0 - e * e * s * s);
        k0 = mc * EccentricityTerm(e) / (2.0 * CKvConformalLatitude::T(phi, e));
    }
    return AtPole(a, e, pole, k0 * scale, lambda0, falseEasting, falseNorthing);
}

void CKvPolarStereographicCore::Forward(double lambda, double phi, double* x, double* y) const
{
    // The other pole lies at infinity; t there would be the tangent of the rounded
    // right angle, a made-up 1.6e16.
    if (m_f.sign * phi <= -kHalfPi) {
        *x = *y = std::nan("");
        return;
    }
    // h = pi/4 - phi/2 seen from the pole lies in [0, pi/2] for every latitude
    // (NaN stays NaN), well within the kernel's range.
    const double h = kQuarterPi - m_f.sign * phi / 2;
    double sinH, cosH, versine;
    CKvMathKernel::SinCos(h, sinH, cosH, versine);
    const double z = m_f.e * ((cosH - sinH) * (cosH + sinH)); // e sin phi, sin phi = cos 2h
    const double tanH = sinH / cosH; // under way while the eccentricity term is summed
    // ((1 + e sin phi) / (1 - e sin phi))^(e/2) by its power series in e sin phi
    // for the eccentricities of the earth, else by pow.
    const double expU = m_f.expSeries ? CKvMathKernel::Estrin<ExpTerms>(z, m_f.exp)
                                    : std::pow((1.0 + z) / (1.0 - z), m_f.e / 2);
    const double rho = m_f.scaleTerm * tanH * expU;
    double sinDl, cosDl;
    CKvMathKernel::SinCosAny(lambda - m_f.lambda0, sinDl, cosDl);
    *x = m_f.FE + rho * sinDl;
    *y = m_f.FN - m_f.sign * rho * cosDl;
}

void CKvPolarStereographicCore::Inverse(double x, double y, double* lambda, double* phi) const
{
    const double dx = x - m_f.FE, dy = y - m_f.FN;
    const double t = std::sqrt(dx * dx + dy * dy) / m_f.scaleTerm;
    if (!(m_f.inverse.series && t <= LargestSeriesT)) {
        _inverseGeneral(dx, dy, lambda, phi);
        return;
    }
    // chi = pi/2 - 2A with A = atan t, so 2chi = pi - 4A: sin 2chi = sin 4A and
    // cos 2chi = -cos 4A, from sin 2A = 2t / (1 + t^2) and cos 2A = (1 - t^2) / (1 + t^2).
    const double t2 = t * t, inv = 1.0 / (1.0 + t2);
    const double sin2A = 2.0 * t * inv, cos2A = (1.0 - t2) * inv;
    const double sin2Chi = 2.0 * sin2A * cos2A, cos2Chi = 2.0 * sin2A * sin2A - 1.0;
    // phi = chi + (phi - chi) by Karney's series, within 1.2e-16 rad for the
    // figures it is made for (CKvConformalLatitude::SeriesLimit). It is summed as
    // the angle from the nearer pole, taken from pi/2 once at the end with pi/2's
    // rounding error added back: beyond the equator (t > 1) 2 atan t = pi -
    // 2 atan(1/t), so phi = -(pi/2 - 2 atan(1/t) - (phi - chi)). Near either pole
    // that angle is small and keeps its relative precision, so that the latitude
    // is left with the one rounding of the final difference.
    const double correction = CKvConformalLatitude::SeriesCorrection(m_f.inverse, sin2Chi, cos2Chi);
    const bool beyond = t > 1.0;
    const double hemisphere = beyond ? -1.0 : 1.0;
    const double atanNear = std::atan(beyond ? 1.0 / t : t);
    *phi = m_f.sign * hemisphere *
           (kHalfPi - 2.0 * (atanNear - 0.5 * (hemisphere * correction + kHalfPiLow)));
    *lambda = m_f.lambda0 + std::atan2(dx, -m_f.sign * dy);
}

void CKvPolarStereographicCore::_inverseGeneral(double dx, double dy, double* lambda, double* phi) const
{
    const double t = std::sqrt(dx * dx + dy * dy) / m_f.scaleTerm;
    // chi = pi/2 - 2 atan t, so tan chi = (1/t - t) / 2; then geodetic from conformal.
    const double tanChi = (1.0 / t - t) / 2.0;
    *phi = m_f.sign * std::atan(CKvConformalLatitude::Tau(tanChi, m_f.e));
    *lambda = m_f.lambda0 + std::atan2(dx, -m_f.sign * dy);
}

double CKvPolarStereographicCore::Convergence(double lambda) const
{
    // A map with no figures (see AtPole) has no grid to converge to either.
    if (!std::isfinite(m_f.scaleTerm))
        return std::nan("");
    return m_pole * std::remainder(lambda - m_f.lambda0, 2.0 * kPi);
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvPolarStereographicCore::SFigures, CKvPolarStereographicCore::Forward)
// The inverse's two arctangents, one quotient each (KVCART_ONE_QUOTIENT).
KVCART_ONE_QUOTIENT
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvPolarStereographicCore::SFigures, CKvPolarStereographicCore::Inverse)

} // namespace

void CKvPolarStereographicCore::ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n,
                                             const double* lon, std::size_t lonStride, const double* lat,
                                             std::size_t latStride, double* x, std::size_t xStride, double* y,
                                             std::size_t yStride)
{
    CKvBatch::ForEachFastBlock(ForwardBlock, f, f.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Geo2Proj(a, b, u, v); });
}

void CKvPolarStereographicCore::InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n,
                                             const double* x, std::size_t xStride, const double* y,
                                             std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                             std::size_t latStride)
{
    CKvBatch::ForEachFastBlock(InverseBlock, f, f.fastInverse, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Proj2Geo(a, b, u, v); });
}
