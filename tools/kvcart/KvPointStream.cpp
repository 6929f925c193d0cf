#include "tools/kvcart/KvPointStream.h"

#include "geodesy/KvDatumConverter.h"
#include "tools/kvcart/KvProgressLine.h"

#include <algorithm>
#include <chrono>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace {

constexpr size_t kFlushSize = 1 << 16;
// The read buffer starts at this size and doubles up to the longest line.
constexpr size_t kInitialBuffer = 1 << 18;
// The longest number with a decimal comma that is read (it is copied to be read).
constexpr size_t kMaxCommaNumber = 128;

const char kCommaHint[] = " (to read decimal commas, separate the fields by ';' or a tab)";

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Whether c ends a field: with decimal commas a comma belongs to the number.
bool EndsField(char c, bool decimalComma)
{
    return IsBlank(c) || c == ';' || (c == ',' && !decimalComma);
}

// Blanks, at most one comma (not with decimal commas) or semicolon, blanks.
const char* SkipSeparator(const char* p, const char* end, bool decimalComma)
{
    while (p < end && IsBlank(*p))
        ++p;
    if (p < end && (*p == ';' || (*p == ',' && !decimalComma)))
        ++p;
    while (p < end && IsBlank(*p))
        ++p;
    return p;
}

const char* TokenEnd(const char* p, const char* end, bool decimalComma)
{
    while (p < end && !EndsField(*p, decimalComma))
        ++p;
    return p;
}

// The end of the count-th field from p (the first field's start), or end when
// the line has fewer fields.
const char* FieldsEnd(const char* p, const char* end, int count, bool decimalComma)
{
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            const char* next = SkipSeparator(p, end, decimalComma);
            if (next == end)
                return end;
            p = next;
        }
        p = TokenEnd(p, end, decimalComma);
    }
    return p;
}

