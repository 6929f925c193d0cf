#ifndef KVCART_CATALOGUE_KVMAPPROJECTIONLIST_H
#define KVCART_CATALOGUE_KVMAPPROJECTIONLIST_H

#include "catalogue/KvMapProjData.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// The projection catalogue: one list of owned definitions, system and custom
// ones together, told apart by CanDelete()/CanEdit().
class CKvMapProjectionList
{
public:
    using Iterator = std::vector<CKvMapProjData*>::const_iterator;

    CKvMapProjectionList() = default;
    CKvMapProjectionList(const CKvMapProjectionList&) = delete;
    CKvMapProjectionList& operator=(const CKvMapProjectionList&) = delete;
    virtual ~CKvMapProjectionList();

    // Built-in LONG/LAT, UTM-1..UTM-60, UTM-1S..UTM-60S, UPS North and South,
    // the system files (less any section named like a built-in entry), the
    // custom file, NON-UTM. Built-in entries are never written to a file.
    // Directories are prefixes: the file name is appended as it stands.
    void InitMapProjections(const std::string& systemDirectory, const std::string& userDirectory);
    // Appends every section of a known type; returns the parameter-file status.
    int ReadMapProjections(const std::string& fileName, bool custom);
    // Writes the definitions in list order; onlyCustom keeps the deletable ones.
    int WriteCustomMapProjections(const std::string& fileName, bool onlyCustom = false) const;
    // The write-back of the user's catalogue: the file's own definitions and the
    // sections it could not use, in file order, then the custom definitions added
    // since. A file that did not read cleanly, or that changed since, is left as
    // it is and the session's changes go to a rescue file beside it. Returns false,
    // with message, when anything could not be saved; message also tells of a rescue.
    bool WriteBackCustom(const std::string& fileName, std::string& message);
    // Every problem met in the files read so far, one "file:line: what" per line.
    const std::string& GetProblems() const { return m_problems; }
    // The line of the section a definition was read from; 0 for one made in memory.
    int GetSourceLine(const CKvMapProjData* definition) const;

    // Matches names after reducing both to their short form. The catalogue's
    // edits (add, remove, edit) find their definitions so, by the exact name.
    CKvMapProjData* GetMapProjection(const std::string& name) const;
    // Whether any definition is named text (trimmed) in any case: a quick test,
    // without copies, before a name is taken for something else ("EPSG:n").
    bool HoldsNameIgnoringCase(const char* text) const;
    // The definition a coordinate-system name stands for: the one GetMapProjection
    // finds; failing that, the one whose name is the trimmed name with ASCII
    // letters of either case taken alike ("rd new" for "RD New"). When several
    // names differ from it only so, none is chosen: null, with them in ambiguous.
    CKvMapProjData* FindMapProjection(const std::string& name,
                                      std::vector<const CKvMapProjData*>* ambiguous = nullptr) const;
    // The definitions whose names are the trimmed name regardless of ASCII case,
    // in list order, each name once; a name spelled exactly as given is alone.
    std::vector<CKvMapProjData*> GetMapProjectionsIgnoringCase(const std::string& name) const;
    void AddMapProjection(CKvMapProjData* definition);
    // Deletes the definition, whether or not it is in the list.
    void DeleteMapProjection(CKvMapProjData* definition);

    Iterator GetIteratorBegin() const { return m_definitions.begin(); }
    Iterator GetIteratorEnd() const { return m_definitions.end(); }
    size_t GetCount() const { return m_definitions.size(); }

private:
    std::vector<CKvMapProjData*> m_definitions;
    CKvUserCatalogue::List m_userFiles;
    std::string m_problems;
    std::unordered_map<const CKvMapProjData*, int> m_sourceLines;
};

#endif
