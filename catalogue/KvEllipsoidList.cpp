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

} // namespace

int CKvEllipsoidList::ReadEllipsoids(const std::string& fileName, bool custom)
{
    static const std::vector<CKvUserCatalogue::SKeywordRule> rules = {{"Ellipsoid_Name", true, 1, 1},
                                                                      {"ID_Code", true, 1, 1},
                                                                      {"Semi_Major_Axis", false, 1, 1},
                                                                      {"Inverse_Flatness", false, 1, 1}};
    auto record = std::make_unique<CKvUserCatalogue>(fileName, kTarget, WriteEllipsoid);
    GxrTarget* target = record->Load();
    if (target != nullptr) {
        for (GxrSection& section : target->sections) {
            const std::string where = fileName + ":" + std::to_string(section.line) + ": ";
            std::string problem;
            if (section.name != kSection) {
                record->KeepSection(section, where + "section '" + section.name +
                                                 "' is not an ellipsoid; it is kept in the file, not read");
                continue;
            }
            if (!CKvUserCatalogue::CheckSection(section, rules, problem)) {
                record->Reject(fileName + ":" + problem);
                continue;
            }
            // Absent keywords give empty names and zero numbers.
            CString name, id;
            double a = 0.0, invf = 0.0;
            gxrGetParam(&section, "Ellipsoid_Name", &name, 1, 1);
            gxrGetParam(&section, "ID_Code", &id, 1, 1);
            gxrGetParam(&section, "Semi_Major_Axis", &a, 1, 1);
            gxrGetParam(&section, "Inverse_Flatness", &invf, 1, 1);
            CKvEllipsoid* ellipsoid = new CKvEllipsoid(name.GetStdString(), id.GetStdString(), a, invf);
            (custom ? m_custom : m_system).push_back(ellipsoid);
            record->AddEntry(ellipsoid);
            m_sourceLines[ellipsoid] = section.line;
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
    return CKvUserCatalogue::WriteBackList(m_userFiles, fileName, kTarget, WriteEllipsoid, entries, message);
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