// Powers of ten that are doubles exactly (5^22 < 2^53).
constexpr double kExactPowers[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                     1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// std::from_chars in the C locale, with a fast path for the plain decimals
// point files hold ("-12.3456789"): at most 19 digits making an integer m of
// at most 2^53, and k <= 22 of them decimals. m and 10^k are then doubles
// exactly and m / 10^k is the one correctly rounded division (Clinger, "How to
// read floating point numbers accurately", 1990), so the value is the one
// from_chars gives, bit for bit. Every other form (exponents, more digits, no
// digit before or after the point, inf, nan) goes to from_chars.
inline std::from_chars_result ReadDouble(const char* p, const char* end, double& value)
{
    const char* q = p;
    const bool negative = q < end && *q == '-';
    if (negative)
        ++q;
    const char* digits = q;
    std::uint64_t m = 0; // wraps beyond 19 digits, which are not taken
    while (q < end && IsDigit(*q))
        m = 10 * m + static_cast<unsigned>(*q++ - '0');
    const std::ptrdiff_t whole = q - digits;
    std::ptrdiff_t decimals = 0;
    if (whole > 0 && q < end && *q == '.') {
        const char* first = ++q;
        while (q < end && IsDigit(*q))
            m = 10 * m + static_cast<unsigned>(*q++ - '0');
        decimals = q - first;
        if (decimals == 0)
            return std::from_chars(p, end, value);
    }
    if (whole == 0 || whole + decimals > 19 || m > (std::uint64_t(1) << 53) || (q < end && (*q == 'e' || *q == 'E')))
        return std::from_chars(p, end, value);
    const double magnitude = static_cast<double>(m) / kExactPowers[decimals];
    value = negative ? -magnitude : magnitude;
    return {q, std::errc()};
}

__extension__ typedef unsigned __int128 UInt128;

constexpr std::uint64_t kPowers10[19] = {1ULL,
                                         10ULL,
                                         100ULL,
                                         1000ULL,
                                         10000ULL,
                                         100000ULL,
                                         1000000ULL,
                                         10000000ULL,
                                         100000000ULL,
                                         1000000000ULL,
                                         10000000000ULL,
                                         100000000000ULL,
                                         1000000000000ULL,
                                         10000000000000ULL,
                                         100000000000000ULL,
                                         1000000000000000ULL,
                                         10000000000000000ULL,
                                         100000000000000000ULL,
                                         1000000000000000000ULL};

const char kDigitPairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                           "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                           "8081828384858687888990919293949596979899";

// The digits of v from p backwards, two at a time; at least one. In 32 bits
// when v fits, where dividing by 100 is a cheaper multiplication.
template <typename T>
void WriteDigitsBackwards(char* p, T v)
{
    while (v >= 100) {
        const unsigned pair = static_cast<unsigned>(v % 100);
        v /= 100;
        p -= 2;
        std::memcpy(p, kDigitPairs + 2 * pair, 2);
    }
    if (v >= 10)
        std::memcpy(p - 2, kDigitPairs + 2 * v, 2);
    else
        p[-1] = static_cast<char>('0' + v);
}

// Writes the decimal digits of v < 10^19; returns the end.
char* WriteUnsigned(char* out, std::uint64_t v)
{
    // log10 from the bit length (1233 / 4096 ~ log10(2)), less one below the
    // power of ten it may reach.
    const int estimate = (64 - __builtin_clzll(v | 1)) * 1233 >> 12;
    const int n = estimate + 1 - ((v | 1) < kPowers10[estimate] ? 1 : 0);
    if (v <= 0xFFFFFFFFu)
        WriteDigitsBackwards(out + n, static_cast<std::uint32_t>(v));
    else
        WriteDigitsBackwards(out + n, v);
    return out + n;
}

template <typename T>
void WritePaddedDigits(char* out, T v, int width)
{
    int i = width;
    for (; i >= 2; i -= 2) {
        const unsigned pair = static_cast<unsigned>(v % 100);
        v /= 100;
        std::memcpy(out + i - 2, kDigitPairs + 2 * pair, 2);
    }
    if (i == 1)
        out[0] = static_cast<char>('0' + v);
}

// Writes v < 10^width in exactly width digits, with leading zeros.
void WritePadded(char* out, std::uint64_t v, int width)
{
    if (v <= 0xFFFFFFFFu)
        WritePaddedDigits(out, static_cast<std::uint32_t>(v), width);
    else
        WritePaddedDigits(out, v, width);
}

constexpr size_t kFixedBuffer = 400; // a fixed-notation 1e308 with 17 decimals fits

char* WriteFixedByLibrary(char* out, double value, int precision, char mark)
{
    char* const end = std::to_chars(out, out + kFixedBuffer, value, std::chars_format::fixed, precision).ptr;
    if (mark != '.')
        std::replace(out, end, '.', mark);
    return end;
}

// value in fixed notation with precision decimals (0 to 17) and the decimal
// mark given, as std::to_chars and printf write it: the exact binary value
// correctly rounded, an exact tie to the even last digit. A double is
// m 2^-s with m < 2^53: its whole part is m >> s, and the bits f of its
// fraction give the decimals f 10^p / 2^s, where f 10^p < 2^110 is exact in
// 128 bits; the quotient and the remainder against the half give the rounded
// decimals exactly, and a carry goes into the whole part. Values that are
// large integers (beyond 2^63) or tiny (s >= 128), and non-finite ones, go to
// std::to_chars.
// The buffer holds at least kFixedBuffer bytes; returns the end.
char* WriteFixed(char* out, double value, int precision, char mark)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const int exponent = static_cast<int>((bits >> 52) & 0x7FF);
    std::uint64_t m = bits & ((std::uint64_t(1) << 52) - 1);
    const int shift = exponent == 0 ? 1074 : 1075 - exponent;
    if (exponent != 0)
        m |= std::uint64_t(1) << 52;
    if (exponent == 0x7FF || precision < 0 || precision > 17 || shift < -10 || shift >= 128)
        return WriteFixedByLibrary(out, value, precision, mark);
    std::uint64_t whole = 0, fraction = 0;
    if (shift <= 0) {
        whole = m << -shift;
    } else {
        bool above = false, tie = false;
        if (shift < 64) {
            // The remainder lies in the product's low word: 64-bit arithmetic.
            whole = m >> shift;
            const std::uint64_t f = m - (whole << shift);
            const UInt128 n = static_cast<UInt128>(f) * kPowers10[precision];
            const std::uint64_t low = static_cast<std::uint64_t>(n), high = static_cast<std::uint64_t>(n >> 64);
            fraction = (high << 1 << (63 - shift)) | (low >> shift); // < 10^p
            const std::uint64_t rest = low & ((std::uint64_t(1) << shift) - 1);
            const std::uint64_t half = std::uint64_t(1) << (shift - 1);
            above = rest > half;
            tie = rest == half;
        } else {
            const UInt128 n = static_cast<UInt128>(m) * kPowers10[precision];
            fraction = static_cast<std::uint64_t>(n >> shift); // < 10^p
            const UInt128 rest = n - (static_cast<UInt128>(fraction) << shift);
            const UInt128 half = static_cast<UInt128>(1) << (shift - 1);
            above = rest > half;
            tie = rest == half;
        }
        const bool odd = ((precision > 0 ? fraction : whole) & 1) != 0; // the last digit written
        if (above || (tie && odd)) {
            if (++fraction == kPowers10[precision]) {
                fraction = 0;
                ++whole;
            }
        }
    }
    if ((bits >> 63) != 0)
        *out++ = '-';
    out = WriteUnsigned(out, whole);
    if (precision > 0) {
        *out++ = mark;
        WritePadded(out, fraction, precision);
        out += precision;
    }
    return out;
}

enum class ENumber
{
    eOk,
    eNotANumber,
    eOutOfRange,
    eNotFinite
};

ENumber Classify(const std::from_chars_result& r, double value)
{
    if (r.ec == std::errc::invalid_argument)
        return ENumber::eNotANumber;
    if (r.ec == std::errc::result_out_of_range)
        return ENumber::eOutOfRange;
    return std::isfinite(value) ? ENumber::eOk : ENumber::eNotFinite;
}

const char* SkipPlus(const char* p, const char* end)
{
    return p < end && *p == '+' && p + 1 < end && p[1] != '-' && p[1] != '+' ? p + 1 : p;
}

// [p, end) is one number written with a decimal comma: one comma, directly
// between digits, and no point. from_chars reads in the C locale, so the text
// is read through a copy with the comma made a point.
ENumber ReadCommaNumber(const char* p, const char* end, double& value)
{
    p = SkipPlus(p, end);
    const char* comma = static_cast<const char*>(std::memchr(p, ',', static_cast<size_t>(end - p)));
    if (comma == nullptr || comma == p || comma + 1 == end || !IsDigit(comma[-1]) || !IsDigit(comma[1]) ||
        std::memchr(comma + 1, ',', static_cast<size_t>(end - comma - 1)) != nullptr ||
        std::memchr(p, '.', static_cast<size_t>(end - p)) != nullptr || static_cast<size_t>(end - p) > kMaxCommaNumber)
        return ENumber::eNotANumber;
    char copy[kMaxCommaNumber];
    const size_t n = static_cast<size_t>(end - p);
    std::memcpy(copy, p, n);
    copy[comma - p] = '.';
    const std::from_chars_result r = ReadDouble(copy, copy + n, value);
    if (r.ptr != copy + n)
        return ENumber::eNotANumber;
    return Classify(r, value);
}

