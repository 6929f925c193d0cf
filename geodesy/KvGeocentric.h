#ifndef KVCART_GEODESY_KVGEOCENTRIC_H
#define KVCART_GEODESY_KVGEOCENTRIC_H

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

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

    // The two conversions by the math kernels for a datum shift's geocentric
    // step, which moves a point by seconds of arc: plain arithmetic without a
    // branch, so that a vectorized block loop and a single call give the same
    // bits. Each returns whether its answer holds; where it does not (outside
    // the domain, a longitude beyond +-180, an angle beyond the series' reach)
    // the outputs are of no use and Forward and Inverse answer instead.

    // A point's angles as ForwardKernel took them, for InverseNear.
    struct SAngles
    {
        double lon, lat; // degrees
        double sinPhi, cosPhi, sinLambda, cosLambda;
    };
    // Forward for a longitude within +-180, with CKvMathKernel::SinCos for the
    // sines and cosines (|angle| <= pi, well within its reach). The
    // antimeridian is one meridian: -180 is taken as 180 (plus 360 times the
    // test, a product where a select would keep the loop from vectorizing), so
    // that every longitude of it gives one answer.
    KVCART_ALWAYS_INLINE bool ForwardKernel(double lon, double lat, double h, double& X, double& Y, double& Z,
                                            SAngles& angles) const
    {
        lon += 360.0 * static_cast<double>(lon == -180.0);
        const double phi = lat * CKvAngle::Pi / 180.0, lambda = lon * CKvAngle::Pi / 180.0;
        double sinPhi, cosPhi, sinLambda, cosLambda, versine;
        CKvMathKernel::SinCos(phi, sinPhi, cosPhi, versine);
        CKvMathKernel::SinCos(lambda, sinLambda, cosLambda, versine);
        const double N = m_a / std::sqrt(1.0 - m_e2 * sinPhi * sinPhi);
        X = (N + h) * cosPhi * cosLambda;
        Y = (N + h) * cosPhi * sinLambda;
        Z = (N * (1.0 - m_e2) + h) * sinPhi;
        angles = SAngles{lon, lat, sinPhi, cosPhi, sinLambda, cosLambda};
        return (std::fabs(lon) <= 180.0) & (std::fabs(lat) <= 90.0) & (h >= m_minHeight) & (h <= MaxHeight);
    }
    // Inverse for a point near the one `near` describes: Bowring as in
    // Inverse, then the latitude and the longitude as near's plus the small
    // angles between the directions, atan of the tangents of the differences
    // (the sine and cosine of phi - phi0 from those of phi and phi0, likewise
    // for lambda) by CKvMathKernel::AtanSeries instead of two full atan2.
    KVCART_ALWAYS_INLINE bool InverseNear(double X, double Y, double Z, const SAngles& near, double& lon, double& lat,
                                          double& h) const
    {
        double p, north, east, sinPhi, cosPhi;
        _bowring(X, Y, Z, p, north, east, sinPhi, cosPhi);
        h = _height(p, Z, sinPhi, cosPhi);
        const double numPhi = north * near.cosPhi - east * near.sinPhi;
        const double denPhi = east * near.cosPhi + north * near.sinPhi;
        const double numLambda = Y * near.cosLambda - X * near.sinLambda;
        const double denLambda = X * near.cosLambda + Y * near.sinLambda;
        const double tPhi = numPhi / denPhi, tLambda = numLambda / denLambda;
        constexpr double DegreesPerRadian = 180.0 / CKvAngle::Pi;
        lat = near.lat + CKvMathKernel::AtanSeries(tPhi) * DegreesPerRadian;
        // A step across the antimeridian comes back to [-180, 180] as atan2's
        // longitude lies (the sum and 360 share their binade's spacing: exact).
        const double lonOut = near.lon + CKvMathKernel::AtanSeries(tLambda) * DegreesPerRadian;
        lon = lonOut > 180.0 ? lonOut - 360.0 : lonOut < -180.0 ? lonOut + 360.0 : lonOut;
        // Inverse's domain (east >= 0 is cos phi >= 0), the two differences
        // within the series' reach and on the near side (positive cosines),
        // and no step across a pole.
        return (h >= m_minHeight) & (h <= MaxHeight) & (east >= 0.0) & (denPhi > 0.0) & (denLambda > 0.0) &
               (std::fabs(tPhi) <= CKvMathKernel::AtanSmallLimit) &
               (std::fabs(tLambda) <= CKvMathKernel::AtanSmallLimit) & (std::fabs(lat) <= 90.0);
    }

private:
    // Bowring, one step: the parametric latitude u from his 1985 start
    // tan u = (Z / p) ((1 - f) + e^2 a / r), then
    // tan phi = (Z + e'^2 b sin^3 u) / (p - e^2 a cos^3 u) as north / east.
    // Sines and cosines come from the two tangents' numerators and
    // denominators, so that the only angles computed are the answers; on the
    // polar axis (p = 0) cos u = 0 exactly and phi is +-90 by the sign of Z.
    KVCART_ALWAYS_INLINE void _bowring(double X, double Y, double Z, double& p, double& north, double& east,
                                       double& sinPhi, double& cosPhi) const
    {
        p = std::sqrt(X * X + Y * Y);
        const double r = std::sqrt(p * p + Z * Z);
        const double t = Z * ((1.0 - m_f) + m_e2 * m_a / r);
        const double d = std::sqrt(t * t + p * p);
        const double sinU = t / d, cosU = p / d;
        north = Z + m_ep2 * m_b * sinU * sinU * sinU;
        east = p - m_e2 * m_a * cosU * cosU * cosU;
        const double q = std::sqrt(north * north + east * east);
        sinPhi = north / q;
        cosPhi = east / q;
    }
    // The height along the normal, p cos phi + Z sin phi - a^2 / N: no
    // division by cos phi, which vanishes at the poles.
    KVCART_ALWAYS_INLINE double _height(double p, double Z, double sinPhi, double cosPhi) const
    {
        return p * cosPhi + Z * sinPhi - m_a * std::sqrt(1.0 - m_e2 * sinPhi * sinPhi);
    }
    void _setFigure(double a, double inverseFlattening);

    double m_a;         // semi-major axis
    double m_b;         // semi-minor axis
    double m_f;         // flattening
    double m_e2;        // first eccentricity squared
    double m_ep2;       // second eccentricity squared
    double m_minHeight; // MinHeightOfMajorAxis * a
};

#endif
