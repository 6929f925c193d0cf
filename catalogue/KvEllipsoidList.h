#ifndef KVCART_CATALOGUE_KVELLIPSOIDLIST_H
#define KVCART_CATALOGUE_KVELLIPSOIDLIST_H

#include "catalogue/KvEllipsoid.h"
#include "catalogue/KvUserCatalogue.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// The ellipsoid catalogue: the system entries and the user's custom entries,
// each list owning its ellipsoids, and the complete list (system entries, then
// custom ones) that look-ups search.
class CKvEllipsoidList
{
public:
    enum EEllipsoidTypes
    {
        eComplete = 0,
        eSystem = 1,
        eCustom = 2
    };
    using Iterator = std::vector<CKvEllipsoid*>::const_iterator;

    CKvEllipsoidList() = default;
    CKvEllipsoidList(const CKvEllipsoidList&) = delete;
    CKvEllipsoidList& operator=(const CKvEllipsoidList&) = delete;
    virtual ~CKvEllipsoidList();

    // Appends every REF_ELLIPSOID section of the file; returns the parameter-file
    // status (0 when read). A missing or malformed file changes nothing.
    int ReadEllipsoids(const std::string& fileName, bool custom);
    int WriteCustomEllipsoids(const std::string& fileName) const;
    // The write-back of the user's ellipsoids, with the safety rules of
    // CKvMapProjectionList::WriteBackCustom.
    bool WriteBackCustom(const std::string& fileName, std::string& message);
    // Every problem met in the files read so far, one "file:line: what" per line.
    const std::string& GetProblems() const { return m_problems; }
    // The line of the section an ellipsoid was read from; 0 for one made in memory.
    int GetSourceLine(const CKvEllipsoid* ellipsoid) const;
    void GenerateCompleteList();

    const CKvEllipsoid* GetEllipsoid(const std::string& id) const;
    const CKvEllipsoid* GetEllipsoidFromName(const std::string& name) const;
    void AddEllipsoid(CKvEllipsoid* ellipsoid);
    void DeleteEllipsoid(CKvEllipsoid* ellipsoid);
    void EditEllipsoid(CKvEllipsoid* ellipsoid);

    Iterator GetIteratorBegin(EEllipsoidTypes type) const { return _list(type).begin(); }
    Iterator GetIteratorEnd(EEllipsoidTypes type) const { return _list(type).end(); }

private:
    const std::vector<CKvEllipsoid*>& _list(EEllipsoidTypes type) const;

    std::vector<CKvEllipsoid*> m_system;   // owned
    std::vector<CKvEllipsoid*> m_custom;   // owned
    std::vector<CKvEllipsoid*> m_complete; // refers to the two above
    CKvUserCatalogue::List m_userFiles;
    std::string m_problems;
    std::unordered_map<const CKvEllipsoid*, int> m_sourceLines;
};

#endif
