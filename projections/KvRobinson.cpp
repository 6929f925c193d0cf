#include "projections/KvRobinson.h"

#include "projections/KvAngle.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kFXC = 0.8487; // the equator's length over 2 pi R
constexpr double kFYC = 1.3523; // the pole's distance from the equator over R

// The spline pieces c0 + c1 t + c2 t^2 + c3 t^3 of X (kLength) and Y (kDistance),
// t in degrees from the parallel 5 i of piece i; the last row is the pole.
// Written by tools/make_robinson_table.py from Robinson's table.
const float kLength[19][4] = {
    {1.0f, 0.0f, -7.15515e-05f, 3.1103e-06f},
    {0.9986f, -0.000482243f, -2.4897e-05f, -1.3309e-06f},
    {0.9954f, -0.00083103f, -4.48605e-05f, -9.86701e-07f},
    {0.99f, -0.00135364f, -5.9661e-05f, 3.6777e-06f},
    {0.9822f, -0.00167442f, -4.49547e-06f, -5.72411e-06f},
    {0.973f, -0.00214868f, -9.03571e-05f, 1.8736e-08f},
    {0.96f, -0.00305085f, -9.00761e-05f, 1.64917e-06f},
    {0.9427f, -0.00382792f, -6.53386e-05f, -2.6154e-06f},
    {0.9216f, -0.00467746f, -0.00010457f, 4.81243e-06f},
    {0.8962f, -0.00536223f, -3.23831e-05f, -5.43432e-06f},
    {0.8679f, -0.00609363f, -0.000113898f, 3.32484e-06f},
    {0.835f, -0.00698325f, -6.40253e-05f, 9.34959e-07f},
    {0.7986f, -0.00755338f, -5.00009e-05f, 9.35324e-07f},
    {0.7597f, -0.00798324f, -3.5971e-05f, -2.27626e-06f},
    {0.7186f, -0.00851367f, -7.01149e-05f, -8.6303e-06f},
    {0.6732f, -0.00986209f, -0.000199569f, 1.91974e-05f},
    {0.6213f, -0.010418f, 8.83923e-05f, 6.24051e-06f},
    {0.5722f, -0.00906601f, 0.000182f, 6.24051e-06f},
    {0.5322f, 0.0f, 0.0f, 0.0f},
};
const float kDistance[19][4] = {
    {0.0f, 0.0124f, 0.0f, -8.45284e-11f},
    {0.062f, 0.0124f, -1.26793e-09f, 4.22642e-10f},
    {0.124f, 0.0124f, 5.07171e-09f, -1.60604e-09f},
    {0.186f, 0.0123999f, -1.90189e-08f, 6.00152e-09f},
    {0.248f, 0.0124002f, 7.10039e-08f, -2.24e-08f},
    {0.31f, 0.0123992f, -2.64997e-07f, 8.35986e-08f},
    {0.372f, 0.0124029f, 9.88983e-07f, -3.11994e-07f},
    {0.434f, 0.0123893f, -3.69093e-06f, -4.35621e-07f},
    {0.4958f, 0.0123198f, -1.02252e-05f, -3.45523e-07f},
    {0.5571f, 0.0121916f, -1.54081e-05f, -5.82288e-07f},
    {0.6176f, 0.0119938f, -2.41424e-05f, -5.25327e-07f},
    {0.6769f, 0.011713f, -3.20223e-05f, -5.16405e-07f},
    {0.7346f, 0.0113541f, -3.97684e-05f, -6.09052e-07f},
    {0.7903f, 0.0109107f, -4.89042e-05f, -1.04739e-06f},
    {0.8435f, 0.0103431f, -6.4615e-05f, -1.40374e-09f},
    {0.8936f, 0.00969686f, -6.4636e-05f, -8.547e-06f},
    {0.9394f, 0.00840947f, -0.000192841f, -4.2106e-06f},
    {0.9761f, 0.00616527f, -0.000256f, -4.2106e-06f},
    {1.0f, 0.0f, 0.0f, 0.0f},
};

