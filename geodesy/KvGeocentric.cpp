#include "geodesy/KvGeocentric.h"

#include "catalogue/KvEllipsoid.h"
#include "projections/KvAngle.h"

#include <cmath>
#include <limits>

namespace {
constexpr double kPi = CKvAngle::Pi;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
} // namespace

CKvGeocentric::CKvGeocentric() : m_a(kNaN), m_b(kNaN), m_f(kNaN), m_e2(kNaN), m_ep2(kNaN), m_minHeight(kNaN) {}

CKvGeocentric::CKvGeocentric(const CKvEllipsoid& ellipsoid) : CKvGeocentric()
{
    const double a = ellipsoid.GetMajor(), b = ellipsoid.GetMinor(), e = ellipsoid.GetEccentricity();
    // A figure of no size, of infinite size, or flattened to nothing has no
    // geocentric coordinates: the conversions stay NaN.
    if (!(std::isfinite(a) && a > 0.0 && b > 0.0 && b <= a && e < 1.0))
        return;
    m_a = a;
    m_b = b;
    m_f = ellipsoid.GetFlatness();
    m_e2 = e * e;
    m_ep2 = (a * a - b * b) / (b * b);
    m_minHeight = MinHeightOfMajorAxis * a;
}

CKvGeocentric CKvGeocentric::Wgs84()
{
    CKvEllipsoid wgs84;
    wgs84.SetParams(6378137.0, 298.257223563);
    return CKvGeocentric(wgs84);
}

void CKvGeocentric::Inverse(double X, double Y, double Z, double& lon, double& lat, double& h) const
{
    // Bowring, one step: the parametric latitude u from his 1985 start
    // tan u = (Z / p) ((1 - f) + e^2 a / r), then
    // tan phi = (Z + e'^2 b sin^3 u) / (p - e^2 a cos^3 u). Sines and cosines
    // come from the two tangents' numerators and denominators, so that the only
    // angles computed are the answers; on the polar axis (p = 0) cos u = 0
    // exactly and phi is +-90 by the sign of Z.
    const double p = std::sqrt(X * X + Y * Y);
    const double r = std::sqrt(p * p + Z * Z);
    const double t = Z * ((1.0 - m_f) + m_e2 * m_a / r);
    const double d = std::sqrt(t * t + p * p);
    const double sinU = t / d, cosU = p / d;
    const double north = Z + m_ep2 * m_b * sinU * sinU * sinU;
    const double east = p - m_e2 * m_a * cosU * cosU * cosU;
    const double q = std::sqrt(north * north + east * east);
    const double sinPhi = north / q, cosPhi = east / q;
    // The height along the normal, p cos phi + Z sin phi - a^2 / N: no division
    // by cos phi, which vanishes at the poles.
    const double height = p * cosPhi + Z * sinPhi - m_a * std::sqrt(1.0 - m_e2 * sinPhi * sinPhi);
    // Non-finite input ends here with an infinite or NaN height, the centre with
    // NaN, points beyond reach with a height out of the domain.
    if (!(height >= m_minHeight && height <= MaxHeight && cosPhi >= 0.0)) {
        lon = lat = h = kNaN;
        return;
    }
    h = height;
    lon = std::atan2(Y, X) * 180.0 / kPi;
    lat = std::atan2(north, east) * 180.0 / kPi;
}
