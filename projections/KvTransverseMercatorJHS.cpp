#include "projections/KvTransverseMercatorJHS.h"

#include "projections/KvAngle.h"

#include "catalogue/KvFloatCompareRel.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"
#include "projections/KvTransverseMercatorSeries.h"

#include <cmath>


namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
constexpr double kDegreesPerRadian = 180.0 / kPi;
// sqrt(1 + s^2) - 1 = s^2 (1/2 - s^2/8 + s^4/16 - 5 s^6/128 + 7 s^8/256 - ...)
constexpr double kSqrtOnePlusMinusOne[5] = {0.5, -1.0 / 8, 1.0 / 16, -5.0 / 128, 7.0 / 256};
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
    m_lon0 = centralMeridian;
    m_lat0 = originLatitude;
    m_e = _e();
    m_n = m_f / (2.0 - m_f);
    m_A1 = m_a / (1.0 + m_n) * (1.0 + m_n * m_n * (0.25 + m_n * m_n / 64.0)); // rectifying radius
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, true, m_n, m_h);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, false, m_n, m_hp);
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_h, m_hPoly);
    CKvTransverseMercatorSeries::ChebyshevFromSines(m_hp, m_hpPoly);

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

    m_inverse = CKvConformalLatitude::MakeInverse(m_e);
    m_invScale = 1.0 / (m_k0 * m_A1);
    CKvMathKernel::EccentricSinhSeries(m_e, m_sig);
    m_fastForward = m_e >= 0.0 && m_e <= CKvMathKernel::EccentricSinhLimit;
    m_fastInverse = m_fastForward && m_inverse.series;

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
    if (!m_fastForward || !_forwardFast<false>(lon, lat, *x, *y))
        _forwardGeneral(lon, lat, x, y);
}

void CKvTransverseMercatorJHS::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_bLocal) {
        *lon = x;
        *lat = y;
        return;
    }
    if (!m_fastInverse || !_inverseFast<false>(x, y, *lon, *lat))
        _inverseGeneral(x, y, lon, lat);
}

// The forward formulas of the general path, rearranged so that no large angle
// comes out of a transcendental call: tan chi = (sqrt(1 + s^2) sin phi - s) / cos phi
// with s = sinh(e atanh(e sin phi)) by its series, and
// xi' = atan2(tan chi, cos dl) = phi + atan2(sin(xi' - phi), cos(xi' - phi)),
// both multiplied by cos^2 phi; 1 - cos dl comes from its own series, so that
// nothing cancels near the central meridian.
template <bool Vector>
KVCART_ALWAYS_INLINE bool CKvTransverseMercatorJHS::_forwardFast(double lon, double lat, double& x, double& y) const
{
    const double phi = lat * kDeg;
    const double dLambda = lon * kDeg - m_lambda0;
    // Both angles lie within a quarter turn on the path: their sines by the
    // series with no reduction, cos phi as the sine of the colatitude, and
    // 1 - cos dl = 2 sin^2(dl / 2) (the halving exact), so that nothing cancels
    // near the central meridian.
    double sphi, cphi;
    CKvMathKernel::SinCosHalfPi(phi, sphi, cphi);
    const double sdl = CKvMathKernel::SinHalfPi(dLambda), sHalf = CKvMathKernel::SinHalfPi(0.5 * dLambda);
    const double vdl = 2.0 * sHalf * sHalf, cdl = 1.0 - vdl;
    // s = sinh(e atanh(e sin phi)) as one odd series in e sin phi, and
    // sqrt(1 + s^2) - 1 by its own: no division and no square root on the way.
    const double z = m_e * sphi;
    const double sig = z * CKvMathKernel::Estrin<CKvMathKernel::EccentricSinhTerms>(z * z, m_sig);
    const double sig2 = sig * sig;
    const double q1m1 = sig2 * CKvMathKernel::Estrin<5>(sig2, kSqrtOnePlusMinusOne);
    const double tanChiCos = (1.0 + q1m1) * sphi - sig; // tan chi cos phi
    const double cc = cdl * cphi;
    // Everything below is multiplied by cos phi >= 0: D cos phi and its reciprocal.
    const double inv = 1.0 / std::sqrt(tanChiCos * tanChiCos + cc * cc);
    const double num = cphi * (sphi * (q1m1 + vdl) - sig);
    const double den = cc * cphi + tanChiCos * sphi;
    const double sinhEta = sdl * cphi * inv, coshEta = std::sqrt(cphi * cphi + tanChiCos * tanChiCos) * inv;
    // Small angles by their series; beyond the series' reach the scalar form calls
    // libm and the vector form hands the point to the scalar one, so that both
    // give the same bits.
    const double t = num / den;
    const bool seriesXi = (den > 0.0) & (std::fabs(t) <= CKvMathKernel::AtanSmallLimit);
    const bool seriesEta = std::fabs(sinhEta) <= CKvMathKernel::AsinSmallLimit;
    double xiP, etaP;
    if constexpr (Vector) {
        xiP = phi + CKvMathKernel::AtanSeries(t);
        etaP = CKvMathKernel::AsinhSmall(sinhEta);
    } else {
        // AtanSeries' choice taken as a branch: one series evaluated, the same bits.
        const bool tinyXi = std::fabs(t) <= CKvMathKernel::AtanTinyLimit;
        xiP = phi + (!seriesXi ? std::atan2(num, den)
                     : tinyXi  ? CKvMathKernel::AtanTiny(t)
                               : CKvMathKernel::AtanSmall(t));
        etaP = seriesEta ? CKvMathKernel::AsinhSmall(sinhEta) : std::asinh(sinhEta);
    }
    const double sinXi = tanChiCos * inv, cosXi = cc * inv;
    double xi, eta;
    CKvTransverseMercatorSeries::ApplyChebyshev(m_hPoly, xiP, etaP, 2.0 * sinXi * cosXi, cosXi * cosXi - sinXi * sinXi,
                                                2.0 * sinhEta * coshEta, coshEta * coshEta + sinhEta * sinhEta, 1.0,
                                                xi, eta);
    x = m_FE + m_k0 * m_A1 * eta;
    y = m_FN + m_k0 * (m_A1 * xi - m_M0);
    const bool inside = (std::fabs(lat) <= 90.0) & (std::fabs(dLambda) <= kPi / 2);
    return Vector ? inside & seriesXi & seriesEta : inside;
}

