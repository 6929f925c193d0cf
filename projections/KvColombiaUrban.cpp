#include "projections/KvColombiaUrban.h"
#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kDeg = CKvAngle::Pi / 180.0;

// The radii of curvature of the meridian (rho) and of the prime vertical (nu)
// at a latitude whose sine is s.
double MeridianRadius(double a, double e2, double s)
{
    const double w = 1.0 - e2 * s * s;
    return a * (1.0 - e2) / (w * std::sqrt(w));
}

std::string Problem(const double* p)
{
    for (int i = 0; i < 5; ++i)
        if (!std::isfinite(p[i]))
            return "the parameters must be finite numbers";
    if (!(std::fabs(p[0]) < 90.0))
        return "the latitude of natural origin must lie between the poles";
    return "";
}
} // namespace

CKvColombiaUrban::CKvColombiaUrban(const std::string& name, const double* p, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lat0 = p[0];
    m_lon0 = p[1];
    m_FE = p[2];
    m_FN = p[3];
    m_h0 = p[4];
    m_phi0 = m_lat0 * kDeg;
    m_lambda0 = m_lon0 * kDeg;
    const double a = _a(), e2 = _e2();
    const double s0 = std::sin(m_phi0);
    const double nu0 = a / std::sqrt(1.0 - e2 * s0 * s0);
    m_rho0 = MeridianRadius(a, e2, s0);
    m_A = 1.0 + m_h0 / nu0;
    m_B = std::tan(m_phi0) / (2.0 * m_rho0 * nu0);
    m_C = 1.0 + m_h0 / a;
    m_D = m_rho0 * (1.0 + m_h0 / (a * (1.0 - e2)));
    m_sin0 = s0;
    m_cos0 = std::cos(m_phi0);
    m_q = m_h0 / (a * (1.0 - e2));
    m_invA = 1.0 / m_A;
    m_invC = 1.0 / m_C;
    m_invD = 1.0 / m_D;
    m_invRho0 = 1.0 / m_rho0;
    m_smallQ = std::fabs(m_q) <= 1e-3;
    // A plane below the centre of curvature of every meridian (G <= 0 somewhere)
    // turns the grid over: no map.
    m_valid = Problem(p).empty() && a > 0.0 && std::isfinite(a) && e2 >= 0.0 && e2 < 1.0 &&
              1.0 + m_h0 / (a * (1.0 - e2)) > 0.0;
}

void CKvColombiaUrban::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!m_valid) {
        *x = *y = std::nan("");
        return;
    }
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    const double dLambda = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    // A city's points lie within a fraction of a degree of the origin: the
    // sines of phi and of the mid-latitude phiM = phi0 + delta / 2 follow
    // from phi0's by the addition formulas, on the short series of delta / 2
    // (sin delta = 2 sin(delta/2) cos(delta/2), cos delta = 1 - 2 sin^2(delta/2)).
    const double delta = phi - m_phi0;
    double s, c, sM;
    if (std::fabs(delta) <= 2.0 * CKvMathKernel::SinCosSmallLimit) {
        double sh, ch;
        CKvMathKernel::SinCosSmall(0.5 * delta, sh, ch);
        sM = m_sin0 * ch + m_cos0 * sh;
        const double sd = 2.0 * sh * ch, cd = 1.0 - 2.0 * sh * sh;
        s = m_sin0 * cd + m_cos0 * sd;
        c = m_cos0 * cd - m_sin0 * sd;
    } else {
        CKvMathKernel::SinCosAny(phi, s, c);
        sM = std::sin(0.5 * (m_phi0 + phi));
    }
    const double a = _a(), e2 = _e2();
    const double nu = a / std::sqrt(1.0 - e2 * s * s);
    // G = 1 + h0 / rhoM = 1 + q wM^(3/2).
    const double wM = 1.0 - e2 * sM * sM;
    const double G = 1.0 + m_q * wM * std::sqrt(wM);
    const double L = nu * c * dLambda;
    *x = m_FE + m_A * L;
    *y = m_FN + G * m_rho0 * ((phi - m_phi0) + m_B * L * L);
}

