#include "projections/KvLaborde.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"
#include "projections/KvMeridianDirection.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Newton's steps on H + G H^3 = H0: one or two over Madagascar; the bound
// ends every call where the cubic folds.
constexpr int kMaxSteps = 50;
} // namespace

CKvLaborde::CKvLaborde(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(parameters[1]), m_FE(parameters[4]),
      m_FN(parameters[5])
{
    const double a = _a(), e = _e(), e2 = _e2();
    const double azimuth = parameters[2], k = parameters[3];
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && std::fabs(m_lat0) < 90.0 &&
                        std::isfinite(azimuth) && k > 0.0 && std::isfinite(k) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN);
    const double phiC = m_lat0 * kDeg;
    double s, c;
    CKvMathKernel::SinCosAny(phiC, s, c);
    m_B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
    m_sinPhiS = s / m_B;
    m_cosPhiS = std::sqrt(1.0 - m_sinPhiS * m_sinPhiS);
    m_R = usable ? a * k * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s) : std::nan("");
    m_C = std::atanh(m_sinPhiS) - m_B * CKvConformalLatitude::Isometric(phiC, e);
    double s2, c2;
    CKvMathKernel::SinCosAny(2.0 * azimuth * kDeg, s2, c2);
    m_Gre = (1.0 - c2) / 12.0;
    m_Gim = s2 / 12.0;
    m_inverse = CKvConformalLatitude::MakeInverse(e);
}

namespace {
// sin P = tanh q and cos P = sech q of the sphere's latitude P whose isometric
// latitude is q, on the inline kernels: sinh q by its series near the equator
// (no cancellation), else from one exponential. Beyond (a rounded pole,
// infinities, NaN) the shared general formulas.
inline void SinCosOfIsometric(double q, double& sinP, double& cosP)
{
    if (std::fabs(q) < 0.5) {
        const double sh = CKvMathKernel::SinhSmall(q);
        const double ch = std::sqrt(1.0 + sh * sh);
        sinP = sh / ch;
        cosP = 1.0 / ch;
    } else if (std::fabs(q) <= 300.0) {
        // tanh q = (E^2 - 1) / (E^2 + 1), sech q = 2E / (E^2 + 1): one quotient,
        // no cancellation for |q| >= 0.5, E^2 within range.
        const double E = CKvMathKernel::Exp(q), E2 = E * E;
        const double r = 1.0 / (E2 + 1.0);
        sinP = (E2 - 1.0) * r;
        cosP = 2.0 * E * r;
    } else {
        CKvConformalLatitude::SinCosFromIsometric(q, sinP, cosP);
    }
}

// atanh s, the isometric latitude on the sphere of the latitude whose sine is
// s: its series near the equator, else half the logarithm of (1 + s) / (1 - s)
// (one rounding in the quotient: 2e-16 absolute at most); near the poles,
// where the quotient leaves the logarithm's range, libm.
inline double AtanhOfSine(double s)
{
    const double a = std::fabs(s);
    if (a < 0.1)
        return CKvMathKernel::AtanhSmall(s);
    if (a < 0.999)
        return 0.5 * CKvMathKernel::Log((1.0 + s) / (1.0 - s));
    return std::atanh(s);
}
} // namespace

