#ifndef KVCART_TOOLS_KVPROGRESSLINE_H
#define KVCART_TOOLS_KVPROGRESSLINE_H

#include <cstddef>
#include <cstdio>
#include <string>

// The progress line of kvcart transform on a terminal's standard error:
//   kvcart: points.txt: 45% read, 2.1 million points/s
// for an input whose size is known (a regular file), else
//   kvcart: stdin: 1200000 lines read, 2.1 million points/s
// It appears once an input has taken delay seconds, is rewritten in place
// ('\r') at most every interval seconds, and is cleared (blanks over it) before
// any message and when the input ends, so that messages keep lines of their
// own and nothing of it stays on the screen.
class CKvProgressLine
{
public:
    // size: the input's bytes, 0 when not known. name as messages show it.
    CKvProgressLine(FILE* err, const std::string& name, unsigned long long size, double delay, double interval);
    CKvProgressLine(const CKvProgressLine&) = delete;
    CKvProgressLine& operator=(const CKvProgressLine&) = delete;
    virtual ~CKvProgressLine() = default;

    // Whether a progress line goes to err: a terminal, and not switched off.
    static bool Wanted(FILE* err, bool switchedOff);
    // The line's text (without '\r'): bytes and lines read, points converted
    // in seconds.
    static std::string Text(const std::string& name, unsigned long long size, unsigned long long bytes, long lines,
                            unsigned long long points, double seconds);

    // The state seconds after the start; writes the line when it is due.
    void Update(unsigned long long bytes, long lines, unsigned long long points, double seconds);
    // Blanks the line out when it is shown.
    void Clear();

private:
    FILE* m_err;
    std::string m_name;
    unsigned long long m_size;
    double m_delay, m_interval;
    double m_last = -1.0;  // when the line was last written
    size_t m_shown = 0;    // the width of the line on the screen, 0 when none
};

#endif
