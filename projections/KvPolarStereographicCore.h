#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <cstddef>

class CKvProjection;

// Polar stereographic on the ellipsoid about one pole (IOGP Guidance Note 7-2,
// methods 9810 and 9829), shared by the polar engines. The south pole is handled
// as the mirror image of the north pole. The general formulas take radians; the
// fast path, which the single-point calls try first and the batch forms run in
// vectorized loops, takes the engines' degrees.
//
// The guidance note's
//   t = tan(pi/4 - phi/2) ((1 + e sin phi) / (1 - e sin phi))^(e/2),  rho = 2 a k0 t / sqrt((1+e)^(1+e) (1-e)^(1-e))
// is taken with h = pi/4 - phi/2, the half co-latitude: tan h from the sine and
// cosine of h (the inline kernel), sin phi = cos 2h from the same two, and the
// eccentricity factor as one polynomial in e sin phi for the eccentricities of
// the earth (pow beyond them). The inverse takes t from the radius, the
// conformal latitude chi = pi/2 - 2 atan t, and the geodetic latitude by
// Karney's series in the third flattening (CKvConformalLatitude::SeriesCorrection),
// sin 2chi and cos 2chi being rational in t; no iteration. Figures beyond the
// series keep Newton's method on the conformal latitude (CKvConformalLatitude::Tau).
class CKvPolarStereographicCore
{
public:
    CKvPolarStereographicCore() = default;
    // Variant A: the scale k0 at the pole (north when pole > 0).
    static CKvPolarStereographicCore AtPole(double a, double e, int pole, double k0, double lambda0,
                                            double falseEasting, double falseNorthing);
    // Variant B: true scale on the standard parallel phiC, on the pole of its sign
    // (north for 0); scale multiplies the scale that results.
    static CKvPolarStereographicCore OnParallel(double a, double e, double phiC, double scale, double lambda0,
                                                double falseEasting, double falseNorthing);

    // The general formulas, radians in and out.
    void Forward(double lambda, double phi, double* x, double* y) const;
    void Inverse(double x, double y, double* lambda, double* phi) const;
    // Grid convergence in radians: the longitude difference, of the pole's sign.
    double Convergence(double lambda) const;
    // The scale factor at the pole.
    double ScaleAtPole() const { return m_k0; }
    int Pole() const { return m_pole; }

    // The figures of the map, which the fast path (degrees in and out, the
    // engines' units) reads as they are.
    static constexpr int ExpTerms = 16;
    struct SFigures
    {
        double e = 0.0;
        double sign = 1.0;      // 1 about the north pole, -1 about the south pole
        double scaleTerm = 0.0; // 2 a k0 / sqrt((1+e)^(1+e) (1-e)^(1-e))
        double scaleTerm2 = 0.0;                     // its square
        double largestRho = 0.0;                     // the inverse's reach: LargestSeriesT times it
        double lambda0 = 0.0, FE = 0.0, FN = 0.0;
        bool expSeries = false;     // e within CKvMathKernel::EccentricSinhLimit
        double exp[ExpTerms] = {}; // ((1 + z) / (1 - z))^(e/2) = sum exp[k] z^k
        CKvConformalLatitude::SInverse inverse; // conformal to geodetic latitude
        // Whether the fast paths hold: the series for the eccentricity term and
        // for the latitude, and finite figures.
        bool fastForward = false, fastInverse = false;
    };
    const SFigures& Figures() const { return m_f; }

