// What happens to the user's catalogue files when a real host process sets the
// catalogue up, does one thing and exits: nothing the user wrote is lost.
#include "catalogue/KvEllipsoidList.h"
#include "catalogue/KvLambert2SPProjection.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvUserCatalogue.h"
#include "paramfile/Gxr.h"
#include "paramfile/ParamFileWriter.h"

#include "ProgramRun.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using SResult = kvtest::SRun;
using kvtest::Piped;

// The host session in the user directory given, standard output and error together.
SResult Host(const std::string& user, const std::string& arguments, const std::string& prefix = std::string())
{
    return Piped(prefix + std::string(KVCART_CATALOGUE_SESSION) + " '" + KVCART_SHIPPED_DATA_DIR + "' '" + user + "' " +
                 arguments + " 2>&1");
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

// The names of a file's entries, in file order: the string of keyword in every
// section of the first target of that name.
std::vector<std::string> NamesIn(const std::string& path, const char* target, const char* keyword)
{
    std::vector<std::string> names;
    GxrFile* file = gxrLoadFile(path.c_str());
    EXPECT_NE(file, nullptr) << path << ": " << gxrGetErrorMessageGlb();
    if (file == nullptr)
        return names;
    GxrTarget* main = gxrTargetByNameNum(file, target, 1);
    for (int i = 1; i <= gxrGetNoSections(main, nullptr); ++i) {
        CString name;
        gxrGetParam(gxrSectionByNum(main, i), keyword, &name, 1, 1);
        names.push_back(name.GetStdString());
    }
    gxrClose(file);
    return names;
}

std::vector<std::string> Sorted(std::vector<std::string> names)
{
    std::sort(names.begin(), names.end());
    return names;
}

std::string Sphere(const std::string& id)
{
    return Section("REF_ELLIPSOID", "    Ellipsoid_Name \"Sphere " + id + "\"\n    ID_Code \"" + id +
                                        "\"\n    Semi_Major_Axis 6371000\n    Inverse_Flatness 0\n");
}

// A shell command run in dir, as the unprivileged user when asNobody and this
// process is root; standard output and error together.
SResult RunIn(const std::string& dir, const std::string& command, bool asNobody = false)
{
    const std::string privileges =
        asNobody && geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    return Piped("cd '" + dir + "' && " + privileges + "sh -c \"" + command + "\" 2>&1");
}

// Runs each shell command in a process of its own, all released at the same
// moment: they wait until the parent closes a pipe. release() is called then,
// while they run. Returns their exit statuses and outputs (standard output and
// error together, kept in scratch).
std::vector<SResult> AtOnce(
    const std::vector<std::string>& commands, const kvtest::TempDir& scratch,
    const std::function<void()>& release = [] {})
{
    int gate[2];
    EXPECT_EQ(pipe(gate), 0);
    std::vector<pid_t> children;
    for (size_t i = 0; i < commands.size(); ++i) {
        const std::string output = scratch.File("output." + std::to_string(i));
        const pid_t child = fork();
        if (child == 0) {
            close(gate[1]);
            char byte;
            while (read(gate[0], &byte, 1) < 0 && errno == EINTR) {
            }
            const std::string line = "exec > '" + output + "' 2>&1; " + commands[i];
            execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        children.push_back(child);
    }
    close(gate[0]);
    close(gate[1]);
    release();
    std::vector<SResult> results;
    for (size_t i = 0; i < children.size(); ++i) {
        int status = 0;
        waitpid(children[i], &status, 0);
        results.emplace_back();
        results.back().status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        results.back().out = kvtest::ReadFile(scratch.File("output." + std::to_string(i)));
    }
    return results;
}

// Lets hosts waiting at "barrier gate" go on once all of them are there.
void OpenGate(const kvtest::TempDir& gate, size_t hosts)
{
    for (int wait = 0; wait < 20000 && FilesIn(gate.Path()).size() < hosts; ++wait)
        usleep(500);
    EXPECT_EQ(FilesIn(gate.Path()).size(), hosts) << "hosts at the barrier";
    kvtest::WriteFile(gate.File("start"), "");
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
        EXPECT_EQ(looked.status, 0) << looked.out;
        EXPECT_TRUE(kvtest::Contains(looked.out, path + c.reason));
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

        SResult added = Host(user.Path(), "add 'New Grid' writeback errors");
        EXPECT_EQ(added.status, 0) << added.out;
        // Saved, but not in the catalogue: the write-back says so.
        EXPECT_TRUE(kvtest::Contains(added.out, "writeback -1"));
        EXPECT_TRUE(kvtest::Contains(added.out, "saved in " + user.File("custom_projection.unsaved.gxr")));
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        // A second session's addition joins the first in the rescue file.
        Host(user.Path(), "add 'Newer Grid'");
        EXPECT_EQ(kvtest::ReadFile(path), c.text);
        const std::string rescued = kvtest::ReadFile(user.File("custom_projection.unsaved.gxr"));
        EXPECT_EQ(kvtest::Count(rescued, "SECTION LAMBERT_CONIC_2SP_PROJECTION"), 2) << rescued;
        EXPECT_TRUE(kvtest::Contains(rescued, "\"New Grid\""));
        EXPECT_TRUE(kvtest::Contains(rescued, "\"Newer Grid\""));
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
    EXPECT_TRUE(kvtest::Contains(r.out, path + ":17: parameter '6378138m'"));
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_TRUE(kvtest::Contains(kvtest::ReadFile(user.File("custom_ellipsoid.unsaved.gxr")), "\"MY\""));
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
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(kvtest::Contains(r.out, path + ": cannot read the file: Permission denied"));
    chmod(path.c_str(), 0644);
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_TRUE(kvtest::Contains(kvtest::ReadFile(user.File("custom_projection.unsaved.gxr")), "\"New Grid\""));
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
    EXPECT_TRUE(kvtest::Contains(r.out, path + ":19: section 'UTM_PROJECTON' is not a known projection type"));
    EXPECT_TRUE(kvtest::Contains(r.out, path + ":40: target 'MAP_PROJECTION_DEFINITION' is not read"));
    EXPECT_TRUE(kvtest::Contains(r.out, "projection Site E\nprojection New Grid\n"));

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
    EXPECT_EQ(kvtest::Count(kvtest::ReadFile(path), "UTM_PROJECTON"), 1);
    EXPECT_EQ(kvtest::Count(kvtest::ReadFile(path), "Site G"), 1);
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
    EXPECT_EQ(kvtest::Count(text, "  SECTION "), 6) << text;
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
    EXPECT_EQ(kvtest::Count(text, "SECTION UTM_PROJECTION"), 5) << text;
    EXPECT_EQ(kvtest::Count(text, "SECTION LAMBERT_CONIC_2SP_PROJECTION"), 3) << text;
}

// Only a looked-up system and no edit: the user's file, comments and all, is not touched.
TEST(CatalogueSafety, ACleanFileIsRewrittenOnlyWhenSomethingChanged)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    const std::string text = FiveGrids(Grid("Site C"));
    kvtest::WriteFile(path, text);
    SResult r = Host(user.Path(), "lookup UTM-32 lookup 'Site C' errors");
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(kvtest::ReadFile(path), text);

    Host(user.Path(), "delete 'Site B'");
    const std::string after = kvtest::ReadFile(path);
    EXPECT_EQ(kvtest::Count(after, "SECTION UTM_PROJECTION"), 4);
    EXPECT_FALSE(kvtest::Contains(after, "Site B"));
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
    EXPECT_TRUE(kvtest::Contains(full.out, "writeback -1"));
    EXPECT_EQ(kvtest::Count(full.out, "was not written: " + path + ": write failed"), 1) << full.out;
    EXPECT_EQ(kvtest::Count(full.out, "are lost"), 1) << full.out;
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});
    // A host that does not ask is told at exit, on standard error.
    full = Host(user.Path(), "add-many 500", "ulimit -f 8; trap '' XFSZ; ");
    EXPECT_EQ(kvtest::Count(full.out, "kvcart: the user catalogue was not updated:\n"), 1) << full.out;
    EXPECT_EQ(kvtest::Count(full.out, "are lost"), 1) << full.out;
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

    // A read-only directory, for an ordinary user.
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    }
    chmod(user.Path().c_str(), 0555);
    SResult readOnly = Host(user.Path(), "--nobody add 'New Grid' writeback");
    EXPECT_TRUE(kvtest::Contains(readOnly.out, "writeback -1"));
    EXPECT_TRUE(kvtest::Contains(readOnly.out, "cannot create a temporary file"));
    chmod(user.Path().c_str(), 0755);
    EXPECT_EQ(kvtest::ReadFile(path), text);
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});

    // A user directory that does not exist is not created.
    SResult missing = Host(user.File("no/such/dir/"), "add 'New Grid' writeback");
    EXPECT_TRUE(kvtest::Contains(missing.out, "writeback -1"));
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});
}

