#ifndef KVCART_PROJECTIONS_KVPOLYCONIC_H
#define KVCART_PROJECTIONS_KVPOLYCONIC_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// American Polyconic (EPSG method 9818; IOGP Guidance Note 7-2, Snyder pp.
// 124-133): every parallel is the arc of the circle of its own tangent cone,
// radius nu cot phi, centred on the straight central meridian at its true
// meridian distance:
//   L = (lambda - lambda0) sin phi,
//   E = FE + nu cot phi sin L,   N = FN + M - M0 + nu cot phi (1 - cos L),
// and on the equator E = FE + a (lambda - lambda0), N = FN - M0. On the sphere
// (e = 0) the same formulas are Snyder's spherical ones.
//
// The inverse: a point (x, y') = (E - FE, M0 + N - FN - M) lies on the circle
// of phi when x^2 + y'^2 = 2 nu cot phi y', that is when
//   h(phi) = sin phi (x^2 + y'^2) - 2 nu cos phi y' = 0,
// which has no pole nor equator to avoid. It is solved by Newton's method from
// the footpoint latitude of the northing (the iteration of the guidance note and
// Snyder's eq. 18-17, in this form), and then
//   lambda - lambda0 = atan2(x tan phi, nu - y' tan phi) / sin phi.
// A point the iteration does not settle, or whose longitude comes out beyond
// 180 degrees from the central meridian, lies off the map: NaN.
class CKvPolyconic : public CKvEngine<CKvPolyconic, CKvMethodProjection<CKvPolyconic>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, latitude of origin (degrees), false easting,
    // false northing (metres). An origin latitude beyond the poles, a figure
    // that is none or a parameter that is not finite gives an engine whose every
    // answer is NaN.
    CKvPolyconic(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The direction of the meridian on the map from its derivative along the
    // meridian, in degrees clockwise from grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // 90 degrees either side of the central meridian, pole to pole (beyond that
    // the parallels' arcs curl back on the map).
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The grid point of phi and the longitude difference (radians), false origin
    // not added; with derivatives (not null), also dx/dphi and dy/dphi.
    void _grid(double phi, double dLambda, double* x, double* y, double* dxdphi, double* dydphi) const;

    double m_lon0, m_lat0; // degrees, as given
    double m_FE, m_FN;
    double m_M0; // meridian distance of the origin (NaN: no map)
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