// The inverse: Krueger's series back to (xi', eta'), then chi = xi' plus the
// small angle between them, chi - xi' = atan2(-sin xi' sinh^2 eta',
// (cos xi' + r)(r cos xi' + sin^2 xi')) with r = sqrt(sinh^2 eta' + cos^2 xi'), and
// Karney's series from chi to phi in place of the iteration.
template <bool Vector>
KVCART_ALWAYS_INLINE bool CKvTransverseMercatorJHS::_inverseFast(double x, double y, double& lon, double& lat) const
{
    const double eta = (x - m_FE) * m_invScale;
    const double xi = (y - m_FN + m_k0 * m_M0) * m_invScale;
    double sh2, ch2; // sinh 2eta, cosh 2eta
    const bool seriesEta = std::fabs(eta) <= 0.25;
    if (Vector || seriesEta) {
        sh2 = CKvMathKernel::SinhSmall(2.0 * eta);
        ch2 = std::sqrt(1.0 + sh2 * sh2);
    } else {
        const double E = std::exp(2.0 * eta);
        sh2 = (E - 1.0 / E) / 2.0;
        ch2 = (E + 1.0 / E) / 2.0;
    }
    // One sine and cosine of xi serve Krueger's series (through the double angle)
    // and, turned by the series' small correction d = xi' - xi, the angle xi'.
    double sxi, cxi;
    CKvMathKernel::SinCosHalfPi(xi, sxi, cxi);
    double xiP, etaP;
    CKvTransverseMercatorSeries::ApplyChebyshev(m_hpPoly, xi, eta, 2.0 * sxi * cxi, (cxi - sxi) * (cxi + sxi), sh2, ch2,
                                                -1.0, xiP, etaP);
    const double d = xiP - xi, d2 = d * d; // exact: the two are close
    const double sd = d - d * d2 * (1.0 / 6 - d2 * (1.0 / 120));
    const double vd = d2 * (0.5 - d2 * (1.0 / 24 - d2 * (1.0 / 720)));
    const double sx = sxi + (cxi * sd - sxi * vd), cx = cxi - (sxi * sd + cxi * vd);
    const double sh = CKvMathKernel::SinhSmall(etaP);
    const double r = std::sqrt(sh * sh + cx * cx);
    const double num = -sx * sh * sh, den = (cx + r) * (r * cx + sx * sx);
    double dChi, dl; // chi - xi' and the longitude from the central meridian
    const double t = num / den, z = sh / r;
    const bool seriesChi = (den > 0.0) & (std::fabs(t) <= CKvMathKernel::AtanSmallLimit);
    const bool seriesLambda = std::fabs(z) <= CKvMathKernel::AsinSmallLimit;
    if constexpr (Vector) {
        dChi = CKvMathKernel::AtanSeries(t);
        dl = CKvMathKernel::AsinSmall(z);
    } else {
        const bool tinyChi = std::fabs(t) <= CKvMathKernel::AtanTinyLimit;
        dChi = !seriesChi ? std::atan2(num, den)
               : tinyChi  ? CKvMathKernel::AtanTiny(t)
                          : CKvMathKernel::AtanSmall(t);
        dl = seriesLambda ? CKvMathKernel::AsinSmall(z) : std::asin(z);
    }
    // sin chi = sin xi' / cosh eta' and cos chi = r / cosh eta', so the double angle
    // needs only 1 / cosh^2 eta' = 1 / (1 + sinh^2 eta'); the series in sin 2k chi
    // is sin 2chi times a polynomial in cos 2chi (Chebyshev's U).
    const double invCosh2 = 1.0 / (1.0 + sh * sh);
    // The two small corrections are summed first, then added to xi'.
    const double phi = xiP + (dChi + CKvConformalLatitude::SeriesCorrection(m_inverse, 2.0 * sx * r * invCosh2,
                                                                              (r - sx) * (r + sx) * invCosh2));
    lon = (m_lambda0 + dl) * kDegreesPerRadian;
    lat = phi * kDegreesPerRadian;
    const bool inside =
        (std::fabs(xi) <= kPi / 2) & (std::fabs(eta) <= 1.0) & (std::fabs(etaP) <= 0.5) & (cx > 0.0) & (std::fabs(d) <= 0.01);
    return Vector ? inside & seriesEta & seriesChi & seriesLambda : inside;
}

