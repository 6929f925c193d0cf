#include "projections/KvKrovak.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"

#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvKrovak::CKvKrovak(const CKvKrovakProjection* d) : CKvEngine(*d)
{
    _init(d->GetScaleAtPseudoParallel(), d->GetPseudoParallel(), d->GetCenterLongitude(), d->GetCenterLatitude(),
          d->GetAzimuth(), d->GetXYPlaneRotation(), d->GetXScale(), d->GetYScale(), d->GetFalseEasting(),
          d->GetFalseNorthing());
}

CKvKrovak::CKvKrovak(const std::string& name, double kp, double pseudoParallel, double centerLongitude,
                     double centerLatitude, double azimuth, double xyPlaneRotation, double xScale, double yScale,
                     double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(kp, pseudoParallel, centerLongitude, centerLatitude, azimuth, xyPlaneRotation, xScale, yScale, falseEasting,
          falseNorthing);
}

void CKvKrovak::_init(double kp, double pseudoParallel, double centerLongitude, double centerLatitude, double azimuth,
                      double xyPlaneRotation, double xScale, double yScale, double falseEasting, double falseNorthing)
{
    m_lambda0 = centerLongitude * kDeg;
    m_phiC = centerLatitude * kDeg;
    m_lonC = centerLongitude;
    m_latC = centerLatitude;
    m_alphaC = azimuth * kDeg;
    m_phiP = pseudoParallel * kDeg;
    const double e = _e(), e2 = _e2(), s = std::sin(m_phiC), c = std::cos(m_phiC);
    const double A = _a() * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
    m_B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
    const double gamma0 = std::asin(s / m_B);
    const double t0 = std::tan(kPi / 4 + gamma0 / 2) * std::pow((1.0 + e * s) / (1.0 - e * s), e * m_B / 2) /
                      std::pow(std::tan(kPi / 4 + m_phiC / 2), m_B);
    m_lnT0 = std::log(t0);
    m_n = std::sin(m_phiP);
    const double r0 = kp * A / std::tan(m_phiP);
    m_lnTanP = std::log(std::tan(kPi / 4 + m_phiP / 2));
    m_rTerm = r0 * std::pow(std::tan(kPi / 4 + m_phiP / 2), m_n);
    m_invB = 1.0 / m_B;
    m_invN = 1.0 / m_n;
    m_invR0 = 1.0 / r0;
    m_sinAlpha = std::sin(m_alphaC);
    m_cosAlpha = std::cos(m_alphaC);
    m_inverse = CKvConformalLatitude::MakeInverse(e);
    m_xScale = xScale;
    m_yScale = yScale;
    m_sinRot = std::sin(xyPlaneRotation * kDeg);
    m_cosRot = std::cos(xyPlaneRotation * kDeg);
    m_FE = falseEasting;
    m_FN = falseNorthing;

    SFigures& f = m_fast;
    f.e = e;
    f.B = m_B;
    f.invB = m_invB;
    f.lnT0 = m_lnT0;
    f.lambda0 = m_lambda0;
    f.sinAlpha = m_sinAlpha;
    f.cosAlpha = m_cosAlpha;
    f.n = m_n;
    f.invN = m_invN;
    f.rTerm = m_rTerm;
    f.invR0 = m_invR0;
    f.lnTanP = m_lnTanP;
    f.xScale = xScale;
    f.yScale = yScale;
    f.invXScale = 1.0 / xScale;
    f.invYScale = 1.0 / yScale;
    f.sinRot = m_sinRot;
    f.cosRot = m_cosRot;
    f.FE = falseEasting;
    f.FN = falseNorthing;
    f.inverse = m_inverse;
    const double figures[] = {f.B, f.invB, f.lnT0, f.lambda0, f.sinAlpha, f.cosAlpha, f.invN, f.rTerm, f.invR0,
                              f.lnTanP, f.xScale, f.yScale, f.invXScale, f.invYScale, f.sinRot, f.cosRot, f.FE, f.FN};
    bool finite = true;
    for (double v : figures)
        finite = finite && std::isfinite(v);
    const bool cone = f.n > 0.0 && f.n <= 1.0 && f.rTerm > 0.0 && f.invR0 > 0.0;
    f.fastForward = finite && cone && e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit;
    f.fastInverse = f.fastForward && f.inverse.series;
}

