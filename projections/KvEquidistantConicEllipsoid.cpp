#include "projections/KvEquidistantConicEllipsoid.h"

#include "projections/KvBatch.h"

#include <cmath>

namespace {
constexpr double kDeg = CKvAngle::Pi / 180.0;

using SFigures = CKvEquidistantConicEllipsoid::SFigures;

// Forward: the meridian distance from sin phi and cos phi, at d degrees from
// the central meridian. false: a latitude off the ellipsoid, not finite; the
// general formulas take those.
KVCART_ALWAYS_INLINE bool ForwardAt(const SFigures& f, double d, double lat, double& x, double& y)
{
    // sin phi and cos phi = sin(pi/2 - |phi|) by the series without reduction
    // (pi/2 - |phi| exact from 45 degrees on, by Sterbenz's lemma), and those of
    // 2 phi from them.
    const double phi = lat * kDeg;
    const double s = CKvMathKernel::SinHalfPi(phi), c = CKvMathKernel::SinHalfPi(1.5707963267948966 - std::fabs(phi));
    const double s2Phi = 2.0 * s * c, c2Phi = (c - s) * (c + s);
    const double rho = f.aG - CKvConformalLatitude::MeridianDistance(f.meridian, phi, s2Phi, c2Phi);
    const bool placed = CKvConicVariant::Place(f.cone, rho, d, x, y);
    return placed & (std::fabs(lat) <= 90.0);
}

// Inverse: the radius of the sign of n, its rectifying latitude, and the
// latitude of that by the inverse series of the meridian distance, with no
// Newton step. false: a latitude beyond the poles (which the general formulas
// set on the pole or refuse), a longitude to be reduced, not finite.
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    double rho2;
    const bool unplaced = CKvConicVariant::Unplace(f.cone, x, y, lon, rho2);
    const double mu = (f.aG - f.cone.sign * std::sqrt(rho2)) * f.footpoint.muPerDistance;
    lat = CKvConformalLatitude::MeridianLatitudeSeries(f.footpoint, mu) * (1.0 / kDeg);
    return unplaced & (std::fabs(mu) <= 1.5707963267948966) & (std::fabs(lat) <= 90.0);
}
} // namespace

CKvEquidistantConicEllipsoid::CKvEquidistantConicEllipsoid(double phi1, double phi2, double lambda0, double phi0,
                                                           double falseEasting, double falseNorthing,
                                                           const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_meridian(CKvConformalLatitude::MakeMeridian(m_a, ellipsoid.GetEccentricity() * ellipsoid.GetEccentricity()))
{
    const double e2 = m_meridian.e2;
    auto m = [e2](double phi) {
        const double s = std::sin(phi);
        return std::cos(phi) / std::sqrt(1.0 - e2 * s * s);
    };
    const double m1 = m(m_phi1), m2 = m(m_phi2);
    const double n = m_phi1 == m_phi2 ? std::sin(m_phi1) : m_a * (m1 - m2) / (_meridian(m_phi2) - _meridian(m_phi1));
    m_G = m1 / n + _meridian(m_phi1) / m_a;
    _setCone(n, m_a * m_G - _meridian(m_phi0));

    SFigures& f = m_fast;
    f.cone = m_cone;
    f.meridian = m_meridian;
    f.aG = m_a * m_G;
    // The kernels hold for the eccentricities of the earth (e^2 <= 0.01).
    f.footpoint = CKvConformalLatitude::MakeMeridianInverse(m_meridian);
    f.fastForward = m_cone.finite && e2 > 0.0 && e2 <= 0.01 && std::isfinite(f.aG);
    f.fastInverse = f.fastForward && f.footpoint.series;
}

double CKvEquidistantConicEllipsoid::_meridian(double phi) const
{
    return CKvConformalLatitude::MeridianDistance(m_meridian, phi);
}

double CKvEquidistantConicEllipsoid::_latitude(double rho) const
{
    // The meridian distance of the radius, and its latitude to the series' own
    // M (the footpoint series, then Newton's step on M).
    return CKvConformalLatitude::MeridianLatitude(m_meridian, m_a * m_G - rho);
}

KVCART_DEFINE_CONIC_FAST_CALLS(CKvEquidistantConicEllipsoid)
