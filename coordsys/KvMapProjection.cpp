#include "coordsys/KvMapProjection.h"

#include "catalogue/KvEpsgRegistry.h"

#include "projections/KvBatch.h"

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvNameSuggestions.h"
#include "geodesy/KvVincenty.h"
#include "paramfile/String.h"
#include "projections/KvAngle.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include <algorithm>
#include <cmath>
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

// "EPSG:1314 OSGB36 to WGS 84 (6), accuracy 2 m; the registry ranks OSGB36 to
// WGS 84 (9) (1 m) higher, which the library cannot apply".
std::string DescribeShift(const CKvEpsgRegistry::SEntry& entry)
{
    if (!entry.hasShift)
        return "no transformation to WGS 84 is known for its datum";
    const CKvEpsgRegistry::SShift& s = entry.shift;
    if (s.parameters == 0 && s.code.empty())
        return "none needed: the datum is WGS 84";
    char number[64];
    std::string text = s.code + " " + s.name;
    if (s.accuracy >= 0.0) {
        std::snprintf(number, sizeof number, "%g", s.accuracy);
        text += std::string(", accuracy ") + number + " m";
    }
    if (s.convention == "coordinate-frame")
        text += " (coordinate-frame rotations, applied as position-vector with their signs changed)";
    if (!s.better.empty()) {
        text += "; the registry ranks " + s.better;
        if (s.betterAccuracy >= 0.0) {
            std::snprintf(number, sizeof number, "%g", s.betterAccuracy);
            text += std::string(" (") + number + " m)";
        }
        text += " higher, which the library cannot apply (a grid or a time-dependent transformation)";
    }
    return text;
}

} // namespace

CKvMapProjection::CKvMapProjection(const char* text) : m_pProjection(nullptr)
{
    _construct(text != nullptr ? text : "");
}

CKvMapProjection::CKvMapProjection(const std::string& text) : m_pProjection(nullptr)
{
    _construct(text.c_str());
}

void CKvMapProjection::_construct(const char* text)
{
    // "EPSG:n" and "ESRI:n" (when no catalogue entry has that name, in any
    // case) are the registry's: the text it gives carries the units, axes and
    // datum shift. The catalogue is only scanned for the name, without copies.
    std::string authority;
    int code = 0;
    if (CKvEpsgRegistry::ParseCode(text, authority, code) &&
        !CKvCartSetup::Instance()->GetMapProjectionList().HoldsNameIgnoringCase(text)) {
        m_pProjection = _fromRegistry(authority, code, &m_info, m_message, this);
        SetLastMessage(m_message);
        if (m_pProjection == nullptr)
            return;
        m_projectionString = text;
        _takeFigure();
        return;
    }
    // A catalogue name in another case stands for the name as it is spelled.
    const std::string spelled = CatalogueSpelling(text);
    text = spelled.c_str();
    m_pProjection = GetProjection(text, &m_info, &m_message, &m_shiftSource);
    if (m_pProjection == nullptr)
        return;
    // A WKT with a TOWGS84 node knows its shift, a zero one too (the parser
    // reads the node where it finds the word).
    if (CKvPRJParser::IsPRJ(text))
        m_info.SetDatumShiftKnown(CString(text).Find("TOWGS84") >= 0 || !m_shiftSource.empty());
    // A catalogue name gets its units and axes from the WKT its engine describes.
    if (!CKvPRJParser::IsPRJ(text) && !IsLocal(text) && !IsLongLat(text)) {
        CString wkt;
        CKvPRJParser(m_pProjection).Format(wkt);
        CKvPRJParser parser(wkt);
        parser.Parse(false);
        m_info.SetProjectionInfo(parser);
        // The engine's WKT is in metres, and so GetUnit says; a definition kept
        // in US survey feet has that as its grid's own unit (GetLinearUnit).
        CString name(text);
        name.Trim();
        const CKvMapProjData* definition = FindMapProjectionDefinition(name.GetString());
        m_usSurveyFeet = definition != nullptr && definition->IsInUsSurveyFeet();
        // The engine's WKT knows no datum shift: the definition's is set after
        // it. Without one the shift stays unknown, as the definition has it.
        CKvDatumShift shift;
        if (definition != nullptr && definition->GetDatumShift(shift))
            m_info.SetDatumShift(shift, true);
        else
            m_info.SetDatumShift(CKvDatumShift(), false);
        // The built-in UTM zones are filed under their own branch; their datum is WGS 84.
        if (definition != nullptr && !definition->CanDelete() && definition->GetBranchName() == "UTM Projections")
            m_info.SetDatumName("WGS 84");
    }
    m_projectionString = text;
    _takeFigure();
}

