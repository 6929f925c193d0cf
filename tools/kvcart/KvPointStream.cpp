#include "tools/kvcart/KvPointStream.h"

#include "geodesy/KvDatumConverter.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <charconv>
#include <cmath>
#include <cstring>
#include <sys/types.h>

namespace {

constexpr size_t kFlushSize = 1 << 16;

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool IsSeparator(char c)
{
    return IsBlank(c) || c == ',';
}

// Blanks, at most one comma, blanks.
const char* SkipSeparator(const char* p, const char* end)
{
    while (p < end && IsBlank(*p))
        ++p;
    if (p < end && *p == ',')
        ++p;
    while (p < end && IsBlank(*p))
        ++p;
    return p;
}

const char* TokenEnd(const char* p, const char* end)
{
    while (p < end && !IsSeparator(*p))
        ++p;
    return p;
}

enum class ENumber
{
    eOk,
    eNotANumber,
    eOutOfRange,
    eNotFinite
};

// One number token starting at p, which must end at a separator or at the end
// of the line. from_chars reads in the C locale, never the process's.
ENumber ReadNumber(const char* p, const char* end, double& value, const char*& after)
{
    const char* q = p;
    if (q < end && *q == '+' && q + 1 < end && q[1] != '-')
        ++q;
    const std::from_chars_result r = std::from_chars(q, end, value);
    after = r.ptr;
    if (r.ec == std::errc::invalid_argument || (r.ptr < end && !IsSeparator(*r.ptr)))
        return ENumber::eNotANumber;
    if (r.ec == std::errc::result_out_of_range)
        return ENumber::eOutOfRange;
    return std::isfinite(value) ? ENumber::eOk : ENumber::eNotFinite;
}

std::string Quoted(const char* p, const char* end)
{
    if (p == end)
        return "an empty field";
    std::string text(p, static_cast<size_t>(std::min<std::ptrdiff_t>(end - p, 40)));
    return "'" + text + (end - p > 40 ? "...'" : "'");
}

} // namespace

bool CKvPointStream::ParseNumber(const std::string& text, double& value)
{
    const char* end = text.c_str() + text.size();
    const char* after = nullptr;
    return !text.empty() && ReadNumber(text.c_str(), end, value, after) == ENumber::eOk && after == end;
}

void CKvPointStream::AppendFixed(std::string& out, double value, int precision)
{
    if (value == 0.0)
        value = 0.0; // no "-0.000"
    char buffer[400]; // a fixed-notation 1e308 with 17 decimals fits
    const std::to_chars_result r =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, precision);
    out.append(buffer, r.ptr);
}

CKvPointStream::CKvPointStream(const CKvDatumConverter& converter, bool inverse, int precisionXY, int precisionH)
    : m_converter(converter), m_bInverse(inverse), m_precisionXY(precisionXY), m_precisionH(precisionH)
{
    m_out.reserve(kFlushSize + 4096);
}

CKvPointStream::~CKvPointStream()
{
    std::free(m_pLine);
}

bool CKvPointStream::ConvertLine(const char* line, size_t length, std::string& out, std::string& problem) const
{
    const char* end = line + length;
    const char* p = line;
    while (p < end && IsBlank(*p))
        ++p;
    if (p == end || *p == '#') {
        out.append(line, length);
        return true;
    }

    // The coordinates, with the separators as written so that they are kept.
    double value[3] = {0.0, 0.0, 0.0};
    const char* separatorBegin[3] = {line, nullptr, nullptr};
    const char* numberBegin[3] = {p, nullptr, nullptr};
    const char* tail = end;
    int count = 0;
    for (const char* q = p; count < 3;) {
        const char* after = nullptr;
        const ENumber result = ReadNumber(q, end, value[count], after);
        if (result != ENumber::eOk) {
            if (count == 2 && result == ENumber::eNotANumber) {
                tail = separatorBegin[2]; // "x y text": the text is copied through
                break;
            }
            const char* tokenEnd = TokenEnd(q, end);
            if (result == ENumber::eNotANumber)
                problem = (count == 0 ? "expected a coordinate, found " : "expected a number, found ") +
                          Quoted(q, tokenEnd);
            else
                problem = (result == ENumber::eOutOfRange ? "number out of range " : "not a finite number ") +
                          Quoted(q, tokenEnd);
            out.append("* *");
            return false;
        }
        numberBegin[count] = q;
        ++count;
        tail = after;
        if (count == 3)
            break;
        const char* next = SkipSeparator(after, end);
        if (next == end) {
            if (count == 1) {
                problem = "only one coordinate; expected \"x y\" or \"x y h\"";
                out.append("* *");
                return false;
            }
            break;
        }
        separatorBegin[count] = after;
        numberBegin[count] = next;
        q = next;
    }

    double x = value[0], y = value[1], h = value[2];
    const bool hasHeight = count == 3;
    if (hasHeight) {
        if (m_bInverse)
            m_converter.InvConvert(x, y, h);
        else
            m_converter.Convert(x, y, h);
    } else {
        if (m_bInverse)
            m_converter.InvConvert(x, y);
        else
            m_converter.Convert(x, y);
    }
    if (!std::isfinite(x) || !std::isfinite(y) || (hasHeight && !std::isfinite(h))) {
        problem = "the point cannot be converted: it lies outside the domain of the coordinate systems";
        out.append("* *");
        out.append(tail, end);
        return false;
    }
    AppendFixed(out, x, m_precisionXY);
    out.append(separatorBegin[1], numberBegin[1]);
    AppendFixed(out, y, m_precisionXY);
    if (hasHeight) {
        out.append(separatorBegin[2], numberBegin[2]);
        AppendFixed(out, h, m_precisionH);
    }
    out.append(tail, end);
    return true;
}

long CKvPointStream::Run(FILE* in, const char* name, FILE* out, FILE* err)
{
    long lineNumber = 0, marked = 0;
    ssize_t n = 0;
    while ((n = getline(&m_pLine, &m_lineCapacity, in)) != -1) {
        ++lineNumber;
        size_t length = static_cast<size_t>(n);
        if (length > 0 && m_pLine[length - 1] == '\n')
            --length;
        const bool cr = length > 0 && m_pLine[length - 1] == '\r';
        if (cr)
            --length;
        if (!ConvertLine(m_pLine, length, m_out, m_problem)) {
            ++marked;
            std::fprintf(err, "kvcart: %s:%ld: %s\n", name, lineNumber, m_problem.c_str());
        }
        if (cr)
            m_out.push_back('\r');
        m_out.push_back('\n');
        if (m_out.size() >= kFlushSize) {
            if (std::fwrite(m_out.data(), 1, m_out.size(), out) != m_out.size())
                break;
            m_out.clear();
        }
    }
    if (std::ferror(in)) {
        std::fprintf(err, "kvcart: %s: cannot read: %s\n", name, std::strerror(errno));
        return -1;
    }
    if (std::fwrite(m_out.data(), 1, m_out.size(), out) != m_out.size() || std::fflush(out) != 0) {
        std::fprintf(err, "kvcart: cannot write the output: %s\n", std::strerror(errno));
        m_out.clear();
        return -1;
    }
    m_out.clear();
    return marked;
}
