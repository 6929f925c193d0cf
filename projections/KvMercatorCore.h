#ifndef KVCART_PROJECTIONS_KVMERCATORCORE_H
#define KVCART_PROJECTIONS_KVMERCATORCORE_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <cstddef>

class CKvProjection;

// The fast path of the normal-aspect Mercators (IOGP Guidance Note 7-2, methods
// 9804 and 9805, and the Popular Visualisation Pseudo-Mercator, 1024, which is
// the spherical formulas on the ellipsoid's semi-major axis: e = 0 here):
//   x = FE + a k0 (lon - lon0), y = FN + a k0 psi,
// psi the isometric latitude; back, the latitude from psi = (y - FN) / (a k0).
// The same operations in the single-point calls and in the vectorized blocks,
// so that both give the same bits.
class CKvMercatorCore
{
public:
    struct SFigures
    {
        double e = 0.0, ak0 = 0.0, ak0Deg = 0.0, invAk0 = 0.0, invAk0Deg = 0.0;
        double FE = 0.0, FN = 0.0, lon0 = 0.0;
        CKvConformalLatitude::SInverse inverse;
        bool fastForward = false, fastInverse = false;
        bool sphere = false; // e = 0: the sphere's closed forms (ForwardSphere, InverseSphere)
    };
    // ak0: a k0 in metres; lon0 in degrees.
    static SFigures MakeFigures(double e, double ak0, double FE, double FN, double lon0);

    // false: the point is beyond the path (within a degree of a pole, a
    // longitude difference to be reduced, not finite), and the engine's general
    // formulas take it.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double d = lon - f.lon0;
        x = f.FE + f.ak0Deg * d;
        y = f.FN + f.ak0 * CKvConformalLatitude::IsometricKernel(phi, f.e);
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(d) <= 180.0);
    }

    // The same on the sphere (e = 0), where the isometric latitude is atanh(sin
    // phi) alone: IsometricKernel's operations without its eccentricity term,
    // which is an exact 0 there, so that the bits are the same.
    static KVCART_ALWAYS_INLINE bool ForwardSphere(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double d = lon - f.lon0;
        const double s = CKvMathKernel::SinHalfPi(phi);
        const double series = CKvMathKernel::AtanhSmall(s);
        const double logs = 0.5 * CKvMathKernel::Log((1.0 + s) / (1.0 - s));
        x = f.FE + f.ak0Deg * d;
        y = f.FN + f.ak0 * (std::fabs(s) < 0.1 ? series : logs);
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(d) <= 180.0);
    }

    // false: a northing beyond the kernel's reach (within some 1e-11 degree of a
    // pole, or not finite), a longitude to be brought into [-180, 180] or not
    // finite.
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double psi = (y - f.FN) * f.invAk0;
        lat = CKvConformalLatitude::LatitudeKernel(f.inverse, psi) * (1.0 / Deg);
        lon = f.lon0 + (x - f.FE) * f.invAk0Deg;
        return (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) & (std::fabs(lon) <= 180.0) &
               (std::fabs(lat) <= 90.0);
    }

    // The sphere's latitude in closed form, the Gudermannian of psi = (y - FN) /
    // (a k0): atan(sinh psi) = 2 atan(tanh(psi / 2)), tanh(psi / 2) = (e^psi -
    // 1) / (e^psi + 1), whose magnitude stays below 1. e^psi - 1 by ExpM1 (no
    // cancellation near the equator, so that small latitudes keep their
    // relative precision), and the arctangent of a quotient within [0, 1] by
    // AtanUnit: one table exponential, one division. The same bounds as Inverse.
    static KVCART_ALWAYS_INLINE bool InverseSphere(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double psi = (y - f.FN) * f.invAk0;
        const double em1 = CKvMathKernel::ExpM1(psi);
        lat = std::copysign(2.0 * CKvMathKernel::AtanUnit(std::fabs(em1), 2.0 + em1), psi) * (1.0 / Deg);
        lon = f.lon0 + (x - f.FE) * f.invAk0Deg;
        return (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) & (std::fabs(lon) <= 180.0) &
               (std::fabs(lat) <= 90.0);
    }

    // The fast path the figures call for, for the single-point calls: the
    // sphere's or the ellipsoid's, as the batch forms choose their loops.
    static KVCART_ALWAYS_INLINE bool ForwardPoint(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        return f.sphere ? ForwardSphere(f, lon, lat, x, y) : Forward(f, lon, lat, x, y);
    }
    static KVCART_ALWAYS_INLINE bool InversePoint(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        return f.sphere ? InverseSphere(f, x, y, lon, lat) : Inverse(f, x, y, lon, lat);
    }

    // The batch forms of an engine on these figures. Strided arrays as CKvBatch
    // takes them.
    static void ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* lon,
                             std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                             std::size_t xStride, double* y, std::size_t yStride);
    static void InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* x,
                             std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                             std::size_t lonStride, double* lat, std::size_t latStride);
};

#endif
