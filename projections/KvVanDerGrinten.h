#ifndef KVCART_PROJECTIONS_KVVANDERGRINTEN_H
#define KVCART_PROJECTIONS_KVVANDERGRINTEN_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Van der Grinten I (Snyder, "Map Projections: A Working Manual", pp. 239-242):
// the whole sphere in a circle of radius pi R, meridians and parallels arcs of
// circles, the equator and the central meridian straight and the equator
// divided truly. R is the radius of the sphere of the ellipsoid's area (as PROJ
// reads ESRI's Van_der_Grinten_I, +proj=vandg +R_A); on a sphere its own radius.
// With theta = asin |2 phi / pi|, A = |pi / lambda - lambda / pi| / 2,
// G = cos theta / (sin theta + cos theta - 1), P = G (2 / sin theta - 1):
//   x = FE +- pi R (A (G - P^2) + sqrt(A^2 (G - P^2)^2 - (P^2 + A^2)(G^2 - P^2))) / (P^2 + A^2),
//   y = FN +- pi R (P Q - A sqrt((A^2 + 1)(P^2 + A^2) - Q^2)) / (P^2 + A^2),  Q = A^2 + G.
class CKvVanDerGrinten : public CKvEngine<CKvVanDerGrinten, CKvMethodProjection<CKvVanDerGrinten>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing
    // (metres); any value that is not finite gives an engine whose every answer
    // is NaN.
    CKvVanDerGrinten(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // Longitudes are reduced to within 180 degrees of the central meridian.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN outside the circle of radius pi R.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From central differences of the formulas along the meridian.
    double GetConvergence(double lon, double lat) const override;
    // The square around the circle.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The map in units of pi R, for |lambda| <= pi.
    static void _unit(double phi, double lambda, double* X, double* Y);

    double m_lon0, m_FE, m_FN;
    double m_R; // the authalic radius (NaN: no map)
};

#endif
