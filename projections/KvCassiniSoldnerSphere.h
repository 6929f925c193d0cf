#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNERSPHERE_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNERSPHERE_H

#include "projections/KvMathKernel.h"
#include "projections/KvPointVariant.h"

#include <cmath>
#include <cstddef>

// Cassini-Soldner on the sphere (Snyder, eqs. 13-1, 13-2, 13-6, 13-7): the
// transverse aspect of the equidistant cylindrical, x = R asin(cos phi sin dl),
// y = R (atan2(tan phi, cos dl) - phi0), and back lat = asin(sin D cos x/R),
// lon = lon0 + atan2(tan x/R, cos D) with D = y / R + phi0.
//
// Where the map lies (within some 6 degrees of arc of the central meridian)
// both ways are small angles by their series, from the sines and cosines of
// the input angles: the easting's angle from the central meridian, and the
// other one from the latitude (forward) or from D (inverse), of which it
// differs by little near the central meridian. With xi = atan2(sin phi, cos
// phi cos dl) and vdl = 1 - cos dl (the kernel's own versine, so that nothing
// cancels near the central meridian),
//   xi - phi = atan(sin phi cos phi vdl / (cos^2 phi cos dl + sin^2 phi)),
// and back, with r = sqrt(sin^2 x/R + (cos x/R cos D)^2), the cosine of the
// latitude (sin^2 + cos^2 = 1, a sum of squares with no cancellation),
//   lat - D = asin(-sin D sin^2 x/R / (r + cos x/R cos D)),
//   lon - lon0 = atan(sin x/R / (cos x/R cos D))
// (sin(lat - D) = sin D (cos x/R cos D - r), and r^2 - (cos x/R cos D)^2 =
// sin^2 x/R).
// The fast path (Forward, Inverse) is these formulas on the inline kernels,
// with no branch: the single-point calls and the vectorized blocks run the
// same operations and give the same bits. The general formulas take the rest:
// points beyond the series' reach, the poles, longitudes to be reduced and
// points not finite.
class CKvCassiniSoldnerSphere final : public CKvPointVariant
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvCassiniSoldnerSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                            const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvCassiniSoldnerSphere(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // Blocks of points through the fast path in vectorized loops, the rest
    // through the single-point calls.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    struct SFigures
    {
        double a = 0.0, invA = 0.0, FE = 0.0, FN = 0.0, lambda0 = 0.0, phi0 = 0.0; // radians
        bool fast = false;
    };

    // false: beyond the series' reach, a pole, a longitude difference beyond
    // +-180 degrees, a point not finite.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg, dl = lon * Deg - f.lambda0;
        double s, c, v, sdl, cdl, vdl;
        CKvMathKernel::SinCos(phi, s, c, v);
        CKvMathKernel::SinCos(dl, sdl, cdl, vdl);
        const double z = c * sdl; // sin x/R
        const double den = c * c * cdl + s * s, t = s * c * vdl / den;
        x = f.FE + f.a * CKvMathKernel::AsinSmall(z);
        y = f.FN + f.a * ((phi - f.phi0) + CKvMathKernel::AtanSmall(t));
        return (std::fabs(lat) < 90.0) & (std::fabs(dl) <= 0.5) & (std::fabs(z) <= CKvMathKernel::AsinSmallLimit) &
               (den > 0.0) & (std::fabs(t) <= CKvMathKernel::AtanSmallLimit);
    }

    // false: beyond the series' reach, a grid point not finite or beyond a
    // pole (cos D not positive), a longitude to be brought into [-180, 180].
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double ToDegrees = 180.0 / 3.141592653589793;
        const double xr = (x - f.FE) * f.invA;
        const double D = (y - f.FN) * f.invA + f.phi0;
        // sin and cos of x/R (at most 0.5 on the path) by the short series
        // of the sine and the versine, and of D (the latitude of the foot on
        // the central meridian, within a quarter turn on the path) by the
        // sine's series at D and at its complement: no reduction.
        constexpr double HalfPi = 1.5707963267948966;
        double sX, vX, sD, cD;
        CKvMathKernel::SinVersineQuarterPi(xr, sX, vX);
        CKvMathKernel::SinCosHalfPi(D, sD, cD);
        const double cX = 1.0 - vX;
        const double cc = cX * cD;
        const double r = std::sqrt(sX * sX + cc * cc);
        const double w = -sD * sX * sX / (r + cc); // sin(lat - D)
        // tan(lon - lon0), one quotient with no square root before it; its
        // arctangent by AtanSmall's series to t^15 up to |t| <= TanLimit, where
        // the alternating series errs by under t^16 / 17 < 6e-18 relative.
        constexpr double TanLimit = 0.1;
        const double z = sX / cc;
        lat = (D + CKvMathKernel::AsinSmall(w)) * ToDegrees;
        lon = (f.lambda0 + CKvMathKernel::AtanSmall(z)) * ToDegrees;
        return (std::fabs(xr) <= 0.5) & (std::fabs(D) <= HalfPi) &
               (std::fabs(w) <= CKvMathKernel::AsinSmallLimit) & (std::fabs(z) <= TanLimit) &
               (std::fabs(lon) <= 180.0);
    }

private:
    SFigures m_fast;
};

#endif
