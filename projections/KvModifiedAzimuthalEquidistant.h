#ifndef KVCART_PROJECTIONS_KVMODIFIEDAZIMUTHALEQUIDISTANT_H
#define KVCART_PROJECTIONS_KVMODIFIEDAZIMUTHALEQUIDISTANT_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Modified Azimuthal Equidistant (EPSG method 9832; IOGP Guidance Note 7-2,
// Snyder pp. 197-199), the grid of the islands of Micronesia: the oblique
// azimuthal equidistant projection with the geodesic's length from the origin
// replaced by a series in the arc s between the origin and the point on a
// sphere of the point's latitude psi, good over the few hundred kilometres of
// such a grid:
//   psi = atan((1 - e^2) tan phi + e^2 nu0 sin phi0 / (nu cos phi)),
//   alpha = atan2(sin dLambda, cos phi0 tan psi - sin phi0 cos dLambda),
//   G = e sin phi0 / sqrt(1 - e^2),   H = e cos phi0 cos alpha / sqrt(1 - e^2),
//   c = nu0 s [1 - s^2 H^2 (1 - H^2) / 6 + s^3 G H (1 - 2H^2) / 8
//              + s^4 (H^2 (4 - 7H^2) - 3G^2 (1 - 7H^2)) / 120 - s^5 G H / 48],
//   E = FE + c sin alpha,   N = FN + c cos alpha.
// The note takes s by an arcsine, within 90 degrees of the origin; here it is
// the arc's atan2, the same angle there and the true arc beyond. The note's
// inverse series (J, K, psi') is the starting point of Newton's steps on this
// forward, which defines the grid, taken when it misses by more than a
// micrometre (never on the islands' grids): the inverse then gives back the
// forward's point wherever the forward is one to one.
//
// PROJ computes the grids of this method (EPSG:3295) with its geodesic
// azimuthal equidistant (+proj=aeqd); on Clarke 1866 at Yap the two differ by
// about 1 mm 40 km from the origin, 10 cm at 300 km and 10 m at 1 000 km.
class CKvModifiedAzimuthalEquidistant
    : public CKvEngine<CKvModifiedAzimuthalEquidistant, CKvMethodProjection<CKvModifiedAzimuthalEquidistant>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: longitude, latitude of natural origin (degrees), false
    // easting, false northing (metres). An origin latitude beyond the poles, a
    // figure that is none or a parameter that is not finite gives an engine
    // whose every answer is NaN.
    CKvModifiedAzimuthalEquidistant(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // NaN at the origin's antipode, whose image would be a whole circle.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN where Newton's steps do not reach the point (beyond the half of the
    // map that the forward covers once).
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // 3 degrees around the origin.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The grid offsets from the false origin of phi and lambda - lambda0 (radians).
    void _grid(double phi, double dLambda, double* x, double* y) const;

    double m_lon0, m_lat0, m_FE, m_FN;
    double m_sinPhi0, m_cosPhi0;
    double m_nu0; // NaN: no map
    double m_G;   // e sin phi0 / sqrt(1 - e^2)
};

#endif
