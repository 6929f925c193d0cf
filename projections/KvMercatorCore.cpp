#include "projections/KvMercatorCore.h"

#include "projections/KvBatch.h"
#include "projections/KvProjection.h"

CKvMercatorCore::SFigures CKvMercatorCore::MakeFigures(double e, double ak0, double FE, double FN, double lon0)
{
    constexpr double Deg = 3.141592653589793 / 180.0;
    SFigures f;
    f.e = e;
    f.ak0 = ak0;
    f.ak0Deg = ak0 * Deg;
    f.invAk0 = 1.0 / ak0;
    f.invAk0Deg = 1.0 / (ak0 * Deg);
    f.FE = FE;
    f.FN = FN;
    f.lon0 = lon0;
    f.inverse = CKvConformalLatitude::MakeInverse(e);
    const bool figures = e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit && ak0 > 0.0 && std::isfinite(ak0) &&
                         std::isfinite(FE) && std::isfinite(FN) && std::isfinite(lon0);
    f.fastForward = figures;
    f.fastInverse = figures && f.inverse.series;
    f.sphere = e == 0.0;
    return f;
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvMercatorCore::SFigures, CKvMercatorCore::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvMercatorCore::SFigures, CKvMercatorCore::Inverse)
KVCART_DEFINE_BLOCK_LOOP(ForwardSphereBlock, CKvMercatorCore::SFigures, CKvMercatorCore::ForwardSphere)
KVCART_DEFINE_BLOCK_LOOP(InverseSphereBlock, CKvMercatorCore::SFigures, CKvMercatorCore::InverseSphere)

} // namespace

void CKvMercatorCore::ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* lon,
                                   std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                                   std::size_t xStride, double* y, std::size_t yStride)
{
    CKvBatch::ForEachFastBlock(f.sphere ? ForwardSphereBlock : ForwardBlock, f, f.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Geo2Proj(a, b, u, v); });
}

void CKvMercatorCore::InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* x,
                                   std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                                   std::size_t lonStride, double* lat, std::size_t latStride)
{
    CKvBatch::ForEachFastBlock(f.sphere ? InverseSphereBlock : InverseBlock, f, f.fastInverse, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [&engine](double a, double b, double* u, double* v) { engine.Proj2Geo(a, b, u, v); });
}
