#ifndef KVCART_TOOLS_KVPOINTSTREAM_H
#define KVCART_TOOLS_KVPOINTSTREAM_H

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class CKvDatumConverter;
class CKvProgressLine;

// The line-by-line conversion of the command-line program. Every input line
// gives exactly one output line, so that output stays aligned with input:
// - blank lines and comment lines (first non-blank character '#') are copied,
//   and so are the first lines of each input given to SetSkipHeader;
// - a point line holds two or three numbers ("x y" or "x y h") and any text
//   after them; the converted coordinates are written with the line's own
//   separators and decimal mark, followed by that text unchanged;
// - a line that cannot be read, or a point the conversion cannot map (a
//   non-finite result), gives "* *" followed by the line's text after its
//   coordinates, and a message naming the line.
//
// How a point line is read. Fields are separated by blanks (spaces, tabs), by
// one comma or by one semicolon, with blanks around either. The first field is
// the text up to the first blank or semicolon, and what follows it decides
// what a comma is:
// - a semicolon, or tabs alone: a comma inside a number is a decimal comma
//   ("9,5;47,5;Zurich", "9,5<TAB>47,5") and separates nothing; the output of
//   such a line keeps its decimal commas. A line whose coordinates mix decimal
//   commas and decimal points is refused (the comma may group thousands);
// - otherwise a comma separates fields and the decimal mark is the point
//   ("9.5,47.5", "9.5 47.5"), except that a comma directly between digits that
//   would also make a number with a decimal comma ("9,5 47,5", "9.5 47,5",
//   "9 47,100") on a line whose fields are separated by blanks is refused:
//   either reading could be meant. A first field that is such a number alone
//   ("9,5") is two coordinates separated by a comma.
// Numbers are read and written in the C locale whatever the process locale is.
//
// Run reads through one buffer that grows to hold a line of at most
// kMaxLineLength bytes; a longer line is marked as such and skipped, so memory
// stays bounded whatever the input holds.
//
// Run takes the lines in blocks. With one thread (SetThreads) it reads,
// converts and writes each block in turn. With more, the calling thread reads
// the blocks, that many worker threads parse, convert and format them, and a
// writer thread writes them in input order, with the messages about their
// lines: the output and the messages are byte for byte those of one thread,
// whatever the number of threads and the size of the blocks, and at most
// 2 threads + 2 blocks are held at a time. The threads share the converter,
// which they only read (its conversions are const), and the settings above.
class CKvPointStream
{
public:
    // inverse: convert from the converter's target to its source.
    // precision: decimals written for each output coordinate.
    CKvPointStream(const CKvDatumConverter& converter, bool inverse, int precisionXY, int precisionH);
    CKvPointStream(const CKvPointStream&) = delete;
    CKvPointStream& operator=(const CKvPointStream&) = delete;
    virtual ~CKvPointStream();

    // Metres per unit of the coordinates on the converter's source and target
    // sides: the projected system's linear unit (0.3048006096012192 for US
    // survey feet), 1 for metres and for geographical sides. Input is
    // multiplied by its side's factor before the conversion and output divided
    // by its side's factor after it; heights stay in metres. Both 1 by default.
    void SetUnits(double sourceUnit, double targetUnit);
    // The box a side's points are expected in (the area of use of a registry
    // system, widened), in the converter's own coordinates on that side: metres
    // along the system's axes, or degrees with longitudes taken round the
    // circle (x0 > x1 across the antimeridian). The first point beyond a box is
    // reported once by Run as a warning naming `what`; nothing else changes.
    void SetExpectedBox(bool converterTarget, bool degrees, double x0, double y0, double x1, double y1,
                        const std::string& what);
    // The first lines of each input that Run copies unchanged (a header).
    void SetSkipHeader(long lines) { m_skipHeader = lines; }
    // The threads that convert (at least 1) and the lines of a block (at least
    // 1; kPipelineLines by default). One thread converts in the calling thread.
    void SetThreads(int threads, size_t blockLines = kPipelineLines);
    // Whether Run shows a progress line (CKvProgressLine) when err is a
    // terminal: after delay seconds, every interval seconds. On by default.
    void SetProgress(bool enabled, double delay = 1.0, double interval = 0.25);

    // Converts one line (without its line end) and appends the output line
    // (without line end) to out. Returns false for a marked line, with the reason
    // in problem.
    bool ConvertLine(const char* line, size_t length, std::string& out, std::string& problem) const;

    // The whole text is one finite number (C locale, a leading '+' allowed).
    static bool ParseNumber(const std::string& text, double& value);
    // Appends value in fixed notation with precision decimals, never "-0.000".
    static void AppendFixed(std::string& out, double value, int precision);
    // Appends text as a message shows it: a backslash, control characters
    // (\t, \r, \n, \x01, \x7f, the C1 controls) and bytes that are not UTF-8
    // are written as escapes, so that the message is printable UTF-8 and holds
    // no NUL.
    static void AppendEscaped(std::string& out, const char* text, size_t length);

    // Converts every line of in to out; messages "name:line: what" go to err.
    // A UTF-8 byte-order mark at the start of in is dropped. Returns the number
    // of marked lines, or -1 when reading or writing failed (the reason is then
    // written to err, after the output of the lines read before).
    long Run(FILE* in, const char* name, FILE* out, FILE* err);

