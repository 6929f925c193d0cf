#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCYLINDRICALELLIPSOIDAL_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCYLINDRICALELLIPSOIDAL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvEquidistantCylindrical.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Equidistant Cylindrical, EPSG method 1028 (IOGP Guidance Note 7-2): the
// parallels at their true distance along the ellipsoid's meridian, the
// registry's method of EPSG:4087. ESRI names it Equidistant_Cylindrical_
// Ellipsoidal; GDAL's WKT 1 and PROJ have only the spherical form (PROJ's eqc,
// GDAL's "Equirectangular", type 35), which puts EPSG:4087's poles 16.8 km
// further out. The formulas are CKvEquidistantCylindrical's ellipsoidal form.
class CKvEquidistantCylindricalEllipsoidal
    : public CKvEngine<CKvEquidistantCylindricalEllipsoidal, CKvMethodProjection<CKvEquidistantCylindricalEllipsoidal>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, standard parallel, latitude of origin
    // (degrees), false easting, false northing (metres).
    CKvEquidistantCylindricalEllipsoidal(const std::string& name, const double* parameters,
                                         const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override { m_map.Geo2Proj(lon, lat, x, y); }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override { m_map.Proj2Geo(x, y, lon, lat); }
    void GetOrigin(double* x, double* y) const override { m_map.GetOrigin(x, y); }
    double GetConvergence(double lon, double lat) const override { return m_map.GetConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        m_map.GetDefaultArea(x1, y1, x2, y2);
    }

private:
    CKvEquidistantCylindrical m_map;
};

#endif
