#include "projections/KvModifiedAzimuthalEquidistant.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"
#include "projections/KvMeridianDirection.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Newton's steps after the inverse series: the series alone is within a
// micrometre of the forward on the islands' grids; far out two or three steps
// reach round-off. The bound ends every call.
constexpr int kMaxSteps = 8;
constexpr double kResidual = 1e-6; // metres
} // namespace

CKvModifiedAzimuthalEquidistant::CKvModifiedAzimuthalEquidistant(const std::string& name, const double* parameters,
                                                                 const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3])
{
    const double a = _a(), e2 = _e2();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && CKvAngle::IsLatitude(m_lat0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN);
    CKvMathKernel::SinCosAny(m_lat0 * kDeg, m_sinPhi0, m_cosPhi0);
    if (std::fabs(m_lat0) == 90.0)
        m_cosPhi0 = 0.0;
    m_nu0 = usable ? a / std::sqrt(1.0 - e2 * m_sinPhi0 * m_sinPhi0) : std::nan("");
    m_G = _e() * m_sinPhi0 / std::sqrt(1.0 - e2);
}

void CKvModifiedAzimuthalEquidistant::_grid(double phi, double dLambda, double* x, double* y) const
{
    const double e2 = _e2();
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    if (std::fabs(phi) == kPi / 2.0)
        c = 0.0;
    const double nu = _a() / std::sqrt(1.0 - e2 * s * s);
    // tan psi = ((1 - e^2) nu sin phi + e^2 nu0 sin phi0) / (nu cos phi); sin and
    // cos of psi from the two terms.
    // Both terms are within a few earth radii: the plain root cannot overflow.
    double sinPsi = (1.0 - e2) * nu * s + e2 * m_nu0 * m_sinPhi0, cosPsi = nu * c;
    const double invH = 1.0 / std::sqrt(sinPsi * sinPsi + cosPsi * cosPsi);
    sinPsi *= invH;
    cosPsi *= invH;
    double sL, cL;
    CKvMathKernel::SinCosAny(dLambda, sL, cL);
    // The arc from the origin to (psi, dLambda) on the sphere: its azimuth alpha
    // and its length s, as sin s sin alpha, sin s cos alpha and cos s.
    const double east = cosPsi * sL;
    const double north = m_cosPhi0 * sinPsi - m_sinPhi0 * cosPsi * cL;
    const double up = m_sinPhi0 * sinPsi + m_cosPhi0 * cosPsi * cL;
    // Terms of unit size: no overflow; squares that underflow are the origin.
    const double chord = std::sqrt(east * east + north * north);
    if (1.0 + up < CKvAngle::AntipodeLimit && chord < 1e-7) {
        *x = *y = std::nan("");
        return;
    }
    const double arc = CKvMathKernel::Atan2(chord, up);
    // At the origin itself the azimuth is that of the meridian.
    const double invChord = 1.0 / chord;
    const double sinAlpha = chord > 0.0 ? east * invChord : 0.0, cosAlpha = chord > 0.0 ? north * invChord : 1.0;
    const double H = _e() * m_cosPhi0 * cosAlpha / std::sqrt(1.0 - e2);
    const double G = m_G, H2 = H * H, s2 = arc * arc;
    const double series = 1.0 - s2 * H2 * (1.0 - H2) / 6.0 + s2 * arc * G * H * (1.0 - 2.0 * H2) / 8.0 +
                          s2 * s2 * (H2 * (4.0 - 7.0 * H2) - 3.0 * G * G * (1.0 - 7.0 * H2)) / 120.0 -
                          s2 * s2 * arc * G * H / 48.0;
    const double length = m_nu0 * arc * series;
    *x = length * sinAlpha;
    *y = length * cosAlpha;
}

void CKvModifiedAzimuthalEquidistant::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    double gx, gy;
    _grid(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, &gx,
          &gy);
    *x = m_FE + gx;
    *y = m_FN + gy;
}

