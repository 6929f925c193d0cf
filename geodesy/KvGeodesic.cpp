#include "geodesy/KvGeodesic.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegree = kPi / 180.0;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
// 2^-511, the square root of the smallest normal number: a cosine of the
// reduced latitude that is never zero (a pole is the limit along the meridian of
// its longitude), and whose square is still a normal number.
constexpr double kTiny = 0x1p-511;
// Newton steps before the iteration only bisects, and the bound on all
// evaluations: 64 halvings of the bracket (0, pi) are below round-off.
constexpr int kNewtonSteps = 20;
constexpr int kMaxEvaluations = kNewtonSteps + 64;
// Nearly antipodal points, within this many units of the astroid's scale
// f pi cos^2(beta1) of the antipode, start from the astroid.
constexpr double kAstroidRange = 6.0;

// Latitudes closer to the equator than this, in degrees, are on it.
constexpr double kEquatorLatitude = 1e-20;

thread_local int t_lastEvaluations = 0;

// Angles in degrees up to this size are reduced to [-45, 45] without remquo.
constexpr double kExactReductionLimit = 1e5;

// sin and cos of an angle in degrees, reduced exactly to [-45, 45] first, so
// that multiples of 90 give exact zeros and ones. Up to 1e5 degrees the
// reduction is degrees - 90 q with q the nearest integer to degrees / 90: the
// product is exact, and the difference too (Sterbenz: for q != 0 the two
// terms are within a factor 2 of each other); beyond, remquo's. The reduced
// angle, within a quarter of pi, takes the kernel's series (below half an ulp
// there) with no reduction of its own.
void SinCosDegrees(double degrees, double extra, double& s, double& c)
{
    int quadrant = 0;
    double reduced = 0.0;
    if (std::fabs(degrees) <= kExactReductionLimit) {
        constexpr double Round = 6755399441055744.0; // 1.5 * 2^52: rounds to an integer
        const double q = (degrees * (1.0 / 90.0) + Round) - Round;
        reduced = degrees - 90.0 * q;
        quadrant = static_cast<int>(q);
    } else {
        reduced = std::remquo(degrees, 90.0, &quadrant);
    }
    double sr = 0.0, vr = 0.0;
    CKvMathKernel::SinVersineQuarterPi((reduced + extra) * kDegree, sr, vr);
    const double cr = 1.0 - vr;
    switch (static_cast<unsigned>(quadrant) & 3u) {
    case 0: s = sr; c = cr; break;
    case 1: s = cr; c = -sr; break;
    case 2: s = -sr; c = -cr; break;
    default: s = -cr; c = sr; break;
    }
    c += 0.0; // no negative zero for the cosine of 90
    if (s == 0.0)
        s = std::copysign(0.0, degrees);
}

// atan2(y, x) in degrees, exact at multiples of 90: the ratio is taken in the
// octant where it is at most 1 and the quadrant added afterwards.
double Atan2Degrees(double y, double x)
{
    int quadrant = 0;
    if (std::fabs(y) > std::fabs(x)) {
        std::swap(x, y);
        quadrant = 2;
    }
    if (std::signbit(x)) {
        x = -x;
        ++quadrant;
    }
    // Within the octant |y| <= x: the kernel's atan of a quotient at most 1
    // (x = 0 only with y = +-0, whose angle is y itself).
    const double angle = (x == 0.0 ? y : std::copysign(CKvMathKernel::AtanUnit(std::fabs(y), x), y)) / kDegree;
    switch (quadrant) {
    case 1: return std::copysign(180.0, y) - angle;
    case 2: return 90.0 - angle;
    case 3: return -90.0 + angle;
    default: return angle;
    }
}

// An azimuth in (-180, 180], without a negative zero.
double Azimuth(double s, double c)
{
    const double degrees = Atan2Degrees(s, c);
    return degrees == -180.0 ? 180.0 : degrees + 0.0;
}

// sqrt(a^2 + b^2): the plain root where the sum of the squares neither
// overflows nor loses its precision to underflow (all the sines and cosines
// here), hypot otherwise.
double Hypot(double a, double b)
{
    const double h2 = a * a + b * b;
    return h2 >= 0x1p-960 && h2 <= 0x1p960 ? std::sqrt(h2) : std::hypot(a, b);
}

void Normalize(double& s, double& c)
{
    const double h = Hypot(s, c);
    s /= h;
    c /= h;
}

// lon2 - lon1 in [-180, 180] degrees, and the rounding error of that difference
// in error: both longitudes are reduced exactly, their difference is split into
// its rounded value and the exact remainder (Knuth's two-sum), and the result
// reduced exactly again. A difference of +-180 that the error carries past the
// antimeridian takes the other sign.
double LongitudeDifference(double lon1, double lon2, double& error)
{
    const double a = CKvAngle::ReduceLongitudeDegrees(lon2);
    const double b = -CKvAngle::ReduceLongitudeDegrees(lon1);
    const double sum = a + b;
    const double bVirtual = sum - a;
    error = (a - (sum - bVirtual)) + (b - bVirtual);
    double d = std::remainder(sum, 360.0);
    if (std::fabs(d) == 180.0 && error != 0.0)
        d = std::copysign(180.0, -error);
    return d;
}