void CKvMapProjection::_takeFigure()
{
    // An engine without an ellipsoid (LONG/LAT) has no geocentric coordinates:
    // the figure stays none and the conversions give NaN, not numbers from the
    // placeholder figure that GetAnonymousEllipsoid leaves.
    CKvEllipsoid ellipsoid;
    const bool known = m_pProjection != nullptr && m_pProjection->GetAnonymousEllipsoid(ellipsoid);
    m_figure = known ? CKvGeocentric(ellipsoid) : CKvGeocentric();
    CKvEllipsoid geodesic;
    const bool geodesics = m_pProjection != nullptr && _geodesicEllipsoid(geodesic);
    m_geodesic = geodesics ? CKvGeodesic(geodesic) : CKvGeodesic(0.0, 0.0);
}

CKvMapProjection::CKvMapProjection(const CKvMapProjection& other) : m_pProjection(nullptr)
{
    _copy(other);
}

CKvMapProjection& CKvMapProjection::operator=(const CKvMapProjection& other)
{
    if (this != &other) {
        _dealloc();
        _copy(other);
    }
    return *this;
}

CKvMapProjection::~CKvMapProjection()
{
    _dealloc();
}

void CKvMapProjection::_copy(const CKvMapProjection& other)
{
    // An unresolved source gives an unresolved copy.
    m_pProjection = other.m_pProjection != nullptr ? other.m_pProjection->Clone() : nullptr;
    m_info = other.m_info;
    m_projectionString = other.m_projectionString;
    m_message = other.m_message;
    m_figure = other.m_figure;
    m_geodesic = other.m_geodesic;
    m_usSurveyFeet = other.m_usSurveyFeet;
    m_registryCode = other.m_registryCode;
    m_registryName = other.m_registryName;
    m_shiftSource = other.m_shiftSource;
    m_hasArea = other.m_hasArea;
    std::copy(other.m_area, other.m_area + 4, m_area);
}

void CKvMapProjection::_dealloc()
{
    CKvProjection::Release(m_pProjection);
}

const char* CKvMapProjection::GetName() const
{
    return m_pProjection != nullptr ? m_pProjection->GetName() : "";
}

void CKvMapProjection::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_pProjection != nullptr)
        m_pProjection->Geo2Proj(lon, lat, x, y);
    m_info.Convert(*x, *y);
}

void CKvMapProjection::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    m_info.InvConvert(x, y);
    if (m_pProjection != nullptr)
        m_pProjection->Proj2Geo(x, y, lon, lat);
}

