#ifndef KVCART_PROJECTIONS_KVGUAM_H
#define KVCART_PROJECTIONS_KVGUAM_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Guam Projection (EPSG method 9831; IOGP Guidance Note 7-2, Snyder p. 199):
// the simplified oblique azimuthal equidistant projection of Guam's grid, good
// over the island's few tens of kilometres:
//   x = a (lambda - lambda0) cos phi / sqrt(1 - e^2 sin^2 phi),
//   E = FE + x,   N = FN + M - M0 + x^2 tan phi sqrt(1 - e^2 sin^2 phi) / (2a),
// the last term written a (lambda - lambda0)^2 sin phi cos phi / (2 sqrt(1 -
// e^2 sin^2 phi)), which has no tangent to overflow at the poles. The inverse is
// the note's fixed-point iteration on the latitude,
//   M = M0 + (N - FN) - (E - FE)^2 tan phi sqrt(1 - e^2 sin^2 phi) / (2a),
// whose root is solved here by Newton's method from the footpoint latitude of
// the northing (two steps on Guam, to round-off, where the note's three
// fixed-point steps from phi0 reach well under a millimetre) so that the
// inverse is that of the forward; then
//   lambda = lambda0 + (E - FE) sqrt(1 - e^2 sin^2 phi) / (a cos phi).
class CKvGuam : public CKvEngine<CKvGuam, CKvMethodProjection<CKvGuam>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: longitude, latitude of natural origin (degrees), false
    // easting, false northing (metres). An origin latitude beyond the poles, a
    // figure that is none or a parameter that is not finite gives an engine
    // whose every answer is NaN.
    CKvGuam(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN where the latitude is none (a northing beyond the pole on the central
    // meridian) or the point lies on a pole or beyond 180 degrees from the
    // central meridian.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // 3 degrees around the origin.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_lat0, m_FE, m_FN;
    double m_M0; // NaN: no map
    double m_Mp; // the quarter meridian
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