// The piece of each of kBins equal bins of Y in [0, 1): the last piece whose
// lower parallel lies at or below the bin's start. The pieces are at least
// 0.0239 high, more than a bin (1 / 64), so that a Y of the bin lies in that
// piece or the next.
constexpr int kBins = 64;
struct SPieceTable
{
    int piece[kBins];
    SPieceTable() : piece()
    {
        for (int b = 0; b < kBins; ++b) {
            int i = 0;
            while (i < 17 && kDistance[i + 1][0] <= static_cast<double>(b) / kBins)
                ++i;
            piece[b] = i;
        }
    }
};
const SPieceTable kPieceTable;
const int* const kPieceOfBin = kPieceTable.piece;

inline double Piece(const float* c, double t)
{
    return c[0] + t * (c[1] + t * (c[2] + t * c[3]));
}
inline double PieceSlope(const float* c, double t)
{
    return c[1] + t * (2.0 * c[2] + t * (3.0 * c[3]));
}
// The inverse's start on each piece of Y: t as a polynomial of degree 7 in
// v = (Y - Y_i) scale_i - 1, v within [-1, 1] over the piece from its lower
// parallel's Y_i to the next one's, interpolated at the 8 Chebyshev nodes of the
// piece (its roots there by Newton's method in long double) and written in
// powers of v. The inverse of a cubic piece is analytic where the piece's
// slope stays away from 0: measured over dense grids of each piece, the start
// is within 4e-11 degree of the root on pieces 0 to 14 and within 7.6e-8,
// 6.6e-7 and 4.7e-5 degree on the steeply curving pieces 15, 16 and 17 (the
// slope of piece 17 vanishes at t = 8.6, beyond its end).
constexpr int kStartDegree = 7;
struct SInverseStart
{
    double scale[18];
    double coefficient[18][kStartDegree + 1];
    SInverseStart() : scale(), coefficient()
    {
        constexpr int n = kStartDegree + 1;
        const long double pi = 3.14159265358979323846264338327950288L;
        for (int i = 0; i < 18; ++i) {
            const float* c = kDistance[i];
            const long double lo = c[0], hi = kDistance[i + 1][0];
            long double value[n], node[n];
            for (int j = 0; j < n; ++j) {
                node[j] = std::cos(pi * (j + 0.5L) / n);
                const long double Y = lo + (node[j] + 1.0L) * 0.5L * (hi - lo);
                // The piece's slope stays above 0.003 per degree over [0, 5]:
                // Newton's method from the middle converges in a few steps.
                long double t = 2.5L;
                for (int k = 0; k < 40; ++k) {
                    const long double f = c[0] + t * (c[1] + t * (c[2] + t * static_cast<long double>(c[3])));
                    const long double slope = c[1] + t * (2.0L * c[2] + t * (3.0L * c[3]));
                    t -= (f - Y) / slope;
                }
                value[j] = t;
            }
            // Chebyshev coefficients, then the powers of v by T_{k+1} = 2 v T_k - T_{k-1}.
            long double power[n] = {}, previous[n] = {}, current[n] = {};
            previous[0] = 1.0L;
            current[1] = 1.0L;
            for (int k = 0; k < n; ++k) {
                long double sum = 0.0L;
                for (int j = 0; j < n; ++j)
                    sum += value[j] * std::cos(pi * k * (j + 0.5L) / n);
                const long double a = sum * (k == 0 ? 1.0L : 2.0L) / n;
                const long double* T = k == 0 ? previous : current;
                for (int m = 0; m < n; ++m)
                    power[m] += a * T[m];
                if (k > 0) {
                    long double next[n] = {};
                    for (int m = 0; m < n; ++m) {
                        next[m] -= previous[m];
                        if (m + 1 < n)
                            next[m + 1] += 2.0L * current[m];
                    }
                    for (int m = 0; m < n; ++m) {
                        previous[m] = current[m];
                        current[m] = next[m];
                    }
                }
            }
            scale[i] = static_cast<double>(2.0L / (hi - lo));
            for (int m = 0; m < n; ++m)
                coefficient[i][m] = static_cast<double>(power[m]);
        }
    }
};
const SInverseStart kInverseStart;

// The piece of a latitude in degrees within [0, 90] and t within it.
inline int PieceOf(double absLat, double* t)
{
    int i = static_cast<int>(absLat / 5.0);
    if (i > 18)
        i = 18;
    *t = absLat - 5.0 * i;
    return i;
}
} // namespace

