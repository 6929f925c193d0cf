#include "projections/KvLaborde.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"
#include "projections/KvMeridianDirection.h"

#include <cmath>
#include <complex>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Newton's steps on H + G H^3 = H0: from H0 itself, a few steps over
// Madagascar; the bound ends every call where the cubic folds.
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
}

void CKvLaborde::_plane(double phi, double dLambda, double* re, double* im) const
{
    // The point on Gauss's sphere: its latitude P from q, its longitude L.
    const double q = m_C + m_B * CKvConformalLatitude::Isometric(phi, _e());
    double sinP, cosP, sL, cL;
    CKvConformalLatitude::SinCosFromIsometric(q, sinP, cosP);
    CKvMathKernel::SinCosAny(m_B * dLambda, sL, cL);
    // The sphere turned about its east-west axis by phiS.
    const double U = cosP * cL * m_cosPhiS + sinP * m_sinPhiS;
    const double V = cosP * cL * m_sinPhiS - sinP * m_cosPhiS;
    const double W = cosP * sL;
    // L' = atan2(V, U) (the note's 2 atan(V / (U + d))), and the isometric
    // latitude of P' = atan(W / d) is atanh(W).
    const std::complex<double> H(-std::atan2(V, U), std::atanh(W));
    const std::complex<double> G(m_Gre, m_Gim);
    const std::complex<double> Z = H + G * H * H * H;
    *re = Z.real();
    *im = Z.imag();
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
    const std::complex<double> H0((y - m_FN) / m_R, (x - m_FE) / m_R);
    if (!std::isfinite(H0.real()) || !std::isfinite(H0.imag())) {
        *lon = *lat = std::nan("");
        return;
    }
    const std::complex<double> G(m_Gre, m_Gim);
    std::complex<double> H = H0;
    bool settled = false;
    for (int i = 0; i < kMaxSteps; ++i) {
        const std::complex<double> H2 = H * H;
        const std::complex<double> step = (H + G * H2 * H - H0) / (1.0 + 3.0 * G * H2);
        if (!std::isfinite(step.real()) || !std::isfinite(step.imag()))
            break;
        H -= step;
        if (std::abs(step) <= 1e-15 * (1.0 + std::abs(H))) {
            settled = true;
            break;
        }
    }
    if (!settled) {
        *lon = *lat = std::nan("");
        return;
    }
    // The turned sphere's point (L', P'), and the sphere turned back.
    const double Lp = -H.real();
    double sinPp, cosPp, sL, cL;
    CKvConformalLatitude::SinCosFromIsometric(H.imag(), sinPp, cosPp);
    CKvMathKernel::SinCosAny(Lp, sL, cL);
    const double U = cosPp * cL, V = cosPp * sL, W = sinPp;
    const double cosPcosL = U * m_cosPhiS + V * m_sinPhiS;
    const double sinP = U * m_sinPhiS - V * m_cosPhiS;
    const double L = std::atan2(W, cosPcosL);
    // The isometric latitude of P on the sphere, then phi from psi(phi) = (q - C) / B.
    const double q = (std::atanh(std::fmax(-1.0, std::fmin(1.0, sinP))) - m_C) / m_B;
    const double dLambda = L / m_B;
    double phi;
    if (!(std::fabs(q) <= 700.0)) {
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
    if (std::abs(H0) > 1.0) {
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
