#ifndef KVCART_CATALOGUE_KVMAPPROJECTIONLIST_H
#define KVCART_CATALOGUE_KVMAPPROJECTIONLIST_H

#include "catalogue/KvMapProjData.h"

#include <string>
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

    // Built-in LONG/LAT, UTM-1..UTM-60, the system files, the custom file, NON-UTM.
    // Directories are prefixes: the file name is appended as it stands.
    void InitMapProjections(const std::string& systemDirectory, const std::string& userDirectory);
    // Appends every section of a known type; returns the parameter-file status.
    int ReadMapProjections(const std::string& fileName, bool custom);
    // Writes the definitions in list order; onlyCustom keeps the deletable ones.
    int WriteCustomMapProjections(const std::string& fileName, bool onlyCustom = false) const;

    // Matches names after reducing both to their short form.
    CKvMapProjData* GetMapProjection(const std::string& name) const;
    void AddMapProjection(CKvMapProjData* definition);
    // Deletes the definition, whether or not it is in the list.
    void DeleteMapProjection(CKvMapProjData* definition);

    Iterator GetIteratorBegin() const { return m_definitions.begin(); }
    Iterator GetIteratorEnd() const { return m_definitions.end(); }
    size_t GetCount() const { return m_definitions.size(); }

private:
    std::vector<CKvMapProjData*> m_definitions;
};

#endif
