#include "projections/KvTransverseMercatorJHS.h"

#include "projections/KvAngle.h"

#include "catalogue/KvFloatCompareRel.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvTransverseMercatorSeries.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvTransverseMercatorJHS::CKvTransverseMercatorJHS(const CKvTransverseMercatorProjection* definition)
    : CKvEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvTransverseMercatorJHS::CKvTransverseMercatorJHS(const std::string& name, double k0, double centralMeridian,
                                                   double originLatitude, double falseEasting, double falseNorthing,
                                                   const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(k0, centralMeridian, originLatitude, falseEasting, falseNorthing);
}

void CKvTransverseMercatorJHS::_init(double k0, double centralMeridian, double originLatitude, double falseEasting,
                                     double falseNorthing)
{
    m_a = _a();
    m_b = _b();
    m_k0 = k0;
    m_f = _f();
    m_FE = falseEasting;
    m_FN = falseNorthing;
    m_lambda0 = centralMeridian * kDeg;
    m_phi0 = originLatitude * kDeg;
    m_e = _e();
    m_n = m_f / (2.0 - m_f);
    m_A1 = m_a / (1.0 + m_n) * (1.0 + m_n * m_n * (0.25 + m_n * m_n / 64.0)); // rectifying radius
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, true, m_n, m_h);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, false, m_n, m_hp);

    if (m_phi0 == 0.0) {
        m_M0 = 0.0;
    } else if (CKvFloatCompareRel::Close(m_phi0, kPi / 2)) {
        m_M0 = m_A1 * kPi / 2;
    } else if (CKvFloatCompareRel::Close(m_phi0, -kPi / 2)) {
        m_M0 = -m_A1 * kPi / 2;
    } else {
        const double Q0 = std::asinh(std::tan(m_phi0)) - m_e * std::atanh(m_e * std::sin(m_phi0));
        const double xi0 = std::asin(std::sin(std::atan(std::sinh(Q0))));
        m_M0 = m_A1 * (xi0 + CKvTransverseMercatorSeries::SumSin(m_h, xi0));
    }

    if (GetName()[0] == '\0')
        _setName(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eNonUTM));
    m_bLocal = CKvMapProjection::IsLocal(GetName());
}

void CKvTransverseMercatorJHS::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_bLocal) {
        *x = lon;
        *y = lat;
        return;
    }
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    const double dLambda = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);

    // The JHS steps through exact identities, to spare transcendental functions:
    // tan beta = sinh Q (the conformal latitude), eta' = atanh(cos beta sin dl) =
    // asinh(sin dl / D) and xi' = asin(sin beta cosh eta') = atan2(tan beta, cos dl)
    // with D = sqrt(tan^2 beta + cos^2 dl); the atan2 form carries the rule for
    // points more than a quarter turn from the central meridian.
    const double tanBeta = CKvConformalLatitude::TauPrime(std::tan(phi), m_e);
    const double sdl = std::sin(dLambda), cdl = std::cos(dLambda);
    const double D = std::sqrt(tanBeta * tanBeta + cdl * cdl);
    double xiP = std::atan2(tanBeta, cdl);
    if (tanBeta == 0.0 && cdl < 0.0)
        xiP = -kPi; // on the equator beyond a quarter turn the rule takes the southern side
    const double sinhEta = sdl / D, coshEta = std::sqrt(1.0 + tanBeta * tanBeta) / D;
    const double etaP = std::asinh(sinhEta);
    const double sinXi = tanBeta / D, cosXi = cdl / D;

    double xi, eta;
    CKvTransverseMercatorSeries::Apply(m_h, xiP, etaP, 2.0 * sinXi * cosXi, cosXi * cosXi - sinXi * sinXi,
                                       2.0 * sinhEta * coshEta, coshEta * coshEta + sinhEta * sinhEta, 1.0, xi, eta);
    *x = m_FE + m_k0 * m_A1 * eta;
    *y = m_FN + m_k0 * (m_A1 * xi - m_M0);
}

void CKvTransverseMercatorJHS::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_bLocal) {
        *lon = x;
        *lat = y;
        return;
    }
    const double eta = (x - m_FE) / (m_k0 * m_A1);
    const double xi = (y - m_FN + m_k0 * m_M0) / (m_k0 * m_A1);
    const double E = std::exp(2.0 * eta);
    double xiP, etaP;
    CKvTransverseMercatorSeries::Apply(m_hp, xi, eta, std::sin(2.0 * xi), std::cos(2.0 * xi), (E - 1.0 / E) / 2.0,
                                       (E + 1.0 / E) / 2.0, -1.0, xiP, etaP);

    // beta = asin(sin xi' / cosh eta'), so tan beta = sin xi' / sqrt(sinh^2 eta' + cos^2 xi');
    // the geodetic latitude follows from the conformal one by Newton's method on
    // the same equation that the JHS formulas iterate.
    const double sinXi = std::sin(xiP), cosXi = std::cos(xiP), sinhEta = std::sinh(etaP);
    const double r = std::sqrt(sinhEta * sinhEta + cosXi * cosXi);
    const double tanBeta = sinXi / r;
    const double phi = std::atan(CKvConformalLatitude::Tau(tanBeta, m_e));

    // asin(tanh eta' / cos beta) = asin(sinh eta' / r)
    const double s = std::asin(sinhEta / r);
    double lambda;
    if (xi >= -kPi / 2 && xi <= kPi / 2)
        lambda = m_lambda0 + s;
    else
        lambda = eta >= 0.0 ? m_lambda0 + kPi - s : m_lambda0 - kPi - s;
    *lon = lambda / kDeg;
    *lat = phi / kDeg;
}

void CKvTransverseMercatorJHS::GetOrigin(double* x, double* y) const
{
    *x = m_lambda0 / kDeg;
    *y = m_phi0 / kDeg;
}

double CKvTransverseMercatorJHS::GetConvergence(double lon, double lat) const
{
    if (m_bLocal)
        return 0.0;
    return CKvTransverseMercatorSeries::Convergence(m_k0 * m_a, m_k0 * m_b, lon * kDeg - m_lambda0, lat * kDeg);
}

double CKvTransverseMercatorJHS::GetScaleFactor(double lon, double lat) const
{
    return CKvTransverseMercatorSeries::ScaleFactor(m_k0, m_k0 * m_a, m_k0 * m_b, lon * kDeg - m_lambda0, lat * kDeg);
}

void CKvTransverseMercatorJHS::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    if (m_bLocal) {
        *x1 = *y1 = 0.0;
        *x2 = *y2 = 10000.0;
        return;
    }
    _boxAround(m_lambda0 / kDeg, m_phi0 / kDeg, false, x1, y1, x2, y2);
}