CKvRobinson::CKvRobinson(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    m_lon0 = parameters[0];
    m_FE = parameters[1];
    m_FN = parameters[2];
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && std::isfinite(m_lon0) && std::isfinite(m_FE) &&
                        std::isfinite(m_FN);
    m_R = usable ? a : std::nan("");
    m_YPerNorthing = 1.0 / (kFYC * m_R);
    m_XDegreePerEasting = 1.0 / (kFXC * m_R * kDeg);
}

void CKvRobinson::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double t;
    const int i = PieceOf(std::fabs(lat), &t);
    const double X = Piece(kLength[i], t), Y = Piece(kDistance[i], t);
    *x = m_FE + kFXC * m_R * lambda * X;
    *y = m_FN + std::copysign(kFYC * m_R * Y, lat);
}

void CKvRobinson::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    double Y = std::fabs(y - m_FN) * m_YPerNorthing;
    if (!(Y <= 1.0 + 1e-15) || !std::isfinite(x)) {
        *lon = *lat = std::nan("");
        return;
    }
    double absLat, X;
    if (Y >= 1.0) {
        absLat = 90.0;
        X = kLength[18][0];
    } else {
        // The piece whose lower parallel lies at or below Y (Y grows with the
        // latitude): the table's piece of Y's bin, or the next one.
        int lo = kPieceOfBin[static_cast<int>(Y * kBins)];
        lo += kDistance[lo + 1][0] <= Y && lo < 17;
        const float* c = kDistance[lo];
        // One Newton step from the start, two on the last three pieces. The
        // piece's slope stays above 0.003 per degree and its second derivative
        // below 0.0008: a step from an error e leaves below 0.14 e^2, 3e-22
        // degree from pieces 0 to 14 and, after the second step, below 2e-20
        // from the others, far below the rounding of t.
        const double v = (Y - c[0]) * kInverseStart.scale[lo] - 1.0;
        double t = CKvMathKernel::Estrin<kStartDegree + 1>(v, kInverseStart.coefficient[lo]);
        t -= (Piece(c, t) - Y) / PieceSlope(c, t);
        if (lo >= 15)
            t -= (Piece(c, t) - Y) / PieceSlope(c, t);
        // Rounding of the six-figure pieces leaves gaps of a few 1e-8 between
        // them: a Y there belongs to the nearer end.
        t = t < 0.0 ? 0.0 : t > 5.0 ? 5.0 : t;
        absLat = 5.0 * lo + t;
        X = Piece(kLength[lo], t);
    }
    const double lambdaDeg = (x - m_FE) * m_XDegreePerEasting / X;
    if (!(std::fabs(lambdaDeg) <= 180.0 + 1e-9)) {
        *lon = *lat = std::nan("");
        return;
    }
    *lat = std::copysign(absLat, y - m_FN);
    *lon = CKvAngle::EdgeInverseLongitudeDegrees(lambdaDeg, m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvRobinson::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvRobinson::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R))
        return std::nan("");
    const double lambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double t;
    int i = PieceOf(std::fabs(lat), &t);
    if (i == 18) { // the pole: the slopes at the end of the last piece
        i = 17;
        t = 5.0;
    }
    // dE/dphi = 0.8487 R lambda X'(|phi|) sign(phi), dN/dphi = 1.3523 R Y'(|phi|).
    const double east = kFXC * lambda * PieceSlope(kLength[i], t) * (lat < 0.0 ? -1.0 : 1.0);
    const double north = kFYC * PieceSlope(kDistance[i], t);
    return std::atan2(-east, north) / kDeg;
}

void CKvRobinson::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfWidth = kFXC * m_R * kPi, halfHeight = kFYC * m_R;
    *x1 = m_FE - halfWidth;
    *y1 = m_FN - halfHeight;
    *x2 = m_FE + halfWidth;
    *y2 = m_FN + halfHeight;
}

// The method's names and parameters. ESRI and GDAL both write
// "Robinson" (GDAL with longitude_of_center); the EPSG registry has no such
// method.
const CKvMapProjData::STypeInfo CKvRobinson::TypeInfo = {
    CKvMapProjData::eRobinson,
    "ROBINSON_PROJECTION",
    nullptr,
    "Robinson",
    "Robinson",
    3,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "longitude_of_center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Robinson",
    "WE",
    {0.0, 0.0, 0.0},
    0,
    "Robinson",
    {"Robinson"},
    "+proj=robin",
    nullptr,
};