// Hosts that have all read the catalogue exit at the same time: the file is
// always one complete version, and each writer merges its session's changes
// into what the others wrote before it. The hosts add the same names with the
// same definitions ("Grid 0" to "Grid 199" four times), one entry each in the end.
TEST(CatalogueSafety, ConcurrentWritersNeverDamageTheFile)
{
    kvtest::TempDir user;
    kvtest::TempDir gate;
    kvtest::TempDir scratch;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    std::vector<std::string> commands;
    for (int i = 0; i < 4; ++i)
        commands.push_back(std::string(KVCART_CATALOGUE_SESSION) + " '" + KVCART_SHIPPED_DATA_DIR + "' '" +
                           user.Path() + "' add-many " + std::to_string(200 + i) + " barrier '" + gate.Path() + "'");
    const std::vector<SResult> results = AtOnce(commands, scratch, [&gate] { OpenGate(gate, 4); });
    for (const SResult& r : results) {
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.out, "");
    }
    std::vector<std::string> expected = {"Site A", "Site B", "Site C", "Site D", "Site E"};
    for (int k = 0; k < 203; ++k)
        expected.push_back("Grid " + std::to_string(k));
    EXPECT_EQ(Sorted(NamesIn(path, "MAP_PROJECTION_DEFINITION", "Projection_Name")), Sorted(expected));
    EXPECT_EQ(FilesIn(user.Path()), std::vector<std::string>{"custom_projection.gxr"});
}

