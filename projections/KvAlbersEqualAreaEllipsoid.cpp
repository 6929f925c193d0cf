#include "projections/KvAlbersEqualAreaEllipsoid.h"

#include "catalogue/KvMapProjData.h"

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
      m_e(ellipsoid.GetEccentricity()), m_e2(m_e * m_e)
{
    const double m1 = M(m_e2, m_phi1), m2 = M(m_e2, m_phi2);
    const double q1 = _q(m_phi1), q2 = _q(m_phi2);
    const double n = (m1 * m1 - m2 * m2) / (q2 - q1);
    m_C = m1 * m1 + n * q1;
    m_c[3] = 0.0;
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eAlbersEqualArea, false, m_e2, m_c);
    m_qPole = 1.0 - (1.0 - m_e2) / (2.0 * m_e) * std::log((1.0 - m_e) / (1.0 + m_e));
    _setCone(n, m_a * std::sqrt(m_C - n * _q(m_phi0)) / n);
}

double CKvAlbersEqualAreaEllipsoid::_q(double phi) const
{
    const double s = std::sin(phi);
    return (1.0 - m_e2) * (s / (1.0 - m_e2 * s * s) - std::log((1.0 - m_e * s) / (1.0 + m_e * s)) / (2.0 * m_e));
}

double CKvAlbersEqualAreaEllipsoid::_rho(double phi) const
{
    return m_a * std::sqrt(m_C - m_n * _q(phi)) / m_n;
}

double CKvAlbersEqualAreaEllipsoid::_latitude(double rho) const
{
    const double q = (m_C - rho * rho * m_n * m_n / (m_a * m_a)) / m_n;
    const double beta = std::asin(q / m_qPole);
    return beta + m_c[0] * std::sin(2 * beta) + m_c[1] * std::sin(4 * beta) + m_c[2] * std::sin(6 * beta);
}
