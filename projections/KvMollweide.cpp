#include "projections/KvMollweide.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kSqrt2 = 1.4142135623730951;

// The starts of the forward's Newton step, written by tools/make_mollweide_start.py:
// theta / phi as a polynomial in x = phi^2 kThetaScale - 1 for sin phi <=
// kStartLimit, and v / r as one in r^2 kPoleScale - 1 beyond (see
// CKvMollweide::_theta).
constexpr double kStartLimit = 0.9;
constexpr double kThetaScale = 1.595044176408236;
constexpr double kTheta[10] = {0.8071083293494978,    0.024690655628920963,  0.003524299767826554,
                               0.0006603581414014181, 0.00014413638909462341, 3.450450053020803e-05,
                               8.63428531208132e-06,  2.278652769627244e-06, 7.88912011273624e-07,
                               2.2849734175878212e-07};
constexpr double kPoleScale = 1.3106777098062208;
constexpr double kPole[6] = {1.0131503788618736,     0.013604144194749496,  0.0004742087864167202,
                             2.1490417089531366e-05, 1.1080747969322013e-06, 6.121887907717391e-08};

// v - sin v without the cancellation of the difference: by its Taylor series,
// v^3 / 3! - v^5 / 5! + ... to v^17 (remainder below 1e-17 relative), for
// v < 1; directly beyond (sinV = sin v), where sin v < 0.85 v keeps at least a
// sixth of v.
double VMinusSinV(double v, double sinV)
{
    if (v >= 1.0)
        return v - sinV;
    static constexpr double Series[8] = {1.0 / 6,          -1.0 / 120,          1.0 / 5040,
                                         -1.0 / 362880,    1.0 / 39916800,      -1.0 / 6227020800,
                                         1.0 / 1307674368000, -1.0 / 355687428096000};
    const double v2 = v * v;
    return v * v2 * CKvMathKernel::Estrin<8>(v2, Series);
}
} // namespace

CKvMollweide::CKvMollweide(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lon0 = parameters[0];
    m_FE = parameters[1];
    m_FN = parameters[2];
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN);
    m_R = usable ? a : std::nan("");
    m_invY = 1.0 / (kSqrt2 * m_R);
    m_invX = kPi / (2.0 * kSqrt2 * m_R * kDeg);
}

void CKvMollweide::_theta(double lat, double* sinTheta, double* cosTheta)
{
    const double phi = std::fabs(lat) * kDeg;
    // The sines and cosines by the library's inline kernel (one reduction for
    // both, within an ulp).
    double s, cosPhi, versine;
    CKvMathKernel::SinCos(phi, s, cosPhi, versine);
    double st, ct;
    if (s <= kStartLimit) {
        // 2 theta + sin 2 theta = pi s from the start theta0 = phi P(phi^2),
        // within 1.7e-10 of the root: one Newton step in u = 2 theta, whose
        // derivative 1 + cos u = 2 cos^2 theta stays above 0.7 here and whose
        // second derivative -sin u is at most 1 in size, leaves at most
        // (3.4e-10)^2 / 1.4 < 1e-19 in u. The sines of the root follow from
        // those of the start by the addition formulas.
        const double theta = phi * CKvMathKernel::Estrin<10>(phi * phi * kThetaScale - 1.0, kTheta);
        double sn, cs;
        CKvMathKernel::SinCos(theta, sn, cs, versine);
        const double step = -(2.0 * theta + 2.0 * sn * cs - kPi * s) / (4.0 * cs * cs);
        double sd, cd;
        CKvMathKernel::SinCosSmall(step, sd, cd);
        st = sn * cd + cs * sd;
        ct = cs * cd - sn * sd;
    } else if (std::fabs(lat) == 90.0) {
        st = 1.0; // the pole itself, v = 0
        ct = 0.0;
    } else {
        // v = pi - 2 |theta|: v - sin v = C = pi (1 - s) = pi cos^2 phi / (1 + s),
        // from the start v0 = r Q(r^2), r = (6 C)^(1/3), within 1.1e-10 v of the
        // root. Newton's step leaves cot(v / 2) / 2 e^2 < e^2 / v of an error e:
        // some 1e-20 v. The sines of v / 2 after the step by the addition
        // formulas, as above.
        const double C = kPi * cosPhi * cosPhi / (1.0 + s);
        const double r = CKvMathKernel::Exp(CKvMathKernel::Log(6.0 * C) * (1.0 / 3.0));
        const double v = r * CKvMathKernel::Estrin<6>(r * r * kPoleScale - 1.0, kPole);
        double h, hc;
        CKvMathKernel::SinCos(v / 2.0, h, hc, versine);
        const double step = -(VMinusSinV(v, 2.0 * h * hc) - C) / (4.0 * h * h); // in v / 2
        double sd, cd;
        CKvMathKernel::SinCosSmall(step, sd, cd);
        ct = h * cd + hc * sd; // cos theta = sin(v / 2)
        st = hc * cd - h * sd; // sin |theta| = cos(v / 2)
    }
    *sinTheta = lat < 0.0 ? -st : st;
    *cosTheta = ct;
}

