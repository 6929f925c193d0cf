// What happens to the user's catalogue files when a real host process sets the
// catalogue up, does one thing and exits: nothing the user wrote is lost.
#include "paramfile/Gxr.h"
#include "paramfile/ParamFileWriter.h"

#include "TestSupport.h"

#include <atomic>
#include <csignal>
#include <sys/syscall.h>
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

struct SResult
{
    int status;
    std::string output;
};

SResult Host(const std::string& user, const std::string& arguments, const std::string& prefix = std::string())
{
    const std::string command = prefix + std::string(KVCART_CATALOGUE_SESSION) + " '" + KVCART_SHIPPED_DATA_DIR +
                                "' '" + user + "' " + arguments + " 2>&1";
    SResult result{-1, std::string()};
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (fgets(buffer, sizeof buffer, pipe))
            result.output += buffer;
        const int status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return result;
}

std::string Section(const std::string& name, const std::string& body)
{
    return "  SECTION " + name + "\n" + body + "  END_SECTION\n";
}

std::string Grid(const std::string& name, const std::string& extra = std::string())
{
    return Section("UTM_PROJECTION", "    Projection_Name \"" + name +
                                         "\"\n    Branch_Name \"Mine\"\n    Ellipsoid \"WE\"\n    Scale 0.9996\n"
                                         "    Centre 9\n    Feast 500000\n" +
                                         extra);
}

// Five definitions, the third of which can be spoiled by the caller.
std::string FiveGrids(const std::string& third)
{
    return "# my site grids\nTARGET MAP_PROJECTION_DEFINITION\n" + Grid("Site A") + Grid("Site B") + third +
           Grid("Site D") + Grid("Site E") + "END_TARGET\n";
}

std::vector<std::string> FilesIn(const std::string& dir)
{
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* e = readdir(d))
            if (e->d_name[0] != '.')
                names.push_back(e->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

int Count(const std::string& text, const std::string& what)
{
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

} // namespace

// A file that does not load cleanly stays byte for byte as it was, whether the
// host only looked something up or added entries; the additions go to the rescue
// file and the reason, with its line, can be asked for.
TEST(CatalogueSafety, AFileThatDidNotLoadIsNeverWrittenOver)
{
    struct SCase
    {
        const char* what;
        std::string text;
        const char* reason; // in the error text
    };
    const SCase cases[] = {
        {"a comma-decimal number", FiveGrids(Grid("Site C", "    Origin_Latitude 9,5\n")), ":26: parameter '9,5'"},
        {"an unknown escape", FiveGrids(Grid("Site \\q C")), ":20: unknown escape"},
        {"a truncated file", FiveGrids(Grid("Site C")).substr(0, FiveGrids(Grid("Site C")).size() - 11),
         ":42: end of file inside target"},
        {"a quoted number", FiveGrids(Grid("Site C", "    Origin_Latitude \"9\"\n")),
         ":26: keyword 'Origin_Latitude' takes a number"},
        {"a misspelt keyword", FiveGrids(Grid("Site C", "    Fnort 1000\n")), ":26: keyword 'Fnort' is not known"},
        {"a keyword given twice", FiveGrids(Grid("Site C", "    Centre 10\n")), ":26: keyword 'Centre' is given twice"},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.what);
        kvtest::TempDir user;
        const std::string path = user.File("custom_projection.gxr");
        kvtest::WriteFile(path, c.text);

        SResult looked = Host(user.Path(), "lookup UTM-32 errors");
        EXPECT_EQ(looked.status, 0) << looked.output;
        EXPECT_NE(looked.output.find(path + c.reason), std::string::npos) << looked.output;
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

        SResult added = Host(user.Path(), "add 'New Grid' writeback errors");
        EXPECT_EQ(added.status, 0) << added.output;
        EXPECT_NE(added.output.find("writeback 0"), std::string::npos) << added.output;
        EXPECT_NE(added.output.find("saved in " + user.File("custom_projection.unsaved.gxr")), std::string::npos)
            << added.output;
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        // A second session's addition joins the first in the rescue file.
        Host(user.Path(), "add 'Newer Grid'");
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        const std::string rescued = kvtest::ReadFile(user.File("custom_projection.unsaved.gxr"));
        EXPECT_EQ(Count(rescued, "SECTION LAMBERT_CONIC_2SP_PROJECTION"), 2) << rescued;
        EXPECT_NE(rescued.find("\"New Grid\""), std::string::npos);
        EXPECT_NE(rescued.find("\"Newer Grid\""), std::string::npos);
    }
}

