#include "catalogue/KvMapProjectionList.h"

#include <cstring>
#include <strings.h>

#include "catalogue/KvGeographicalProjection.h"
#include "catalogue/KvPolarStereographicProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/Gxr.h"
#include "wkt/KvPRJParser.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_set>

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
        utm->SetEpsgCode(32600 + zone);
        m_definitions.push_back(utm);
    }
    // The southern zones: the same projection with the false northing of
    // 10 000 000 m that keeps the southern hemisphere's northings positive
    // (EPSG 32701 ... 32760).
    for (int zone = 1; zone <= 60; ++zone) {
        CString name;
        name.Format("UTM-%dS", zone);
        CKvMapProjData* utm = new CKvTransverseMercatorProjection(name.GetStdString(), "UTM Projections", "WE", 0.9996,
                                                                  (zone - 30) * 6.0 - 3.0, 0.0, 500000.0, 10000000.0);
        utm->SetPermissions(false, false);
        utm->SetEpsgCode(32700 + zone);
        m_definitions.push_back(utm);
    }
    // The polar caps: polar stereographic variant A (EPSG method 9810) on the
    // pole, k0 = 0.994, false easting and northing 2 000 000 m; the easting
    // grows towards 90 E, the northing towards 180 E at the north pole and
    // towards Greenwich at the south pole (EPSG 32661 and 32761, which list the
    // northing first; these give easting, northing).
    for (const double pole : {90.0, -90.0}) {
        CKvMapProjData* ups = new CKvPolarStereographicProjection(pole > 0.0 ? "UPS North" : "UPS South", "WGS 84",
                                                                  "WE", 0.994, 0.0, pole, 2000000.0, 2000000.0);
        ups->SetPermissions(false, false);
        ups->SetEpsgCode(pole > 0.0 ? 32661 : 32761);
        m_definitions.push_back(ups);
    }
    const size_t generated = m_definitions.size();

    for (const char* file : {"map_projection.gxr", "state_plane_nad83.gxr", "state_plane_nad27.gxr"})
        ReadMapProjections(systemDirectory + file, false);
    // A shipped section named like a generated entry (older catalogues carry
    // UPS North and South) would list the name twice; the generated entry is
    // the one a name finds, so the shipped copy is set aside.
    std::unordered_set<std::string> generatedNames;
    for (size_t i = 0; i < generated; ++i)
        generatedNames.insert(CKvPRJParser::ShortName(CString(m_definitions[i]->GetName())).GetString());
    const auto builtInName = [&generatedNames](const CKvMapProjData* d) {
        return generatedNames.count(CKvPRJParser::ShortName(CString(d->GetName())).GetString()) != 0;
    };
    for (size_t i = m_definitions.size(); i-- > generated;)
        if (!m_definitions[i]->CanDelete() && builtInName(m_definitions[i])) {
            m_sourceLines.erase(m_definitions[i]);
            delete m_definitions[i];
            m_definitions.erase(m_definitions.begin() + static_cast<std::ptrdiff_t>(i));
        }
    const std::string userFile = userDirectory + "custom_projection.gxr";
    ReadMapProjections(userFile, true);
    // A user's definition named like a built-in system (a "UTM-33S" of one's
    // own from before the southern zones were built in) stays in the file, but
    // the name finds the built-in one: said once, not silently.
    for (const CKvMapProjData* d : m_definitions)
        if (d->CanDelete() && m_sourceLines.count(d) != 0 && builtInName(d))
            m_problems += userFile + ":" + std::to_string(m_sourceLines[d]) + ": the name '" + d->GetName() +
                          "' is that of a built-in system, which the name finds; this definition is kept but not "
                          "used\n";

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

// The definition a section describes: 1 when read into definition, 0 when no
// projection type has the section's name, -1 when its type does not take the
// section's keywords or values ("line: what" in problem). The first type, in
// enumeration order, that knows the section name reads it.
int ReadDefinition(GxrSection& section, bool custom, std::unique_ptr<CKvMapProjData>& definition, std::string& problem)
{
    definition.reset();
    for (int t = 0; t < CKvMapProjData::GetNoOfProjections() && !definition; ++t) {
        definition.reset(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(t)));
        if (definition && !definition->IsSectionID(section.name))
            definition.reset();
    }
    if (!definition)
        return 0;
    if (!definition->CheckSection(section, problem)) {
        definition.reset();
        return -1;
    }
    definition->ReadFromHandle(&section, custom);
    return 1;
}

