#ifndef KVCART_PROJECTIONS_KVPSEUDOMERCATOR_H
#define KVCART_PROJECTIONS_KVPSEUDOMERCATOR_H

#include "catalogue/KvPseudoMercatorProjection.h"
#include "projections/KvMercatorCore.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Popular Visualisation Pseudo Mercator, "Web Mercator" (EPSG method 1024, IOGP
// Guidance Note 7-2, section 3.5.1.1): the spherical Mercator applied to the
// geodetic latitude and longitude of the ellipsoid, with its semi-major axis a as
// the sphere's radius,
//   E = FE + a (lambda - lambda0),   N = FN + a ln tan(pi/4 + phi/2),
//   phi = pi/2 - 2 atan(exp(-(N - FN) / a)),   lambda = (E - FE) / a + lambda0.
// The datum stays the ellipsoid's (WGS 84 for EPSG:3857): datum shifts and
// geocentric coordinates use the ellipsoid, and only the map is the sphere's.
// Hence the map is not conformal on the ellipsoid: its scales along the meridian
// and along the parallel differ (GetScaleFactors). Longitudes follow the rule of
// the library's Mercator (CKvAngle::LongitudeDifferenceDegrees): within +-180 the
// difference from the central meridian is reduced, beyond it a line carried on
// across the antimeridian is taken unreduced.
class CKvPseudoMercator : public CKvEngine<CKvPseudoMercator, CKvPseudoMercatorProjection>
{
public:
    explicit CKvPseudoMercator(const CKvPseudoMercatorProjection* definition);
    // central meridian, latitude of origin (degrees), FE, FN. The method's natural
    // origin lies on the equator: any other latitude of origin (or an unknown
    // ellipsoid, a semi-major axis that is not a positive number, a central
    // meridian that is not finite) gives an engine whose every answer is NaN.
    CKvPseudoMercator(const std::string& name, double centralMeridian, double originLatitude, double falseEasting,
                      double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // A pole lies at an infinite northing: +-inf, and the inverse of a grid point
    // that is not finite is NaN.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // The batch forms: vectorized blocks through the Mercators' fast path.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    // The meridians are the grid's north: 0 for every point, NaN for none.
    double GetConvergence(double lon, double lat) const override;
    // The square web map of the whole longitude range centred on the central
    // meridian, between the latitudes +-85.0511287798 where N - FN = +-pi a.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // The map's scale against the ellipsoid at a point: along the meridian,
    //   h = (1 - e^2 sin^2 phi)^(3/2) / ((1 - e^2) cos phi),
    // a sec phi over the meridian's radius of curvature, and along the parallel,
    //   k = sqrt(1 - e^2 sin^2 phi) / cos phi,
    // a over the parallel's radius. On a sphere both are sec phi. NaN for no point
    // of the ellipsoid; +inf at the poles.
    void GetScaleFactors(double lon, double lat, double* meridian, double* parallel) const;

private:
    void _init(double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);

    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_FE, m_FN;
    double m_R;    // the sphere's radius, the ellipsoid's semi-major axis (NaN: no map)
    double m_RDeg; // R per degree of longitude
    CKvMercatorCore::SFigures m_fast; // the sphere's isometric latitude: e = 0
};

#endif
