#ifndef KVCART_PROJECTIONS_KVCONICVARIANT_H
#define KVCART_PROJECTIONS_KVCONICVARIANT_H

#include "projections/KvAngle.h"
#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"
#include "projections/KvVariant.h"

#include <cmath>
#include <cstddef>

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

    // The cone's figures for the variants' fast paths, which compute one point
    // with the inline math kernels and values chosen rather than branches, the
    // same operations in the single-point calls and the vectorized batch loops.
    struct SCone
    {
        double n = 0.0, nDeg = 0.0, invN = 0.0, sign = 1.0, rho0 = 0.0;
        double FE = 0.0, FN = 0.0, lon0 = 0.0, lambda0 = 0.0;
        double degreesPerTheta = 0.0; // 180 / (pi n): the longitude of an angle about the apex
        bool finite = false; // every figure finite, n not 0
    };
    // What every variant's figures start with: the cone, and whether the
    // variant's own figures are within the kernels' reach, forward and back.
    struct SFastFigures
    {
        SCone cone;
        bool fastForward = false, fastInverse = false;
    };
    // The grid point of radius rho at d degrees of longitude from the central
    // meridian: sin theta and cos theta = sin(pi/2 - |theta|) by the series
    // without reduction (pi/2 - |theta| exact from 45 degrees on, by Sterbenz's
    // lemma), shorter than a reduced sine and cosine. false for |theta| beyond
    // a quarter turn (or NaN).
    static KVCART_ALWAYS_INLINE bool Place(const SCone& cone, double rho, double d, double& x, double& y)
    {
        constexpr double HalfPi = 1.5707963267948966;
        const double theta = cone.nDeg * d;
        const double sinTheta = CKvMathKernel::SinHalfPi(theta);
        const double cosTheta = CKvMathKernel::SinHalfPi(HalfPi - std::fabs(theta));
        x = cone.FE + rho * sinTheta;
        y = cone.FN + cone.rho0 - rho * cosTheta;
        return std::fabs(theta) <= HalfPi;
    }
    // The fast paths take lon - lon0 where it needs no reduction; a point they
    // leave for a difference beyond +-180 goes through the same operations with
    // the difference that CKvAngle::LongitudeDifferenceDegrees gives, so that
    // 180 and -180 land on the same bits.
    static double ReducedDifference(const SCone& cone, double lon)
    {
        return CKvAngle::LongitudeDifferenceDegrees(lon, cone.lon0);
    }
    // The longitude (degrees) of a grid point and its squared distance from the
    // apex: (dx, dy) = rho (sin theta, cos theta), both turned round on a cone
    // opening southwards, lon = lon0 + theta 180 / (pi n). false for a
    // longitude beyond +-180 (to be reduced), a point beyond 1e150 m (where the
    // kernel's atan2 could overflow), NaN.
    static KVCART_ALWAYS_INLINE bool Unplace(const SCone& cone, double x, double y, double& lon, double& rho2)
    {
        const double dx = x - cone.FE, dy = cone.rho0 - (y - cone.FN);
        rho2 = dx * dx + dy * dy;
        lon = CKvMathKernel::Atan2(cone.sign * dx, cone.sign * dy) * cone.degreesPerTheta + cone.lon0;
        return (rho2 <= 1e300) & (std::fabs(lon) <= 180.0);
    }

    // The variant of an engine's parameters p for its ellipsoid: TSphere on a
    // sphere, TEllipsoid otherwise, both taking the parallels, the central
    // meridian, the origin latitude, FE and FN.
    template <class TSphere, class TEllipsoid, class TParameters>
    static CKvVariant* Make(const TParameters& p, const CKvEllipsoid& ellipsoid, bool sphere)
    {
        if (sphere)
            return new TSphere(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(), p.GetOriginLatitude(),
                               p.GetFalseEasting(), p.GetFalseNorthing(), ellipsoid);
        return new TEllipsoid(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(), p.GetOriginLatitude(),
                              p.GetFalseEasting(), p.GetFalseNorthing(), ellipsoid);
    }

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
        m_cone.n = n;
        m_cone.nDeg = m_nDeg;
        m_cone.invN = 1.0 / n;
        m_cone.sign = n >= 0.0 ? 1.0 : -1.0;
        m_cone.rho0 = rho0;
        m_cone.FE = m_FE;
        m_cone.FN = m_FN;
        m_cone.lon0 = m_lon0;
        m_cone.lambda0 = m_lambda0;
        m_cone.degreesPerTheta = 180.0 / (CKvAngle::Pi * n);
        m_cone.finite = n != 0.0 && std::isfinite(m_cone.invN) &&
                        std::isfinite(m_cone.degreesPerTheta) && std::isfinite(rho0) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN) && std::isfinite(m_lon0);
    }

    double m_a, m_invF;
    double m_lon0; // the central meridian in degrees, as given
    double m_phi1, m_phi2, m_lambda0, m_phi0, m_FE, m_FN;
    double m_lat0; // the origin latitude in degrees, as given
    double m_n = 0.0, m_rho0 = 0.0;
    double m_nDeg = 0.0; // n per degree of longitude
    SCone m_cone;
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

