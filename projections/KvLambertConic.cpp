#include "projections/KvLambertConic.h"

#include "projections/KvBatch.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjection.h"

#include <cmath>

namespace {
constexpr double kQuarterPi = 0.7853981633974483;
} // namespace

double CKvLambertConic::T(double phi)
{
    return std::tan(kQuarterPi - phi / 2.0);
}

double CKvLambertConic::C(double e, double phi)
{
    const double s = e * std::sin(phi);
    return std::pow((1.0 + s) / (1.0 - s), e / 2.0);
}

double CKvLambertConic::InverseLatitude(const CKvConformalLatitude::SInverse& inverse, double target)
{
    // t(phi) c(phi) = exp(-psi) with psi the isometric latitude, and sinh psi is the
    // tangent of the conformal latitude; the geodetic latitude follows from it by
    // Karney's series (or Newton's method on the same equation for figures beyond
    // the series' reach, the root the guidance note's iteration converges to).
    const double tanChi = (1.0 / target - target) / 2.0; // sinh(-ln target)
    return CKvConformalLatitude::Latitude(inverse, tanChi);
}

CKvLambertConic::SCone CKvLambertConic::MakeCone(double e, double n, double K, double lnT, double rOrigin, double FE,
                                                 double FN, double lon0, const CKvConformalLatitude::SInverse& inverse)
{
    SCone cone;
    cone.e = e;
    cone.n = n;
    cone.nDeg = n * (3.141592653589793 / 180.0);
    cone.sign = n >= 0.0 ? 1.0 : -1.0;
    cone.K = K;
    cone.invK = 1.0 / K;
    cone.invN = 1.0 / n;
    cone.lnT = lnT;
    cone.rOrigin = rOrigin;
    cone.FE = FE;
    cone.FN = FN;
    cone.lon0 = lon0;
    cone.lambda0 = lon0 * (3.141592653589793 / 180.0);
    cone.inverse = inverse;
    const bool figures = e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit && std::fabs(n) > 0.0 &&
                         std::fabs(n) <= 1.0 && std::isfinite(K) && K != 0.0 && std::isfinite(lnT) &&
                         std::isfinite(rOrigin) && std::isfinite(FE) && std::isfinite(FN) && std::isfinite(lon0);
    cone.fastForward = figures;
    cone.fastInverse = figures && inverse.series;
    return cone;
}

CKvLambertConic::SSphereCone CKvLambertConic::MakeSphereCone(const SCone& cone, double cosEdge)
{
    SSphereCone sphere;
    sphere.halfN = 0.5 * cone.n;
    sphere.nDeg = cone.nDeg;
    sphere.sign = cone.sign;
    sphere.invN = cone.invN;
    sphere.Ks = cone.K * std::exp(-cone.n * cone.lnT);
    sphere.invKs = 1.0 / sphere.Ks;
    sphere.north = cone.FN + cone.rOrigin;
    sphere.rOrigin = cone.rOrigin;
    sphere.FE = cone.FE;
    sphere.FN = cone.FN;
    sphere.lon0 = cone.lon0;
    sphere.lambda0 = cone.lambda0;
    sphere.cosEdge = cosEdge;
    // The cone's own fast path holds its figures; a central meridian within
    // [-180, 180] keeps lon - lon0 within a turn and a half.
    sphere.fast = cone.e == 0.0 && cone.fastForward && std::isfinite(sphere.Ks) && sphere.Ks != 0.0 &&
                  std::isfinite(sphere.invKs) && std::isfinite(cosEdge) && std::fabs(cone.lon0) <= 180.0;
    return sphere;
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvLambertConic::SCone, CKvLambertConic::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvLambertConic::SCone, CKvLambertConic::Inverse)

} // namespace

void CKvLambertConic::ForwardBatch(const SCone& cone, const CKvProjection& engine, std::size_t n, const double* lon,
                                   std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                                   std::size_t xStride, double* y, std::size_t yStride)
{
    CKvBatch::ForEachFastBlock(ForwardBlock, cone, cone.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Geo2Proj(a, b, u, v); });
}

void CKvLambertConic::InverseBatch(const SCone& cone, const CKvProjection& engine, std::size_t n, const double* x,
                                   std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                                   std::size_t lonStride, double* lat, std::size_t latStride)
{
    CKvBatch::ForEachFastBlock(InverseBlock, cone, cone.fastInverse, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Proj2Geo(a, b, u, v); });
}