// Eight programs started at the same moment, each adding ten definitions and an
// ellipsoid of its own, one command after the other: every addition is in the
// catalogue and every command succeeds.
TEST(CatalogueSafety, ProgramsAddingAtOnceAllLandInTheCatalogue)
{
    kvtest::TempDir user;
    kvtest::TempDir scratch;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    const std::string program =
        std::string(KVCART_CLI) + " --catalogue '" + KVCART_SHIPPED_DATA_DIR + "' --user-dir '" + user.Path() + "' ";
    std::vector<std::string> commands;
    std::vector<std::string> expected = {"Site A", "Site B", "Site C", "Site D", "Site E"};
    std::vector<std::string> ellipsoids;
    for (int w = 0; w < 8; ++w) {
        std::string script;
        for (int j = 0; j < 10; ++j) {
            const std::string name = "Writer " + std::to_string(w) + " grid " + std::to_string(j);
            script += program + "add '" + name + "' UTM-" + std::to_string(1 + (w * 10 + j) % 60) + " || exit 1; ";
            expected.push_back(name);
            if (j == 4) {
                ellipsoids.push_back("W" + std::to_string(w));
                script += program + "add --ellipsoid " + ellipsoids.back() + " 'Writer sphere' 6371000 0 || exit 1; ";
            }
        }
        commands.push_back(script);
    }
    const std::vector<SResult> results = AtOnce(commands, scratch);
    for (size_t w = 0; w < results.size(); ++w) {
        EXPECT_EQ(results[w].status, 0) << "writer " << w << "\n" << results[w].out;
        EXPECT_FALSE(kvtest::Contains(results[w].out, "not updated"));
    }
    EXPECT_EQ(Sorted(NamesIn(path, "MAP_PROJECTION_DEFINITION", "Projection_Name")), Sorted(expected));
    EXPECT_EQ(Sorted(NamesIn(user.File("custom_ellipsoid.gxr"), "ELLIPSOID_DEFINITION", "ID_Code")),
              Sorted(ellipsoids));
    EXPECT_EQ(FilesIn(user.Path()), (std::vector<std::string>{"custom_ellipsoid.gxr", "custom_projection.gxr"}));
}

