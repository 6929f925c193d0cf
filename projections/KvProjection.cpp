#include "projections/KvProjection.h"

#include "projections/KvBatch.h"

CKvProjection::~CKvProjection() = default;

void CKvProjection::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                             std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvBatch::ForEachPoint(n, lon, lonStride, lat, latStride, x, xStride, y, yStride,
                           [this](double a, double b, double* u, double* v) { Geo2Proj(a, b, u, v); });
}

void CKvProjection::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                             double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvBatch::ForEachPoint(n, x, xStride, y, yStride, lon, lonStride, lat, latStride,
                           [this](double a, double b, double* u, double* v) { Proj2Geo(a, b, u, v); });
}

void CKvProjection::GetOrigin(double* x, double* y) const
{
    *x = 0.0;
    *y = 0.0;
}

double CKvProjection::GetConvergence(double, double) const
{
    return 0.0;
}

void CKvProjection::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    *x1 = 0.0;
    *y1 = 0.0;
    *x2 = 0.0;
    *y2 = 0.0;
}

bool CKvProjection::IsLocal() const
{
    return false;
}

bool CKvProjection::IsGeographical() const
{
    return false;
}

void CKvProjection::free()
{
    delete this;
}

void CKvProjection::GetDerivedParameters(double*) const {}

bool CKvProjection::GetAnonymousEllipsoid(CKvEllipsoid&) const
{
    return false;
}

void CKvProjection::Release(CKvProjection* engine)
{
    if (engine != nullptr)
        engine->free();
}