void CKvMapProjection::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                std::size_t latStride, double* x, std::size_t xStride, double* y,
                                std::size_t yStride) const
{
    if (m_pProjection != nullptr)
        m_pProjection->Geo2Proj(n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    if (m_info.KeepsEngineAxes())
        return;
    for (std::size_t i = 0; i < n; ++i)
        m_info.Convert(*CKvBatch::At(x, xStride, i), *CKvBatch::At(y, yStride, i));
}

void CKvMapProjection::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                std::size_t latStride) const
{
    if (m_pProjection == nullptr)
        return;
    if (m_info.KeepsEngineAxes()) {
        m_pProjection->Proj2Geo(n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
        return;
    }
    // The grid coordinates are brought to the engine's axes block by block.
    CKvBatch::ForEachCopiedBlock(
        n, x, xStride, y, yStride, [&](std::size_t first, std::size_t count, double* engineX, double* engineY) {
            for (std::size_t i = 0; i < count; ++i)
                m_info.InvConvert(engineX[i], engineY[i]);
            m_pProjection->Proj2Geo(count, engineX, sizeof(double), engineY, sizeof(double),
                                    CKvBatch::At(lon, lonStride, first), lonStride,
                                    CKvBatch::At(lat, latStride, first), latStride);
        });
}

void CKvMapProjection::GetOrigin(double* x, double* y) const
{
    if (m_pProjection != nullptr) {
        m_pProjection->GetOrigin(x, y);
    } else {
        *x = 0.0;
        *y = 0.0;
    }
}

double CKvMapProjection::GetConvergence(double lon, double lat) const
{
    return m_pProjection != nullptr ? m_pProjection->GetConvergence(lon, lat) : 0.0;
}

void CKvMapProjection::GetDefaultArea(double* x0, double* y0, double* x1, double* y1) const
{
    if (m_pProjection != nullptr)
        m_pProjection->GetDefaultArea(x0, y0, x1, y1);
}

void CKvMapProjection::GetDefaultArea(int nx, int ny, ESizeParam which, double size, double* x0, double* y0,
                                      double* x1, double* y1) const
{
    if (m_pProjection == nullptr)
        return;
    if (nx < 1 || ny < 1) {
        m_pProjection->GetDefaultArea(x0, y0, x1, y1);
        return;
    }
    double lon0 = 0.0, lat0 = 0.0, cx = 0.0, cy = 0.0;
    m_pProjection->GetOrigin(&lon0, &lat0);
    m_pProjection->Geo2Proj(lon0, lat0, &cx, &cy);
    if (which == eSizeX) {
        const double half = size * ny / nx * 0.5;
        *x0 = cx - size * 0.5;
        *x1 = cx + size * 0.5;
        *y0 = cy - half;
        *y1 = cy + half;
    } else if (which == eSizeY) {
        const double half = nx * size / ny * 0.5;
        *x0 = cx - half;
        *x1 = cx + half;
        *y0 = cy - size * 0.5;
        *y1 = cy + size * 0.5;
    }
}

bool CKvMapProjection::IsLocal() const
{
    return m_pProjection != nullptr && m_pProjection->IsLocal();
}

bool CKvMapProjection::IsGeographical() const
{
    return m_pProjection != nullptr && m_pProjection->IsGeographical();
}

double CKvMapProjection::GetLinearUnit() const
{
    if (m_pProjection == nullptr || IsGeographical())
        return 0.0;
    if (m_usSurveyFeet)
        return 1200.0 / 3937.0;
    double factor = 0.0;
    char name[CKvProjectionInfo::UnitNameSize] = "";
    if (!m_info.GetProjUnit(&factor, name) || !std::isfinite(factor) || !(factor > 0.0))
        return 0.0;
    return factor;
}

bool CKvMapProjection::GetUnit(EMapProjectionInfo what, double* factor, char* name) const
{
    switch (what) {
    case eProjUnit: return m_info.GetProjUnit(factor, name);
    case eAngularUnit: return m_info.GetAngularUnit(factor, name);
    default: return false;
    }
}

int CKvMapProjection::GetCoordSysType() const
{
    CKvProjectionInfo::CAxis::EType first, second;
    m_info.GetAxisTypes(first, second);
    return 4 * static_cast<int>(first) + static_cast<int>(second);
}

void CKvMapProjection::Geo2XYZ(double lon, double lat, double h, double* X, double* Y, double* Z) const
{
    if (m_pProjection != nullptr)
        m_figure.Forward(lon, lat, h, *X, *Y, *Z);
}

void CKvMapProjection::XYZ2Geo(double X, double Y, double Z, double* lon, double* lat, double* h) const
{
    if (m_pProjection != nullptr)
        m_figure.Inverse(X, Y, Z, *lon, *lat, *h);
}

bool CKvMapProjection::_geodesicEllipsoid(CKvEllipsoid& ellipsoid) const
{
    if (m_pProjection->GetAnonymousEllipsoid(ellipsoid))
        return true;
    if (!m_pProjection->IsGeographical())
        return false;
    ellipsoid.SetParams(6378137.0, 298.257223563);
    return true;
}

bool CKvMapProjection::GetDistance(double lon1, double lat1, double lon2, double lat2, double& distance) const
{
    double azimuth12 = 0.0, azimuth21 = 0.0;
    return GetDistance(lon1, lat1, lon2, lat2, distance, azimuth12, azimuth21);
}

bool CKvMapProjection::GetDistance(double lon1, double lat1, double lon2, double lat2, double& distance,
                                   double& azimuth12, double& azimuth21) const
{
    if (lon1 == lon2 && lat1 == lat2) {
        distance = 0.0;
        return true;
    }
    CKvEllipsoid ellipsoid;
    if (m_pProjection == nullptr || !_geodesicEllipsoid(ellipsoid))
        return false;
    CKvVincenty(ellipsoid).GetDistance(lon1, lat1, lon2, lat2, distance, azimuth12, azimuth21);
    return true;
}

bool CKvMapProjection::GetPoint(double lon1, double lat1, double azimuth12, double distance, double& lon2,
                                double& lat2, double& azimuth21) const
{
    CKvEllipsoid ellipsoid;
    if (m_pProjection == nullptr || !_geodesicEllipsoid(ellipsoid))
        return false;
    CKvVincenty(ellipsoid).GetPoint(lon1, lat1, azimuth12, distance, lon2, lat2, azimuth21);
    return true;
}

bool CKvMapProjection::GetInverseGeodesic(double lon1, double lat1, double lon2, double lat2, double& distance,
                                          double& azimuth1, double& azimuth2) const
{
    // The figure was taken with the system (none when it did not resolve): no
    // ellipsoid is copied per call.
    return m_geodesic.Inverse(lon1, lat1, lon2, lat2, distance, azimuth1, azimuth2);
}

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

namespace {

// The message of the last system resolved in each thread.
thread_local std::string t_lastMessage;

// Whether a text that did not read as WKT was meant as WKT (and so its parser's
// reason is the one to give) rather than as a catalogue name.
bool LooksLikeWkt(const CString& text)
{
    for (const char* keyword : {"PROJCS", "GEOGCS", "PROJCRS", "GEOGCRS", "GEODCRS", "COMPD_CS"})
        if (text.Find(keyword) == 0)
            return true;
    return text.Find('[') >= 0 && text.Find(']') >= 0;
}

// Why a name resolves to nothing: several catalogue names differ from it only
// in case, and none is chosen; or no name is it, and the closest ones follow.
std::string UnresolvedNameMessage(const std::string& name)
{
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    const std::vector<CKvMapProjData*> alike = list.GetMapProjectionsIgnoringCase(name);
    if (alike.size() > 1) {
        std::string names;
        for (std::size_t i = 0; i < alike.size(); ++i)
            names += std::string(i == 0 ? "" : i + 1 == alike.size() ? " and " : ", ") + '"' + alike[i]->GetName() + '"';
        return "ambiguous coordinate system \"" + name + "\": the catalogue holds " + names +
               ", which differ only in case; write the name as one of them is written";
    }
    std::string message = "unknown coordinate system \"" + name + "\"";
    if (!CKvCartSetup::Instance()->HasSystemCatalogue())
        message += " (no catalogue was read: CARTSETUPLINUX was not called, or its system directory holds no "
                   "map_projection.gxr)";
    // The catalogue's names are the candidates, with their EPSG codes, then the
    // EPSG registry's systems that no catalogue entry stands for (a bare number
    // that is a code suggests its system: CKvNameSuggestions::ReadCode).
    CKvNameSuggestions candidates;
    candidates.Reserve(list.GetCount() + 6000);
    std::vector<int> catalogued;
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        candidates.Add((*it)->GetName(), (*it)->GetEpsgCode());
        if ((*it)->GetEpsgCode() > 0)
            catalogued.push_back((*it)->GetEpsgCode());
    }
    std::sort(catalogued.begin(), catalogued.end());
    CKvEpsgRegistry::Instance().ForEach(
        [&candidates, &catalogued](const std::string& authority, int code, bool, const std::string& system) {
            if (authority == "EPSG" && !std::binary_search(catalogued.begin(), catalogued.end(), code))
                candidates.Add(system, code);
        });
    const std::string suggestions = CKvNameSuggestions::DidYouMean(candidates.Suggest(name));
    if (!suggestions.empty())
        message += "; " + suggestions;
    return message;
}

} // namespace

