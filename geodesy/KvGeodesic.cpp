#include "geodesy/KvGeodesic.h"

#include "projections/KvAngle.h"

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

// sin and cos of an angle in degrees, reduced exactly to [-45, 45] first, so
// that multiples of 90 give exact zeros and ones.
void SinCosDegrees(double degrees, double extra, double& s, double& c)
{
    int quadrant = 0;
    const double r = (std::remquo(degrees, 90.0, &quadrant) + extra) * kDegree;
    const double sr = std::sin(r), cr = std::cos(r);
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
    const double angle = std::atan2(y, x) / kDegree;
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

void Normalize(double& s, double& c)
{
    const double h = std::hypot(s, c);
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
    double v;  // lambda12(alpha1) - lambda12
    double dv; // its derivative in alpha1 (when asked for)
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
        somg12 = std::sin(omg12);
        comg12 = std::cos(omg12);
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

void CKvGeodesic::_evaluate(const SPair& p, double salp1, double calp1, bool derivative, SEvaluation& e) const
{
    // Leaving the equator due east has its node at the point itself: taken as
    // heading south, where the other equatorial point lies half a turn on.
    if (p.sbet1 == 0.0 && calp1 == 0.0)
        calp1 = -kTiny;
    // Clairaut: sin alpha0 = sin alpha cos beta along the whole geodesic.
    const double salp0 = salp1 * p.cbet1;
    const double calp0 = std::hypot(calp1, salp1 * p.sbet1);
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
    e.sig12 = std::atan2(std::max(0.0, csig1 * ssig2 - ssig1 * csig2), csig1 * csig2 + ssig1 * ssig2);
    const double somg12 = std::max(0.0, comg1 * somg2 - somg1 * comg2);
    const double comg12 = comg1 * comg2 + somg1 * somg2;
    // omega12 - lambda12, without cancellation near the antipode.
    const double eta = std::atan2(somg12 * p.clam12 - comg12 * p.slam12, comg12 * p.clam12 + somg12 * p.slam12);

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

    e.dv = 0.0;
    if (derivative) {
        // d lambda12 / d alpha1 = m12 / (a cos alpha2 cos beta2): moving alpha1
        // moves point 2 by m12 d alpha1 across the geodesic. At a vertex of
        // point 2 (cos alpha2 = 0, beta2 = -beta1) its limit, -2 (1 - f) dn1 / sin beta1.
        if (e.calp2 == 0.0) {
            e.dv = -2.0 * m_f1 * p.dn1 / p.sbet1;
        } else {
            double m12b = 0.0;
            _lengths(e.eps, e.sig12, ssig1, csig1, p.dn1, ssig2, csig2, p.dn2, nullptr, &m12b);
            e.dv = m_f1 * m12b / (e.calp2 * p.cbet2);
        }
    }
}

bool CKvGeodesic::Inverse(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth1,
                          double& azimuth2) const
{
    t_lastEvaluations = 0;
    if (!m_valid || !CKvAngle::IsPoint(lon1, lat1) || !CKvAngle::IsPoint(lon2, lat2)) {
        distance = azimuth1 = azimuth2 = std::nan("");
        return false;
    }

    // A latitude within 1e-20 degree of the equator (some 1e-15 m) is on it,
    // keeping its sign: the azimuths and the distance change by far less than
    // round-off, and the inclination of a geodesic from a point any closer
    // would be too small for the iteration to resolve.
    if (std::fabs(lat1) < kEquatorLatitude)
        lat1 = std::copysign(0.0, lat1);
    if (std::fabs(lat2) < kEquatorLatitude)
        lat2 = std::copysign(0.0, lat2);

    // The canonical position: lambda12 >= 0 (mirror in longitude), |phi1| >=
    // |phi2| (exchange the points), phi1 <= 0 (mirror in latitude); a first
    // latitude of +0 is mirrored, which makes the northward one of two
    // symmetric solutions the caller's.
    double lonError = 0.0;
    double lon12 = LongitudeDifference(lon1, lon2, lonError);
    const double lonSign = std::signbit(lon12) ? -1.0 : 1.0;
    lon12 *= lonSign;
    lonError *= lonSign;
    const bool exchanged = std::fabs(lat1) < std::fabs(lat2);
    if (exchanged)
        std::swap(lat1, lat2);
    const double latSign = std::signbit(lat1) ? 1.0 : -1.0;
    lat1 *= latSign;
    lat2 *= latSign;

    SPair p;
    double sphi = 0.0, cphi = 0.0;
    SinCosDegrees(lat1, 0.0, sphi, cphi);
    p.sbet1 = m_f1 * sphi; // tan beta = (1 - f) tan phi
    p.cbet1 = cphi;
    Normalize(p.sbet1, p.cbet1);
    p.cbet1 = std::max(kTiny, p.cbet1);
    SinCosDegrees(lat2, 0.0, sphi, cphi);
    p.sbet2 = m_f1 * sphi;
    p.cbet2 = cphi;
    Normalize(p.sbet2, p.cbet2);
    p.cbet2 = std::max(kTiny, p.cbet2);
    p.dn1 = std::sqrt(1.0 + m_ep2 * p.sbet1 * p.sbet1);
    p.dn2 = std::sqrt(1.0 + m_ep2 * p.sbet2 * p.sbet2);
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
            _evaluate(p, salp1, calp1, newton, e);
            t_lastEvaluations = i + 1;
            // Converged when |v| is at round-off; after the Newton step that
            // first came within 16 eps one more step, then 8 eps is enough.
            if (last || i + 1 >= kMaxEvaluations || !(std::fabs(e.v) >= (closing ? 8.0 : 1.0) * kEpsilon))
                break;
            if (e.v > 0.0 && Before(salp1, calp1, hiS, hiC)) {
                hiS = salp1;
                hiC = calp1;
            } else if (e.v < 0.0 && Before(loS, loC, salp1, calp1)) {
                loS = salp1;
                loC = calp1;
            }
            if (newton && e.dv > 0.0) {
                const double step = -e.v / e.dv;
                if (std::fabs(step) < kPi) {
                    const double sd = std::sin(step), cd = std::cos(step);
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
    calp1 *= latSign;
    calp2 *= latSign;
    salp1 *= lonSign;
    salp2 *= lonSign;
    distance = s12;
    azimuth1 = Azimuth(salp1, calp1);
    azimuth2 = Azimuth(salp2, calp2);
    return true;
}

bool CKvGeodesic::Direct(double lon1, double lat1, double azimuth1, double distance, double& lon2, double& lat2,
                         double& azimuth2) const
{
    if (!m_valid || !CKvAngle::IsPoint(lon1, lat1) || !std::isfinite(azimuth1) || !std::isfinite(distance)) {
        lon2 = lat2 = azimuth2 = std::nan("");
        return false;
    }
    // Point 1 on the auxiliary sphere, and the geodesic's equatorial azimuth
    // alpha0 by Clairaut's relation sin alpha0 = sin alpha1 cos beta1.
    double sphi = 0.0, cphi = 0.0;
    SinCosDegrees(lat1, 0.0, sphi, cphi);
    double sbet1 = m_f1 * sphi, cbet1 = cphi;
    Normalize(sbet1, cbet1);
    cbet1 = std::max(kTiny, cbet1);
    double salp1 = 0.0, calp1 = 0.0;
    SinCosDegrees(azimuth1, 0.0, salp1, calp1);
    const double salp0 = salp1 * cbet1;
    const double calp0 = std::hypot(calp1, salp1 * sbet1);
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
    const double sb = std::sin(b11), cb = std::cos(b11);
    // tau1 = sigma1 + B11, the normalized distance of point 1 from the node.
    const double stau1 = ssig1 * cb + csig1 * sb, ctau1 = csig1 * cb - ssig1 * sb;
    const double tau12 = distance / (m_b * (1.0 + a1m1));
    const double st = std::sin(tau12), ct = std::cos(tau12);
    const double b12 = -SinSeries(stau1 * ct + ctau1 * st, ctau1 * ct - stau1 * st, c1p, 6);
    double sig12 = tau12 - (b12 - b11);
    double ssig12 = std::sin(sig12), csig12 = std::cos(sig12);
    if (m_f > 0.01) {
        // The reverted series loses accuracy with the flattening: one Newton
        // step on s(sigma12), whose derivative is b sqrt(1 + k^2 sin^2 sigma2).
        const double ssig2 = ssig1 * csig12 + csig1 * ssig12, csig2 = csig1 * csig12 - ssig1 * ssig12;
        const double b1 = SinSeries(ssig2, csig2, c1, 6);
        const double error = (1.0 + a1m1) * (sig12 + (b1 - b11)) - distance / m_b;
        sig12 -= error / std::sqrt(1.0 + k2 * ssig2 * ssig2);
        ssig12 = std::sin(sig12);
        csig12 = std::cos(sig12);
    }
    const double ssig2 = ssig1 * csig12 + csig1 * ssig12;
    double csig2 = csig1 * csig12 - ssig1 * ssig12;
    const double sbet2 = calp0 * ssig2;
    double cbet2 = std::hypot(salp0, calp0 * csig2);
    if (cbet2 == 0.0)
        cbet2 = csig2 = kTiny; // a pole: taken on the side of the geodesic's meridian
    const double salp2 = salp0, calp2 = calp0 * csig2;
    // omega12, counted along the whole turn of the geodesic (sigma12 may exceed
    // pi), minus f sin(alpha0) I3 gives lambda12.
    const double somg2 = salp0 * ssig2, comg2 = csig2;
    const double E = std::copysign(1.0, salp0);
    const double omg12 = E * (sig12 - (std::atan2(ssig2, csig2) - std::atan2(ssig1, csig1)) +
                              (std::atan2(E * somg2, comg2) - std::atan2(E * somg1, comg1)));
    const double b31 = SinSeries(ssig1, csig1, c3, 5);
    const double b32 = SinSeries(ssig2, csig2, c3, 5);
    const double lam12 = omg12 - m_f * _a3(eps) * salp0 * (sig12 + (b32 - b31));
    lon2 = CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon1) +
                                            CKvAngle::ReduceLongitudeDegrees(lam12 / kDegree));
    lat2 = Atan2Degrees(sbet2, m_f1 * cbet2);
    azimuth2 = Azimuth(salp2, calp2);
    return true;
}