// sum c[l] sin(2 l sigma), l = 1..n, by Clenshaw's recurrence on sin and cos of sigma.
double SinSeries(double s, double c, const double* coefficients, int n)
{
    const double twoCos2 = 2.0 * (c - s) * (c + s);
    double b1 = 0.0, b2 = 0.0;
    for (int l = n; l >= 1; --l) {
        const double b0 = coefficients[l - 1] + twoCos2 * b1 - b2;
        b2 = b1;
        b1 = b0;
    }
    return 2.0 * s * c * b1;
}

// eps of k^2 = e'^2 cos^2(alpha0), without cancellation.
double Eps(double k2)
{
    return k2 / (2.0 * (1.0 + std::sqrt(1.0 + k2)) + k2);
}

// The distance integral I1 = A1 (sigma + sum C1l sin 2l sigma), Karney (2013)
// eqs. (17) and (18): A1 - 1 and C1l, l = 1..6.
double A1m1(double eps)
{
    const double e2 = eps * eps;
    const double t = e2 * (1.0 / 4 + e2 * (1.0 / 64 + e2 / 256));
    return (t + eps) / (1.0 - eps);
}

void C1(double eps, double* c)
{
    const double e2 = eps * eps;
    double p = eps;
    c[0] = p * (-1.0 / 2 + e2 * (3.0 / 16 - e2 / 32));
    p *= eps;
    c[1] = p * (-1.0 / 16 + e2 * (1.0 / 32 - e2 * 9.0 / 2048));
    p *= eps;
    c[2] = p * (-1.0 / 48 + e2 * 3.0 / 256);
    p *= eps;
    c[3] = p * (-5.0 / 512 + e2 * 3.0 / 512);
    p *= eps;
    c[4] = p * (-7.0 / 1280);
    p *= eps;
    c[5] = p * (-7.0 / 2048);
}

// The reversion of the distance series, sigma = tau + sum C1pl sin 2l tau with
// tau = s / (b A1), eq. (21): C1pl, l = 1..6.
void C1p(double eps, double* c)
{
    const double e2 = eps * eps;
    double p = eps;
    c[0] = p * (1.0 / 2 + e2 * (-9.0 / 32 + e2 * 205.0 / 1536));
    p *= eps;
    c[1] = p * (5.0 / 16 + e2 * (-37.0 / 96 + e2 * 1335.0 / 4096));
    p *= eps;
    c[2] = p * (29.0 / 96 + e2 * -75.0 / 128);
    p *= eps;
    c[3] = p * (539.0 / 1536 + e2 * -2391.0 / 2560);
    p *= eps;
    c[4] = p * (3467.0 / 7680);
    p *= eps;
    c[5] = p * (38081.0 / 61440);
}

// The integral I2 = A2 (sigma + sum C2l sin 2l sigma) of the reduced length,
// eqs. (42) and (43): A2 - 1 and C2l, l = 1..6.
double A2m1(double eps)
{
    const double e2 = eps * eps;
    const double t = e2 * (1.0 / 4 + e2 * (9.0 / 64 + e2 * 25.0 / 256));
    return t * (1.0 - eps) - eps;
}

void C2(double eps, double* c)
{
    const double e2 = eps * eps;
    double p = eps;
    c[0] = p * (1.0 / 2 + e2 * (1.0 / 16 + e2 / 32));
    p *= eps;
    c[1] = p * (3.0 / 16 + e2 * (1.0 / 32 + e2 * 35.0 / 2048));
    p *= eps;
    c[2] = p * (5.0 / 48 + e2 * 5.0 / 256);
    p *= eps;
    c[3] = p * (35.0 / 512 + e2 * 7.0 / 512);
    p *= eps;
    c[4] = p * (63.0 / 1280);
    p *= eps;
    c[5] = p * (77.0 / 2048);
}

// True when the azimuth (s1, c1) lies before (s2, c2) in (0, pi).
bool Before(double s1, double c1, double s2, double c2)
{
    return c1 * s2 - s1 * c2 > 0.0;
}

} // namespace

// The two points brought into the canonical position of the solution: beta1 <= 0,
// |beta2| <= |beta1|, 0 <= lambda12 <= pi.
struct CKvGeodesic::SPair
{
    double sbet1, cbet1, dn1; // reduced latitude of point 1, and sqrt(1 + e'^2 sin^2 beta1)
    double sbet2, cbet2, dn2;
    double lam12, slam12, clam12; // longitude difference, radians
};

