#ifndef KVCART_PROJECTIONS_KVMILLERCYLINDRICAL_H
#define KVCART_PROJECTIONS_KVMILLERCYLINDRICAL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Miller Cylindrical (Snyder, "Map Projections: A Working Manual", pp. 86-89):
// the Mercator of 4/5 of the latitude, stretched back by 5/4, on a sphere: on
// an ellipsoid, the sphere of its area, R = R_A (as ESRI and PROJ compute
// ESRI:54003 and every text of the method),
//   x = FE + R (lambda - lambda0),   y = FN + 5/4 R ln tan(pi/4 + 2 phi / 5),
//   phi = 5/2 atan(exp(4 (y - FN) / (5 R))) - 5 pi / 8.
// The poles lie at a finite northing, +-2.3034 R.
class CKvMillerCylindrical : public CKvEngine<CKvMillerCylindrical, CKvMethodProjection<CKvMillerCylindrical>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing (metres).
    CKvMillerCylindrical(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN beyond the poles' northing and beyond the map's width (a longitude
    // difference over 180 degrees).
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The meridians are the grid's north: 0 for every point, NaN for none.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: +-180 degrees about the central meridian, pole to pole.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_FE, m_FN;
    double m_R; // the sphere's radius, the authalic radius (NaN: no map)
    double m_invR, m_invRDeg; // 1 / R and 1 / (R per degree), for the inverse
};

#endif
