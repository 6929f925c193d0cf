#include "projections/KvEquidistantConicSphere.h"

#include "projections/KvBatch.h"

#include <cmath>

namespace {
constexpr double kDeg = CKvAngle::Pi / 180.0;

using SFigures = CKvEquidistantConicSphere::SFigures;

// Forward at d degrees from the central meridian. false: a latitude off the
// sphere, not finite; the general formulas take those.
KVCART_ALWAYS_INLINE bool ForwardAt(const SFigures& f, double d, double lat, double& x, double& y)
{
    const double rho = f.a * (f.G - lat * kDeg);
    const bool placed = CKvConicVariant::Place(f.cone, rho, d, x, y);
    return placed & (std::fabs(lat) <= 90.0);
}

// Inverse: lat = G - rho / a, in degrees, with the sign of n taken into the
// factor. false: a latitude beyond the poles, a longitude to be reduced, not
// finite.
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    double rho2;
    const bool unplaced = CKvConicVariant::Unplace(f.cone, x, y, lon, rho2);
    lat = f.GDegrees - std::sqrt(rho2) * f.degreesPerDistance;
    return unplaced & (std::fabs(lat) <= 90.0);
}
} // namespace

CKvEquidistantConicSphere::CKvEquidistantConicSphere(double phi1, double phi2, double lambda0, double phi0,
                                                     double falseEasting, double falseNorthing,
                                                     const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    // Equal parallels make the tangent cone, without dividing by their difference.
    const double n = m_phi1 == m_phi2 ? std::sin(m_phi1) : (std::cos(m_phi1) - std::cos(m_phi2)) / (m_phi2 - m_phi1);
    m_G = std::cos(m_phi1) / n + m_phi1;
    _setCone(n, m_a * (m_G - m_phi0));

    SFigures& f = m_fast;
    f.cone = m_cone;
    f.a = m_a;
    f.G = m_G;
    f.GDegrees = m_G * (180.0 / CKvAngle::Pi);
    f.degreesPerDistance = m_cone.sign * 180.0 / (CKvAngle::Pi * m_a);
    f.fastForward = f.fastInverse =
        m_cone.finite && m_a > 0.0 && std::isfinite(f.GDegrees) && std::isfinite(f.degreesPerDistance);
}

KVCART_DEFINE_CONIC_FAST_CALLS(CKvEquidistantConicSphere)
