#include "projections/KvGeographical.h"
#include "projections/KvGnomic.h"
#include "projections/KvIsoMetric.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);

// An engine that overrides only what it must, to see the interface's defaults.
class BareEngine : public CKvProjection
{
public:
    const char* GetName() const override { return "bare"; }
    void Geo2Proj(double, double, double*, double*) const override {}
    void Proj2Geo(double, double, double*, double*) const override {}
    CKvProjection* Clone() const override { return new BareEngine(*this); }
    void TransferParameters(CKvPRJParser&) const override {}
};

// The grid engine leaves cloning to whoever uses it.
class IsoGrid : public CKvIsoMetric
{
public:
    using CKvIsoMetric::CKvIsoMetric;
    CKvProjection* Clone() const override { return new IsoGrid(*this); }
    void TransferParameters(CKvPRJParser&) const override {}
};

class GnomicProbe : public CKvGnomic
{
public:
    CKvProjection* Clone() const override { return nullptr; }
    void TransferParameters(CKvPRJParser&) const override {}
};

} // namespace

TEST(KvProjection, InterfaceDefaults)
{
    BareEngine engine;
    double x = 1.0, y = 1.0;
    engine.GetOrigin(&x, &y);
    EXPECT_EQ(x, 0.0);
    EXPECT_EQ(y, 0.0);
    EXPECT_EQ(engine.GetConvergence(10.0, 50.0), 0.0);
    double a[4] = {1, 1, 1, 1};
    engine.GetDefaultArea(&a[0], &a[1], &a[2], &a[3]);
    EXPECT_EQ(a[0] + a[1] + a[2] + a[3], 0.0);
    EXPECT_FALSE(engine.IsLocal());
    EXPECT_FALSE(engine.IsGeographical());
    double derived[2] = {7.0, 7.0};
    engine.GetDerivedParameters(derived);
    EXPECT_EQ(derived[0], 7.0);
    CKvEllipsoid ellipsoid = kWgs84;
    EXPECT_FALSE(engine.GetAnonymousEllipsoid(ellipsoid));
    EXPECT_TRUE(ellipsoid == kWgs84);

    CKvProjection::Release(nullptr); // nothing happens
    CKvProjection::Release(engine.Clone());
}

TEST(KvGeographical, IdentityWithoutWrappingAndTheDefaultArea)
{
    const CKvGeographical engine("LONG/LAT", kWgs84);
    EXPECT_STREQ(engine.GetName(), "LONG/LAT");
    EXPECT_TRUE(engine.IsGeographical());
    EXPECT_FALSE(engine.IsLocal());
    double x, y, lon, lat;
    engine.Geo2Proj(200.0, 85.0, &x, &y);
    EXPECT_EQ(x, 200.0);
    EXPECT_EQ(y, 85.0);
    engine.Proj2Geo(-400.5, -90.0, &lon, &lat);
    EXPECT_EQ(lon, -400.5);
    EXPECT_EQ(lat, -90.0);
    // A latitude beyond the poles is no point.
    engine.Geo2Proj(200.0, 95.0, &x, &y);
    EXPECT_TRUE(std::isnan(x) && std::isnan(y));

    double a[4];
    engine.GetDefaultArea(&a[0], &a[1], &a[2], &a[3]);
    EXPECT_EQ(a[0], -180.0);
    EXPECT_EQ(a[1], -60.0);
    EXPECT_EQ(a[2], 180.0);
    EXPECT_EQ(a[3], 81.0);

    CKvEllipsoid figure;
    ASSERT_TRUE(engine.GetAnonymousEllipsoid(figure));
    EXPECT_TRUE(figure.IsEquivalent(kWgs84));
    EXPECT_TRUE(figure.GetName().empty()) << "only the figure is anonymous";

    // A sphere is passed on with inverse flattening 0.
    const CKvGeographical onSphere("sphere", CKvEllipsoid("S", "XY", 6371229.0, 0.0));
    ASSERT_TRUE(onSphere.GetAnonymousEllipsoid(figure));
    EXPECT_EQ(figure.GetInvFlatness(), 0.0);
    EXPECT_EQ(figure.GetMajor(), 6371229.0);

    // An engine without a figure (semi-major axis 0) has no anonymous ellipsoid.
    const CKvGeographical unknown("unknown", CKvEllipsoid("", "", 0.0, 0.0));
    CKvEllipsoid untouched = kWgs84;
    EXPECT_FALSE(unknown.GetAnonymousEllipsoid(untouched));
    EXPECT_TRUE(untouched == kWgs84);
}

