#include "projections/KvPolyconic.h"

#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Steps of the inverse: from the footpoint latitude Newton's method settles to
// round-off in a handful of steps over the map; kept within a bracket, it
// settles in all cases well within the bound, which ends every call.
constexpr int kMaxSteps = 100;
// A Newton step below this leaves an error of about its square times
// |h''| / 2h', far below round-off.
constexpr double kSettled = 1e-11;
constexpr double kFinal = 1e-8;
constexpr double kPredicted = 1e-16;
// Below this size of L = (lambda - lambda0) sin phi the ratios sin L / sin phi
// and (1 - cos L) / sin phi are taken from their series (sin phi may be of any
// smallness, down to 0 on the equator); the first term left out is L^6 / 5040.
constexpr double kSeriesL = 1e-3;
} // namespace

CKvPolyconic::CKvPolyconic(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3]), m_meridian(CKvConformalLatitude::MakeMeridian(_a(), _e2()))
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && CKvAngle::IsLatitude(m_lat0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN);
    m_M0 = usable ? CKvConformalLatitude::MeridianDistance(m_meridian, m_lat0 * kDeg) : std::nan("");
}

void CKvPolyconic::_grid(double phi, double dLambda, double* x, double* y, double* dxdphi, double* dydphi) const
{
    // |phi| <= pi/2 (the callers check): its sine and cosine need no reduction.
    double s, c;
    CKvMathKernel::SinCosHalfPi(phi, s, c);
    const double e2 = _e2();
    const double w2 = 1.0 - e2 * s * s;
    const double L = dLambda * s;
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    // A = sin L / sin phi and B = (1 - cos L) / sin phi, so that
    // x = nu cos phi A and y = M - M0 + nu cos phi B. Away from the central
    // meridian and the equator nu cos phi / sin phi is one quotient, and L's
    // sine and versine need no reduction within pi/4 (|L| <= pi always).
    double A, B, nuC;
    if (std::fabs(L) >= kSeriesL) {
        double sL, vL;
        if (std::fabs(L) <= kPi / 4.0) {
            CKvMathKernel::SinVersineQuarterPi(L, sL, vL);
        } else {
            double cL;
            CKvMathKernel::SinCos(L, sL, cL, vL);
        }
        const double k = _a() * c / (std::sqrt(w2) * s);
        *x = k * sL;
        *y = M - m_M0 + k * vL;
        if (dxdphi == nullptr)
            return;
        A = sL / s;
        B = vL / s;
        nuC = _a() * c / std::sqrt(w2);
    } else {
        const double L2 = L * L;
        A = dLambda * (1.0 - L2 / 6.0 * (1.0 - L2 / 20.0));
        B = 0.5 * dLambda * L * (1.0 - L2 / 12.0 * (1.0 - L2 / 30.0));
        nuC = _a() * c / std::sqrt(w2);
        *x = nuC * A;
        *y = M - m_M0 + nuC * B;
    }
    const double nu = _a() / std::sqrt(w2);
    if (dxdphi == nullptr)
        return;
    // dA/dphi = cos phi (L cos L - sin L) / sin^2 phi and dB/dphi = cos phi
    // (L sin L - 1 + cos L) / sin^2 phi, with dL/dphi = (lambda - lambda0) cos phi;
    // near L = 0 by their series in L.
    double dA, dB;
    if (std::fabs(L) < kSeriesL) {
        const double L2 = L * L, d2 = dLambda * dLambda;
        dA = c * d2 * L * (-1.0 / 3.0 + L2 / 30.0);
        dB = c * d2 * (0.5 - L2 / 8.0 + L2 * L2 / 144.0);
    } else {
        double sL, cL, versine;
        CKvMathKernel::SinCos(L, sL, cL, versine);
        dA = c * (L * cL - sL) / (s * s);
        dB = c * (L * sL - versine) / (s * s);
    }
    const double dNu = nu * e2 * s * c / w2;
    const double rho = nu * (1.0 - e2) / w2; // the meridian's radius of curvature, dM/dphi
    *dxdphi = (dNu * c - nu * s) * A + nuC * dA;
    *dydphi = rho + (dNu * c - nu * s) * B + nuC * dB;
}

