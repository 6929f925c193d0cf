#ifndef KVCART_PROJECTIONS_KVVARIANTENGINE_H
#include "projections/KvAngle.h"
#define KVCART_PROJECTIONS_KVVARIANTENGINE_H

#include "coordsys/KvMapProjection.h"
#include "projections/KvProjectionEngine.h"
#include "projections/KvVariant.h"

#include <cmath>
#include <limits>

// An engine that keeps its mathematics in a sphere and an ellipsoid variant and
// forwards to the one its ellipsoid selects: an inverse flattening of exactly 0
// takes the sphere. Without a known ellipsoid there is no variant, and the
// conversions leave their outputs as they were. TEngine provides
//   static CKvVariant* _makeVariant(const TDefinition&, const CKvEllipsoid&);
template <class TEngine, class TDefinition> class CKvVariantEngine : public CKvEngine<TEngine, TDefinition>
{
public:
    enum EVariant
    {
        eNoVariant = 0,
        eEllipsoidVariant = 1,
        eSphereVariant = 2
    };

    CKvVariantEngine(const CKvVariantEngine& other)
        : CKvEngine<TEngine, TDefinition>(other), m_pVariant(other.m_pVariant ? other.m_pVariant->Clone() : nullptr),
          m_nVariant(other.m_nVariant)
    {
    }
    CKvVariantEngine& operator=(const CKvVariantEngine&) = delete;
    ~CKvVariantEngine() override { delete m_pVariant; }

    // Without an ellipsoid there is no variant, and no point: NaN.
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->Geo2Proj(lon, lat, x, y);
        else
            *x = *y = std::nan("");
    }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        if (m_pVariant != nullptr) {
            m_pVariant->Proj2Geo(x, y, lon, lat);
            CKvAngle::GuardInverse(x, y, lon, lat);
        } else {
            *lon = *lat = std::nan("");
        }
    }
    // The batch forms hand the whole array to the variant's own loop: one virtual
    // call per batch. The inverse guard needs each point's grid input, which an
    // in-place call overwrites, so the inputs go through a block of copies.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->Geo2Proj(n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
        else
            CKvEngine<TEngine, TDefinition>::Geo2Proj(n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        if (m_pVariant == nullptr) {
            CKvEngine<TEngine, TDefinition>::Proj2Geo(n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
            return;
        }
        if (m_pVariant->GuardsBatchInverse()) {
            m_pVariant->Proj2Geo(n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
            return;
        }
        constexpr std::size_t D = sizeof(double);
        if (xStride == D && yStride == D && lonStride == D && latStride == D && CKvBatch::Apart(x, n, lon, n) &&
            CKvBatch::Apart(x, n, lat, n) && CKvBatch::Apart(y, n, lon, n) && CKvBatch::Apart(y, n, lat, n)) {
            // Outputs apart from the inputs: the grid points are still there for
            // the guard, which follows each stretch of two blocks while its four
            // arrays (16 KiB) are in the first-level cache.
            constexpr std::size_t stretch = 2 * CKvBatch::BlockSize;
            for (std::size_t first = 0; first < n; first += stretch) {
                const std::size_t count = n - first < stretch ? n - first : stretch;
                m_pVariant->Proj2Geo(count, x + first, D, y + first, D, lon + first, D, lat + first, D);
                _guardInverseBlock(count, x + first, y + first, lon + first, lat + first);
            }
            return;
        }
        CKvBatch::ForEachCopiedBlock(
            n, x, xStride, y, yStride, [&](std::size_t first, std::size_t count, double* bx, double* by) {
                double* blockLon = CKvBatch::At(lon, lonStride, first);
                double* blockLat = CKvBatch::At(lat, latStride, first);
                m_pVariant->Proj2Geo(count, bx, sizeof(double), by, sizeof(double), blockLon, lonStride, blockLat,
                                     latStride);
                if (lonStride == sizeof(double) && latStride == sizeof(double)) {
                    _guardInverseBlock(count, bx, by, blockLon, blockLat);
                } else {
                    for (std::size_t i = 0; i < count; ++i)
                        CKvAngle::GuardInverse(bx[i], by[i], CKvBatch::At(blockLon, lonStride, i),
                                               CKvBatch::At(blockLat, latStride, i));
                }
            });
    }
    void GetOrigin(double* x, double* y) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->GetOrigin(x, y);
        else
            CKvProjection::GetOrigin(x, y);
    }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->GetDefaultArea(x1, y1, x2, y2);
        else
            CKvProjection::GetDefaultArea(x1, y1, x2, y2);
    }
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override
    {
        return m_pVariant != nullptr && m_pVariant->GetAnonymousEllipsoid(ellipsoid);
    }
    double GetConvergence(double lon, double lat) const override { return this->_numericConvergence(lon, lat); }

    EVariant GetVariant() const { return m_nVariant; }

protected:
    // From a definition: the ellipsoid comes from the catalogue by its identifier.
    explicit CKvVariantEngine(const TDefinition& definition) : CKvEngine<TEngine, TDefinition>(definition)
    {
        const std::string id = definition.GetEllipsoidID();
        if (const CKvEllipsoid* ellipsoid = CKvMapProjection::EllipsoidFromID(id.c_str()))
            _adopt(TEngine::_makeVariant(definition, *ellipsoid), *ellipsoid);
    }

    // From explicit values: the definition carries the parameters only.
    CKvVariantEngine(const char* name, const TDefinition& parameters, const CKvEllipsoid& ellipsoid)
        : CKvEngine<TEngine, TDefinition>(name, ellipsoid)
    {
        _adopt(TEngine::_makeVariant(parameters, ellipsoid), ellipsoid);
    }

    static bool _isSphere(const CKvEllipsoid& ellipsoid) { return ellipsoid.GetInvFlatness() == 0.0; }

private:
    // CKvAngle::GuardInverse over a block of contiguous outputs, the same values
    // chosen rather than branched to, so that the loop vectorizes: the guard
    // costs the batch of a fast variant a few percent instead of a quarter.
    static void _guardInverseBlock(std::size_t count, const double* x, const double* y, double* lon, double* lat)
    {
        const double nan = std::numeric_limits<double>::quiet_NaN(), huge = std::numeric_limits<double>::max();
        KVCART_SIMD_LOOP
        for (std::size_t i = 0; i < count; ++i) {
            const double lambda = lon[i], phi = lat[i], size = std::fabs(phi);
            const bool kept = (std::fabs(x[i]) <= huge) & (std::fabs(y[i]) <= huge) & (size <= 90.0 + 1e-9);
            const double onPole = size <= 90.0 ? phi : std::copysign(90.0, phi);
            lon[i] = kept ? lambda : nan;
            lat[i] = kept ? onPole : nan;
        }
    }

    void _adopt(CKvVariant* variant, const CKvEllipsoid& ellipsoid)
    {
        m_pVariant = variant;
        m_nVariant = _isSphere(ellipsoid) ? eSphereVariant : eEllipsoidVariant;
    }

    CKvVariant* m_pVariant = nullptr;
    EVariant m_nVariant = eNoVariant;
};

#endif
