#ifndef KVCART_PROJECTIONS_KVLAMBERTNEARCONFORMAL_H
#define KVCART_PROJECTIONS_KVLAMBERTNEARCONFORMAL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert Conic Near-Conformal, EPSG method 9817 (IOGP Guidance Note 7-2): the
// Army Map Service's series for the one-parallel Lambert conic truncated after
// the cubic term, as the Levant grids of France, North Africa and Syria used it.
// With m the meridian distance from the origin's parallel,
//   M = k0 (m + A m^3),   A = 1 / (6 rho0 nu0),   r = r0 - M,   r0 = k0 nu0 / tan phi0,
//   theta = (lambda - lambda0) sin phi0,
//   E = FE + r sin theta,   N = FN + M + r sin theta tan(theta / 2).
// The map is not quite conformal, and its poles are arcs rather than points.
// The meridian distance is Helmert's series (the guidance note's A'..E' to n^5
// agree with it to a tenth of a micrometre); the cubic is inverted in closed
// form and the meridian distance by its footpoint latitude, so that the inverse
// is exact where the guidance note iterates.
class CKvLambertNearConformal
    : public CKvEngine<CKvLambertNearConformal, CKvMethodProjection<CKvLambertNearConformal>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: scale factor at the natural origin, the origin's longitude and
    // latitude (degrees), false easting and northing (metres).
    CKvLambertNearConformal(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN where the meridian distance comes out beyond a pole.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The meridians are straight lines through the apex: the convergence is
    // theta = (lambda - lambda0) sin phi0.
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Why a set of parameters makes no map, "" when it does.
    static std::string Problem(const double* parameters);

private:
    double m_lon0, m_lat0, m_FE, m_FN;
    double m_k0, m_r0, m_s0;
    double m_A;        // 1 / (6 rho0 nu0)
    double m_sinPhi0;  // the cone constant
    double m_sign;     // the sign of phi0: r' takes it
    double m_cubicScale, m_cubicArgument; // the closed-form root of m + A m^3 = M / k0
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
