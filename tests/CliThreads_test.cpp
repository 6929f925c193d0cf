// kvcart transform with several threads: the output, the messages and the
// status are those of one thread, byte for byte, whatever the number of
// threads and the lines of a block, on inputs holding every kind of line the
// program reads and marks, across several inputs, and when reading or writing
// fails part way.
#include "ProgramRun.h"
#include "tools/kvcart/KvPointStream.h"

#include "geodesy/KvDatumConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

struct SResult
{
    long status = 0;
    std::string out, err;
};

struct SSettings
{
    bool inverse = false;
    long skipHeader = 0;
    bool box = true;
};

// Reads its text, then fails (EIO) when failAfterText is set.
struct SSource
{
    std::string text;
    size_t at = 0;
    bool failAfterText = false;
};

ssize_t ReadSource(void* cookie, char* buffer, size_t size)
{
    SSource* source = static_cast<SSource*>(cookie);
    if (source->at == source->text.size() && source->failAfterText) {
        errno = EIO;
        return -1;
    }
    const size_t n = std::min(size, source->text.size() - source->at);
    std::memcpy(buffer, source->text.data() + source->at, n);
    source->at += n;
    return static_cast<ssize_t>(n);
}

// Takes writes while they fit in limit bytes, then fails from the first that
// does not, as a full disk does.
struct SSink
{
    std::string text;
    size_t limit = static_cast<size_t>(-1);
    bool full = false;
};

ssize_t WriteSink(void* cookie, const char* buffer, size_t size)
{
    SSink* sink = static_cast<SSink*>(cookie);
    if (sink->full || sink->text.size() + size > sink->limit) {
        sink->full = true;
        errno = ENOSPC;
        return -1;
    }
    sink->text.append(buffer, size);
    return static_cast<ssize_t>(size);
}

// The inputs converted in turn by one stream, as the program converts its
// files: LONG/LAT to UTM-32 (or back), with an expected box of longitudes 5
// to 13 and latitudes 40 to 55 on the geographical side.
SResult Convert(int threads, size_t blockLines, const std::vector<std::string>& inputs, const SSettings& settings,
                bool failReading = false, size_t writeLimit = static_cast<size_t>(-1))
{
    static CKvDatumConverter converter = [] {
        kvtest::ShippedCatalogue();
        CKvDatumConverter made("LONG/LAT", "UTM-32");
        made.SetConversionType(CKvDatumConverter::eGeoToProj);
        return made;
    }();
    CKvPointStream stream(converter, settings.inverse, settings.inverse ? 9 : 4, 4);
    stream.SetThreads(threads, blockLines);
    stream.SetSkipHeader(settings.skipHeader);
    if (settings.box)
        stream.SetExpectedBox(false, true, 5.0, 40.0, 13.0, 55.0, "the test area");
    SSink sink, messages;
    sink.limit = writeLimit;
    const cookie_io_functions_t writing = {nullptr, WriteSink, nullptr, nullptr};
    FILE* out = fopencookie(&sink, "w", writing);
    FILE* err = fopencookie(&messages, "w", writing);
    SResult result;
    for (size_t i = 0; i < inputs.size(); ++i) {
        SSource source;
        source.text = inputs[i];
        source.failAfterText = failReading;
        const cookie_io_functions_t reading = {ReadSource, nullptr, nullptr, nullptr};
        FILE* in = fopencookie(&source, "r", reading);
        const long status = stream.Run(in, ("input " + std::to_string(i + 1)).c_str(), out, err);
        std::fclose(in);
        result.status = status < 0 || result.status < 0 ? -1 : result.status + status;
    }
    std::fclose(out);
    std::fclose(err);
    result.out = sink.text;
    result.err = messages.text;
    return result;
}