const std::string& CKvMapProjection::GetLastMessage()
{
    return t_lastMessage;
}

void CKvMapProjection::SetLastMessage(const std::string& message)
{
    t_lastMessage = message;
}

void CKvMapProjection::SetEpsgReading(bool on)
{
    CKvPRJParser::SetDefaultReading(on ? CKvPRJParser::eEpsgReading : CKvPRJParser::eCompatibleReading);
}

bool CKvMapProjection::GetEpsgReading()
{
    return CKvPRJParser::GetDefaultReading() == CKvPRJParser::eEpsgReading;
}

CKvProjection* CKvMapProjection::GetProjection(const char* text, CKvProjectionInfo* info)
{
    return GetProjection(text, info, nullptr);
}

CKvProjection* CKvMapProjection::GetProjection(const char* text, CKvProjectionInfo* info, std::string* message,
                                               std::string* shiftSource)
{
    std::string& said = t_lastMessage;
    said.clear();
    CString trimmed(text);
    trimmed.Trim();
    CKvPRJParser parser(trimmed);
    parser.Parse(false);
    if (parser.GetProjectionType() != CKvMapProjData::eNoProjection) {
        CKvProjection* engine = parser.CreateMapProjection();
        if (engine != nullptr) {
            if (info != nullptr)
                info->SetProjectionInfo(parser);
            if (shiftSource != nullptr)
                *shiftSource = parser.GetDatumShiftSource();
            said = parser.GetWarnings();
            if (message != nullptr)
                *message = said;
            return engine;
        }
    }
    if (trimmed == "UTM") {
        said = "Can't use generic UTM: name a zone, UTM-1 to UTM-60";
        if (message != nullptr)
            *message = said;
        throw std::out_of_range("Can't use generic UTM");
    }
    const char* name = trimmed.IsEmpty() ? IDtoProjectionString(eNonUTM) : trimmed.GetString();
    CKvProjection* engine = _FindMapProjection(name);
    std::string authority;
    int code = 0;
    if (engine == nullptr && CKvEpsgRegistry::ParseCode(name, authority, code)) {
        engine = _fromRegistry(authority, code, info, said, nullptr);
        if (message != nullptr)
            *message = said;
        return engine;
    }
    if (engine == nullptr) {
        if (LooksLikeWkt(trimmed) && !parser.GetFailureReason().empty()) {
            said = parser.GetFailureReason();
        } else {
            said = UnresolvedNameMessage(name);
        }
    }
    if (message != nullptr)
        *message = said;
    return engine;
}

