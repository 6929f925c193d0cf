// Runs the kvcart program from a test, in a directory of the test's own, and
// keeps what it wrote and its exit status.
#pragma once

#include "TestSupport.h"

#include <cstdlib>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace kvtest {

struct SRun
{
    int status = -1;
    std::string out, err;
    std::vector<std::string> OutLines() const
    {
        std::vector<std::string> lines;
        std::istringstream in(out);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
};

// One argument for sh, single-quoted.
inline std::string Quote(const std::string& arg)
{
    std::string quoted = "'";
    for (char c : arg)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// A shell command run in dir, standard output and error kept; the status of sh.
inline SRun Shell(const TempDir& dir, const std::string& command)
{
    SRun run;
    const int raw = std::system(("cd " + Quote(dir.Path()) + " && { " + command + " ; } > stdout.txt 2> stderr.txt")
                                    .c_str());
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = ReadFile(dir.File("stdout.txt"));
    run.err = ReadFile(dir.File("stderr.txt"));
    return run;
}

// A shell command line read through a pipe: its output (the line redirects
// standard error itself when it wants it) and its exit status, 128 + the
// signal that ended it.
inline SRun Piped(const std::string& line)
{
    SRun run;
    if (FILE* pipe = popen(line.c_str(), "r")) {
        char buffer[512];
        while (fgets(buffer, sizeof buffer, pipe))
            run.out += buffer;
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return run;
}

// The program run in dir with XDG_CONFIG_HOME there, so that the default user
// directory is the test's own; input, when given, is its standard input
// (otherwise /dev/null).
inline SRun Kvcart(const TempDir& dir, const std::vector<std::string>& args, const std::string* input = nullptr)
{
    std::string command = "XDG_CONFIG_HOME=" + Quote(dir.Path() + "config") + " " + Quote(KVCART_CLI);
    for (const std::string& arg : args)
        command += " " + Quote(arg);
    if (input != nullptr) {
        WriteFile(dir.File("stdin.txt"), *input);
        command += " < stdin.txt";
    } else {
        command += " < /dev/null";
    }
    return Shell(dir, command);
}

inline SRun Kvcart(const TempDir& dir, const std::vector<std::string>& args, const std::string& input)
{
    return Kvcart(dir, args, &input);
}

} // namespace kvtest
