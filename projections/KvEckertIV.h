#ifndef KVCART_PROJECTIONS_KVECKERTIV_H
#define KVCART_PROJECTIONS_KVECKERTIV_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Eckert IV, an equal-area pseudocylindrical world map whose poles are lines
// half as long as the equator and whose meridians are semi-ellipses (Snyder,
// "Map Projections: A Working Manual", USGS PP 1395, 1987, pp. 253-258):
//   E = FE + 2 / sqrt(pi (4 + pi)) R (lambda - lambda0) (1 + cos theta),
//   N = FN + 2 sqrt(pi / (4 + pi)) R sin theta,
//   theta + sin theta cos theta + 2 sin theta = (2 + pi / 2) sin phi
// (Snyder's eqs. 32-1 to 32-3). theta is found by Newton's method; near the
// poles, where the equation's derivative vanishes, on w = pi/2 - |theta|:
// w - sin w cos w + 4 sin^2(w / 2) = (2 + pi/2)(1 - sin |phi|), from its start
// sqrt of the right side. The inverse is closed (eqs. 32-4 to 32-6). The method
// is defined on the sphere only: on an ellipsoid the geodetic latitude is used
// on the sphere of radius a, as PROJ and ESRI do. The inverse of a point
// outside the map's outline is NaN.
class CKvEckertIV : public CKvEngine<CKvEckertIV, CKvMethodProjection<CKvEckertIV>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (m).
    // An unknown figure or a parameter that is not finite gives an engine whose
    // every answer is NaN.
    CKvEckertIV(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // tan gamma = (Cx / Cy) (lambda - lambda0) tan theta, Cx / Cy = 1 / pi, from
    // the derivatives of E and N along the meridian; NaN for no point.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the equator's width and the poles' height.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // sin theta and cos theta of a latitude in degrees.
    static void _theta(double lat, double* sinTheta, double* cosTheta);

    double m_lon0, m_FE, m_FN;
    double m_R; // the sphere's radius, a (NaN: no map)
    double m_invY, m_invX; // the inverse's scales: 1 / (Cy R), and 1 / (Cx R) per degree
};

#endif
