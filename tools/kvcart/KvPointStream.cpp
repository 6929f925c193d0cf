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

    // The coordinates, with the separators as written so that they are kept.
    parsed.kind = SLine::eBad;
    parsed.value[0] = parsed.value[1] = parsed.value[2] = 0.0;
    const char* separatorBegin[3] = {line, nullptr, nullptr};
    const char* numberBegin[3] = {p, nullptr, nullptr};
    const char* tail = end;
    int count = 0;
    for (const char* q = p; count < 3;) {
        const char* after = nullptr;
        const ENumber result = ReadNumber(q, end, parsed.value[count], after);
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
            parsed.tail = length; // a line that cannot be read keeps none of its text
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
                parsed.tail = length;
                return false;
            }
            break;
        }
        separatorBegin[count] = after;
        numberBegin[count] = next;
        q = next;
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
        return false;
    }
    const double x = parsed.value[0], y = parsed.value[1], h = parsed.value[2];
    if (!std::isfinite(x) || !std::isfinite(y) || (parsed.hasHeight && !std::isfinite(h))) {
        problem = "the point cannot be converted: it lies outside the domain of the coordinate systems";
        out.append("* *");
        out.append(line + parsed.tail, length - parsed.tail);
        return false;
    }
    AppendFixed(out, x, m_precisionXY);
    out.append(line + parsed.separator[0], parsed.separator[1] - parsed.separator[0]);
    AppendFixed(out, y, m_precisionXY);
    if (parsed.hasHeight) {
        out.append(line + parsed.separator[2], parsed.separator[3] - parsed.separator[2]);
        AppendFixed(out, h, m_precisionH);
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
    }
    return _format(line, length, parsed, out, problem);
}

void CKvPointStream::_convertBlock(size_t count)
{
    // Points with and without heights go through the converter's batch form in
    // two groups; each keeps the rules of its single-point form.
    for (int withHeight = 0; withHeight < 2; ++withHeight) {
        size_t n = 0;
        for (size_t i = 0; i < count; ++i) {
            const SLine& line = m_lines[i];
            if (line.kind != SLine::ePoint || line.hasHeight != (withHeight == 1))
                continue;
            m_x[n] = line.value[0];
            m_y[n] = line.value[1];
            m_h[n] = line.value[2];
            ++n;
        }
        if (n == 0)
            continue;
        double* h = withHeight == 1 ? m_h : nullptr;
        if (m_bInverse)
            m_converter.InvConvert(n, m_x, m_y, h);
        else
            m_converter.Convert(n, m_x, m_y, h);
        n = 0;
        for (size_t i = 0; i < count; ++i) {
            SLine& line = m_lines[i];
            if (line.kind != SLine::ePoint || line.hasHeight != (withHeight == 1))
                continue;
            line.value[0] = m_x[n];
            line.value[1] = m_y[n];
            if (withHeight == 1)
                line.value[2] = m_h[n];
            ++n;
        }
    }
}

long CKvPointStream::Run(FILE* in, const char* name, FILE* out, FILE* err)
{
    long lineNumber = 0, marked = 0;
    bool failedWrite = false;
    // Lines are read a block at a time into one reused buffer, parsed, converted
    // together, and written in their order.
    bool more = true;
    while (more && !failedWrite) {
        size_t count = 0;
        m_block.clear();
        while (count < kBlockLines) {
            const ssize_t n = getline(&m_pLine, &m_lineCapacity, in);
            if (n == -1) {
                more = false;
                break;
            }
            size_t length = static_cast<size_t>(n);
            if (length > 0 && m_pLine[length - 1] == '\n')
                --length;
            const bool cr = length > 0 && m_pLine[length - 1] == '\r';
            if (cr)
                --length;
            SLine& line = m_lines[count];
            line.offset = m_block.size();
            line.length = length;
            line.cr = cr;
            m_block.append(m_pLine, length);
            if (!_parse(m_pLine, length, line, m_problems[count]))
                line.kind = SLine::eBad;
            ++count;
        }
        _convertBlock(count);
        for (size_t i = 0; i < count; ++i) {
            const SLine& line = m_lines[i];
            ++lineNumber;
            const char* text = m_block.data() + line.offset;
            if (!_format(text, line.length, line, m_out, m_problems[i])) {
                ++marked;
                std::fprintf(err, "kvcart: %s:%ld: %s\n", name, lineNumber, m_problems[i].c_str());
            }
            if (line.cr)
                m_out.push_back('\r');
            m_out.push_back('\n');
        }
        if (m_out.size() >= kFlushSize) {
            if (std::fwrite(m_out.data(), 1, m_out.size(), out) != m_out.size())
                failedWrite = true;
            m_out.clear();
        }
    }
    if (std::ferror(in)) {
        std::fprintf(err, "kvcart: %s: cannot read: %s\n", name, std::strerror(errno));
        return -1;
    }
    if (failedWrite || std::fwrite(m_out.data(), 1, m_out.size(), out) != m_out.size() || std::fflush(out) != 0) {
        std::fprintf(err, "kvcart: cannot write the output: %s\n", std::strerror(errno));
        m_out.clear();
        return -1;
    }
    m_out.clear();
    return marked;
}
