#include "projections/KvEquidistantConicEllipsoid.h"

#include <cmath>

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
