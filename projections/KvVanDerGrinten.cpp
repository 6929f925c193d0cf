#include "projections/KvVanDerGrinten.h"

#include "projections/KvAngle.h"
#include "projections/KvConformalLatitude.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kToDeg = 180.0 / kPi;
// The inverse's iteration for tan(theta/2) (see Proj2Geo): Newton's steps kept
// inside a bracket that halves when a step would leave it. From a Halley start
// they converge quadratically (one to three steps) except towards the poles, where
// the root turns double and each step only halves the error, which the
// latitude no longer feels; the bracket alone would reach the root to rounding
// in 60 steps, so 64 bound the time.
constexpr int kMaxIterations = 64;

std::string Problem(const double* parameters)
{
    for (int i = 0; i < 3; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    return "";
}
} // namespace

CKvVanDerGrinten::CKvVanDerGrinten(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_FE(parameters[1]), m_FN(parameters[2])
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && Problem(parameters).empty();
    m_R = usable ? CKvConformalLatitude::AuthalicRadius(a, _e()) : std::nan("");
}

void CKvVanDerGrinten::_unit(double phi, double lambda, double* X, double* Y)
{
    const double s = std::fmin(1.0, std::fabs(2.0 * phi / kPi)); // sin theta
    if (phi == 0.0) {
        *X = lambda / kPi; // the equator is divided truly
        *Y = 0.0;
        return;
    }
    const double c = std::sqrt((1.0 - s) * (1.0 + s)); // cos theta
    if (lambda == 0.0 || s == 1.0) {
        // The central meridian and the poles: tan(theta / 2).
        *X = 0.0;
        *Y = std::copysign(s / (1.0 + c), phi);
        return;
    }
    // Snyder's expressions, rewritten in 1/G, G/P and 1/P so that nothing
    // overflows near the equator (where G and P grow as 1/theta and 1/theta^2)
    // and nothing cancels: with t = tan(pi/4 - theta/2),
    //   1/G = 1 - t = 2 sin theta / ((1 + sin theta)(1 + t)),
    //   r = G/P = sin theta / (2 - sin theta),   h = 1/P = r / G.
    // The two square roots of Snyder's formulas are P sqrt(W) and sqrt(W), with
    //   W / P^2 = A^2 (1 - 2 r h + h^2) + 1 - r^2,
    // a sum of terms that are never negative, and the differences in x and y
    // are taken through their conjugates:
    //   x = pi R (1 - r^2) / (A (1 - r h) + sqrt(W / P^2)),
    //   y = pi R (A^2 h (2 r - h) + r^2) / (A^2 h + r + A h sqrt(W / P^2)).
    const double t = c / (1.0 + s); // tan(pi/4 - theta/2) = sqrt((1 - s) / (1 + s))
    const double invG = 2.0 * s / ((1.0 + s) * (1.0 + t));
    const double r = s / (2.0 - s);
    const double h = r * invG;
    const double oneMinusR2 = 2.0 * (1.0 - s) / (2.0 - s) * (1.0 + r);
    const double oneMinusInvG = (1.0 - s + t * (1.0 + s)) / ((1.0 + s) * (1.0 + t));
    const double oneMinusRH = (4.0 * (1.0 - s) + s * s * oneMinusInvG) / ((2.0 - s) * (2.0 - s));
    const double u = oneMinusRH * oneMinusRH + h * h * oneMinusR2; // 1 - 2 r h + h^2
    const double A = 0.5 * std::fabs(kPi / lambda - lambda / kPi);
    double x, y;
    if (A <= 1.0) {
        const double root = std::sqrt(A * A * u + oneMinusR2);
        x = oneMinusR2 / (A * oneMinusRH + root);
        y = (A * A * h * (2.0 * r - h) + r * r) / (A * A * h + r + A * h * root);
    } else {
        // The same over A and A^2, for the meridians near the centre (A grows
        // as 1/lambda).
        const double inv = 1.0 / A;
        const double root = std::sqrt(u + oneMinusR2 * inv * inv);
        x = oneMinusR2 * inv / (oneMinusRH + root);
        y = (h * (2.0 * r - h) + r * r * inv * inv) / (h + r * inv * inv + h * root);
    }
    *X = std::copysign(x, lambda);
    *Y = std::copysign(y, phi);
}

void CKvVanDerGrinten::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    double X, Y;
    _unit(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg, &X, &Y);
    *x = m_FE + kPi * m_R * X;
    *y = m_FN + kPi * m_R * Y;
}

