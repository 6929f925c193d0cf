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
//   sin(xi - phi) = sin phi cos phi vdl / cos x/R,
// (the hypotenuse of xi's sides is sqrt(1 - sin^2 x/R)), and back, with
// z = tan(lon - lon0) = sin x/R / (cos x/R cos D) and the cosine of the
// latitude r = cos x/R cos D sqrt(1 + z^2),
//   sin(lat - D) = -sin D sin^2 x/R / (r + cos x/R cos D)
//                = -sin D sin x/R z / (1 + sqrt(1 + z^2))
// (sin(lat - D) = sin D (cos x/R cos D - r), and r^2 - (cos x/R cos D)^2 =
// sin^2 x/R). The reciprocal cosine and 1 / (1 + sqrt(1 + z^2)) are short
// binomial series in the squares of small quantities: one quotient in all.
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
        // sin and cos of the latitude (within a quarter turn on the path) and
        // of dl (within 0.5 on the path) by the kernels' series without
        // reduction.
        double s, c, sdl, vdl;
        CKvMathKernel::SinCosHalfPi(phi, s, c);
        CKvMathKernel::SinVersineQuarterPi(dl, sdl, vdl);
        const double z = c * sdl; // sin x/R
        // sin(xi - phi) = s c vdl / cos x/R, and 1 / cos x/R = (1 - z^2)^(-1/2)
        // by its binomial series to z^16, whose remainder is below 2e-19 for
        // z^2 <= 0.01: no division, no square root.
        static constexpr double InvCos[8] = {1.0 / 2,     3.0 / 8,      5.0 / 16,      35.0 / 128,
                                             63.0 / 256,  231.0 / 1024, 429.0 / 2048,  6435.0 / 32768};
        const double u = z * z;
        const double w = s * c * vdl * (1.0 + u * CKvMathKernel::Estrin<8>(u, InvCos));
        x = f.FE + f.a * CKvMathKernel::AsinSmall(z);
        y = f.FN + f.a * ((phi - f.phi0) + CKvMathKernel::AsinSmall(w));
        return (std::fabs(lat) < 90.0) & (std::fabs(dl) <= 0.5) & (std::fabs(z) <= CKvMathKernel::AsinSmallLimit) &
               (std::fabs(w) <= CKvMathKernel::AsinSmallLimit);
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
        // tan(lon - lon0), one quotient; its arctangent by AtanSmall's series
        // to t^15 up to |t| <= TanLimit, where the alternating series errs by
        // under t^16 / 17 < 6e-18 relative.
        constexpr double TanLimit = 0.1;
        const double z = sX / cc;
        // With the cosine of the latitude r = cc sqrt(1 + z^2),
        // sin(lat - D) = -sD sX^2 / (r + cc) = -sD sX z h(z^2), where
        // h(u) = (sqrt(1 + u) - 1) / u by its binomial series to u^7, whose
        // remainder is below 2e-18 relative for u <= 0.01: no square root
        // and no second quotient.
        static constexpr double Half[8] = {1.0 / 2,   -1.0 / 8,    1.0 / 16,   -5.0 / 128,
                                           7.0 / 256, -21.0 / 1024, 33.0 / 2048, -429.0 / 32768};
        const double w = -sD * sX * z * CKvMathKernel::Estrin<8>(z * z, Half); // sin(lat - D)
        // |sX| = |z| cc and r >= cc give |w| <= z^2 cc / 2 <= 0.005 wherever
        // |z| <= TanLimit: asin w by its series to w^7, whose remainder is
        // below 35/1152 w^9 < 1.2e-20 |w|.
        const double w2 = w * w;
        const double dLat = w + w * w2 * (1.0 / 6 + w2 * (3.0 / 40 + w2 * (5.0 / 112)));
        lat = (D + dLat) * ToDegrees;
        lon = (f.lambda0 + CKvMathKernel::AtanSmall(z)) * ToDegrees;
        return (std::fabs(xr) <= 0.5) & (std::fabs(D) <= HalfPi) &
               (std::fabs(w) <= CKvMathKernel::AsinSmallLimit) & (std::fabs(z) <= TanLimit) &
               (std::fabs(lon) <= 180.0);
    }

private:
    SFigures m_fast;
};

#endif