// count lines of every kind: points with and without heights, in every
// separator and decimal mark, CRLF ends, comments, blanks, unreadable lines,
// points outside the domain and outside the expected box; and when odd one
// more line without its line end.
std::string MixedLines(size_t count, unsigned seed, bool odd = false)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> lon(6.0, 12.0), lat(41.0, 54.0);
    std::string text;
    char line[160];
    for (size_t i = 0; i < count; ++i) {
        const int kind = static_cast<int>(random() % 40);
        const double x = lon(random), y = lat(random);
        switch (kind) {
        case 0: std::snprintf(line, sizeof line, "%.7f\t%.7f Zurich lake\r\n", x, y); break;
        case 1: std::snprintf(line, sizeof line, "%.7f,%.7f,%.3f,name\n", x, y, x * 10); break;
        case 2:
            std::snprintf(line, sizeof line, "%.0f,%04d;%.0f,%04d;%d,5;a place\n", x,
                          static_cast<int>(random() % 10000), y, static_cast<int>(random() % 10000),
                          static_cast<int>(random() % 3000));
            break;
        case 3: std::snprintf(line, sizeof line, "# a comment %zu\n", i); break;
        case 4: std::snprintf(line, sizeof line, "\n"); break;
        case 5: std::snprintf(line, sizeof line, "abc %.7f\n", y); break;
        case 6: std::snprintf(line, sizeof line, "%.7f\n", x); break;
        case 7: std::snprintf(line, sizeof line, "%.7f 95 beyond the pole\n", x); break;
        case 8: std::snprintf(line, sizeof line, "%.7f %.7f far east\n", x + 60.0, y); break;
        case 9: std::snprintf(line, sizeof line, "9,5 47,5\n"); break;
        case 10: std::snprintf(line, sizeof line, "nan %.3f\n", y); break;
        default: std::snprintf(line, sizeof line, "%.7f %.7f\n", x, y);
        }
        text += line;
    }
    if (odd)
        text += "9.5 47.5 without a line end";
    return text;
}

// The same points in UTM-32, for the inverse.
std::string GridLines(size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> east(300000.0, 700000.0), north(4500000.0, 6000000.0);
    std::string text;
    char line[96];
    for (size_t i = 0; i < count; ++i) {
        if (i % 97 == 5)
            text += "xyz\n";
        if (i % 1000 == 999)
            text += "500000 1000000 near the equator\n"; // beyond the box on the output side
        std::snprintf(line, sizeof line, "%.4f %.4f %.4f\n", east(random), north(random), 100.0 + i);
        text += line;
    }
    return text;
}

void ExpectSame(const SResult& threaded, const SResult& one, const std::string& what)
{
    EXPECT_EQ(threaded.status, one.status) << what;
    EXPECT_TRUE(threaded.out == one.out) << what << ": the output differs";
    EXPECT_EQ(threaded.err, one.err) << what;
}

const size_t kBlockSizes[] = {1, 2, 7, 255, 256, 257, 1000, CKvPointStream::kPipelineLines};

} // namespace

// Inputs of 0, 1, a block less one, a block, a block and one, and several
// blocks of lines, for many block sizes and 2, 3 and 8 threads, against one
// thread with its default blocks.
TEST(PointStreamThreads, EveryBlockSizeAndThreadCountGivesOneThreadsBytes)
{
    const SSettings settings;
    for (size_t block : kBlockSizes) {
        for (size_t lines : {size_t(0), size_t(1), block - 1, block, block + 1, 5 * block + 3}) {
            if (lines > 20000)
                continue;
            const std::string text = MixedLines(lines, static_cast<unsigned>(lines + block), lines % 2 == 1);
            const SResult one = Convert(1, CKvPointStream::kPipelineLines, {text}, settings);
            ASSERT_GE(one.status, 0);
            EXPECT_EQ(static_cast<size_t>(std::count(one.out.begin(), one.out.end(), '\n')), lines + lines % 2);
            EXPECT_LE(kvtest::Count(one.err, "far outside the area of use of the test area"), 1);
            for (int threads : {1, 2, 3, 8})
                ExpectSame(Convert(threads, block, {text}, settings), one,
                           std::to_string(lines) + " lines, blocks of " + std::to_string(block) + ", " +
                               std::to_string(threads) + " threads");
        }
    }
}

