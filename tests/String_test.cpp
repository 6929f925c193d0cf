#include "paramfile/String.h"

#include "TestSupport.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>

TEST(CString, TokenizeSkipsDelimiterRunsAndEndsWithMinusOne)
{
    const CString text("  +proj=tmerc  +k=0.9996 ");
    int pos = 0;
    EXPECT_EQ(text.Tokenize(" ", pos), "+proj=tmerc");
    EXPECT_EQ(text.Tokenize(" ", pos), "+k=0.9996");
    EXPECT_GT(pos, 0);
    EXPECT_EQ(text.Tokenize(" ", pos), "");
    EXPECT_EQ(pos, -1);
    // Once at the end, further calls stay there.
    EXPECT_EQ(text.Tokenize(" ", pos), "");
    EXPECT_EQ(pos, -1);

    const CString csv("a,,b;c");
    pos = 0;
    EXPECT_EQ(csv.Tokenize(",;", pos), "a");
    EXPECT_EQ(csv.Tokenize(",;", pos), "b");
    EXPECT_EQ(csv.Tokenize(",;", pos), "c");
    EXPECT_EQ(csv.Tokenize(",;", pos), "");
    EXPECT_EQ(pos, -1);

    pos = 0;
    EXPECT_EQ(CString("").Tokenize(",", pos), "");
    EXPECT_EQ(pos, -1);
}

TEST(CString, FindTrimCaseAndSubstrings)
{
    CString s("\t  Transverse_Mercator \r\n");
    EXPECT_EQ(s.Find("Mercator"), 14);
    EXPECT_EQ(s.Find("mercator"), -1);
    EXPECT_EQ(s.Find('M', 4), 14);
    EXPECT_EQ(s.Find('T', 4), -1);
    EXPECT_EQ(s.Find('x', 100), -1);
    s.Trim();
    EXPECT_EQ(s, "Transverse_Mercator");
    EXPECT_EQ(s.GetLength(), 19);

    CString left("  x  ");
    EXPECT_EQ(CString(left).TrimLeft(), "x  ");
    EXPECT_EQ(CString(left).TrimRight(), "  x");
    EXPECT_EQ(CString("[[a]]").Trim("[]"), "a");

    CString mixed("Lat_Ö_1");
    mixed.MakeUpper();
    EXPECT_EQ(mixed, "LAT_Ö_1"); // bytes beyond ASCII are left alone
    mixed.MakeLower();
    EXPECT_EQ(mixed, "lat_Ö_1");

    EXPECT_EQ(s.Left(10), "Transverse");
    EXPECT_EQ(s.Right(8), "Mercator");
    EXPECT_EQ(s.Mid(11), "Mercator");
    EXPECT_EQ(s.Mid(11, 3), "Mer");
    // Out-of-range requests are clamped, never read past the end.
    EXPECT_EQ(s.Left(100), s);
    EXPECT_EQ(s.Right(-3), "");
    EXPECT_EQ(s.Mid(50, 5), "");
    EXPECT_EQ(s.Mid(-5, 3), "Tra");
}

TEST(CString, ComparisonsAndConcatenation)
{
    const CString a("GEOGCS");
    EXPECT_EQ(a.Compare("GEOGCS"), 0);
    EXPECT_LT(a.Compare("PROJCS"), 0);
    EXPECT_GT(a.Compare("GEOG"), 0);
    EXPECT_EQ(a.CompareNoCase("geogcs"), 0);
    EXPECT_NE(a.CompareNoCase("geogcz"), 0);
    EXPECT_TRUE(a == "GEOGCS");
    EXPECT_TRUE("GEOGCS" == a);
    EXPECT_TRUE(a != CString("geogcs"));
    EXPECT_TRUE(CString("a") < CString("b"));

    CString b = a + "[" + CString("\"WGS 84\"") + ']';
    b += "!";
    EXPECT_STREQ(static_cast<const char*>(b), "GEOGCS[\"WGS 84\"]!");
    EXPECT_EQ(CString(std::string("std")), "std");
    EXPECT_EQ(CString(static_cast<const char*>(nullptr)), "");
    EXPECT_TRUE(CString().IsEmpty());
    b.Empty();
    EXPECT_TRUE(b.IsEmpty());
}

TEST(CString, FormatIsCLocaleAndUnbounded)
{
    kvtest::CommaLocale german;
    ASSERT_TRUE(german.Active()) << "the comma-decimal test locale could not be loaded";
    char probe[32];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    ASSERT_STREQ(probe, "1,5") << "the host locale should use a decimal comma";

    CString s;
    s.Format("%.17g,%d", 0.017453292519943295, 7);
    EXPECT_EQ(s, "0.017453292519943295,7");
    s.AppendFormat(" %s=%.4f", "k", 0.9996);
    EXPECT_EQ(s, "0.017453292519943295,7 k=0.9996");

    // Longer than any fixed buffer.
    const std::string longText(1000, 'x');
    s.Format("%s|%s", longText.c_str(), longText.c_str());
    EXPECT_EQ(s.GetLength(), 2001);
    EXPECT_EQ(s.Find('|'), 1000);
}

TEST(CString, ReplaceAllOccurrences)
{
    CString s("aXbXXc");
    EXPECT_EQ(s.Replace("X", "YY"), 3);
    EXPECT_EQ(s, "aYYbYYYYc");
    EXPECT_EQ(s.Replace("YY", "Y"), 3);
    EXPECT_EQ(s, "aYbYYc");
    EXPECT_EQ(s.Replace("", "z"), 0);
}
