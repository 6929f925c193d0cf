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

int CKvMapProjectionList::ReadMapProjections(const std::string& fileName, bool custom)
{
    GxrFile* file = gxrLoadFile(fileName.c_str());
    if (file == nullptr)
        return gxrGetErrorGlb();
    GxrTarget* target = gxrTargetByNameNum(file, kTarget, 1);
    const int n = gxrGetNoSections(target, nullptr);
    for (int i = 1; i <= n; ++i) {
        GxrSection* section = gxrSectionByNum(target, i);
        const std::string id = gxrGetSectionName(section);
        // The first type, in enumeration order, that knows the section name reads it;
        // sections of unknown names are skipped.
        for (int t = 0; t < CKvMapProjData::GetNoOfProjections(); ++t) {
            CKvMapProjData* definition =
                CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(t));
            if (definition != nullptr && definition->IsSectionID(id)) {
                definition->ReadFromHandle(section, custom);
                m_definitions.push_back(definition);
                break;
            }
            delete definition;
        }
    }
    gxrClose(file);
    return GXR_OK;
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
    delete definition;
}