CKvProjection* CKvMapProjection::_fromRegistry(const std::string& authority, int code, CKvProjectionInfo* info,
                                               std::string& said, CKvMapProjection* self)
{
    const std::string key = authority + ":" + std::to_string(code);
    CKvEpsgRegistry::SEntry entry;
    const CKvEpsgRegistry& registry = CKvEpsgRegistry::Instance();
    if (!registry.Find(authority, code, entry)) {
        const std::string error = registry.GetError();
        said = !error.empty() ? key + ": " + error : key + " is not a projected or geographic 2D system of the registry";
        return nullptr;
    }
    if (!entry.reason.empty()) {
        said = key + " (" + entry.name + "): " + entry.reason;
        return nullptr;
    }
    CString wkt(entry.wkt.c_str());
    CKvPRJParser parser(wkt);
    parser.SetReading(CKvPRJParser::eEpsgReading);
    parser.Parse(false);
    CKvProjection* engine =
        parser.GetProjectionType() != CKvMapProjData::eNoProjection ? parser.CreateMapProjection() : nullptr;
    if (engine == nullptr) {
        const std::string reason = parser.GetFailureReason();
        said = key + " (" + entry.name + "): " + (reason.empty() ? "its definition cannot be read" : reason);
        return nullptr;
    }
    if (info != nullptr) {
        info->SetProjectionInfo(parser);
        // The registry knows the shift of the datum, a zero one included, or not.
        info->SetDatumShiftKnown(entry.hasShift);
    }
    said = parser.GetWarnings();
    if (self != nullptr) {
        self->m_registryCode = key;
        self->m_registryName = entry.name;
        self->m_hasArea = true;
        self->m_area[0] = entry.west;
        self->m_area[1] = entry.south;
        self->m_area[2] = entry.east;
        self->m_area[3] = entry.north;
        self->m_shiftSource = DescribeShift(entry);
    }
    return engine;
}

bool CKvMapProjection::RegistryText(const char* text, std::string& wkt, std::string* reason)
{
    std::string authority;
    int code = 0;
    if (!CKvEpsgRegistry::ParseCode(text, authority, code))
        return false;
    CString name(text);
    name.Trim();
    if (FindMapProjectionDefinition(name.GetString()) != nullptr)
        return false;
    CKvEpsgRegistry::SEntry entry;
    const CKvEpsgRegistry& registry = CKvEpsgRegistry::Instance();
    const std::string key = authority + ":" + std::to_string(code);
    if (!registry.Find(authority, code, entry)) {
        if (reason != nullptr) {
            const std::string error = registry.GetError();
            *reason = !error.empty() ? key + ": " + error
                                     : key + " is not a projected or geographic 2D system of the registry";
        }
        return false;
    }
    if (!entry.reason.empty()) {
        if (reason != nullptr)
            *reason = key + " (" + entry.name + "): " + entry.reason;
        return false;
    }
    wkt = entry.wkt;
    return true;
}

