#include "paramfile/NumericLocale.h"

#include <charconv>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <stdlib.h>

namespace {

locale_t CLocale()
{
    // Created once, thread-safely, and kept for the life of the process.
    static const locale_t loc = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return loc;
}

// Switches the calling thread to the C locale for the lifetime of the object.
// uselocale() is per thread, so other threads of the host are not affected.
class CThreadLocaleScope
{
public:
    CThreadLocaleScope() : m_previous(uselocale(CLocale())) {}
    ~CThreadLocaleScope() { uselocale(m_previous); }
    CThreadLocaleScope(const CThreadLocaleScope&) = delete;
    CThreadLocaleScope& operator=(const CThreadLocaleScope&) = delete;

private:
    locale_t m_previous;
};

bool IsSpecialValue(const char* p)
{
    return strcasecmp(p, "inf") == 0 || strcasecmp(p, "infinity") == 0 || strcasecmp(p, "nan") == 0;
}

} // namespace

double CNumericLocale::Strtod(const char* text, char** endPtr)
{
    return strtod_l(text, endPtr, CLocale());
}

bool CNumericLocale::ParseDouble(const char* text, double& value)
{
    if (text == nullptr || *text == '\0')
        return false;
    const char* p = text;
    if (*p == '+' || *p == '-')
        ++p;
    if (IsSpecialValue(p)) {
        value = Strtod(text, nullptr);
        return true;
    }
    // Plain decimal only: digits with at most one point, then an optional exponent.
    bool digits = false;
    bool point = false;
    for (; *p != '\0' && *p != 'e' && *p != 'E'; ++p) {
        if (*p >= '0' && *p <= '9')
            digits = true;
        else if (*p == '.' && !point)
            point = true;
        else
            return false;
    }
    if (!digits)
        return false;
    if (*p == 'e' || *p == 'E') {
        ++p;
        if (*p == '+' || *p == '-')
            ++p;
        if (*p < '0' || *p > '9')
            return false;
        while (*p >= '0' && *p <= '9')
            ++p;
        if (*p != '\0')
            return false;
    }
    // The text is plain decimal now: from_chars reads it correctly rounded, as
    // strtod does, without the locale. Out of the double's range it leaves the
    // value alone, and strtod gives its usual answer (±HUGE_VAL, or the
    // underflowed result).
    const char* first = *text == '+' ? text + 1 : text;
    double parsed = 0.0;
    const std::from_chars_result r = std::from_chars(first, p, parsed);
    if (r.ec == std::errc() && r.ptr == p) {
        value = parsed;
        return true;
    }
    char* end = nullptr;
    parsed = Strtod(text, &end);
    if (end == nullptr || *end != '\0')
        return false;
    value = parsed;
    return true;
}

void CNumericLocale::AppendVFormat(std::string& out, const char* format, va_list args)
{
    CThreadLocaleScope scope;
    va_list probe;
    va_copy(probe, args);
    char small[256];
    const int needed = std::vsnprintf(small, sizeof small, format, probe);
    va_end(probe);
    if (needed < 0)
        return;
    if (static_cast<size_t>(needed) < sizeof small) {
        out.append(small, static_cast<size_t>(needed));
        return;
    }
    const size_t start = out.size();
    out.resize(start + static_cast<size_t>(needed) + 1);
    std::vsnprintf(&out[start], static_cast<size_t>(needed) + 1, format, args);
    out.resize(start + static_cast<size_t>(needed));
}

std::string CNumericLocale::FormatRoundTrip(double value)
{
    // to_chars with a precision writes what printf("%.17g") writes in the C
    // locale, digit for digit, without printf's locale and format parsing.
    char buffer[40];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 17);
    return std::string(buffer, r.ec == std::errc() ? r.ptr : buffer);
}
