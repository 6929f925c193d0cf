#include "geodesy/KvVincenty.h"

#include "catalogue/KvFloatCompareRel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kRadToDeg = 180.0 / kPi;
constexpr int kMaxEvaluations = 101; // a first evaluation and at most 100 repetitions
} // namespace

CKvVincenty::CKvVincenty(const CKvEllipsoid& ellipsoid)
    : m_a(ellipsoid.GetMajor()), m_b(ellipsoid.GetMinor()), m_f(ellipsoid.GetFlatness()),
      m_ep2((m_a * m_a - m_b * m_b) / (m_b * m_b))
{
}

double CKvVincenty::PolyA(double u2) const
{
    return 1.0 + u2 / 16384.0 * (4096.0 + u2 * (-768.0 + u2 * (320.0 - 175.0 * u2)));
}

double CKvVincenty::PolyB(double u2) const
{
    return u2 / 1024.0 * (256.0 + u2 * (-128.0 + u2 * (74.0 - 47.0 * u2)));
}

void CKvVincenty::GetPoint(double lon1, double lat1, double azimuth1, double distance, double& lon2, double& lat2,
                           double& azimuth2) const
{
    const double phi1 = lat1 * kDegToRad;
    const double u1 = m_f > 0.0 ? std::atan((1.0 - m_f) * std::tan(phi1)) : phi1; // reduced latitude
    const double sinU1 = std::sin(u1);
    const double cosU1 = std::cos(u1);
    const double alpha1 = azimuth1 * kDegToRad;
    const double sinAlpha1 = std::sin(alpha1);
    const double cosAlpha1 = std::cos(alpha1);
    const double sigma1 = std::atan2(std::tan(u1), cosAlpha1);

    const double sinAlpha = cosU1 * sinAlpha1; // azimuth of the geodesic at the equator
    const double cos2Alpha = 1.0 - sinAlpha * sinAlpha;
    const double u2 = m_ep2 * cos2Alpha;
    const double A = PolyA(u2);
    const double B = PolyB(u2);

    // Iterate the angular distance on the auxiliary sphere until it is stable.
    const double sigma0 = distance / (m_b * A);
    double sigma = sigma0;
    double sigmaNew = sigma0;
    double cos2SigmaM = 0.0;
    for (int evaluation = 1;; ++evaluation) {
        cos2SigmaM = std::cos(2.0 * sigma1 + sigma);
        const double sinSigma = std::sin(sigma);
        const double c2 = cos2SigmaM * cos2SigmaM;
        const double deltaSigma =
            B * sinSigma *
            (cos2SigmaM + B / 4.0 *
                              (std::cos(sigma) * (2.0 * c2 - 1.0) -
                               B / 6.0 * cos2SigmaM * (4.0 * sinSigma * sinSigma - 3.0) * (4.0 * c2 - 3.0)));
        sigmaNew = sigma0 + deltaSigma;
        if (CKvFloatCompareRel::Close(sigmaNew, sigma) || evaluation >= kMaxEvaluations)
            break;
        sigma = sigmaNew;
    }
    sigma = sigmaNew;

    const double sinSigma = std::sin(sigma);
    const double cosSigma = std::cos(sigma);
    const double t = sinU1 * sinSigma - cosU1 * cosSigma * cosAlpha1;
    const double phi2 = std::atan2(sinU1 * cosSigma + cosU1 * sinSigma * cosAlpha1,
                                   (1.0 - m_f) * std::sqrt(sinAlpha * sinAlpha + t * t));
    const double lambda = std::atan2(sinSigma * sinAlpha1, cosU1 * cosSigma - sinU1 * sinSigma * cosAlpha1);
    const double C = m_f / 16.0 * cos2Alpha * (4.0 + m_f * (4.0 - 3.0 * cos2Alpha));
    const double L =
        lambda - (1.0 - C) * m_f * sinAlpha *
                     (sigma + C * sinSigma * (cos2SigmaM + C * cosSigma * (2.0 * cos2SigmaM * cos2SigmaM - 1.0)));

    lat2 = phi2 * kRadToDeg;
    lon2 = lon1 + L * kRadToDeg;
    azimuth2 = std::atan2(sinAlpha, -t) * kRadToDeg;
}

void CKvVincenty::GetDistance(double, double, double, double, double&, double&, double&) const
{
}
