#ifndef KVCART_PROJECTIONS_KVROBINSON_H
#define KVCART_PROJECTIONS_KVROBINSON_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Robinson's pseudocylindrical world map (A. H. Robinson, "A new map projection:
// its development and characteristics", International Yearbook of Cartography
// 14, 1974; Snyder, "Flattening the Earth", 1993): neither conformal nor equal
// area, defined by a table of the length of each parallel, X (the equator's 1),
// and of its distance from the equator, Y (the pole's 1), every 5 degrees:
//   E = FE + 0.8487 R X(phi) (lambda - lambda0),   N = FN + 1.3523 R Y(phi).
// Between the tabulated parallels X and Y follow the cubic spline through the
// table that tools/make_robinson_table.py fits, with the six-figure
// coefficients in single precision of the tabulation in common use, so that the
// map agrees with other software to the micrometre (other interpolations of the
// same table, or the spline's own coefficients unrounded, differ from it by up to
// metres or more on the earth). The method is defined on
// the sphere only: on an ellipsoid the geodetic latitude is used on the sphere
// of radius a, as PROJ and ESRI do. The inverse of Y is found by Newton's method
// on the spline piece; the inverse of a point outside the map's outline is NaN.
class CKvRobinson : public CKvEngine<CKvRobinson, CKvMethodProjection<CKvRobinson>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (m).
    // An unknown figure or a parameter that is not finite gives an engine whose
    // every answer is NaN.
    CKvRobinson(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the spline's derivatives along the meridian; NaN for no point.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the equator's width and the poles' height.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_FE, m_FN;
    double m_R; // the sphere's radius, a (NaN: no map)
    double m_YPerNorthing, m_XDegreePerEasting; // the inverse's scales, 1 / (1.3523 R) and 1 / (0.8487 R deg)
};

#endif
