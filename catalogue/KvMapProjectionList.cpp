#include "catalogue/KvMapProjectionList.h"

#include "catalogue/KvGeographicalProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/Gxr.h"
#include "wkt/KvPRJParser.h"

#include <algorithm>

namespace {
const char kTarget[] = "MAP_PROJECTION_DEFINITION";
} // namespace

CKvMapProjectionList::~CKvMapProjectionList()
{
    for (CKvMapProjData* d : m_definitions)
        delete d;
}

void CKvMapProjectionList::InitMapProjections(const std::string& systemDirectory, const std::string& userDirectory)
{
    CKvMapProjData* longLat = new CKvGeographicalProjection(
        CKvMapProjection::IDtoProjectionString(CKvMapProjection::eLongLat), "Non UTM Projections", std::string());
    longLat->SetPermissions(false, false);
    m_definitions.push_back(longLat);

    for (int zone = 1; zone <= 60; ++zone) {
        CString name;
        name.Format("UTM-%d", zone);
        CKvMapProjData* utm = new CKvTransverseMercatorProjection(name.GetStdString(), "UTM Projections", "WE", 0.9996,
                                                                  (zone - 30) * 6.0 - 3.0, 0.0, 500000.0, 0.0);
        utm->SetPermissions(false, false);
        m_definitions.push_back(utm);
    }

    for (const char* file : {"map_projection.gxr", "state_plane_nad83.gxr", "state_plane_nad27.gxr"})
        ReadMapProjections(systemDirectory + file, false);
    ReadMapProjections(userDirectory + "custom_projection.gxr", true);

    CKvMapProjData* local = new CKvTransverseMercatorProjection(
        CKvMapProjection::IDtoProjectionString(CKvMapProjection::eNonUTM), std::string(), std::string());
    local->SetPermissions(false, false);
    m_definitions.push_back(local);
}

namespace {

bool WriteDefinition(const void* entry, GxrTarget* target)
{
    return static_cast<const CKvMapProjData*>(entry)->WriteToHandle(target);
}

} // namespace

int CKvMapProjectionList::ReadMapProjections(const std::string& fileName, bool custom)
{
    auto record = std::make_unique<CKvUserCatalogue>(fileName, kTarget, WriteDefinition);
    GxrTarget* target = record->Load();
    const int n = gxrGetNoSections(target, nullptr);
    for (int i = 1; i <= n; ++i) {
        GxrSection* section = gxrSectionByNum(target, i);
        const std::string id = gxrGetSectionName(section);
        const std::string where = fileName + ":" + std::to_string(section->line) + ": ";
        // The first type, in enumeration order, that knows the section name reads it.
        CKvMapProjData* definition = nullptr;
        for (int t = 0; t < CKvMapProjData::GetNoOfProjections() && definition == nullptr; ++t) {
            definition = CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(t));
            if (definition != nullptr && !definition->IsSectionID(id)) {
                delete definition;
                definition = nullptr;
            }
        }
        // A section of a type the library does not know is not read, but it stays
        // in the file. One it knows but cannot read exactly is not read either, and
        // the file is not written over.
        if (definition == nullptr) {
            record->KeepSection(*section, where + "section '" + id +
                                              "' is not a known projection type; it is kept in the file, not read");
            continue;
        }
        std::string problem;
        if (!CKvUserCatalogue::CheckSection(*section, definition->GetKeywordRules(), problem)) {
            record->Reject(fileName + ":" + problem);
            delete definition;
            continue;
        }
        definition->ReadFromHandle(section, custom);
        m_definitions.push_back(definition);
        record->AddEntry(definition);
        m_sourceLines[definition] = section->line;
    }
    return CKvUserCatalogue::FinishRead(m_userFiles, std::move(record), custom, m_problems);
}

int CKvMapProjectionList::WriteCustomMapProjections(const std::string& fileName, bool onlyCustom) const
{
    GxrFile* file = gxrCreate(fileName.c_str());
    GxrTarget* target = gxrAddTarget(file, kTarget);
    for (const CKvMapProjData* d : m_definitions)
        if (!onlyCustom || d->CanDelete())
            d->WriteToHandle(target);
    const int status = gxrWrite(file);
    gxrClose(file);
    return status;
}

bool CKvMapProjectionList::WriteBackCustom(const std::string& fileName, std::string& message)
{
    std::vector<const void*> custom;
    for (const CKvMapProjData* d : m_definitions)
        if (d->CanDelete())
            custom.push_back(d);
    return CKvUserCatalogue::WriteBackList(m_userFiles, fileName, kTarget, WriteDefinition, custom, message);
}

CKvMapProjData* CKvMapProjectionList::GetMapProjection(const std::string& name) const
{
    const CString wanted = CKvPRJParser::ShortName(CString(name));
    for (CKvMapProjData* d : m_definitions)
        if (CKvPRJParser::ShortName(CString(d->GetName())) == wanted)
            return d;
    return nullptr;
}

void CKvMapProjectionList::AddMapProjection(CKvMapProjData* definition)
{
    if (definition != nullptr)
        m_definitions.push_back(definition);
}

void CKvMapProjectionList::DeleteMapProjection(CKvMapProjData* definition)
{
    if (definition == nullptr)
        return;
    m_definitions.erase(std::remove(m_definitions.begin(), m_definitions.end(), definition), m_definitions.end());
    for (const auto& record : m_userFiles)
        record->Forget(definition);
    m_sourceLines.erase(definition);
    delete definition;
}

int CKvMapProjectionList::GetSourceLine(const CKvMapProjData* definition) const
{
    const auto found = m_sourceLines.find(definition);
    return found == m_sourceLines.end() ? 0 : found->second;
}