// Several inputs through one stream: each has its header lines and its own
// line numbers, the point beyond the expected box is reported once for all of
// them, and a first line without digits is named as a header. The inverse
// reads grid lines with heights.
TEST(PointStreamThreads, HeadersSeveralInputsAndTheInverse)
{
    const std::string header = "lon lat name\n";
    const std::vector<std::string> inputs = {header + MixedLines(3000, 1), header + MixedLines(1, 2), std::string(),
                                             header + MixedLines(700, 3, true)};
    for (long skip : {0L, 1L, 2L}) {
        SSettings settings;
        settings.skipHeader = skip;
        const SResult one = Convert(1, CKvPointStream::kPipelineLines, inputs, settings);
        EXPECT_EQ(kvtest::Count(one.err, "far outside the area of use"), 1);
        EXPECT_EQ(kvtest::Count(one.err, "holds no coordinates; if it is a header, use --skip-header 1"),
                  skip == 0 ? 3 : 0)
            << one.err.substr(0, 400);
        for (int threads : {2, 3, 8})
            for (size_t block : {size_t(1), size_t(3), size_t(256), size_t(999)})
                ExpectSame(Convert(threads, block, inputs, settings), one,
                           "skip " + std::to_string(skip) + ", " + std::to_string(threads) + " threads, blocks of " +
                               std::to_string(block));
    }
    SSettings inverse;
    inverse.inverse = true;
    const std::vector<std::string> grid = {GridLines(5000, 4), GridLines(33, 5)};
    const SResult one = Convert(1, CKvPointStream::kPipelineLines, grid, inverse);
    EXPECT_GT(one.status, 0);
    EXPECT_EQ(kvtest::Count(one.err, "far outside the area of use"), 1);
    for (int threads : {2, 3})
        for (size_t block : {size_t(1), size_t(100), size_t(4096)})
            ExpectSame(Convert(threads, block, grid, inverse), one, "inverse");
}

// A line too long to hold, a read error after the text and a write error part
// way: the output before it, the messages and the status are one thread's.
TEST(PointStreamThreads, LongLinesAndFailuresAsOneThreadHasThem)
{
    const SSettings settings;
    const std::string longLine =
        MixedLines(500, 6) + std::string(CKvPointStream::kMaxLineLength + 10, '7') + "\n" + MixedLines(500, 7);
    const SResult one = Convert(1, CKvPointStream::kPipelineLines, {longLine}, settings);
    EXPECT_NE(one.err.find("input 1:501: line 501 is longer than"), std::string::npos) << one.err.substr(0, 300);
    for (int threads : {2, 3})
        for (size_t block : {size_t(1), size_t(7), size_t(500), size_t(501)})
            ExpectSame(Convert(threads, block, {longLine}, settings), one, "long line");

    const std::string text = MixedLines(3000, 8) + "9.5 47.";
    const SResult failedRead = Convert(1, CKvPointStream::kPipelineLines, {text}, settings, true);
    EXPECT_EQ(failedRead.status, -1);
    EXPECT_TRUE(kvtest::Contains(failedRead.err, "input 1: cannot read after line 3000: Input/output error"));
    for (int threads : {2, 8})
        for (size_t block : {size_t(1), size_t(256), size_t(2999)})
            ExpectSame(Convert(threads, block, {text}, settings, true), failedRead, "read error");

    const std::string many = MixedLines(20000, 9);
    const SResult failedWrite = Convert(1, CKvPointStream::kPipelineLines, {many}, settings, false, 150000);
    EXPECT_EQ(failedWrite.status, -1);
    EXPECT_GT(failedWrite.out.size(), 65536u);
    EXPECT_LE(failedWrite.out.size(), 150000u);
    EXPECT_TRUE(kvtest::Contains(failedWrite.err, "cannot write the output: No space left on device"));
    for (int threads : {2, 3, 8})
        for (size_t block : {size_t(1), size_t(255), size_t(4096)})
            ExpectSame(Convert(threads, block, {many}, settings, false, 150000), failedWrite, "write error");
}

