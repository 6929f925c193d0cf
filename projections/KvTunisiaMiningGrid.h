#ifndef KVCART_PROJECTIONS_KVTUNISIAMININGGRID_H
#define KVCART_PROJECTIONS_KVTUNISIAMININGGRID_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Tunisia Mining Grid, EPSG method 9816 (IOGP Guidance Note 7-2, after the
// mining decree of 1 January 1953): the grid of the mineral leases, whose
// kilometres are fixed steps of latitude and longitude in grads,
//   longitude: 0.012185 grad per km of easting (0.02437 per 2 km block),
//   latitude:  0.010015 grad per km of northing north of the false origin,
//              0.01002 south of it (0.02003 and 0.02004 per 2 km block),
// so that E = EF + (lambda - lambdaF) / 0.012185 km and
// N = NF + (phi - phiF) / B km, B of the side of phiF. The figure takes no
// part; the grid is not a map of the ellipsoid in any other sense.
class CKvTunisiaMiningGrid : public CKvEngine<CKvTunisiaMiningGrid, CKvMethodProjection<CKvTunisiaMiningGrid>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: latitude and longitude of the false origin (degrees), its
    // easting and northing (metres).
    CKvTunisiaMiningGrid(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN beyond the poles' northings and beyond half a turn of longitude.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The meridians are grid lines: 0 for every point, NaN for none.
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Why a set of parameters makes no grid, "" when it does.
    static std::string Problem(const double* parameters);

private:
    double m_latF, m_lonF, m_EF, m_NF;
};

#endif