TEST(CatalogueSafety, AMalformedEllipsoidFileIsKept)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_ellipsoid.gxr");
    std::string text = "TARGET ELLIPSOID_DEFINITION\n";
    for (int i = 0; i < 4; ++i)
        text += Section("REF_ELLIPSOID", "    Ellipsoid_Name \"E" + std::to_string(i) + "\"\n    ID_Code \"E" +
                                             std::to_string(i) + "\"\n    Semi_Major_Axis " +
                                             (i == 2 ? "6378138m" : "6378137") + "\n    Inverse_Flatness 298\n");
    text += "END_TARGET\n";
    kvtest::WriteFile(path, text);
    SResult r = Host(user.Path(), "ellipsoid MY errors");
    EXPECT_NE(r.output.find(path + ":17: parameter '6378138m'"), std::string::npos) << r.output;
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_NE(kvtest::ReadFile(user.File("custom_ellipsoid.unsaved.gxr")).find("\"MY\""), std::string::npos);
}

// Root reads every file, so the host runs as an ordinary user here.
TEST(CatalogueSafety, AnUnreadableFileIsNotReplaced)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    const std::string text = FiveGrids(Grid("Site C"));
    kvtest::WriteFile(path, text);
    chmod(path.c_str(), 0);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(user.Path().c_str(), 65534, 65534), 0);
    }
    chmod(user.Path().c_str(), 0777);
    SResult r = Host(user.Path(), "--nobody add 'New Grid' errors");
    EXPECT_EQ(r.status, 0) << r.output;
    EXPECT_NE(r.output.find(path + ": cannot read the file: Permission denied"), std::string::npos) << r.output;
    chmod(path.c_str(), 0644);
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_NE(kvtest::ReadFile(user.File("custom_projection.unsaved.gxr")).find("\"New Grid\""), std::string::npos);
}

// Sections of unknown types and further targets are not read, but they are
// written back with the user's entries and the new one.
TEST(CatalogueSafety, WhatTheLibraryCannotUseIsWrittenBackUnchanged)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    const std::string misspelt = Section("UTM_PROJECTON", "    Projection_Name \"Site C\"\n    Scale 0.9996\n");
    const std::string second = "TARGET MAP_PROJECTION_DEFINITION\n" + Grid("Site F") + Grid("Site G") + "END_TARGET\n";
    kvtest::WriteFile(path, FiveGrids(misspelt) + second);

    SResult r = Host(user.Path(), "add 'New Grid' list errors");
    EXPECT_NE(r.output.find(path + ":19: section 'UTM_PROJECTON' is not a known projection type"), std::string::npos)
        << r.output;
    EXPECT_NE(r.output.find(path + ":40: target 'MAP_PROJECTION_DEFINITION' is not read"), std::string::npos)
        << r.output;
    EXPECT_NE(r.output.find("projection Site E\nprojection New Grid\n"), std::string::npos) << r.output;

    const std::string written = kvtest::ReadFile(path);
    GxrFile* file = gxrLoadFile(path.c_str());
    ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    ASSERT_EQ(gxrGetNoTargets(file, "MAP_PROJECTION_DEFINITION"), 2) << written;
    GxrTarget* main = gxrTargetByNameNum(file, "MAP_PROJECTION_DEFINITION", 1);
    ASSERT_EQ(gxrGetNoSections(main, nullptr), 6) << written;
    EXPECT_STREQ(gxrGetSectionName(gxrSectionByNum(main, 3)), "UTM_PROJECTON");
    CString name;
    gxrGetParam(gxrSectionByNum(main, 3), "Projection_Name", &name, 1, 1);
    EXPECT_EQ(name, "Site C");
    gxrGetParam(gxrSectionByNum(main, 6), "Projection_Name", &name, 1, 1);
    EXPECT_EQ(name, "New Grid");
    EXPECT_EQ(gxrGetNoSections(gxrTargetByNameNum(file, "MAP_PROJECTION_DEFINITION", 2), nullptr), 2);
    gxrClose(file);

    // Written back again unchanged by the next session.
    Host(user.Path(), "add 'Newer Grid'");
    EXPECT_EQ(Count(kvtest::ReadFile(path), "UTM_PROJECTON"), 1);
    EXPECT_EQ(Count(kvtest::ReadFile(path), "Site G"), 1);
}

