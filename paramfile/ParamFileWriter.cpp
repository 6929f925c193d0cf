#include "paramfile/ParamFileWriter.h"

#include "paramfile/NumericLocale.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

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

mode_t NewFileMode(const std::string& path)
{
    struct stat st;
    if (::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode))
        return st.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return static_cast<mode_t>(0666 & ~mask);
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

std::string CParamFileWriter::ToText(const GxrFile& file)
{
    std::string out;
    for (const GxrTarget& target : file.targets) {
        out += "TARGET " + target.name + "\n";
        for (const GxrSection& section : target.sections) {
            out += "  SECTION " + section.name + "\n";
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
        }
        out += "END_TARGET\n";
    }
    return out;
}

bool CParamFileWriter::WriteAtomically(const std::string& path, const std::string& text, std::string& error)
{
    if (text.find('\0') != std::string::npos) {
        error = path + ": a string holds a NUL byte and cannot be written";
        return false;
    }
    const mode_t mode = NewFileMode(path);
    std::vector<char> tempName(path.begin(), path.end());
    static const char suffix[] = ".tmp.XXXXXX";
    tempName.insert(tempName.end(), suffix, suffix + sizeof suffix);

    const int fd = ::mkstemp(tempName.data());
    if (fd < 0) {
        error = SystemError("cannot create a temporary file", path);
        return false;
    }
    bool ok = ::fchmod(fd, mode) == 0;
    if (ok && !(ok = WriteAll(fd, text)))
        error = SystemError("write failed", path);
    if (ok && !(ok = ::fsync(fd) == 0))
        error = SystemError("sync failed", path);
    if (::close(fd) != 0 && ok) {
        error = SystemError("close failed", path);
        ok = false;
    }
    if (ok && !(ok = ::rename(tempName.data(), path.c_str()) == 0))
        error = SystemError("cannot replace the file", path);
    if (!ok) {
        if (error.empty())
            error = SystemError("cannot set the file's permissions", path);
        ::unlink(tempName.data());
        return false;
    }
    // Make the rename itself durable.
    const int dirFd = ::open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    return true;
}
