#include "projections/KvEckertIV.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kCp = 2.0 + kPi / 2.0; // the right side's factor, theta's range at the pole
constexpr double kCx = 0.42223820031577125; // 2 / sqrt(pi (4 + pi))
constexpr double kCy = 1.3265004281770023;  // 2 sqrt(pi / (4 + pi))

// theta / phi for |phi| <= asin 0.9 as a polynomial in x = phi^2 kStartScale - 1
// (see CKvEckertIV::_theta).
constexpr double kStartScale = 1.595044176408236; // 2 / asin^2 0.9
constexpr double kStart[8] = {0.9124649114277298,     0.021471297405409765,  0.0018882030238419334,
                              0.00020478095460144675, 2.489619547352273e-05, 3.2480422483160966e-06,
                              4.634059323826989e-07,  6.602212874184944e-08};

// w - sin w cos w + 4 sin^2(w / 2): Cp minus the left side at theta = pi/2 - w,
// from h = sin(w / 2) and hc = cos(w / 2) (sin w = 2 h hc, cos w = 1 - 2 h^2).
// Its cancellation for small w costs an absolute error of about 1e-16 w against a
// value of w^2, a few 1e-17 in w.
inline double PoleSide(double w, double h, double hc)
{
    return w - 2.0 * h * hc * (1.0 - 2.0 * h * h) + 4.0 * h * h;
}
// The polar start: w / r for r = sqrt(C) as a polynomial in x = r kPoleScale - 1
// (see CKvEckertIV::_theta), written by tools/make_eckert4_start.py.
constexpr double kPoleScale = 3.3469363708070623;
constexpr double kPole[10] = {0.9226527026405156,     -0.05982600731696686,   0.013950822883103,
                              -0.0027043142741878415, 0.0006530174409175914,  -0.00015823255167060063,
                              4.004083650372968e-05,  -1.042932786905482e-05, 3.4648387163827023e-06,
                              -9.672653568770784e-07};
} // namespace

CKvEckertIV::CKvEckertIV(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lon0 = parameters[0];
    m_FE = parameters[1];
    m_FN = parameters[2];
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN);
    m_R = usable ? a : std::nan("");
    m_invY = 1.0 / (kCy * m_R);
    m_invX = 1.0 / (kCx * m_R * kDeg);
}

void CKvEckertIV::_theta(double lat, double* sinTheta, double* cosTheta)
{
    const double phi = std::fabs(lat) * kDeg;
    // The sines and cosines by the inline kernel for angles within a quarter
    // turn (phi, theta, w / 2 all are): two short series, no reduction and no
    // choice of quadrant, the cosine to its full relative precision.
    double s, cosPhi;
    CKvMathKernel::SinCosHalfPi(phi, s, cosPhi);
    double st, ct;
    if (s <= 0.9) {
        // theta + sin theta cos theta + 2 sin theta = Cp s, whose derivative
        // 2 cos theta (1 + cos theta) stays above 0.8 here and whose second
        // derivative -2 (sin 2 theta + sin theta) below 4 in size: a Newton step
        // leaves at most 2.5 e0^2 of an error e0. theta / phi is analytic in
        // phi^2 up to the pole, and its Chebyshev interpolant of degree 7 in
        // phi^2 over [0, asin 0.9] (written in powers of x = 2 phi^2 / asin^2 0.9
        // - 1) is within 9.2e-11 of it: one step leaves 2e-20, and the sines
        // of the root follow from those of the start by the addition formulas.
        const double x = phi * phi * kStartScale - 1.0;
        const double theta = phi * CKvMathKernel::Estrin<8>(x, kStart);
        double sn, cs;
        CKvMathKernel::SinCosHalfPi(theta, sn, cs);
        const double step = -(theta + sn * cs + 2.0 * sn - kCp * s) / (2.0 * cs * (1.0 + cs));
        double sd, cd;
        CKvMathKernel::SinCosSmall(step, sd, cd);
        st = sn * cd + cs * sd;
        ct = cs * cd - sn * sd;
    } else if (std::fabs(lat) == 90.0) {
        st = 1.0; // the pole itself, w = 0
        ct = 0.0;
    } else {
        // w = pi/2 - |theta|: PoleSide(w) = C = Cp (1 - s) = Cp cos^2 phi / (1 + s),
        // with PoleSide(w) = w^2 + 2 w^3 / 3 - ..., from the start w0 = r Q(r),
        // r = sqrt(C), within 6.2e-10 w of the root. PoleSide' = 2 sin w (1 +
        // sin w) and PoleSide'' = 2 cos w (1 + 2 sin w): Newton's step leaves
        // cos w (1 + 2 sin w) / (2 sin w (1 + sin w)) e^2 < e^2 / w of an error
        // e, below 4e-19 w. The sines of the root follow from those of the
        // start by the addition formulas.
        const double C = kCp * cosPhi * cosPhi / (1.0 + s);
        const double r = std::sqrt(C);
        const double w = r * CKvMathKernel::Estrin<10>(r * kPoleScale - 1.0, kPole);
        double h, hc;
        CKvMathKernel::SinCosHalfPi(w / 2.0, h, hc);
        const double sw = 2.0 * h * hc, cw = 1.0 - 2.0 * h * h;
        const double step = -(PoleSide(w, h, hc) - C) / (2.0 * sw * (1.0 + sw));
        double sd, cd;
        CKvMathKernel::SinCosSmall(step, sd, cd);
        st = cw * cd - sw * sd; // cos(w + step)
        ct = sw * cd + cw * sd; // sin(w + step)
    }
    *sinTheta = lat < 0.0 ? -st : st;
    *cosTheta = ct;
}

