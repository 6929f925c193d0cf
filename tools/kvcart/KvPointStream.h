#ifndef KVCART_TOOLS_KVPOINTSTREAM_H
#define KVCART_TOOLS_KVPOINTSTREAM_H

#include <cstdio>
#include <string>

class CKvDatumConverter;

// The line-by-line conversion of the command-line program. Every input line
// gives exactly one output line, so that output stays aligned with input:
// - blank lines and comment lines (first non-blank character '#') are copied;
// - a point line holds two or three numbers ("x y" or "x y h") separated by
//   blanks, tabs or one comma, and any text after them; the converted
//   coordinates are written with the same kind of separator, followed by that
//   text unchanged;
// - a line that cannot be read, or a point the conversion cannot map (a
//   non-finite result), gives "* *" followed by the line's text after the
//   coordinates, and a message naming the line.
// Numbers are read and written in the C locale whatever the process locale is.
// The stream reuses its buffers: memory stays constant however long the input.
class CKvPointStream
{
public:
    // inverse: convert from the converter's target to its source.
    // precision: decimals written for each output coordinate.
    CKvPointStream(const CKvDatumConverter& converter, bool inverse, int precisionXY, int precisionH);
    CKvPointStream(const CKvPointStream&) = delete;
    CKvPointStream& operator=(const CKvPointStream&) = delete;
    virtual ~CKvPointStream();

    // Converts one line (without its line end) and appends the output line
    // (without line end) to out. Returns false for a marked line, with the reason
    // in problem.
    bool ConvertLine(const char* line, size_t length, std::string& out, std::string& problem) const;

    // The whole text is one finite number (C locale, a leading '+' allowed).
    static bool ParseNumber(const std::string& text, double& value);
    // Appends value in fixed notation with precision decimals, never "-0.000".
    static void AppendFixed(std::string& out, double value, int precision);

    // Converts every line of in to out; messages "name:line: what" go to err.
    // Returns the number of marked lines, or -1 when reading or writing failed
    // (the reason is then written to err too).
    long Run(FILE* in, const char* name, FILE* out, FILE* err);

private:
    const CKvDatumConverter& m_converter;
    bool m_bInverse;
    int m_precisionXY;
    int m_precisionH;
    char* m_pLine = nullptr; // getline's buffer, reused
    size_t m_lineCapacity = 0;
    std::string m_out;       // pending output, flushed in large blocks
    std::string m_problem;
};

#endif
