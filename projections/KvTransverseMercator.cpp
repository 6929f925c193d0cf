#include "projections/KvTransverseMercator.h"
#include "projections/KvAngle.h"

#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"
#include "projections/KvTransverseMercatorSeries.h"

#include <cmath>

namespace {
KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvTransverseMercator::SFigures, CKvTransverseMercator::Forward<true>)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvTransverseMercator::SFigures, CKvTransverseMercator::Inverse<true>)

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
// Half a meridian, in round metres, as the northing ranges below use it.
constexpr double kHalfMeridian = 20000000.0;
constexpr double kQuarterMeridian = 10000000.0;
} // namespace

CKvTransverseMercator::CKvTransverseMercator(const CKvTransverseMercatorProjection* definition) : CKvEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvTransverseMercator::CKvTransverseMercator(const std::string& name, double k0, double centralMeridian,
                                             double originLatitude, double falseEasting, double falseNorthing,
                                             const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(k0, centralMeridian, originLatitude, falseEasting, falseNorthing);
}

void CKvTransverseMercator::_init(double k0, double centralMeridian, double originLatitude, double falseEasting,
                                  double falseNorthing)
{
    m_a = _a();
    m_b = _b();
    m_k0 = k0;
    m_f = _f();
    m_FE = falseEasting;
    m_FN = falseNorthing;
    m_lambda0 = centralMeridian;
    m_phi0 = originLatitude;
    _Coeffs();
    if (GetName()[0] == '\0')
        _setName(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eNonUTM));
    m_bLocal = CKvMapProjection::IsLocal(GetName());

    SFigures& f = m_fast;
    f.lambda0 = m_lambda0;
    f.R = _radius();
    f.invR = 1.0 / f.R;
    f.FE = m_FE;
    // The Krueger sums as sin 2x times a cubic in cos 2x (elements 1..4 used).
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_cbg + 1, f.cbg);
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_cgb + 1, f.cgb);
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_gtu + 1, f.gtu);
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_gut + 1, f.gut);
    f.fast = !m_bLocal && std::isfinite(f.R) && f.R > 0.0 && std::isfinite(f.invR) && std::isfinite(m_FE) &&
             std::isfinite(m_FN) && std::isfinite(m_lambda0) && m_n >= 0.0 && m_n < 0.01;
    // The origin's northing, by the path its points take.
    m_y0 = 0.0;
    if (m_phi0 != 0.0) {
        double x0;
        if (!(f.fast && Forward<false>(f, m_lambda0, m_phi0, x0, m_y0)))
            _Geo2Proj(m_lambda0, m_phi0, m_FE, 0.0, &x0, &m_y0);
    }
    f.FN = m_FN;
    f.y0 = m_y0;
}

void CKvTransverseMercator::_Coeffs()
{
    const double n = m_f / (2.0 - m_f);
    m_n = n;
    m_Q = n * n * (0.25 + n * n / 64.0);
    m_cbg[0] = m_cgb[0] = m_gtu[0] = m_gut[0] = 0.0;
    // Geodetic to Gaussian latitude and back.
    m_cbg[1] = n * (-2.0 + n * (2.0 / 3.0 + n * (4.0 / 3.0 - n * 82.0 / 45.0)));
    m_cbg[2] = n * n * (5.0 / 3.0 + n * (-16.0 / 15.0 - n * 13.0 / 9.0));
    m_cbg[3] = n * n * n * (-26.0 / 15.0 + n * 34.0 / 21.0);
    m_cbg[4] = n * n * n * n * 1237.0 / 630.0;
    m_cgb[1] = n * (2.0 + n * (-2.0 / 3.0 + n * (-2.0 + n * 116.0 / 45.0)));
    m_cgb[2] = n * n * (7.0 / 3.0 + n * (-8.0 / 5.0 - n * 227.0 / 45.0));
    m_cgb[3] = n * n * n * (56.0 / 15.0 - n * 136.0 / 35.0);
    m_cgb[4] = n * n * n * n * 4279.0 / 630.0;
    // Gaussian to projected (Krüger's alpha) and back (beta, with the sign folded in).
    m_gtu[1] = n * (0.5 + n * (-2.0 / 3.0 + n * (5.0 / 16.0 + n * 41.0 / 180.0)));
    m_gtu[2] = n * n * (13.0 / 48.0 + n * (-3.0 / 5.0 + n * 557.0 / 1440.0));
    m_gtu[3] = n * n * n * (61.0 / 240.0 - n * 103.0 / 140.0);
    m_gtu[4] = n * n * n * n * 49561.0 / 161280.0;
    m_gut[1] = n * (-0.5 + n * (2.0 / 3.0 + n * (-37.0 / 96.0 + n / 360.0)));
    m_gut[2] = n * n * (-1.0 / 48.0 + n * (-1.0 / 15.0 + n * 437.0 / 1440.0));
    m_gut[3] = n * n * n * (-17.0 / 480.0 + n * 37.0 / 840.0);
    m_gut[4] = -n * n * n * n * 4397.0 / 161280.0;
}

