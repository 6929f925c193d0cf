#ifndef KVCART_PROJECTIONS_KVLAMBERT1SP_H
#define KVCART_PROJECTIONS_KVLAMBERT1SP_H

#include "catalogue/KvLambert1SPProjection.h"
#include "projections/KvLambertConic.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert conformal conic with one standard parallel, the latitude of the natural
// origin, and a scale factor there (EPSG method 9801).
class CKvLambert1SP : public CKvEngine<CKvLambert1SP, CKvLambert1SPProjection>
{
public:
    explicit CKvLambert1SP(const CKvLambert1SPProjection* definition);
    // k0, then the natural origin's longitude and latitude in degrees, FE, FN.
    CKvLambert1SP(const std::string& name, double k0, double lambda0, double phi0, double falseEasting,
                  double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // The batch forms run the cone's fast path on blocks of points in vectorized
    // loops (the same kernels, so the same bits as the single-point calls); a point
    // beyond it goes through the single-point call.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    // The radius r0 of the origin's parallel: the apex lies r0 north of the origin.
    double GetApexRadius() const { return m_r0; }
    // The cone's figures, for the engines that turn its grid.
    const CKvLambertConic::SCone& GetCone() const { return m_cone; }

private:
    void _init(double k0, double lambda0, double phi0, double falseEasting, double falseNorthing);

    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_lambda0, m_phi0, m_FE, m_FN;
    double m_nu0, m_n, m_cotPhi0, m_r0, m_k0, m_C0;
    double m_nDeg; // n per degree of longitude
    double m_T0; // t(phi0) * C0, the isometric term at the origin
    double m_lnT; // its logarithm, minus the isometric latitude there
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    CKvLambertConic::SCone m_cone;            // the same figures for the fast path
};

#endif