// What one evaluation of lambda12(alpha1) gives.
struct CKvGeodesic::SEvaluation
{
    double v; // lambda12(alpha1) - lambda12
    double salp2, calp2;
    double sig12, ssig1, csig1, ssig2, csig2;
    double eps;
};

CKvGeodesic::CKvGeodesic(const CKvEllipsoid& ellipsoid) : CKvGeodesic(ellipsoid.GetMajor(), ellipsoid.GetFlatness())
{
}

CKvGeodesic::CKvGeodesic(double semiMajorAxis, double flattening)
    : m_valid(std::isfinite(semiMajorAxis) && semiMajorAxis > 0.0 && flattening >= 0.0 && flattening <= 0.1),
      m_a(semiMajorAxis), m_f(flattening), m_f1(1.0 - flattening), m_b(semiMajorAxis * (1.0 - flattening)),
      m_e2(flattening * (2.0 - flattening)), m_ep2(m_e2 / (m_f1 * m_f1)), m_n(flattening / (2.0 - flattening)),
      m_a3x(), m_c3x()
{
    // A3 and C3l of the longitude integral I3, Karney (2013) eqs. (24) and
    // (25): polynomials in eps whose coefficients are polynomials in n, the
    // terms to total order 5 in (n, eps) kept (the integral is multiplied by f).
    const double n = m_n, n2 = n * n;
    const double a3[6] = {1.0,
                          -(1.0 - n) / 2,
                          -(1.0 / 4 + n / 8 - 3.0 * n2 / 8),
                          -(1.0 / 16 + 3.0 * n / 16 + n2 / 16),
                          -(3.0 / 64 + n / 32),
                          -3.0 / 128};
    const double c3[5][6] = {
        {0.0, (1.0 - n) / 4, (1.0 - n2) / 8, 3.0 / 64 + 3.0 * n / 64 - n2 / 64, 5.0 / 128 + n / 64, 3.0 / 128},
        {0.0, 0.0, 1.0 / 16 - 3.0 * n / 32 + n2 / 32, 3.0 / 64 - n / 32 - 3.0 * n2 / 64, 3.0 / 128 + n / 128,
         5.0 / 256},
        {0.0, 0.0, 0.0, 5.0 / 192 - 3.0 * n / 64 + 5.0 * n2 / 192, 3.0 / 128 - 5.0 * n / 192, 7.0 / 512},
        {0.0, 0.0, 0.0, 0.0, 7.0 / 512 - 7.0 * n / 256, 7.0 / 512},
        {0.0, 0.0, 0.0, 0.0, 0.0, 21.0 / 2560}};
    for (int j = 0; j < 6; ++j) {
        m_a3x[j] = a3[j];
        for (int l = 0; l < 5; ++l)
            m_c3x[l][j] = c3[l][j];
    }
}

int CKvGeodesic::GetLastEvaluations()
{
    return t_lastEvaluations;
}

double CKvGeodesic::_a3(double eps) const
{
    double sum = 0.0;
    for (int j = 5; j >= 0; --j)
        sum = sum * eps + m_a3x[j];
    return sum;
}

void CKvGeodesic::_c3(double eps, double* c) const
{
    for (int l = 0; l < 5; ++l) {
        double sum = 0.0;
        for (int j = 5; j >= 0; --j)
            sum = sum * eps + m_c3x[l][j];
        c[l] = sum;
    }
}

void CKvGeodesic::_lengths(double eps, double sig12, double ssig1, double csig1, double dn1, double ssig2,
                           double csig2, double dn2, double* s12b, double* m12b) const
{
    double c1[6];
    C1(eps, c1);
    const double a1m1 = A1m1(eps);
    const double b1 = SinSeries(ssig2, csig2, c1, 6) - SinSeries(ssig1, csig1, c1, 6);
    if (s12b != nullptr)
        *s12b = (1.0 + a1m1) * (sig12 + b1);
    if (m12b != nullptr) {
        // m12 = b [sqrt(1 + k^2 sin^2 sigma2) cos sigma1 sin sigma2 - sqrt(1 + k^2 sin^2 sigma1) sin sigma1
        // cos sigma2 - cos sigma1 cos sigma2 J12], J = I1 - I2 (eqs. 38-41).
        double c2[6];
        C2(eps, c2);
        const double a2m1 = A2m1(eps);
        const double b2 = SinSeries(ssig2, csig2, c2, 6) - SinSeries(ssig1, csig1, c2, 6);
        const double j12 = (a1m1 - a2m1) * sig12 + ((1.0 + a1m1) * b1 - (1.0 + a2m1) * b2);
        *m12b = dn2 * (csig1 * ssig2) - dn1 * (ssig1 * csig2) - csig1 * csig2 * j12;
    }
}

