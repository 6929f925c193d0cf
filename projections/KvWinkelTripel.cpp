#include "projections/KvWinkelTripel.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <algorithm>
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
// The Newton iteration of the inverse: from the closed-form start below it
// reaches the root in at most 5 steps over a grid of 0.05 degree of the whole
// map with phi1 = 50.467 (26 million points) and of 0.2 degree with phi1 = 0,
// -30 and acos(2/pi), the 5 only on the outer meridians towards the poles; 24
// leave room and still bound the time. A step of size d leaves an error of
// about 2 d^2 (measured over the same grids): a step below StepLimit (radians)
// leaves less than 5e-15, the rounding of the formulas themselves, so the
// iteration ends there rather than after one more step that only confirms it.
constexpr int kMaxIterations = 24;
constexpr double kStepLimit = 3e-8;
// The start table: bicubic Hermite interpolation of phi(X, Y) and lambda(X, Y)
// on CellsX x CellsY cells over the quarter map, from each node's root and the
// derivatives of the inverse there (the inverse of the Jacobian; the cross
// derivative from the neighbouring nodes' along Y). Its error is of the fourth
// power of the cell and below 1.2e-4 rad over most of the map, where one step
// leaves less than 2 (1.2e-4)^2 = 3e-8 and the second ends the iteration; it
// grows towards the corners of the pole lines and the outer meridians (0.013
// rad for phi1 = 50.467). Over a grid of 0.5 degree of the whole map
// (tools/make_winkel_tripel_start.py models the table in numpy) the iteration
// from it takes 2.01 steps in the mean with phi1 = 50.467, 1.94 with phi1 = 0
// (3.46 and 3.38 from the closed-form start), and at most 6 for phi1 from 0
// to 89.9 degrees, none restarted. Nodes without a root near the sphere's
// range (beyond the outline where the pole lines shrink, towards phi1 = 90,
// the Aitoff projection) are left out, and the cells that touch them give no
// start.
// TableSteps bounds the steps from the table's start: where they do not
// settle on a point of the map, the iteration starts again from the closed
// form, as it did before there was a table.
constexpr int kCellsX = 24;
constexpr int kCellsY = 16;
constexpr int kNodeValues = 8; // phi, phi_X, phi_Y, phi_XY, lambda, lambda_X, lambda_Y, lambda_XY
constexpr int kTableSteps = 6;

bool OnMap(double lambda)
{
    // A root beyond the outer meridians is the formulas' continuation, not the
    // map; one on them within rounding is set on them afterwards.
    return std::fabs(lambda / kDeg) <= 180.0 + 1e-9;
}

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
    m_cellX = kPi * (1.0 + m_cosPhi1) / kCellsX;
    m_cellY = kPi / kCellsY;
    m_perCellX = 1.0 / m_cellX;
    m_perCellY = 1.0 / m_cellY;
    if (!usable)
        return;
    // Each row is solved outwards from the central meridian, where phi = Y / 2
    // exactly, every node from its neighbour's root; beyond the outline the
    // roots continue the formulas (lambda past pi), which keeps the cells
    // across the outline smooth. A node without a root near the sphere's range
    // stays NaN.
    const int rows = kCellsY + 1;
    m_table.assign(static_cast<size_t>((kCellsX + 1) * rows * kNodeValues), std::nan(""));
    for (int j = 0; j < rows; ++j) {
        const double Y = j * m_cellY;
        double phi = 0.5 * Y, lambda = 0.0;
        for (int i = 0; i <= kCellsX; ++i) {
            double p = phi, l = lambda, J[4], fx, fy;
            if (!_newton(i * m_cellX, Y, kMaxIterations, &p, &l) || std::fabs(l) > 1.25 * kPi ||
                std::fabs(p) > 0.6 * kPi)
                continue;
            phi = p;
            lambda = l;
            _unit(p, l, &fx, &fy, J);
            const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
            double* node = &m_table[static_cast<size_t>((i * rows + j) * kNodeValues)];
            node[0] = p;
            node[1] = J[3] * invDet * m_cellX;
            node[2] = -J[1] * invDet * m_cellY;
            node[4] = l;
            node[5] = -J[2] * invDet * m_cellX;
            node[6] = J[0] * invDet * m_cellY;
        }
    }
    // The cross derivatives, scaled to the cell: central differences of the X
    // derivatives along Y. On Y = 0 by symmetry (phi_X is odd in Y, lambda_X
    // even), on the pole line one-sided.
    for (int i = 0; i <= kCellsX; ++i)
        for (int j = 0; j < rows; ++j) {
            double* node = &m_table[static_cast<size_t>((i * rows + j) * kNodeValues)];
            const double* below = j > 0 ? node - kNodeValues : nullptr;
            const double* above = j + 1 < rows ? node + kNodeValues : nullptr;
            for (int k = 1; k <= 5; k += 4) {
                if (below == nullptr)
                    node[k + 2] = k == 1 ? above[k] : 0.0;
                else if (above == nullptr)
                    node[k + 2] = node[k] - below[k];
                else
                    node[k + 2] = 0.5 * (above[k] - below[k]);
            }
        }
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

