#include "projections/KvAlbersEqualAreaSphere.h"

#include <cmath>

CKvAlbersEqualAreaSphere::CKvAlbersEqualAreaSphere(double phi1, double phi2, double lambda0, double phi0,
                                                   double falseEasting, double falseNorthing,
                                                   const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    const double n = (std::sin(m_phi1) + std::sin(m_phi2)) / 2.0;
    m_C = std::cos(m_phi1) * std::cos(m_phi1) + 2.0 * n * std::sin(m_phi1);
    _setCone(n, m_a * std::sqrt(m_C - 2.0 * n * std::sin(m_phi0)) / n);
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