void CKvVanDerGrinten::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    *lon = *lat = std::nan("");
    const double scale = 1.0 / (kPi * m_R);
    const double X = (x - m_FE) * scale, Y = (y - m_FN) * scale;
    const double rho2 = X * X + Y * Y;
    // The map is the disc of radius pi R; beyond it (or for NaN) no point.
    if (!(rho2 <= 1.0 + 1e-14))
        return;
    // The parallel of theta is the circle through (0, T), T = tan(theta/2), and
    // through the ends (+-sqrt(1 - r^2), r) of the parallel on the outer
    // meridians: its centre lies at (0, (1 + T^3) / (2 T^2)). A point (X, Y)
    // on it, Y >= 0, therefore satisfies the cubic
    //   f(T) = Y T^3 - (X^2 + Y^2) T^2 - T + Y = 0,
    // whose root in [0, min(Y, 1)] (f(0) = Y >= 0, f(Y) = -X^2 Y^2 <= 0) is
    // the latitude's: sin theta = 2 T / (1 + T^2), phi = pi/2 sin theta. It is
    // solved by Newton's method inside the bracket, in place of Snyder's
    // trigonometric solution of a cubic in the same unknowns, which loses half
    // the digits where its arc cosine's argument nears -1 (along the equator).
    const double Ya = std::fabs(Y);
    double T = 0.0;
    if (Ya > 0.0) {
        double lo = 0.0, hi = Ya < 1.0 ? Ya : 1.0;
        // The start: one Halley step from the bracket's end T = Y, where f =
        // -X^2 Y^2 (the root itself on the central meridian). Its cubic
        // convergence leaves one or two Newton steps for most points.
        {
            const double f = ((Ya * hi - rho2) * hi - 1.0) * hi + Ya;
            const double slope = (3.0 * Ya * hi - 2.0 * rho2) * hi - 1.0;
            const double curve = 6.0 * Ya * hi - 2.0 * rho2;
            const double start = hi - 2.0 * f * slope / (2.0 * slope * slope - f * curve);
            T = start >= lo && start <= hi ? start : hi;
        }
        for (int i = 0; i < kMaxIterations; ++i) {
            const double f = ((Ya * T - rho2) * T - 1.0) * T + Ya;
            const double slope = (3.0 * Ya * T - 2.0 * rho2) * T - 1.0;
            if (f > 0.0)
                lo = T;
            else
                hi = T;
            double next = T - f / slope;
            const bool newton = next >= lo && next <= hi;
            if (!newton)
                next = 0.5 * (lo + hi);
            const double step = std::fabs(next - T);
            T = next;
            // The step's effect on the latitude, pi (1 - T^2) / (1 + T^2)^2
            // per unit of T, within two units in the last place of T: done (at
            // the poles, where the root is double and Newton's steps only
            // halve, the latitude no longer moves). Two units rather than one,
            // so that a step that swings between neighbouring numbers ends.
            if (step * (1.0 - T * T) <= 4.5e-16 * T || hi - lo <= 4.5e-16 * T)
                break;
            // After a Newton step of size d at a simple root the error left is
            // |f''| d^2 / (2 |f'|): when that is below the same bound, the
            // next step would change nothing.
            if (newton && step * step * std::fabs(6.0 * Ya * T - 2.0 * rho2) <= 4.5e-16 * T * std::fabs(slope))
                break;
        }
    }
    *lat = std::copysign(kPi * T / (1.0 + T * T), Y) * kToDeg;
    // The meridian of lambda is the circle through the poles (0, +-1) and
    // (lambda / pi, 0) on the equator: its centre lies on the equator at
    // X_c = (X^2 + Y^2 - 1) / (2 X), and lambda / pi = X_c + sqrt(X_c^2 + 1)
    // (Snyder's eq. 29-15), taken without cancellation for X_c < 0 (inside the
    // disc) as 2 X / (q + sqrt(q^2 + 4 X^2)), q = 1 - X^2 - Y^2.
    double dLambda = 0.0;
    if (X != 0.0) {
        const double q = rho2 < 1.0 ? 1.0 - rho2 : 0.0;
        dLambda = 2.0 * kPi * X / (q + std::sqrt(q * q + 4.0 * X * X));
    }
    const double d = dLambda * kToDeg;
    const double dLon = d > 180.0 ? 180.0 : d < -180.0 ? -180.0 : d;
    *lon = CKvAngle::InverseLongitudeDegrees(dLon + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvVanDerGrinten::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvVanDerGrinten::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    // A central difference of 1e-5 radian along the meridian, one-sided at the
    // poles; its error, of the order of the step squared, stays below 1e-8
    // degree.
    const double phi = lat * kDeg, lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    constexpr double step = 1e-5;
    const double north = std::fmin(phi + step, kPi / 2.0), south = std::fmax(phi - step, -kPi / 2.0);
    double x1, y1, x2, y2;
    _unit(south, lambda, &x1, &y1);
    _unit(north, lambda, &x2, &y2);
    return std::atan2(x1 - x2, y2 - y1) / kDeg;
}

void CKvVanDerGrinten::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double half = kPi * m_R;
    *x1 = m_FE - half;
    *x2 = m_FE + half;
    *y1 = m_FN - half;
    *y2 = m_FN + half;
}

// ESRI writes "Van_der_Grinten_I", GDAL "VanDerGrinten"; the EPSG registry has
// no such method.
const CKvMapProjData::STypeInfo CKvVanDerGrinten::TypeInfo = {
    CKvMapProjData::eVanDerGrinten,
    "VAN_DER_GRINTEN_PROJECTION",
    nullptr,
    "Van der Grinten I",
    "Van_der_Grinten_I",
    3,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Van der Grinten I",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "VanDerGrinten",
    {"Van der Grinten", "Van der Grinten I"},
    "+proj=vandg +R_A",
    &Problem,
};
