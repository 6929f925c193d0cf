#ifndef KVCART_PROJECTIONS_KVMOLLWEIDE_H
#define KVCART_PROJECTIONS_KVMOLLWEIDE_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Mollweide's equal-area pseudocylindrical world map (Snyder, "Map Projections:
// A Working Manual", USGS PP 1395, 1987, pp. 249-252): the whole sphere inside an
// ellipse of axes 2:1,
//   E = FE + (2 sqrt 2 / pi) R (lambda - lambda0) cos theta,
//   N = FN + sqrt 2 R sin theta,   2 theta + sin 2 theta = pi sin phi
// (Snyder's eqs. 31-1 to 31-3). theta is found by Newton's method; near the poles,
// where the equation has a double root and the iteration in theta slows to a
// crawl, on v = pi - 2|theta| from its cubic start, v - sin v = pi (1 - sin|phi|),
// so that the meridians meet exactly at the poles. The inverse is closed
// (eqs. 31-6 to 31-8). The method is defined on the sphere only: on an ellipsoid
// the geodetic latitude is used on the sphere of radius a, as PROJ and ESRI do.
// The inverse of a point outside the ellipse is NaN.
class CKvMollweide : public CKvEngine<CKvMollweide, CKvMethodProjection<CKvMollweide>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (m).
    // An unknown figure or a parameter that is not finite gives an engine whose
    // every answer is NaN.
    CKvMollweide(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // tan gamma = (2 / pi) (lambda - lambda0) tan theta, from the derivatives of E
    // and N along the meridian; +-90 degrees at a pole off the central meridian,
    // where the meridians meet; NaN for no point.
    double GetConvergence(double lon, double lat) const override;
    // The ellipse's box: 2 sqrt 2 R each side of the centre, sqrt 2 R up and down.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // sin theta and cos theta of a latitude in degrees.
    static void _theta(double lat, double* sinTheta, double* cosTheta);

    double m_lon0, m_FE, m_FN;
    double m_R; // the sphere's radius, a (NaN: no map)
    // The inverse's scales: 1 / (sqrt 2 R), and pi / (2 sqrt 2 R) per degree.
    double m_invY, m_invX;
};

#endif
