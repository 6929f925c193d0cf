#ifndef KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREASPHERE_H
#define KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREASPHERE_H

#include "projections/KvPointVariant.h"

// Lambert azimuthal equal-area on the sphere (Snyder, eqs. 24-2 to 24-4, 20-14,
// 24-16, 20-15), all aspects.
class CKvLambertAzimuthalEqualAreaSphere final : public CKvVariantLoops<CKvLambertAzimuthalEqualAreaSphere, CKvPointVariant>
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvLambertAzimuthalEqualAreaSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                       const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvLambertAzimuthalEqualAreaSphere(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;

private:
    double m_sinPhi0, m_cosPhi0;
    double m_aCosPhi0, m_inv4A2, m_cosPhi0OverA; // for the inverse
};

#endif
