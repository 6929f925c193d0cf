#ifndef KVCART_PROJECTIONS_KVCONICVARIANT_H
#define KVCART_PROJECTIONS_KVCONICVARIANT_H

#include "projections/KvAngle.h"
#include "projections/KvVariant.h"

#include <cmath>

// What the sphere and ellipsoid variants of the conic engines share: the cone
// (constant n, radius rho0 of the origin parallel) and the mapping between the
// polar coordinates (rho, theta) on it and the grid. Each variant supplies the
// radius of a latitude and its inverse. Angles are held in radians.
class CKvConicVariant : public CKvVariant
{
public:
    void GetOrigin(double* x, double* y) const override;
    // A box of 3 degrees around the origin, latitudes clamped at the poles.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override;

protected:
    // Parallels, central meridian and origin latitude in degrees; FE and FN in metres.
    CKvConicVariant(double phi1, double phi2, double lambda0, double phi0, double falseEasting, double falseNorthing,
                    const CKvEllipsoid& ellipsoid);

    // The cone's radius of latitude phi, and the latitude of a radius.
    virtual double _rho(double phi) const = 0;
    virtual double _latitude(double rho) const = 0;
    // Whether the inverse takes rho negative on a cone that opens southwards.
    virtual bool _signedRho() const = 0;
    // Called by the variant's constructor once n is known.
    void _setCone(double n, double rho0)
    {
        m_n = n;
        m_nDeg = n * CKvAngle::Pi / 180.0;
        m_rho0 = rho0;
    }

    double m_a, m_invF;
    double m_lon0; // the central meridian in degrees, as given
    double m_phi1, m_phi2, m_lambda0, m_phi0, m_FE, m_FN;
    double m_lat0; // the origin latitude in degrees, as given
    double m_n = 0.0, m_rho0 = 0.0;
    double m_nDeg = 0.0; // n per degree of longitude
};

// The cone's mapping for a final variant class TVariant, which names this class
// a friend: its radius functions are called by qualified name, bound at compile
// time, in the single-point forms and so in the batch loops.
template <class TVariant> class CKvConicVariantT : public CKvVariantLoops<TVariant, CKvConicVariant>
{
public:
    using CKvVariantLoops<TVariant, CKvConicVariant>::CKvVariantLoops;
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;

    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        if (!CKvAngle::GuardForward(lat, x, y))
            return;
        const TVariant& self = static_cast<const TVariant&>(*this);
        const double rho = self.TVariant::_rho(lat * kDeg);
        const double theta = this->m_nDeg * CKvAngle::LongitudeDifferenceDegrees(lon, this->m_lon0);
        *x = this->m_FE + rho * std::sin(theta);
        *y = this->m_FN + this->m_rho0 - rho * std::cos(theta);
    }

    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        const TVariant& self = static_cast<const TVariant&>(*this);
        const double n = this->m_n;
        // On a cone opening southwards (n < 0) the polar coordinates turn round.
        const double X = n >= 0.0 ? x - this->m_FE : this->m_FE - x;
        const double Y = n >= 0.0 ? this->m_rho0 - (y - this->m_FN) : (y - this->m_FN) - this->m_rho0;
        const double theta = std::atan2(X, Y);
        double rho = std::sqrt(X * X + Y * Y);
        if (n < 0.0 && self.TVariant::_signedRho())
            rho = -rho;
        *lon = CKvAngle::InverseLongitudeDegrees((this->m_lambda0 + theta / n) / kDeg);
        *lat = self.TVariant::_latitude(rho) / kDeg;
    }

private:
    static constexpr double kDeg = CKvAngle::Pi / 180.0;
};

#endif