TEST(CatalogueSafety, ASymbolicLinkStaysALink)
{
    kvtest::TempDir user;
    kvtest::TempDir elsewhere;
    const std::string real = elsewhere.File("my_grids.gxr");
    kvtest::WriteFile(real, FiveGrids(Grid("Site C")));
    ASSERT_EQ(symlink(real.c_str(), user.File("custom_projection.gxr").c_str()), 0);
    Host(user.Path(), "add 'New Grid'");
    struct stat st;
    ASSERT_EQ(lstat(user.File("custom_projection.gxr").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    const std::string text = kvtest::ReadFile(real);
    EXPECT_EQ(Count(text, "  SECTION "), 6) << text;
    EXPECT_EQ(FilesIn(elsewhere.Path()), std::vector<std::string>{"my_grids.gxr"});
}

TEST(CatalogueSafety, SettingUpTwiceDoesNotDoubleTheFile)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    for (int run = 0; run < 3; ++run)
        Host(user.Path(), "--twice add 'New Grid " + std::to_string(run) + "'");
    const std::string text = kvtest::ReadFile(path);
    EXPECT_EQ(Count(text, "SECTION UTM_PROJECTION"), 5) << text;
    EXPECT_EQ(Count(text, "SECTION LAMBERT_CONIC_2SP_PROJECTION"), 3) << text;
}

// Only a looked-up system and no edit: the user's file, comments and all, is not touched.
TEST(CatalogueSafety, ACleanFileIsRewrittenOnlyWhenSomethingChanged)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    const std::string text = FiveGrids(Grid("Site C"));
    kvtest::WriteFile(path, text);
    SResult r = Host(user.Path(), "lookup UTM-32 lookup 'Site C' errors");
    EXPECT_EQ(r.output, "");
    EXPECT_EQ(kvtest::ReadFile(path), text);

    Host(user.Path(), "delete 'Site B'");
    const std::string after = kvtest::ReadFile(path);
    EXPECT_EQ(Count(after, "SECTION UTM_PROJECTION"), 4);
    EXPECT_EQ(after.find("Site B"), std::string::npos);
    EXPECT_LT(after.find("Site A"), after.find("Site C"));
}

// A write that cannot be done changes nothing on disk, and the host is told.
TEST(CatalogueSafety, AFailedWriteKeepsTheOldFileAndSaysSo)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    const std::string text = FiveGrids(Grid("Site C"));
    kvtest::WriteFile(path, text);

    // A full disk: a file-size limit makes write(2) fail part-way.
    SResult full = Host(user.Path(), "add-many 500 writeback errors", "ulimit -f 8; trap '' XFSZ; ");
    EXPECT_NE(full.output.find("writeback -1"), std::string::npos) << full.output;
    EXPECT_NE(full.output.find("write failed"), std::string::npos) << full.output;
    EXPECT_NE(full.output.find("are lost"), std::string::npos) << full.output;
    EXPECT_NE(full.output.find("kvcart: the user catalogue could not be saved"), std::string::npos)
        << "at exit, a loss is reported on standard error\n"
        << full.output;
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

    // A read-only directory, for an ordinary user.
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    }
    chmod(user.Path().c_str(), 0555);
    SResult readOnly = Host(user.Path(), "--nobody add 'New Grid' writeback");
    EXPECT_NE(readOnly.output.find("writeback -1"), std::string::npos) << readOnly.output;
    EXPECT_NE(readOnly.output.find("cannot create a temporary file"), std::string::npos) << readOnly.output;
    chmod(user.Path().c_str(), 0755);
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

    // A user directory that does not exist is not created.
    SResult missing = Host(user.File("no/such/dir/"), "add 'New Grid' writeback");
    EXPECT_NE(missing.output.find("writeback -1"), std::string::npos) << missing.output;
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});
}

