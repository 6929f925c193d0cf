#include "geodesy/KvDatumShift.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(KvDatumShift, TypeIsDecidedFromTheValues)
{
    const CKvDatumShift none;
    EXPECT_EQ(none.GetType(), CKvCartDef::eNoDatumShift);
    EXPECT_STREQ(none.GetTypeAsText(), "None");

    const double ed50[7] = {-87, -98, -121, 0, 0, 0, 0};
    const CKvDatumShift three(ed50);
    EXPECT_EQ(three.GetType(), CKvCartDef::eThreeParameters);
    EXPECT_STREQ(three.GetTypeAsText(), "3 parameter");

    const double scaleOnly[7] = {0, 0, 0, 0, 0, 0, 1.2};
    EXPECT_EQ(CKvDatumShift(scaleOnly).GetType(), CKvCartDef::eSevenParameters);
    // A rotation before a translation: the translation must not demote the type.
    const double osgb[7] = {446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489};
    const CKvDatumShift seven(osgb);
    EXPECT_EQ(seven.GetType(), CKvCartDef::eSevenParameters);
    EXPECT_STREQ(seven.GetTypeAsText(), "7 parameter");
    EXPECT_EQ(seven[6], -20.489);
    EXPECT_EQ(seven.GetParameters()[3], 0.15);

    const double nan = std::nan("");
    const double nans[7] = {nan, nan, nan, nan, nan, nan, nan};
    EXPECT_EQ(CKvDatumShift(nans).GetType(), CKvCartDef::eNoDatumShift); // NaN counts as zero

    EXPECT_STREQ(CKvDatumShift::TypeAsText(3), "");
    EXPECT_STREQ(CKvDatumShift::TypeAsText(-1), "");

    CKvDatumShift reset(osgb);
    reset.Reset();
    EXPECT_EQ(reset.GetType(), CKvCartDef::eNoDatumShift);
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(reset[i], 0.0);
}

TEST(KvDatumShift, EqualityComparesOnlyTheValuesOfItsType)
{
    const double a3[7] = {100, 200, 300, 0, 0, 0, 0};
    const double b3[7] = {100.00000000001, 200, 300, 0, 0, 0, 0};
    const double c3[7] = {100.000001, 200, 300, 0, 0, 0, 0};
    EXPECT_TRUE(CKvDatumShift(a3) == CKvDatumShift(b3));
    EXPECT_FALSE(CKvDatumShift(a3) == CKvDatumShift(c3));
    EXPECT_TRUE(CKvDatumShift(a3) != CKvDatumShift(c3));

    // Type 1 compares indices 0..2 only: a value stored at 5 is ignored.
    CKvDatumShift x(a3), y(a3);
    y[5] = 7.0;
    EXPECT_TRUE(x == y);

    // Type 0 records are equal whatever they store.
    CKvDatumShift p, q;
    p[4] = 1.0;
    q[0] = 2.0;
    EXPECT_TRUE(p == q);

    const double s7[7] = {1, 2, 3, 0.1, 0.2, 0.3, 4};
    double t7[7] = {1, 2, 3, 0.1, 0.2, 0.3, 4};
    EXPECT_TRUE(CKvDatumShift(s7) == CKvDatumShift(t7));
    t7[6] = 4.001;
    EXPECT_FALSE(CKvDatumShift(s7) == CKvDatumShift(t7));
    EXPECT_FALSE(CKvDatumShift(s7) == CKvDatumShift(a3)); // different types

    CKvDatumShift copy;
    copy = CKvDatumShift(s7);
    EXPECT_TRUE(copy == CKvDatumShift(s7));
    EXPECT_EQ(copy.GetType(), CKvCartDef::eSevenParameters);
}
