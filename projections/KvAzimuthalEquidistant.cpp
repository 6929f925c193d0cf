#include "projections/KvAzimuthalEquidistant.h"

#include "projections/KvAngle.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"
#include "projections/KvMeridianDirection.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvAzimuthalEquidistant::CKvAzimuthalEquidistant(const std::string& name, const double* parameters,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_lat0(CKvAngle::SnapToPole(parameters[1])),
      m_FE(parameters[2]), m_FN(parameters[3]), m_geodesic(_a(), _f())
{
    const double a = _a();
    m_sphere = _f() == 0.0;
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && CKvAngle::IsLatitude(m_lat0) &&
                        std::isfinite(m_FE) && std::isfinite(m_FN) && m_geodesic.IsValid();
    m_R = usable ? a : std::nan("");
    CKvMathKernel::SinCosAny(m_lat0 * kDeg, m_sinPhi0, m_cosPhi0);
    if (std::fabs(m_lat0) == 90.0)
        m_cosPhi0 = 0.0;
    // Geodesics from the centre stay the shortest lines at least as far as the
    // pole-to-pole half meridian less a margin: the antipodal cut lies beyond.
    m_meridian = CKvConformalLatitude::MakeMeridian(a, _e2());
    m_Mp = CKvConformalLatitude::MeridianDistance(m_meridian, kPi / 2.0);
    m_farthest = 0.99 * 2.0 * m_Mp;
    m_polar = !m_sphere && m_cosPhi0 == 0.0;
    m_meridianKernel = _e2() <= 0.01;
    m_invR = 1.0 / m_R;
    m_poleSign = m_lat0 < 0.0 ? -1.0 : 1.0;
}

void CKvAzimuthalEquidistant::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R)) {
        *x = *y = std::nan("");
        return;
    }
    if (m_polar) {
        // rho = Mp -+ M(phi) from the north (south) pole; the meridian leaves the
        // north pole at azimuth pi - dlambda, the south pole at dlambda.
        // The latitude within a quarter turn and the longitude difference
        // within a half turn: the kernels need no reduction of their own.
        double s, c, sL, cL, vL;
        const double phi = lat * kDeg;
        CKvMathKernel::SinCosHalfPi(phi, s, c);
        CKvMathKernel::SinCos(
            CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * kDeg, sL, cL, vL);
        const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
        const double rho = m_Mp - m_poleSign * M;
        *x = m_FE + rho * sL;
        *y = m_FN - m_poleSign * rho * cL;
        return;
    }
    if (!m_sphere) {
        double s12, azi1, azi2;
        m_geodesic.Inverse(m_lon0, m_lat0, lon, lat, s12, azi1, azi2);
        double sa, ca;
        CKvMathKernel::SinCosAny(azi1 * kDeg, sa, ca);
        if (std::fabs(azi1) == 180.0)
            sa = 0.0;
        *x = m_FE + s12 * sa;
        *y = m_FN + s12 * ca;
        return;
    }
    // The latitude and half the longitude difference lie within a quarter
    // turn: the unreduced kernel, and the double angle for the longitude's.
    double s, c, sH, cH;
    CKvMathKernel::SinCosHalfPi(lat * kDeg, s, c);
    if (std::fabs(lat) == 90.0)
        c = 0.0;
    CKvMathKernel::SinCosHalfPi(
        CKvAngle::ReduceLongitudeDegrees(CKvAngle::ReduceLongitudeDegrees(lon) - m_lon0) * (0.5 * kDeg), sH, cH);
    const double sL = 2.0 * sH * cH, cL = (cH - sH) * (cH + sH);
    // sin c sin alpha, sin c cos alpha and cos c of the arc c from the centre.
    const double east = c * sL;
    const double north = m_cosPhi0 * s - m_sinPhi0 * c * cL;
    const double up = m_sinPhi0 * s + m_cosPhi0 * c * cL;
    // Both terms are at most 1: the plain root cannot overflow, and where the
    // squares underflow the chord is 0 and k its limit R.
    const double chord = std::sqrt(east * east + north * north);
    if (1.0 + up < CKvAngle::AntipodeLimit) {
        *x = *y = std::nan("");
        return;
    }
    const double k = chord > 0.0 ? m_R * CKvMathKernel::Atan2(chord, up) / chord : m_R;
    *x = m_FE + k * east;
    *y = m_FN + k * north;
}

