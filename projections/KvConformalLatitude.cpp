#include "projections/KvConformalLatitude.h"

#include "catalogue/KvMapProjData.h"

#include <cmath>

namespace {

// sum c[k-1] sin 2kx for k = 1..6 as sin 2x times a polynomial in cos 2x:
// sin 2kx = sin 2x U_{k-1}(cos 2x), collected by powers of cos 2x.
void SinesByPowersOfCosine(const double c[6], double poly[6])
{
    poly[0] = c[0] - c[2] + c[4];
    poly[1] = 2.0 * c[1] - 4.0 * c[3] + 6.0 * c[5];
    poly[2] = 4.0 * c[2] - 12.0 * c[4];
    poly[3] = 8.0 * c[3] - 32.0 * c[5];
    poly[4] = 16.0 * c[4];
    poly[5] = 32.0 * c[5];
}

} // namespace

double CKvConformalLatitude::T(double phi, double e)
{
    const double es = e * std::sin(phi);
    return std::tan(0.7853981633974483 - phi / 2) * std::pow((1.0 + es) / (1.0 - es), e / 2);
}

double CKvConformalLatitude::Isometric(double phi, double e)
{
    if (std::fabs(phi) < IsometricKernelLimit && e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit)
        return IsometricKernel(phi, e);
    // asinh(tan phi) keeps its precision up to the poles, where tan phi of the
    // rounded right angle is large but finite.
    return std::asinh(std::tan(phi)) - e * std::atanh(e * std::sin(phi));
}

double CKvConformalLatitude::TauPrime(double tau, double e)
{
    const double tau1 = std::sqrt(1.0 + tau * tau);
    const double sig = std::sinh(e * std::atanh(e * tau / tau1));
    return std::sqrt(1.0 + sig * sig) * tau - sig * tau1;
}

double CKvConformalLatitude::Tau(double tauPrime, double e)
{
    if (!std::isfinite(tauPrime))
        return tauPrime; // the poles (and NaN) map to themselves
    const double e2m = 1.0 - e * e;
    const double tolerance = std::sqrt(2.220446049250313e-16) / 10.0;
    double tau = tauPrime / e2m; // a start within the eccentricity's reach of the root
    for (int i = 0; i < 10; ++i) {
        const double tau1 = std::sqrt(1.0 + tau * tau);
        const double sig = std::sinh(e * std::atanh(e * tau / tau1));
        const double taupa = std::sqrt(1.0 + sig * sig) * tau - sig * tau1;
        const double dtau =
            (tauPrime - taupa) * (1.0 + e2m * tau * tau) / (e2m * tau1 * std::sqrt(1.0 + taupa * taupa));
        tau += dtau;
        if (!(std::fabs(dtau) >= tolerance * std::fmax(1.0, std::fabs(tau))))
            break;
    }
    return tau;
}

CKvConformalLatitude::SInverse CKvConformalLatitude::MakeInverse(double e)
{
    SInverse inverse;
    inverse.e = e;
    const double f = e * e / (1.0 + std::sqrt(1.0 - e * e)); // 1 - sqrt(1 - e^2), without cancellation
    const double n = f / (2.0 - f);
    if (!(e >= 0.0 && e < 1.0 && n <= SeriesLimit))
        return inverse;
    double d[6];
    d[0] = n * (2.0 + n * (-2.0 / 3 + n * (-2.0 + n * (116.0 / 45 + n * (26.0 / 45 + n * (-2854.0 / 675))))));
    d[1] = n * n * (7.0 / 3 + n * (-8.0 / 5 + n * (-227.0 / 45 + n * (2704.0 / 315 + n * (2323.0 / 945)))));
    d[2] = n * n * n * (56.0 / 15 + n * (-136.0 / 35 + n * (-1262.0 / 105 + n * (73814.0 / 2835))));
    d[3] = n * n * n * n * (4279.0 / 630 + n * (-332.0 / 35 + n * (-399572.0 / 14175)));
    d[4] = n * n * n * n * n * (4174.0 / 315 + n * (-144838.0 / 6237));
    d[5] = n * n * n * n * n * n * (601676.0 / 22275);
    SinesByPowersOfCosine(d, inverse.poly);
    inverse.series = true;
    return inverse;
}