void CKvPolyconic::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    double gx, gy;
    _grid(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &gx, &gy,
          nullptr, nullptr);
    *x = m_FE + gx;
    *y = m_FN + gy;
}

void CKvPolyconic::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double X = x - m_FE;
    const double Y = y - m_FN + m_M0; // the meridian distance of the point's northing
    if (!std::isfinite(X) || !std::isfinite(Y)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double e2 = _e2(), a = _a();
    const double X2 = X * X;
    // The latitude is a root of h = sin phi (x^2 + y'^2) - 2 nu cos phi y', with
    // y' = Y - M(phi): the point on its parallel's circle. h is
    // -(x^2 + (Y + Mp)^2) <= 0 at the south pole and x^2 + (Y - Mp)^2 >= 0 at the
    // north pole, so the poles bracket a root. Newton's method from the
    // footpoint latitude of the northing (the series alone: its 1e-10 rad are
    // nothing beside the distance to the root), three or four steps over the
    // map; a Newton step that would leave the bracket (from near a pole, where
    // h is flat) is a bisection instead.
    const bool sphere = e2 == 0.0;
    double phi = sphere ? Y / a : CKvConformalLatitude::FootpointLatitude(m_meridian, Y);
    phi = phi > kPi / 2.0 ? kPi / 2.0 : phi < -kPi / 2.0 ? -kPi / 2.0 : phi; // Y is finite
    double lo = -kPi / 2.0, hi = kPi / 2.0;
    bool newton = false, bisected = false;
    double s = 0.0, c = 1.0, nu = a, yp = 0.0;
    CKvMathKernel::SinCosHalfPi(phi, s, c);
    const double ae2 = a * e2, oneMinusE2 = 1.0 - e2;
    double prev = 0.0; // no Newton step yet: no prediction
    for (int i = 0; i < kMaxSteps; ++i) {
        // nu, the meridian's radius of curvature rho = dM/dphi and dnu/dphi; on
        // the sphere a, a and 0, and M = a phi.
        double rho = a, dNu = 0.0;
        if (sphere) {
            yp = Y - a * phi;
        } else {
            const double iw2 = 1.0 / (1.0 - e2 * s * s);
            const double iw = std::sqrt(iw2);
            nu = a * iw;
            rho = nu * oneMinusE2 * iw2;
            dNu = ae2 * iw * iw2 * s * c;
            yp = Y - CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
        }
        const double r2 = X2 + yp * yp;
        const double h = s * r2 - 2.0 * nu * c * yp;
        const double dh = c * r2 - 2.0 * s * yp * rho - 2.0 * (dNu * c - nu * s) * yp + 2.0 * nu * c * rho;
        const double step = -h / dh;
        // Newton's error squares with each step, e' = C e^2, and C is measured
        // by the last two steps (C = |step| / prev^2): the step that leaves a
        // predicted C step^2 below kPredicted is the last one.
        // Compared as a product, with no quotient: with no step before (prev =
        // 0) only a zero step would pass, and |step| < kSettled takes that.
        const bool predicted = step * step * std::fabs(step) <= kPredicted * (prev * prev);
        prev = step;
        if (std::fabs(step) < kSettled || (std::fabs(step) <= kFinal && predicted)) {
            // Taken whole, even where it rounds to nothing or onto the
            // bracket's end (a bisection there would throw the root away), with
            // sin phi, cos phi, nu and y' carried along it to first order.
            phi += step;
            const double s1 = s + c * step;
            c -= s * step;
            s = s1;
            nu += dNu * step;
            yp -= rho * step;
            newton = true;
            break;
        }
        if (h < 0.0)
            lo = phi;
        else
            hi = phi;
        const double next = phi + step;
        if (next > lo && next < hi) {
            phi = next;
            // Near the root the sines are turned by the step (the addition
            // formulas, rounding alone), further out taken afresh.
            if (std::fabs(step) <= CKvMathKernel::SinCosSmallLimit) {
                double sd, cd;
                CKvMathKernel::SinCosSmall(step, sd, cd);
                const double s1 = s * cd + c * sd;
                c = c * cd - s * sd;
                s = s1;
            } else {
                CKvMathKernel::SinCosHalfPi(phi, s, c);
            }
        } else {
            phi = 0.5 * (lo + hi);
            CKvMathKernel::SinCosHalfPi(phi, s, c);
            prev = 0.0; // no Newton step to measure C by

        }
        if (hi - lo < kSettled) {
            bisected = true;
            break;
        }
    }
    if (!newton && !bisected) {
        *lon = *lat = std::nan("");
        return;
    }
    phi = phi > kPi / 2.0 ? kPi / 2.0 : phi < -kPi / 2.0 ? -kPi / 2.0 : phi;
    if (bisected) {
        CKvMathKernel::SinCosAny(phi, s, c);
        nu = a / std::sqrt(1.0 - e2 * s * s);
        yp = Y - CKvConformalLatitude::MeridianDistance(m_meridian, phi);
    }
    // sin L and cos L in proportion, both multiplied by nu cos phi > 0. On the
    // root (X, y') lies on the parallel's circle, and L is its angle there.
    const double L = CKvMathKernel::Atan2(X * s, nu * c - yp * s);
    const double dLambda = std::fabs(s) > 1e-100 ? L / s : X / (nu * c - yp * s);
    if (!(std::fabs(dLambda) <= kPi * (1.0 + 1e-12))) {
        *lon = *lat = std::nan("");
        return;
    }
    // A root of h is on the circle of its parallel, not necessarily within the
    // arc of the map (a grid point beyond the map still has roots, at the
    // poles' side): those have |lambda - lambda0| beyond pi, refused above.
    // Newton's settled root gives the grid point back to its rounding; one
    // found by bisection (h flat or folded there) is checked.
    if (bisected) {
        double gx, gy;
        _grid(phi, dLambda, &gx, &gy, nullptr, nullptr);
        if (!(std::hypot(gx - X, gy - (Y - m_M0)) <= 1e-5)) {
            *lon = *lat = std::nan("");
            return;
        }
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + dLambda / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvPolyconic::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvPolyconic::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_M0 == m_M0))
        return std::nan("");
    double x, y, dx, dy;
    _grid(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &x, &y,
          &dx, &dy);
    return std::atan2(-dx, dy) / kDeg;
}