void CKvKrovak::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fastForward && Forward(m_fast, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    // The Gaussian sphere's latitude U: tan(pi/4 + U/2) = t0 exp(B psi), so that its
    // isometric latitude is ln t0 + B psi, sin U = tanh and cos U = sech of it.
    double sinU, cosU;
    CKvConformalLatitude::SinCosFromIsometric(m_lnT0 + m_B * CKvConformalLatitude::Isometric(lat * kDeg, _e()),
                                              sinU, cosU);
    double sinV, cosV;
    CKvMathKernel::SinCosAny(-m_B * CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0), sinV, cosV);
    // The point turned about the cone's axis: (cos T cos D, cos T sin D, sin T).
    const double sinT = m_cosAlpha * sinU + m_sinAlpha * cosU * cosV;
    const double cosTcosD = m_cosAlpha * cosU * cosV - m_sinAlpha * sinU;
    const double cosTsinD = cosU * sinV;
    const double cosT = std::sqrt(cosTcosD * cosTcosD + cosTsinD * cosTsinD);
    // D = asin(cos U sin V / cos T), within +-90 degrees as the guidance note takes it.
    const double D = std::atan2(cosTsinD, std::fabs(cosTcosD));
    // r = rTerm / tan^n(pi/4 + T/2), tan(pi/4 + T/2) = (1 + sin T) / cos T = cos T / (1 - sin T),
    // each form where it does not cancel.
    const double cotangent = sinT >= 0.0 ? cosT / (1.0 + sinT) : (1.0 - sinT) / cosT;
    const double r = m_rTerm * std::pow(cotangent, m_n);
    double sinTheta, cosTheta;
    CKvMathKernel::SinCosAny(m_n * D, sinTheta, cosTheta);
    const double p = m_xScale * r * cosTheta; // southing
    const double q = m_yScale * r * sinTheta; // westing
    *x = p * m_cosRot - q * m_sinRot + m_FE;
    *y = p * m_sinRot + q * m_cosRot + m_FN;
}

void CKvKrovak::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fastInverse && Inverse(m_fast, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE, dy = y - m_FN;
    const double X = (dx * m_cosRot + dy * m_sinRot) / m_xScale;  // southing
    const double Y = (-dx * m_sinRot + dy * m_cosRot) / m_yScale; // westing
    const double r = std::sqrt(X * X + Y * Y);
    const double D = std::atan2(Y, X) * m_invN;
    // T's isometric latitude: tan(pi/4 + T/2) = (r0 / r)^(1/n) tan(pi/4 + phiP/2); r / r0
    // is near 1 on the map, where its logarithm keeps its relative precision.
    double sinT, cosT;
    CKvConformalLatitude::SinCosFromIsometric(m_lnTanP - std::log(r * m_invR0) * m_invN, sinT, cosT);
    double sinD, cosD;
    CKvMathKernel::SinCosAny(D, sinD, cosD);
    // The point turned back: (cos U cos V, cos U sin V, sin U).
    const double sinU = m_cosAlpha * sinT - m_sinAlpha * cosT * cosD;
    const double cosUcosV = m_cosAlpha * cosT * cosD + m_sinAlpha * sinT;
    const double cosUsinV = cosT * sinD;
    const double cosU = std::sqrt(cosUcosV * cosUcosV + cosUsinV * cosUsinV);
    // V = asin(cos T sin D / cos U), within +-90 degrees as the guidance note takes it.
    const double V = std::atan2(cosUsinV, std::fabs(cosUcosV));
    *lon = (m_lambda0 - V * m_invB) / kDeg;
    // The latitude from the Gaussian sphere's: the guidance note iterates
    // tan(pi/4 + phi/2) ((1 - e sin phi) / (1 + e sin phi))^(e/2) = k, that is
    // exp(psi) = k for the isometric latitude psi = (ln tan(pi/4 + U/2) - ln t0) / B,
    // and sinh psi is the tangent of the conformal latitude: Karney's series
    // takes it to the geodetic latitude in closed form (Newton's method on a
    // figure beyond the series).
    const double isometricU = sinU >= 0.0 ? std::log((1.0 + sinU) / cosU) : -std::log((1.0 - sinU) / cosU);
    *lat = CKvConformalLatitude::Latitude(m_inverse, std::sinh((isometricU - m_lnT0) * m_invB)) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(*lon);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvKrovak::SFigures, CKvKrovak::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvKrovak::SFigures, CKvKrovak::Inverse)

} // namespace

void CKvKrovak::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                         std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fastForward, n, lon, lonStride, lat, latStride, x, xStride,
                               y, yStride,
                               [this](double a, double b, double* u, double* v) { CKvKrovak::Geo2Proj(a, b, u, v); });
}

void CKvKrovak::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                         double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fastInverse, n, x, xStride, y, yStride, lon, lonStride, lat,
                               latStride,
                               [this](double a, double b, double* u, double* v) { CKvKrovak::Proj2Geo(a, b, u, v); });
}

void CKvKrovak::GetOrigin(double* x, double* y) const
{
    *x = m_lonC;
    *y = m_latC;
}

void CKvKrovak::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lambda0 / kDeg, m_phiC / kDeg, true, x1, y1, x2, y2);
}
