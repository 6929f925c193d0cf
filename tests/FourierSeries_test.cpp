#include "catalogue/KvMapProjData.h"

#include <cmath>
#include <gtest/gtest.h>

// The series are checked against the exact relations they approximate, on WGS 84.
namespace {

const double kE2 = 0.00669437999014; // WGS 84 e^2
const double kE = std::sqrt(kE2);

double SeriesSum(const double* c, int terms, double angle)
{
    double sum = angle;
    for (int k = 0; k < terms; ++k)
        sum += c[k] * std::sin(2.0 * (k + 1) * angle);
    return sum;
}

double Conformal(double phi)
{
    const double s = kE * std::sin(phi);
    return 2.0 * std::atan(std::tan(M_PI / 4 + phi / 2) * std::pow((1 - s) / (1 + s), kE / 2)) - M_PI / 2;
}

double Authalic(double phi)
{
    auto q = [](double p) {
        const double s = std::sin(p);
        return (1 - kE2) * (s / (1 - kE2 * s * s) - std::log((1 - kE * s) / (1 + kE * s)) / (2 * kE));
    };
    return std::asin(q(phi) / q(M_PI / 2));
}

// Meridian arc by Simpson's rule, in units of a.
double MeridianArc(double phi)
{
    const int n = 2000;
    const double h = phi / n;
    double sum = 0.0;
    for (int i = 0; i <= n; ++i) {
        const double s = std::sin(i * h);
        const double f = (1 - kE2) / std::pow(1 - kE2 * s * s, 1.5);
        sum += f * (i == 0 || i == n ? 1 : (i % 2 ? 4 : 2));
    }
    return sum * h / 3;
}

} // namespace

TEST(ComputeFourierCoefficients, SeriesInvertTheExactAuxiliaryLatitudes)
{
    double conformal[4] = {}, authalic[4] = {}, arc[4] = {}, foot[4] = {};
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eStereographic, false, kE2, conformal);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eAlbersEqualArea, false, kE2, authalic);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, true, kE2, arc);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, false, kE2, foot);
    for (double deg = -89.0; deg <= 89.0; deg += 0.5) {
        const double phi = deg * M_PI / 180;
        EXPECT_NEAR(SeriesSum(conformal, 4, Conformal(phi)), phi, 5e-12) << deg;
        EXPECT_NEAR(SeriesSum(authalic, 3, Authalic(phi)), phi, 1e-9) << deg;
        const double m =
            arc[0] * phi - arc[1] * std::sin(2 * phi) + arc[2] * std::sin(4 * phi) - arc[3] * std::sin(6 * phi);
        EXPECT_NEAR(m, MeridianArc(phi), 2e-10) << deg; // the e^8 terms left out: about 1 mm
        // The footpoint series takes the rectifying latitude mu = M / (a c0).
        EXPECT_NEAR(SeriesSum(foot, 4, m / arc[0]), phi, 1e-9) << deg;
    }
}

TEST(ComputeFourierCoefficients, KruegerSeriesForTransverseMercator)
{
    // Third flattening of WGS 84, and Krüger's coefficients alpha and beta to high
    // order as tabulated by Karney (GeographicLib, "Transverse Mercator projection");
    // the fourth-order series agree with them to the size of the n^5 terms.
    const double f = 1 / 298.257223563, n = f / (2 - f);
    double forward[4] = {}, inverse[4] = {};
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, true, n, forward);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eTransverseMercator, false, n, inverse);
    EXPECT_NEAR(forward[0], 8.3773182062446983032e-04, 1e-14);
    EXPECT_NEAR(forward[1], 7.6085277735723922e-07, 1e-14);
    EXPECT_NEAR(inverse[0], 8.3773216405794867707e-04, 1e-14);
    EXPECT_NEAR(inverse[1], 5.9058701522203651815e-08, 1e-14);
    // The forward series and the inverse one undo each other to that order.
    const double minusInverse[4] = {-inverse[0], -inverse[1], -inverse[2], -inverse[3]};
    for (double x = -1.5; x <= 1.5; x += 0.05)
        EXPECT_NEAR(SeriesSum(minusInverse, 4, SeriesSum(forward, 4, x)), x, 1e-13) << x;

    double untouched[4] = {7, 7, 7, 7};
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eStereographic, true, kE2, untouched);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eAlbersEqualArea, true, kE2, untouched);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eKrovak, false, kE2, untouched);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eNoProjection, false, kE2, untouched);
    EXPECT_EQ(untouched[0], 7.0);
    double three[4] = {0, 0, 0, 9};
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eLambertAzimuthalEqualArea, false, kE2, three);
    EXPECT_EQ(three[3], 9.0) << "the authalic series has three terms";
}