    // Lines converted together by Run, through the converter's batch form.
    static constexpr size_t kBlockLines = 256;
    // Lines of a block Run reads, hands to a thread and writes; a block also
    // ends after kPipelineBytes bytes of text.
    static constexpr size_t kPipelineLines = 4096;
    static constexpr size_t kPipelineBytes = 1 << 20;
    // The longest line Run reads, in bytes without its line end.
    static constexpr size_t kMaxLineLength = 1 << 20;

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
        bool decimalComma = false;          // written with decimal commas
        size_t separator[4] = {0, 0, 0, 0}; // begin and end of the separators before y and h
        size_t tail = 0;
        size_t offset = 0; // where the line lies in its block's text
        size_t length = 0;
        bool cr = false;
        bool tooLong = false;       // skipped as too long; its message is set when read
        bool noCoordinates = false; // unreadable, and holds no digit (a header?)
        bool marked = false;        // written as "* *", for the reason in problem
        std::string problem;
    };

    // Lines as read, converted and written together. The reader fills text,
    // lines and count; the thread that converts the block fills the rest.
    struct SBlock
    {
        long firstLine = 0; // the number of its first line in the input
        size_t count = 0;
        std::string text;
        std::vector<SLine> lines;
        std::string out;          // the output lines with their line ends
        std::vector<size_t> ends; // where each output line ends in out
        long boxLine = -1;        // the first line beyond an expected box
        int boxSide = 0;
        size_t points = 0;  // point lines converted
        bool failed = false; // memory ran out converting it
        bool done = false;
    };

    // The state of the writer through one Run.
    struct SWriter
    {
        FILE* out = nullptr;
        FILE* err = nullptr;
        std::string name;
        long lines = 0, marked = 0;
        unsigned long long points = 0;
        CKvProgressLine* progress = nullptr; // when one is shown
        double start = 0.0;                  // when Run began, in seconds
        bool sawData = false;
        bool failedWrite = false;
        int writeErrno = 0;
    };

    enum class ENext
    {
        eLine,    // a line is in text and length
        eTooLong, // a line longer than the buffer may hold was skipped
        eWait,    // the next line is not wholly in the buffer, which may not move now
        eEnd      // no more lines
    };

    // Reads the line into parsed; false, with the reason, for a line that
    // cannot be read (it is then marked).
    bool _parse(const char* line, size_t length, SLine& parsed, std::string& problem) const;
    // Writes the output line of a parsed (and converted) line; false for a marked one.
    bool _format(const char* line, size_t length, const SLine& parsed, std::string& out, std::string& problem) const;
    // Parses, converts and formats the lines of a block. Reads only the
    // settings, m_converter and m_boxReported: threads call it at once.
    void _convertBlock(SBlock& block) const;
    // Converts the points among count lines from first, in one batch.
    void _convertBatch(SBlock& block, size_t first, size_t count) const;
    // Fills a block with the next lines of in; false when there were none.
    bool _readBlock(FILE* in, SBlock& block, long& lineNumber);
    // Writes a converted block and its messages; false once writing failed.
    bool _writeBlock(const SBlock& block, SWriter& writer);
    // Run with the threads of SetThreads; false when memory ran out.
    bool _runThreads(FILE* in, SWriter& writer, long& lineNumber);

    // The next line of in from the buffer; mayMove: the buffer may be moved and
    // refilled (no line handed out before is still in use).
    ENext _nextLine(FILE* in, bool mayMove, const char*& text, size_t& length, unsigned long long& skipped);
    void _read(FILE* in);
    bool _grow();
    ENext _skipLongLine(FILE* in, unsigned long long& skipped);

    const CKvDatumConverter& m_converter;
    bool m_bInverse;
    int m_precisionXY;
    int m_precisionH;
    double m_unitIn = 1.0, m_unitOut = 1.0; // metres per unit of input and output
    long m_skipHeader = 0;
    int m_threads = 1;
    size_t m_blockLines = kPipelineLines;
    bool m_progress = true;
    double m_progressDelay = 1.0, m_progressInterval = 0.25;

    // The read buffer: bytes [m_begin, m_end) are read and not yet handed out.
    char* m_pBuffer = nullptr;
    size_t m_capacity = 0;
    size_t m_begin = 0, m_end = 0;
    size_t m_lineLimit = kMaxLineLength; // less when memory ran out growing the buffer
    bool m_eof = false;
    int m_readErrno = 0;
    std::atomic<unsigned long long> m_bytesRead{0}; // of this Run's input, for the progress line

    std::string m_out; // pending output, flushed in large blocks

    struct SBox
    {
        bool set = false, degrees = false;
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        std::string what;
        bool Holds(double x, double y) const;
    } m_box[2]; // [0] the input side, [1] the output side
    // Set by the writer once the first point beyond a box is reported; the
    // threads that convert read it to stop looking.
    std::atomic<bool> m_boxReported{false};

    // The blocks of a threaded Run: free ones, ones to convert, and all those
    // read and not yet written, in input order.
    std::mutex m_mutex;
    std::condition_variable m_blockFree, m_blockRead, m_blockDone;
    std::vector<std::unique_ptr<SBlock>> m_blocks;
    std::vector<SBlock*> m_free;
    std::deque<SBlock*> m_toConvert, m_toWrite;
    bool m_readingDone = false;
    std::atomic<bool> m_stop{false}; // writing failed or memory ran out: no more work
};

#endif
