#ifndef KVCART_GEODESY_KVGEODESIC_H
#define KVCART_GEODESY_KVGEODESIC_H

#include "catalogue/KvEllipsoid.h"

// Geodesics on one ellipsoid of revolution by Karney's method (C. F. F. Karney,
// "Algorithms for geodesics", J. Geodesy 87 (2013) 43-55, and its addenda).
//
// The geodesic is mapped onto the auxiliary sphere of reduced latitudes, where
// the distance and the longitude are the integrals I1 and I3 of the arc sigma.
// They are summed from their series in the third flattening n = f / (2 - f)
// and in eps = (sqrt(1 + k^2) - 1) / (sqrt(1 + k^2) + 1), k = e' cos(alpha0),
// to sixth order: the truncation error is of order n^7, far below round-off for
// the earth's flattening (the series are those of the paper, checked against a
// symbolic expansion of the integrals).
//
// The inverse problem is solved for the azimuth alpha1 at the first point, which
// fixes the azimuth alpha0 of the geodesic at the equator: Newton's method on
// lambda12(alpha1) - lambda12, whose derivative is the reduced length m12 over
// a cos(alpha2) cos(beta2). It starts from the spherical solution, or, for
// nearly antipodal points, from the astroid that the geodesics from the first
// point envelop near its antipode; the root stays bracketed, and a step that
// would leave the bracket is a bisection instead, so every pair of points
// converges, antipodal and polar ones included, within a bounded number of
// evaluations. Nothing is allocated per call.
//
// Supported figures: the sphere and oblate ellipsoids with 0 <= f <= 1/10. The
// distances agree with GeographicLib's exact solution (elliptic integrals) to
// round-off up to f = 1/50; the truncated series leave 5 um at f = 1/20 and
// 1 mm at f = 1/10 (all the library's ellipsoids are near 1/300). Prolate
// ellipsoids (f < 0) are not supported: such an object is not valid and
// answers NaN.
//
// Conventions as GeographicLib's: the azimuth at a pole is taken as the limit
// from the side of the meridian of the longitude given; coincident points have
// distance 0 and the azimuths of the meridian; of two shortest geodesics (points
// on the equator beyond the reach of the equatorial line, points antipodal in
// latitude on opposite meridians) the one leaving the first point northward.
class CKvGeodesic
{
public:
    explicit CKvGeodesic(const CKvEllipsoid& ellipsoid);
    // a in metres, f the flattening (0 for a sphere).
    CKvGeodesic(double semiMajorAxis, double flattening);
    virtual ~CKvGeodesic() = default;

    // A finite positive semi-major axis and a flattening in [0, 1/10].
    bool IsValid() const { return m_valid; }
    double GetMajor() const { return m_a; }
    double GetFlattening() const { return m_f; }

    // Inverse problem: the shortest geodesic from (lon1, lat1) to (lon2, lat2),
    // degrees, longitude first. Writes its length in metres and the forward
    // azimuths at both ends (the direction of travel at the second point), in
    // degrees clockwise from north within (-180, 180]. Longitudes of any finite
    // size are reduced exactly. False, with NaN in all three outputs, for a
    // latitude outside [-90, 90], a longitude or latitude that is NaN or
    // infinite, or an object that is not valid.
    bool Inverse(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth1,
                 double& azimuth2) const;

    // Direct problem: from (lon1, lat1) along the azimuth azimuth1 (degrees
    // clockwise from north) for distance metres, which may be negative (then
    // backwards) or longer than half a meridian (the geodesic goes on round
    // the ellipsoid). Writes the end point, its longitude in [-180, 180], and
    // the forward azimuth there. The arc is found from the distance by the
    // reverted series of I1 (Karney 2013, eq. 21), with one Newton step on the
    // distance for flattenings beyond 1/100. False, with NaN in all three
    // outputs, for a point that is none, an azimuth or a distance that is not
    // finite, or an object that is not valid.
    bool Direct(double lon1, double lat1, double azimuth1, double distance, double& lon2, double& lat2,
                double& azimuth2) const;

    // The number of evaluations of lambda12 that the last Inverse on this thread
    // needed (0 for the meridional and equatorial cases, which need none); for
    // tests of the iteration's bound.
    static int GetLastEvaluations();

private:
    struct SPair;
    struct SEvaluation;

    // The starting azimuth at the first point (sine and cosine, normalized).
    void _start(const SPair& pair, double& salp1, double& calp1) const;
    // lambda12(alpha1) - lambda12 and the quantities of the geodesic it needs.
    void _evaluate(const SPair& pair, double salp1, double calp1, bool derivative, SEvaluation& e) const;
    // The distance s12 / b and the reduced length m12 / b between sigma1 and sigma2.
    void _lengths(double eps, double sig12, double ssig1, double csig1, double dn1, double ssig2, double csig2,
                  double dn2, double* s12b, double* m12b) const;
    // A3(eps) and the coefficients C3l(eps), l = 1..5, of the longitude integral.
    double _a3(double eps) const;
    void _c3(double eps, double* c) const;

    bool m_valid;
    double m_a;    // semi-major axis
    double m_f;    // flattening
    double m_f1;   // 1 - f
    double m_b;    // semi-minor axis
    double m_e2;   // first eccentricity squared
    double m_ep2;  // second eccentricity squared
    double m_n;    // third flattening
    double m_a3x[6];    // A3 as a polynomial in eps, its coefficients in n evaluated
    double m_c3x[5][6]; // C3l, l = 1..5, as polynomials in eps
};

#endif