// A million lines, once: the threads' blocks in flight are written in order.
TEST(PointStreamThreads, AMillionLines)
{
    SSettings settings;
    settings.box = false;
    std::string text;
    text.reserve(24000000);
    char line[64];
    for (int i = 0; i < 1000000; ++i) {
        std::snprintf(line, sizeof line, "%.7f %.7f\n", 6.0 + 6.0 * ((i * 37) % 1000000) / 1e6,
                      84.0 * ((i * 61) % 1000000) / 1e6);
        text += line;
    }
    const SResult one = Convert(1, CKvPointStream::kPipelineLines, {text}, settings);
    EXPECT_EQ(one.status, 0);
    ExpectSame(Convert(2, CKvPointStream::kPipelineLines, {text}, settings), one, "a million lines");
    ExpectSame(Convert(3, 1000, {text}, settings), one, "a million lines in blocks of 1000");
}

namespace {

SResult Program(const kvtest::TempDir& dir, const std::vector<std::string>& args, const std::string& input = "")
{
    const kvtest::SRun run = kvtest::Kvcart(dir, args, &input);
    return {run.status, run.out, run.err};
}

} // namespace

// The program's --threads: files and standard input in turn, the datum shift
// to the British grid both ways, and the values it refuses; --no-progress
// changes nothing where standard error is not a terminal.
TEST(CliThreads, ThreadsOptionGivesOneThreadsOutput)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("a.txt"), "lon lat\n" + MixedLines(9000, 10));
    const std::string piped = MixedLines(5000, 11, true);
    const std::vector<std::string> utm = {"transform", "LONG/LAT", "UTM-32", "a.txt", "-", "missing.txt", "a.txt"};
    std::vector<std::string> one = utm;
    one.push_back("--threads=1");
    const SResult single = Program(dir, one, piped);
    EXPECT_EQ(single.status, 1);
    EXPECT_TRUE(kvtest::Contains(single.err, "a.txt:1: line 1 holds no coordinates"));
    for (const char* threads : {"2", "3", "8"}) {
        std::vector<std::string> args = utm;
        args.insert(args.end(), {"--threads", threads});
        ExpectSame(Program(dir, args, piped), single, std::string("UTM-32, threads ") + threads);
    }
    ExpectSame(Program(dir, utm, piped), single, "UTM-32, the default threads");
    std::vector<std::string> quiet = utm;
    quiet.push_back("--no-progress");
    ExpectSame(Program(dir, quiet, piped), single, "UTM-32, no progress line");

    std::string british;
    for (int i = 0; i < 6000; ++i)
        british += std::to_string(-5.0 + i % 60 / 10.0) + " " + std::to_string(50.5 + i % 70 / 10.0) + " 55\n";
    kvtest::WriteFile(dir.File("uk.txt"), british);
    const SResult forward =
        Program(dir, {"transform", "LONG/LAT", "British National Grid", "uk.txt", "--threads", "1"});
    EXPECT_EQ(forward.status, 0) << forward.err;
    ExpectSame(Program(dir, {"transform", "LONG/LAT", "British National Grid", "uk.txt", "--threads", "2"}), forward,
               "to the British grid");
    kvtest::WriteFile(dir.File("grid.txt"), forward.out);
    const SResult back =
        Program(dir, {"transform", "LONG/LAT", "British National Grid", "--inverse", "grid.txt", "--threads", "1"});
    EXPECT_EQ(back.status, 0) << back.err;
    ExpectSame(
        Program(dir, {"transform", "LONG/LAT", "British National Grid", "--inverse", "grid.txt", "--threads", "3"}),
        back, "from the British grid");

    for (const char* refused : {"0", "-1", "1.5", "x", "257", ""}) {
        const SResult bad = Program(dir, {"transform", "LONG/LAT", "UTM-32", "--threads", refused});
        EXPECT_EQ(bad.status, 2) << refused;
        EXPECT_TRUE(kvtest::Contains(bad.err, "--threads takes a whole number from 1 to 256")) << refused;
    }
}