void CKvLaborde::_plane(double phi, double dLambda, double* re, double* im) const
{
    // The point on Gauss's sphere: its latitude P from q, its longitude L.
    // Within the kernels' reach psi = atanh(sin phi) - e atanh(e sin phi), the
    // first term by its series or one logarithm, as the latitude asks.
    const double e = _e();
    const double psi = std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit && e <= CKvMathKernel::EccentricSinhLimit
                           ? AtanhOfSine(CKvMathKernel::SinHalfPi(phi)) -
                                 e * CKvMathKernel::AtanhSmall(e * CKvMathKernel::SinHalfPi(phi))
                           : CKvConformalLatitude::Isometric(phi, e);
    const double q = m_C + m_B * psi;
    // sin P and cos P as (Sp, Cp) / k, k > 0: with m = e^|q| - 1 and E = e^|q|,
    // tanh |q| = m (m + 2) / (E^2 + 1) and sech q = 2E / (E^2 + 1) (no
    // cancellation near the equator). The direction atan2(V, U) takes the
    // scaled terms as they are, so that the one quotient by k runs beside it,
    // for W alone. Beyond |q| = 300 (a rounded pole, infinities, NaN) the shared
    // general formulas, k = 1.
    double Sp, Cp, k;
    if (std::fabs(q) <= 300.0) {
        const double m = CKvMathKernel::ExpM1(std::fabs(q)), E = m + 1.0;
        Sp = std::copysign(m * (m + 2.0), q);
        Cp = 2.0 * E;
        k = E * E + 1.0;
    } else {
        CKvConformalLatitude::SinCosFromIsometric(q, Sp, Cp);
        k = 1.0;
    }
    // L within a quarter turn (every map of the method): no reduction.
    const double L = m_B * dLambda;
    double sL, cL;
    if (std::fabs(L) <= kPi / 2)
        CKvMathKernel::SinCosHalfPi(L, sL, cL);
    else
        CKvMathKernel::SinCosAny(L, sL, cL);
    // The sphere turned about its east-west axis by phiS (U and V times k).
    const double U = Cp * cL * m_cosPhiS + Sp * m_sinPhiS;
    const double V = Cp * cL * m_sinPhiS - Sp * m_cosPhiS;
    const double W = Cp * sL / k;
    // H = -L' + i psi': L' = atan2(V, U) (the note's 2 atan(V / (U + d))), and
    // the isometric latitude of P' = atan(W / d) is atanh(W). |W| = 1 (the two
    // points at infinity) gives an infinite psi', refused by the caller.
    const double hr = -CKvMathKernel::Atan2(V, U);
    const double hi = std::fabs(W) < 0.1 ? CKvMathKernel::AtanhSmall(W) : std::atanh(W);
    // H + G H^3, with H^3 = hr (hr^2 - 3 hi^2) + i hi (3 hr^2 - hi^2).
    const double hr2 = hr * hr, hi2 = hi * hi;
    const double cr = hr * (hr2 - 3.0 * hi2), ci = hi * (3.0 * hr2 - hi2);
    *re = hr + (m_Gre * cr - m_Gim * ci);
    *im = hi + (m_Gre * ci + m_Gim * cr);
}

void CKvLaborde::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R)) {
        *x = *y = std::nan("");
        return;
    }
    double re, im;
    _plane(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &re,
           &im);
    *x = m_FE + m_R * im;
    *y = m_FN + m_R * re;
    if (!std::isfinite(*x) || !std::isfinite(*y))
        *x = *y = std::nan("");
}