// Eight library hosts that have all read the catalogue, each adding, deleting
// and editing entries of its own, write back at the same moment when they
// exit: all their changes are in the files, and nobody is told of a problem.
TEST(CatalogueSafety, HostsWritingBackAtOnceAllLandInTheCatalogue)
{
    kvtest::TempDir user;
    kvtest::TempDir gate;
    std::string grids, spheres;
    for (int w = 0; w < 8; ++w) {
        grids += Grid("Site " + std::to_string(w)) + Grid("Kept " + std::to_string(w));
        spheres += Sphere("E" + std::to_string(w));
    }
    kvtest::WriteFile(user.File("custom_projection.gxr"),
                      "TARGET MAP_PROJECTION_DEFINITION\n" + grids + "END_TARGET\n");
    kvtest::WriteFile(user.File("custom_ellipsoid.gxr"), "TARGET ELLIPSOID_DEFINITION\n" + spheres + "END_TARGET\n");

    std::vector<std::string> commands, expected, ellipsoids;
    for (int w = 0; w < 8; ++w) {
        const std::string n = std::to_string(w);
        std::string steps = "delete 'Site " + n + "' branch 'Kept " + n + "' 'Edited " + n + "' ellipsoid H" + n +
                            " delete-ellipsoid E" + n;
        for (int j = 0; j < 3; ++j) {
            steps += " add 'Host " + n + " grid " + std::to_string(j) + "'";
            expected.push_back("Host " + n + " grid " + std::to_string(j));
        }
        expected.push_back("Kept " + n);
        ellipsoids.push_back("H" + n);
        commands.push_back(std::string(KVCART_CATALOGUE_SESSION) + " '" + KVCART_SHIPPED_DATA_DIR + "' '" +
                           user.Path() + "' " + steps + " barrier '" + gate.Path() + "'");
    }
    // Released once every host has read the files and made its changes.
    kvtest::TempDir scratch;
    const std::vector<SResult> results = AtOnce(commands, scratch, [&gate] { OpenGate(gate, 8); });
    for (const SResult& r : results) {
        EXPECT_EQ(r.status, 0) << r.out;
        EXPECT_EQ(r.out, "");
    }
    const std::string path = user.File("custom_projection.gxr");
    EXPECT_EQ(Sorted(NamesIn(path, "MAP_PROJECTION_DEFINITION", "Projection_Name")), Sorted(expected));
    const std::string text = kvtest::ReadFile(path);
    for (int w = 0; w < 8; ++w)
        EXPECT_TRUE(kvtest::Contains(text, "\"Edited " + std::to_string(w) + "\""));
    EXPECT_EQ(Sorted(NamesIn(user.File("custom_ellipsoid.gxr"), "ELLIPSOID_DEFINITION", "ID_Code")),
              Sorted(ellipsoids));
    EXPECT_EQ(FilesIn(user.Path()), (std::vector<std::string>{"custom_ellipsoid.gxr", "custom_projection.gxr"}));
}

