#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICSPHERE_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICSPHERE_H

#include "projections/KvConicVariant.h"

#include <cstddef>

// Equidistant conic on the sphere (Snyder, eqs. 16-1 to 16-4).
class CKvEquidistantConicSphere final : public CKvConicVariantT<CKvEquidistantConicSphere>
{
    friend class CKvConicVariantT<CKvEquidistantConicSphere>;

public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvEquidistantConicSphere(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                              double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvEquidistantConicSphere(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike): rho = a (G - phi).
    struct SFigures
    {
        SCone cone;
        double a = 0.0, G = 0.0, invA = 0.0;
        bool fast = false;
    };

private:
    double _rho(double phi) const override { return m_a * (m_G - phi); }
    double _latitude(double rho) const override { return m_G - rho / m_a; }
    bool _signedRho() const override { return true; }

    double m_G;
    SFigures m_fast;
};

#endif
