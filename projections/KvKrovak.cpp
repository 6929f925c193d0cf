#include "projections/KvKrovak.h"
#include "projections/KvAngle.h"

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
    m_t0 = std::tan(kPi / 4 + gamma0 / 2) * std::pow((1.0 + e * s) / (1.0 - e * s), e * m_B / 2) /
           std::pow(std::tan(kPi / 4 + m_phiC / 2), m_B);
    m_n = std::sin(m_phiP);
    m_r0 = kp * A / std::tan(m_phiP);
    m_rTerm = m_r0 * std::pow(std::tan(kPi / 4 + m_phiP / 2), m_n);
    m_sinAlpha = std::sin(m_alphaC);
    m_cosAlpha = std::cos(m_alphaC);
    m_xScale = xScale;
    m_yScale = yScale;
    m_sinRot = std::sin(xyPlaneRotation * kDeg);
    m_cosRot = std::cos(xyPlaneRotation * kDeg);
    m_FE = falseEasting;
    m_FN = falseNorthing;
}

void CKvKrovak::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, e = _e(), es = e * std::sin(phi);
    const double U =
        2.0 *
        (std::atan(m_t0 * std::pow(std::tan(phi / 2 + kPi / 4), m_B) / std::pow((1.0 + es) / (1.0 - es), e * m_B / 2)) -
         kPi / 4);
    const double V = -m_B * CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double T = std::asin(m_cosAlpha * std::sin(U) + m_sinAlpha * std::cos(U) * std::cos(V));
    const double D = std::asin(std::cos(U) * std::sin(V) / std::cos(T));
    const double theta = m_n * D;
    const double r = m_rTerm / std::pow(std::tan(T / 2 + kPi / 4), m_n);
    const double p = m_xScale * r * std::cos(theta); // southing
    const double q = m_yScale * r * std::sin(theta); // westing
    *x = p * m_cosRot - q * m_sinRot + m_FE;
    *y = p * m_sinRot + q * m_cosRot + m_FN;
}

void CKvKrovak::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double X = (dx * m_cosRot + dy * m_sinRot) / m_xScale;  // southing
    const double Y = (-dx * m_sinRot + dy * m_cosRot) / m_yScale; // westing
    const double r = std::sqrt(X * X + Y * Y);
    const double theta = std::atan2(Y, X);
    const double D = theta / m_n;
    const double T = 2.0 * (std::atan(std::pow(m_r0 / r, 1.0 / m_n) * std::tan(kPi / 4 + m_phiP / 2)) - kPi / 4);
    const double U = std::asin(m_cosAlpha * std::sin(T) - m_sinAlpha * std::cos(T) * std::cos(D));
    const double V = std::asin(std::cos(T) * std::sin(D) / std::cos(U));
    *lon = (m_lambda0 - V / m_B) / kDeg;
    // The latitude from the Gaussian sphere's: the guidance note iterates
    // tan(pi/4 + phi/2) ((1 - e sin phi) / (1 + e sin phi))^(e/2) = k, that is exp(psi) = k
    // for the isometric latitude psi; sinh psi = (k - 1/k) / 2 is the tangent of the
    // conformal latitude, and Newton's method gives the same root.
    const double k = std::pow(m_t0, -1.0 / m_B) * std::pow(std::tan(U / 2 + kPi / 4), 1.0 / m_B);
    const double phi = std::atan(CKvConformalLatitude::Tau((k - 1.0 / k) / 2.0, _e()));
    *lat = phi / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(*lon);
    CKvAngle::GuardInverse(x, y, lon, lat);
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