// Two sessions that change the same entry differently: the catalogue keeps the
// version saved first, and the later session's version goes to the rescue file,
// named in its message. Everything else of both sessions is merged.
TEST(CatalogueSafety, TheFirstSaveOfAnEntryChangedTwiceStaysTheOtherIsSavedAside)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    const std::string system = KVCART_SHIPPED_DATA_DIR;
    CKvMapProjectionList first, second;
    first.InitMapProjections(system, user.Path());
    second.InitMapProjections(system, user.Path());
    auto definition = [](CKvMapProjectionList& list, const char* name) {
        CKvMapProjData* d = list.GetMapProjection(name);
        EXPECT_NE(d, nullptr) << name;
        return d;
    };
    auto lambert = [](const char* name, double fnorth) {
        return new CKvLambert2SPProjection(name, "Site grids", "RF", 49.0, 44.0, 3.0, 46.5, 700000.0, fnorth);
    };

    definition(first, "Site B")->SetBranchName("From the first");
    first.DeleteMapProjection(definition(first, "Site C"));
    first.DeleteMapProjection(definition(first, "Site D"));
    definition(first, "Site E")->SetBranchName("Kept by the first");
    first.AddMapProjection(lambert("Same Grid", 6600000.0));
    first.AddMapProjection(lambert("Clash Grid", 6600000.0));

    second.DeleteMapProjection(definition(second, "Site A"));
    definition(second, "Site B")->SetBranchName("From the second");
    definition(second, "Site C")->SetBranchName("Edited by the second");
    second.DeleteMapProjection(definition(second, "Site D"));
    second.DeleteMapProjection(definition(second, "Site E"));
    second.AddMapProjection(lambert("Same Grid", 6600000.0));
    second.AddMapProjection(lambert("Clash Grid", 6700000.0));
    second.AddMapProjection(lambert("Only Second", 6600000.0));

    std::string message;
    EXPECT_TRUE(first.WriteBackCustom(path, message));
    EXPECT_EQ(message, "");
    // The second session's deletion of Site E, which the first edited, is not saved.
    EXPECT_FALSE(second.WriteBackCustom(path, message));
    const std::string rescue = user.File("custom_projection.unsaved.gxr");
    for (const char* what : {"'Site B'", "'Site C'", "'Clash Grid'", "'Site E'", "saved in ", "not saved"})
        EXPECT_TRUE(kvtest::Contains(message, what));
    EXPECT_TRUE(kvtest::Contains(message, rescue));

    EXPECT_EQ(NamesIn(path, "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              (std::vector<std::string>{"Site B", "Site E", "Same Grid", "Clash Grid", "Only Second"}));
    const std::string text = kvtest::ReadFile(path);
    EXPECT_TRUE(kvtest::Contains(text, "From the first"));
    EXPECT_TRUE(kvtest::Contains(text, "Kept by the first"));
    EXPECT_TRUE(kvtest::Contains(text, "6600000"));
    EXPECT_FALSE(kvtest::Contains(text, "6700000"));
    EXPECT_EQ(NamesIn(rescue, "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              (std::vector<std::string>{"Site B", "Site C", "Clash Grid"}));
    const std::string aside = kvtest::ReadFile(rescue);
    EXPECT_TRUE(kvtest::Contains(aside, "From the second"));
    EXPECT_TRUE(kvtest::Contains(aside, "Edited by the second"));
    EXPECT_TRUE(kvtest::Contains(aside, "6700000"));

    // Both sessions go on: what was saved aside is not offered again, and later
    // changes merge with the other session's.
    second.AddMapProjection(lambert("Later Second", 6600000.0));
    EXPECT_TRUE(second.WriteBackCustom(path, message));
    EXPECT_EQ(message, "");
    first.AddMapProjection(lambert("Later First", 6600000.0));
    EXPECT_TRUE(first.WriteBackCustom(path, message));
    EXPECT_EQ(message, "");
    EXPECT_EQ(NamesIn(path, "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              (std::vector<std::string>{"Site B", "Site E", "Same Grid", "Clash Grid", "Only Second", "Later Second",
                                        "Later First"}));
    EXPECT_EQ(kvtest::ReadFile(rescue), aside);

    // Ellipsoids by their ID: the same rule.
    CKvEllipsoidList one, two;
    one.ReadEllipsoids(user.File("custom_ellipsoid.gxr"), true);
    two.ReadEllipsoids(user.File("custom_ellipsoid.gxr"), true);
    one.AddEllipsoid(new CKvEllipsoid("One", "ONE", 6378000.0, 300.0));
    one.AddEllipsoid(new CKvEllipsoid("Clash", "XX", 6378000.0, 300.0));
    two.AddEllipsoid(new CKvEllipsoid("Two", "TWO", 6378000.0, 300.0));
    two.AddEllipsoid(new CKvEllipsoid("Clash", "XX", 6378001.0, 300.0));
    EXPECT_TRUE(one.WriteBackCustom(user.File("custom_ellipsoid.gxr"), message));
    EXPECT_TRUE(two.WriteBackCustom(user.File("custom_ellipsoid.gxr"), message));
    EXPECT_TRUE(kvtest::Contains(message, "'XX'"));
    EXPECT_EQ(NamesIn(user.File("custom_ellipsoid.gxr"), "ELLIPSOID_DEFINITION", "ID_Code"),
              (std::vector<std::string>{"ONE", "XX", "TWO"}));
    EXPECT_FALSE(kvtest::Contains(kvtest::ReadFile(user.File("custom_ellipsoid.gxr")), "6378001"));
    EXPECT_TRUE(kvtest::Contains(kvtest::ReadFile(user.File("custom_ellipsoid.unsaved.gxr")), "6378001"));
}

// A file that another program changed into something the library cannot read
// is not merged into: it stays as it is, and the session's changes are saved aside.
TEST(CatalogueSafety, AFileSpoiledSinceItWasReadIsNotWrittenOver)
{
    kvtest::TempDir user;
    const std::string path = user.File("custom_projection.gxr");
    kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
    CKvMapProjectionList list;
    list.InitMapProjections(KVCART_SHIPPED_DATA_DIR, user.Path());
    list.AddMapProjection(
        new CKvLambert2SPProjection("New Grid", "Site grids", "RF", 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0));
    const std::string spoiled = FiveGrids(Grid("Site C", "    Fnort 1000\n"));
    kvtest::WriteFile(path + ".new", spoiled);
    ASSERT_EQ(rename((path + ".new").c_str(), path.c_str()), 0);
    std::string message;
    EXPECT_TRUE(list.WriteBackCustom(path, message));
    EXPECT_TRUE(kvtest::Contains(message, "changed by another program"));
    EXPECT_TRUE(kvtest::Contains(message, "keyword 'Fnort' is not known"));
    EXPECT_EQ(kvtest::ReadFile(path), spoiled);
    EXPECT_EQ(NamesIn(user.File("custom_projection.unsaved.gxr"), "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              std::vector<std::string>{"New Grid"});
}

// A save that goes to the rescue file, or is lost, is told once: through the
// error text when the host asks for it, else on standard error at exit.
TEST(CatalogueSafety, ASaveThatCouldNotBeMadeIsToldOnce)
{
    const std::string header = "kvcart: the user catalogue was not updated";
    {
        SCOPED_TRACE("a full disk, a host that exits");
        kvtest::TempDir user;
        const std::string path = user.File("custom_projection.gxr");
        kvtest::WriteFile(path, FiveGrids(Grid("Site C")));
        const SResult r = Host(user.Path(), "--full-disk add-many 7");
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(kvtest::Count(r.out, header), 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out, "No space left on device"), 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out,
                                "7 new or changed entries were saved in " + user.File("custom_projection.unsaved.gxr")),
                  1)
            << r.out;
        EXPECT_EQ(kvtest::ReadFile(path), FiveGrids(Grid("Site C")));
        EXPECT_EQ(
            NamesIn(user.File("custom_projection.unsaved.gxr"), "MAP_PROJECTION_DEFINITION", "Projection_Name").size(),
            7u);
    }
    {
        SCOPED_TRACE("a full disk, a host that asks");
        kvtest::TempDir user;
        kvtest::WriteFile(user.File("custom_projection.gxr"), FiveGrids(Grid("Site C")));
        const SResult r = Host(user.Path(), "--full-disk add-many 7 writeback errors");
        EXPECT_TRUE(kvtest::Contains(r.out, "writeback -1"));
        EXPECT_EQ(kvtest::Count(r.out, "No space left on device"), 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out, header), 0) << r.out;
    }
    {
        SCOPED_TRACE("a file that did not read, a host that exits");
        kvtest::TempDir user;
        const std::string spoiled = FiveGrids(Grid("Site C", "    Fnort 1000\n"));
        kvtest::WriteFile(user.File("custom_projection.gxr"), spoiled);
        const SResult r = Host(user.Path(), "add 'New Grid'");
        EXPECT_EQ(kvtest::Count(r.out, header), 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out, "saved in " + user.File("custom_projection.unsaved.gxr")), 1) << r.out;
        EXPECT_EQ(kvtest::ReadFile(user.File("custom_projection.gxr")), spoiled);
    }
    {
        SCOPED_TRACE("the program, a save that is lost");
        kvtest::TempDir user;
        std::string grids;
        for (int k = 0; k < 400; ++k)
            grids += Grid("Site " + std::to_string(k));
        const std::string text = "TARGET MAP_PROJECTION_DEFINITION\n" + grids + "END_TARGET\n";
        kvtest::WriteFile(user.File("custom_projection.gxr"), text);
        // No rescue file can be made either.
        for (int attempt = 1; attempt <= 9; ++attempt)
            ASSERT_EQ(mkdir(CKvUserCatalogue::RescueName(user.File("custom_projection.gxr"), attempt).c_str(), 0755),
                      0);
        const SResult r =
            RunIn(user.Path(), "ulimit -f 40; trap '' XFSZ; " + std::string(KVCART_CLI) + " --catalogue '" +
                                   KVCART_SHIPPED_DATA_DIR + "' --user-dir . add 'New Grid' UTM-32");
        EXPECT_EQ(r.status, 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out, "write failed"), 1) << r.out;
        EXPECT_EQ(kvtest::Count(r.out, "is lost"), 1) << r.out;
        EXPECT_EQ(kvtest::ReadFile(user.File("custom_projection.gxr")), text);
    }
}

