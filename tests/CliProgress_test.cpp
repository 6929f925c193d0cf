// The progress line of kvcart transform: its text, when it is written and
// blanked, and what a terminal shows of it around the messages about lines
// (a pseudo-terminal stands for the user's); nothing of it where standard
// error is not a terminal.
#include "TestSupport.h"
#include "tools/kvcart/KvPointStream.h"
#include "tools/kvcart/KvProgressLine.h"

#include "geodesy/KvDatumConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// What a terminal shows of text: '\r' returns to the start of the line and
// later characters overwrite it; trailing blanks are not seen, and a last line
// left blank is no line.
std::vector<std::string> Screen(const std::string& text)
{
    std::vector<std::string> lines(1);
    size_t column = 0;
    for (char c : text) {
        if (c == '\r') {
            column = 0;
        } else if (c == '\n') {
            lines.emplace_back();
            column = 0;
        } else {
            std::string& line = lines.back();
            if (column < line.size())
                line[column] = c;
            else
                line.push_back(c);
            ++column;
        }
    }
    for (std::string& line : lines)
        line.erase(line.find_last_not_of(' ') + 1);
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

struct SPseudoTerminal
{
    int master = -1;
    FILE* slave = nullptr;
    std::string seen;
    std::thread reader;

    SPseudoTerminal()
    {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
            return;
        const int fd = open(ptsname(master), O_RDWR | O_NOCTTY);
        if (fd < 0)
            return;
        termios raw;
        tcgetattr(fd, &raw);
        cfmakeraw(&raw); // bytes as written, no "\r\n" for "\n"
        tcsetattr(fd, TCSANOW, &raw);
        slave = fdopen(fd, "w");
        reader = std::thread([this] {
            char buffer[4096];
            for (ssize_t n; (n = read(master, buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR);)
                if (n > 0)
                    seen.append(buffer, static_cast<size_t>(n));
        });
    }
    // Closes the terminal's side of the program; what it was shown is then in seen.
    void Close()
    {
        if (slave != nullptr)
            std::fclose(slave);
        slave = nullptr;
        if (reader.joinable())
            reader.join();
    }
    ~SPseudoTerminal()
    {
        Close();
        if (master >= 0)
            close(master);
    }
};

// 3000 lines in blocks of 100, with unreadable lines and a point far from the
// expected box among them, converted with the progress line due after every
// block; the file is a regular one, whose size gives the percentage.
long ConvertShowingProgress(const kvtest::TempDir& dir, FILE* err, int threads)
{
    kvtest::ShippedCatalogue();
    CKvDatumConverter converter("LONG/LAT", "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += i % 400 == 7 ? "abc 47.5\n" : i == 1234 ? "75.5 47.5\n" : "9.5 47.5 Zurich\n";
    kvtest::WriteFile(dir.File("points.txt"), text);
    CKvPointStream stream(converter, false, 4, 4);
    stream.SetThreads(threads, 100);
    stream.SetExpectedBox(false, true, 5.0, 40.0, 13.0, 55.0, "the test area");
    stream.SetProgress(true, 0.0, 0.0);
    FILE* in = std::fopen(dir.File("points.txt").c_str(), "rb");
    FILE* out = std::fopen("/dev/null", "w");
    const long marked = stream.Run(in, "points.txt", out, err);
    std::fclose(in);
    std::fclose(out);
    return marked;
}

} // namespace

TEST(PointStreamProgress, TheLinesText)
{
    EXPECT_EQ(CKvProgressLine::Text("points.txt", 1000, 450, 12, 2100000, 1.0),
              "kvcart: points.txt: 45% read, 2.1 million points/s");
    EXPECT_EQ(CKvProgressLine::Text("points.txt", 1000, 1000, 12, 25, 0.5),
              "kvcart: points.txt: 100% read, 50 points/s");
    EXPECT_EQ(CKvProgressLine::Text("stdin", 0, 5000, 1200000, 1900000, 2.0),
              "kvcart: stdin: 1200000 lines read, 950000 points/s");
}

// Written after the delay, at most once an interval, a shorter text padded
// over a longer one, blanked by Clear once.
TEST(PointStreamProgress, WrittenWhenDueAndBlankedOnce)
{
    char* text = nullptr;
    size_t size = 0;
    FILE* err = open_memstream(&text, &size);
    ASSERT_NE(err, nullptr);
    {
        CKvProgressLine progress(err, "p.txt", 100, 1.0, 0.25);
        progress.Update(10, 1, 100, 0.5); // before the delay
        progress.Clear();                 // nothing shown: nothing to blank
        progress.Update(20, 2, 2000000, 1.0);
        progress.Update(30, 3, 3000000, 1.1); // within the interval
        progress.Update(40, 4, 3000, 1.5);
        progress.Clear();
        progress.Clear();
    }
    std::fclose(err);
    const std::string written(text, size);
    std::free(text);
    const std::string first = "kvcart: p.txt: 20% read, 2.0 million points/s";
    const std::string second = "kvcart: p.txt: 40% read, 2000 points/s";
    EXPECT_EQ(written, "\r" + first + "\r" + second + std::string(first.size() - second.size(), ' ') + "\r" +
                           std::string(first.size(), ' ') + "\r");
}

// On a terminal the progress lines come and go and the screen ends holding
// the messages alone, each on its line, as a file receives them; a file or a
// switched-off stream receives no progress at all.
TEST(PointStreamProgress, OnATerminalOnlyAndNeverOverMessages)
{
    kvtest::TempDir dir;
    FILE* plain = std::fopen(dir.File("err.txt").c_str(), "w+");
    ASSERT_NE(plain, nullptr);
    EXPECT_FALSE(CKvProgressLine::Wanted(plain, false));
    EXPECT_EQ(ConvertShowingProgress(dir, plain, 1), 8);
    std::fclose(plain);
    const std::string messages = kvtest::ReadFile(dir.File("err.txt"));
    EXPECT_EQ(messages.find('\r'), std::string::npos) << messages;
    EXPECT_EQ(Screen(messages).size(), 9u) << messages; // 8 marked lines and the box warning

    for (int threads : {1, 2}) {
        SPseudoTerminal terminal;
        ASSERT_NE(terminal.slave, nullptr) << "no pseudo-terminal";
        EXPECT_TRUE(CKvProgressLine::Wanted(terminal.slave, false));
        EXPECT_FALSE(CKvProgressLine::Wanted(terminal.slave, true));
        EXPECT_EQ(ConvertShowingProgress(dir, terminal.slave, threads), 8);
        terminal.Close();
        EXPECT_TRUE(kvtest::Contains(terminal.seen, "\rkvcart: points.txt: 100% read, "));
        EXPECT_GE(std::count(terminal.seen.begin(), terminal.seen.end(), '\r'), 30);
        EXPECT_EQ(Screen(terminal.seen), Screen(messages)) << terminal.seen;
    }
}