bool CKvMapProjection::GetAreaOfUse(double& west, double& south, double& east, double& north) const
{
    if (!m_hasArea)
        return false;
    west = m_area[0];
    south = m_area[1];
    east = m_area[2];
    north = m_area[3];
    return true;
}

bool CKvMapProjection::IsInAreaOfUse(double lon, double lat, double margin) const
{
    if (!m_hasArea)
        return true;
    if (!(lat >= m_area[1] - margin && lat <= m_area[3] + margin))
        return false;
    // Longitudes east of the area's west edge, on a circle.
    const double width = m_area[2] >= m_area[0] ? m_area[2] - m_area[0] : m_area[2] + 360.0 - m_area[0];
    if (width + 2.0 * margin >= 360.0)
        return std::isfinite(lon);
    double d = std::fmod(lon - (m_area[0] - margin), 360.0);
    if (d < 0.0)
        d += 360.0;
    return d <= width + 2.0 * margin;
}

CKvProjection* CKvMapProjection::_FindMapProjection(const char* name)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    // The exact name, else the one name it is in another case.
    const CKvMapProjData* definition = setup->GetMapProjectionList().FindMapProjection(name != nullptr ? name : "");
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

bool CKvMapProjection::IsLongLat(const char* text)
{
    CString trimmed(text);
    trimmed.Trim();
    return trimmed == IDtoProjectionString(eLongLat);
}

CKvMapProjData* CKvMapProjection::MapProjection(const char* name)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->SetMapProjectionListModified();
    return setup->GetMapProjectionList().GetMapProjection(name != nullptr ? name : "");
}

const CKvMapProjData* CKvMapProjection::FindMapProjectionDefinition(const char* name)
{
    return CKvCartSetup::Instance()->GetMapProjectionList().GetMapProjection(name != nullptr ? name : "");
}

