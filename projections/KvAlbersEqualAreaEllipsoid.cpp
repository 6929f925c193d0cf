#include "projections/KvAlbersEqualAreaEllipsoid.h"

#include "projections/KvBatch.h"

#include <cmath>

namespace {
double M(double e2, double phi)
{
    const double s = std::sin(phi);
    return std::cos(phi) / std::sqrt(1.0 - e2 * s * s);
}

constexpr double kDeg = CKvAngle::Pi / 180.0;

using SFigures = CKvAlbersEqualAreaEllipsoid::SFigures;

// Forward: q of the latitude by the authalic kernel on the sine taken without
// reduction, at d degrees from the central meridian. false: a latitude off
// the ellipsoid, a radicand below 0 (a pole beyond the cone's reach), not
// finite; the general formulas take those.
KVCART_ALWAYS_INLINE bool ForwardAt(const SFigures& f, double d, double lat, double& x, double& y)
{
    const double q = CKvConformalLatitude::AuthalicQKernel(f.authalic, CKvMathKernel::SinHalfPi(lat * kDeg));
    const double radicand = f.C - f.cone.n * q;
    const double rho = f.aOverN * std::sqrt(radicand);
    const bool placed = CKvConicVariant::Place(f.cone, rho, d, x, y);
    return placed & (std::fabs(lat) <= 90.0) & (radicand >= 0.0);
}

// Inverse: sin beta from the squared radius, with no square root, and the
// latitude by the authalic kernel. false: within a degree of the poles (where
// the general formulas set a rounding overshoot on the pole), off the map, a
// longitude to be reduced, not finite.
constexpr double kFastSinBeta = 0.9998; // 88.85 degrees
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    double rho2;
    const bool unplaced = CKvConicVariant::Unplace(f.cone, x, y, lon, rho2);
    const double sinBeta = f.sinBetaApex - rho2 * f.sinBetaPerRho2;
    lat = CKvConformalLatitude::AuthalicLatitudeKernel(f.authalic, sinBeta) * (1.0 / kDeg);
    return unplaced & (std::fabs(sinBeta) <= kFastSinBeta);
}
} // namespace

CKvAlbersEqualAreaEllipsoid::CKvAlbersEqualAreaEllipsoid(double phi1, double phi2, double lambda0, double phi0,
                                                         double falseEasting, double falseNorthing,
                                                         const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_authalic(CKvConformalLatitude::MakeAuthalic(ellipsoid.GetEccentricity()))
{
    const double e2 = m_authalic.e2;
    const double m1 = M(e2, m_phi1), m2 = M(e2, m_phi2);
    const double q1 = _q(m_phi1), q2 = _q(m_phi2);
    const double n = (m1 * m1 - m2 * m2) / (q2 - q1);
    m_C = m1 * m1 + n * q1;
    _setCone(n, m_a * std::sqrt(m_C - n * _q(m_phi0)) / n);

    SFigures& f = m_fast;
    f.cone = m_cone;
    f.authalic = m_authalic;
    f.C = m_C;
    f.aOverN = m_a / n;
    f.sinBetaApex = m_C / (n * m_authalic.qPole);
    f.sinBetaPerRho2 = n / (m_a * m_a * m_authalic.qPole);
    // The kernels hold for the eccentricities of the earth.
    const double e = m_authalic.e;
    f.fastForward = m_cone.finite && e > 0.0 && e <= CKvMathKernel::EccentricSinhLimit && std::isfinite(f.C) &&
                    std::isfinite(f.aOverN);
    f.fastInverse = f.fastForward && std::isfinite(f.sinBetaApex) && std::isfinite(f.sinBetaPerRho2);
}

double CKvAlbersEqualAreaEllipsoid::_q(double phi) const
{
    return CKvConformalLatitude::AuthalicQ(m_authalic, std::sin(phi));
}

double CKvAlbersEqualAreaEllipsoid::_rho(double phi) const
{
    return m_a * std::sqrt(m_C - m_n * _q(phi)) / m_n;
}

double CKvAlbersEqualAreaEllipsoid::_latitude(double rho) const
{
    return CKvConformalLatitude::AuthalicLatitude(m_authalic, (m_C - rho * rho * m_n * m_n / (m_a * m_a)) / m_n);
}

KVCART_DEFINE_CONIC_FAST_CALLS(CKvAlbersEqualAreaEllipsoid)
