#ifndef KVCART_PROJECTIONS_KVCYLINDRICALEQUALAREA_H
#define KVCART_PROJECTIONS_KVCYLINDRICALEQUALAREA_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert Cylindrical Equal Area (EPSG method 9835, IOGP Guidance Note 7-2,
// section 3.5.5.3; Snyder, "Map Projections: A Working Manual", eqs. 10-15 and
// 10-16), true to scale along the standard parallels +-phi1:
//   k0 = cos phi1 / sqrt(1 - e^2 sin^2 phi1),
//   E = FE + a k0 (lambda - lambda0),   N = FN + a q / (2 k0),
// q the authalic function of the latitude (Snyder, eq. 3-12); on a sphere
// q = 2 sin phi. EASE-Grid 2.0 (EPSG:6933, phi1 = 30), ESRI's
// Cylindrical_Equal_Area and PROJ's cea. Longitudes follow the rule of the
// library's other cylindrical maps (CKvAngle::LongitudeDifferenceDegrees).
class CKvCylindricalEqualArea
    : public CKvEngine<CKvCylindricalEqualArea, CKvMethodProjection<CKvCylindricalEqualArea>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian, standard parallel phi1 (degrees), false
    // easting, false northing (metres). A parallel at or beyond a pole (the
    // map's width vanishes), or a value that is not finite, gives an engine
    // whose every answer is NaN.
    CKvCylindricalEqualArea(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN beyond the poles' northing and beyond the map's width.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // The meridians are the grid's north: 0 for every point, NaN for none.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: +-180 degrees about the central meridian, pole to pole.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    bool m_sphere; // e = 0: q = 2 sin phi
    double m_lon0, m_FE, m_FN;
    double m_xPerDegree; // a k0 pi / 180 (NaN: no map)
    double m_yPerQ;      // a / (2 k0)
    double m_degreePerX, m_sinBetaPerY; // the inverse's scales, 1 / m_xPerDegree and 1 / (m_yPerQ q_P)
    CKvConformalLatitude::SAuthalic m_authalic;
    // phi from beta by Karney's series, for 0 < e <= CKvMathKernel::EccentricSinhLimit.
    CKvConformalLatitude::SAuthalicInverse m_authalicInverse;
};

#endif