std::string CKvMapProjection::CatalogueSpelling(const char* text)
{
    const std::string given = text != nullptr ? text : "";
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    const std::vector<CKvMapProjData*> alike = list.GetMapProjectionsIgnoringCase(given);
    if (alike.size() != 1)
        return given;
    CString trimmed(given);
    trimmed.Trim();
    const std::string spelled = alike.front()->GetName();
    // What the exact look-up finds (by the short form of the name) comes first.
    if (spelled == trimmed.GetStdString() || list.GetMapProjection(trimmed.GetStdString()) != nullptr)
        return given;
    return spelled;
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

namespace {

// The WKT that describes a resolved system: its own text when that is WKT, else
// (a catalogue name) the text its engine formats. The special names stay as
// they are; an unresolved system has no text.
CString DescribingText(const CKvMapProjection& system)
{
    CString text(system.GetProjectionString());
    if (system.GetProjection() == nullptr || CKvPRJParser::IsPRJ(text) ||
        CKvMapProjection::IsType(12, text.GetString()))
        return text;
    CString wkt;
    CKvPRJParser(system.GetProjection()).Format(wkt);
    return wkt;
}

CString Trimmed(const char* text)
{
    CString trimmed(text != nullptr ? text : "");
    trimmed.Trim();
    return trimmed;
}

CKvMapProjData::EProjectionType WktType(const CString& text)
{
    CKvPRJParser parser(text);
    parser.Parse(false);
    return parser.GetProjectionType();
}

bool Differ(double a, double b)
{
    if (a == b)
        return false;
    return !(std::fabs(a - b) / std::max(std::fabs(a), std::fabs(b)) <= 1e-12);
}

} // namespace

bool CKvMapProjection::IsValid(const char* text)
{
    const CString trimmed = Trimmed(text);
    if (trimmed.IsEmpty())
        return false;
    if (WktType(trimmed) != CKvMapProjData::eNoProjection)
        return true;
    if (trimmed == "UTM" || CKvPRJParser::IsPRJ(trimmed))
        return false;
    if (IsLocal(trimmed.GetString()) || IsLongLat(trimmed.GetString()))
        return true;
    // Any fragment of the catalogue's listing counts, names and WKT alike.
    return MapProjectionListing(15, nullptr).find(trimmed.GetStdString()) != std::string::npos;
}

bool CKvMapProjection::IsGeographical(const char* text)
{
    const CString trimmed = Trimmed(text);
    if (IsLongLat(trimmed.GetString()))
        return true;
    const CKvMapProjData::EProjectionType type = WktType(DescribingText(CKvMapProjection(trimmed.GetString())));
    return type == CKvMapProjData::eRotatedLongitudeLatitude || type == CKvMapProjData::eGeographical;
}

bool CKvMapProjection::IsGeoreferenced(const char* text)
{
    return !IsLocal(text) && IsValid(text);
}

bool CKvMapProjection::IsType(int mask, const char* text)
{
    const CString trimmed = Trimmed(text);
    if ((mask & 8) != 0 && IsLocal(trimmed.GetString()))
        return true;
    if ((mask & 4) != 0 && IsLongLat(trimmed.GetString()))
        return true;
    if ((mask & 3) == 0)
        return false;
    return CKvMapProjData::IsEquivalent(mask, WktType(DescribingText(CKvMapProjection(trimmed.GetString()))));
}

bool CKvMapProjection::HasDatum(const char* text)
{
    const CString trimmed = Trimmed(text);
    if (WktType(trimmed) != CKvMapProjData::eNoProjection)
        return true;
    if (trimmed == "UTM" || IsLocal(trimmed.GetString()) || IsLongLat(trimmed.GetString()))
        return false;
    return MapProjectionListing(3, nullptr).find(trimmed.GetStdString()) != std::string::npos;
}

int CKvMapProjection::GetCoordSysType(const char* text)
{
    return CKvMapProjection(text).GetCoordSysType();
}

namespace {

// A longitude onto the globe by the exact remainder, in [-180, 180): the
// antimeridian, given as 180, is taken as -180, since each zone holds its
// western edge. NaN and infinities lie on no meridian: NaN.
double ZoneLongitude(double lon)
{
    double reduced = CKvAngle::ReduceLongitudeDegrees(lon);
    if (reduced >= 180.0)
        reduced -= 360.0;
    return reduced;
}

// The regular zone of a reduced longitude, 1 ... 60. The quotient of a
// longitude below 6k stays below k when rounded, so the zone is exact; the
// clamp only states the range.
int RegularZone(double reduced)
{
    return std::min(60, std::max(1, static_cast<int>(std::floor(reduced / 6.0)) + 31));
}

} // namespace

std::string CKvMapProjection::UTMZoneName(double lon)
{
    const double reduced = ZoneLongitude(lon);
    if (std::isnan(reduced))
        return std::string();
    return "UTM-" + std::to_string(RegularZone(reduced));
}

bool CKvMapProjection::UTMZoneName(double lon, double lat, std::string& name, int& epsgCode, std::string* reason)
{
    name.clear();
    epsgCode = 0;
    const double reduced = ZoneLongitude(lon);
    const char* refusal = nullptr;
    if (std::isnan(reduced))
        refusal = "the longitude is not a finite number";
    else if (std::isnan(lat) || std::isinf(lat))
        refusal = "the latitude is not a finite number";
    else if (std::fabs(lat) > 90.0)
        refusal = "the latitude is beyond 90 degrees";
    if (refusal != nullptr) {
        if (reason != nullptr)
            *reason = refusal;
        return false;
    }
    if (reason != nullptr)
        reason->clear();
    // The polar caps (MGRS): UPS north of 84 N and south of 80 S; the parallels
    // themselves belong to UTM, as the extents of EPSG's zones include them.
    if (lat > 84.0) {
        name = "UPS North";
        epsgCode = 32661;
        return true;
    }
    if (lat < -80.0) {
        name = "UPS South";
        epsgCode = 32761;
        return true;
    }
    int zone = RegularZone(reduced);
    // Band V (56 N to 64 N): zone 32 widened westwards over 3 E to 6 E, the
    // south-west coast of Norway.
    if (lat >= 56.0 && lat < 64.0 && reduced >= 3.0 && reduced < 12.0)
        zone = 32;
    // Band X (72 N to 84 N), Svalbard: the odd zones 31 to 37 widened to 9, 12,
    // 12 and 9 degrees, the even ones between them unused.
    if (lat >= 72.0 && reduced >= 0.0 && reduced < 42.0)
        zone = reduced < 9.0 ? 31 : reduced < 21.0 ? 33 : reduced < 33.0 ? 35 : 37;
    // The equator is in the northern zones (a latitude of -0 too).
    const bool south = lat < 0.0;
    name = "UTM-" + std::to_string(zone) + (south ? "S" : "");
    epsgCode = (south ? 32700 : 32600) + zone;
    return true;
}

const char* CKvMapProjection::LongitudeToUTMZone(double lon)
{
    thread_local std::string zone;
    zone = UTMZoneName(lon);
    return zone.c_str();
}

std::string CKvMapProjection::ShortNameText(const char* text)
{
    return CKvPRJParser::ShortName(CString(text != nullptr ? text : "")).GetStdString();
}

const char* CKvMapProjection::ShortName(const char* text)
{
    thread_local std::string name;
    name = ShortNameText(text);
    return name.c_str();
}

std::string CKvMapProjection::MapProjectionListing(int mask, long* count)
{
    std::string listing;
    long listed = 0;
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        const std::string name = (*it)->GetName();
        // The special names by their bits; every other definition by the class
        // of its own type, which is what its engine's WKT reads back as (and
        // far cheaper than building the system to ask it).
        const bool special = IsType(12, name.c_str());
        if (special ? !IsType(mask & 12, name.c_str())
                    : !CKvMapProjData::IsEquivalent(mask, (*it)->GetProjectionType()))
            continue;
        if (special) {
            listing += name;
        } else {
            CString wkt;
            CKvPRJParser(*it).Format(wkt);
            wkt.Trim();
            listing += wkt.GetStdString();
        }
        listing += ';';
        ++listed;
    }
    if (count != nullptr)
        *count = listed;
    return listing;
}

