#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvConicVariant.h"

#include <cstddef>

// Equidistant conic on the ellipsoid (Snyder, eqs. 16-5 to 16-11): the radius
// grows with the meridian distance, taken by Helmert's series (to 0.1 micrometre)
// and inverted through the rectifying latitude: on the fast path by the inverse
// series of that same M (CKvConformalLatitude::MeridianLatitudeSeries), in the
// general formulas by the footpoint series and Newton's step (MeridianLatitude).
class CKvEquidistantConicEllipsoid final : public CKvConicVariantT<CKvEquidistantConicEllipsoid>
{
    friend class CKvConicVariantT<CKvEquidistantConicEllipsoid>;

public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvEquidistantConicEllipsoid(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                 double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvEquidistantConicEllipsoid(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike): rho = a G - M(phi), and
    // back through the rectifying latitude (aG - rho) / (a m0).
    struct SFigures
    {
        SCone cone;
        CKvConformalLatitude::SMeridian meridian;
        CKvConformalLatitude::SMeridianInverse footpoint;
        double aG = 0.0;
        bool fast = false, fastInverse = false;
    };

private:
    double _rho(double phi) const override { return m_a * m_G - _meridian(phi); }
    double _latitude(double rho) const override;
    bool _signedRho() const override { return true; }
    double _meridian(double phi) const;

    CKvConformalLatitude::SMeridian m_meridian; // meridian distance and back
    double m_G;
    SFigures m_fast;
};

#endif
