#include "projections/KvGuam.h"

#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Steps of the inverse's Newton iteration: two on Guam; kept within the poles'
// bracket, where a step that would leave it is a bisection, it settles well
// within the bound, which ends every call.
constexpr int kMaxSteps = 100;
// A Newton step below this leaves an error of its square times |g''| / 2g'.
constexpr double kSettled = 1e-11;
} // namespace

CKvGuam::CKvGuam(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3]), m_meridian(CKvConformalLatitude::MakeMeridian(_a(), _e2()))
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && CKvAngle::IsLatitude(m_lat0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN);
    m_M0 = usable ? CKvConformalLatitude::MeridianDistance(m_meridian, m_lat0 * kDeg) : std::nan("");
    m_Mp = CKvConformalLatitude::MeridianDistance(m_meridian, kPi / 2.0);
}

void CKvGuam::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double phi = lat * kDeg;
    const double dLambda = CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg;
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    if (std::fabs(lat) == 90.0)
        c = 0.0;
    const double w = std::sqrt(1.0 - _e2() * s * s);
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    const double ad = _a() * dLambda;
    *x = m_FE + ad * c / w;
    *y = m_FN + M - m_M0 + ad * dLambda * s * c / (2.0 * w);
}

void CKvGuam::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double X = x - m_FE, Y = y - m_FN + m_M0;
    if (!std::isfinite(X) || !std::isfinite(Y)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double a = _a(), e2 = _e2();
    const double k = X * X / (2.0 * a);
    // The latitude is the root of g(phi) = M(phi) + k tan phi w(phi) - Y, with
    // w = sqrt(1 - e^2 sin^2 phi) and k = (E - FE)^2 / (2a): the note's
    // fixed-point equation. g' = rho + k (1 - e^2 sin^2 phi (1 + cos^2 phi)) /
    // (w cos^2 phi) > 0, so g rises strictly across (-pi/2, pi/2); with k > 0 it
    // runs from -inf to +inf and has its one root there, with k = 0 only for
    // |Y| up to the quarter meridian. Newton's method from the footpoint
    // latitude of Y, whose error is about k tan phi / a = (E - FE)^2 tan phi /
    // (2 a^2), 4e-6 rad at 50 km on Guam; the error then squares with each
    // step times |g''| / 2g' (about 3 e^2 sin phi cos phi / 2, 0.002 there), so
    // that two steps reach round-off over the island and a few more a thousand
    // kilometres out. The poles bracket the root: a step that would leave the
    // bracket is a bisection instead, which bounds every call.
    if (k == 0.0 && !(std::fabs(Y) <= m_Mp * (1.0 + 1e-15))) {
        *lon = *lat = std::nan("");
        return;
    }
    double lo = -kPi / 2.0, hi = kPi / 2.0;
    double phi = CKvConformalLatitude::FootpointLatitude(m_meridian, Y);
    if (!(std::fabs(phi) < kPi / 2.0))
        phi = 0.0;
    bool settled = false;
    double s = 0.0, c = 1.0, w = 1.0;
    for (int i = 0; i < kMaxSteps; ++i) {
        CKvMathKernel::SinCosAny(phi, s, c);
        const double w2 = 1.0 - e2 * s * s;
        w = std::sqrt(w2);
        const double g =
            CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s)) + k * s * w / c - Y;
        const double dg = a * (1.0 - e2) / (w2 * w) + k * (1.0 - e2 * s * s * (1.0 + c * c)) / (w * c * c);
        const double step = -g / dg;
        if (std::fabs(step) < kSettled) {
            // Taken whole, even where it rounds to nothing or onto the
            // bracket's end; sin and cos of it to first order.
            phi += step;
            const double s1 = s + c * step;
            c -= s * step;
            s = s1;
            w = std::sqrt(1.0 - e2 * s * s);
            settled = true;
            break;
        }
        if (g < 0.0)
            lo = phi;
        else
            hi = phi;
        const double next = phi + step;
        phi = next > lo && next < hi ? next : 0.5 * (lo + hi);
        if (hi - lo < kSettled) {
            CKvMathKernel::SinCosAny(phi, s, c);
            w = std::sqrt(1.0 - e2 * s * s);
            settled = true;
            break;
        }
    }
    if (!settled || !(std::fabs(phi) < kPi / 2.0)) {
        *lon = *lat = std::nan("");
        return;
    }
    // On a pole (cos phi = 0 in the bracket's end) only the central meridian's
    // point is one; dLambda is then beyond pi or not a number.
    const double dLambda = X == 0.0 ? 0.0 : X * w / (a * c);
    if (!(std::fabs(dLambda) <= kPi * (1.0 + 1e-12))) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + dLambda / kDeg);
}

void CKvGuam::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvGuam::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_M0 == m_M0))
        return std::nan("");
    const double phi = lat * kDeg;
    const double dLambda = CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg;
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    if (std::fabs(lat) == 90.0)
        c = 0.0;
    const double e2 = _e2(), a = _a();
    const double w2 = 1.0 - e2 * s * s, w = std::sqrt(w2);
    // d(cos phi / w)/dphi = -(1 - e^2) sin phi / w^3, and
    // d(sin phi cos phi / w)/dphi = cos 2phi / w + e^2 sin^2 phi cos^2 phi / w^3.
    const double dx = -a * dLambda * (1.0 - e2) * s / (w2 * w);
    const double radius = a * (1.0 - e2) / (w2 * w);
    const double dy = radius + 0.5 * a * dLambda * dLambda * ((c - s) * (c + s) / w + e2 * s * s * c * c / (w2 * w));
    return std::atan2(-dx, dy) / kDeg;
}

void CKvGuam::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, false, x1, y1, x2, y2);
}

// EPSG's method: GDAL has no WKT 1 form of it, ESRI no name; PROJ computes it
// as its azimuthal equidistant with +guam.
const CKvMapProjData::STypeInfo CKvGuam::TypeInfo = {
    CKvMapProjData::eGuam,
    "GUAM_PROJECTION",
    nullptr,
    "Guam Projection",
    "Guam_Projection",
    4,
    {
        {"Central_Meridian",
         "Longitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "Longitude of natural origin", "longitude_of_origin", "Longitude_Of_Center"},
         "lon_0",
         true},
        {"Origin_Latitude",
         "Latitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "latitude_of_origin", "Latitude_Of_Center"},
         "lat_0",
         false},
        {"Feast",
         "False easting:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Easting", "False easting", "false_easting"},
         "x_0",
         false,
         0.0},
        {"Fnorth",
         "False northing:",
         CKvMapProjData::eLength,
         nullptr,
         {"False_Northing", "False northing", "false_northing"},
         "y_0",
         false,
         0.0},
    },
    "Default Guam Projection",
    "CC",
    {144.748750694, 13.472466333, 50000.0, 50000.0}, // Guam 1963 to 1e-9 degree
    9831,
    nullptr,
    {"Guam Projection", "Guam_Projection"},
    "+proj=aeqd +guam",
    nullptr,
};
