#include "projections/KvEquidistantConicSphere.h"

#include <cmath>

CKvEquidistantConicSphere::CKvEquidistantConicSphere(double phi1, double phi2, double lambda0, double phi0,
                                                     double falseEasting, double falseNorthing,
                                                     const CKvEllipsoid& ellipsoid)
    : CKvConicVariantT(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    // Equal parallels make the tangent cone, without dividing by their difference.
    const double n = m_phi1 == m_phi2 ? std::sin(m_phi1) : (std::cos(m_phi1) - std::cos(m_phi2)) / (m_phi2 - m_phi1);
    m_G = std::cos(m_phi1) / n + m_phi1;
    _setCone(n, m_a * (m_G - m_phi0));
}
