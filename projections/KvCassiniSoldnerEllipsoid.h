#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvPointVariant.h"

// Cassini-Soldner on the ellipsoid (IOGP Guidance Note 7-2, method 9806): series
// in the longitude difference around the central meridian, with the meridian
// distance and footpoint latitude series of CKvConformalLatitude::SMeridian. The
// forward series defines the grid; the inverse series is polished on it by
// Newton's method.
class CKvCassiniSoldnerEllipsoid final : public CKvVariantLoops<CKvCassiniSoldnerEllipsoid, CKvPointVariant>
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvCassiniSoldnerEllipsoid(double lambda0, double phi0, double falseEasting, double falseNorthing,
                               const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvCassiniSoldnerEllipsoid(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;

private:
    // The forward series at phi and the longitude difference dLambda (radians);
    // with jacobian, also dx/dphi, dx/dlambda, dy/dphi, dy/dlambda in that order.
    void _grid(double phi, double dLambda, double* x, double* y, double* jacobian) const;

    CKvConformalLatitude::SMeridian m_meridian; // meridian distance and back
    double m_M0;
    double m_ep2; // e'^2 = e^2 / (1 - e^2)
};

#endif
