#include "tools/kvcart/KvProgressLine.h"

#include <unistd.h>

CKvProgressLine::CKvProgressLine(FILE* err, const std::string& name, unsigned long long size, double delay,
                                 double interval)
    : m_err(err), m_name(name), m_size(size), m_delay(delay), m_interval(interval)
{
}

bool CKvProgressLine::Wanted(FILE* err, bool switchedOff)
{
    if (switchedOff || err == nullptr)
        return false;
    const int fd = fileno(err);
    return fd >= 0 && isatty(fd) == 1;
}

std::string CKvProgressLine::Text(const std::string& name, unsigned long long size, unsigned long long bytes,
                                  long lines, unsigned long long points, double seconds)
{
    char read[64];
    if (size > 0) {
        const unsigned long long percent = bytes >= size ? 100 : bytes * 100 / size;
        std::snprintf(read, sizeof read, "%llu%% read", percent);
    } else {
        std::snprintf(read, sizeof read, "%ld lines read", lines);
    }
    const double rate = seconds > 0.0 ? static_cast<double>(points) / seconds : 0.0;
    char speed[64];
    if (rate >= 1e6)
        std::snprintf(speed, sizeof speed, "%.1f million points/s", rate / 1e6);
    else
        std::snprintf(speed, sizeof speed, "%.0f points/s", rate);
    return "kvcart: " + name + ": " + read + ", " + speed;
}

void CKvProgressLine::Update(unsigned long long bytes, long lines, unsigned long long points, double seconds)
{
    if (seconds < m_delay || (m_last >= 0.0 && seconds - m_last < m_interval))
        return;
    m_last = seconds;
    const std::string text = Text(m_name, m_size, bytes, lines, points, seconds);
    // A shorter line than the one shown is padded over its end.
    const size_t width = text.size() < m_shown ? m_shown : text.size();
    std::fprintf(m_err, "\r%-*s", static_cast<int>(width), text.c_str());
    std::fflush(m_err);
    m_shown = width;
}

void CKvProgressLine::Clear()
{
    if (m_shown == 0)
        return;
    std::fprintf(m_err, "\r%*s\r", static_cast<int>(m_shown), "");
    std::fflush(m_err);
    m_shown = 0;
}