double CKvConformalLatitude::Latitude(const SInverse& inverse, double tanChi)
{
    if (!inverse.series)
        return std::atan(Tau(tanChi, inverse.e));
    const double chi = std::atan(tanChi);
    if (!(std::fabs(tanChi) <= 1e150))
        return chi; // the poles (sin 2chi = 0) and NaN
    const double t2 = tanChi * tanChi, inv = 1.0 / (1.0 + t2);
    return chi + SeriesCorrection(inverse, 2.0 * tanChi * inv, (1.0 - t2) * inv);
}

CKvConformalLatitude::SAuthalic CKvConformalLatitude::MakeAuthalic(double e)
{
    SAuthalic authalic;
    authalic.e = e;
    authalic.e2 = e * e;
    authalic.qPole = AuthalicQ(authalic, 1.0);
    // phi - beta = c0 sin 2beta + c1 sin 4beta + c2 sin 6beta, with sin 4beta =
    // 2 sin 2beta cos 2beta and sin 6beta = sin 2beta (4 cos^2 2beta - 1).
    double c[4] = {0, 0, 0, 0};
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eAlbersEqualArea, false, authalic.e2, c);
    authalic.poly[0] = c[0] - c[2];
    authalic.poly[1] = 2.0 * c[1];
    authalic.poly[2] = 4.0 * c[2];
    return authalic;
}

CKvConformalLatitude::SAuthalicInverse CKvConformalLatitude::MakeAuthalicInverse(double e)
{
    SAuthalicInverse inverse;
    if (!(e > 0.0 && e <= CKvMathKernel::EccentricSinhLimit))
        return inverse;
    const double f = e * e / (1.0 + std::sqrt(1.0 - e * e)); // 1 - sqrt(1 - e^2), without cancellation
    const double n = f / (2.0 - f);
    double c[6];
    c[0] = n * (4.0 / 3 + n * (4.0 / 45 + n * (-16.0 / 35 + n * (-2582.0 / 14175 + n * (60136.0 / 467775 +
                                                                                   n * (28112932.0 / 212837625))))));
    c[1] = n * n * (46.0 / 45 + n * (152.0 / 945 + n * (-11966.0 / 14175 + n * (-21016.0 / 51975 +
                                                                               n * (251310128.0 / 638512875)))));
    c[2] = n * n * n * (3044.0 / 2835 + n * (3802.0 / 14175 + n * (-94388.0 / 66825 + n * (-8797648.0 / 10945935))));
    c[3] = n * n * n * n * (6059.0 / 4725 + n * (41072.0 / 93555 + n * (-1472637812.0 / 638512875)));
    c[4] = n * n * n * n * n * (768272.0 / 467775 + n * (455935736.0 / 638512875));
    c[5] = n * n * n * n * n * n * (4210684958.0 / 1915538625);
    SinesByPowersOfCosine(c, inverse.poly);
    inverse.series = true;
    return inverse;
}

double CKvConformalLatitude::AuthalicRadius(double a, double e)
{
    return e > 0.0 ? a * std::sqrt(MakeAuthalic(e).qPole / 2.0) : a;
}

