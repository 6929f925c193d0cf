#ifndef KVCART_PROJECTIONS_KVLAMBERT2SP_H
#define KVCART_PROJECTIONS_KVLAMBERT2SP_H

#include "catalogue/KvLambert2SPProjection.h"
#include "projections/KvLambertConic.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert conformal conic with two standard parallels and a false origin (EPSG
// method 9802).
class CKvLambert2SP : public CKvEngine<CKvLambert2SP, CKvLambert2SPProjection>
{
public:
    explicit CKvLambert2SP(const CKvLambert2SPProjection* definition);
    // first and second parallel, false origin longitude and latitude (degrees), FE, FN.
    // scale: the ellipsoid scaling factor of EPSG's two-parallel Michigan form
    // (method 1051), which multiplies every radius of the cone; 1 for method 9802.
    CKvLambert2SP(const std::string& name, double phi1, double phi2, double lambdaF, double phiF, double falseEasting,
                  double falseNorthing, const CKvEllipsoid& ellipsoid, double scale = 1.0);

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
    // The cone constant n, the map's angle per unit of longitude, and the
    // radius rF of the false origin's parallel: the apex lies rF north of it.
    double GetConeConstant() const { return m_n; }
    double GetApexRadius() const { return m_rF; }
    // The cone's figures, for the engines that turn its grid.
    const CKvLambertConic::SCone& GetCone() const { return m_cone; }

private:
    void _init(double phi1, double phi2, double lambdaF, double phiF, double falseEasting, double falseNorthing,
               double scale);

    double m_lon0, m_lat0; // the false origin in degrees, as given (a latitude on a pole, set on it)
    double m_phi1, m_phi2, m_lambdaF, m_phiF, m_FE, m_FN;
    double m_nu1, m_nu2, m_n, m_rF, m_CF, m_C1, m_C2, m_K;
    double m_nDeg; // n per degree of longitude
    double m_T1; // t(phi1) * C1
    double m_lnT; // its logarithm, minus the isometric latitude there
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    CKvLambertConic::SCone m_cone;            // the same figures for the fast path
};

#endif
