#ifndef KVCART_PROJECTIONS_KVHOTINEENGINE_H
#include "projections/KvAngle.h"
#define KVCART_PROJECTIONS_KVHOTINEENGINE_H

#include "projections/KvHotineCore.h"
#include "projections/KvProjectionEngine.h"

// The interface part of the oblique Mercator engines, in degrees.
template <class TEngine, class TDefinition> class CKvHotineEngine : public CKvEngine<TEngine, TDefinition>
{
public:
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        if (m_core.Fast().fastForward && CKvHotineCore::FastForward(m_core.Fast(), lon, lat, *x, *y))
            return;
        if (!CKvAngle::GuardForward(lat, x, y))
            return;
        m_core.Forward(lon * kDeg, lat * kDeg, x, y);
    }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        if (m_core.Fast().fastInverse && CKvHotineCore::FastInverse(m_core.Fast(), x, y, *lon, *lat))
            return;
        m_core.Inverse(x, y, lon, lat);
        *lon = CKvAngle::ReduceLongitudeDegrees(*lon / kDeg);
        *lat /= kDeg;
        CKvAngle::GuardInverse(x, y, lon, lat);
    }

    // The batch forms: vectorized blocks through the fast path.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        CKvHotineCore::ForwardBatch(m_core.Fast(), *this, n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        CKvHotineCore::InverseBatch(m_core.Fast(), *this, n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
    }
    // The projection centre.
    void GetOrigin(double* x, double* y) const override
    {
        *x = m_lonC;
        *y = m_latC;
    }
    double GetConvergence(double lon, double lat) const override { return this->_numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        this->_boxAround(m_lonC, m_latC, true, x1, y1, x2, y2);
    }

protected:
    static constexpr double kDeg = 3.141592653589793 / 180.0;
    using CKvEngine<TEngine, TDefinition>::CKvEngine;

    // Degrees in; the grid angle gammaC is the azimuth unless a rotation is given.
    void _init(double kc, double lonC, double latC, double azimuth, double gridAngle, bool variantB, double fe,
               double fn)
    {
        m_lonC = lonC;
        m_latC = latC;
        m_core = CKvHotineCore(this->_a(), this->_e(), kc, lonC * kDeg, latC * kDeg, azimuth * kDeg, gridAngle * kDeg,
                               variantB, fe, fn);
    }

private:
    CKvHotineCore m_core;
    double m_lonC = 0.0, m_latC = 0.0;
};

#endif