// The program's user directory: created as named and nowhere else, used from a
// working directory the user cannot write, and never the working directory by
// default: without HOME (and XDG_CONFIG_HOME) the program asks for one.
TEST(CatalogueSafety, TheProgramsUserDirectoryIsWhereItIsNamed)
{
    kvtest::TempDir work;
    const std::string program = std::string(KVCART_CLI) + " --catalogue '" + KVCART_SHIPPED_DATA_DIR + "' ";
    SResult r = RunIn(work.Path(), program + "add 'Site Grid' UTM-32 --user-dir mycat/sub");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(FilesIn(work.Path()), std::vector<std::string>{"mycat"});
    EXPECT_EQ(FilesIn(work.File("mycat")), std::vector<std::string>{"sub"});
    EXPECT_EQ(NamesIn(work.File("mycat/sub/custom_projection.gxr"), "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              std::vector<std::string>{"Site Grid"});

    // The directory exists; the working directory is read-only to this user.
    kvtest::TempDir readOnly;
    ASSERT_EQ(mkdir(readOnly.File("mycat").c_str(), 0777), 0);
    ASSERT_EQ(mkdir(readOnly.File("mycat/sub").c_str(), 0777), 0);
    chmod(readOnly.File("mycat/sub").c_str(), 0777);
    chmod(readOnly.Path().c_str(), 0555);
    r = RunIn(readOnly.Path(), program + "add 'Second Grid' UTM-33 --user-dir mycat/sub", true);
    EXPECT_EQ(r.status, 0) << r.out;
    r = RunIn(readOnly.Path(), program + "add 'Third Grid' UTM-34 --user-dir '" + readOnly.File("mycat/sub") + "'",
              true);
    EXPECT_EQ(r.status, 0) << r.out;
    chmod(readOnly.Path().c_str(), 0755);
    EXPECT_EQ(FilesIn(readOnly.Path()), std::vector<std::string>{"mycat"});
    EXPECT_EQ(NamesIn(readOnly.File("mycat/sub/custom_projection.gxr"), "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              (std::vector<std::string>{"Second Grid", "Third Grid"}));

    for (const char* environment : {"env -u HOME -u XDG_CONFIG_HOME ", "env -u XDG_CONFIG_HOME HOME= ",
                                    "env -u HOME XDG_CONFIG_HOME=relative ", "env -u XDG_CONFIG_HOME HOME=. "}) {
        SCOPED_TRACE(environment);
        for (const char* command : {"add 'Site Grid' UTM-32", "list"}) {
            r = RunIn(work.Path(), environment + program + command);
            EXPECT_EQ(r.status, 2) << r.out;
            EXPECT_TRUE(kvtest::Contains(r.out, "HOME"));
            EXPECT_TRUE(kvtest::Contains(r.out, "--user-dir"));
            EXPECT_EQ(FilesIn(work.Path()), std::vector<std::string>{"mycat"});
        }
    }
    r = RunIn(work.Path(),
              "env -u HOME XDG_CONFIG_HOME='" + work.File("config") + "' " + program + "add 'Site Grid' UTM-32");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(NamesIn(work.File("config/kvcart/custom_projection.gxr"), "MAP_PROJECTION_DEFINITION", "Projection_Name"),
              std::vector<std::string>{"Site Grid"});
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
              (std::vector<std::string>{"custom_projection.gxr",
                                        "custom_projection.gxr.tmp." + std::to_string(getpid()) + ".7"}));
    EXPECT_EQ(kvtest::Count(kvtest::ReadFile(path), "  SECTION "), 6);
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
