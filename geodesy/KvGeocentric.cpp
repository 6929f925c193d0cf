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
    double p, north, east, sinPhi, cosPhi;
    _bowring(X, Y, Z, p, north, east, sinPhi, cosPhi);
    const double height = _height(p, Z, sinPhi, cosPhi);
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