void CKvModifiedAzimuthalEquidistant::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double X = x - m_FE, Y = y - m_FN;
    const double length = std::hypot(X, Y);
    if (!std::isfinite(length) || !(m_nu0 == m_nu0)) {
        *lon = *lat = std::nan("");
        return;
    }
    // The guidance note's inverse series.
    const double e2 = _e2();
    const double sinAlpha = length > 0.0 ? X / length : 0.0, cosAlpha = length > 0.0 ? Y / length : 1.0;
    const double A = -e2 * m_cosPhi0 * m_cosPhi0 * cosAlpha * cosAlpha / (1.0 - e2);
    const double B = 3.0 * e2 * (1.0 - A) * m_sinPhi0 * m_cosPhi0 * cosAlpha / (1.0 - e2);
    const double D = length / m_nu0, D3 = D * D * D;
    const double J = D - A * (1.0 + A) * D3 / 6.0 - B * (1.0 + 3.0 * A) * D3 * D / 24.0;
    const double K = 1.0 - A * J * J / 2.0 - B * J * J * J / 6.0;
    double sJ, cJ;
    CKvMathKernel::SinCosAny(J, sJ, cJ);
    const double sinPsi = m_sinPhi0 * cJ + m_cosPhi0 * sJ * cosAlpha;
    const double cosPsi = std::sqrt(std::fmax(0.0, 1.0 - sinPsi * sinPsi));
    double phi = CKvMathKernel::Atan2(sinPsi - e2 * K * m_sinPhi0, (1.0 - e2) * cosPsi);
    double dLambda = CKvMathKernel::Atan2(sinAlpha * sJ * m_cosPhi0, cJ - m_sinPhi0 * sinPsi);
    // Newton's steps on the forward, with differences for its Jacobian.
    bool reached = false;
    for (int i = 0; i < kMaxSteps; ++i) {
        double gx, gy;
        _grid(phi, dLambda, &gx, &gy);
        const double rx = X - gx, ry = Y - gy;
        if (std::hypot(rx, ry) <= kResidual) {
            reached = true;
            break;
        }
        const double h = 1e-7;
        double px, py, lx, ly;
        _grid(phi + (phi > 0.0 ? -h : h), dLambda, &px, &py);
        _grid(phi, dLambda + (dLambda > 0.0 ? -h : h), &lx, &ly);
        const double hp = phi > 0.0 ? -h : h, hl = dLambda > 0.0 ? -h : h;
        const double j00 = (px - gx) / hp, j10 = (py - gy) / hp, j01 = (lx - gx) / hl, j11 = (ly - gy) / hl;
        const double det = j00 * j11 - j01 * j10;
        const double dPhi = (rx * j11 - ry * j01) / det, dL = (ry * j00 - rx * j10) / det;
        if (!(std::isfinite(dPhi) && std::isfinite(dL)))
            break;
        phi = std::fmax(-kPi / 2.0, std::fmin(kPi / 2.0, phi + dPhi));
        dLambda = CKvAngle::ReduceLongitude(dLambda + dL);
    }
    if (!reached) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + dLambda / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvModifiedAzimuthalEquidistant::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvModifiedAzimuthalEquidistant::GetConvergence(double lon, double lat) const
{
    return m_nu0 == m_nu0 ? CKvMeridianDirection::Convergence(*this, lon, lat) : std::nan("");
}

void CKvModifiedAzimuthalEquidistant::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, false, x1, y1, x2, y2);
}

// EPSG's method. GDAL writes the registry's systems of it (EPSG:3295) as its
// Azimuthal_Equidistant, which reads as the geodesic method here; ESRI has no
// name of its own for it. PROJ computes it with +proj=aeqd.
const CKvMapProjData::STypeInfo CKvModifiedAzimuthalEquidistant::TypeInfo = {
    CKvMapProjData::eModifiedAzimuthalEquidistant,
    "MODIFIED_AZIMUTHAL_EQUIDISTANT_PROJECTION",
    nullptr,
    "Modified Azimuthal Equidistant",
    "Modified_Azimuthal_Equidistant",
    4,
    {
        {"Central_Meridian",
         "Longitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "Longitude of natural origin", "longitude_of_center", "Longitude_Of_Center"},
         "lon_0",
         true},
        {"Origin_Latitude",
         "Latitude of origin:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "latitude_of_center", "Latitude_Of_Center"},
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
    "Default Modified Azimuthal Equidistant",
    "CC",
    {138.168744444, 9.546708333, 40000.0, 60000.0}, // Yap to 1e-9 degree
    9832,
    nullptr,
    {"Modified Azimuthal Equidistant", "Modified_Azimuthal_Equidistant"},
    "+proj=aeqd",
    nullptr,
};
