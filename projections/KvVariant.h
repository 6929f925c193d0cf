#ifndef KVCART_PROJECTIONS_KVVARIANT_H
#define KVCART_PROJECTIONS_KVVARIANT_H

#include "projections/KvProjInterface.h"

// A sphere or ellipsoid variant that an engine owns: the inner interface, and a
// copy for the engine's Clone.
class CKvVariant : public CKvProjInterface
{
public:
    virtual CKvVariant* Clone() const = 0;
    // Whether the batch inverse already leaves each point as the engine's
    // inverse guard (CKvAngle::GuardInverse) would, so that the engine makes no
    // second pass over the outputs.
    virtual bool GuardsBatchInverse() const { return false; }
};

// The batch loops of a final variant class TVariant built on TBase: the
// qualified calls bind the variant's own formulas, with no virtual call per point.
template <class TVariant, class TBase> class CKvVariantLoops : public TBase
{
public:
    using TBase::TBase;
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;

    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        CKvBatch::Forward(static_cast<const TVariant&>(*this), n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        CKvBatch::Inverse(static_cast<const TVariant&>(*this), n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
    }
};

#endif
