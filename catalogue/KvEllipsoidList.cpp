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

int CKvEllipsoidList::ReadEllipsoids(const std::string& fileName, bool custom)
{
    GxrFile* file = gxrLoadFile(fileName.c_str());
    if (file == nullptr)
        return gxrGetErrorGlb();
    GxrTarget* target = gxrTargetByNameNum(file, kTarget, 1);
    const int n = gxrGetNoSections(target, kSection);
    for (int i = 1; i <= n; ++i) {
        GxrSection* section = gxrSectionByNameNum(target, kSection, i);
        // Absent keywords give empty names and zero numbers.
        CString name, id;
        double a = 0.0, invf = 0.0;
        gxrGetParam(section, "Ellipsoid_Name", &name, 1, 1);
        gxrGetParam(section, "ID_Code", &id, 1, 1);
        gxrGetParam(section, "Semi_Major_Axis", &a, 1, 1);
        gxrGetParam(section, "Inverse_Flatness", &invf, 1, 1);
        CKvEllipsoid* ellipsoid = new CKvEllipsoid(name.GetStdString(), id.GetStdString(), a, invf);
        (custom ? m_custom : m_system).push_back(ellipsoid);
    }
    gxrClose(file);
    return GXR_OK;
}

int CKvEllipsoidList::WriteCustomEllipsoids(const std::string& fileName) const
{
    GxrFile* file = gxrCreate(fileName.c_str());
    GxrTarget* target = gxrAddTarget(file, kTarget);
    for (const CKvEllipsoid* e : m_custom) {
        GxrSection* section = gxrAddSection(target, kSection);
        gxrPutParam(section, "Ellipsoid_Name", CString(e->GetName()));
        gxrPutParam(section, "ID_Code", CString(e->GetID()));
        gxrPutParam(section, "Semi_Major_Axis", e->GetMajor());
        gxrPutParam(section, "Inverse_Flatness", e->GetInvFlatness());
        gxrEndSection(section);
    }
    const int status = gxrWrite(file);
    gxrClose(file);
    return status;
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
    delete ellipsoid;
    GenerateCompleteList();
}

void CKvEllipsoidList::EditEllipsoid(CKvEllipsoid* ellipsoid)
{
    if (std::find(m_custom.begin(), m_custom.end(), ellipsoid) != m_custom.end())
        GenerateCompleteList();
}
