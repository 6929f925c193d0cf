#include "projections/KvConicVariant.h"
#include "projections/KvAngle.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvConicVariant::CKvConicVariant(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                 double falseNorthing, const CKvEllipsoid& ellipsoid)
    : m_a(ellipsoid.GetMajor()), m_invF(ellipsoid.GetInvFlatness()), m_lon0(lambda0), m_phi1(phi1 * kDeg),
      m_phi2(phi2 * kDeg), m_lambda0(lambda0 * kDeg), m_phi0(phi0 * kDeg), m_FE(falseEasting), m_FN(falseNorthing), m_lat0(phi0)
{
}

void CKvConicVariant::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvConicVariant::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double lon = m_lambda0 / kDeg, lat = m_phi0 / kDeg;
    Geo2Proj(lon - 3.0, std::max(lat - 3.0, -90.0), x1, y1);
    Geo2Proj(lon + 3.0, std::min(lat + 3.0, 90.0), x2, y2);
}

bool CKvConicVariant::GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const
{
    if (!(m_a > 0.0))
        return false;
    ellipsoid.SetParams(m_a, m_invF);
    return true;
}