// Hosts that exit at the same time: the file is always one complete version,
// and what a later writer would have written over is saved aside, so every
// session's entries are in the file or in the rescue file.
TEST(CatalogueSafety, ConcurrentWritersNeverDamageTheFile)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    std::vector<std::thread> hosts;
    for (int i = 0; i < 4; ++i)
        hosts.emplace_back([&user, i] { Host(user.Path(), "add-many " + std::to_string(200 + i)); });
    for (std::thread& t : hosts)
        t.join();
    int total = 0;
    for (const std::string& name : {path, user.File("custom_projection.unsaved.gxr")}) {
        if (access(name.c_str(), F_OK) != 0)
            continue;
        GxrFile* file = gxrLoadFile(name.c_str());
        ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
        total += gxrGetNoSections(gxrTargetByNameNum(file, "MAP_PROJECTION_DEFINITION", 1), nullptr);
        gxrClose(file);
    }
    EXPECT_EQ(total, 5 + 200 + 201 + 202 + 203);
    EXPECT_NE(kvtest::ReadFile(path).find("Site E"), std::string::npos);
    for (const std::string& name : FilesIn(user.Path()))
        EXPECT_TRUE(name == "custom_projection.gxr" || name == "custom_projection.unsaved.gxr") << name;
}

// A process killed while writing leaves its temporary file; the next writer
// removes it, and the old file is complete all along.
TEST(CatalogueSafety, KilledWritersLeaveNoTemporaryFilesBehind)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    const std::string before = kvtest::ReadFile(path);

    const pid_t host = fork();
    ASSERT_GE(host, 0);
    if (host == 0) {
        execl(KVCART_CATALOGUE_SESSION, KVCART_CATALOGUE_SESSION, KVCART_SHIPPED_DATA_DIR, user.Path().c_str(),
              "add-many", "50000", static_cast<char*>(nullptr));
        _exit(127);
    }
    // Kill it as soon as its temporary file appears.
    bool seen = false;
    for (int i = 0; i < 200000 && !seen; ++i) {
        for (const std::string& name : FilesIn(user.Path()))
            seen = seen || name.find(".tmp.") != std::string::npos;
        if (!seen)
            usleep(100);
    }
    kill(host, SIGKILL);
    int status = 0;
    waitpid(host, &status, 0);
    EXPECT_TRUE(seen) << "the host finished before its write could be interrupted";
    if (WIFSIGNALED(status)) {
        EXPECT_EQ(kvtest::ReadFile(path), before);
    }

    // A temporary file of another dead process, made by hand, is removed too.
    const pid_t dead = fork();
    if (dead == 0)
        _exit(0);
    waitpid(dead, &status, 0);
    kvtest::WriteFile(path + ".tmp." + std::to_string(dead) + ".0", "half a file");
    // ...but not one of a live process.
    kvtest::WriteFile(path + ".tmp." + std::to_string(getpid()) + ".7", "being written");

    Host(user.Path(), "add 'New Grid'");
    EXPECT_EQ(FilesIn(user.Path()),
              (std::vector<std::string>{"custom_projection.gxr", "custom_projection.gxr.tmp." +
                                                                     std::to_string(getpid()) + ".7"}));
    EXPECT_EQ(Count(kvtest::ReadFile(path), "  SECTION "), 6);
}

// The process-wide umask is shared by every thread of the host; a writer that
// sets it to 0 for a moment makes the files other threads create world-writable.
// This executable's umask stands in for the C library's and counts the calls.
namespace {
std::atomic<int> g_umaskCalls{0};
} // namespace

extern "C" mode_t umask(mode_t mask)
{
    ++g_umaskCalls;
    return static_cast<mode_t>(syscall(SYS_umask, mask));
}

TEST(CatalogueSafety, WritingNeverTouchesTheUmask)
{
    kvtest::TempDir dir;
    const mode_t mask = static_cast<mode_t>(syscall(SYS_umask, 027));
    g_umaskCalls = 0;
    GxrFile* file = gxrCreate(dir.File("new.gxr").c_str());
    gxrAddTarget(file, "T");
    EXPECT_EQ(gxrWrite(file), GXR_OK) << gxrGetErrorMessageGlb();
    gxrClose(file);
    syscall(SYS_umask, mask);
    EXPECT_EQ(g_umaskCalls, 0);
    struct stat st;
    ASSERT_EQ(stat(dir.File("new.gxr").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u) << "a new file gets what the umask leaves of 0666";
}
