#include "projections/KvCassiniSoldnerSphere.h"
#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
constexpr double kToDegrees = 180.0 / 3.141592653589793;

// atan2 by atan of the quotient where the second argument is positive, the
// common case, where it is as exact and faster.
double Atan2(double y, double x)
{
    return x > 0.0 ? std::atan(y / x) : std::atan2(y, x);
}
} // namespace

CKvCassiniSoldnerSphere::CKvCassiniSoldnerSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
}

void CKvCassiniSoldnerSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    // Snyder's atan2(tan phi, cos dl) as atan2(sin phi, cos phi cos dl), cos phi
    // being positive: one sincos for each angle, no tangent.
    const double sinPhi = std::sin(phi), cosPhi = std::cos(phi), sdl = std::sin(dl), cdl = std::cos(dl);
    *x = m_FE + m_a * std::asin(cosPhi * sdl);
    *y = m_FN + m_a * (Atan2(sinPhi, cosPhi * cdl) - m_phi0);
}

void CKvCassiniSoldnerSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double xr = (x - m_FE) / m_a;
    const double D = (y - m_FN) / m_a + m_phi0;
    const double sinX = std::sin(xr), cosX = std::cos(xr), sinD = std::sin(D), cosD = std::cos(D);
    *lat = std::asin(sinD * cosX) * kToDegrees;
    // Snyder's atan2(tan xr, cos D) as atan2(sin xr, cos xr cos D) with both
    // arguments times |cos xr| (the same angle, also beyond |xr| = pi/2): one
    // sincos for each angle, no tangent.
    const double turn = std::copysign(1.0, cosX);
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(sinX * turn, std::fabs(cosX) * cosD)) * kToDegrees);
}
