#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCYLINDRICAL_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCYLINDRICAL_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Equidistant Cylindrical, the Plate Carree when phi1 = 0, in two forms.
//
// eSpherical: EPSG method 1029 and PROJ's eqc, which ESRI's
// Equidistant_Cylindrical and Plate_Carree and GDAL's Equirectangular name:
// the sphere's formulas with the ellipsoid's semi-major axis as R,
//   E = FE + R cos phi1 (lambda - lambda0),   N = FN + R (phi - phi0).
//
// eEllipsoidal: EPSG method 1028 (IOGP Guidance Note 7-2, section 3.2.5),
// which EPSG:4087 uses: the parallels at their true distance along the
// meridian and the standard parallel at its true length,
//   E = FE + nu1 cos phi1 (lambda - lambda0),   N = FN + M(phi) - M(phi0),
// nu1 = a / sqrt(1 - e^2 sin^2 phi1), M the meridian distance. The note gives
// M as a series in e^2; Helmert's series in the third flattening
// (CKvConformalLatitude::MeridianDistance) is the same integral to 0.1
// micrometre, and reproduces the note's example (55 N 10 E on WGS 84: 1 113
// 194.91 m E, 6 097 230.31 m N). On WGS 84 the two forms part by up to 16.8 km
// in northing at the poles (R pi/2 against M(pi/2)).
//
// Longitudes follow the rule of the library's other cylindrical maps
// (CKvAngle::LongitudeDifferenceDegrees).
class CKvEquidistantCylindrical
    : public CKvEngine<CKvEquidistantCylindrical, CKvMethodProjection<CKvEquidistantCylindrical>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    enum EForm
    {
        eSpherical = 0,
        eEllipsoidal = 1
    };

    // parameters: central meridian, standard parallel phi1, latitude of origin
    // phi0 (degrees), false easting, false northing (metres): the descriptor's,
    // in the spherical form. A standard parallel at or beyond a pole (the map's
    // width vanishes), an origin beyond one, or a value that is not finite,
    // gives an engine whose every answer is NaN.
    CKvEquidistantCylindrical(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);
    // The same in either form.
    CKvEquidistantCylindrical(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid,
                              EForm form);

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

    EForm GetForm() const { return m_form; }
    // Why the descriptor's parameters make no map ("" when they do).
    static std::string Problem(const double* parameters);

private:
    // The northing of a latitude in radians, less FN and the origin's.
    double _northing(double phi) const;

    EForm m_form;
    bool m_byRadius; // the northing R phi: the spherical form, or a sphere
    double m_lon0, m_lat0, m_FE, m_FN;
    double m_xPerDegree; // the standard parallel's length per degree (NaN: no map)
    double m_R;          // the sphere's radius (spherical form)
    double m_originNorthing;
    double m_poleNorthing; // of the north pole, from the origin's
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
