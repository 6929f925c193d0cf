// The numbers of kvcart transform's point lines: read as the C library's
// strtod reads them in the C locale and written as its printf("%.*f") writes
// them, the reference here, on the forms that reach the limits of a double and
// of the fast paths (17 and more digits, exact ties of the last decimal,
// subnormals, 1e308).
#include "TestSupport.h"
#include "tools/kvcart/KvPointStream.h"
#include "paramfile/NumericLocale.h"

#include "geodesy/KvDatumConverter.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace {

std::string Printf(double value, int precision)
{
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", precision, value);
    return text;
}

std::string Fixed(double value, int precision)
{
    std::string text;
    CKvPointStream::AppendFixed(text, value, precision);
    return text;
}

// The bits strtod gives for text read whole, or false where it stops early,
// the value is not finite or it is out of range (beyond the largest double,
// or so small that it rounds to zero; a subnormal is read).
bool Strtod(const std::string& text, double& value)
{
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && std::isfinite(value) && !(errno == ERANGE && value == 0.0);
}

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

// Every precision the program writes, on doubles of every exponent, on
// coordinates, and on exact ties: a double n / 2^(p+1) with n odd has its
// (p+1)-th decimal a 5 followed by nothing, which rounds to the even digit.
TEST(PointStreamNumbers, FixedNotationIsPrintfsDigitByDigit)
{
    std::mt19937_64 random(20261124);
    for (int i = 0; i < 200000; ++i) {
        std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value) || value == 0.0)
            continue;
        const int precision = static_cast<int>(random() % 18);
        ASSERT_EQ(Fixed(value, precision), Printf(value, precision)) << value;
    }
    std::uniform_real_distribution<double> coordinate(-2.1e7, 2.1e7);
    for (int i = 0; i < 200000; ++i) {
        const double value = coordinate(random) / (i % 2 == 0 ? 1.0 : 1e5);
        const int precision = static_cast<int>(random() % 18);
        ASSERT_EQ(Fixed(value, precision), Printf(value, precision)) << value;
    }
    for (int precision : {0, 1, 4, 9}) {
        const double unit = std::ldexp(1.0, -(precision + 1));
        for (long n = -4001; n <= 4001; ++n) {
            const double tie = static_cast<double>(n) * unit;
            if (tie == 0.0)
                continue;
            for (double value : {tie, std::nextafter(tie, -HUGE_VAL), std::nextafter(tie, HUGE_VAL),
                                 tie + 5e6 * (n % 3)})
                ASSERT_EQ(Fixed(value, precision), Printf(value, precision)) << value;
        }
    }
    // Large, tiny and the rounding that carries into the whole part.
    for (double value : {1e308, -1e308, 1.7976931348623157e308, 9007199254740993.0, 18446744073709551615.0,
                         1e19, 5e-324, -5e-324, 2.2250738585072014e-308, 1e-30, -4e-5, 9.99995, 0.99999999995,
                         -99999.99995, 1844674407370.9551616})
        for (int precision = 0; precision <= 17; ++precision)
            ASSERT_EQ(Fixed(value, precision), Printf(value, precision)) << value << " " << precision;
    // Zero of either sign is written without its sign; a negative value that
    // rounds to zero keeps it, as printf writes it.
    EXPECT_EQ(Fixed(-0.0, 4), "0.0000");
    EXPECT_EQ(Fixed(0.0, 0), "0");
    EXPECT_EQ(Fixed(-1e-10, 4), "-0.0000");
}

// Decimals of every length, exponents, digits beyond what a double holds and
// the words and signs the reader refuses, against strtod in the C locale.
TEST(PointStreamNumbers, ReadingIsStrtodsBitForBit)
{
    std::mt19937_64 random(47);
    char text[64];
    for (int i = 0; i < 200000; ++i) {
        std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        const int digits = static_cast<int>(random() % 21);
        std::snprintf(text, sizeof text, i % 2 == 0 ? "%.*g" : "%.*f", digits, value);
        double read = 0, expected = 0;
        const bool ok = Strtod(text, expected);
        ASSERT_EQ(CKvPointStream::ParseNumber(text, read), ok) << text;
        if (ok) {
            ASSERT_TRUE(SameBits(read, expected)) << text;
        }
    }
    // Random strings of digits, points and signs: the fast path and the
    // library reader agree on what is a number and on its bits.
    for (int i = 0; i < 200000; ++i) {
        std::string word;
        const int length = 1 + static_cast<int>(random() % 26);
        for (int k = 0; k < length; ++k)
            word += "0123456789012345.-e"[random() % 19];
        double read = 0, expected = 0;
        const bool ok = Strtod(word, expected);
        ASSERT_EQ(CKvPointStream::ParseNumber(word, read), ok) << word;
        if (ok) {
            ASSERT_TRUE(SameBits(read, expected)) << word;
        }
    }
    const std::string many = "3." + std::string(600, '1') + "9";
    for (const std::string& number :
         {std::string("9007199254740993"), std::string("9007199254740992.5"), std::string("0.1000000000000000055511"),
          std::string("123456789012345678901234567890"), std::string("1e308"), std::string("1.7976931348623157e308"),
          std::string("4.9e-324"), std::string("2.4703282292062328e-324"), std::string("2.2250738585072011e-308"),
          std::string("-0"), std::string("9."), std::string(".5"), std::string("-.5"), std::string("0000000000000000000000012.5"),
          many}) {
        double read = 0, expected = 0;
        ASSERT_TRUE(Strtod(number, expected)) << number;
        EXPECT_TRUE(CKvPointStream::ParseNumber(number, read)) << number;
        EXPECT_TRUE(SameBits(read, expected)) << number;
    }
    double value = 0;
    EXPECT_TRUE(CKvPointStream::ParseNumber("+5", value));
    EXPECT_EQ(value, 5.0);
    EXPECT_TRUE(CKvPointStream::ParseNumber("-0", value));
    EXPECT_TRUE(std::signbit(value));
    for (const char* refused : {"", "+", "-", ".", "+-5", "++5", " 5", "5 ", "5,5", "0x10", "inf", "-inf", "nan",
                                "infinity", "1e309", "-1e400", "1e-400", "1e", "5e+", "1.5.2", "e5"})
        EXPECT_FALSE(CKvPointStream::ParseNumber(refused, value)) << refused;
}

