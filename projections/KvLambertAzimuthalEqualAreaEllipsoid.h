#ifndef KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREAELLIPSOID_H
#define KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREAELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvPointVariant.h"

#include <cstddef>

// Lambert azimuthal equal-area on the ellipsoid (IOGP Guidance Note 7-2, method
// 9820), oblique and polar aspects, through the authalic latitude. The authalic
// latitude is carried as its sine q / q_P and cosine, and the arc from the centre
// of the inverse as the sine of its half, rho / 2R_q: the only inverse
// trigonometric functions are the longitude's atan2 and the latitude's asin.
class CKvLambertAzimuthalEqualAreaEllipsoid final : public CKvVariantLoops<CKvLambertAzimuthalEqualAreaEllipsoid, CKvPointVariant>
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvLambertAzimuthalEqualAreaEllipsoid(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                          const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvLambertAzimuthalEqualAreaEllipsoid(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    // The figures of the oblique aspect, which the general formulas and the
    // fast paths (the inline kernels, in the single-point calls and the
    // vectorized batch loops alike) share.
    struct SFigures
    {
        CKvConformalLatitude::SAuthalic authalic; // q of a latitude and back
        double lambda0 = 0.0, FE = 0.0, FN = 0.0;
        double sinBeta0 = 0.0, cosBeta0 = 0.0, D = 0.0;
        // Products and reciprocals of R_q, D, q_P and the above.
        double invQP = 0.0, RqD = 0.0, RqOverD = 0.0, D2 = 0.0, invD2 = 0.0, inv4Rq2 = 0.0, invRq = 0.0;
        double DRqCosBeta0 = 0.0, D2SinBeta0 = 0.0;
        bool fastForward = false, fastInverse = false;
    };

private:
    SFigures m_fast;
    int m_pole; // 1 or -1 for the polar aspects, 0 for the oblique one
    double m_invA2qP;
};

#endif
