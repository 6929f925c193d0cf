#ifndef KVCART_PROJECTIONS_KVKROVAK_H
#define KVCART_PROJECTIONS_KVKROVAK_H

#include "catalogue/KvKrovakProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Krovak oblique conformal conic (IOGP Guidance Note 7-2, method 9819): the
// Gaussian sphere, an oblique cone about the point (azimuth of its axis) and the
// pseudo standard parallel. The method's own axes point south (X) and west (Y).
// They are turned into the output axes by the axis scales and the XY-plane
// rotation theta (counter-clockwise):
//   (p, q) = (xScale * X, yScale * Y)
//   x = p cos theta - q sin theta + FE,  y = p sin theta + q cos theta + FN
// so scales (1, 1) with rotation 0 give the classic (southing, westing) pair, and
// (-1, 1) with rotation 90 give (easting, northing) = (-Y, -X).
//
// The guidance note's tangents of half-angles raised to powers are isometric
// latitudes, scaled and shifted: tan(pi/4 + U/2) = t0 exp(B psi) with psi the
// ellipsoid's isometric latitude, and tan(pi/4 + T/2) = (r0 / r)^(1/n) tan(pi/4 +
// phiP/2). The engine works on those: sine and cosine of a latitude from its
// isometric latitude with one exponential, the oblique rotation on the unit
// vector (so that cos T and cos U come from sums of squares, not from 1 - sin^2),
// the radius as rTerm ((1 - sin T) / cos T)^n, and the inverse's geodetic
// latitude from the isometric one by Karney's series instead of the guidance
// note's iteration.
class CKvKrovak : public CKvEngine<CKvKrovak, CKvKrovakProjection>
{
public:
    explicit CKvKrovak(const CKvKrovakProjection* definition);
    // In the order of the definition: scale at the pseudo parallel, pseudo parallel,
    // centre longitude and latitude, azimuth, XY-plane rotation (degrees), X and Y
    // scales, FE, FN.
    CKvKrovak(const std::string& name, double kp, double pseudoParallel, double centerLongitude, double centerLatitude,
              double azimuth, double xyPlaneRotation, double xScale, double yScale, double falseEasting,
              double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    void _init(double kp, double pseudoParallel, double centerLongitude, double centerLatitude, double azimuth,
               double xyPlaneRotation, double xScale, double yScale, double falseEasting, double falseNorthing);

    double m_lambda0, m_phiC, m_alphaC, m_phiP;
    double m_lonC, m_latC; // the centre in degrees, as given
    double m_B, m_n, m_rTerm; // rTerm = r0 tan^n(pi/4 + phiP/2)
    double m_lnT0;            // the Gaussian sphere's isometric latitude less B times the ellipsoid's
    double m_invB, m_invN, m_invR0;
    double m_lnTanP; // ln tan(pi/4 + phiP/2), the cone's isometric latitude of the pseudo parallel
    double m_sinAlpha, m_cosAlpha;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    double m_xScale, m_yScale, m_sinRot, m_cosRot, m_FE, m_FN;
};

#endif
