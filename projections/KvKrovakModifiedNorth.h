#ifndef KVCART_PROJECTIONS_KVKROVAKMODIFIEDNORTH_H
#define KVCART_PROJECTIONS_KVKROVAKMODIFIEDNORTH_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvKrovakModified.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Krovak Modified (North Orientated) (IOGP Guidance Note 7-2, EPSG method 1043),
// the east-north grid of S-JTSK/05 (EPSG:5225, 5516): the modified Krovak's
// southing and westing, false origin included, turned into
//   easting = -westing, northing = -southing,
// so that the grid's coordinates in Czechia are negative. The parameters are those
// of the south-orientated form (CKvKrovakModified).
class CKvKrovakModifiedNorth
    : public CKvEngine<CKvKrovakModifiedNorth, CKvMethodProjection<CKvKrovakModifiedNorth>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    CKvKrovakModifiedNorth(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override { m_southWest.GetOrigin(x, y); }
    // From the forward along the meridian (the polynomial makes the grid
    // slightly non-conformal).
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    CKvKrovakModified m_southWest;
};

#endif
