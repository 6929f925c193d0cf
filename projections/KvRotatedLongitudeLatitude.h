#ifndef KVCART_PROJECTIONS_KVROTATEDLONGITUDELATITUDE_H
#define KVCART_PROJECTIONS_KVROTATEDLONGITUDELATITUDE_H

#include "catalogue/KvRotatedLongitudeLatitudeProjection.h"
#include "geodesy/Matrix.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Longitude/latitude on a grid whose south pole has been moved to (lambdaP,
// phiP), with a further rotation gamma about the new polar axis: the grids of
// atmospheric and ocean models. Points are turned as geocentric vectors of the
// engine's own figure; the output is again in degrees.
class CKvRotatedLongitudeLatitude : public CKvEngine<CKvRotatedLongitudeLatitude, CKvRotatedLongitudeLatitudeProjection>
{
public:
    explicit CKvRotatedLongitudeLatitude(const CKvRotatedLongitudeLatitudeProjection* definition);
    // south pole longitude and latitude, rotation angle, all in degrees.
    CKvRotatedLongitudeLatitude(const std::string& name, double southPoleLongitude, double southPoleLatitude,
                                double rotationAngle, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // (lambdaP, phiP + 90): the grid's own origin in true coordinates.
    void GetOrigin(double* x, double* y) const override;
    bool IsGeographical() const override { return true; }
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Geocentric coordinates on the engine's figure, at height 0, and back by one
    // step of Bowring's method.
    void Geo2XYZ(double lon, double lat, double& X, double& Y, double& Z) const;
    void XYZ2Geo(double X, double Y, double Z, double& lon, double& lat) const;

    const CMatrix& GetForwardRotation() const { return m_forward; }
    const CMatrix& GetInverseRotation() const { return m_inverse; }

private:
    void _init(double southPoleLongitude, double southPoleLatitude, double rotationAngle);
    static void _apply(const double (&m)[3][3], double& X, double& Y, double& Z);

    double m_lambdaP, m_phiP, m_gamma; // degrees
    CMatrix m_inverse;                 // grid to true
    CMatrix m_forward;                 // true to grid
    double m_inv[3][3], m_fwd[3][3];   // the same, row by row, for use per point
};

#endif
