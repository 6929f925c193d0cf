#ifndef KVCART_PROJECTIONS_KVPROJINTERFACE_H
#define KVCART_PROJECTIONS_KVPROJINTERFACE_H

#include "catalogue/KvEllipsoid.h"
#include "projections/KvBatch.h"

#include <cstddef>

// The inner interface behind which an engine keeps its sphere and ellipsoid
// variants; the owning engine picks one at construction and forwards to it.
class CKvProjInterface
{
public:
    virtual ~CKvProjInterface() = default;
    virtual void Geo2Proj(double lon, double lat, double* x, double* y) const = 0;
    virtual void Proj2Geo(double x, double y, double* lon, double* lat) const = 0;
    // n points, strides in bytes, as the engines' batch forms; the variants'
    // own loops (CKvVariantLoops) replace these single-call loops.
    virtual void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                          std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const
    {
        CKvBatch::ForEachPoint(n, lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) { Geo2Proj(a, b, u, v); });
    }
    virtual void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                          double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const
    {
        CKvBatch::ForEachPoint(n, x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [this](double a, double b, double* u, double* v) { Proj2Geo(a, b, u, v); });
    }
    virtual void GetOrigin(double* x, double* y) const = 0;
    virtual void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const = 0;
    virtual bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const = 0;
};

#endif
