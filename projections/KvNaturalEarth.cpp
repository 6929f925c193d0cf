#include "projections/KvNaturalEarth.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// The published coefficients (Savric et al. 2011, table 1).
constexpr double A0 = 0.8707, A1 = -0.131979, A2 = -0.013791, A3 = 0.003971, A4 = -0.001529;
constexpr double B0 = 1.007226, B1 = 0.015085, B2 = -0.044475, B3 = 0.028874, B4 = -0.005916;
// Newton's method on y(phi), which rises monotonically from the equator to the
// poles (its derivative stays above 0.12, |y''| below 6.6): a step s leaves
// an error below 27 s^2, so that the iteration stops after a step below
// 1e-9 (some 3e-17 left). It starts from a least-squares fit of phi / y in
// y^2 over the map (the coefficients below), which only shortens the work:
// 3 steps on average and at most 6 over the whole range; 16 bound the time.
constexpr int kMaxIterations = 16;
constexpr double kStart[4] = {0.9916175275749318, -0.001301952083424038, -0.00899979238562984,
                              0.015712793580587973};

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
    const double Y = (y - m_FN) / m_R, X = (x - m_FE) / m_R;
    if (!(std::fabs(Y) <= kPoleY * (1.0 + 1e-15)) || !std::isfinite(X))
        return;
    const double Y2 = Y * Y;
    double phi = Y * (kStart[0] + Y2 * (kStart[1] + Y2 * (kStart[2] + Y2 * kStart[3])));
    for (int i = 0; i < kMaxIterations; ++i) {
        const double p = phi * phi;
        const double step = (Northing(phi, p) - Y) / NorthingSlope(p);
        phi -= step;
        if (!(std::fabs(step) > 1e-9))
            break;
    }
    phi = std::fmax(-kPi / 2.0, std::fmin(kPi / 2.0, phi));
    const double dLon = X / Length(phi * phi) / kDeg;
    // Beyond the outer meridians there is no point of the map.
    if (!(std::fabs(dLon) <= 180.0 + 1e-9))
        return;
    *lat = phi / kDeg;
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
