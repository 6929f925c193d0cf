#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICENGINE_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICENGINE_H

#include "projections/KvAngle.h"
#include "projections/KvPolarStereographicCore.h"
#include "projections/KvProjectionEngine.h"

// The interface part of the three polar stereographic engines, in degrees.
template <class TEngine, class TDefinition> class CKvPolarStereographicEngine : public CKvEngine<TEngine, TDefinition>
{
public:
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        const CKvPolarStereographicCore::SFigures& f = m_core.Figures();
        if (f.fastForward && CKvPolarStereographicCore::Forward(f, lon, lat, *x, *y))
            return;
        if (!CKvAngle::GuardForward(lat, x, y))
            return;
        m_core.Forward(lon * kDeg, lat * kDeg, x, y);
    }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        const CKvPolarStereographicCore::SFigures& f = m_core.Figures();
        if (f.fastInverse && CKvPolarStereographicCore::Inverse(f, x, y, *lon, *lat))
            return;
        m_core.Inverse(x, y, lon, lat);
        *lon = CKvAngle::ReduceLongitudeDegrees(*lon / kDeg);
        *lat /= kDeg;
        CKvAngle::GuardInverse(x, y, lon, lat);
    }
    // The batch forms run the core's fast path on blocks of points in vectorized
    // loops (the same kernels, so the same bits as the single-point calls); a
    // point beyond it goes through the engine's own single-point call.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        CKvPolarStereographicCore::ForwardBatch(m_core.Figures(), *this, n, lon, lonStride, lat, latStride, x, xStride,
                                                y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        CKvPolarStereographicCore::InverseBatch(m_core.Figures(), *this, n, x, xStride, y, yStride, lon, lonStride,
                                                lat, latStride);
    }
    void GetOrigin(double* x, double* y) const override
    {
        *x = m_lambda0;
        *y = m_phi0;
    }
    double GetConvergence(double lon, double lat) const override
    {
        if (!CKvAngle::IsLatitude(lat))
            return std::nan("");
        return m_core.Convergence(lon * kDeg) / kDeg;
    }
    // 3 degrees around the origin, clamped at the poles and at +-180.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        this->_boxAround(m_lambda0, m_phi0, true, x1, y1, x2, y2);
    }
    // values[0]: the scale factor at the pole.
    void GetDerivedParameters(double* values) const override { values[0] = m_core.ScaleAtPole(); }

protected:
    static constexpr double kDeg = 3.141592653589793 / 180.0;
    using CKvEngine<TEngine, TDefinition>::CKvEngine;

    // origin: the point GetOrigin reports, in degrees.
    void _setCore(const CKvPolarStereographicCore& core, double originLon, double originLat)
    {
        m_core = core;
        m_lambda0 = originLon;
        m_phi0 = originLat;
    }

private:
    CKvPolarStereographicCore m_core;
    double m_lambda0 = 0.0, m_phi0 = 0.0;
};

#endif