void CKvGeodesic::_start(const SPair& p, double& salp1, double& calp1) const
{
    const double sbet12 = p.sbet2 * p.cbet1 - p.cbet2 * p.sbet1;  // sin(beta2 - beta1) >= 0
    const double cbet12 = p.cbet2 * p.cbet1 + p.sbet2 * p.sbet1;  // cos(beta2 - beta1)
    const double sbet12a = p.sbet2 * p.cbet1 + p.cbet2 * p.sbet1; // sin(beta2 + beta1) <= 0

    // Nearly antipodal points. Near the antipode of point 1 the geodesics from
    // it, fanned out by alpha1, fall short of lambda = pi by f pi A3 sin(alpha0)
    // and envelop an astroid: in the units x = (lambda12 - pi) / (f pi A3 cos
    // beta1) and y = (beta2 + beta1) / (f pi A3 cos^2 beta1) the geodesic of
    // azimuth alpha1 is the line x / sin(alpha1) + y / cos(alpha1) + 1 = 0
    // (Karney 2013, section 5). Its alpha1 through the point (x, y) is the start.
    const double csig12 = p.sbet1 * p.sbet2 + p.cbet1 * p.cbet2 * p.clam12; // with omega12 = lambda12
    if (m_f > 0.0 && p.clam12 < 0.0 && csig12 < 0.0) {
        const double eps = Eps(m_ep2 * p.sbet1 * p.sbet1); // alpha0 of alpha1 = 90 degrees
        const double lamScale = m_f * p.cbet1 * _a3(eps) * kPi;
        const double betScale = lamScale * p.cbet1;
        const double x = std::atan2(-p.slam12, -p.clam12) / lamScale; // <= 0
        const double y = sbet12a / betScale;                           // <= 0
        if (x > -kAstroidRange && y > -kAstroidRange) {
            const double X = -x, Y = -y;
            if (!(Y > 0.0)) {
                // On the parallel antipodal to point 1: inside the astroid the
                // two geodesics of sin(alpha1) = X; the southward one in this
                // canonical position (the northward one for the caller).
                salp1 = std::min(1.0, X);
                calp1 = -std::sqrt(1.0 - salp1 * salp1);
                return;
            }
            // With theta = alpha1 - 90 degrees in [0, 90] the line through
            // (x, y) is F(theta) = X sin theta - Y cos theta - sin theta cos theta
            // = 0, F(0) = -Y < 0 < F(90) = X: one root, where mu = Y / sin theta
            // is the positive root of mu^4 + 2 mu^3 + (1 - x^2 - y^2) mu^2 -
            // 2 y^2 mu - y^2 = 0. Newton's method kept inside the bracket,
            // started at the point of contact (X, Y) ~ (cos^3, sin^3) theta.
            double lo = 0.0, hi = kPi / 2;
            double theta = std::atan2(std::cbrt(Y), std::cbrt(X));
            for (int i = 0; i < 60; ++i) {
                const double s = std::sin(theta), c = std::cos(theta);
                const double F = X * s - Y * c - s * c;
                if (F == 0.0)
                    break;
                (F < 0.0 ? lo : hi) = theta;
                const double dF = X * c + Y * s - (c - s) * (c + s);
                double next = theta - F / dF;
                if (!(dF > 0.0) || !(next > lo && next < hi))
                    next = 0.5 * (lo + hi);
                if (std::fabs(next - theta) <= 4.0 * kEpsilon * theta)
                    break;
                theta = next;
            }
            salp1 = std::cos(theta);
            calp1 = -std::sin(theta);
            return;
        }
    }

    // Otherwise the great circle of the auxiliary sphere, with the longitude
    // difference on the sphere taken as lambda12 / w, w = sqrt(1 - e^2 cos^2
    // beta_mean), for short lines (eq. 48), and as lambda12 itself for long ones.
    double somg12 = p.slam12, comg12 = p.clam12;
    if (cbet12 >= 0.0 && sbet12 < 0.5 && p.cbet2 * p.lam12 < 0.5) {
        const double cbetm = 0.5 * (p.cbet1 + p.cbet2);
        const double omg12 = p.lam12 / std::sqrt(1.0 - m_e2 * cbetm * cbetm);
        CKvMathKernel::SinCosAny(omg12, somg12, comg12);
    }
    // tan alpha1 = cos beta2 sin omega12 / (cos beta1 sin beta2 - sin beta1 cos
    // beta2 cos omega12), the denominator written so that it does not cancel.
    salp1 = p.cbet2 * somg12;
    calp1 = comg12 >= 0.0 ? sbet12 + p.cbet2 * p.sbet1 * somg12 * somg12 / (1.0 + comg12)
                          : sbet12a - p.cbet2 * p.sbet1 * somg12 * somg12 / (1.0 - comg12);
    if (salp1 == 0.0 && calp1 == 0.0)
        calp1 = 1.0;
    Normalize(salp1, calp1);
}

