// kvcart: the library's command-line program. See 'kvcart --help'.
#include "tools/kvcart/KvCliCommands.h"

#include <climits>
#include <cstdio>
#include <string>
#include <unistd.h>

int main(int argc, char** argv)
{
    // The installed catalogue is found beside the program itself, wherever the
    // installation was moved to.
    std::string programPath = argc > 0 ? argv[0] : "";
    char resolved[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", resolved, sizeof resolved - 1);
    if (length > 0)
        programPath.assign(resolved, static_cast<size_t>(length));
    static char outputBuffer[1 << 16];
    std::setvbuf(stdout, outputBuffer, _IOFBF, sizeof outputBuffer);
    CKvCliCommands commands(programPath, stdout, stderr);
    const int status = commands.Main(argc, argv);
    if (std::fflush(stdout) != 0) {
        std::perror("kvcart: cannot write the output");
        return CKvCliCommands::eBadInput;
    }
    return status;
}