void CKvMollweide::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double sinTheta, cosTheta;
    _theta(lat, &sinTheta, &cosTheta);
    *x = m_FE + (2.0 * kSqrt2 / kPi) * m_R * lambda * cosTheta;
    *y = m_FN + kSqrt2 * m_R * sinTheta;
}

void CKvMollweide::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double Y = (y - m_FN) * m_invY;
    if (!(std::fabs(Y) <= 1.0 + 1e-15) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double absY = std::fabs(Y) > 1.0 ? 1.0 : std::fabs(Y);
    const double cosTheta = std::sqrt((1.0 - absY) * (1.0 + absY));
    // Along the parallel, cos theta: at the pole every x but the centre's is off
    // the map.
    const double dx = x - m_FE;
    const double lambdaDeg = dx == 0.0 ? 0.0 : dx * m_invX / cosTheta;
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    double phi;
    // The arcs by libm's asin, of arguments within [0, 0.87] only: on these
    // per-point paths it costs far less than an atan2 (the inline kernel's,
    // a division and a polynomial of degree 25, or libm's).
    if (absY <= 0.5) {
        const double theta = std::asin(absY);
        const double z = (2.0 * theta + 2.0 * absY * cosTheta) * (1.0 / kPi);
        phi = std::asin(z);
    } else {
        // Near the pole through v = pi - 2 theta, sin(v / 2) = cos theta <=
        // sqrt 3 / 2: d = 1 - sin phi = (v - sin v) / pi, sin v = 2 sin theta
        // cos theta, and phi = pi/2 - psi with sin(psi / 2) = sqrt(d / 2), which
        // keeps the digits that an arc sine of sin phi, close to 1, would lose.
        const double v = 2.0 * std::asin(cosTheta);
        const double d = VMinusSinV(v, 2.0 * absY * cosTheta) * (1.0 / kPi);
        phi = kHalfPi - 2.0 * std::asin(std::sqrt(0.5 * d));
    }
    *lat = (Y < 0.0 ? -phi : phi) / kDeg;
    *lon = CKvAngle::EdgeInverseLongitudeDegrees(lambdaDeg, m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvMollweide::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvMollweide::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    // dE/dtheta = -(2 sqrt 2 / pi) R lambda sin theta, dN/dtheta = sqrt 2 R cos theta.
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double sinTheta, cosTheta;
    _theta(lat, &sinTheta, &cosTheta);
    return std::atan2((2.0 / kPi) * lambda * sinTheta, cosTheta) / kDeg;
}

void CKvMollweide::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = 2.0 * kSqrt2 * m_R, halfHeight = kSqrt2 * m_R;
    *x1 = m_FE - halfWidth;
    *y1 = m_FN - halfHeight;
    *x2 = m_FE + halfWidth;
    *y2 = m_FN + halfHeight;
}

// The method's names and parameters. ESRI and GDAL both write
// "Mollweide"; the EPSG registry has no such method.
const CKvMapProjData::STypeInfo CKvMollweide::TypeInfo = {
    CKvMapProjData::eMollweide,
    "MOLLWEIDE_PROJECTION",
    nullptr,
    "Mollweide",
    "Mollweide",
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
    "Default Mollweide",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Mollweide",
    {"Mollweide"},
    "+proj=moll",
    nullptr,
};