void CKvGeodesic::_evaluate(const SPair& p, double salp1, double calp1, SEvaluation& e) const
{
    // Leaving the equator due east has its node at the point itself: taken as
    // heading south, where the other equatorial point lies half a turn on.
    if (p.sbet1 == 0.0 && calp1 == 0.0)
        calp1 = -kTiny;
    // Clairaut: sin alpha0 = sin alpha cos beta along the whole geodesic.
    const double salp0 = salp1 * p.cbet1;
    const double calp0 = Hypot(calp1, salp1 * p.sbet1);
    // sigma and omega from the node: tan sigma1 = tan beta1 / cos alpha1, tan omega1 = sin alpha0 tan sigma1.
    double ssig1 = p.sbet1, csig1 = calp1 * p.cbet1;
    const double somg1 = salp0 * p.sbet1, comg1 = csig1;
    Normalize(ssig1, csig1);
    // At point 2, cos^2 alpha2 cos^2 beta2 = cos^2 alpha1 cos^2 beta1 + cos^2
    // beta2 - cos^2 beta1, the difference of squares taken from the smaller of
    // the sines and cosines; it heads north (cos alpha2 >= 0) in this position.
    e.salp2 = p.cbet2 != p.cbet1 ? salp0 / p.cbet2 : salp1;
    if (p.cbet2 != p.cbet1 || std::fabs(p.sbet2) != -p.sbet1) {
        const double difference = p.cbet1 < -p.sbet1 ? (p.cbet2 - p.cbet1) * (p.cbet2 + p.cbet1)
                                                     : (p.sbet1 - p.sbet2) * (p.sbet1 + p.sbet2);
        const double t = calp1 * p.cbet1;
        e.calp2 = std::sqrt(t * t + difference) / p.cbet2;
    } else {
        e.calp2 = std::fabs(calp1);
    }
    double ssig2 = p.sbet2, csig2 = e.calp2 * p.cbet2;
    const double somg2 = salp0 * p.sbet2, comg2 = csig2;
    Normalize(ssig2, csig2);

    // sigma12 and omega12 in [0, pi], from the differences of the angles.
    e.sig12 = CKvMathKernel::Atan2(std::max(0.0, csig1 * ssig2 - ssig1 * csig2), csig1 * csig2 + ssig1 * ssig2);
    const double somg12 = std::max(0.0, comg1 * somg2 - somg1 * comg2);
    const double comg12 = comg1 * comg2 + somg1 * somg2;
    // omega12 - lambda12, without cancellation near the antipode.
    const double eta = CKvMathKernel::Atan2(somg12 * p.clam12 - comg12 * p.slam12, comg12 * p.clam12 + somg12 * p.slam12);

    // lambda12 = omega12 - f sin(alpha0) I3(sigma12), I3 = A3 (sigma + sum C3l sin 2l sigma).
    const double k2 = calp0 * calp0 * m_ep2;
    e.eps = Eps(k2);
    double c3[5];
    _c3(e.eps, c3);
    const double b312 = SinSeries(ssig2, csig2, c3, 5) - SinSeries(ssig1, csig1, c3, 5);
    const double domg12 = -m_f * _a3(e.eps) * salp0 * (e.sig12 + b312);
    e.v = eta + domg12;
    e.ssig1 = ssig1;
    e.csig1 = csig1;
    e.ssig2 = ssig2;
    e.csig2 = csig2;
}

double CKvGeodesic::_slope(const SPair& p, const SEvaluation& e) const
{
    // d lambda12 / d alpha1 = m12 / (a cos alpha2 cos beta2): moving alpha1
    // moves point 2 by m12 d alpha1 across the geodesic. At a vertex of
    // point 2 (cos alpha2 = 0, beta2 = -beta1) its limit, -2 (1 - f) dn1 / sin beta1.
    if (e.calp2 == 0.0)
        return -2.0 * m_f1 * p.dn1 / p.sbet1;
    double m12b = 0.0;
    _lengths(e.eps, e.sig12, e.ssig1, e.csig1, p.dn1, e.ssig2, e.csig2, p.dn2, nullptr, &m12b);
    return m_f1 * m12b / (e.calp2 * p.cbet2);
}

CKvGeodesic::SPoint CKvGeodesic::MakePoint(double lon, double lat) const
{
    SPoint point{};
    point.valid = m_valid && CKvAngle::IsPoint(lon, lat);
    if (!point.valid) {
        point.lon = point.lat = point.sbet = point.cbet = point.dn = std::nan("");
        return point;
    }
    point.lon = CKvAngle::ReduceLongitudeDegrees(lon);
    point.lat = lat;
    // tan beta = (1 - f) tan phi; at a pole cos beta is the tiny limit along
    // the meridian of the longitude given. SinCosDegrees is odd in the angle,
    // so that the figures of -lat are those of lat with sin beta negated.
    double sphi = 0.0, cphi = 0.0;
    SinCosDegrees(lat, 0.0, sphi, cphi);
    point.sbet = m_f1 * sphi;
    point.cbet = cphi;
    Normalize(point.sbet, point.cbet);
    point.cbet = std::max(kTiny, point.cbet);
    point.dn = std::sqrt(1.0 + m_ep2 * point.sbet * point.sbet);
    return point;
}

