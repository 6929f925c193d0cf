#ifndef KVCART_GEODESY_KVGEOCENTRIC_H
#define KVCART_GEODESY_KVGEOCENTRIC_H

#include "projections/KvAngle.h"

#include <cmath>

class CKvEllipsoid;

// Geodetic coordinates (longitude and latitude in degrees, ellipsoidal height in
// metres) and geocentric ones (X, Y, Z in metres) on one ellipsoid. Forward by
// the radius of curvature in the prime vertical, inverse by one step of
// Bowring's method from the parametric latitude (his 1985 starting value, which
// holds far from the ellipsoid too), the height measured along the normal in
// the form that holds at the poles (EPSG Guidance Note 7-2, 2.2.1). Immutable
// and allocation-free: the datum converter runs it per point.
//
// The domain, outside which every output is NaN (never a point made up):
// - a latitude within [-90, 90] and a finite longitude (of any size: 540 is a
//   longitude);
// - a height from a quarter of the semi-major axis below the ellipsoid to 1e12 m
//   above it. Below, a point nears the centre, where the normals of the
//   meridian ellipse cross (within e^2 a of it) and one Bowring step no longer
//   holds the millimetre; on Earth's figures it stays within 0.01 mm down to the
//   bound, some 1 600 km deep, beyond any geodetic use. Above 2^43 m (8.8e12 m)
//   neighbouring doubles lie more than a millimetre apart and the geocentric
//   coordinates no longer carry a datum shift to the millimetre; 1e12 m keeps
//   0.12 mm. Heights of 1e308 or infinite ones, and with them geocentric
//   coordinates of 1e308, fall outside (PROJ answers them with NaN or with
//   values of no use).
// The inverse gives NaN for geocentric coordinates of no such height, which
// includes every non-finite one and the centre; the polar axis (X = Y = 0) is
// a pole, north or south by the sign of Z.
class CKvGeocentric
{
public:
    // The highest height of the domain, metres.
    static constexpr double MaxHeight = 1e12;
    // The lowest, as a fraction of the semi-major axis.
    static constexpr double MinHeightOfMajorAxis = -0.25;

    // No figure: every conversion gives NaN.
    CKvGeocentric();
    // The ellipsoid's figure; none (NaN) unless the semi-major axis is finite
    // and positive and the eccentricity below 1.
    explicit CKvGeocentric(const CKvEllipsoid& ellipsoid);
    static CKvGeocentric Wgs84();

    bool HasFigure() const { return m_a > 0.0; }
    // Inline: the datum converter and the coordinate-system object run it per point.
    void Forward(double lon, double lat, double h, double& X, double& Y, double& Z) const
    {
        // A longitude beyond +-180 is brought onto the globe in degrees first, by
        // the exact remainder (NaN for NaN and infinities): 1e308 times pi would
        // overflow, and a radian angle of that size has lost its meridian.
        const double lonOnGlobe = std::fabs(lon) <= 180.0 ? lon : CKvAngle::ReduceLongitudeDegrees(lon);
        // One test for the whole domain: NaN fails every comparison, and without
        // a figure the lowest height is NaN.
        if (!(CKvAngle::IsLatitude(lat) && h >= m_minHeight && h <= MaxHeight && lonOnGlobe == lonOnGlobe)) {
            X = Y = Z = std::nan("");
            return;
        }
        const double phi = lat * CKvAngle::Pi / 180.0, lambda = lonOnGlobe * CKvAngle::Pi / 180.0;
        const double sinPhi = std::sin(phi), cosPhi = std::cos(phi);
        const double N = m_a / std::sqrt(1.0 - m_e2 * sinPhi * sinPhi);
        X = (N + h) * cosPhi * std::cos(lambda);
        Y = (N + h) * cosPhi * std::sin(lambda);
        Z = (N * (1.0 - m_e2) + h) * sinPhi;
    }
    void Inverse(double X, double Y, double Z, double& lon, double& lat, double& h) const;

private:
    void _setFigure(double a, double inverseFlattening);

    double m_a;         // semi-major axis
    double m_b;         // semi-minor axis
    double m_f;         // flattening
    double m_e2;        // first eccentricity squared
    double m_ep2;       // second eccentricity squared
    double m_minHeight; // MinHeightOfMajorAxis * a
};

#endif
