// kvcart: the library's command-line program. See 'kvcart --help'.
#include "tools/kvcart/KvCliCommands.h"

#include <climits>
#include <cstdio>
#include <pthread.h>
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
    // The threads of kvcart transform need little stack (a block of 256
    // points and the engines' locals): a small one leaves an address-space
    // limit (ulimit -v) to the lines read rather than to 8 MB stacks.
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) == 0) {
        if (pthread_attr_setstacksize(&attributes, 1 << 20) == 0)
            pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
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
