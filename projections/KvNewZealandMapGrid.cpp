#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvAngle.h"

#include <complex>

namespace {

constexpr double kDeg = 3.141592653589793 / 180.0;
using Complex = std::complex<double>;

// Latitude offset (units of 1e5 arc-seconds) to isometric latitude offset.
const double kA[10] = {0.6399175073, -0.1358797613, 0.063294409, -0.02526853, 0.0117879,
                       -0.0055161,   0.0026906,     -0.001333,   0.00067,     -0.00034};
// Isometric latitude offset back to latitude offset.
const double kD[9] = {1.5627014243, 0.5185406398, -0.03333098, -0.1052906, -0.0368594,
                      0.007317,     0.01220,      0.00394,     -0.0013};
// The complex mapping and its polynomial inverse.
const Complex kB[6] = {{0.7557853228, 0.0},       {0.249204646, 0.003371507}, {-0.001541739, 0.041058560},
                       {-0.10162907, 0.01727609}, {-0.26623489, -0.36249218}, {-0.6870983, -1.1651967}};
const Complex kC[6] = {{1.3231270439, 0.0},       {-0.577245789, -0.007809598}, {0.508307513, -0.112208952},
                       {-0.15094762, 0.18200602}, {1.01418179, 1.64497696},     {1.9660549, 2.5127645}};

// sum over k = 1..count of c[k-1] x^k, by Horner's rule
template <class T, class C> T Polynomial(const C* c, int count, T x)
{
    T sum = c[count - 1];
    for (int k = count - 2; k >= 0; --k)
        sum = sum * x + c[k];
    return sum * x;
}

// Its derivative, sum over k of k c[k-1] x^(k-1).
double PolynomialSlope(const double* c, int count, double x)
{
    double sum = count * c[count - 1];
    for (int k = count - 1; k >= 1; --k)
        sum = sum * x + k * c[k - 1];
    return sum;
}

} // namespace

CKvNewZealandMapGrid::CKvNewZealandMapGrid(const CKvNewZealandMapGridProjection* d) : CKvEngine(*d)
{
    m_lambda0 = d->GetOriginLongitude();
    m_phi0 = d->GetOriginLatitude();
    m_FE = d->GetFalseEasting();
    m_FN = d->GetFalseNorthing();
}

CKvNewZealandMapGrid::CKvNewZealandMapGrid(const std::string& name, double originLongitude, double originLatitude,
                                           double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lambda0(originLongitude), m_phi0(originLatitude), m_FE(falseEasting),
      m_FN(falseNorthing)
{
}

void CKvNewZealandMapGrid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double dPhi = (lat - m_phi0) * 3600.0 * 1e-5;
    const Complex zeta(Polynomial(kA, 10, dPhi), CKvAngle::ReduceLongitudeDegrees(lon - m_lambda0) * kDeg);
    const Complex z = Polynomial(kB, 6, zeta);
    *x = m_FE + _a() * z.imag();
    *y = m_FN + _a() * z.real();
}

void CKvNewZealandMapGrid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const Complex z((y - m_FN) / _a(), (x - m_FE) / _a());
    Complex zeta = Polynomial(kC, 6, z);
    // Newton-Raphson on z = sum B_k zeta^k: two steps reach the grid's precision;
    // a third costs little and removes the polynomial inverse's residue entirely.
    for (int i = 0; i < 3; ++i) {
        Complex num = z, den = kB[0];
        Complex power = zeta; // zeta^(k-1) for k = 2
        for (int k = 2; k <= 6; ++k) {
            den += double(k) * kB[k - 1] * power;
            power *= zeta;
            num += double(k - 1) * kB[k - 1] * power;
        }
        zeta = num / den;
    }
    // The published polynomial for the latitude misses the forward's by up to
    // 6e-10 degree; one Newton step on the forward's own polynomial in dPhi (the
    // error squared: below rounding) makes the inverse exact to it (IOGP's 1 000
    // round trips within 6 mm).
    double dPhi = Polynomial(kD, 9, zeta.real());
    dPhi -= (Polynomial(kA, 10, dPhi) - zeta.real()) / PolynomialSlope(kA, 10, dPhi);
    *lat = m_phi0 + dPhi / (3600.0 * 1e-5);
    *lon = m_lambda0 + zeta.imag() / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(*lon);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvNewZealandMapGrid::GetOrigin(double* x, double* y) const
{
    *x = m_lambda0;
    *y = m_phi0;
}

void CKvNewZealandMapGrid::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lambda0, m_phi0, true, x1, y1, x2, y2);
}