void CKvEckertIV::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double sinTheta, cosTheta;
    _theta(lat, &sinTheta, &cosTheta);
    *x = m_FE + kCx * m_R * lambda * (1.0 + cosTheta);
    *y = m_FN + kCy * m_R * sinTheta;
}

void CKvEckertIV::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double Y = (y - m_FN) * m_invY;
    if (!(std::fabs(Y) <= 1.0 + 1e-15) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    const double absY = std::fabs(Y) > 1.0 ? 1.0 : std::fabs(Y);
    const double cosTheta = std::sqrt((1.0 - absY) * (1.0 + absY));
    const double lambdaDeg = (x - m_FE) * m_invX / (1.0 + cosTheta);
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
        const double z = (theta + absY * cosTheta + 2.0 * absY) * (1.0 / kCp);
        phi = std::asin(z);
    } else {
        // Near the pole through w = pi/2 - theta, sin w = cos theta <= sqrt 3
        // / 2: d = 1 - sin phi = PoleSide(w) / Cp, with cos w = sin theta and
        // 4 sin^2(w / 2) = 2 (1 - sin theta), and phi = pi/2 - psi with
        // sin(psi / 2) = sqrt(d / 2) rather than an arc sine of sin phi, close
        // to 1.
        const double w = std::asin(cosTheta);
        const double d = (w - cosTheta * absY + 2.0 * (1.0 - absY)) * (1.0 / kCp);
        phi = kHalfPi - 2.0 * std::asin(std::sqrt(0.5 * d));
    }
    *lat = (Y < 0.0 ? -phi : phi) / kDeg;
    *lon = CKvAngle::EdgeInverseLongitudeDegrees(lambdaDeg, m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvEckertIV::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvEckertIV::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    // dE/dtheta = -Cx R lambda sin theta, dN/dtheta = Cy R cos theta.
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double sinTheta, cosTheta;
    _theta(lat, &sinTheta, &cosTheta);
    return std::atan2(kCx * lambda * sinTheta, kCy * cosTheta) / kDeg;
}

void CKvEckertIV::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = 2.0 * kCx * m_R * kPi, halfHeight = kCy * m_R;
    *x1 = m_FE - halfWidth;
    *y1 = m_FN - halfHeight;
    *x2 = m_FE + halfWidth;
    *y2 = m_FN + halfHeight;
}

// The method's names and parameters. ESRI and GDAL both write
// "Eckert_IV"; the EPSG registry has no such method.
const CKvMapProjData::STypeInfo CKvEckertIV::TypeInfo = {
    CKvMapProjData::eEckertIV,
    "ECKERT_IV_PROJECTION",
    nullptr,
    "Eckert IV",
    "Eckert_IV",
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
    "Default Eckert IV",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Eckert_IV",
    {"Eckert IV"},
    "+proj=eck4",
    nullptr,
};
