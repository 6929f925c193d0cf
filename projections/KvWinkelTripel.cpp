#include "projections/KvWinkelTripel.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Winkel's own parallel (1921), acos(2/pi) = 50.4597762521898 degrees: the
// equirectangular part then has the Aitoff part's width along the equator.
// PROJ takes it when no parallel is given; ESRI writes 50.467 (the National
// Geographic Society's rounding) in its world systems.
constexpr double kWinkelParallel = 50.45977625218981;
// The Newton iteration of the inverse: from the start below it reaches the root
// in at most 5 steps over a grid of 0.05 degree of the whole map with phi1 =
// 50.467 (26 million points) and of 0.2 degree with phi1 = 0, -30 and acos(2/pi),
// the 5 only on the outer meridians towards the poles; 24 leave room and still
// bound the time. A step of size d leaves an error of about 2 d^2 (measured
// over the same grids): a step below StepLimit (radians) leaves less than
// 5e-15, the rounding of the formulas themselves, so the iteration ends there
// rather than after one more step that only confirms it.
constexpr int kMaxIterations = 24;
constexpr double kStepLimit = 3e-8;

std::string Problem(const double* parameters)
{
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    if (std::fabs(parameters[1]) > 90.0)
        return "the standard parallel lies beyond a pole";
    return "";
}
} // namespace

CKvWinkelTripel::CKvWinkelTripel(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_FE(parameters[2]), m_FN(parameters[3])
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && Problem(parameters).empty();
    m_cosPhi1 = std::cos(CKvAngle::SnapToPole(parameters[1]) * kDeg);
    m_R = usable ? a : std::nan("");
}

void CKvWinkelTripel::_unit(double phi, double lambda, double* X, double* Y, double* jacobian) const
{
    // phi and lambda/2 lie within a quarter turn on the map, where the
    // unreduced kernel is exact to an ulp; the iterates of the inverse may
    // stray up to a half turn, where its series is still within 1e-11, enough
    // for a Newton step that does not end the iteration.
    double s, c, S, C;
    CKvMathKernel::SinCosHalfPi(phi, s, c);
    CKvMathKernel::SinCosHalfPi(0.5 * lambda, S, C);
    // cos alpha = cos phi cos(lambda/2); sin alpha from the sum of squares
    // sin^2 phi + cos^2 phi sin^2(lambda/2), which does not cancel near the centre.
    const double cosAlpha = c * C;
    const double sinAlpha = std::sqrt(s * s + c * c * S * S);
    // The kernel's atan2 (within an ulp or two of libm's): the inverse's
    // iteration takes it at every step too.
    const double alpha = CKvMathKernel::Atan2(sinAlpha, cosAlpha);
    // alpha / sin alpha, 1 at the centre (where atan2 returns sin alpha itself).
    const double invSinAlpha = 1.0 / sinAlpha;
    const double f = sinAlpha > 0.0 ? alpha * invSinAlpha : 1.0;
    *X = 2.0 * c * S * f + lambda * m_cosPhi1;
    *Y = s * f + phi;
    if (jacobian == nullptr)
        return;
    // d f / d alpha = (1 - f cos alpha) / sin alpha, and d alpha from
    // d cos alpha = -sin alpha d alpha; g = (1 - f cos alpha) / sin^2 alpha
    // tends to 1/3 at the centre, where it is only ever multiplied by squares
    // of sin alpha's size (the difference's rounding is divided out with them).
    const double g = sinAlpha > 1e-4 ? (1.0 - f * cosAlpha) * (invSinAlpha * invSinAlpha) : 1.0 / 3.0;
    jacobian[0] = 2.0 * S * s * (g * c * C - f);            // dX/dphi
    jacobian[1] = c * (C * f + g * c * S * S) + m_cosPhi1;  // dX/dlambda
    jacobian[2] = c * f + g * s * s * C + 1.0;              // dY/dphi
    jacobian[3] = 0.5 * g * s * c * S;                      // dY/dlambda
}

void CKvWinkelTripel::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    double X, Y;
    _unit(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg, &X, &Y, nullptr);
    *x = m_FE + 0.5 * m_R * X;
    *y = m_FN + 0.5 * m_R * Y;
}