void CKvTransverseMercatorJHS::_forwardBlock(const CKvTransverseMercatorJHS& engine, std::size_t count,
                                             const double* lon, const double* lat, double* x, double* y, bool* ok)
{
    KVCART_SIMD_LOOP
    for (std::size_t i = 0; i < count; ++i)
        ok[i] = engine._forwardFast<true>(lon[i], lat[i], x[i], y[i]);
}

void CKvTransverseMercatorJHS::_inverseBlock(const CKvTransverseMercatorJHS& engine, std::size_t count,
                                             const double* x, const double* y, double* lon, double* lat, bool* ok)
{
    KVCART_SIMD_LOOP
    for (std::size_t i = 0; i < count; ++i)
        ok[i] = engine._inverseFast<true>(x[i], y[i], lon[i], lat[i]);
}

void CKvTransverseMercatorJHS::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                        std::size_t latStride, double* x, std::size_t xStride, double* y,
                                        std::size_t yStride) const
{
    if (m_bLocal || !m_fastForward) {
        CKvEngine::Geo2Proj(n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
        return;
    }
    CKvBatch::ForEachBlock(
        n, lon, lonStride, lat, latStride, x, xStride, y, yStride,
        [this](std::size_t count, const double* a, const double* b, double* u, double* v, bool* ok) {
            _forwardBlock(*this, count, a, b, u, v, ok);
        },
        [this](double a, double b, double* u, double* v) { CKvTransverseMercatorJHS::Geo2Proj(a, b, u, v); });
}

void CKvTransverseMercatorJHS::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                        std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                        std::size_t latStride) const
{
    if (m_bLocal || !m_fastInverse) {
        CKvEngine::Proj2Geo(n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
        return;
    }
    CKvBatch::ForEachBlock(
        n, x, xStride, y, yStride, lon, lonStride, lat, latStride,
        [this](std::size_t count, const double* a, const double* b, double* u, double* v, bool* ok) {
            _inverseBlock(*this, count, a, b, u, v, ok);
        },
        [this](double a, double b, double* u, double* v) { CKvTransverseMercatorJHS::Proj2Geo(a, b, u, v); });
}

void CKvTransverseMercatorJHS::_forwardGeneral(double lon, double lat, double* x, double* y) const
{
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

void CKvTransverseMercatorJHS::_inverseGeneral(double x, double y, double* lon, double* lat) const
{
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
    // The degrees as given: 15, not the 14.999999999999998 of 15 degrees in
    // radians and back.
    *x = m_lon0;
    *y = m_lat0;
}

double CKvTransverseMercatorJHS::GetConvergence(double lon, double lat) const
{
    if (m_bLocal)
        return 0.0;
    // Beyond the poles the series would give a finite angle of no meridian.
    if (!CKvAngle::IsLatitude(lat))
        return std::nan("");
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
