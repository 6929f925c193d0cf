#ifndef KVCART_PROJECTIONS_KVMERCATORENGINE_H
#include "projections/KvAngle.h"
#define KVCART_PROJECTIONS_KVMERCATORENGINE_H

#include "catalogue/KvFloatCompareRel.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMercatorCore.h"
#include "projections/KvProjectionEngine.h"

#include <cmath>

// The normal-aspect Mercator on the ellipsoid (IOGP Guidance Note 7-2, methods
// 9804 and 9805), shared by the engine that takes the scale on the equator and the
// one that derives it from a standard parallel. The inverse is closed-form: the
// isometric latitude from the northing, then Karney's series from the conformal
// latitude to the geodetic one, exact to rounding like the forward's isometric
// latitude, so that a point carried back and forth stays where it is.
template <class TEngine, class TDefinition> class CKvMercatorEngine : public CKvEngine<TEngine, TDefinition>
{
public:
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        // A longitude beyond +-180 is not wrapped: lon0 + 360 lies a whole
        // equator further east (CKvAngle::LongitudeDifferenceDegrees).
        if (m_fast.fastForward && CKvMercatorCore::ForwardPoint(m_fast, lon, lat, *x, *y))
            return;
        if (!CKvAngle::GuardForward(lat, x, y))
            return;
        const double phi = lat * kDeg;
        *x = m_FE + m_ak0Deg * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
        // The guidance's ln(tan(pi/4 + phi/2) ((1 - e sin phi) / (1 + e sin phi))^(e/2))
        // is the isometric latitude.
        *y = m_FN + m_ak0 * CKvConformalLatitude::Isometric(phi, this->_e());
    }

    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        if (m_fast.fastInverse && CKvMercatorCore::InversePoint(m_fast, x, y, *lon, *lat))
            return;
        // sinh of the isometric latitude is the tangent of the conformal latitude.
        const double phi = CKvConformalLatitude::Latitude(m_inverse, std::sinh((y - m_FN) / m_ak0));
        *lon = CKvAngle::InverseLongitudeDegrees(((x - m_FE) / m_ak0 + m_lambda0) / kDeg);
        *lat = phi / kDeg;
        CKvAngle::GuardInverse(x, y, lon, lat);
    }

    // The batch forms: vectorized blocks through the fast path.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        CKvMercatorCore::ForwardBatch(m_fast, *this, n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        CKvMercatorCore::InverseBatch(m_fast, *this, n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
    }

    void GetOrigin(double* x, double* y) const override
    {
        *x = m_lon0;
        *y = 0.0;
    }

    double GetConvergence(double lon, double lat) const override { return this->_numericConvergence(lon, lat); }

    // A map centred on the Greenwich meridian and the equator gets a world view
    // without the far south; any other origin a box of 3 degrees around it.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        double lon, lat;
        GetOrigin(&lon, &lat);
        if (CKvFloatCompareRel::Close(lon, 0.0) && CKvFloatCompareRel::Close(lat, 0.0)) {
            this->Geo2Proj(-180.0, -60.0, x1, y1);
            this->Geo2Proj(180.0, 81.0, x2, y2);
        } else {
            this->_boxAround(lon, lat, false, x1, y1, x2, y2);
        }
    }

    // Always hands out the stored figure, even a zero one.
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override
    {
        ellipsoid.SetParams(this->_a(), this->_invF());
        return true;
    }

    double GetScale() const { return m_k0; }

protected:
    static constexpr double kPi = 3.141592653589793;
    static constexpr double kDeg = kPi / 180.0;

    using CKvEngine<TEngine, TDefinition>::CKvEngine;

    void _init(double k0, double lambda0, double falseEasting, double falseNorthing)
    {
        m_lon0 = lambda0;
        m_lambda0 = lambda0 * kDeg;
        m_FE = falseEasting;
        m_FN = falseNorthing;
        m_inverse = CKvConformalLatitude::MakeInverse(this->_e());
        m_k0 = k0;
        m_ak0 = this->_a() * m_k0;
        m_ak0Deg = m_ak0 * kDeg;
        m_fast = CKvMercatorCore::MakeFigures(this->_e(), m_ak0, m_FE, m_FN, m_lon0);
    }

private:
    double m_lon0 = 0.0; // degrees
    double m_lambda0 = 0.0, m_FE = 0.0, m_FN = 0.0;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    double m_k0 = 0.0;
    double m_ak0 = 0.0;
    double m_ak0Deg = 0.0; // a k0 per degree of longitude
    CKvMercatorCore::SFigures m_fast;
};

#endif
