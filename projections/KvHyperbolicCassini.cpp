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

using SFigures = CKvHyperbolicCassini::SFigures;

// The forward's short path: the Cassini-Soldner series, and the cubic with
// the latitude's sine from it, the longitude first brought within a half turn
// of the central meridian (the Vanua Levu Grid straddles the antimeridian).
// false: where the series' fast path is left.
KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
{
    const double d = lon - f.lon0;
    const double turned = lon + ((d > 180.0 ? -360.0 : 0.0) + (d < -180.0 ? 360.0 : 0.0));
    double X, s;
    const bool ok = CKvCassiniSoldnerEllipsoid::Forward(f.cassini, turned, lat, x, X, s);
    const double w = 1.0 - f.e2 * s * s;
    x += f.FE;
    y = f.FN + X - X * X * X * (w * w * f.invSixA2e);
    return ok;
}

// The inverse's short path. false: a Newton step above 2e-8 rad (some 13 cm,
// after which the step would leave up to 3e-9 m), a grid point beyond 1 000 km
// from the origin or not finite, near a pole, a longitude to be reduced.
KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
{
    const double n = y - f.FN, e = x - f.FE;
    // f at the footpoint of n, phi0 + n / rho0 within (n / rho0)^2 / 200, by
    // its Taylor polynomial about the origin, and the root of X - f X^3 = n
    // on the branch through the origin: sum C(3k, k) / (2k + 1) f^k n^(2k+1),
    // whose next term, 55 f^4 n^9, is 2e-7 m at 300 km.
    const double dPhi0 = n * f.invRho0;
    const double fn = f.f0 + dPhi0 * (f.df0 + dPhi0 * f.halfD2f0);
    const double t = fn * n * n;
    const double X0 = n + n * t * (1.0 + t * (3.0 + 12.0 * t));
    double phi, dLambda;
    CKvCassiniSoldnerEllipsoid::SeriesStart(f.cassini, e, X0, phi, dLambda);
    // One Newton step on the forward (E, N)(phi, lambda): the Cassini-Soldner
    // series' Jacobian, and for N = X - f X^3 also dN/dX = 1 - 3 f X^2 and
    // df/dphi = -4 e^2 sin phi cos phi w / (6 a^2 (1 - e^2)).
    double s, c, v;
    CKvMathKernel::SinCos(phi, s, c, v);
    double gx, X, J[4];
    CKvCassiniSoldnerEllipsoid::Grid(f.cassini, phi, s, c, dLambda, gx, X, J);
    const double w = 1.0 - f.e2 * s * s;
    const double fp = w * w * f.invSixA2e, dfp = -4.0 * f.e2 * s * c * w * f.invSixA2e;
    const double X2 = X * X, k = 1.0 - 3.0 * X2 * fp;
    const double J2 = J[2] * k - X * X2 * dfp, J3 = J[3] * k;
    const double rx = e - gx, ry = n - (X - X * X2 * fp);
    const double invDet = 1.0 / (J[0] * J3 - J[1] * J2);
    const double dPhi = (rx * J3 - ry * J[1]) * invDet, dL = (ry * J[0] - rx * J2) * invDet;
    lat = (phi + dPhi) * (1.0 / kDeg);
    const double east = (f.cassini.lambda0 + dLambda + dL) * (1.0 / kDeg);
    lon = east + ((east > 180.0 ? -360.0 : 0.0) + (east < -180.0 ? 360.0 : 0.0));
    return (std::fabs(dPhi) + std::fabs(dL) <= 2e-8) & (std::fabs(phi) < CKvCassiniSoldnerEllipsoid::FastLatitudeLimit) &
           (std::fabs(lon) <= 180.0) & (std::fabs(e) <= 1.0e6) & (std::fabs(n) <= 1.0e6);
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

    // The short paths, on the ellipsoid (the sphere's Cassini-Soldner is
    // Snyder's closed form, not the series).
    SFigures& f = m_fast;
    f.cassini = CKvCassiniSoldnerEllipsoid::MakeFigures(m_lon0, m_lat0, 0.0, 0.0, ellipsoid);
    f.FE = m_FE;
    f.FN = m_FN;
    f.lon0 = m_lon0;
    f.e2 = _e2();
    f.invSixA2e = m_invSixA2e;
    const double phi0 = m_lat0 * kDeg, s0 = std::sin(phi0), c0 = std::cos(phi0);
    const double w0 = 1.0 - f.e2 * s0 * s0;
    f.f0 = w0 * w0 * f.invSixA2e;
    f.df0 = -4.0 * f.e2 * s0 * c0 * w0 * f.invSixA2e;
    f.halfD2f0 = -2.0 * f.e2 * ((c0 - s0) * (c0 + s0) * w0 - 2.0 * f.e2 * s0 * s0 * c0 * c0) * f.invSixA2e;
    f.invRho0 = w0 * std::sqrt(w0) / (_a() * (1.0 - f.e2));
    f.fast = m_valid && ellipsoid.GetInvFlatness() != 0.0 && f.cassini.fast && std::isfinite(f.invSixA2e) &&
             std::isfinite(f.invRho0) && std::fabs(m_lat0) < 89.0;
}

double CKvHyperbolicCassini::_cubicFactor(double s) const
{
    // rho nu = a^2 (1 - e^2) / (1 - e^2 sin^2 phi)^2
    const double w = 1.0 - _e2() * s * s;
    return w * w * m_invSixA2e;
}

void CKvHyperbolicCassini::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fast && Forward(m_fast, lon, lat, *x, *y))
        return;
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
    if (m_fast.fast && Inverse(m_fast, x, y, *lon, *lat))
        return;
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