double CKvConformalLatitude::AuthalicLatitude(const SAuthalic& authalic, double q)
{
    double sinBeta = q / authalic.qPole;
    if (std::fabs(sinBeta) > 1.0 && std::fabs(sinBeta) <= 1.0 + 1e-15)
        sinBeta = sinBeta > 0.0 ? 1.0 : -1.0;
    const double cosBeta = std::sqrt((1.0 - sinBeta) * (1.0 + sinBeta)); // NaN beyond the poles
    const double sin2Beta = 2.0 * sinBeta * cosBeta, cos2Beta = (cosBeta - sinBeta) * (cosBeta + sinBeta);
    const double delta = sin2Beta * (authalic.poly[0] + cos2Beta * (authalic.poly[1] + cos2Beta * authalic.poly[2]));
    const double phi = std::atan2(sinBeta, cosBeta) + delta;
    // sin phi and cos phi from those of beta, turned by delta.
    double s, c;
    if (std::fabs(delta) <= CKvMathKernel::SinCosSmallLimit) {
        double sd, cd;
        CKvMathKernel::SinCosSmall(delta, sd, cd);
        s = sinBeta * cd + cosBeta * sd;
        c = cosBeta * cd - sinBeta * sd;
    } else {
        CKvMathKernel::SinCosAny(phi, s, c);
    }
    // One Newton step on q(phi) = q. At the poles both q and its derivative
    // vanish from the difference; a step that is not finite is not taken.
    const double w = 1.0 - authalic.e2 * s * s;
    const double step = (q - AuthalicQ(authalic, s)) * w * w / (2.0 * (1.0 - authalic.e2) * c);
    return std::isfinite(step) ? phi + step : phi;
}

CKvConformalLatitude::SMeridian CKvConformalLatitude::MakeMeridian(double a, double e2)
{
    // Helmert: M = a / (1 + n) (1 + n^2/4 + n^4/64) (phi + sum b'_k sin 2k phi).
    const double f = e2 / (1.0 + std::sqrt(1.0 - e2)); // 1 - sqrt(1 - e^2), without cancellation
    const double n = f / (2.0 - f), n2 = n * n;
    const double m0 = (1.0 + n2 / 4.0 + n2 * n2 / 64.0) / (1.0 + n);
    const double b[4] = {m0 * n * (-3.0 / 2 + n2 * 9.0 / 16), m0 * n2 * (15.0 / 16 - n2 * 15.0 / 32),
                         m0 * n * n2 * (-35.0 / 48), m0 * n2 * n2 * (315.0 / 512)};
    return _makeMeridian(a, e2, m0, b);
}

CKvConformalLatitude::SMeridian CKvConformalLatitude::MakeMeridianE6(double a, double e2)
{
    // M = a (m0 phi - m1 sin 2phi + m2 sin 4phi - m3 sin 6phi)
    double m[4];
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, true, e2, m);
    const double b[4] = {-m[1], m[2], -m[3], 0.0};
    return _makeMeridian(a, e2, m[0], b);
}

CKvConformalLatitude::SMeridian CKvConformalLatitude::_makeMeridian(double a, double e2, double m0, const double* b)
{
    SMeridian meridian;
    meridian.a = a;
    meridian.e2 = e2;
    meridian.m0 = m0;
    // b1 sin 2x + b2 sin 4x + b3 sin 6x + b4 sin 8x, with U_1(c) = 2c,
    // U_2(c) = 4c^2 - 1 and U_3(c) = 8c^3 - 4c.
    meridian.distance[0] = b[0] - b[2];
    meridian.distance[1] = 2.0 * b[1] - 4.0 * b[3];
    meridian.distance[2] = 4.0 * b[2];
    meridian.distance[3] = 8.0 * b[3];
    double f[4];
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, false, e2, f);
    // The same for the footpoint series.
    meridian.footpoint[0] = f[0] - f[2];
    meridian.footpoint[1] = 2.0 * f[1] - 4.0 * f[3];
    meridian.footpoint[2] = 4.0 * f[2];
    meridian.footpoint[3] = 8.0 * f[3];
    return meridian;
}

