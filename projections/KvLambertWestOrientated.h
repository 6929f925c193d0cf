#ifndef KVCART_PROJECTIONS_KVLAMBERTWESTORIENTATED_H
#define KVCART_PROJECTIONS_KVLAMBERTWESTORIENTATED_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambertConic.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert Conic Conformal (West Orientated), EPSG method 9826: the
// one-parallel Lambert conformal conic of method 9801 with its first axis
// counted westwards, as on the older grids of Denmark, the Faroes, Greenland
// and Iceland (IOGP Guidance Note 7-2):
//   W = FE - r sin theta,   N = FN + r0 - r cos theta,
// FE keeping its name though it acts as a false westing. The cone is
// CKvLambert1SP's, drawn without false easting and turned round; longitudes
// are points of the earth (540 is 180), the pole the cone opens away from
// gives NaN and the other one the apex exactly.
class CKvLambertWestOrientated
    : public CKvEngine<CKvLambertWestOrientated, CKvMethodProjection<CKvLambertWestOrientated>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: scale factor at the natural origin, the origin's longitude and
    // latitude (degrees), false easting (the westing at the origin), false
    // northing (metres).
    CKvLambertWestOrientated(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // x is the westing.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Why a set of parameters makes no cone, "" when it does.
    static std::string Problem(const double* parameters);

private:
    // The eastward cone about the origin's parallel, central meridian and false
    // easting 0: it sees longitude differences, already brought within 180
    // degrees across the antimeridian, so that every point of the sheet takes
    // the cone's fast path both ways.
    CKvLambert1SP m_cone;
    double m_FE, m_FN, m_lon0;
    double m_apexPole; // the pole on the cone's apex, of the origin's sign (degrees)
    double m_sign;     // the sign of n
    double m_n;        // the cone constant, sin phi0
    double m_cosEdge;  // cos(pi n), the sheet's edge
    CKvLambertConic::SSphereCone m_sphere; // the cone's path on the sphere
};

#endif