bool CKvGeodesic::Inverse(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth1,
                          double& azimuth2) const
{
    t_lastEvaluations = 0;
    if (!m_valid || !CKvAngle::IsPoint(lon1, lat1) || !CKvAngle::IsPoint(lon2, lat2)) {
        distance = azimuth1 = azimuth2 = std::nan("");
        return false;
    }
    double salp1 = 0.0, calp1 = 0.0, salp2 = 0.0, calp2 = 0.0;
    _inverse(MakePoint(lon1, lat1), MakePoint(lon2, lat2), distance, salp1, calp1, salp2, calp2);
    azimuth1 = Azimuth(salp1, calp1);
    azimuth2 = Azimuth(salp2, calp2);
    return true;
}

bool CKvGeodesic::InverseFrom(const SPoint& point1, double lon2, double lat2, double& distance, double& sinAzimuth1,
                              double& cosAzimuth1) const
{
    t_lastEvaluations = 0;
    if (!point1.valid || !CKvAngle::IsPoint(lon2, lat2)) {
        distance = sinAzimuth1 = cosAzimuth1 = std::nan("");
        return false;
    }
    double salp2 = 0.0, calp2 = 0.0;
    _inverse(point1, MakePoint(lon2, lat2), distance, sinAzimuth1, cosAzimuth1, salp2, calp2);
    return true;
}

