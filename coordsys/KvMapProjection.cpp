#include "coordsys/KvMapProjection.h"

#include "catalogue/KvCartSetup.h"
#include "paramfile/String.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include <stdexcept>

namespace {

const char kGoogleMercator[] =
    "PROJCS[\"Google Maps - Mercator\",GEOGCS[\"GCS_Google_Maps\",DATUM[\"D_Google_Maps\",SPHEROID[\"Google Maps "
    "(Sphere)\",6378137,0]],PRIMEM[\"Greenwich\",0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Mercator\"],"
    "PARAMETER[\"False_Easting\",0],PARAMETER[\"False_Northing\",0],PARAMETER[\"Central_Meridian\",0],PARAMETER["
    "\"Standard_Parallel_1\",0],UNIT[\"Meter\",1]]";

const char kWgs84Geographic[] =
    "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137,298.257223563]],PRIMEM[\"Greenwich\","
    "0],UNIT[\"Degree\",0.017453292519943295]]";

bool IsEmptyText(const char* text)
{
    return text == nullptr || *text == '\0';
}

} // namespace

const char* CKvMapProjection::IDtoProjectionString(int id)
{
    switch (id) {
    case eNonUTM: return "NON-UTM";
    case eLongLat: return "LONG/LAT";
    case eGoogleMercator: return kGoogleMercator;
    case eWgs84Geographic: return kWgs84Geographic;
    default: return "";
    }
}

CKvProjection* CKvMapProjection::GetProjection(const char* text)
{
    CString trimmed(text);
    trimmed.Trim();
    CKvPRJParser parser(trimmed);
    parser.Parse(false);
    if (parser.GetProjectionType() != CKvMapProjData::eNoProjection) {
        CKvProjection* engine = parser.CreateMapProjection();
        if (engine != nullptr)
            return engine;
    }
    if (trimmed == "UTM")
        throw std::out_of_range("Can't use generic UTM");
    return _FindMapProjection(trimmed.IsEmpty() ? IDtoProjectionString(eNonUTM) : trimmed.GetString());
}

CKvProjection* CKvMapProjection::_FindMapProjection(const char* name)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    const CKvMapProjData* definition = setup->GetMapProjectionList().GetMapProjection(name != nullptr ? name : "");
    if (definition == nullptr)
        return nullptr;
    // The engine is made by the definition alone; it copies its ellipsoid.
    return definition->CreateProjection();
}

bool CKvMapProjection::IsLocal(const char* text)
{
    CString trimmed(text);
    trimmed.Trim();
    return trimmed == IDtoProjectionString(eNonUTM);
}

CKvMapProjData* CKvMapProjection::MapProjection(const char* name)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->SetMapProjectionListModified();
    return setup->GetMapProjectionList().GetMapProjection(name != nullptr ? name : "");
}

const CKvEllipsoid* CKvMapProjection::Ellipsoid(const char* projectionName)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    const CKvMapProjData* definition =
        setup->GetMapProjectionList().GetMapProjection(projectionName != nullptr ? projectionName : "");
    if (definition == nullptr || definition->GetEllipsoidID().empty())
        return nullptr;
    return setup->GetEllipsoidList().GetEllipsoid(definition->GetEllipsoidID());
}

const CKvEllipsoid* CKvMapProjection::EllipsoidFromID(const char* id)
{
    return IsEmptyText(id) ? nullptr : CKvCartSetup::Instance()->GetEllipsoidList().GetEllipsoid(id);
}

const CKvEllipsoid* CKvMapProjection::EllipsoidFromName(const char* name)
{
    return IsEmptyText(name) ? nullptr : CKvCartSetup::Instance()->GetEllipsoidList().GetEllipsoidFromName(name);
}

void CKvMapProjection::AddEllipsoid(CKvEllipsoid* ellipsoid)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->GetEllipsoidList().AddEllipsoid(ellipsoid);
    setup->SetEllipsoidListModified();
}

void CKvMapProjection::DeleteEllipsoid(CKvEllipsoid* ellipsoid)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->GetEllipsoidList().DeleteEllipsoid(ellipsoid);
    setup->SetEllipsoidListModified();
}

void CKvMapProjection::EditEllipsoid(CKvEllipsoid* ellipsoid)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->GetEllipsoidList().EditEllipsoid(ellipsoid);
    setup->SetEllipsoidListModified();
}

void CKvMapProjection::AddMapProjection(CKvMapProjData* definition)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->SetMapProjectionListModified();
    setup->GetMapProjectionList().AddMapProjection(definition);
}

void CKvMapProjection::DeleteMapProjection(CKvMapProjData* definition)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->GetMapProjectionList().DeleteMapProjection(definition);
    setup->SetMapProjectionListModified();
}
