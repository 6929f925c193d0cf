#ifndef KVCART_PROJECTIONS_KVEQUALEARTH_H
#define KVCART_PROJECTIONS_KVEQUALEARTH_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Equal Earth (EPSG method 1078; B. Savric, T. Patterson, B. Jenny, "The Equal
// Earth map projection", IJGIS 33, 2019; IOGP Guidance Note 7-2): an equal-area
// pseudocylindrical world map. On the ellipsoid the geodetic latitude is first
// taken to the authalic latitude beta (sin beta = q / qP) on the sphere of equal
// area, radius Rq = a sqrt(qP / 2); on a sphere beta is the latitude and Rq the
// radius. With sin theta = (sqrt 3 / 2) sin beta and
//   P(theta) = theta (A1 + A2 theta^2 + theta^6 (A3 + A4 theta^2)),
//   E = FE + Rq (lambda - lambda0) cos theta / ((sqrt 3 / 2) P'(theta)),
//   N = FN + Rq P(theta),
// A1 = 1.340264, A2 = -0.081106, A3 = 0.000893, A4 = 0.003796. The inverse
// solves P(theta) = (N - FN) / Rq by Newton's method, as the guidance note does.
// Longitudes are reduced to within 180 degrees of the central meridian (the map
// has one edge, the antimeridian of its centre); the inverse of a point outside
// the map's outline is NaN.
class CKvEqualEarth : public CKvEngine<CKvEqualEarth, CKvMethodProjection<CKvEqualEarth>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (m).
    // An unknown figure, an eccentricity of 1 or more, or a parameter that is not
    // finite gives an engine whose every answer is NaN.
    CKvEqualEarth(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The direction of the meridian on the map, from the derivatives of E and N
    // along it; NaN for no point.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the equator's width and the poles' height.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // theta from the latitude in degrees (through the authalic latitude).
    double _theta(double lat) const;
    // sin theta and cos theta from the latitude in degrees.
    void _sinCosTheta(double lat, double* sinTheta, double* cosTheta) const;

    double m_lon0, m_FE, m_FN;
    double m_R; // Rq, the radius of the sphere of equal area (NaN: no map)
    bool m_ellipsoidal;
    bool m_kernel; // 0 < e <= CKvMathKernel::EccentricSinhLimit: q and its inverse by the inline kernels
    double m_invQPole, m_invR;
    double m_sinScale; // (sqrt 3 / 2) (1 - e^2) / qP: sin theta's numerator per sin phi
    CKvConformalLatitude::SAuthalic m_authalic;
};

#endif