void CKvGeodesic::_inverse(const SPoint& point1, const SPoint& point2, double& distance, double& salp1out,
                           double& calp1out, double& salp2out, double& calp2out) const
{
    // A latitude within 1e-20 degree of the equator (some 1e-15 m) is on it,
    // keeping its sign: the azimuths and the distance change by far less than
    // round-off, and the inclination of a geodesic from a point any closer
    // would be too small for the iteration to resolve.
    SPoint first = point1, second = point2;
    for (SPoint* q : {&first, &second})
        if (std::fabs(q->lat) < kEquatorLatitude) {
            q->lat = q->sbet = std::copysign(0.0, q->lat);
            q->cbet = q->dn = 1.0;
        }

    // The canonical position: lambda12 >= 0 (mirror in longitude), |phi1| >=
    // |phi2| (exchange the points), phi1 <= 0 (mirror in latitude); a first
    // latitude of +0 is mirrored, which makes the northward one of two
    // symmetric solutions the caller's.
    double lonError = 0.0;
    double lon12 = LongitudeDifference(first.lon, second.lon, lonError);
    const double lonSign = std::signbit(lon12) ? -1.0 : 1.0;
    lon12 *= lonSign;
    lonError *= lonSign;
    const bool exchanged = std::fabs(first.lat) < std::fabs(second.lat);
    if (exchanged)
        std::swap(first, second);
    const double latSign = std::signbit(first.lat) ? 1.0 : -1.0;
    const double lat1 = first.lat * latSign;

    SPair p;
    p.sbet1 = first.sbet * latSign;
    p.cbet1 = first.cbet;
    p.dn1 = first.dn;
    p.sbet2 = second.sbet * latSign;
    p.cbet2 = second.cbet;
    p.dn2 = second.dn;
    p.lam12 = (lon12 + lonError) * kDegree;
    SinCosDegrees(lon12, lonError, p.slam12, p.clam12);

    double salp1 = 0.0, calp1 = 1.0, salp2 = 0.0, calp2 = 1.0;
    double s12 = 0.0;
    bool solved = false;

    // Along a meridian (the points on one meridian or its opposite, or point 1
    // on a pole): alpha1 = lambda12, alpha2 = 0. It is the shortest line unless
    // it runs past the point conjugate to point 1 (m12 < 0) on a long arc.
    if (lat1 == -90.0 || p.slam12 == 0.0) {
        salp1 = p.slam12;
        calp1 = p.clam12;
        const double ssig1 = p.sbet1, csig1 = calp1 * p.cbet1;
        const double ssig2 = p.sbet2, csig2 = p.cbet2;
        const double sig12 =
            std::atan2(std::max(0.0, csig1 * ssig2 - ssig1 * csig2), csig1 * csig2 + ssig1 * ssig2);
        double s12b = 0.0, m12b = 0.0;
        _lengths(Eps(m_ep2), sig12, ssig1, csig1, p.dn1, ssig2, csig2, p.dn2, &s12b, &m12b);
        if (sig12 < 1.0 || m12b >= 0.0) {
            // Both points on one pole: sigma12 is of the size of the cosine that
            // stands for the pole's zero.
            s12 = sig12 < 3.0 * kTiny ? 0.0 : m_b * std::max(0.0, s12b);
            solved = true;
        }
    }

    // Along the equator, as far as its conjugate point at lambda = (1 - f) pi.
    if (!solved && p.sbet1 == 0.0 && lon12 <= 180.0 * m_f1) {
        salp1 = salp2 = 1.0;
        calp1 = calp2 = 0.0;
        s12 = m_a * p.lam12;
        solved = true;
    }

    if (!solved) {
        _start(p, salp1, calp1);
        // The bracket of alpha1, (0, pi) at first: lambda12(alpha1) rises from 0
        // to pi over it.
        double loS = kTiny, loC = 1.0, hiS = kTiny, hiC = -1.0;
        bool closing = false, last = false;
        SEvaluation e;
        for (int i = 0;; ++i) {
            const bool newton = i < kNewtonSteps;
            _evaluate(p, salp1, calp1, e);
            t_lastEvaluations = i + 1;
            // Converged when |v| is at round-off; after the Newton step that
            // first came within 16 eps one more step, then 8 eps is enough.
            // The derivative (the reduced length) only for a step to come.
            if (last || i + 1 >= kMaxEvaluations || !(std::fabs(e.v) >= (closing ? 8.0 : 1.0) * kEpsilon))
                break;
            if (e.v > 0.0 && Before(salp1, calp1, hiS, hiC)) {
                hiS = salp1;
                hiC = calp1;
            } else if (e.v < 0.0 && Before(loS, loC, salp1, calp1)) {
                loS = salp1;
                loC = calp1;
            }
            const double dv = newton ? _slope(p, e) : 0.0;
            if (newton && dv > 0.0) {
                const double step = -e.v / dv;
                if (std::fabs(step) < kPi) {
                    double sd = 0.0, cd = 0.0;
                    CKvMathKernel::SinCosAny(step, sd, cd);
                    const double ns = salp1 * cd + calp1 * sd;
                    const double nc = calp1 * cd - salp1 * sd;
                    if (ns > 0.0 && Before(loS, loC, ns, nc) && Before(ns, nc, hiS, hiC)) {
                        salp1 = ns;
                        calp1 = nc;
                        Normalize(salp1, calp1);
                        closing = std::fabs(e.v) <= 16.0 * kEpsilon;
                        continue;
                    }
                }
            }
            // Bisection of the bracket: the normalized sum of its two unit vectors.
            salp1 = 0.5 * (loS + hiS);
            calp1 = 0.5 * (loC + hiC);
            Normalize(salp1, calp1);
            // Where Newton's steps leave the bracket, v is at the level of its
            // own rounding (nearly antipodal points on a sphere): 8 eps is enough.
            closing = true;
            const double tolerance = 4.0 * kEpsilon;
            last = std::fabs(loS - salp1) + std::fabs(loC - calp1) < tolerance ||
                   std::fabs(salp1 - hiS) + std::fabs(calp1 - hiC) < tolerance;
        }
        double s12b = 0.0;
        _lengths(e.eps, e.sig12, e.ssig1, e.csig1, p.dn1, e.ssig2, e.csig2, p.dn2, &s12b, nullptr);
        s12 = m_b * std::max(0.0, s12b);
        if (p.sbet1 == 0.0 && calp1 == 0.0)
            calp1 = -kTiny; // as the evaluation took it
        salp2 = e.salp2;
        calp2 = e.calp2;
    }

    // Back from the canonical position: the exchange reverses the geodesic
    // (with lambda12 kept, cos alpha changes sign), the mirror in latitude turns
    // cos alpha, the one in longitude sin alpha.
    if (exchanged) {
        std::swap(salp1, salp2);
        std::swap(calp1, calp2);
        calp1 = -calp1;
        calp2 = -calp2;
    }
    distance = s12;
    salp1out = salp1 * lonSign;
    calp1out = calp1 * latSign;
    salp2out = salp2 * lonSign;
    calp2out = calp2 * latSign;
}

bool CKvGeodesic::Direct(double lon1, double lat1, double azimuth1, double distance, double& lon2, double& lat2,
                         double& azimuth2) const
{
    if (!m_valid || !CKvAngle::IsPoint(lon1, lat1) || !std::isfinite(azimuth1) || !std::isfinite(distance)) {
        lon2 = lat2 = azimuth2 = std::nan("");
        return false;
    }
    double salp1 = 0.0, calp1 = 0.0, salp2 = 0.0, calp2 = 0.0;
    SinCosDegrees(azimuth1, 0.0, salp1, calp1);
    _direct(MakePoint(lon1, lat1), salp1, calp1, distance, lon2, lat2, salp2, calp2);
    azimuth2 = Azimuth(salp2, calp2);
    return true;
}

