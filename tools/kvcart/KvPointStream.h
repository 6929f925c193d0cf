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

    // Lines converted together by Run, through the converter's batch form.
    static constexpr size_t kBlockLines = 256;

private:
    // One input line as read: what it is, its numbers, and where its separators
    // and trailing text lie (offsets into the line).
    struct SLine
    {
        enum EKind
        {
            eCopy,
            eBad,
            ePoint
        } kind = eCopy;
        double value[3] = {0.0, 0.0, 0.0};
        bool hasHeight = false;
        size_t separator[4] = {0, 0, 0, 0}; // begin and end of the separators before y and h
        size_t tail = 0;
        size_t offset = 0, length = 0; // the line's place in the block buffer
        bool cr = false;
    };

    // Reads the line into parsed; false, with the reason, for a line that
    // cannot be read (it is then marked).
    bool _parse(const char* line, size_t length, SLine& parsed, std::string& problem) const;
    // Writes the output line of a parsed (and converted) line; false for a marked one.
    bool _format(const char* line, size_t length, const SLine& parsed, std::string& out, std::string& problem) const;
    // Converts the points among the first count lines of the block.
    void _convertBlock(size_t count);

    const CKvDatumConverter& m_converter;
    bool m_bInverse;
    int m_precisionXY;
    int m_precisionH;
    char* m_pLine = nullptr; // getline's buffer, reused
    size_t m_lineCapacity = 0;
    std::string m_out;       // pending output, flushed in large blocks
    std::string m_block;     // the text of the current block of lines
    SLine m_lines[kBlockLines];
    std::string m_problems[kBlockLines];
    double m_x[kBlockLines], m_y[kBlockLines], m_h[kBlockLines];
};

#endif
