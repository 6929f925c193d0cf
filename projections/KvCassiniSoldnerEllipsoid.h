#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H

#include "projections/KvPointVariant.h"

// Cassini-Soldner on the ellipsoid (IOGP Guidance Note 7-2, method 9806): series
// in the longitude difference around the central meridian, with the meridian
// distance and footpoint latitude series of ComputeFourierCoefficients.
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
    double _meridian(double phi) const;

    double m_M[4], m_F[4];
    double m_M0;
};

#endif
