#include "projections/KvHyperbolicCassini.h"
#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"
#include "projections/KvMeridianDirection.h"

#include <cmath>

namespace {
constexpr double kDeg = CKvAngle::Pi / 180.0;

std::string Problem(const double* p)
{
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(p[i]))
            return "the parameters must be finite numbers";
    if (!(std::fabs(p[0]) <= 90.0))
        return "the latitude of natural origin must lie between the poles";
    return "";
}
} // namespace

CKvHyperbolicCassini::CKvHyperbolicCassini(const std::string& name, const double* p, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_cassini(name, p[1], p[0], 0.0, 0.0, ellipsoid),
      m_meridian(CKvConformalLatitude::MakeMeridianE6(_a(), _e2()))
{
    m_lat0 = p[0];
    m_lon0 = p[1];
    m_FE = p[2];
    m_FN = p[3];
    m_M0 = CKvConformalLatitude::MeridianDistance(m_meridian, m_lat0 * kDeg);
    m_invSixA2e = 1.0 / (6.0 * _a() * _a() * (1.0 - _e2()));
    m_valid = Problem(p).empty() && _a() > 0.0 && std::isfinite(_a()) && _e2() >= 0.0 && _e2() < 1.0;
}

double CKvHyperbolicCassini::_cubicFactor(double s) const
{
    // rho nu = a^2 (1 - e^2) / (1 - e^2 sin^2 phi)^2
    const double w = 1.0 - _e2() * s * s;
    return w * w * m_invSixA2e;
}

void CKvHyperbolicCassini::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!m_valid) {
        *x = *y = std::nan("");
        return;
    }
    double X;
    m_cassini.CKvCassiniSoldner::Geo2Proj(lon, lat, x, &X);
    *x += m_FE;
    *y = m_FN + X - X * X * X * _cubicFactor(std::sin(lat * kDeg));
}

void CKvHyperbolicCassini::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (!m_valid) {
        *lon = *lat = std::nan("");
        return;
    }
    const double n = y - m_FN, e = x - m_FE;
    // X - X^3 f = n, f = 1 / (6 rho nu), with f first at the footpoint latitude of
    // n, as the guidance note takes it. Its root on the branch through the
    // origin, in closed form: with q = sqrt(1 / (3 f)),
    //   X = 2 q sin(asin(3 n / (2 q)) / 3),
    // the note's X = n + n^3 f to the first order. Beyond |n| = 2 q / 3 (6 000 km
    // from the origin) the map has folded over and the asin's argument exceeds 1:
    // no point (NaN).
    const auto branch = [n](double f) {
        const double q = std::sqrt(1.0 / (3.0 * f));
        return 2.0 * q * std::sin(std::asin(1.5 * n / q) / 3.0);
    };
    const double phi1 = CKvConformalLatitude::FootpointLatitude(m_meridian, m_M0 + n);
    double X = branch(_cubicFactor(std::sin(phi1)));
    m_cassini.CKvCassiniSoldner::Proj2Geo(e, X, lon, lat);
    // f at the point itself differs from the footpoint's by parts in 10^7 on a
    // grid of a few hundred kilometres: the forward's northing there misses the
    // grid's by micrometres, and one step along the meridian,
    // dN/dphi = rho (1 - 3 X^2 f), removes the residual r. Far out, where f moves
    // more, X is taken again with the point's f until r is that small; a few
    // passes at most, so that every call ends.
    bool settled = false;
    for (int pass = 0; pass < 6 && !settled; ++pass) {
        const double s = std::sin(*lat * kDeg);
        const double f = _cubicFactor(s);
        const double r = X - X * X * X * f - n;
        if (std::fabs(r) <= 1e-3) {
            const double w = 1.0 - _e2() * s * s;
            const double rho = _a() * (1.0 - _e2()) / (w * std::sqrt(w));
            *lat -= r / (rho * (1.0 - 3.0 * X * X * f)) / kDeg;
            settled = true;
        } else {
            X = branch(f);
            m_cassini.CKvCassiniSoldner::Proj2Geo(e, X, lon, lat);
        }
    }
    // Beyond a thousand kilometres from the origin the Cassini-Soldner series
    // themselves lose their hold (at 90 degrees from the central meridian they
    // are no map): a point is given only where the forward takes it back.
    if (settled && (std::fabs(e) > 1.0e6 || std::fabs(n) > 1.0e6)) {
        double xBack, yBack;
        Geo2Proj(*lon, *lat, &xBack, &yBack);
        settled = std::hypot(xBack - x, yBack - y) <= 1e-3;
    }
    if (!settled) {
        *lon = *lat = std::nan("");
        return;
    }
    CKvAngle::GuardInverse(x, y, lon, lat);
}

double CKvHyperbolicCassini::GetConvergence(double lon, double lat) const
{
    // The grid is not conformal, and the meridian's image bends: a step of a
    // minute would miss its direction by 1e-4 degree.
    if (!m_valid)
        return std::nan("");
    return CKvMeridianDirection::Convergence(*this, lon, lat);
}

void CKvHyperbolicCassini::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvHyperbolicCassini::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, true, x1, y1, x2, y2);
}

const CKvMapProjData::STypeInfo CKvHyperbolicCassini::TypeInfo = {
    CKvMapProjData::eHyperbolicCassini,
    "HYPERBOLIC_CASSINI_SOLDNER_PROJECTION",
    nullptr,
    "Hyperbolic Cassini-Soldner",
    // ESRI has no form of its own: the EPSG name as GDAL spells such methods.
    "Hyperbolic_Cassini_Soldner",
    4,
    {
        {"Origin_Latitude", "Latitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "latitude_of_origin"}, "lat_0", false},
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "Longitude of natural origin", "central_meridian"}, "lon_0", true},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "False easting"}, "x_0", false,
         0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr, {"False_Northing", "False northing"}, "y_0",
         false, 0.0},
    },
    "Default Hyperbolic Cassini-Soldner",
    "CD",
    // The Vanua Levu Grid (EPSG:3139) in metres.
    {-16.25, 179.333333333333, 251727.9155424, 334519.953768},
    9833,
    "Hyperbolic_Cassini_Soldner",
    {"Hyperbolic Cassini-Soldner"},
    "+proj=cass +hyperbolic",
    &Problem,
};
