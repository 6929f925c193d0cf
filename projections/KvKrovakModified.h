#ifndef KVCART_PROJECTIONS_KVKROVAKMODIFIED_H
#define KVCART_PROJECTIONS_KVKROVAKMODIFIED_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvKrovak.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Krovak Modified (IOGP Guidance Note 7-2, EPSG method 1042), the grid of
// S-JTSK/05 (EPSG:5224, 5515): the Krovak oblique conformal conic (method 9819,
// the library's engine) followed by the polynomial of the Czech Land Survey
// Office, defined to be exact, which takes the Krovak southing and westing
// (Xp, Yp) to those of the modified grid:
//   Xr = Xp - X0, Yr = Yp - Y0 (the evaluation point X0 = 1 089 000 m, Y0 = 654 000 m)
//   dX = C1 + C3 Xr - C4 Yr - 2 C6 Xr Yr + C5 (Xr^2 - Yr^2) + C7 Xr (Xr^2 - 3 Yr^2)
//        - C8 Yr (3 Xr^2 - Yr^2) + 4 C9 Xr Yr (Xr^2 - Yr^2) + C10 (Xr^4 + Yr^4 - 6 Xr^2 Yr^2)
//   dY = C2 + C3 Yr + C4 Xr + 2 C5 Xr Yr + C6 (Xr^2 - Yr^2) + C8 Xr (Xr^2 - 3 Yr^2)
//        + C7 Yr (3 Xr^2 - Yr^2) - 4 C10 Xr Yr (Xr^2 - Yr^2) + C9 (Xr^4 + Yr^4 - 6 Xr^2 Yr^2)
//   southing = FN + Xp - dX, westing = FE + Yp - dY.
// The way back evaluates the polynomial at the grid point less its false origin,
// as the guidance note does, then again at the Krovak point so found until it
// settles (the polynomial's slope is 5e-7 over Czechia: the inverse is the
// forward's own within rounding); far away, where the polynomial folds the grid
// over, it gives NaN.
//
// The polynomial's evaluation point and coefficients are the published ones
// (the only set EPSG gives the method); the WKT texts of the method carry none.
//
// Output: x the southing, y the westing (the order of the axes of EPSG:5515).
// Parameters: latitude of the projection centre, longitude of origin,
// co-latitude of the cone axis, latitude of the pseudo standard parallel, scale
// factor on it, false easting (added to the westing) and northing (to the
// southing).
class CKvKrovakModified : public CKvEngine<CKvKrovakModified, CKvMethodProjection<CKvKrovakModified>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    CKvKrovakModified(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the forward along the meridian (the polynomial makes the grid
    // slightly non-conformal).
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // The parameters' problem, if any ("" when they make a map); the
    // north-orientated form has the same parameters.
    static std::string Problem(const double* parameters);

private:
    // The polynomial's corrections (dX, dY) at the Krovak point (Xp, Yp).
    static void _correction(double Xp, double Yp, double* dX, double* dY);

    CKvKrovak m_krovak; // (southing, westing), no false origin
    double m_FE, m_FN;
    bool m_valid;
};

#endif
