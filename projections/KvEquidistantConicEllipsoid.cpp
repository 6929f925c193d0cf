#include "projections/KvEquidistantConicEllipsoid.h"

#include "catalogue/KvMapProjData.h"

#include <cmath>

CKvEquidistantConicEllipsoid::CKvEquidistantConicEllipsoid(double phi1, double phi2, double lambda0, double phi0,
                                                           double falseEasting, double falseNorthing,
                                                           const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_e2(ellipsoid.GetEccentricity() * ellipsoid.GetEccentricity())
{
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eEquidistantConic, true, m_e2, m_M);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eEquidistantConic, false, m_e2, m_F);
    auto m = [this](double phi) {
        const double s = std::sin(phi);
        return std::cos(phi) / std::sqrt(1.0 - m_e2 * s * s);
    };
    const double m1 = m(m_phi1), m2 = m(m_phi2);
    const double n = m_phi1 == m_phi2 ? std::sin(m_phi1) : m_a * (m1 - m2) / (_meridian(m_phi2) - _meridian(m_phi1));
    m_G = m1 / n + _meridian(m_phi1) / m_a;
    _setCone(n, m_a * m_G - _meridian(m_phi0));
}

double CKvEquidistantConicEllipsoid::_meridian(double phi) const
{
    return m_a * (m_M[0] * phi - m_M[1] * std::sin(2 * phi) + m_M[2] * std::sin(4 * phi) - m_M[3] * std::sin(6 * phi));
}

double CKvEquidistantConicEllipsoid::_latitude(double rho) const
{
    const double e4 = m_e2 * m_e2;
    const double mu = (m_a * m_G - rho) / (m_a * (1.0 - m_e2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e4 * m_e2 / 256.0));
    return mu + m_F[0] * std::sin(2 * mu) + m_F[1] * std::sin(4 * mu) + m_F[2] * std::sin(6 * mu) +
           m_F[3] * std::sin(8 * mu);
}