void CKvLaborde::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double h0r = (y - m_FN) / m_R, h0i = (x - m_FE) / m_R;
    if (!std::isfinite(h0r) || !std::isfinite(h0i)) {
        *lon = *lat = std::nan("");
        return;
    }
    // H + G H^3 = H0 by Newton's method, from the series of its root
    //   H = H0 - G H0^3 + 3 G^2 H0^5 + O(G^3 H0^7),
    // whose error over Madagascar (|H0| <= 0.15, |G| <= 1/6) is below 1e-7.
    // With f = H + G H^3 - H0, f'' / 2f' = 3 G H / (1 + 3 G H^2): for |H| <= 1
    // and |G| <= 1/6 its size is at most |H|, so that a step d leaves an error
    // of at most |H| |d|^2. The iteration stops after the step that leaves
    // below 1e-17 (a few nanometres' fraction): one step on the island, two
    // at its ends. Beyond |H0| = 1 the series is no start (H0 itself is) and
    // the back check below has the last word.
    const double Gre = m_Gre, Gim = m_Gim;
    double hr = h0r, hi = h0i;
    if (h0r * h0r + h0i * h0i <= 1.0) {
        const double sr = h0r * h0r - h0i * h0i, si = 2.0 * h0r * h0i;             // H0^2
        const double cr = sr * h0r - si * h0i, ci = sr * h0i + si * h0r;           // H0^3
        const double gcr = Gre * cr - Gim * ci, gci = Gre * ci + Gim * cr;         // G H0^3
        const double gsr = Gre * sr - Gim * si, gsi = Gre * si + Gim * sr;         // G H0^2
        const double fr = gcr * gsr - gci * gsi, fi = gcr * gsi + gci * gsr;       // G^2 H0^5
        hr = h0r - gcr + 3.0 * fr;
        hi = h0i - gci + 3.0 * fi;
    }
    bool settled = false;
    for (int i = 0; i < kMaxSteps; ++i) {
        const double sr = hr * hr - hi * hi, si = 2.0 * hr * hi; // H^2
        const double cr = sr * hr - si * hi, ci = sr * hi + si * hr;
        const double fr = hr + (Gre * cr - Gim * ci) - h0r, fi = hi + (Gre * ci + Gim * cr) - h0i;
        const double dr = 1.0 + 3.0 * (Gre * sr - Gim * si), di = 3.0 * (Gre * si + Gim * sr);
        const double inv = 1.0 / (dr * dr + di * di);
        const double stepR = (fr * dr + fi * di) * inv, stepI = (fi * dr - fr * di) * inv;
        if (!std::isfinite(stepR) || !std::isfinite(stepI))
            break;
        hr -= stepR;
        hi -= stepI;
        if ((stepR * stepR + stepI * stepI) * (std::fabs(hr) + std::fabs(hi)) <= 1e-17) {
            settled = true;
            break;
        }
    }
    if (!settled) {
        *lon = *lat = std::nan("");
        return;
    }
    // The turned sphere's point (L', P'), and the sphere turned back.
    const double Lp = -hr;
    double sinPp, cosPp, sL, cL;
    SinCosOfIsometric(hi, sinPp, cosPp);
    CKvMathKernel::SinCosAny(Lp, sL, cL);
    const double U = cosPp * cL, V = cosPp * sL, W = sinPp;
    const double cosPcosL = U * m_cosPhiS + V * m_sinPhiS;
    const double sinP = U * m_sinPhiS - V * m_cosPhiS;
    const double L = CKvMathKernel::Atan2(W, cosPcosL);
    // The isometric latitude of P on the sphere, then phi from psi(phi) = (q - C) / B.
    const double q = (AtanhOfSine(std::fmax(-1.0, std::fmin(1.0, sinP))) - m_C) / m_B;
    const double dLambda = L / m_B;
    double phi;
    if (m_inverse.series && std::fabs(q) <= CKvConformalLatitude::LatitudeKernelLimit) {
        phi = CKvConformalLatitude::LatitudeKernel(m_inverse, q);
    } else if (!(std::fabs(q) <= 700.0)) {
        phi = std::isnan(q) ? q : std::copysign(kPi / 2.0, q);
    } else {
        phi = std::atan(CKvConformalLatitude::Tau(std::sinh(q), _e()));
    }
    if (!(std::fabs(dLambda) <= kPi * (1.0 + 1e-12)) || std::isnan(phi)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + dLambda / kDeg);
    // Far from the centre the cubic folds the plane: the point must go back to
    // the grid point it came from.
    if (h0r * h0r + h0i * h0i > 1.0) {
        double bx, by;
        Geo2Proj(*lon, *lat, &bx, &by);
        if (!(std::hypot(bx - x, by - y) <= 1e-4))
            *lon = *lat = std::nan("");
    }
}

void CKvLaborde::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvLaborde::GetConvergence(double lon, double lat) const
{
    return m_R == m_R ? CKvMeridianDirection::Convergence(*this, lon, lat) : std::nan("");
}

void CKvLaborde::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, false, x1, y1, x2, y2);
}

// ESRI and GDAL both write Laborde_Oblique_Mercator; PROJ's method is labrd.
const CKvMapProjData::STypeInfo CKvLaborde::TypeInfo = {
    CKvMapProjData::eLaborde,
    "LABORDE_OBLIQUE_MERCATOR_PROJECTION",
    nullptr,
    "Laborde Oblique Mercator",
    "Laborde_Oblique_Mercator",
    6,
    {
        {"Center_Longitude",
         "Longitude of centre:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Longitude_Of_Center", "longitude_of_center", "Longitude of projection centre", "Central_Meridian"},
         "lon_0",
         true},
        {"Center_Latitude",
         "Latitude of centre:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Center", "latitude_of_center", "Latitude of projection centre", "Latitude_Of_Origin"},
         "lat_0",
         false},
        {"Azimuth",
         "Azimuth:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Azimuth", "azimuth", "Azimuth of initial line"},
         "azi",
         false},
        {"Scale",
         "Scale:",
         CKvMapProjData::eDimensionless,
         nullptr,
         {"Scale_Factor", "scale_factor", "Scale factor on initial line"},
         "k",
         false,
         1.0},
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
    "Default Laborde Oblique Mercator",
    "IN",
    {46.4372291666667, -18.9, 18.9, 0.9995, 400000.0, 800000.0},
    9813,
    "Laborde_Oblique_Mercator",
    {"Laborde Oblique Mercator", "Laborde Madagascar"},
    "+proj=labrd",
    nullptr,
};
