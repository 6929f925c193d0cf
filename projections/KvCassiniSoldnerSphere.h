#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNERSPHERE_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNERSPHERE_H

#include "projections/KvPointVariant.h"

// Cassini-Soldner on the sphere (Snyder, eqs. 13-1, 13-2, 13-6, 13-7).
class CKvCassiniSoldnerSphere final : public CKvVariantLoops<CKvCassiniSoldnerSphere, CKvPointVariant>
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvCassiniSoldnerSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                            const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvCassiniSoldnerSphere(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
};

#endif