// A section of the user's file as the catalogue reads it, written back, for the
// comparison of versions when the file is merged.
int RereadDefinition(const GxrSection& section, GxrTarget* target, std::string& problem)
{
    GxrSection copy = section;
    std::unique_ptr<CKvMapProjData> definition;
    const int kind = ReadDefinition(copy, true, definition, problem);
    if (kind > 0)
        definition->WriteToHandle(target);
    return kind;
}

// Made for each use: the last write-back runs at exit, when function statics
// made after the catalogue may be gone already.
CKvUserCatalogue::SFormat UserFileFormat()
{
    return CKvUserCatalogue::SFormat{kTarget, "Projection_Name", WriteDefinition, RereadDefinition};
}

} // namespace

int CKvMapProjectionList::ReadMapProjections(const std::string& fileName, bool custom)
{
    auto record = std::make_unique<CKvUserCatalogue>(fileName, UserFileFormat());
    GxrTarget* target = record->Load();
    const int n = gxrGetNoSections(target, nullptr);
    for (int i = 1; i <= n; ++i) {
        GxrSection* section = gxrSectionByNum(target, i);
        const std::string where = fileName + ":" + std::to_string(section->line) + ": ";
        std::unique_ptr<CKvMapProjData> definition;
        std::string problem;
        const int kind = ReadDefinition(*section, custom, definition, problem);
        // A section of a type the library does not know is not read, but it stays
        // in the file. One it knows but cannot read exactly is not read either, and
        // the file is not written over.
        if (kind == 0) {
            record->KeepSection(*section, where + "section '" + section->name +
                                              "' is not a known projection type; it is kept in the file, not read");
            continue;
        }
        if (kind < 0) {
            record->Reject(fileName + ":" + problem);
            continue;
        }
        m_definitions.push_back(definition.get());
        record->AddEntry(definition.get());
        m_sourceLines[definition.release()] = section->line;
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
    return CKvUserCatalogue::WriteBackList(m_userFiles, fileName, UserFileFormat(), custom, message);
}

CKvMapProjData* CKvMapProjectionList::GetMapProjection(const std::string& name) const
{
    const CString wanted = CKvPRJParser::ShortName(CString(name));
    for (CKvMapProjData* d : m_definitions)
        if (CKvPRJParser::ShortName(CString(d->GetName())) == wanted)
            return d;
    return nullptr;
}

bool CKvMapProjectionList::HoldsNameIgnoringCase(const char* text) const
{
    if (text == nullptr)
        return false;
    while (*text == ' ' || *text == '\t' || *text == '\r' || *text == '\n')
        ++text;
    size_t length = std::strlen(text);
    while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == '\t' || text[length - 1] == '\r' ||
                          text[length - 1] == '\n'))
        --length;
    for (const CKvMapProjData* d : m_definitions) {
        const std::string& stored = d->GetStoredName();
        if (stored.size() == length && strncasecmp(stored.c_str(), text, length) == 0)
            return true;
    }
    return false;
}

std::vector<CKvMapProjData*> CKvMapProjectionList::GetMapProjectionsIgnoringCase(const std::string& name) const
{
    CString wanted(name);
    wanted.Trim();
    std::vector<CKvMapProjData*> found;
    if (wanted.IsEmpty() || wanted.GetStdString().find('\0') != std::string::npos)
        return found;
    for (CKvMapProjData* d : m_definitions) {
        const std::string stored = d->GetName();
        if (stored.size() != wanted.GetStdString().size() || wanted.CompareNoCase(stored.c_str()) != 0)
            continue;
        if (stored == wanted.GetStdString())
            return {d};
        // A name listed twice is found once, as the exact look-up finds the first.
        if (std::none_of(found.begin(), found.end(), [&stored](const CKvMapProjData* f) { return f->GetName() == stored; }))
            found.push_back(d);
    }
    return found;
}

CKvMapProjData* CKvMapProjectionList::FindMapProjection(const std::string& name,
                                                        std::vector<const CKvMapProjData*>* ambiguous) const
{
    if (ambiguous != nullptr)
        ambiguous->clear();
    if (CKvMapProjData* exact = GetMapProjection(name))
        return exact;
    const std::vector<CKvMapProjData*> found = GetMapProjectionsIgnoringCase(name);
    if (found.size() == 1)
        return found.front();
    if (ambiguous != nullptr)
        ambiguous->assign(found.begin(), found.end());
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
