#include "catalogue/KvEllipsoidList.h"

#include "paramfile/Gxr.h"

#include <algorithm>

namespace {
const char kTarget[] = "ELLIPSOID_DEFINITION";
const char kSection[] = "REF_ELLIPSOID";
} // namespace

CKvEllipsoidList::~CKvEllipsoidList()
{
    for (CKvEllipsoid* e : m_system)
        delete e;
    for (CKvEllipsoid* e : m_custom)
        delete e;
}

const std::vector<CKvEllipsoid*>& CKvEllipsoidList::_list(EEllipsoidTypes type) const
{
    switch (type) {
    case eSystem: return m_system;
    case eCustom: return m_custom;
    default: return m_complete;
    }
}

namespace {

bool WriteEllipsoid(const void* entry, GxrTarget* target)
{
    const CKvEllipsoid* e = static_cast<const CKvEllipsoid*>(entry);
    GxrSection* section = gxrAddSection(target, kSection);
    bool ok = gxrPutParam(section, "Ellipsoid_Name", CString(e->GetName())) == GXR_OK;
    ok = gxrPutParam(section, "ID_Code", CString(e->GetID())) == GXR_OK && ok;
    ok = gxrPutParam(section, "Semi_Major_Axis", e->GetMajor()) == GXR_OK && ok;
    ok = gxrPutParam(section, "Inverse_Flatness", e->GetInvFlatness()) == GXR_OK && ok;
    return gxrEndSection(section) == GXR_OK && ok;
}

// The ellipsoid a section describes: 1 when read into ellipsoid, 0 for a section
// that is not an ellipsoid, -1 when its keywords or values do not fit ("line:
// what" in problem). Absent keywords give empty names and zero numbers.
int ReadEllipsoid(GxrSection& section, std::unique_ptr<CKvEllipsoid>& ellipsoid, std::string& problem)
{
    // Not a static: the write-back at exit reads the file again after the
    // function statics made during the set-up are destroyed.
    const std::vector<CKvUserCatalogue::SKeywordRule> rules = {{"Ellipsoid_Name", true, 1, 1},
                                                               {"ID_Code", true, 1, 1},
                                                               {"Semi_Major_Axis", false, 1, 1},
                                                               {"Inverse_Flatness", false, 1, 1}};
    ellipsoid.reset();
    if (section.name != kSection)
        return 0;
    if (!CKvUserCatalogue::CheckSection(section, rules, problem))
        return -1;
    CString name, id;
    double a = 0.0, invf = 0.0;
    gxrGetParam(&section, "Ellipsoid_Name", &name, 1, 1);
    gxrGetParam(&section, "ID_Code", &id, 1, 1);
    gxrGetParam(&section, "Semi_Major_Axis", &a, 1, 1);
    gxrGetParam(&section, "Inverse_Flatness", &invf, 1, 1);
    ellipsoid.reset(new CKvEllipsoid(name.GetStdString(), id.GetStdString(), a, invf));
    return 1;
}

// A section of the user's file as the catalogue reads it, written back, for the
// comparison of versions when the file is merged.
int RereadEllipsoid(const GxrSection& section, GxrTarget* target, std::string& problem)
{
    GxrSection copy = section;
    std::unique_ptr<CKvEllipsoid> ellipsoid;
    const int kind = ReadEllipsoid(copy, ellipsoid, problem);
    if (kind > 0)
        WriteEllipsoid(ellipsoid.get(), target);
    return kind;
}

// Made for each use: the last write-back runs at exit, when function statics
// made after the catalogue may be gone already.
CKvUserCatalogue::SFormat UserFileFormat()
{
    return CKvUserCatalogue::SFormat{kTarget, "ID_Code", WriteEllipsoid, RereadEllipsoid};
}

} // namespace

int CKvEllipsoidList::ReadEllipsoids(const std::string& fileName, bool custom)
{
    auto record = std::make_unique<CKvUserCatalogue>(fileName, UserFileFormat());
    GxrTarget* target = record->Load();
    if (target != nullptr) {
        for (GxrSection& section : target->sections) {
            const std::string where = fileName + ":" + std::to_string(section.line) + ": ";
            std::unique_ptr<CKvEllipsoid> ellipsoid;
            std::string problem;
            const int kind = ReadEllipsoid(section, ellipsoid, problem);
            if (kind == 0) {
                record->KeepSection(section, where + "section '" + section.name +
                                                 "' is not an ellipsoid; it is kept in the file, not read");
                continue;
            }
            if (kind < 0) {
                record->Reject(fileName + ":" + problem);
                continue;
            }
            (custom ? m_custom : m_system).push_back(ellipsoid.get());
            record->AddEntry(ellipsoid.get());
            m_sourceLines[ellipsoid.release()] = section.line;
        }
    }
    return CKvUserCatalogue::FinishRead(m_userFiles, std::move(record), custom, m_problems);
}

int CKvEllipsoidList::WriteCustomEllipsoids(const std::string& fileName) const
{
    GxrFile* file = gxrCreate(fileName.c_str());
    GxrTarget* target = gxrAddTarget(file, kTarget);
    for (const CKvEllipsoid* e : m_custom)
        WriteEllipsoid(e, target);
    const int status = gxrWrite(file);
    gxrClose(file);
    return status;
}

bool CKvEllipsoidList::WriteBackCustom(const std::string& fileName, std::string& message)
{
    const std::vector<const void*> entries(m_custom.begin(), m_custom.end());
    return CKvUserCatalogue::WriteBackList(m_userFiles, fileName, UserFileFormat(), entries, message);
}

void CKvEllipsoidList::GenerateCompleteList()
{
    m_complete = m_system;
    m_complete.insert(m_complete.end(), m_custom.begin(), m_custom.end());
}

const CKvEllipsoid* CKvEllipsoidList::GetEllipsoid(const std::string& id) const
{
    for (const CKvEllipsoid* e : m_complete)
        if (e->GetID() == id)
            return e;
    return nullptr;
}

const CKvEllipsoid* CKvEllipsoidList::GetEllipsoidFromName(const std::string& name) const
{
    for (const CKvEllipsoid* e : m_complete)
        if (e->GetName() == name)
            return e;
    return nullptr;
}

void CKvEllipsoidList::AddEllipsoid(CKvEllipsoid* ellipsoid)
{
    if (ellipsoid == nullptr)
        return;
    m_custom.push_back(ellipsoid);
    GenerateCompleteList();
}

void CKvEllipsoidList::DeleteEllipsoid(CKvEllipsoid* ellipsoid)
{
    if (ellipsoid == nullptr)
        return;
    const auto found = std::find(m_custom.begin(), m_custom.end(), ellipsoid);
    if (found == m_custom.end())
        return; // not ours to delete: system entries stay
    m_custom.erase(found);
    for (const auto& record : m_userFiles)
        record->Forget(ellipsoid);
    m_sourceLines.erase(ellipsoid);
    delete ellipsoid;
    GenerateCompleteList();
}

void CKvEllipsoidList::EditEllipsoid(CKvEllipsoid* ellipsoid)
{
    if (std::find(m_custom.begin(), m_custom.end(), ellipsoid) != m_custom.end())
        GenerateCompleteList();
}

int CKvEllipsoidList::GetSourceLine(const CKvEllipsoid* ellipsoid) const
{
    const auto found = m_sourceLines.find(ellipsoid);
    return found == m_sourceLines.end() ? 0 : found->second;
}
