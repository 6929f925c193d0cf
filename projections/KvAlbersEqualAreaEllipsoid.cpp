#include "projections/KvAlbersEqualAreaEllipsoid.h"

#include <cmath>

namespace {
double M(double e2, double phi)
{
    const double s = std::sin(phi);
    return std::cos(phi) / std::sqrt(1.0 - e2 * s * s);
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
