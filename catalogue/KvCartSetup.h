#ifndef KVCART_CATALOGUE_KVCARTSETUP_H
#define KVCART_CATALOGUE_KVCARTSETUP_H

#include "catalogue/KvEllipsoidList.h"
#include "catalogue/KvMapProjectionList.h"

#include <string>
#include <vector>

// The process-wide catalogue: ellipsoids and projection definitions, read once
// from the system and user directories. At process exit the user's custom
// catalogues are written back when they were changed.
class CKvCartSetup
{
public:
    // The one instance, created on first use (thread-safe) and destroyed at exit.
    static CKvCartSetup* Instance();

    CKvCartSetup(const CKvCartSetup&) = delete;
    CKvCartSetup& operator=(const CKvCartSetup&) = delete;
    virtual ~CKvCartSetup();

    // Directories are prefixes to which the file names are appended; a name of an
    // existing directory without its final "/" (pkg-config's datadir) is taken as
    // that directory. A system directory that does not exist or holds no
    // catalogue is reported in GetLastError().
    void ReadData(const std::string& systemDirectory, const std::string& userDirectory);
    // Whether the last ReadData found the system catalogue (map_projection.gxr).
    bool HasSystemCatalogue() const { return m_bSystemCatalogue; }
    // The system catalogue directory of the last ReadData, ending in '/' (empty:
    // the current directory, or none read).
    const std::string& GetSystemDirectory() const { return m_systemDirectory; }
    void SetEllipsoidListModified() { m_bEllipsoidListModified = true; }
    void SetMapProjectionListModified() { m_bMapProjectionListModified = true; }
    // Writes the changed custom catalogues now (the destructor does it at exit),
    // merged with what other processes saved since they were read. Returns false
    // when something of the session is not in the catalogue files: saved in a
    // rescue file beside them (an entry that another process changed
    // differently, a file that does not read cleanly, a failed write) or lost;
    // GetLastError() says which. A save that was lost is tried again at exit.
    bool WriteBack();
    // What went wrong in the last ReadData and the write-backs since: one
    // "file:line: what" per line, empty when all was well. Files that did not
    // read cleanly are named here and are never written over. A write-back's
    // problem that the host has not asked for here by exit goes to standard
    // error then; each is told once.
    std::string GetLastError() const;

    CKvEllipsoidList& GetEllipsoidList() { return m_ellipsoids; }
    CKvMapProjectionList& GetMapProjectionList() { return m_projections; }

private:
    CKvCartSetup() = default;

    CKvEllipsoidList m_ellipsoids;
    CKvMapProjectionList m_projections;
    bool m_bEllipsoidListModified = false;
    bool m_bMapProjectionListModified = false;
    std::string m_userDirectory;
    std::string m_systemDirectory;
    bool m_bHasUserDirectory = false; // nothing is written back before ReadData named one
    bool m_bSystemCatalogue = false;
    std::string m_lastError;
    std::string m_lastProjectionMessage; // of the last write-back of each file, not to repeat it
    std::string m_lastEllipsoidMessage;
    mutable std::vector<std::string> m_unreported; // write-back problems the host has not asked for
};

#endif