void CKvPolyconic::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    // The equator's ends at +-90 degrees and the poles bound the map's middle.
    const double halfWidth = _a() * kPi / 2.0;
    const double pole = CKvConformalLatitude::MeridianDistance(m_meridian, kPi / 2.0);
    *x1 = m_FE - halfWidth;
    *x2 = m_FE + halfWidth;
    *y1 = m_FN - pole - m_M0;
    *y2 = m_FN + pole - m_M0;
}

// The method's names and parameters: ESRI and GDAL write "Polyconic", the EPSG
// registry "American Polyconic".
const CKvMapProjData::STypeInfo CKvPolyconic::TypeInfo = {
    CKvMapProjData::ePolyconic,
    "POLYCONIC_PROJECTION",
    nullptr,
    "American Polyconic",
    "Polyconic",
    4,
    {
        {"Central_Meridian",
         "Central meridian:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "central_meridian", "Longitude of natural origin", "Longitude_Of_Center"},
         "lon_0",
         true,
         0.0},
        {"Origin_Latitude",
         "Latitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Origin", "latitude_of_origin", "Latitude of natural origin", "Latitude_Of_Center"},
         "lat_0",
         false,
         0.0},
        {"Feast",
         "False easting:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Easting", "false_easting", "False easting"},
         "x_0",
         false,
         0.0},
        {"Fnorth",
         "False northing:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Northing", "false_northing", "False northing"},
         "y_0",
         false,
         0.0},
    },
    "Default American Polyconic",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
    9818,
    "Polyconic",
    {"American Polyconic", "American_Polyconic"},
    "+proj=poly",
    nullptr,
};
