#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {

constexpr double kDeg = 3.141592653589793 / 180.0;

// Complex numbers written out in doubles: the products and quotients of
// std::complex check their results for NaN and divide through a library call,
// which made up most of the inverse's time.
struct SComplex
{
    double re, im;
};
inline SComplex Mul(SComplex a, SComplex b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
// a b + c, the step of Estrin's scheme.
inline SComplex MulAdd(SComplex a, SComplex b, SComplex c)
{
    return {a.re * b.re - a.im * b.im + c.re, a.re * b.im + a.im * b.re + c.im};
}
inline SComplex Div(SComplex a, SComplex b)
{
    const double inv = 1.0 / (b.re * b.re + b.im * b.im);
    return {(a.re * b.re + a.im * b.im) * inv, (a.im * b.re - a.re * b.im) * inv};
}

// Latitude offset (units of 1e5 arc-seconds) to isometric latitude offset.
const double kA[10] = {0.6399175073, -0.1358797613, 0.063294409, -0.02526853, 0.0117879,
                       -0.0055161,   0.0026906,     -0.001333,   0.00067,     -0.00034};
// Isometric latitude offset back to latitude offset.
const double kD[9] = {1.5627014243, 0.5185406398, -0.03333098, -0.1052906, -0.0368594,
                      0.007317,     0.01220,      0.00394,     -0.0013};
// The complex mapping and its polynomial inverse.
const SComplex kB[6] = {{0.7557853228, 0.0},       {0.249204646, 0.003371507}, {-0.001541739, 0.041058560},
                        {-0.10162907, 0.01727609}, {-0.26623489, -0.36249218}, {-0.6870983, -1.1651967}};
const SComplex kC[6] = {{1.3231270439, 0.0},       {-0.577245789, -0.007809598}, {0.508307513, -0.112208952},
                        {-0.15094762, 0.18200602}, {1.01418179, 1.64497696},     {1.9660549, 2.5127645}};

// The slopes of the real polynomials, k A_k.
const double kSlopeA[10] = {kA[0],       2.0 * kA[1], 3.0 * kA[2], 4.0 * kA[3], 5.0 * kA[4],
                            6.0 * kA[5], 7.0 * kA[6], 8.0 * kA[7], 9.0 * kA[8], 10.0 * kA[9]};
// and of the complex mapping, k B_k.
const SComplex kSlopeB[6] = {kB[0],
                             {2.0 * kB[1].re, 2.0 * kB[1].im},
                             {3.0 * kB[2].re, 3.0 * kB[2].im},
                             {4.0 * kB[3].re, 4.0 * kB[3].im},
                             {5.0 * kB[4].re, 5.0 * kB[4].im},
                             {6.0 * kB[5].re, 6.0 * kB[5].im}};

// c[0] + c[1] x + ... + c[5] x^5 by Estrin's scheme, from x, x^2 and x^4: the
// inverse is a chain of polynomials, and Horner's rule made its time the sum of
// their full lengths.
inline SComplex Estrin6(const SComplex* c, SComplex x, SComplex x2, SComplex x4)
{
    const SComplex low = MulAdd(c[1], x, c[0]), middle = MulAdd(c[3], x, c[2]), high = MulAdd(c[5], x, c[4]);
    return MulAdd(x4, high, MulAdd(x2, middle, low));
}

// sum over k = 1..N of c[k-1] x^k
template <int N> double Polynomial(const double* c, double x)
{
    return x * CKvMathKernel::Estrin<N>(x, c);
}
SComplex Polynomial(const SComplex* c, SComplex x)
{
    const SComplex x2 = Mul(x, x);
    return Mul(x, Estrin6(c, x, x2, Mul(x2, x2)));
}

// The second derivative's coefficients, k (k - 1) B_k for k = 2..6.
const SComplex kCurveB[5] = {{2.0 * kB[1].re, 2.0 * kB[1].im},
                             {6.0 * kB[2].re, 6.0 * kB[2].im},
                             {12.0 * kB[3].re, 12.0 * kB[3].im},
                             {20.0 * kB[4].re, 20.0 * kB[4].im},
                             {30.0 * kB[5].re, 30.0 * kB[5].im}};

inline SComplex Sub(SComplex a, SComplex b)
{
    return {a.re - b.re, a.im - b.im};
}
inline SComplex Reciprocal(SComplex b)
{
    const double inv = 1.0 / (b.re * b.re + b.im * b.im);
    return {b.re * inv, -b.im * inv};
}

// The Newton correction (f(zeta) - z) / f'(zeta) for z = f(zeta) = sum B_k zeta^k,
// f and f' side by side from the same powers of zeta.
SComplex NewtonStep(SComplex zeta, SComplex z)
{
    const SComplex zeta2 = Mul(zeta, zeta), zeta4 = Mul(zeta2, zeta2);
    const SComplex f = Mul(zeta, Estrin6(kB, zeta, zeta2, zeta4));
    return Div(Sub(f, z), Estrin6(kSlopeB, zeta, zeta2, zeta4));
}

// The latitude offset (1e5 arc-seconds) whose isometric latitude offset is psi,
// from the published polynomial's dPhi0 for a psi0 near psi: one Newton step on
// the forward's own polynomial A. The published polynomial misses A's inverse by
// up to 2.2e-11 (6e-10 degree); a start off by e leaves |A''/2A'| e^2 (A''/2A'
// below 0.3), below rounding for e up to 1e-9.
double LatitudeOffset(double dPhi0, double psi)
{
    return dPhi0 - (Polynomial<10>(kA, dPhi0) - psi) / CKvMathKernel::Estrin<10>(dPhi0, kSlopeA);
}

// Further out, where zeta0 starts further off and g1 is too rough: the second
// step again with f'(zeta1) itself, a third, and the latitude from its own
// start. Out of the line of the common path.
#if defined(__GNUC__)
__attribute__((noinline, cold))
#endif
void FarInverse(SComplex z, SComplex zeta1, SComplex& zeta, double& dPhi)
{
    zeta = Sub(zeta1, NewtonStep(zeta1, z));
    zeta = Sub(zeta, NewtonStep(zeta, z));
    dPhi = LatitudeOffset(Polynomial<9>(kD, zeta.re), zeta.re);
}

} // namespace

