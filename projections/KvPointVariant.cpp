#include "projections/KvPointVariant.h"

#include <algorithm>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvPointVariant::CKvPointVariant(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                 const CKvEllipsoid& ellipsoid)
    : m_a(ellipsoid.GetMajor()), m_invF(ellipsoid.GetInvFlatness()), m_e(ellipsoid.GetEccentricity()), m_e2(m_e * m_e),
      m_lon0(lambda0), m_lat0(phi0), m_lambda0(lambda0 * kDeg), m_phi0(phi0 * kDeg), m_FE(falseEasting),
      m_FN(falseNorthing)
{
}

void CKvPointVariant::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvPointVariant::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double lon = m_lon0, lat = m_lat0;
    Geo2Proj(std::max(lon - 3.0, -180.0), std::max(lat - 3.0, -90.0), x1, y1);
    Geo2Proj(std::min(lon + 3.0, 180.0), std::min(lat + 3.0, 90.0), x2, y2);
}

bool CKvPointVariant::GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const
{
    if (!(m_a > 0.0))
        return false;
    ellipsoid.SetParams(m_a, m_invF);
    return true;
}
