#include "catalogue/KvCartSetup.h"

#include <cstdio>
#include <sys/stat.h>

namespace {

bool IsDirectory(const std::string& path)
{
    struct stat st;
    return !path.empty() && ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsFile(const std::string& path)
{
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// The directory a prefix names: a directory's name without its final "/" gets
// one; any other prefix is kept as given.
std::string DirectoryPrefix(const std::string& prefix)
{
    if (!prefix.empty() && prefix.back() != '/' && IsDirectory(prefix))
        return prefix + "/";
    return prefix;
}

} // namespace

CKvCartSetup* CKvCartSetup::Instance()
{
    static CKvCartSetup instance;
    return &instance;
}

CKvCartSetup::~CKvCartSetup()
{
    // At exit nobody is left to ask for the error, and the user's additions
    // would go to a rescue file, or vanish, without a word: this is the one place
    // the library speaks, and only of what the host has not been told.
    WriteBack();
    if (m_unreported.empty())
        return;
    std::string text;
    for (const std::string& message : m_unreported)
        text += message + "\n";
    std::fprintf(stderr, "kvcart: the user catalogue was not updated:\n%s", text.c_str());
}

void CKvCartSetup::ReadData(const std::string& systemPrefix, const std::string& userPrefix)
{
    const std::string systemDirectory = DirectoryPrefix(systemPrefix);
    const std::string userDirectory = DirectoryPrefix(userPrefix);
    m_userDirectory = userDirectory;
    m_systemDirectory = systemDirectory;
    m_bHasUserDirectory = true;
    const size_t ellipsoidProblems = m_ellipsoids.GetProblems().size();
    const size_t projectionProblems = m_projections.GetProblems().size();
    m_ellipsoids.ReadEllipsoids(systemDirectory + "ellipsoid.gxr", false);
    m_ellipsoids.ReadEllipsoids(userDirectory + "custom_ellipsoid.gxr", true);
    m_ellipsoids.GenerateCompleteList();
    m_projections.InitMapProjections(systemDirectory, userDirectory);
    m_lastError = m_ellipsoids.GetProblems().substr(ellipsoidProblems) +
                  m_projections.GetProblems().substr(projectionProblems);
    m_bSystemCatalogue = IsFile(systemDirectory + "map_projection.gxr");
    if (!m_bSystemCatalogue || !IsFile(systemDirectory + "ellipsoid.gxr")) {
        const bool exists = IsDirectory(systemDirectory.empty() ? std::string(".") : systemDirectory);
        m_lastError += "the system catalogue directory '" + systemPrefix + "' " +
                       (exists ? "holds no catalogue (ellipsoid.gxr and map_projection.gxr)\n" : "does not exist\n");
    }
}

bool CKvCartSetup::WriteBack()
{
    if (!m_bHasUserDirectory)
        return true;
    // Only the user's own definitions go back, so that reading the file again does
    // not duplicate the system catalogue. Both writes replace the file atomically,
    // and neither touches a file that did not read cleanly.
    bool ok = true;
    const auto writeBack = [this, &ok](bool& modified, bool saved, const std::string& message, std::string& last) {
        // What was lost is tried again (at exit at the latest); what went to the
        // rescue file is done with.
        modified = !saved;
        ok = saved && message.empty() && ok;
        // A write-back that fails as the one before it did has nothing new to say.
        if (!message.empty() && message != last) {
            m_lastError += message + "\n";
            m_unreported.push_back(message);
        }
        last = message;
    };
    std::string message;
    if (m_bMapProjectionListModified) {
        const bool saved = m_projections.WriteBackCustom(m_userDirectory + "custom_projection.gxr", message);
        writeBack(m_bMapProjectionListModified, saved, message, m_lastProjectionMessage);
    }
    if (m_bEllipsoidListModified) {
        const bool saved = m_ellipsoids.WriteBackCustom(m_userDirectory + "custom_ellipsoid.gxr", message);
        writeBack(m_bEllipsoidListModified, saved, message, m_lastEllipsoidMessage);
    }
    return ok;
}

std::string CKvCartSetup::GetLastError() const
{
    m_unreported.clear(); // the host has been told
    return m_lastError;
}