void CKvColombiaUrban::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (!m_valid) {
        *lon = *lat = std::nan("");
        return;
    }
    // The forward's easting fixes u = nu cos(phi) dLambda = (E - FE) / A whatever
    // the latitude, which leaves one equation in phi,
    //   phi = phi0 - B u^2 + (N - FN) / (G(phi) rho0),
    // whose right side hardly moves with phi (G through the mid-latitude's radius
    // only). Newton's method on f(phi) = phi - base - n / G(phi), with
    //   G = 1 + q w^(3/2),  w = 1 - e^2 sin^2 phiM,  q = h0 / (a (1 - e^2)),
    //   G' = -(3/4) q e^2 sin(phi0 + phi) sqrt(w),
    // and the mid-latitude's sines from those of phi and phi0 by the addition
    // formulas (sin^2 phiM = (1 - cos(phi0 + phi)) / 2), so that a step costs one
    // sine and cosine. The guidance note's closed form starts it, within a
    // millimetre (1.4e-10 rad) across a city and some 1e-5 rad at the antipode
    // (2e-4 from a cap's origin, through B u^2). As |f''| <= 0.4 |n| q e^2 and
    // f' is 1 within |n| q e^2, a step leaves e1 <= 0.2 |n| q e^2 e0^2 of an
    // error e0, with |n| <= 4 on the globe and q e^2 = 4.3e-6 at h0 = 4 km on
    // GRS 80: one step once the correction is below 1e-8 rad (a city: what is
    // left is under 1e-21), a second beyond (under 1e-12 after the first), and
    // the inverse is the forward's own.
    const double a = _a(), e2 = _e2();
    const double dN = y - m_FN;
    const double dE = (x - m_FE) * m_invC;
    double phi = m_phi0 + dN * m_invD - m_B * dE * dE;
    const double u = (x - m_FE) * m_invA;
    const double base = m_phi0 - m_B * u * u, n = dN * m_invRho0;
    double s = 0.0, c = 1.0, d = 0.0;
    for (int i = 0; i < 2; ++i) {
        // Within the short series' reach of phi0 (a city), the sines by the
        // addition formulas from phi0's.
        const double delta = phi - m_phi0;
        if (std::fabs(delta) <= CKvMathKernel::SinCosSmallLimit) {
            double sd, cd;
            CKvMathKernel::SinCosSmall(delta, sd, cd);
            s = m_sin0 * cd + m_cos0 * sd;
            c = m_cos0 * cd - m_sin0 * sd;
        } else {
            CKvMathKernel::SinCosAny(phi, s, c);
        }
        const double w = 1.0 - e2 * 0.5 * (1.0 - (m_cos0 * c - m_sin0 * s));
        const double rootW = std::sqrt(w);
        const double g = m_q * w * rootW; // G - 1
        const double slope = -0.75 * m_q * e2 * (m_sin0 * c + m_cos0 * s) * rootW; // G'
        if (m_smallQ) {
            // 1 / G = 1 - g + ... + g^6 with |g| <= 1e-3 (the first term left
            // out below 1e-21), and the step's quotient by 1 + t, |t| = |n G'
            // / G^2| <= 4 * 0.75 |q| e^2 <= 2e-5, as 1 - t + t^2 (relatively
            // 1e-14 of a step, which either is below 1e-8 or is followed by
            // another): no division.
            const double g2 = g * g;
            const double inverseG = 1.0 - g + g2 * ((1.0 - g) + g2 * ((1.0 - g) + g2));
            const double t = n * slope * inverseG * inverseG;
            d = -(phi - base - n * inverseG) * (1.0 - t + t * t);
        } else {
            const double inverseG = 1.0 / (1.0 + g);
            d = -(phi - base - n * inverseG) / (1.0 + n * slope * inverseG * inverseG);
        }
        phi += d;
        if (std::fabs(d) <= 1e-8)
            break;
    }
    // The last step's sines turned by d (the addition formulas), or afresh
    // beyond the small series' range.
    if (std::fabs(d) <= CKvMathKernel::SinCosSmallLimit) {
        double sd, cd;
        CKvMathKernel::SinCosSmall(d, sd, cd);
        const double s1 = s * cd + c * sd;
        c = c * cd - s * sd;
        s = s1;
    } else {
        CKvMathKernel::SinCosAny(phi, s, c);
    }
    *lat = phi / kDeg;
    // At a pole u is 0 and the longitude the origin's. u / (nu cos phi), nu =
    // a / sqrt(1 - e^2 sin^2 phi).
    const double dLambda = u == 0.0 ? 0.0 : u * std::sqrt(1.0 - e2 * s * s) / (a * c);
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + dLambda) / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