bool CKvGeodesic::DirectFrom(const SPoint& point1, double sinAzimuth1, double cosAzimuth1, double distance,
                             double& lon2, double& lat2) const
{
    if (!point1.valid || !std::isfinite(sinAzimuth1) || !std::isfinite(cosAzimuth1) || !std::isfinite(distance)) {
        lon2 = lat2 = std::nan("");
        return false;
    }
    double salp2 = 0.0, calp2 = 0.0;
    _direct(point1, sinAzimuth1, cosAzimuth1, distance, lon2, lat2, salp2, calp2);
    return true;
}

void CKvGeodesic::_direct(const SPoint& point1, double salp1, double calp1, double distance, double& lon2,
                          double& lat2, double& salp2, double& calp2) const
{
    // Point 1 on the auxiliary sphere, and the geodesic's equatorial azimuth
    // alpha0 by Clairaut's relation sin alpha0 = sin alpha1 cos beta1.
    const double sbet1 = point1.sbet, cbet1 = point1.cbet;
    const double salp0 = salp1 * cbet1;
    const double calp0 = Hypot(calp1, salp1 * sbet1);
    // sigma1 and omega1 from the node; due east or west on the equator, the
    // node is the point itself.
    double ssig1 = sbet1, csig1 = sbet1 != 0.0 || calp1 != 0.0 ? cbet1 * calp1 : 1.0;
    const double somg1 = salp0 * sbet1, comg1 = csig1;
    Normalize(ssig1, csig1);
    const double k2 = calp0 * calp0 * m_ep2;
    const double eps = Eps(k2);
    const double a1m1 = A1m1(eps);
    double c1[6], c1p[6], c3[5];
    C1(eps, c1);
    C1p(eps, c1p);
    _c3(eps, c3);
    const double b11 = SinSeries(ssig1, csig1, c1, 6);
    double sb = 0.0, cb = 0.0;
    CKvMathKernel::SinCosAny(b11, sb, cb);
    // tau1 = sigma1 + B11, the normalized distance of point 1 from the node.
    const double stau1 = ssig1 * cb + csig1 * sb, ctau1 = csig1 * cb - ssig1 * sb;
    const double tau12 = distance / (m_b * (1.0 + a1m1));
    double st = 0.0, ct = 0.0;
    CKvMathKernel::SinCosAny(tau12, st, ct);
    const double b12 = -SinSeries(stau1 * ct + ctau1 * st, ctau1 * ct - stau1 * st, c1p, 6);
    double sig12 = tau12 - (b12 - b11);
    double ssig12 = 0.0, csig12 = 0.0;
    CKvMathKernel::SinCosAny(sig12, ssig12, csig12);
    if (m_f > 0.01) {
        // The reverted series loses accuracy with the flattening: one Newton
        // step on s(sigma12), whose derivative is b sqrt(1 + k^2 sin^2 sigma2).
        const double ssig2 = ssig1 * csig12 + csig1 * ssig12, csig2 = csig1 * csig12 - ssig1 * ssig12;
        const double b1 = SinSeries(ssig2, csig2, c1, 6);
        const double error = (1.0 + a1m1) * (sig12 + (b1 - b11)) - distance / m_b;
        sig12 -= error / std::sqrt(1.0 + k2 * ssig2 * ssig2);
        CKvMathKernel::SinCosAny(sig12, ssig12, csig12);
    }
    const double ssig2 = ssig1 * csig12 + csig1 * ssig12;
    double csig2 = csig1 * csig12 - ssig1 * ssig12;
    const double sbet2 = calp0 * ssig2;
    double cbet2 = Hypot(salp0, calp0 * csig2);
    if (cbet2 == 0.0)
        cbet2 = csig2 = kTiny; // a pole: taken on the side of the geodesic's meridian
    salp2 = salp0;
    calp2 = calp0 * csig2;
    // omega12 - f sin(alpha0) I3 gives lambda12. omega12 is wanted modulo a
    // whole turn only (the longitude is reduced): the angle from omega1 to
    // omega2, tan omega = sin alpha0 tan sigma, by one atan2 of the sine and
    // cosine of their difference, whatever turns sigma12 makes.
    const double somg2 = salp0 * ssig2, comg2 = csig2;
    const double omg12 = CKvMathKernel::Atan2(somg2 * comg1 - comg2 * somg1, comg2 * comg1 + somg2 * somg1);
    const double b31 = SinSeries(ssig1, csig1, c3, 5);
    const double b32 = SinSeries(ssig2, csig2, c3, 5);
    const double lam12 = omg12 - m_f * _a3(eps) * salp0 * (sig12 + (b32 - b31));
    lon2 = CKvAngle::ReduceLongitudeDegrees(point1.lon + CKvAngle::ReduceLongitudeDegrees(lam12 / kDegree));
    lat2 = Atan2Degrees(sbet2, m_f1 * cbet2);
}
