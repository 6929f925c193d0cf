#include "catalogue/KvEllipsoid.h"
#include "catalogue/KvFloatCompareRel.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(KvFloatCompareRel, RelativeToleranceAndSpecialValues)
{
    EXPECT_FALSE(CKvFloatCompareRel::NotEqual(0.0, 0.0, 1e-12));
    EXPECT_FALSE(CKvFloatCompareRel::NotEqual(6378137.0, 6378137.000001, 1e-12)); // 1.6e-13
    EXPECT_TRUE(CKvFloatCompareRel::NotEqual(6378137.0, 6378137.01, 1e-12));
    EXPECT_TRUE(CKvFloatCompareRel::NotEqual(1e-300, 0.0, 1e-12)); // any non-zero differs from 0
    EXPECT_FALSE(CKvFloatCompareRel::NotEqual(1.0, 1.5, -0.5));    // |tol| is used
    EXPECT_TRUE(CKvFloatCompareRel::NotEqual(1.0, 1.5, 0.3));
    EXPECT_FALSE(CKvFloatCompareRel::NotEqual(std::nan(""), 0.0, 1e-12));

    EXPECT_TRUE(CKvFloatCompareRel::Close(0.0, 0.0));
    EXPECT_TRUE(CKvFloatCompareRel::Close(-0.0, 0.0));
    EXPECT_TRUE(CKvFloatCompareRel::Close(100.0, 100.00000000001));
    EXPECT_FALSE(CKvFloatCompareRel::Close(100.0, 100.000000001));
    EXPECT_FALSE(CKvFloatCompareRel::Close(std::nan(""), std::nan("")));
    EXPECT_TRUE(CKvFloatCompareRel::Close(HUGE_VAL, HUGE_VAL));
}

TEST(KvEllipsoid, DerivedQuantitiesMatchPublishedFigures)
{
    // WGS 84: b = 6356752.314245 m, e^2 = 0.00669437999014 (NIMA TR8350.2).
    const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    EXPECT_NEAR(wgs84.GetMinor(), 6356752.314245, 1e-6);
    EXPECT_NEAR(wgs84.GetEccentricity() * wgs84.GetEccentricity(), 0.00669437999014, 1e-14);
    EXPECT_DOUBLE_EQ(wgs84.GetFlatness(), 1.0 / 298.257223563);
    // Airy 1830: b = 6356256.909 m (OS "A guide to coordinate systems in Great Britain").
    const CKvEllipsoid airy("Airy 1830", "AA", 6377563.396, 299.3249646);
    EXPECT_NEAR(airy.GetMinor(), 6356256.909, 1e-3);

    for (double invf : {0.0, -10.0}) {
        const CKvEllipsoid sphere("Sphere", "XY", 6371229.0, invf);
        EXPECT_EQ(sphere.GetFlatness(), 0.0);
        EXPECT_EQ(sphere.GetMinor(), 6371229.0);
        EXPECT_EQ(sphere.GetEccentricity(), 0.0);
        EXPECT_EQ(sphere.GetInvFlatness(), invf); // kept as given
    }

    // The default is deliberately not a sphere.
    const CKvEllipsoid unit;
    EXPECT_EQ(unit.GetMajor(), 1.0);
    EXPECT_EQ(unit.GetInvFlatness(), 1.0);
    EXPECT_EQ(unit.GetMinor(), 0.0);
    EXPECT_EQ(unit.GetEccentricity(), 1.0);
    EXPECT_TRUE(unit.GetName().empty());
    EXPECT_TRUE(unit.GetID().empty());
}

TEST(KvEllipsoid, EqualityNeedsNamesEquivalenceOnlyTheFigure)
{
    const CKvEllipsoid grs80("GRS 1980", "RF", 6378137.0, 298.257222101);
    CKvEllipsoid copy(grs80);
    EXPECT_TRUE(copy == grs80);
    EXPECT_TRUE(grs80 == grs80);

    const CKvEllipsoid renamed("GRS80", "XX", 6378137.000001, 298.257222101);
    EXPECT_FALSE(renamed == grs80);
    EXPECT_TRUE(renamed.IsEquivalent(grs80));

    const CKvEllipsoid otherId("GRS 1980", "RG", 6378137.0, 298.257222101);
    EXPECT_FALSE(otherId == grs80);
    const CKvEllipsoid nameWithNul(std::string("GRS 1980\0x", 10), "RF", 6378137.0, 298.257222101);
    EXPECT_FALSE(nameWithNul == grs80); // byte for byte, length included

    const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    EXPECT_FALSE(wgs84.IsEquivalent(grs80)); // 1/f differs by 5e-9 relative
    const CKvEllipsoid moved("GRS 1980", "RF", 6378137.01, 298.257222101);
    EXPECT_FALSE(moved.IsEquivalent(grs80));

    const CKvEllipsoid sphereA("A", "A", 6371000.0, 0.0), sphereB("B", "B", 6371000.0, 0.0);
    EXPECT_TRUE(sphereA.IsEquivalent(sphereB));

    copy = copy;
    EXPECT_TRUE(copy == grs80);
    copy.SetParams(6378388.0, 297.0);
    EXPECT_EQ(copy.GetName(), "GRS 1980");
    EXPECT_EQ(copy.GetID(), "RF");
    EXPECT_EQ(copy.GetMajor(), 6378388.0);
    EXPECT_FALSE(copy == grs80);
    copy = grs80;
    EXPECT_TRUE(copy == grs80);
}