const char* CKvMapProjection::EnumMapProjections(int mask, long* count)
{
    thread_local std::string listing;
    listing = MapProjectionListing(mask, count);
    return listing.c_str();
}

std::string CKvMapProjection::EllipsoidListing(CKvEllipsoidList::EEllipsoidTypes kind, long* count)
{
    std::string listing;
    long listed = 0;
    const CKvEllipsoidList& list = CKvCartSetup::Instance()->GetEllipsoidList();
    for (auto it = list.GetIteratorBegin(kind); it != list.GetIteratorEnd(kind); ++it) {
        CString name((*it)->GetName().c_str());
        name.Trim();
        listing += name.GetStdString();
        listing += ';';
        ++listed;
    }
    if (count != nullptr)
        *count = listed;
    return listing;
}

const char* CKvMapProjection::EnumEllipsoids(CKvEllipsoidList::EEllipsoidTypes kind, long* count)
{
    thread_local std::string listing;
    listing = EllipsoidListing(kind, count);
    return listing.c_str();
}

bool CKvMapProjection::AreIdentical(const char* a, const char* b)
{
    const CKvMapProjection systemA(a), systemB(b);
    // A string that resolves nowhere has nothing to compare.
    if (systemA.GetProjection() == nullptr || systemB.GetProjection() == nullptr)
        return false;
    CKvPRJParser parserA(DescribingText(systemA)), parserB(DescribingText(systemB));
    parserA.Parse(true);
    parserB.Parse(true);
    if (parserA.GetProjectionType() != parserB.GetProjectionType())
        return false;

    bool identical = true;
    for (int i = 0; i < parserA.GetNoOfParameters(); ++i) {
        CString nameA, nameB, unitA, unitB;
        double valueA = 0.0, valueB = 0.0, factorA = 1.0, factorB = 1.0;
        parserA.GetParameter(i, nameA, valueA, unitA, factorA);
        parserB.GetParameter(i, nameB, valueB, unitB, factorB);
        if (!(nameA == nameB))
            identical = false;
        if (!(unitA == unitB)) {
            valueA *= factorA;
            valueB *= factorB;
        }
        if (Differ(valueA, valueB))
            identical = false;
    }
    if (!identical)
        return false;

    CKvEllipsoid ellipsoidA, ellipsoidB;
    systemA.GetProjection()->GetAnonymousEllipsoid(ellipsoidA);
    systemB.GetProjection()->GetAnonymousEllipsoid(ellipsoidB);
    if (!ellipsoidA.IsEquivalent(ellipsoidB))
        return false;

    CKvDatumShift shiftA, shiftB;
    parserA.GetDatumShift(shiftA);
    parserB.GetDatumShift(shiftB);
    if (shiftA != shiftB)
        return false;

    for (CKvPRJParser::EAxisType axis : {CKvPRJParser::eFirstAxis, CKvPRJParser::eSecondAxis}) {
        CString name, directionA, directionB;
        parserA.GetAxisInfo(axis, name, directionA);
        parserB.GetAxisInfo(axis, name, directionB);
        if (directionA.CompareNoCase(directionB.GetString()) != 0)
            return false;
    }
    return true;
}