// The rare forms of ReadNumber: a number that does not end where a field does,
// which may be one with a decimal comma.
ENumber ReadOtherNumber(const char* p, const char* end, bool decimalComma, double& value, const char*& after,
                        bool& comma)
{
    if (!decimalComma || after == end || *after != ',')
        return ENumber::eNotANumber;
    after = TokenEnd(after, end, true);
    comma = true;
    return ReadCommaNumber(p, after, value);
}

// One number token starting at p, which must end where a field ends or at the
// end of the line; decimalComma: the line reads commas as decimal commas, and
// comma tells whether this number had one.
inline ENumber ReadNumber(const char* p, const char* end, bool decimalComma, double& value, const char*& after,
                          bool& comma)
{
    comma = false;
    const std::from_chars_result r = ReadDouble(SkipPlus(p, end), end, value);
    after = r.ptr;
    if (r.ec != std::errc::invalid_argument && (r.ptr == end || EndsField(*r.ptr, decimalComma)))
        return Classify(r, value);
    return ReadOtherNumber(p, end, decimalComma, value, after, comma);
}

// UTF-8 (RFC 3629): the length of the well-formed character at p, 0 for none.
size_t Utf8Length(const unsigned char* p, size_t available)
{
    const unsigned char c = p[0];
    size_t n = 0;
    unsigned char low = 0x80, high = 0xBF; // the range of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        low = c == 0xE0 ? 0xA0 : 0x80;  // no overlong forms
        high = c == 0xED ? 0x9F : 0xBF; // no surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        low = c == 0xF0 ? 0x90 : 0x80;
        high = c == 0xF4 ? 0x8F : 0xBF; // nothing beyond U+10FFFF
    } else {
        return 0;
    }
    if (available < n || p[1] < low || p[1] > high)
        return 0;
    for (size_t i = 2; i < n; ++i)
        if (p[i] < 0x80 || p[i] > 0xBF)
            return 0;
    return n;
}

// Appends the escaped form of at most limit bytes of text, whole characters
// only; returns the bytes taken.
size_t AppendEscapedPart(std::string& out, const char* text, size_t length, size_t limit)
{
    static const char kHex[] = "0123456789abcdef";
    const auto hex = [&out](unsigned char c) {
        out += "\\x";
        out += kHex[c >> 4];
        out += kHex[c & 15];
    };
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    size_t i = 0;
    while (i < length) {
        const unsigned char c = p[i];
        size_t n = 1;
        if (c >= 0x80) {
            n = Utf8Length(p + i, length - i);
            if (n == 0)
                n = 1;
        }
        if (i + n > limit)
            break;
        if (c == '\\')
            out += "\\\\";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\r')
            out += "\\r";
        else if (c == '\n')
            out += "\\n";
        else if (c < 0x20 || c == 0x7F)
            hex(c);
        else if (c < 0x80)
            out += static_cast<char>(c);
        else if (n == 1) // not UTF-8
            hex(c);
        else if (c == 0xC2 && p[i + 1] < 0xA0) { // U+0080..U+009F, the C1 controls
            hex(c);
            hex(p[i + 1]);
        } else
            out.append(text + i, n);
        i += n;
    }
    return i;
}

std::string Quoted(const char* p, const char* end)
{
    if (p == end)
        return "an empty field";
    std::string text = "'";
    const size_t length = static_cast<size_t>(end - p);
    if (AppendEscapedPart(text, p, length, 40) < length)
        text += "...";
    return text + "'";
}

bool HasDigit(const char* p, size_t length)
{
    for (size_t i = 0; i < length; ++i)
        if (IsDigit(p[i]))
            return true;
    return false;
}

// A coordinate as the output writes it: never "-0.000". Needs kFixedBuffer bytes.
char* WriteCoordinate(char* out, double value, int precision, bool decimalComma)
{
    if (value == 0.0)
        value = 0.0;
    return WriteFixed(out, value, precision, decimalComma ? ',' : '.');
}

void AppendCoordinate(std::string& out, double value, int precision, bool decimalComma)
{
    char buffer[kFixedBuffer];
    const char* end = WriteCoordinate(buffer, value, precision, decimalComma);
    out.append(buffer, static_cast<size_t>(end - buffer));
}

// Separators and trailing text that fit beside three coordinates in the
// buffer a point line is written through.
constexpr size_t kShortText = 256;

} // namespace

bool CKvPointStream::ParseNumber(const std::string& text, double& value)
{
    const char* end = text.c_str() + text.size();
    const char* after = nullptr;
    bool comma = false;
    return !text.empty() && ReadNumber(text.c_str(), end, false, value, after, comma) == ENumber::eOk && after == end;
}

void CKvPointStream::AppendFixed(std::string& out, double value, int precision)
{
    AppendCoordinate(out, value, precision, false);
}

void CKvPointStream::AppendEscaped(std::string& out, const char* text, size_t length)
{
    AppendEscapedPart(out, text, length, length);
}

CKvPointStream::CKvPointStream(const CKvDatumConverter& converter, bool inverse, int precisionXY, int precisionH)
    : m_converter(converter), m_bInverse(inverse), m_precisionXY(precisionXY), m_precisionH(precisionH)
{
    m_out.reserve(kFlushSize + 4096);
}

CKvPointStream::~CKvPointStream()
{
    std::free(m_pBuffer);
}

void CKvPointStream::SetUnits(double sourceUnit, double targetUnit)
{
    m_unitIn = m_bInverse ? targetUnit : sourceUnit;
    m_unitOut = m_bInverse ? sourceUnit : targetUnit;
}

