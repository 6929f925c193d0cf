#ifndef KVCART_PROJECTIONS_KVSINUSOIDAL_H
#define KVCART_PROJECTIONS_KVSINUSOIDAL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// The sinusoidal (Sanson-Flamsteed) equal-area pseudocylindrical projection
// (Snyder, "Map Projections: A Working Manual", USGS PP 1395, 1987, pp. 243-248):
// parallels equally spaced at their true distances along the central meridian
// and drawn at their true lengths. On the ellipsoid (Snyder's eqs. 30-8 to 30-11)
//   E = FE + a (lambda - lambda0) cos phi / sqrt(1 - e^2 sin^2 phi),
//   N = FN + M(phi),
// M the meridian distance from the equator, and back through the footpoint
// latitude of N - FN; on a sphere of radius R, E = FE + R (lambda - lambda0)
// cos phi and N = FN + R phi (eqs. 30-1, 30-2), as the MODIS grids use on the
// sphere of 6 371 007.181 m. Both forms are the map's: the engine takes the one
// of its figure. The inverse of a point outside the map's outline is NaN.
class CKvSinusoidal : public CKvEngine<CKvSinusoidal, CKvMethodProjection<CKvSinusoidal>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (m).
    // An unknown figure, an eccentricity of 1 or more, or a parameter that is not
    // finite gives an engine whose every answer is NaN.
    CKvSinusoidal(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // tan gamma = (lambda - lambda0) sin phi, on the ellipsoid as on the sphere
    // (dE/dphi = -a (lambda - lambda0) sin phi (1 - e^2) / W^3 against
    // dN/dphi = a (1 - e^2) / W^3); NaN for no point.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the equator's width and the meridian's length.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The latitude of a meridian distance within a quarter meridian, with its
    // sine and cosine, for e^2 <= 0.01.
    void _footpoint(double distance, double* phi, double* sinPhi, double* cosPhi) const;

    double m_lon0, m_FE, m_FN;
    double m_a;       // the semi-major axis or the sphere's radius (NaN: no map)
    double m_e2;      // 0 on a sphere
    double m_quarter; // the meridian's length from the equator to a pole
    double m_invA;    // 1 / a
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
