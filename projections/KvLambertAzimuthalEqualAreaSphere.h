#ifndef KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREASPHERE_H
#define KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREASPHERE_H

#include "projections/KvPointVariant.h"

#include <cstddef>

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
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    // The figures that the general formulas and the fast paths (the
    // inline kernels, in the single-point calls and the vectorized batch loops
    // alike) share.
    struct SFigures
    {
        double a = 0.0, lambda0 = 0.0, FE = 0.0, FN = 0.0;
        double sinPhi0 = 0.0, cosPhi0 = 0.0;
        double aCosPhi0 = 0.0, inv4A2 = 0.0, cosPhi0OverA = 0.0; // for the inverse
        bool fast = false;
    };

private:
    SFigures m_fast;
};

#endif
