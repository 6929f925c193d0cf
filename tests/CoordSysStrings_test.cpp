// Classification and comparison of coordinate-system strings, and the buffer list.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "interface/KvBufferList.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string Utm32(const char* name, const char* falseEasting, const char* axes = "")
{
    return std::string("PROJCS[\"") + name +
           "\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],"
           "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
           "PARAMETER[\"False_Easting\"," +
           falseEasting +
           "],PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Central_Meridian\",9.0],PARAMETER[\"Scale_Factor\","
           "0.9996],PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]" +
           axes + "]";
}

} // namespace

TEST(CoordSysStrings, ClassifiesNamesAndWkt)
{
    kvtest::ShippedCatalogue();
    using P = CKvMapProjection;
    const std::string wgs84 = P::IDtoProjectionString(P::eWgs84Geographic);
    const std::string utm = Utm32("WGS 84 / UTM 32N", "500000");

    for (const char* invalid : {"", "   ", "UTM", "PROJCS[\"broken\",GEOGCS[", "No such grid"})
        EXPECT_FALSE(P::IsValid(invalid)) << '"' << invalid << '"';
    for (const char* valid : {" NON-UTM ", "LONG/LAT", "UTM-32", "British National Grid"})
        EXPECT_TRUE(P::IsValid(valid)) << valid;
    EXPECT_TRUE(P::IsValid(utm.c_str()));
    // Any fragment of the catalogue's listing counts, deliberately.
    EXPECT_TRUE(P::IsValid("Transverse_Mercator"));

    EXPECT_TRUE(P::IsLocal(" NON-UTM"));
    EXPECT_FALSE(P::IsGeoreferenced("NON-UTM"));
    EXPECT_TRUE(P::IsGeoreferenced("UTM-32"));
    EXPECT_TRUE(P::IsGeographical("LONG/LAT"));
    EXPECT_TRUE(P::IsGeographical(wgs84.c_str()));
    EXPECT_FALSE(P::IsGeographical("UTM-32"));
    EXPECT_FALSE(P::HasDatum("LONG/LAT"));
    EXPECT_FALSE(P::HasDatum("NON-UTM"));
    EXPECT_TRUE(P::HasDatum("UTM-32"));
    EXPECT_TRUE(P::HasDatum(utm.c_str()));

    EXPECT_TRUE(P::IsType(8, "NON-UTM"));
    EXPECT_FALSE(P::IsType(4, "NON-UTM"));
    EXPECT_TRUE(P::IsType(12, "LONG/LAT"));
    EXPECT_FALSE(P::IsType(3, "LONG/LAT"));
    EXPECT_TRUE(P::IsType(1, "UTM-32"));
    EXPECT_FALSE(P::IsType(2, "UTM-32"));
    EXPECT_TRUE(P::IsType(2, wgs84.c_str()));
    EXPECT_THROW(P::IsType(3, "UTM"), std::out_of_range);

    EXPECT_EQ(P::GetCoordSysType("UTM-32"), 1); // east 0, north 1
    EXPECT_EQ(P::GetCoordSysType(Utm32("N/E", "500000", ",AXIS[\"N\",NORTH],AXIS[\"E\",EAST]").c_str()), 4);
    EXPECT_EQ(P::GetCoordSysType(Utm32("W/S", "500000", ",AXIS[\"W\",WEST],AXIS[\"S\",SOUTH]").c_str()), 11);

    EXPECT_STREQ(P::ShortName(utm.c_str()), "WGS 84 / UTM 32N");
    EXPECT_STREQ(P::ShortName("UTM-32"), "UTM-32");

    EXPECT_STREQ(P::LongitudeToUTMZone(9.5), "UTM-32");
    EXPECT_STREQ(P::LongitudeToUTMZone(-0.5), "UTM-30");
    EXPECT_STREQ(P::LongitudeToUTMZone(180.0), "UTM-1");
    EXPECT_STREQ(P::LongitudeToUTMZone(-180.0), "UTM-1");
    EXPECT_STREQ(P::LongitudeToUTMZone(NAN), "");
    EXPECT_STREQ(P::LongitudeToUTMZone(INFINITY), "");

    long n = 0;
    EXPECT_STREQ(P::EnumMapProjections(12, &n), "LONG/LAT;NON-UTM;");
    EXPECT_EQ(n, 2);
    const std::string projections = P::EnumMapProjections(1, &n);
    EXPECT_GT(n, 280); // 60 UTM zones, national grids, 231 state plane zones
    EXPECT_EQ(projections.compare(0, 7, "PROJCS["), 0);
    EXPECT_EQ(projections.back(), ';');
    EXPECT_EQ(std::string(P::EnumEllipsoids(CKvEllipsoidList::eSystem, &n)).find("WGS 84;") != std::string::npos,
              true);
    EXPECT_EQ(n, 24);
}

TEST(CoordSysStrings, IdenticalSystemsCompareNumbers)
{
    kvtest::ShippedCatalogue();
    using P = CKvMapProjection;
    const std::string a = Utm32("First", "500000");
    EXPECT_TRUE(P::AreIdentical(a.c_str(), Utm32("Other name", "500000").c_str()));
    EXPECT_TRUE(P::AreIdentical(a.c_str(), Utm32("Close", "500000.0000001").c_str()));
    EXPECT_FALSE(P::AreIdentical(a.c_str(), Utm32("Far", "500001").c_str()));
    EXPECT_FALSE(P::AreIdentical(a.c_str(), Utm32("N/E", "500000", ",AXIS[\"N\",NORTH],AXIS[\"E\",EAST]").c_str()));
    EXPECT_TRUE(P::AreIdentical(a.c_str(), Utm32("n/e", "500000", ",AXIS[\"X\",east],AXIS[\"Y\",north]").c_str()));
    // A catalogue name is compared through the WKT its engine describes.
    EXPECT_TRUE(P::AreIdentical("UTM-32", a.c_str()));
    EXPECT_FALSE(P::AreIdentical("UTM-33", a.c_str()));
    EXPECT_FALSE(P::AreIdentical("No such grid", a.c_str()));
    std::string shifted = a;
    shifted.replace(shifted.find("]],PRIMEM"), 2, "],TOWGS84[-87,-98,-121,0,0,0,0]],PRIMEM");
    EXPECT_FALSE(P::AreIdentical(a.c_str(), shifted.c_str()));
}

TEST(CoordSysStrings, BufferListFindsByNameAndTruncatesByType)
{
    kvtest::ShippedCatalogue();
    CKvBufferList list;
    for (const char* s : {"UTM-31", "LONG/LAT", "UTM-32", "NON-UTM", "UTM-33"})
        list.push_back(CString(s));
    list.push_back(CString(Utm32("WGS 84 / UTM 32N", "500000").c_str()));
    EXPECT_EQ(*list.FindMapProjection("UTM-32"), CString("UTM-32"));
    EXPECT_EQ(list.FindMapProjection("UTM-3"), list.end()); // whole names only
    EXPECT_EQ(list.FindMapProjection(Utm32("WGS 84 / UTM 32N", "1").c_str()), std::prev(list.end()));

    CKvBufferList copy = list;
    copy.TruncateToSize(1, 9); // fewer than nine projections: nothing goes
    EXPECT_EQ(copy.size(), 6u);
    copy.TruncateToSize(1, 2); // up to the second projection
    EXPECT_EQ(copy.size(), 3u);
    EXPECT_EQ(copy.back(), CString("UTM-32"));
    list.TruncateToSize(12, 0); // the first special name and nothing after it
    EXPECT_EQ(list.size(), 2u);
    EXPECT_EQ(list.back(), CString("LONG/LAT"));
}
