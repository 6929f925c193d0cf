// Units, datum shift and axes of a coordinate system, and the axis conversion
// applied around the engines.
#include "coordsys/KvProjectionInfo.h"
#include "wkt/KvPRJParser.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// A transverse Mercator system in US feet with the given two AXIS nodes.
CKvProjectionInfo InfoFor(const std::string& axes)
{
    const std::string wkt =
        "PROJCS[\"T\",GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"S\",6378137,298.257223563],TOWGS84[1,2,3,0,0,0,0]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"Degree\",0.017453292519943295]],PROJECTION[\"Transverse_Mercator\"],"
        "PARAMETER[\"False_Easting\",0],PARAMETER[\"False_Northing\",0],PARAMETER[\"Central_Meridian\",9],"
        "PARAMETER[\"Scale_Factor\",1],PARAMETER[\"Latitude_Of_Origin\",0],UNIT[\"Foot_US\",0.3048006096012192]" +
        axes + "]";
    CKvPRJParser parser(wkt.c_str());
    EXPECT_TRUE(parser.Parse(false)) << wkt;
    CKvProjectionInfo info;
    info.SetProjectionInfo(parser);
    return info;
}

std::pair<double, double> Converted(const CKvProjectionInfo& info, double x, double y)
{
    info.Convert(x, y);
    return {x, y};
}

} // namespace

TEST(ProjectionInfo, DefaultsUnitsAndDatumShift)
{
    const CKvProjectionInfo plain;
    EXPECT_EQ(Converted(plain, 1, 2), std::make_pair(1.0, 2.0));
    char name[CKvProjectionInfo::UnitNameSize] = "junk";
    double factor = 0.0;
    EXPECT_FALSE(plain.GetProjUnit(&factor, name));
    EXPECT_STREQ(name, "");
    EXPECT_EQ(factor, CKvProjectionInfo::Undefined);
    EXPECT_FALSE(plain.GetAngularUnit(&factor, name));

    // The units are reported but not applied.
    const CKvProjectionInfo feet = InfoFor("");
    EXPECT_TRUE(feet.GetProjUnit(&factor, name));
    EXPECT_STREQ(name, "Foot_US");
    EXPECT_EQ(factor, 0.3048006096012192);
    EXPECT_TRUE(feet.GetAngularUnit(&factor, name));
    EXPECT_STREQ(name, "Degree");
    EXPECT_EQ(Converted(feet, 1000, 2000), std::make_pair(1000.0, 2000.0));
    CKvDatumShift shift;
    feet.GetDatumShift(shift);
    EXPECT_EQ(shift.GetType(), CKvCartDef::eThreeParameters);
    EXPECT_EQ(shift[1], 2.0);

    CKvProjectionInfo copy;
    copy = feet;
    EXPECT_TRUE(copy.GetProjUnit(&factor, name));
    EXPECT_STREQ(name, "Foot_US");
}

TEST(ProjectionInfo, AxisOrderAndSigns)
{
    struct
    {
        const char* axes;
        std::pair<double, double> converted;
        int coordSysType;
    } cases[] = {
        {",AXIS[\"Y\",north],AXIS[\"X\",East]", {2, 1}, 4 * 1 + 0},
        {",AXIS[\"X\",WEST],AXIS[\"Y\",SOUTH]", {-1, -2}, 4 * 2 + 3},
        {",AXIS[\"X\",SOUTH],AXIS[\"Y\",WEST]", {-2, -1}, 4 * 3 + 2},
        {",AXIS[\"X\",UP],AXIS[\"Y\",North]", {1, 2}, 4 * 0 + 1}, // unknown words are east
    };
    for (const auto& c : cases) {
        const CKvProjectionInfo info = InfoFor(c.axes);
        EXPECT_EQ(Converted(info, 1, 2), c.converted) << c.axes;
        double x = c.converted.first, y = c.converted.second;
        info.InvConvert(x, y);
        EXPECT_EQ(std::make_pair(x, y), std::make_pair(1.0, 2.0)) << c.axes;
        CKvProjectionInfo::CAxis::EType first, second;
        info.GetAxisTypes(first, second);
        EXPECT_EQ(4 * first + second, c.coordSysType) << c.axes;
    }

    // A type out of range keeps the sign; names are truncated to their field.
    CKvProjectionInfo::CAxis axis(CKvProjectionInfo::CAxis::eWest, std::string(100, 'n').c_str());
    EXPECT_EQ(std::string(axis.GetName()), std::string(CKvProjectionInfo::CAxis::NameSize - 1, 'n'));
    axis.SetProperties(static_cast<CKvProjectionInfo::CAxis::EType>(7), "odd");
    EXPECT_EQ(axis.GetSign(), -1.0);
    EXPECT_STREQ(axis.GetName(), "odd");
}
