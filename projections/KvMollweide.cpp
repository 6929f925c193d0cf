#include "projections/KvMollweide.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kSqrt2 = 1.4142135623730951;

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
}

void CKvMollweide::_theta(double lat, double* sinTheta, double* cosTheta)
{
    const double phi = std::fabs(lat) * kDeg;
    const double s = std::sin(phi);
    double st, ct;
    if (s <= 0.8) {
        // u = 2 |theta|: u + sin u = pi s, with 1 + cos u >= 1.06 here, from
        // the root of 2u - u^3 / 6 = pi s. Newton's method squares the error:
        // after a step below 1e-9 what is left is below 1e-17.
        const double k = kPi * s, h = k / 2.0;
        double u = h + h * h * h / 12.0;
        // The sines and cosines by the library's inline kernel (one reduction
        // for both, within an ulp).
        double su, cu, versine;
        for (int i = 0; i < 10; ++i) {
            CKvMathKernel::SinCos(u, su, cu, versine);
            const double step = (u + su - k) / (1.0 + cu);
            u -= step;
            if (std::fabs(step) < 1e-9)
                break;
        }
        CKvMathKernel::SinCos(u / 2.0, st, ct, versine);
    } else {
        // v = pi - 2 |theta|: v - sin v = pi (1 - s) = pi cos^2 phi / (1 + s),
        // whose root starts as the cube root of 6 C; the next term of the series,
        // v^5 / 120, gives the factor (1 + v^2 / 60). The pole itself is v = 0.
        const double c = std::fabs(lat) == 90.0 ? 0.0 : std::cos(phi);
        const double C = kPi * c * c / (1.0 + s);
        const double v0 = std::cbrt(6.0 * C);
        double v = v0 * (1.0 + v0 * v0 / 60.0);
        double h, hc, versine;
        for (int i = 0; i < 10 && v > 0.0; ++i) {
            CKvMathKernel::SinCos(v / 2.0, h, hc, versine);
            const double step = (VMinusSinV(v, 2.0 * h * hc) - C) / (2.0 * h * h);
            v -= step;
            if (std::fabs(step) <= 1e-9 * v) // what is left: some 1e-18 v
                break;
        }
        CKvMathKernel::SinCos(v / 2.0, ct, st, versine);
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
    double Y = (y - m_FN) / (kSqrt2 * m_R);
    if (!(std::fabs(Y) <= 1.0 + 1e-15) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double absY = std::fabs(Y) > 1.0 ? 1.0 : std::fabs(Y);
    const double cosTheta = std::sqrt((1.0 - absY) * (1.0 + absY));
    // Along the parallel, cos theta: at the pole every x but the centre's is off
    // the map.
    const double dx = x - m_FE;
    const double lambdaDeg = dx == 0.0 ? 0.0 : kPi * dx / (2.0 * kSqrt2 * m_R * cosTheta) / kDeg;
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    double phi;
    if (absY <= 0.5) {
        const double theta = std::asin(absY);
        phi = std::asin((2.0 * theta + 2.0 * absY * cosTheta) / kPi);
    } else {
        // Near the pole through v = pi - 2 theta: 1 - sin phi = (v - sin v) / pi,
        // and phi from its sine and cosine, which keeps the digits that an arc
        // sine of a number close to 1 would lose.
        const double v = 2.0 * std::atan2(cosTheta, absY);
        const double d = VMinusSinV(v, std::sin(v)) / kPi;
        phi = std::atan2(1.0 - d, std::sqrt(d * (2.0 - d)));
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
