#ifndef KVCART_PROJECTIONS_KVBONNE_H
#define KVCART_PROJECTIONS_KVBONNE_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvBonneCore.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Bonne (EPSG method 9827): the equal-area pseudoconic projection of
// CKvBonneCore with eastings and northings, E = FE + x, N = FN + y. The
// latitude of natural origin is the standard parallel (PROJ's lat_1), where the
// cone touches and the northings start.
class CKvBonne : public CKvEngine<CKvBonne, CKvMethodProjection<CKvBonne>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, latitude of natural origin (degrees), false
    // easting, false northing (metres). A latitude of origin of 0 or beyond the
    // poles, a figure that is none or a parameter that is not finite gives an
    // engine whose every answer is NaN.
    CKvBonne(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN beyond the map: a radius beyond the poles' circles, a longitude beyond
    // 180 degrees from the central meridian.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the circles of both poles about the apex bound it.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Why a set of parameters makes no map ("" when it does).
    static std::string Problem(const double* parameters);

private:
    double m_lon0, m_lat0, m_FE, m_FN;
    CKvBonneCore m_core;
};

#endif