void CKvWinkelTripel::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    *lon = *lat = std::nan("");
    const double X = 2.0 * (x - m_FE) / m_R, Y = 2.0 * (y - m_FN) / m_R;
    // The map lies within |Y| <= pi (the pole lines, where alpha = pi/2 and
    // the Aitoff part gives pi/2 as the equirectangular part does) and |X| <=
    // pi (1 + cos phi1) (the equator's ends); beyond them (or for NaN) no
    // iteration.
    if (!(std::fabs(Y) <= kPi * (1.0 + 1e-12)) ||
        !(std::fabs(X) <= kPi * (1.0 + m_cosPhi1) * (1.0 + 1e-12)))
        return;
    // With phi1 at a pole the pole lines shrink to points (the Aitoff
    // projection), where the longitude is lost and the iteration has no root
    // to find: the pole itself.
    if (m_cosPhi1 < 1e-9 && std::fabs(Y) >= kPi * (1.0 - 1e-12)) {
        *lon = CKvAngle::InverseLongitudeDegrees(m_lon0);
        *lat = std::copysign(90.0, Y);
        return;
    }
    // Start: Y is about 2 phi near the centre and X about lambda (cos phi +
    // cos phi1) along a parallel.
    double phi = 0.5 * Y;
    double lambda = X / (std::cos(phi) + m_cosPhi1);
    lambda = std::fmax(-kPi, std::fmin(kPi, lambda));
    bool converged = false;
    for (int i = 0; i < kMaxIterations; ++i) {
        double fx, fy, J[4];
        _unit(phi, lambda, &fx, &fy, J);
        fx -= X;
        fy -= Y;
        const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
        const double dPhi = (J[1] * fy - J[3] * fx) * invDet;
        const double dLambda = (J[2] * fx - J[0] * fy) * invDet;
        if (!std::isfinite(dPhi) || !std::isfinite(dLambda))
            return;
        phi += dPhi;
        lambda += dLambda;
        // An iterate that leaves the sphere's range by far belongs to no point
        // of the map: the formulas repeat beyond it.
        if (std::fabs(phi) > kPi || std::fabs(lambda) > 2.0 * kPi)
            return;
        if (std::fabs(dPhi) <= kStepLimit && std::fabs(dLambda) <= kStepLimit) {
            converged = true;
            break;
        }
    }
    if (!converged)
        return;
    // A root beyond the outer meridians or the poles is the formulas'
    // continuation, not the map; one on them within rounding is set on them.
    const double dLon = lambda / kDeg;
    if (!(std::fabs(dLon) <= 180.0 + 1e-9))
        return;
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(std::fmax(-180.0, std::fmin(180.0, dLon)) + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvWinkelTripel::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvWinkelTripel::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    double X, Y, J[4];
    _unit(lat * kDeg, CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg, &X, &Y, J);
    // The direction of the meridian northwards, from grid north, counted
    // positive where it leans west of grid north (as in the other engines).
    return std::atan2(-J[0], J[2]) / kDeg;
}

void CKvWinkelTripel::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = 0.5 * m_R * kPi * (1.0 + m_cosPhi1);
    const double halfHeight = 0.5 * m_R * kPi;
    *x1 = m_FE - halfWidth;
    *x2 = m_FE + halfWidth;
    *y1 = m_FN - halfHeight;
    *y2 = m_FN + halfHeight;
}

// ESRI and GDAL both write "Winkel_Tripel" with the parallel as
// Standard_Parallel_1; PROJ's wintri calls it lat_1. The EPSG registry has no
// such method.
const CKvMapProjData::STypeInfo CKvWinkelTripel::TypeInfo = {
    CKvMapProjData::eWinkelTripel,
    "WINKEL_TRIPEL_PROJECTION",
    nullptr,
    "Winkel Tripel",
    "Winkel_Tripel",
    4,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Parallel_1", "Standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of 1st standard parallel"}, "lat_1", false,
         kWinkelParallel},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Winkel Tripel",
    "WE",
    {0.0, 50.467, 0.0, 0.0},
    0,
    "Winkel_Tripel",
    {"Winkel Tripel"},
    "+proj=wintri",
    &Problem,
};