CKvNewZealandMapGrid::CKvNewZealandMapGrid(const CKvNewZealandMapGridProjection* d) : CKvEngine(*d)
{
    m_lambda0 = d->GetOriginLongitude();
    m_phi0 = d->GetOriginLatitude();
    m_FE = d->GetFalseEasting();
    m_FN = d->GetFalseNorthing();
}

CKvNewZealandMapGrid::CKvNewZealandMapGrid(const std::string& name, double originLongitude, double originLatitude,
                                           double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lambda0(originLongitude), m_phi0(originLatitude), m_FE(falseEasting),
      m_FN(falseNorthing)
{
}

void CKvNewZealandMapGrid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double dPhi = (lat - m_phi0) * 3600.0 * 1e-5;
    const SComplex zeta = {Polynomial<10>(kA, dPhi), CKvAngle::ReduceLongitudeDegrees(lon - m_lambda0) * kDeg};
    const SComplex z = Polynomial(kB, zeta);
    *x = m_FE + _a() * z.im;
    *y = m_FN + _a() * z.re;
}

void CKvNewZealandMapGrid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double invA = 1.0 / _a();
    const SComplex z = {(y - m_FN) * invA, (x - m_FE) * invA};
    // Newton-Raphson on z = f(zeta) = sum B_k zeta^k from the polynomial inverse
    // zeta0 = sum C_k z^k. Within 6.5 degrees of the origin (all of New Zealand)
    // zeta0 misses the root by up to 3e-5, the first step leaves 3e-10 and the
    // second less than rounding: the error after a step is |f''/2f'| (below 0.9
    // within 13 degrees) times its square.
    const SComplex zeta0 = Polynomial(kC, z);
    const SComplex p2 = Mul(zeta0, zeta0), p4 = Mul(p2, p2);
    const SComplex g0 = Reciprocal(Estrin6(kSlopeB, zeta0, p2, p4)); // 1 / f'(zeta0)
    const SComplex delta1 = Mul(Sub(Mul(zeta0, Estrin6(kB, zeta0, p2, p4)), z), g0);
    const SComplex zeta1 = Sub(zeta0, delta1);
    // The second step divides by f'(zeta1) = f'(zeta0) (1 - h delta1) + O(delta1^2),
    // h = f''(zeta0) / f'(zeta0), taken as g0 (1 + h delta1), with no division
    // waiting for zeta1: relatively off by the order of delta1^2 (1e-9 for 3e-5),
    // the step then leaves that fraction of zeta1's 3e-10 error.
    const SComplex curve = MulAdd(
        p4, kCurveB[4], MulAdd(p2, MulAdd(kCurveB[3], zeta0, kCurveB[2]), MulAdd(kCurveB[1], zeta0, kCurveB[0])));
    const SComplex hDelta = Mul(Mul(curve, g0), delta1);
    const SComplex g1 = MulAdd(g0, hDelta, g0);
    const SComplex q2 = Mul(zeta1, zeta1);
    const SComplex delta2 = Mul(Sub(Mul(zeta1, Estrin6(kB, zeta1, q2, Mul(q2, q2))), z), g1);
    SComplex zeta = Sub(zeta1, delta2);
    // The latitude from the published polynomial at zeta1's isometric latitude,
    // which the second step moves by up to 1e-9, while that step is under way;
    // LatitudeOffset's Newton step, aimed at zeta's, absorbs the move.
    double dPhi = LatitudeOffset(Polynomial<9>(kD, zeta1.re), zeta.re);
    // A second correction beyond 1e-9 means zeta1 was that far off, too far for
    // the two shortcuts (beyond some 7 degrees from the origin).
    if (!(std::fabs(delta2.re) + std::fabs(delta2.im) <= 1e-9))
        FarInverse(z, zeta1, zeta, dPhi);
    *lat = m_phi0 + dPhi * (1.0 / (3600.0 * 1e-5));
    *lon = m_lambda0 + zeta.im * (180.0 / 3.141592653589793);
    *lon = CKvAngle::ReduceLongitudeDegrees(*lon);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvNewZealandMapGrid::GetOrigin(double* x, double* y) const
{
    *x = m_lambda0;
    *y = m_phi0;
}

void CKvNewZealandMapGrid::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lambda0, m_phi0, true, x1, y1, x2, y2);
}
