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
        if (!CKvAngle::GuardForward(lat, x, y))
            return;
        m_core.Forward(lon * kDeg, lat * kDeg, x, y);
    }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        m_core.Inverse(x, y, lon, lat);
        *lon = CKvAngle::ReduceLongitudeDegrees(*lon / kDeg);
        *lat /= kDeg;
        CKvAngle::GuardInverse(x, y, lon, lat);
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
