#ifndef KVCART_PROJECTIONS_KVLABORDE_H
#define KVCART_PROJECTIONS_KVLABORDE_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Laborde Oblique Mercator (EPSG method 9813; J. Laborde, "La nouvelle
// projection du Service Geographique de Madagascar", 1928, as IGN's technical
// note NT/G 74 and IOGP Guidance Note 7-2 give it), the grid of Madagascar.
// The ellipsoid is first mapped conformally onto a sphere (Gauss's second
// projection, the latitude of the centre kept with unit scale):
//   B = sqrt(1 + e^2 cos^4 phiC / (1 - e^2)),   sin phiS = sin phiC / B,
//   R = a kC sqrt(1 - e^2) / (1 - e^2 sin^2 phiC),
//   C = psi_sphere(phiS) - B psi(phiC),   q = C + B psi(phi),   L = B (lambda - lambdaC),
// psi the isometric latitude, and P the sphere's latitude of q. The sphere is
// turned so that its equator runs through the centre (U, V, W: the point's
// coordinates on the turned sphere), and the turned point (L', P') is put on
// the transverse Mercator of that sphere as H = -L' + i psi_sphere(P'). Laborde's
// complex correction turns the line of the centre to the azimuth alphaC:
//   G = (1 - cos 2 alphaC + i sin 2 alphaC) / 12,
//   E = FE + R Im(H + G H^3),   N = FN + R Re(H + G H^3).
// Back, H + G H^3 = H0 is solved by Newton's method (the note's iteration),
// the sphere turned back, and phi found from its isometric latitude.
// psi_sphere(P') of the turned point is atanh(sin P') = atanh(W), since the
// turned coordinates are on the unit sphere. The correction folds the plane
// far from Madagascar (where |3 G H^2| reaches 1): there a grid point that does
// not go back to itself through the forward is none, NaN.
class CKvLaborde : public CKvEngine<CKvLaborde, CKvMethodProjection<CKvLaborde>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: longitude and latitude of the centre, azimuth of the initial
    // line (degrees), scale factor on the initial line, false easting, false
    // northing (metres). A centre beyond the poles or on one, a scale that is
    // not positive, a figure that is none or a parameter that is not finite
    // gives an engine whose every answer is NaN.
    CKvLaborde(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // NaN for the two points 90 degrees from the centre on the turned sphere's
    // equator, which lie at infinity.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // 3 degrees around the centre.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // Re and Im of H + G H^3 for a point (no false origin, not scaled by R).
    void _plane(double phi, double dLambda, double* re, double* im) const;

    double m_lon0, m_lat0, m_FE, m_FN;
    double m_B, m_C, m_R; // m_R NaN: no map
    double m_sinPhiS, m_cosPhiS;
    double m_Gre, m_Gim; // G
    // phi from the isometric latitude (Karney's series where it holds).
    CKvConformalLatitude::SInverse m_inverse;
};

#endif
