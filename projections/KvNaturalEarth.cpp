#include "projections/KvNaturalEarth.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// The published coefficients (Savric et al. 2011, table 1).
constexpr double A0 = 0.8707, A1 = -0.131979, A2 = -0.013791, A3 = 0.003971, A4 = -0.001529;
constexpr double B0 = 1.007226, B1 = 0.015085, B2 = -0.044475, B3 = 0.028874, B4 = -0.005916;
// The inverse's start (tools/make_natural_earth_start.py). N(phi) rises from
// the equator to the poles but has its maximum Y_c = N(1.588) just beyond
// them, a square-root branch point of phi(Y) 0.0011 beyond the poles'
// northing: below |Y| = kSplit phi / Y is a polynomial in x = Y^2 kLowScale - 1,
// above it phi a polynomial in sqrt(Y_c - |Y|) (scaled into [-1, 1]).
// largest errors in phi (rad): 7.9e-11 below the split, 3.5e-10 above
constexpr double kSplit = 1.15, kLowScale = 1.512287334593573;
constexpr double kLow[13] = {0.990787588820044, 0.009611808418798955, 0.013336755800309323, 9.93308802051431e-05, -0.0011582664894477172, 0.00021470680855218883, -0.0001194733467294276, 0.00010857628029035856, 1.986651780743343e-05, 1.0709120769767768e-05, 1.3897974255849926e-06, -2.240028020811871e-06, 8.708658687143626e-07};
constexpr double kYc = 1.4234826284355004, kHighScale = 4.082395801719886, kHighShift = 1.1349120147160845;
constexpr double kHigh[13] = {1.4093469572964137, -0.19727353248550986, -0.042543926306068576, -0.006589467186675143, 0.0008650003680717706, 0.0009906125160603063, 0.00023322693953176888, -8.681938139018473e-05, -8.922185739301721e-05, -2.052993681683697e-05, 1.0066540487252319e-05, 5.756880203379846e-06, 2.440043600409047e-07};

// The length of the parallel over that of the equator times A0, and the
// northing over R.
inline double Length(double p) // p = phi^2
{
    return A0 + p * (A1 + p * (A2 + p * p * p * (A3 + p * A4)));
}
inline double Northing(double phi, double p)
{
    return phi * (B0 + p * (B1 + p * p * (B2 + p * (B3 + p * B4))));
}
inline double NorthingSlope(double p)
{
    return B0 + p * (3.0 * B1 + p * p * (7.0 * B2 + p * (9.0 * B3 + p * 11.0 * B4)));
}
inline double LengthSlope(double phi, double p)
{
    return phi * (2.0 * A1 + p * (4.0 * A2 + p * p * p * (10.0 * A3 + p * 12.0 * A4)));
}
// The northing of the poles over R.
const double kPoleY = Northing(kPi / 2.0, kPi * kPi / 4.0);

std::string Problem(const double* parameters)
{
    for (int i = 0; i < 3; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    return "";
}
} // namespace

CKvNaturalEarth::CKvNaturalEarth(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_FE(parameters[1]), m_FN(parameters[2])
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && Problem(parameters).empty();
    m_R = usable ? a : std::nan("");
    m_invR = 1.0 / m_R;
}

void CKvNaturalEarth::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double phi = lat * kDeg, p = phi * phi;
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    *x = m_FE + m_R * lambda * Length(p);
    *y = m_FN + m_R * Northing(phi, p);
}

void CKvNaturalEarth::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    *lon = *lat = std::nan("");
    const double Y = (y - m_FN) * m_invR, X = (x - m_FE) * m_invR;
    if (!(std::fabs(Y) <= kPoleY * (1.0 + 1e-15)) || !std::isfinite(X))
        return;
    // One Newton step on N(phi) = Y from the start, within 3.5e-10 of the root:
    // N' stays above 0.12 over the map and |N''| below 6.6, so that the step
    // leaves at most 6.6 / 0.24 (3.5e-10)^2 < 4e-18.
    const double absY = std::fabs(Y);
    double phi0;
    if (absY <= kSplit) {
        phi0 = Y * CKvMathKernel::Estrin<13>(Y * Y * kLowScale - 1.0, kLow);
    } else {
        const double x0 = std::sqrt(kYc - absY) * kHighScale - kHighShift;
        phi0 = std::copysign(CKvMathKernel::Estrin<13>(x0, kHigh), Y);
    }
    const double p0 = phi0 * phi0;
    double phi = phi0 - (Northing(phi0, p0) - Y) / NorthingSlope(p0);
    phi = std::fmax(-kPi / 2.0, std::fmin(kPi / 2.0, phi));
    const double dLon = X * (1.0 / kDeg) / Length(phi * phi);
    // Beyond the outer meridians there is no point of the map.
    if (!(std::fabs(dLon) <= 180.0 + 1e-9))
        return;
    *lat = phi * (1.0 / kDeg);
    *lon = CKvAngle::InverseLongitudeDegrees(std::fmax(-180.0, std::fmin(180.0, dLon)) + m_lon0);
}

void CKvNaturalEarth::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvNaturalEarth::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    const double phi = lat * kDeg, p = phi * phi;
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    // dx/dphi = R lambda l'(phi), dy/dphi = R m'(phi): the meridian's lean
    // from grid north, positive westwards as in the other engines.
    return std::atan2(-lambda * LengthSlope(phi, p), NorthingSlope(p)) / kDeg;
}

void CKvNaturalEarth::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = m_R * kPi * A0;
    *x1 = m_FE - halfWidth;
    *x2 = m_FE + halfWidth;
    *y1 = m_FN - kPoleY * m_R;
    *y2 = m_FN + kPoleY * m_R;
}

// ESRI and GDAL both write "Natural_Earth"; the EPSG registry has no such
// method.
const CKvMapProjData::STypeInfo CKvNaturalEarth::TypeInfo = {
    CKvMapProjData::eNaturalEarth,
    "NATURAL_EARTH_PROJECTION",
    nullptr,
    "Natural Earth",
    "Natural_Earth",
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
    "Default Natural Earth",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Natural_Earth",
    {"Natural Earth"},
    "+proj=natearth",
    &Problem,
};