TEST(KvGeographical, CloneIsIndependentAndNamesAreBounded)
{
    auto* original = new CKvGeographical("Original", kWgs84);
    CKvProjection* copy = original->Clone();
    original->free();
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy->GetName(), "Original");
    EXPECT_TRUE(copy->IsGeographical());
    CKvEllipsoid figure;
    EXPECT_TRUE(copy->GetAnonymousEllipsoid(figure));
    EXPECT_TRUE(figure.IsEquivalent(kWgs84));
    CKvProjection::Release(copy);

    // Names longer than the array are truncated at 255 characters, never overflowing.
    const std::string longName(300, 'N');
    const CKvGeographical longEngine(longName, kWgs84);
    EXPECT_EQ(std::strlen(longEngine.GetName()), 255u);
    EXPECT_EQ(std::string(longEngine.GetName()), longName.substr(0, 255));
    const CKvGeographical exact(std::string(255, 'e'), kWgs84);
    EXPECT_EQ(std::strlen(exact.GetName()), 255u);
    // An embedded NUL ends the name, as in any C string.
    const CKvGeographical nul(std::string("ab\0cd", 5), kWgs84);
    EXPECT_STREQ(nul.GetName(), "ab");
}

TEST(KvIsoMetric, ProjectsOntoTheTwoAxesAndHasNoInverse)
{
    // A on the x axis and B on the y axis with unit scales: a pure shift.
    const IsoGrid shift(10.0, 20.0, 15.0, 20.0, 10.0, 28.0, 1000.0, 2000.0, 1005.0, 2008.0);
    EXPECT_STREQ(shift.GetName(), "Isometric");
    double X, Y;
    shift.Proj2Geo(13.0, 27.0, &X, &Y);
    EXPECT_DOUBLE_EQ(X, 1003.0);
    EXPECT_DOUBLE_EQ(Y, 2007.0);

    // Axes turned by 45 degrees and scaled by 2: A = (1,1) gets XA = 2*sqrt(2).
    const double r2 = std::sqrt(2.0);
    const IsoGrid turned(0.0, 0.0, 1.0, 1.0, -1.0, 1.0, 0.0, 0.0, 2.0 * r2, 2.0 * r2);
    turned.Proj2Geo(1.0, 1.0, &X, &Y);
    EXPECT_NEAR(X, 2.0 * r2, 1e-12);
    EXPECT_NEAR(Y, 0.0, 1e-12);
    turned.Proj2Geo(-2.0, 2.0, &X, &Y);
    EXPECT_NEAR(X, 0.0, 1e-12);
    EXPECT_NEAR(Y, 4.0 * r2, 1e-12);

    // Skewed axes: each output is the plain projection onto its own axis.
    const IsoGrid skewed(0.0, 0.0, 1.0, 0.0, 1.0, 1.0, 0.0, 0.0, 1.0, r2);
    skewed.Proj2Geo(0.0, 1.0, &X, &Y);
    EXPECT_NEAR(X, 0.0, 1e-12);
    EXPECT_NEAR(Y, 1.0 / r2, 1e-12);

    // No inverse: outputs keep the caller's values.
    X = -5.0;
    Y = -6.0;
    shift.Geo2Proj(13.0, 27.0, &X, &Y);
    EXPECT_EQ(X, -5.0);
    EXPECT_EQ(Y, -6.0);

    // A on top of the origin: no axis to project onto, every output NaN.
    const IsoGrid degenerate(1.0, 1.0, 1.0, 1.0, 1.0, 2.0, 0.0, 0.0, 1.0, 1.0);
    degenerate.Proj2Geo(3.0, 4.0, &X, &Y);
    EXPECT_TRUE(std::isnan(X));
    EXPECT_FALSE(std::isnan(Y));
}

using KvGnomicDeathTest = ::testing::Test;

TEST(KvGnomicDeathTest, IsDeclaredButEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The message goes to standard output; the child sends that to stderr so
    // that the death test can read it. No line end follows the message.
    const char* message = "Gnomic projection not implemented yet$";
    EXPECT_DEATH((dup2(2, 1), GnomicProbe()), message);
}