bool CKvPointStream::_parse(const char* line, size_t length, SLine& parsed, std::string& problem) const
{
    const char* end = line + length;
    const char* p = line;
    while (p < end && IsBlank(*p))
        ++p;
    if (p == end || *p == '#') {
        parsed.kind = SLine::eCopy;
        return true;
    }
    parsed.kind = SLine::eBad;
    parsed.decimalComma = false;
    parsed.value[0] = parsed.value[1] = parsed.value[2] = 0.0;

    // What follows the first field decides what a comma is: a semicolon or
    // tabs alone make it a decimal comma. The first field is most often a
    // number that ends at a blank: then it holds no comma and is read once.
    double x = 0.0;
    const std::from_chars_result r = ReadDouble(SkipPlus(p, end), end, x);
    bool haveX = r.ec == std::errc() && std::isfinite(x) && (r.ptr == end || IsBlank(*r.ptr) || *r.ptr == ';');
    const char* first = r.ptr;
    if (!haveX) {
        first = p;
        while (first < end && !IsBlank(*first) && *first != ';')
            ++first;
    }
    const char* next = first;
    bool tabsOnly = true;
    for (; next < end && IsBlank(*next); ++next)
        tabsOnly = tabsOnly && *next == '\t';
    bool decimalComma = next < end && (*next == ';' || (next > first && tabsOnly));
    if (!haveX && std::memchr(p, ',', static_cast<size_t>(first - p)) != nullptr) {
        double value = 0.0;
        if (ReadCommaNumber(p, first, value) == ENumber::eNotANumber) {
            decimalComma = false; // "9.5,47.5": the comma separates
        } else if (!decimalComma && next < end) {
            problem = std::string("decimal commas and a comma separator cannot both be read: ") + Quoted(p, first) +
                      kCommaHint;
            parsed.tail = static_cast<size_t>(std::max(first, FieldsEnd(p, end, 2, true)) - line);
            return false;
        }
        // "9,5" alone: two coordinates separated by a comma.
    }

    // The coordinates, with the separators as written so that they are kept.
    const char* separatorBegin[3] = {line, nullptr, nullptr};
    const char* numberBegin[3] = {p, nullptr, nullptr};
    const char* numberEnd[3] = {nullptr, nullptr, nullptr};
    const char* tail = end;
    int count = 0;
    for (const char* q = p; count < 3;) {
        const char* after = first;
        bool comma = false;
        ENumber result = ENumber::eOk;
        if (haveX)
            parsed.value[0] = x;
        else
            result = ReadNumber(q, end, decimalComma, parsed.value[count], after, comma);
        haveX = false;
        if (result != ENumber::eOk) {
            if (count == 2 && result == ENumber::eNotANumber) {
                tail = separatorBegin[2]; // "x y text": the text is copied through
                break;
            }
            const char* tokenEnd = TokenEnd(q, end, decimalComma);
            if (result == ENumber::eNotANumber)
                problem = (count == 0 ? "expected a coordinate, found " : "expected a number, found ") +
                          Quoted(q, tokenEnd);
            else
                problem = (result == ENumber::eOutOfRange ? "number out of range " : "not a finite number ") +
                          Quoted(q, tokenEnd);
            // The text after the coordinates' fields is kept.
            parsed.tail = static_cast<size_t>(std::max(tokenEnd, FieldsEnd(p, end, 2, decimalComma)) - line);
            return false;
        }
        parsed.decimalComma = parsed.decimalComma || comma;
        numberBegin[count] = q;
        numberEnd[count] = after;
        ++count;
        tail = after;
        if (count == 3)
            break;
        const char* following = SkipSeparator(after, end, decimalComma);
        if (following == end) {
            if (count == 1) {
                problem = "only one coordinate; expected \"x y\" or \"x y h\"";
                parsed.tail = length;
                return false;
            }
            break;
        }
        separatorBegin[count] = after;
        numberBegin[count] = following;
        q = following;
    }

    // A line that reads decimal commas holds no decimal point as well: in
    // "9.5<TAB>47.5<TAB>1,234" the comma may group thousands.
    if (parsed.decimalComma) {
        int point = -1, comma = -1;
        for (int k = 0; k < count; ++k) {
            const size_t size = static_cast<size_t>(numberEnd[k] - numberBegin[k]);
            if (std::memchr(numberBegin[k], '.', size) != nullptr)
                point = k;
            if (std::memchr(numberBegin[k], ',', size) != nullptr)
                comma = k;
        }
        if (point >= 0) {
            problem = "decimal points and decimal commas cannot both be read: " +
                      Quoted(numberBegin[point], numberEnd[point]) + " and " +
                      Quoted(numberBegin[comma], numberEnd[comma]);
            parsed.tail = static_cast<size_t>(
                std::max(numberEnd[std::max(point, comma)], FieldsEnd(p, end, 2, true)) - line);
            return false;
        }
    }

    // A comma directly between digits next to a coordinate, on a line whose
    // fields are also separated by blanks, could be a decimal comma as well:
    // "9.5 47,5" is 9.5 47 5 or 9.5 47.5.
    if (!decimalComma) {
        bool blankSeparated = false;
        for (int k = 1; k < count; ++k) {
            const char* s = separatorBegin[k];
            while (s < numberBegin[k] && *s != ',' && *s != ';')
                ++s;
            blankSeparated = blankSeparated || s == numberBegin[k];
        }
        for (int k = 0; blankSeparated && k < count; ++k) {
            const char* c = numberEnd[k];
            if (end - c < 2 || *c != ',' || !IsDigit(c[-1]) || !IsDigit(c[1]))
                continue;
            const char* wordEnd = c + 1;
            while (wordEnd < end && !EndsField(*wordEnd, false))
                ++wordEnd;
            double value = 0.0;
            if (ReadCommaNumber(numberBegin[k], wordEnd, value) == ENumber::eNotANumber)
                continue;
            problem = std::string("decimal commas and a comma separator cannot both be read: ") +
                      Quoted(numberBegin[k], wordEnd) + kCommaHint;
            parsed.tail = static_cast<size_t>(std::max(wordEnd, FieldsEnd(p, end, 2, true)) - line);
            return false;
        }
    }

    parsed.kind = SLine::ePoint;
    parsed.hasHeight = count == 3;
    parsed.separator[0] = static_cast<size_t>(separatorBegin[1] - line);
    parsed.separator[1] = static_cast<size_t>(numberBegin[1] - line);
    if (parsed.hasHeight) {
        parsed.separator[2] = static_cast<size_t>(separatorBegin[2] - line);
        parsed.separator[3] = static_cast<size_t>(numberBegin[2] - line);
    }
    parsed.tail = static_cast<size_t>(tail - line);
    return true;
}