bool CKvWinkelTripel::_newton(double X, double Y, int steps, double* phi, double* lambda) const
{
    double p = *phi, l = *lambda;
    for (int i = 0; i < steps; ++i) {
        double fx, fy, J[4];
        _unit(p, l, &fx, &fy, J);
        fx -= X;
        fy -= Y;
        const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
        const double dPhi = (J[1] * fy - J[3] * fx) * invDet;
        const double dLambda = (J[2] * fx - J[0] * fy) * invDet;
        if (!std::isfinite(dPhi) || !std::isfinite(dLambda))
            return false;
        p += dPhi;
        l += dLambda;
        // An iterate that leaves the sphere's range by far belongs to no point
        // of the map: the formulas repeat beyond it.
        if (std::fabs(p) > kPi || std::fabs(l) > 2.0 * kPi)
            return false;
        if (std::fabs(dPhi) <= kStepLimit && std::fabs(dLambda) <= kStepLimit) {
            *phi = p;
            *lambda = l;
            return true;
        }
    }
    return false;
}

void CKvWinkelTripel::_tableStart(double X, double Y, double* phi, double* lambda) const
{
    if (m_table.empty()) {
        *phi = *lambda = std::nan("");
        return;
    }
    // |X| and |Y| lie within the map's box (the caller checks): the cell
    // indices are within the grid, the last cell taking its far edge.
    const double tx = std::fabs(X) * m_perCellX, ty = std::fabs(Y) * m_perCellY;
    const int i = std::min(static_cast<int>(tx), kCellsX - 1);
    const int j = std::min(static_cast<int>(ty), kCellsY - 1);
    const double u = tx - i, v = ty - j;
    // The cubic Hermite basis: value and slope at each end of the cell.
    const double u1 = 1.0 - u, v1 = 1.0 - v;
    const double hu[4] = {(1.0 + 2.0 * u) * u1 * u1, u * u1 * u1, u * u * (3.0 - 2.0 * u), -u * u * u1};
    const double hv[4] = {(1.0 + 2.0 * v) * v1 * v1, v * v1 * v1, v * v * (3.0 - 2.0 * v), -v * v * v1};
    const double* n00 = &m_table[static_cast<size_t>((i * (kCellsY + 1) + j) * kNodeValues)];
    const double* n01 = n00 + kNodeValues;
    const double* n10 = n00 + (kCellsY + 1) * kNodeValues;
    const double* n11 = n10 + kNodeValues;
    double r[2];
    for (int k = 0; k < 2; ++k) {
        const int o = 4 * k;
        r[k] = hv[0] * (hu[0] * n00[o] + hu[1] * n00[o + 1] + hu[2] * n10[o] + hu[3] * n10[o + 1]) +
               hv[1] * (hu[0] * n00[o + 2] + hu[1] * n00[o + 3] + hu[2] * n10[o + 2] + hu[3] * n10[o + 3]) +
               hv[2] * (hu[0] * n01[o] + hu[1] * n01[o + 1] + hu[2] * n11[o] + hu[3] * n11[o + 1]) +
               hv[3] * (hu[0] * n01[o + 2] + hu[1] * n01[o + 3] + hu[2] * n11[o + 2] + hu[3] * n11[o + 3]);
    }
    *phi = std::copysign(r[0], Y);
    *lambda = std::copysign(r[1], X);
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
    double phi, lambda;
    _tableStart(X, Y, &phi, &lambda);
    bool found = std::isfinite(phi) && std::isfinite(lambda);
    if (found) {
        lambda = std::fmax(-kPi, std::fmin(kPi, lambda));
        found = _newton(X, Y, kTableSteps, &phi, &lambda) && OnMap(lambda);
    }
    if (!found) {
        // The closed-form start: Y is about 2 phi near the centre and X about
        // lambda (cos phi + cos phi1) along a parallel.
        phi = 0.5 * Y;
        lambda = std::fmax(-kPi, std::fmin(kPi, X / (std::cos(phi) + m_cosPhi1)));
        if (!_newton(X, Y, kMaxIterations, &phi, &lambda) || !OnMap(lambda))
            return;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(std::fmax(-180.0, std::fmin(180.0, lambda / kDeg)) + m_lon0);
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
