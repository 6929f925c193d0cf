#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H

#include "projections/KvConicVariant.h"

#include <cstddef>

// Albers conic equal-area on the sphere (Snyder, eqs. 14-1 to 14-8).
class CKvAlbersEqualAreaSphere final : public CKvConicVariantT<CKvAlbersEqualAreaSphere>
{
    friend class CKvConicVariantT<CKvAlbersEqualAreaSphere>;

public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvAlbersEqualAreaSphere(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                             double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvAlbersEqualAreaSphere(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike):
    //   rho = (a / n) sqrt(C - 2n sin phi), sin phi = C / 2n - rho^2 n / 2a^2.
    struct SFigures
    {
        SCone cone;
        double C = 0.0, twoN = 0.0, aOverN = 0.0;
        double sinPhiApex = 0.0, sinPhiPerRho2 = 0.0;
        bool fast = false;
    };

private:
    double _rho(double phi) const override;
    double _latitude(double rho) const override;
    bool _signedRho() const override { return false; }

    double m_C;
    SFigures m_fast;
};

#endif