double CKvColombiaUrban::GetConvergence(double lon, double lat) const
{
    if (!m_valid || !CKvAngle::IsPoint(lon, lat))
        return std::nan("");
    // The grid's meridian: gamma = -atan2(dE/dphi, dN/dphi), with
    // d(nu cos phi)/dphi = -rho sin phi, and G's slope through the mid-latitude's
    // radius, d(rho)/dphi = 3 rho e^2 sin phi cos phi / (1 - e^2 sin^2 phi).
    const double phi = lat * kDeg;
    const double dLambda = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    const double a = _a(), e2 = _e2();
    const double w = 1.0 - e2 * s * s;
    const double nu = a / std::sqrt(w), rho = nu * (1.0 - e2) / w;
    const double L = nu * c * dLambda, dL = -rho * s * dLambda;
    double sM, cM;
    CKvMathKernel::SinCosAny(0.5 * (m_phi0 + phi), sM, cM);
    const double wM = 1.0 - e2 * sM * sM;
    const double rhoM = MeridianRadius(a, e2, sM);
    const double G = 1.0 + m_h0 / rhoM;
    const double dG = -m_h0 / (rhoM * rhoM) * 0.5 * (3.0 * rhoM * e2 * sM * cM / wM);
    const double dx = m_A * dL;
    const double dy = m_rho0 * (dG * ((phi - m_phi0) + m_B * L * L) + G * (1.0 + 2.0 * m_B * L * dL));
    return -std::atan2(dx, dy) / kDeg;
}

void CKvColombiaUrban::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvColombiaUrban::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, true, x1, y1, x2, y2);
}

const CKvMapProjData::STypeInfo CKvColombiaUrban::TypeInfo = {
    CKvMapProjData::eColombiaUrban,
    "COLOMBIA_URBAN_PROJECTION",
    nullptr,
    "Colombia Urban",
    "IGAC_Plano_Cartesiano",
    5,
    {
        {"Origin_Latitude", "Latitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Center", "Latitude of natural origin", "latitude_of_origin", "Latitude_Of_Origin"}, "lat_0",
         false},
        {"Origin_Longitude", "Longitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Longitude_Of_Center", "Longitude of natural origin", "central_meridian", "Central_Meridian"}, "lon_0", true},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "False easting"}, "x_0", false,
         0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr, {"False_Northing", "False northing"}, "y_0",
         false, 0.0},
        {"Plane_Height", "Projection plane origin height:", CKvMapProjData::eLength, nullptr,
         {"Height", "Projection plane origin height"}, "h_0", false},
    },
    "Default Colombia Urban",
    "RF",
    // The Bogota urban grid (EPSG:6247).
    {4.68048611111111, -74.1465916666667, 92334.879, 109320.965, 2550.0},
    1052,
    "Colombia_Urban",
    {"Colombia Urban"},
    "+proj=col_urban",
    &Problem,
};