double CKvTransverseMercator::_Csin(const double* c, int count, double sinX, double cosX)
{
    const double twoCos = 2.0 * cosX;
    double b1 = 0.0, b2 = 0.0;
    for (int k = count; k >= 1; --k) {
        const double b = c[k] + twoCos * b1 - b2;
        b2 = b1;
        b1 = b;
    }
    return b1 * sinX;
}

namespace {

// sinh x and cosh x from one exponential, or by the series of sinh where the
// exponentials would cancel.
void SinhCosh(double x, double& sinhX, double& coshX)
{
    if (std::fabs(x) < 0.5) {
        sinhX = CKvMathKernel::SinhSmall(x);
        coshX = std::sqrt(1.0 + sinhX * sinhX);
    } else {
        const double E = std::exp(x);
        sinhX = (E - 1.0 / E) / 2.0;
        coshX = (E + 1.0 / E) / 2.0;
    }
}

} // namespace

double CKvTransverseMercator::_radius() const
{
    return m_a + m_a * (m_k0 - (1.0 + m_n) + m_k0 * m_Q) / (1.0 + m_n);
}

void CKvTransverseMercator::_Geo2Proj(double lon, double lat, double X0, double Y0, double* x, double* y) const
{
    if (m_bLocal) {
        *x = lon;
        *y = lat;
        return;
    }
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double R = _radius();
    // The southern hemisphere by symmetry: work on |lat| and mirror the northing.
    const double phi = std::fabs(lat) * kDeg;
    // The Gaussian latitude chi = phi + delta from the double angle of phi, and
    // its sine and cosine by turning phi's through the small delta.
    double sinPhi, cosPhi, sinChi, cosChi;
    CKvMathKernel::SinCosAny(phi, sinPhi, cosPhi);
    const double delta = _Csin(m_cbg, 4, 2.0 * sinPhi * cosPhi, (cosPhi - sinPhi) * (cosPhi + sinPhi));
    if (std::fabs(delta) <= CKvMathKernel::SinCosSmallLimit) {
        double sinD, cosD;
        CKvMathKernel::SinCosSmall(delta, sinD, cosD);
        sinChi = sinPhi * cosD + cosPhi * sinD;
        cosChi = cosPhi * cosD - sinPhi * sinD;
    } else {
        sinChi = std::sin(phi + delta);
        cosChi = std::cos(phi + delta);
    }
    const double dLambda = (lon - m_lambda0) * kDeg;
    double sinL, cosL;
    CKvMathKernel::SinCosAny(dLambda, sinL, cosL);
    // u = atan2(sin chi, cos dl cos chi) and v = atanh(w), w = sin dl cos chi;
    // the double angles of both, which Krueger's sum needs, come from the same
    // components: no further sine or hyperbolic function.
    const double num = sinChi, den = cosL * cosChi, w = sinL * cosChi;
    const double u = std::atan2(num, den);
    const double v = std::atanh(w);
    const double r2 = num * num + den * den, oneMinusW2 = (1.0 - w) * (1.0 + w);
    double du, dv;
    CKvTransverseMercatorSeries::ChebyshevSum(m_fast.gtu, 2.0 * num * den / r2, (den - num) * (den + num) / r2, 2.0 * w / oneMinusW2,
           (1.0 + w * w) / oneMinusW2, du, dv);
    const double yP = R * (u + du);
    *x = X0 + R * (v + dv);
    double t = lat > 90.0 ? kHalfMeridian - yP : yP;
    if (lat >= -90.0 && lat < 0.0)
        t = -t;
    if (lat < -90.0)
        t = t - kHalfMeridian;
    *y = Y0 + t;
}