bool CKvPointStream::_format(const char* line, size_t length, const SLine& parsed, std::string& out,
                             std::string& problem) const
{
    if (parsed.kind == SLine::eCopy) {
        out.append(line, length);
        return true;
    }
    if (parsed.kind == SLine::eBad) {
        out.append("* *");
        if (parsed.tail < length)
            out.append(line + parsed.tail, length - parsed.tail);
        return false;
    }
    const double x = parsed.value[0], y = parsed.value[1], h = parsed.value[2];
    if (!std::isfinite(x) || !std::isfinite(y) || (parsed.hasHeight && !std::isfinite(h))) {
        problem = "the point cannot be converted: it lies outside the domain of the coordinate systems";
        out.append("* *");
        out.append(line + parsed.tail, length - parsed.tail);
        return false;
    }
    const bool comma = parsed.decimalComma;
    const size_t first = parsed.separator[1] - parsed.separator[0];
    const size_t second = parsed.hasHeight ? parsed.separator[3] - parsed.separator[2] : 0;
    const size_t tail = length - parsed.tail;
    if (first + second + tail <= kShortText) {
        // The usual line, written through one buffer and appended once.
        char buffer[3 * kFixedBuffer + kShortText];
        char* p = WriteCoordinate(buffer, x, m_precisionXY, comma);
        std::memcpy(p, line + parsed.separator[0], first);
        p = WriteCoordinate(p + first, y, m_precisionXY, comma);
        if (parsed.hasHeight) {
            std::memcpy(p, line + parsed.separator[2], second);
            p = WriteCoordinate(p + second, h, m_precisionH, comma);
        }
        std::memcpy(p, line + parsed.tail, tail);
        out.append(buffer, static_cast<size_t>(p + tail - buffer));
        return true;
    }
    AppendCoordinate(out, x, m_precisionXY, comma);
    out.append(line + parsed.separator[0], parsed.separator[1] - parsed.separator[0]);
    AppendCoordinate(out, y, m_precisionXY, comma);
    if (parsed.hasHeight) {
        out.append(line + parsed.separator[2], parsed.separator[3] - parsed.separator[2]);
        AppendCoordinate(out, h, m_precisionH, comma);
    }
    out.append(line + parsed.tail, length - parsed.tail);
    return true;
}

bool CKvPointStream::ConvertLine(const char* line, size_t length, std::string& out, std::string& problem) const
{
    SLine parsed;
    if (!_parse(line, length, parsed, problem))
        return _format(line, length, parsed, out, problem);
    if (parsed.kind == SLine::ePoint) {
        double* v = parsed.value;
        v[0] *= m_unitIn;
        v[1] *= m_unitIn;
        if (parsed.hasHeight) {
            if (m_bInverse)
                m_converter.InvConvert(v[0], v[1], v[2]);
            else
                m_converter.Convert(v[0], v[1], v[2]);
        } else {
            if (m_bInverse)
                m_converter.InvConvert(v[0], v[1]);
            else
                m_converter.Convert(v[0], v[1]);
        }
        v[0] /= m_unitOut;
        v[1] /= m_unitOut;
    }
    return _format(line, length, parsed, out, problem);
}

void CKvPointStream::SetExpectedBox(bool converterTarget, bool degrees, double x0, double y0, double x1, double y1,
                                    const std::string& what)
{
    SBox& box = m_box[converterTarget != m_bInverse ? 1 : 0];
    box.set = true;
    box.degrees = degrees;
    box.x0 = x0;
    box.y0 = y0;
    box.x1 = x1;
    box.y1 = y1;
    box.what = what;
}

bool CKvPointStream::SBox::Holds(double x, double y) const
{
    if (!set || !std::isfinite(x) || !std::isfinite(y))
        return true; // a point without coordinates is marked on its own
    if (!(y >= y0 && y <= y1))
        return false;
    if (!degrees)
        return x >= x0 && x <= x1;
    const double width = x1 >= x0 ? x1 - x0 : x1 + 360.0 - x0;
    if (width >= 360.0)
        return true;
    double d = std::fmod(x - x0, 360.0);
    if (d < 0.0)
        d += 360.0;
    return d <= width;
}

