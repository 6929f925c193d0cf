#include "paramfile/ParamFileWriter.h"

#include "paramfile/NumericLocale.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string DirectoryOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string SystemError(const std::string& what, const std::string& path)
{
    return path + ": " + what + ": " + std::strerror(errno);
}

// write(2) until everything is out, resuming after signals and partial writes.
bool WriteAll(int fd, const std::string& text)
{
    const char* p = text.data();
    size_t left = text.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, left);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        p += n;
        left -= static_cast<size_t>(n);
    }
    return true;
}

// Where a write to path really lands: a symbolic link is followed to the file
// it names (relative targets are taken from the link's directory), so that
// replacing the file keeps the user's link. A chain longer than the kernel's
// own limit, or a loop, leaves the path as it is and the rename replaces the link.
std::string ResolveLinks(const std::string& path)
{
    std::string current = path;
    for (int depth = 0; depth < 40; ++depth) {
        struct stat st;
        if (::lstat(current.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
            return current;
        char target[4096];
        const ssize_t n = ::readlink(current.c_str(), target, sizeof target - 1);
        if (n <= 0)
            return current;
        target[n] = '\0';
        current = target[0] == '/' ? std::string(target) : DirectoryOf(current) + "/" + target;
    }
    return path;
}

std::string BaseNameOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Temporary files are named "<file>.tmp.<pid>.<n>". A process killed while
// writing leaves its temporary file behind; the next writer of the same file
// removes those whose process no longer exists. Files of live processes, which
// may be writing at this moment, are left alone.
void RemoveStaleTemporaries(const std::string& path)
{
    const std::string prefix = BaseNameOf(path) + ".tmp.";
    DIR* dir = ::opendir(DirectoryOf(path).c_str());
    if (dir == nullptr)
        return;
    while (const struct dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        char* end = nullptr;
        const long pid = std::strtol(name.c_str() + prefix.size(), &end, 10);
        if (end == name.c_str() + prefix.size() || *end != '.' || pid <= 0 || pid == static_cast<long>(::getpid()))
            continue;
        if (::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
            ::unlink((DirectoryOf(path) + "/" + name).c_str());
    }
    ::closedir(dir);
}

// Creates a new temporary file beside path. The file is created with mode 0666,
// so the kernel applies the process's umask itself: the umask is never read or
// changed, which would race with other threads of the host creating files.
int CreateTemporary(const std::string& path, std::string& tempName)
{
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        tempName = path + ".tmp." + std::to_string(::getpid()) + "." + std::to_string(counter++);
        const int fd = ::open(tempName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    errno = EEXIST;
    return -1;
}

} // namespace

void CParamFileWriter::_appendQuoted(std::string& out, const std::string& text)
{
    out += '"';
    for (char ch : text) {
        switch (ch) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        default: out += ch; break;
        }
    }
    out += '"';
}

std::string CParamFileWriter::SectionText(const GxrSection& section)
{
    std::string out = "  SECTION " + section.name + "\n";
    for (const GxrKeyword& keyword : section.keywords) {
        out += "    " + keyword.name;
        // Align the values in a column for people who read the file.
        out.append(keyword.name.size() < 24 ? 24 - keyword.name.size() : 1, ' ');
        for (size_t i = 0; i < keyword.params.size(); ++i) {
            if (i > 0)
                out += ' ';
            const GxrParam& param = keyword.params[i];
            if (param.isString)
                _appendQuoted(out, param.text);
            else
                out += CNumericLocale::FormatRoundTrip(param.number);
        }
        out += '\n';
    }
    out += "  END_SECTION\n";
    return out;
}

std::string CParamFileWriter::ToText(const GxrFile& file)
{
    std::string out;
    for (const GxrTarget& target : file.targets) {
        out += "TARGET " + target.name + "\n";
        for (const GxrSection& section : target.sections)
            out += SectionText(section);
        out += "END_TARGET\n";
    }
    return out;
}

bool CParamFileWriter::WriteAtomically(const std::string& requestedPath, const std::string& text, std::string& error)
{
    if (text.find('\0') != std::string::npos) {
        error = requestedPath + ": a string holds a NUL byte and cannot be written";
        return false;
    }
    const std::string path = ResolveLinks(requestedPath);
    RemoveStaleTemporaries(path);
    std::string tempName;
    const int fd = CreateTemporary(path, tempName);
    if (fd < 0) {
        error = SystemError("cannot create a temporary file", requestedPath);
        return false;
    }
    // A file that is replaced keeps its permissions; a new one has what the
    // umask left of 0666.
    struct stat st;
    bool ok = true;
    if (::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && !(ok = ::fchmod(fd, st.st_mode & 07777) == 0))
        error = SystemError("cannot set the file's permissions", requestedPath);
    if (ok && !(ok = WriteAll(fd, text)))
        error = SystemError("write failed", requestedPath);
    if (ok && !(ok = ::fsync(fd) == 0))
        error = SystemError("sync failed", requestedPath);
    if (::close(fd) != 0 && ok) {
        error = SystemError("close failed", requestedPath);
        ok = false;
    }
    if (ok && !(ok = ::rename(tempName.c_str(), path.c_str()) == 0))
        error = SystemError("cannot replace the file", requestedPath);
    if (!ok) {
        ::unlink(tempName.c_str());
        return false;
    }
    // Make the rename itself durable.
    const int dirFd = ::open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    return true;
}
