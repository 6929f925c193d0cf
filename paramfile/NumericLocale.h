#ifndef KVCART_PARAMFILE_NUMERICLOCALE_H
#define KVCART_PARAMFILE_NUMERICLOCALE_H

#include <cstdarg>
#include <string>

// Numbers in parameter files, WKT and PROJ.4 text always use "." as the decimal
// separator, whatever locale the host program has switched to. Every conversion
// between text and double in the library goes through this class, which works
// with a process-wide "C" locale object instead of the global locale.
class CNumericLocale
{
public:
    // strtod in the C locale. endPtr may be null.
    static double Strtod(const char* text, char** endPtr);

    // Parses the whole of text as a decimal number (optional sign, digits, point,
    // exponent, or inf/infinity/nan). Hexadecimal floats are refused. Returns false
    // and leaves value unchanged when the text is anything else.
    static bool ParseDouble(const char* text, double& value);

    // vsnprintf in the C locale, appended to out.
    static void AppendVFormat(std::string& out, const char* format, va_list args);

    // "%.17g": the shortest form that always reads back to the same double.
    static std::string FormatRoundTrip(double value);
};

#endif