void CKvPointStream::_convertBlock(SBlock& block) const
{
    block.out.clear();
    block.ends.resize(block.count);
    block.boxLine = -1;
    block.points = 0;
    const char* text = block.text.data();
    // A batch at a time: its lines parsed, their points converted together,
    // and the lines formatted while they are in cache.
    for (size_t first = 0; first < block.count; first += kBlockLines) {
        const size_t count = std::min(kBlockLines, block.count - first);
        for (size_t i = first; i < first + count; ++i) {
            SLine& line = block.lines[i];
            if (line.tooLong)
                continue;
            const char* p = text + line.offset;
            if (block.firstLine + static_cast<long>(i) <= m_skipHeader) {
                line.kind = SLine::eCopy;
            } else if (!_parse(p, line.length, line, line.problem)) {
                line.kind = SLine::eBad;
                line.noCoordinates = !HasDigit(p, line.length);
            }
        }
        _convertBatch(block, first, count);
        for (size_t i = first; i < first + count; ++i) {
            SLine& line = block.lines[i];
            line.marked = !_format(text + line.offset, line.length, line, block.out, line.problem);
            if (line.cr)
                block.out.push_back('\r');
            block.out.push_back('\n');
            block.ends[i] = block.out.size();
        }
    }
}

void CKvPointStream::_convertBatch(SBlock& block, size_t first, size_t count) const
{
    SLine* const lines = block.lines.data() + first;
    double x[kBlockLines], y[kBlockLines], h[kBlockLines];
    // Points far outside a system's area of use: the first of the block is
    // reported, unless one was before.
    const bool checkBox = block.boxLine < 0 && !m_boxReported.load(std::memory_order_relaxed);
    long boxLine = -1;
    int boxSide = 0;
    // Points with and without heights go through the converter's batch form in
    // two groups; each keeps the rules of its single-point form.
    for (int withHeight = 0; withHeight < 2; ++withHeight) {
        size_t n = 0;
        for (size_t i = 0; i < count; ++i) {
            const SLine& line = lines[i];
            if (line.kind != SLine::ePoint || line.hasHeight != (withHeight == 1))
                continue;
            x[n] = line.value[0];
            y[n] = line.value[1];
            h[n] = line.value[2];
            ++n;
        }
        if (n == 0)
            continue;
        block.points += n;
        if (m_unitIn != 1.0)
            for (size_t i = 0; i < n; ++i) {
                x[i] *= m_unitIn;
                y[i] *= m_unitIn;
            }
        const auto beyond = [&](int side) {
            if (!checkBox || !m_box[side].set)
                return;
            size_t k = 0;
            for (size_t i = 0; i < count; ++i) {
                const SLine& line = lines[i];
                if (line.kind != SLine::ePoint || line.hasHeight != (withHeight == 1))
                    continue;
                if (!m_box[side].Holds(x[k], y[k])) {
                    if (boxLine < 0 || static_cast<long>(i) < boxLine) {
                        boxLine = static_cast<long>(i);
                        boxSide = side;
                    }
                    return;
                }
                ++k;
            }
        };
        beyond(0);
        double* heights = withHeight == 1 ? h : nullptr;
        if (m_bInverse)
            m_converter.InvConvert(n, x, y, heights);
        else
            m_converter.Convert(n, x, y, heights);
        beyond(1);
        if (m_unitOut != 1.0)
            for (size_t i = 0; i < n; ++i) {
                x[i] /= m_unitOut;
                y[i] /= m_unitOut;
            }
        n = 0;
        for (size_t i = 0; i < count; ++i) {
            SLine& line = lines[i];
            if (line.kind != SLine::ePoint || line.hasHeight != (withHeight == 1))
                continue;
            line.value[0] = x[n];
            line.value[1] = y[n];
            if (withHeight == 1)
                line.value[2] = h[n];
            ++n;
        }
    }
    if (boxLine >= 0) {
        block.boxLine = static_cast<long>(first) + boxLine;
        block.boxSide = boxSide;
    }
}

