#ifndef KVCART_PROJECTIONS_KVHYPERBOLICCASSINI_H
#define KVCART_PROJECTIONS_KVHYPERBOLICCASSINI_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvCassiniSoldnerEllipsoid.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Hyperbolic Cassini-Soldner (IOGP Guidance Note 7-2, EPSG method 9833), the
// Vanua Levu Grid of Fiji (EPSG:3139): the Cassini-Soldner easting, and the
// Cassini-Soldner northing X (from the origin) less X^3 / (6 rho nu), rho and nu
// the radii of curvature of the meridian and the prime vertical at the point:
//   N = FN + X - X^3 / (6 rho nu).
// The way back takes, as the guidance note does, the radii at the footpoint
// latitude of the grid northing, and solves the cubic for the Cassini-Soldner
// northing X in closed form on the branch through the origin (the note's
// X = (N - FN) + (N - FN)^3 / (6 rho1 nu1) is its first term); the Cassini-Soldner
// inverse of (E, X) gives the point, and a last step on the latitude puts it on
// the forward's own northing (the footpoint's radii differ from the point's by
// parts in 10^7 of a correction of metres). Beyond 6 000 km from the origin the
// cubic folds the map over, and beyond 1 000 km a point is given only where the
// forward takes it back: elsewhere the inverse gives NaN.
//
// On the ellipsoid, near the origin, both ways take a short path: the forward
// shares the latitude's sine with the Cassini-Soldner series; the inverse
// starts from X = n + f n^3 + 3 f^2 n^5 + 12 f^3 n^7 (the cubic's root by
// Lagrange's inversion, n = N - FN, f by its Taylor polynomial about the
// origin's latitude at phi0 + n / rho0) and the Cassini-Soldner inverse series,
// and takes one Newton step on the whole forward, cubic included. Its start
// is within centimetres of the point a few hundred kilometres out, and the
// step squares that down to rounding; a point whose step is larger takes the
// general way.
//
// The Cassini-Soldner grid is the library's engine of method 9806 (the series of
// the guidance note on the ellipsoid, Snyder's closed form on the sphere, where
// rho nu = R^2).
//
// Parameters: latitude and longitude of the natural origin, false easting and
// northing.
class CKvHyperbolicCassini : public CKvEngine<CKvHyperbolicCassini, CKvMethodProjection<CKvHyperbolicCassini>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    CKvHyperbolicCassini(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // The short paths' figures: the Cassini-Soldner series from the origin
    // (false origin (0, 0)), f = 1 / (6 rho nu) = w^2 / (6 a^2 (1 - e^2)),
    // w = 1 - e^2 sin^2 phi, and its Taylor polynomial about the origin.
    struct SFigures
    {
        CKvCassiniSoldnerEllipsoid::SFigures cassini;
        double FE = 0.0, FN = 0.0, lon0 = 0.0, e2 = 0.0, invSixA2e = 0.0; // lon0 in degrees
        double f0 = 0.0, df0 = 0.0, halfD2f0 = 0.0; // f, df/dphi, d2f/dphi2 / 2 at the origin
        double invRho0 = 0.0;                       // 1 / rho at the origin
        bool fast = false;
    };

private:
    // 1 / (6 rho nu) at a latitude whose sine is s.
    double _cubicFactor(double s) const;

    CKvCassiniSoldner m_cassini; // false origin (0, 0)
    CKvConformalLatitude::SMeridian m_meridian;
    double m_lon0, m_lat0, m_M0, m_FE, m_FN;
    double m_invSixA2e; // 1 / (6 a^2 (1 - e^2))
    bool m_valid;
    SFigures m_fast;
};

#endif
