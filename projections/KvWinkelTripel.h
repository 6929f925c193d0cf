#ifndef KVCART_PROJECTIONS_KVWINKELTRIPEL_H
#define KVCART_PROJECTIONS_KVWINKELTRIPEL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>
#include <vector>

// Winkel Tripel (Snyder, "Map Projections: A Working Manual", p. 231; Snyder,
// "Flattening the Earth", 1993): the mean of the Aitoff projection and the
// equirectangular projection of standard parallel phi1, on the sphere of the
// ellipsoid's semi-major axis (as ESRI:54042 and PROJ's wintri compute it),
//   alpha = acos(cos phi cos(lambda/2)),   sinc alpha = sin alpha / alpha,
//   x = FE + R/2 (2 cos phi sin(lambda/2) / sinc alpha + lambda cos phi1),
//   y = FN + R/2 (sin phi / sinc alpha + phi).
// There is no closed inverse: Newton's method on both equations at once, from
// a start interpolated in a table of the inverse that the constructor solves
// (it depends on phi1).
class CKvWinkelTripel : public CKvEngine<CKvWinkelTripel, CKvMethodProjection<CKvWinkelTripel>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, standard parallel phi1 (degrees), false
    // easting, false northing (metres). A parallel beyond a pole, or any value
    // that is not finite, gives an engine whose every answer is NaN.
    CKvWinkelTripel(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // Longitudes are reduced to within 180 degrees of the central meridian: the
    // map has no continuation past its outer meridians.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN outside the map's outline (the meridians 180 degrees from the centre
    // and the two pole lines).
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the partial derivatives of the formulas along the meridian.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: 180 degrees either side of the central meridian, pole to pole.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The map on the unit sphere: (2x, 2y) of the formulas above without R,
    // and, when jacobian is not null, their partial derivatives
    // {dX/dphi, dX/dlambda, dY/dphi, dY/dlambda}.
    void _unit(double phi, double lambda, double* X, double* Y, double* jacobian) const;
    // Newton's method on the unit map from (phi, lambda) towards (X, Y), at most
    // steps steps: true when it settled (phi and lambda then hold the root).
    bool _newton(double X, double Y, int steps, double* phi, double* lambda) const;
    // The start of the inverse at (X, Y) from the table: NaN where the table
    // has no usable cell.
    void _tableStart(double X, double Y, double* phi, double* lambda) const;

    double m_lon0, m_FE, m_FN;
    double m_cosPhi1;
    double m_R; // the sphere's radius, the semi-major axis (NaN: no map)
    // The start table over the quarter X >= 0, Y >= 0 of the unit map (the
    // inverse is odd in X and in Y): at each node of a uniform grid, phi and
    // lambda with their derivatives in X, Y and XY, scaled to the cell.
    double m_cellX, m_cellY;       // the grid's spacing
    double m_perCellX, m_perCellY; // their reciprocals
    std::vector<double> m_table;
};

#endif