void CKvPointStream::_read(FILE* in)
{
    const size_t wanted = m_capacity - m_end;
    if (wanted == 0)
        return;
    errno = 0;
    const size_t n = std::fread(m_pBuffer + m_end, 1, wanted, in);
    m_end += n;
    m_bytesRead.store(m_bytesRead.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
    if (n < wanted) {
        if (std::ferror(in))
            m_readErrno = errno != 0 ? errno : EIO;
        else
            m_eof = true;
    }
}

bool CKvPointStream::_grow()
{
    if (m_capacity > m_lineLimit)
        return false;
    const size_t capacity = std::min(2 * m_capacity, m_lineLimit + 1);
    char* bigger = static_cast<char*>(std::realloc(m_pBuffer, capacity));
    if (bigger == nullptr) {
        m_lineLimit = m_capacity - 1; // what memory allows
        return false;
    }
    m_pBuffer = bigger;
    m_capacity = capacity;
    return true;
}

CKvPointStream::ENext CKvPointStream::_skipLongLine(FILE* in, unsigned long long& skipped)
{
    // The buffer holds the line's first bytes and no line end: read on to it.
    skipped = m_end;
    m_begin = m_end = 0;
    while (m_readErrno == 0 && !m_eof) {
        _read(in);
        const char* newline = static_cast<const char*>(std::memchr(m_pBuffer, '\n', m_end));
        if (newline != nullptr) {
            m_begin = static_cast<size_t>(newline - m_pBuffer);
            skipped += m_begin++;
            return ENext::eTooLong;
        }
        skipped += m_end;
        m_end = 0;
    }
    return ENext::eTooLong;
}

CKvPointStream::ENext CKvPointStream::_nextLine(FILE* in, bool mayMove, const char*& text, size_t& length,
                                                unsigned long long& skipped)
{
    for (;;) {
        const size_t held = m_end - m_begin;
        char* start = m_pBuffer + m_begin;
        const char* newline = held > 0 ? static_cast<const char*>(std::memchr(start, '\n', held)) : nullptr;
        if (newline != nullptr) {
            text = start;
            length = static_cast<size_t>(newline - start);
            m_begin += length + 1;
            return ENext::eLine;
        }
        if (m_eof || m_readErrno != 0) {
            // The last line may lack its line end; after a read error it may be
            // cut short, and is not read.
            if (held == 0 || m_readErrno != 0)
                return ENext::eEnd;
            text = start;
            length = held;
            m_begin = m_end;
            return ENext::eLine;
        }
        if (!mayMove)
            return ENext::eWait;
        if (m_begin > 0) {
            std::memmove(m_pBuffer, start, held);
            m_begin = 0;
            m_end = held;
        }
        if (m_end == m_capacity && !_grow())
            return _skipLongLine(in, skipped);
        _read(in);
    }
}

void CKvPointStream::SetThreads(int threads, size_t blockLines)
{
    m_threads = std::max(1, threads);
    m_blockLines = std::max<size_t>(1, blockLines);
}

void CKvPointStream::SetProgress(bool enabled, double delay, double interval)
{
    m_progress = enabled;
    m_progressDelay = delay;
    m_progressInterval = interval;
}

namespace {

double Seconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

bool CKvPointStream::_readBlock(FILE* in, SBlock& block, long& lineNumber)
{
    block.firstLine = lineNumber + 1;
    block.count = 0;
    block.text.clear();
    block.failed = block.done = false;
    if (block.lines.size() < m_blockLines)
        block.lines.resize(m_blockLines);
    while (block.count < m_blockLines && block.text.size() < kPipelineBytes) {
        const char* text = nullptr;
        size_t length = 0;
        unsigned long long skipped = 0;
        const ENext next = _nextLine(in, true, text, length, skipped);
        if (next == ENext::eEnd)
            break;
        // The fields a line's conversion does not set itself.
        SLine& line = block.lines[block.count++];
        line.kind = SLine::eCopy;
        line.cr = line.tooLong = line.noCoordinates = line.marked = false;
        line.problem.clear();
        line.length = 0;
        line.offset = block.text.size();
        const long number = ++lineNumber;
        if (next == ENext::eTooLong) {
            line.kind = SLine::eBad;
            line.tooLong = true;
            line.tail = 0;
            line.problem = "line " + std::to_string(number) + " is longer than " + std::to_string(m_lineLimit) +
                           " bytes (" + std::to_string(skipped) + " bytes)" +
                           (m_lineLimit < kMaxLineLength ? ": no memory to hold more" : "");
            continue;
        }
        line.cr = length > 0 && text[length - 1] == '\r';
        line.length = line.cr ? length - 1 : length;
        block.text.append(text, line.length);
    }
    return block.count > 0;
}

bool CKvPointStream::_writeBlock(const SBlock& block, SWriter& writer)
{
    // The output is flushed at the first line end past kFlushSize, whatever
    // the blocks, so that what is written before a message or a failure does
    // not depend on them.
    size_t start = 0;
    for (size_t i = 0; i < block.count; ++i) {
        const SLine& line = block.lines[i];
        const long number = ++writer.lines;
        if (static_cast<long>(i) == block.boxLine && !m_boxReported) {
            m_boxReported = true;
            if (writer.progress != nullptr)
                writer.progress->Clear();
            std::fprintf(writer.err,
                         "kvcart: warning: %s:%ld: the point lies far outside the area of use of %s "
                         "(later points are not checked)\n",
                         writer.name.c_str(), number, m_box[block.boxSide].what.c_str());
        }
        bool header = false;
        if (!writer.sawData && line.kind != SLine::eCopy) {
            header = line.noCoordinates;
            writer.sawData = true;
        }
        if (line.marked) {
            ++writer.marked;
            if (writer.progress != nullptr)
                writer.progress->Clear();
            if (header)
                std::fprintf(writer.err,
                             "kvcart: %s:%ld: line %ld holds no coordinates; if it is a header, use --skip-header "
                             "%ld\n",
                             writer.name.c_str(), number, number, number);
            else
                std::fprintf(writer.err, "kvcart: %s:%ld: %s\n", writer.name.c_str(), number, line.problem.c_str());
        }
        if (m_out.size() + (block.ends[i] - start) >= kFlushSize) {
            m_out.append(block.out, start, block.ends[i] - start);
            start = block.ends[i];
            const bool written = std::fwrite(m_out.data(), 1, m_out.size(), writer.out) == m_out.size();
            m_out.clear();
            if (!written) {
                writer.failedWrite = true;
                writer.writeErrno = errno;
                return false;
            }
        }
    }
    m_out.append(block.out, start, std::string::npos);
    writer.points += block.points;
    if (writer.progress != nullptr)
        writer.progress->Update(m_bytesRead.load(std::memory_order_relaxed), writer.lines, writer.points,
                                Seconds() - writer.start);
    return true;
}

bool CKvPointStream::_runThreads(FILE* in, SWriter& writer, long& lineNumber)
{
    const size_t blocks = 2 * static_cast<size_t>(m_threads) + 2;
    while (m_blocks.size() < blocks)
        m_blocks.push_back(std::make_unique<SBlock>());
    m_free.clear();
    for (size_t i = 0; i < blocks; ++i)
        m_free.push_back(m_blocks[i].get());
    m_toConvert.clear();
    m_toWrite.clear();
    m_readingDone = false;
    m_stop = false;
    std::atomic<bool> outOfMemory{false};

    const auto convert = [this]() {
        for (;;) {
            SBlock* block = nullptr;
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                m_blockRead.wait(lock, [this] { return !m_toConvert.empty() || m_readingDone; });
                if (m_toConvert.empty())
                    return;
                block = m_toConvert.front();
                m_toConvert.pop_front();
            }
            if (!m_stop) {
                try {
                    _convertBlock(*block);
                } catch (const std::bad_alloc&) {
                    block->failed = true;
                }
            }
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                block->done = true;
            }
            m_blockDone.notify_one();
        }
    };
    const auto write = [this, &writer, &outOfMemory]() {
        for (;;) {
            SBlock* block = nullptr;
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                m_blockDone.wait(lock, [this] {
                    return m_toWrite.empty() ? m_readingDone : m_toWrite.front()->done;
                });
                if (m_toWrite.empty())
                    return;
                block = m_toWrite.front();
                m_toWrite.pop_front();
            }
            if (!m_stop) {
                bool written = false;
                try {
                    written = !block->failed && _writeBlock(*block, writer);
                } catch (const std::bad_alloc&) {
                    block->failed = true;
                }
                if (block->failed)
                    outOfMemory = true;
                if (!written)
                    m_stop = true;
            }
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_free.push_back(block);
            }
            m_blockFree.notify_one();
        }
    };
    const auto finishReading = [this]() {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_readingDone = true;
        }
        m_blockRead.notify_all();
        m_blockDone.notify_all();
    };

    std::vector<std::thread> threads;
    try {
        for (int i = 0; i < m_threads; ++i)
            threads.emplace_back(convert);
        threads.emplace_back(write);
    } catch (const std::system_error&) {
        // No more threads to be had: those started end, and this one converts.
        finishReading();
        for (std::thread& thread : threads)
            thread.join();
        SBlock& block = *m_blocks[0];
        while (!writer.failedWrite && _readBlock(in, block, lineNumber)) {
            _convertBlock(block);
            _writeBlock(block, writer);
        }
        return true;
    }

    // This thread reads, while blocks are free, until the input ends or the
    // writer stops.
    for (;;) {
        SBlock* block = nullptr;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_blockFree.wait(lock, [this] { return !m_free.empty(); });
            block = m_free.back();
            m_free.pop_back();
        }
        bool read = false;
        if (!m_stop) {
            try {
                read = _readBlock(in, *block, lineNumber);
            } catch (const std::bad_alloc&) {
                outOfMemory = true; // the blocks read before are still written, as by one thread
            }
        }
        if (!read) {
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_free.push_back(block);
            }
            finishReading();
            break;
        }
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_toConvert.push_back(block);
            m_toWrite.push_back(block);
        }
        m_blockRead.notify_one();
    }
    for (std::thread& thread : threads)
        thread.join();
    return !outOfMemory;
}