void CKvAzimuthalEquidistant::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double X = x - m_FE, Y = y - m_FN;
    // An overflow of the squares is a radius beyond any map: rejected below
    // as it is; an underflow is a point within 1e-150 m of the centre.
    const double rho = std::sqrt(X * X + Y * Y);
    // No shortest line from the centre is longer than half the equator.
    if (!(rho <= kPi * m_R * (1.0 + 1e-15))) {
        *lon = *lat = std::nan("");
        return;
    }
    if (rho == 0.0) {
        *lon = m_lon0;
        *lat = m_lat0;
        return;
    }
    if (m_polar) {
        // The meridian arc from the pole reaches the other pole at 2 Mp: a grid
        // point beyond is no point of the earth.
        const double M = m_poleSign * (m_Mp - rho);
        if (!(rho <= 2.0 * m_Mp * (1.0 + 1e-15))) {
            *lon = *lat = std::nan("");
            return;
        }
        // |M| is within the quarter meridian: the inline footpoint kernel holds
        // for the earth's flattenings, the general one beyond them.
        const double phi = m_meridianKernel ? CKvConformalLatitude::MeridianLatitudeKernel(m_meridian, M)
                                            : CKvConformalLatitude::MeridianLatitude(m_meridian, M);
        *lat = std::fmax(-90.0, std::fmin(90.0, phi / kDeg));
        *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + CKvMathKernel::Atan2(X, -m_poleSign * Y) / kDeg);
        return;
    }
    if (!m_sphere) {
        const double azimuth = std::atan2(X, Y) / kDeg;
        double azi2;
        m_geodesic.Direct(m_lon0, m_lat0, azimuth, rho, *lon, *lat, azi2);
        if (rho > m_farthest) {
            // Near the antipode the geodesic may have passed its cut: the point
            // is the grid point's only if the forward gives it back.
            double bx, by;
            Geo2Proj(*lon, *lat, &bx, &by);
            if (!(std::hypot(bx - x, by - y) <= 1e-4))
                *lon = *lat = std::nan("");
        }
        return;
    }
    // The arc c = rho / R is at most pi here. The point's unit vector in the
    // centre's frame: sin phi, and cos phi times the sine and cosine of the
    // longitude difference (Snyder, eqs. 20-14, 20-15), whose hypotenuse is
    // cos phi itself, so that phi comes from one atan2 with no asin near the
    // poles.
    const double invRho = 1.0 / rho;
    double sc, cc, vc;
    CKvMathKernel::SinCos(rho * m_invR, sc, cc, vc);
    const double scRho = sc * invRho;
    const double sinPhi = cc * m_sinPhi0 + Y * scRho * m_cosPhi0;
    const double east = X * scRho;
    const double north = m_cosPhi0 * cc - Y * scRho * m_sinPhi0;
    const double cosPhi = std::sqrt(east * east + north * north);
    *lat = CKvMathKernel::Atan2(sinPhi, cosPhi) / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + CKvMathKernel::Atan2(east, north) / kDeg);
}

void CKvAzimuthalEquidistant::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvAzimuthalEquidistant::GetConvergence(double lon, double lat) const
{
    return m_R == m_R ? CKvMeridianDirection::Convergence(*this, lon, lat) : std::nan("");
}

void CKvAzimuthalEquidistant::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double r = kPi * m_R;
    *x1 = m_FE - r;
    *y1 = m_FN - r;
    *x2 = m_FE + r;
    *y2 = m_FN + r;
}

// ESRI's Azimuthal_Equidistant names its centre Central_Meridian and
// Latitude_Of_Origin, GDAL's longitude_of_center and latitude_of_center.
const CKvMapProjData::STypeInfo CKvAzimuthalEquidistant::TypeInfo = {
    CKvMapProjData::eAzimuthalEquidistant,
    "AZIMUTHAL_EQUIDISTANT_PROJECTION",
    nullptr,
    "Azimuthal Equidistant",
    "Azimuthal_Equidistant",
    4,
    {
        {"Central_Meridian",
         "Longitude of centre:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Central_Meridian", "longitude_of_center", "Longitude_Of_Center", "Longitude of natural origin"},
         "lon_0",
         true,
         0.0},
        {"Origin_Latitude",
         "Latitude of centre:",
         CKvMapProjData::eAngle,
         nullptr,
         {"Latitude_Of_Origin", "latitude_of_center", "Latitude_Of_Center", "Latitude of natural origin"},
         "lat_0",
         false,
         0.0},
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
    "Default Azimuthal Equidistant",
    "WE",
    {0.0, 90.0, 0.0, 0.0},
    0,
    "Azimuthal_Equidistant",
    {"Azimuthal Equidistant"},
    "+proj=aeqd",
    nullptr,
};