CKvConformalLatitude::SMeridianInverse CKvConformalLatitude::MakeMeridianInverse(const SMeridian& meridian)
{
    SMeridianInverse inverse;
    inverse.muPerDistance = 1.0 / (meridian.a * meridian.m0);
    const long double m0 = meridian.m0;
    if (!(m0 > 0.0L) || !std::isfinite(inverse.muPerDistance))
        return inverse;
    // mu(phi) = phi + sin 2phi P(cos 2phi) / m0 and its derivative, P the
    // series' polynomial.
    const double* b = meridian.distance;
    auto mu = [b, m0](long double phi, long double& slope) {
        const long double s = std::sin(2 * phi), c = std::cos(2 * phi);
        const long double p = b[0] + c * (b[1] + c * (b[2] + c * b[3]));
        const long double dp = b[1] + c * (2 * b[2] + c * 3 * b[3]);
        slope = 1 + (2 * c * p - 2 * s * s * dp) / m0;
        return phi + s * p / m0;
    };
    constexpr int Samples = 64, Terms = 12;
    constexpr long double Pi = 3.14159265358979323846264338327950288L;
    long double d[Terms + 1] = {};
    for (int j = 1; j < Samples; ++j) {
        // phi(mu_j) by Newton's method from mu_j: the correction is below
        // 0.004, and each step squares the error (n^2, n^4, ... below rounding
        // after four steps); two more for margin.
        const long double target = j * Pi / Samples;
        long double phi = target, slope;
        for (int step = 0; step < 6; ++step)
            phi -= (mu(phi, slope) - target) / slope;
        for (int k = 1; k <= Terms; ++k)
            d[k] += (phi - target) * std::sin(2 * k * target) * 2 / Samples;
    }
    long double tail = 0;
    for (int k = 7; k <= Terms; ++k)
        tail += std::fabs(d[k]);
    // sum_k d_k sin 2k mu = sin 2mu sum_k d_k U_{k-1}(cos 2mu), Chebyshev's
    // U_0 = 1, U_1 = 2c, U_{k+1} = 2c U_k - U_{k-1}, their coefficients added up.
    long double previous[6] = {}, current[6] = {1}, poly[6] = {};
    for (int k = 1; k <= 6; ++k) {
        for (int i = 0; i < 6; ++i)
            poly[i] += d[k] * current[i];
        long double next[6] = {};
        for (int i = 0; i < 6; ++i)
            next[i] = (i > 0 ? 2 * current[i - 1] : 0) - previous[i];
        for (int i = 0; i < 6; ++i) {
            previous[i] = current[i];
            current[i] = next[i];
        }
    }
    for (int i = 0; i < 6; ++i)
        inverse.poly[i] = static_cast<double>(poly[i]);
    inverse.series = tail <= MeridianSeriesTail && std::isfinite(static_cast<double>(tail));
    return inverse;
}

double CKvConformalLatitude::MeridianDistance(const SMeridian& meridian, double phi)
{
    double s, c;
    CKvMathKernel::SinCosAny(2.0 * phi, s, c);
    return MeridianDistance(meridian, phi, s, c);
}

double CKvConformalLatitude::FootpointLatitude(const SMeridian& meridian, double distance)
{
    const double mu = distance / (meridian.a * meridian.m0);
    double s, c;
    CKvMathKernel::SinCosAny(2.0 * mu, s, c);
    return mu + s * CKvMathKernel::Estrin<4>(c, meridian.footpoint);
}

double CKvConformalLatitude::MeridianLatitude(const SMeridian& meridian, double distance)
{
    const double mu = distance / (meridian.a * meridian.m0);
    double s2Mu, c2Mu;
    CKvMathKernel::SinCosAny(2.0 * mu, s2Mu, c2Mu);
    const double delta = s2Mu * CKvMathKernel::Estrin<4>(c2Mu, meridian.footpoint);
    const double phi = mu + delta;
    // sin 2phi and cos 2phi from those of 2mu, turned by 2 delta.
    double s, c;
    if (std::fabs(2.0 * delta) <= CKvMathKernel::SinCosSmallLimit) {
        double sd, cd;
        CKvMathKernel::SinCosSmall(2.0 * delta, sd, cd);
        s = s2Mu * cd + c2Mu * sd;
        c = c2Mu * cd - s2Mu * sd;
    } else {
        CKvMathKernel::SinCosAny(2.0 * phi, s, c);
    }
    // sin^2 phi = (1 - cos 2phi) / 2
    const double w = 1.0 - meridian.e2 * (1.0 - c) / 2.0;
    const double radius = meridian.a * (1.0 - meridian.e2) / (w * std::sqrt(w));
    return phi + (distance - MeridianDistance(meridian, phi, s, c)) / radius;
}