long CKvPointStream::Run(FILE* in, const char* name, FILE* out, FILE* err)
{
    SWriter writer;
    writer.out = out;
    writer.err = err;
    AppendEscaped(writer.name, name, std::strlen(name));
    long lineNumber = 0; // lines read
    bool outOfMemory = false;
    m_begin = m_end = 0;
    m_eof = false;
    m_readErrno = 0;
    m_bytesRead = 0;
    std::unique_ptr<CKvProgressLine> progress;
    if (CKvProgressLine::Wanted(err, !m_progress)) {
        struct stat status;
        const int fd = fileno(in);
        const bool sized = fd >= 0 && fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
        progress = std::make_unique<CKvProgressLine>(
            err, writer.name, sized ? static_cast<unsigned long long>(status.st_size) : 0ULL, m_progressDelay,
            m_progressInterval);
        writer.progress = progress.get();
        writer.start = Seconds();
    }
    try {
        if (m_pBuffer == nullptr) {
            m_pBuffer = static_cast<char*>(std::malloc(kInitialBuffer));
            if (m_pBuffer == nullptr)
                throw std::bad_alloc();
            m_capacity = kInitialBuffer;
        }
        _read(in);
        if (m_end >= 3 && std::memcmp(m_pBuffer, "\xEF\xBB\xBF", 3) == 0)
            m_begin = 3; // a UTF-8 byte-order mark
        if (m_threads > 1) {
            outOfMemory = !_runThreads(in, writer, lineNumber);
        } else {
            if (m_blocks.empty())
                m_blocks.push_back(std::make_unique<SBlock>());
            SBlock& block = *m_blocks[0];
            while (!writer.failedWrite && _readBlock(in, block, lineNumber)) {
                _convertBlock(block);
                _writeBlock(block, writer);
            }
        }
    } catch (const std::bad_alloc&) {
        outOfMemory = true;
    }
    // What was converted is written before any message about what was not.
    if (!writer.failedWrite &&
        (std::fwrite(m_out.data(), 1, m_out.size(), out) != m_out.size() || std::fflush(out) != 0)) {
        writer.failedWrite = true;
        writer.writeErrno = errno;
    }
    m_out.clear();
    if (progress)
        progress->Clear();
    const char* shownName = writer.name.c_str();
    if (m_readErrno != 0) {
        if (writer.lines > 0)
            std::fprintf(err, "kvcart: %s: cannot read after line %ld: %s\n", shownName, writer.lines,
                         std::strerror(m_readErrno));
        else
            std::fprintf(err, "kvcart: %s: cannot read: %s\n", shownName, std::strerror(m_readErrno));
    }
    if (outOfMemory)
        std::fprintf(err, "kvcart: %s: out of memory after line %ld\n", shownName, writer.lines);
    if (writer.failedWrite)
        std::fprintf(err, "kvcart: cannot write the output: %s\n", std::strerror(writer.writeErrno));
    return m_readErrno != 0 || outOfMemory || writer.failedWrite ? -1 : writer.marked;
}