// The members that a conic variant CLASS with a fast path declares, in its
// public part: the single-point calls, the batch forms, its copy, and the
// batch inverse that guards its own points (the engine then makes no second
// pass). KVCART_DEFINE_CONIC_FAST_CALLS defines them.
#define KVCART_DECLARE_CONIC_FAST_CALLS(CLASS)                                                                      \
    using CKvProjInterface::Geo2Proj;                                                                              \
    using CKvProjInterface::Proj2Geo;                                                                              \
    CKvVariant* Clone() const override { return new CLASS(*this); }                                                \
    bool GuardsBatchInverse() const override { return true; }                                                      \
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;                                    \
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;                                    \
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride, \
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;                  \
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,       \
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

// The single-point calls and batch forms of a conic variant CLASS with a fast
// path, whose figures CLASS::SFigures (an SFastFigures) m_fast holds. The file
// that expands this defines, before it, on those figures:
//   ForwardAt(f, d, lat, x, y): the point at d degrees from the central meridian;
//   Inverse(f, x, y, lon, lat), whose points within the path are within the
//     inverse guard as they are (finite grid input, |lat| <= 90);
// and gets from it Forward (lon - lon0 within +-180, no reduction) and the
// block loops ForwardBlock and InverseBlock (KVCART_DEFINE_BLOCK_LOOP). A point
// the fast path leaves (a longitude difference beyond +-180 is tried once more
// reduced) takes CKvConicVariantT's general formulas, in the batch as in the
// single-point call, so that both give the same bits; in the batch inverse
// followed by the engine's guard, which the engine applies to its single-point
// calls.
#define KVCART_DEFINE_CONIC_FAST_CALLS(CLASS)                                                                       \
    namespace {                                                                                                    \
    KVCART_ALWAYS_INLINE bool Forward(const CLASS::SFigures& f, double lon, double lat, double& x, double& y)       \
    {                                                                                                              \
        const double d = lon - f.cone.lon0;                                                                        \
        return ForwardAt(f, d, lat, x, y) & (std::fabs(d) <= 180.0);                                               \
    }                                                                                                              \
    KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CLASS::SFigures, Forward)                                               \
    KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CLASS::SFigures, Inverse)                                               \
    }                                                                                                              \
    void CLASS::Geo2Proj(double lon, double lat, double* x, double* y) const                                       \
    {                                                                                                              \
        if (m_fast.fastForward &&                                                                                  \
            (Forward(m_fast, lon, lat, *x, *y) ||                                                                  \
             ForwardAt(m_fast, CKvConicVariant::ReducedDifference(m_cone, lon), lat, *x, *y)))                     \
            return;                                                                                                \
        CKvConicVariantT::Geo2Proj(lon, lat, x, y);                                                                \
    }                                                                                                              \
    void CLASS::Proj2Geo(double x, double y, double* lon, double* lat) const                                       \
    {                                                                                                              \
        if (m_fast.fastInverse && Inverse(m_fast, x, y, *lon, *lat))                                               \
            return;                                                                                                \
        CKvConicVariantT::Proj2Geo(x, y, lon, lat);                                                                \
    }                                                                                                              \
    void CLASS::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,               \
                         std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const \
    {                                                                                                              \
        CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fastForward, n, lon, lonStride, lat, latStride, x,  \
                                   xStride, y, yStride,                                                            \
                                   [this](double a, double b, double* u, double* v) { CLASS::Geo2Proj(a, b, u, v); }); \
    }                                                                                                              \
    void CLASS::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride, \
                         double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const             \
    {                                                                                                              \
        CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fastInverse, n, x, xStride, y, yStride, lon,       \
                                   lonStride, lat, latStride, [this](double a, double b, double* u, double* v) {   \
                                       CKvConicVariantT::Proj2Geo(a, b, u, v);                                     \
                                       CKvAngle::GuardInverse(a, b, u, v);                                         \
                                   });                                                                             \
    }

#endif