void CKvTransverseMercator::_Proj2Geo(double x, double y, double X0, double Y0, double* lon, double* lat) const
{
    if (m_bLocal) {
        *lon = x;
        *lat = y;
        return;
    }
    const double R = _radius();
    const double dy = y - Y0;
    double u = std::fabs(dy) / R;
    double v = (x - X0) / R;
    double du, dv, sin2U, cos2U, sinh2V, cosh2V;
    CKvMathKernel::SinCosAny(2.0 * u, sin2U, cos2U);
    SinhCosh(2.0 * v, sinh2V, cosh2V);
    CKvTransverseMercatorSeries::ChebyshevSum(m_fast.gut, sin2U, cos2U, sinh2V, cosh2V, du, dv);
    u += du;
    v += dv;
    // dl = atan2(sinh v, cos u) and chi = atan2(sin u cos dl, cos u); cos dl is
    // cos u over the hypotenuse, and chi's double angle comes from the same
    // components.
    double sinU, cosU, sinhV, coshV;
    CKvMathKernel::SinCosAny(u, sinU, cosU);
    SinhCosh(v, sinhV, coshV);
    const double dLambda = std::atan2(sinhV, cosU);
    const double cosL = cosU / std::sqrt(sinhV * sinhV + cosU * cosU);
    const double A = sinU * cosL, B = cosU, h2 = A * A + B * B;
    const double chi = std::atan2(A, B);
    const double sin2Chi = 2.0 * A * B / h2, cos2Chi = (B - A) * (B + A) / h2;
    const double delta = _Csin(m_cgb, 4, sin2Chi, cos2Chi);
    // Both latitude series stop at n^4 and miss each other by up to 2.4e-11
    // degree. One step of the fixed point phi = chi - Csin(cbg, 2 phi) puts the
    // latitude on the forward's own series (it contracts by the series' slope,
    // about 4n), so that a point carried back and forth does not creep. sin 2phi
    // and cos 2phi are those of 2chi turned by 2 delta (small for every
    // terrestrial figure; beyond, the series' latitude as it is).
    double phi = chi + delta;
    if (std::fabs(2.0 * delta) <= CKvMathKernel::SinCosSmallLimit) {
        double sinD, cosD;
        CKvMathKernel::SinCosSmall(2.0 * delta, sinD, cosD);
        const double sin2Phi = sin2Chi * cosD + cos2Chi * sinD, cos2Phi = cos2Chi * cosD - sin2Chi * sinD;
        phi = chi - _Csin(m_cbg, 4, sin2Phi, cos2Phi);
    }
    phi /= kDeg;
    if (dy >= kQuarterMeridian)
        *lat = phi + 180.0;
    else if (dy >= 0.0)
        *lat = phi;
    else if (dy > -kQuarterMeridian)
        *lat = -phi;
    else
        *lat = -180.0 - phi;
    *lon = m_lambda0 + dLambda / kDeg;
}

void CKvTransverseMercator::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fast && Forward<false>(m_fast, lon, lat, *x, *y))
        return;
    _Geo2Proj(lon, lat, m_FE, m_FN, x, y);
    *y -= m_y0;
}

void CKvTransverseMercator::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fast && Inverse<false>(m_fast, x, y, *lon, *lat))
        return;
    _Proj2Geo(x, y + m_y0, m_FE, m_FN, lon, lat);
}

void CKvTransverseMercator::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                     std::size_t latStride, double* x, std::size_t xStride, double* y,
                                     std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fast, n, lon, lonStride, lat, latStride, x, xStride, y,
                               yStride, [this](double a, double b, double* u, double* v) {
                                   CKvTransverseMercator::Geo2Proj(a, b, u, v);
                               });
}

void CKvTransverseMercator::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                     std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                     std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fast, n, x, xStride, y, yStride, lon, lonStride, lat,
                               latStride, [this](double a, double b, double* u, double* v) {
                                   CKvTransverseMercator::Proj2Geo(a, b, u, v);
                               });
}

void CKvTransverseMercator::GetOrigin(double* x, double* y) const
{
    *x = m_lambda0;
    *y = m_phi0;
}

double CKvTransverseMercator::GetConvergence(double lon, double lat) const
{
    if (m_bLocal)
        return 0.0;
    // Beyond the poles the series would give a finite angle of no meridian.
    if (!CKvAngle::IsLatitude(lat))
        return std::nan("");
    return CKvTransverseMercatorSeries::Convergence(m_k0 * m_a, m_k0 * m_b, (lon - m_lambda0) * kDeg, lat * kDeg);
}

double CKvTransverseMercator::GetScaleFactor(double lon, double lat) const
{
    return CKvTransverseMercatorSeries::ScaleFactor(m_k0, m_k0 * m_a, m_k0 * m_b, (lon - m_lambda0) * kDeg, lat * kDeg);
}

void CKvTransverseMercator::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    if (m_bLocal) {
        *x1 = *y1 = 0.0;
        *x2 = *y2 = 10000.0;
        return;
    }
    _boxAround(m_lambda0, m_phi0, false, x1, y1, x2, y2);
}
