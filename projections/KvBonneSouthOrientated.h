#ifndef KVCART_PROJECTIONS_KVBONNESOUTHORIENTATED_H
#define KVCART_PROJECTIONS_KVBONNESOUTHORIENTATED_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvBonneCore.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Bonne (South Orientated) (EPSG method 9828), the grid of Portugal's old
// Bonne maps: the projection of CKvBonneCore with westings and southings,
//   W = FE - x,   S = FN - y,
// the axes turned half a turn about the false origin. Everything else is the
// Bonne method's (CKvBonne), the latitude of natural origin its standard parallel.
class CKvBonneSouthOrientated : public CKvEngine<CKvBonneSouthOrientated, CKvMethodProjection<CKvBonneSouthOrientated>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, latitude of natural origin (degrees), false
    // easting, false northing (metres). A latitude of origin of 0 or beyond the
    // poles, a figure that is none or a parameter that is not finite gives an
    // engine whose every answer is NaN.
    CKvBonneSouthOrientated(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // x and y are the westing and the southing. NaN beyond the map: a radius
    // beyond the poles' circles, a longitude beyond 180 degrees from the central
    // meridian.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the circles of both poles about the apex bound it.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_lat0, m_FE, m_FN;
    CKvBonneCore m_core;
};

#endif
