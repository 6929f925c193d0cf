#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATORJHS_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATORJHS_H

#include "catalogue/KvTransverseMercatorProjection.h"
#include "projections/KvBatch.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Transverse Mercator by the JHS 154 formulas (IOGP Guidance Note 7-2, method
// 9807): exact conformal latitude, Krüger's series to n^4 for the projection of
// the conformal sphere, and the conformal latitude back to the geodetic one. This
// is the engine every transverse Mercator definition creates.
//
// Points within a quarter turn of the central meridian take a fast path: the
// eccentricity term of the conformal latitude by its power series, sines and
// cosines by inline polynomials, the large angles split into the exact input
// angle plus a small correction (whose arctangent, and the small asinh and asin,
// are series, or libm beyond their reach), and in the inverse Karney's (2011)
// series from conformal to geodetic latitude (to n^6, for n up to 0.0025, which
// covers every terrestrial ellipsoid with an error under 1.2e-16 rad). Other
// points, and figures outside those bounds, take the general path of the JHS
// formulas as written.
class CKvTransverseMercatorJHS : public CKvEngine<CKvTransverseMercatorJHS, CKvTransverseMercatorProjection>
{
public:
    explicit CKvTransverseMercatorJHS(const CKvTransverseMercatorProjection* definition);
    // scale on the central meridian, central meridian and origin latitude in
    // degrees, false easting and northing in metres. An empty name means "NON-UTM".
    CKvTransverseMercatorJHS(const std::string& name, double k0, double centralMeridian, double originLatitude,
                             double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // The batch forms run the fast path on blocks of points in vectorized loops
    // (the same kernels, so the same bits as the single-point calls); a point
    // beyond the fast path's series goes through the single-point call.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    bool IsLocal() const override { return m_bLocal; }
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    // Point scale factor, by the series formula kept as the catalogue has always had it.
    double GetScaleFactor(double lon, double lat) const;

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
    // One point on the fast path; false when the point needs the general one.
    // Vector: the form for the vectorized loops (vector maths for every
    // transcendental call); otherwise small angles take their series.
    template <bool Vector> bool _forwardFast(double lon, double lat, double& x, double& y) const;
    template <bool Vector> bool _inverseFast(double x, double y, double& lon, double& lat) const;
    void _forwardGeneral(double lon, double lat, double* x, double* y) const;
    void _inverseGeneral(double x, double y, double* lon, double* lat) const;
    KVCART_VECTOR_CLONES static void _forwardBlock(const CKvTransverseMercatorJHS& engine, std::size_t count,
                                                   const double* lon, const double* lat, double* x, double* y,
                                                   bool* ok);
    KVCART_VECTOR_CLONES static void _inverseBlock(const CKvTransverseMercatorJHS& engine, std::size_t count,
                                                   const double* x, const double* y, double* lon, double* lat,
                                                   bool* ok);

    double m_a, m_b, m_k0, m_f, m_FE, m_FN;
    double m_lambda0, m_phi0; // radians
    double m_lon0, m_lat0;    // the origin in degrees, as given
    double m_e, m_n, m_A1;
    double m_h[4];  // forward series
    double m_hp[4]; // inverse series, subtracted
    double m_hPoly[4], m_hpPoly[4]; // the same, the fast path's cubics in cos 2(xi + i eta)
    double m_M0;
    double m_invScale; // 1 / (k0 A1): the fast inverse multiplies
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    double m_sig[CKvMathKernel::EccentricSinhTerms]; // sinh(e atanh z) / z as a polynomial in z^2
    bool m_bLocal;
    bool m_fastForward, m_fastInverse;
};

#endif