    // One point of the fast path, the same operations in the single-point calls
    // and in the vectorized blocks (the math kernels, values chosen rather than
    // branches), so that both give the same bits; degrees. false: the point is
    // beyond the path and the general formulas take it.
    //
    // Forward: the general formulas' operations where the eccentricity term is
    // its series. Beyond the path: a latitude off the ellipsoid or on the other
    // pole (at infinity), a longitude beyond the sine kernel's reach, NaN.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double QuarterPi = 0.7853981633974483;
        constexpr double HalfPi = 1.5707963267948966;
        const double phi = lat * Deg;
        const double h = QuarterPi - f.sign * phi / 2;
        double sinH, cosH, versine;
        CKvMathKernel::SinCos(h, sinH, cosH, versine);
        const double z = f.e * ((cosH - sinH) * (cosH + sinH));
        const double rho = f.scaleTerm * (sinH / cosH) * CKvMathKernel::Estrin<ExpTerms>(z, f.exp);
        const double dl = lon * Deg - f.lambda0;
        double sinDl, cosDl, vDl;
        CKvMathKernel::SinCos(dl, sinDl, cosDl, vDl);
        x = f.FE + rho * sinDl;
        y = f.FN - f.sign * rho * cosDl;
        return (std::fabs(lat) <= 90.0) & (f.sign * phi > -HalfPi) & (std::fabs(dl) <= CKvMathKernel::SinCosLimit);
    }

    // Inverse: the general formulas' closed form (t = rho / S from the radius
    // rho, S the scale term; the conformal latitude's double angle rational in
    // t, Karney's series, the angle from the nearer pole), taken on rho and S
    // themselves, which saves the quotients: sin 2A = 2 rho S / (S^2 + rho^2),
    // cos 2A = (S^2 - rho^2) / (S^2 + rho^2), and the angle from the nearer pole
    // as atan(rho / S), or atan(S / rho) beyond the equator, of the two sides
    // themselves (AtanUnit: one quotient, within [0, 1]). The longitude's
    // direction atan2(dx, -+dy) is taken the same way, AtanUnit on the smaller
    // over the larger side, turned by octant (pi/2 - u where |dx| is the
    // larger, pi minus the angle south of the axis, the sign of dx): the
    // reductions of CKvMathKernel::Atan2 on the two sides with one comparison
    // instead of four, and its signed zeros; the two agree to an ulp, with the
    // same largest error against long double, 1.7 ulp. The
    // longitude is brought into [-180, 180] by one exact turn (x - 360 is exact
    // for x in [180, 540], Sterbenz, and so is std::remainder's answer there).
    // Beyond the path: a radius beyond the series' reach (t > 1e100, not
    // finite), the other pole, a longitude still beyond +-180, a latitude
    // beyond a pole by rounding (which the engines' guard puts on the pole).
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double Pi = 3.141592653589793;
        constexpr double HalfPi = 1.5707963267948966;
        constexpr double HalfPiLow = 6.123233995736766e-17; // pi/2 - HalfPi
        const double dx = x - f.FE, dy = y - f.FN;
        const double rho2 = dx * dx + dy * dy, rho = std::sqrt(rho2);
        const double S = f.scaleTerm, inv = 1.0 / (f.scaleTerm2 + rho2);
        const double sin2A = 2.0 * rho * S * inv, cos2A = (f.scaleTerm2 - rho2) * inv;
        const double sin2Chi = 2.0 * sin2A * cos2A, cos2Chi = 2.0 * sin2A * sin2A - 1.0;
        const double correction = CKvConformalLatitude::SeriesCorrection(f.inverse, sin2Chi, cos2Chi);
        const bool beyond = rho > S;
        const double hemisphere = beyond ? -1.0 : 1.0;
        const double atanNear = CKvMathKernel::AtanUnit(beyond ? S : rho, beyond ? rho : S);
        const double phi = f.sign * hemisphere * (HalfPi - 2.0 * (atanNear - 0.5 * (hemisphere * correction + HalfPiLow)));
        const double north = -f.sign * dy, across = std::fabs(dx), along = std::fabs(north);
        const bool steep = across > along;
        // Both sides 0 (the pole itself): 0 / 1, the direction of the axis.
        const double u = CKvMathKernel::AtanUnit(steep ? along : across, steep ? across : along == 0.0 ? 1.0 : along);
        const double angle = steep ? HalfPi - u : u;
        const double direction = std::copysign(std::copysign(1.0, north) < 0.0 ? Pi - angle : angle, dx);
        const double lonDeg = (f.lambda0 + direction) * (1.0 / Deg);
        lon = lonDeg > 180.0 ? lonDeg - 360.0 : lonDeg < -180.0 ? lonDeg + 360.0 : lonDeg;
        lat = phi * (1.0 / Deg);
        return (rho <= f.largestRho) & (std::fabs(lon) <= 180.0) & (std::fabs(lat) <= 90.0) & (f.sign * lat > -90.0);
    }

    // The batch forms of an engine on these figures: blocks of points through the
    // fast path in vectorized loops, the points beyond it through the engine's
    // single-point call. Strided arrays as CKvBatch takes them.
    static void ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* lon,
                             std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                             std::size_t xStride, double* y, std::size_t yStride);
    static void InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* x,
                             std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                             std::size_t lonStride, double* lat, std::size_t latStride);

private:
    // Beyond this t (a point some 1e100 radii out) the closed forms of the inverse
    // would square it out of range; the general formulas take it, down to t = inf.
    static constexpr double LargestSeriesT = 1e100;

    // The general formulas, for a figure beyond the series and for the points the
    // closed forms leave out (t not finite or huge, NaN).
    void _inverseGeneral(double dx, double dy, double* lambda, double* phi) const;

    SFigures m_f;
    int m_pole = 1;
    double m_k0 = 0.0;
};

#endif