// The catalogue's and the registry's numbers: written as printf("%.17g")
// writes them and read as strtod reads them (out-of-range values too, as
// infinities or underflowed results), on doubles of every exponent, NaN and
// the infinities, and on random strings.
TEST(PointStreamNumbers, LibraryNumbersArePrintfsAndStrtods)
{
    std::mt19937_64 random(53);
    char text[64];
    for (int i = 0; i < 200000; ++i) {
        std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        std::snprintf(text, sizeof text, "%.17g", value);
        ASSERT_EQ(CNumericLocale::FormatRoundTrip(value), text);
        if (!std::isfinite(value))
            continue;
        double read = 0;
        ASSERT_TRUE(CNumericLocale::ParseDouble(text, read)) << text;
        ASSERT_TRUE(SameBits(read, value)) << text;
    }
    for (const double special : {0.0, -0.0, HUGE_VAL, -HUGE_VAL, 5e-324, 1e308})
        EXPECT_EQ(CNumericLocale::FormatRoundTrip(special), (std::snprintf(text, sizeof text, "%.17g", special), text));
    for (int i = 0; i < 200000; ++i) {
        std::string word = i % 3 == 0 ? "+" : "";
        const int length = 1 + static_cast<int>(random() % 26);
        for (int k = 0; k < length; ++k)
            word += "0123456789012345.-e"[random() % 19];
        char* end = nullptr;
        const double expected = std::strtod(word.c_str(), &end);
        double read = 0;
        const bool ok = CNumericLocale::ParseDouble(word.c_str(), read);
        ASSERT_EQ(ok, end == word.c_str() + word.size()) << word;
        if (ok) {
            ASSERT_TRUE(SameBits(read, expected)) << word;
        }
    }
    for (const char* range : {"1e309", "-1e400", "1e-400", "2.4703282292062327e-324", "4.9e-324", "1e-310"}) {
        double read = 0;
        ASSERT_TRUE(CNumericLocale::ParseDouble(range, read)) << range;
        EXPECT_TRUE(SameBits(read, std::strtod(range, nullptr))) << range;
    }
}

// Point lines through a conversion that keeps every coordinate (degrees to
// degrees, no datum): 17 decimals give back the digits read, in either decimal
// mark, with the blanks and signs of the line.
TEST(PointStreamNumbers, LinesKeepTheirDigitsThroughAnIdentity)
{
    kvtest::ShippedCatalogue();
    CKvDatumConverter converter("LONG/LAT", "LONG/LAT");
    converter.SetConversionType(CKvDatumConverter::eGeoToGeo);
    CKvPointStream stream(converter, false, 7, 3);
    const struct
    {
        const char* in;
        const char* out;
    } cases[] = {
        {"  +9.1234567   -47.5000000  ", "9.1234567   -47.5000000  "},
        {"9,1234567;47,00000005;100,0005", "9,1234567;47,0000000;100,001"}, // binary below, above the tie
        {"9.12345674999999999999999 47.5", "9.1234568 47.5000000"}, // read as the double nearest 9.12345675
        {"-0 -0.0", "0.0000000 0.0000000"},
        {"1e-320 4.9e-324", "0.0000000 0.0000000"},
        {"-1e-320 -4.9e-324 -0.0001", "-0.0000000 -0.0000000 -0.000"},
    };
    for (const auto& c : cases) {
        std::string out, problem;
        EXPECT_TRUE(stream.ConvertLine(c.in, std::strlen(c.in), out, problem)) << c.in << ": " << problem;
        EXPECT_EQ(out, c.out) << c.in;
    }
    for (const char* refused : {"inf 47.5", "9.5 nan", "9.5 -infinity", "9.5 1e309", "0x9 47"}) {
        std::string out, problem;
        EXPECT_FALSE(stream.ConvertLine(refused, std::strlen(refused), out, problem)) << refused;
        EXPECT_EQ(out.substr(0, 3), "* *") << refused;
    }
}
