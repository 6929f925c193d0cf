#include "projections/KvAlbersEqualAreaSphere.h"

#include "projections/KvBatch.h"

#include <cmath>

namespace {
constexpr double kDeg = CKvAngle::Pi / 180.0;

using SFigures = CKvAlbersEqualAreaSphere::SFigures;

// Forward: the sine of the latitude without reduction, at d degrees from the
// central meridian. false: a latitude off the sphere, a radicand below 0, not
// finite; the general formulas take those.
KVCART_ALWAYS_INLINE bool ForwardAt(const SFigures& f, double d, double lat, double& x, double& y)
{
    const double radicand = f.C - f.twoN * CKvMathKernel::SinHalfPi(lat * kDeg);
    const double rho = f.aOverN * std::sqrt(radicand);
    const bool placed = CKvConicVariant::Place(f.cone, rho, d, x, y);
    return placed & (std::fabs(lat) <= 90.0) & (radicand >= 0.0);
}

// Inverse: sin phi from the squared radius, with no square root, and asin by
// the kernel. false: off the map (|sin phi| > 1), a longitude to be reduced,
// not finite. The kernel's asin is never beyond pi/2, which gives 90 degrees
// exactly: the points kept are within the engine's inverse guard as they are.
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    double rho2;
    const bool unplaced = CKvConicVariant::Unplace(f.cone, x, y, lon, rho2);
    const double sinPhi = f.sinPhiApex - rho2 * f.sinPhiPerRho2;
    lat = CKvMathKernel::Asin(sinPhi) * (1.0 / kDeg);
    return unplaced & (std::fabs(sinPhi) <= 1.0);
}
} // namespace

CKvAlbersEqualAreaSphere::CKvAlbersEqualAreaSphere(double phi1, double phi2, double lambda0, double phi0,
                                                   double falseEasting, double falseNorthing,
                                                   const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    const double n = (std::sin(m_phi1) + std::sin(m_phi2)) / 2.0;
    m_C = std::cos(m_phi1) * std::cos(m_phi1) + 2.0 * n * std::sin(m_phi1);
    _setCone(n, m_a * std::sqrt(m_C - 2.0 * n * std::sin(m_phi0)) / n);

    SFigures& f = m_fast;
    f.cone = m_cone;
    f.C = m_C;
    f.twoN = 2.0 * n;
    f.aOverN = m_a / n;
    f.sinPhiApex = m_C / (2.0 * n);
    f.sinPhiPerRho2 = n / (2.0 * m_a * m_a);
    f.fastForward = f.fastInverse = m_cone.finite && m_a > 0.0 && std::isfinite(f.C) && std::isfinite(f.aOverN) &&
                                    std::isfinite(f.sinPhiApex) && std::isfinite(f.sinPhiPerRho2);
}

double CKvAlbersEqualAreaSphere::_rho(double phi) const
{
    return m_a * std::sqrt(m_C - 2.0 * m_n * std::sin(phi)) / m_n;
}

double CKvAlbersEqualAreaSphere::_latitude(double rho) const
{
    const double r = rho * m_n / m_a;
    return std::asin((m_C - r * r) / (2.0 * m_n));
}

KVCART_DEFINE_CONIC_FAST_CALLS(CKvAlbersEqualAreaSphere)
