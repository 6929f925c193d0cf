#include "interface/KvCart.h"

#include "catalogue/KvCartSetup.h"
#include "coordsys/KvCartography.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "projections/KvProjection.h"
#include "wkt/KvProjTranslator.h"

#include <cmath>
#include <cstring>
#include <string>

namespace {

// The string rule of the interface: when the length len exceeds size, *status =
// len and the buffer is not touched; otherwise the text and its terminator are
// copied (the buffer holds size + 1 bytes) and *status = 0. A NULL buffer only
// learns len; without a status there is nobody to tell, and nothing is done.
void CopyResult(const char* text, char* buffer, int size, int* status)
{
    if (status == nullptr)
        return;
    const size_t length = std::strlen(text);
    // Deliberately len > size, not >=: the buffer holds size + 1 bytes.
    if (static_cast<long long>(length) > size || buffer == nullptr) {
        *status = static_cast<int>(length);
        return;
    }
    std::memcpy(buffer, text, length + 1);
    *status = 0;
}

void CopyResult(const std::string& text, char* buffer, int size, int* status)
{
    CopyResult(text.c_str(), buffer, size, status);
}

// A string getter on a handle: a NULL handle has no text (-1).
template <typename Object, typename Get>
void CopyFrom(const Object* handle, Get get, char* buffer, int size, int* status)
{
    if (status == nullptr)
        return;
    if (handle == nullptr) {
        *status = -1;
        return;
    }
    CopyResult(get(*handle), buffer, size, status);
}

// Create functions: any exception (the generic "UTM", memory) is status -1
// and leaves the handle as it was; nothing crosses the C boundary. Without a
// status nothing is made (its failure could not be told), and without a
// place for the handle the object is not made either: -1.
template <typename Object, typename Make>
void Create(Object** handle, int* status, Make make)
{
    if (status == nullptr)
        return;
    if (handle == nullptr) {
        *status = -1;
        return;
    }
    try {
        Object* object = make();
        *handle = object;
        *status = 0;
    } catch (...) {
        *status = -1;
    }
}

// Without a status nothing is destroyed: the host that cannot hear the
// answer keeps its object (and its handle stays valid).
template <typename Object>
void Destroy(Object** handle, int* status)
{
    if (status == nullptr)
        return;
    if (handle == nullptr || *handle == nullptr) {
        *status = -1;
        return;
    }
    delete *handle;
    *handle = nullptr;
    *status = 0;
}

// The string queries answer 0 for text they cannot classify, such as the
// generic "UTM" that the object construction rejects with an exception.
template <typename Query>
int Answer(Query query, int otherwise = 0)
{
    try {
        return query();
    } catch (...) {
        return otherwise;
    }
}

const char* Text(const char* text)
{
    return text != nullptr ? text : "";
}

} // namespace

/* Coordinate systems */

extern "C" void C_KVMP_CREATE(const char* text, KVMP_HANDLE* handle, int* status)
{
    Create(handle, status, [&] { return new CKvMapProjection(Text(text)); });
}

extern "C" void C_KVMP_DESTROY(KVMP_HANDLE* handle, int* status)
{
    Destroy(handle, status);
}

extern "C" void C_KVMP_GETNAME(KVMP_HANDLE handle, char* buffer, int size, int* status)
{
    CopyFrom(handle, [](const CKvMapProjection& system) { return system.GetName(); }, buffer, size, status);
}

extern "C" void C_KVMP_GETPROJECTIONSTRING(KVMP_HANDLE handle, char* buffer, int size, int* status)
{
    CopyFrom(
        handle, [](const CKvMapProjection& system) { return system.GetProjectionString(); }, buffer, size, status);
}

extern "C" void C_KVMP_GETMESSAGE(KVMP_HANDLE handle, char* buffer, int size, int* status)
{
    CopyFrom(
        handle, [](const CKvMapProjection& system) { return system.GetMessage().c_str(); }, buffer, size, status);
}

extern "C" void C_KVMP_GETLASTERROR(char* buffer, int size, int* status)
{
    CopyResult(CKvMapProjection::GetLastMessage(), buffer, size, status);
}

extern "C" void C_KVC_SETEPSGREADING(int on)
{
    CKvMapProjection::SetEpsgReading(on != 0);
}

extern "C" int C_KVC_GETEPSGREADING(void)
{
    return CKvMapProjection::GetEpsgReading() ? 1 : 0;
}

extern "C" void C_KVMP_GEO2PROJ(KVMP_HANDLE handle, double lon, double lat, double* x, double* y)
{
    handle->Geo2Proj(lon, lat, x, y);
}

extern "C" void C_KVMP_PROJ2GEO(KVMP_HANDLE handle, double x, double y, double* lon, double* lat)
{
    handle->Proj2Geo(x, y, lon, lat);
}

extern "C" void C_KVMP_GEO2PROJ_N(KVMP_HANDLE handle, size_t n, const double* lon, const double* lat, double* x,
                                  double* y)
{
    handle->Geo2Proj(n, lon, lat, x, y);
}

extern "C" void C_KVMP_PROJ2GEO_N(KVMP_HANDLE handle, size_t n, const double* x, const double* y, double* lon,
                                  double* lat)
{
    handle->Proj2Geo(n, x, y, lon, lat);
}

extern "C" void C_KVMP_GETORIGIN(KVMP_HANDLE handle, double* x, double* y)
{
    handle->GetOrigin(x, y);
}

extern "C" double C_KVMP_GETCONVERGENCE(KVMP_HANDLE handle, double lon, double lat)
{
    return handle->GetConvergence(lon, lat);
}

extern "C" void C_KVMP_GEO2XYZ(KVMP_HANDLE handle, double lon, double lat, double h, double* X, double* Y, double* Z)
{
    handle->Geo2XYZ(lon, lat, h, X, Y, Z);
}

extern "C" void C_KVMP_XYZ2GEO(KVMP_HANDLE handle, double X, double Y, double Z, double* lon, double* lat, double* h)
{
    handle->XYZ2Geo(X, Y, Z, lon, lat, h);
}

extern "C" void C_KVMP_GETDEFAULTAREA(KVMP_HANDLE handle, double* x0, double* y0, double* x1, double* y1)
{
    handle->GetDefaultArea(x0, y0, x1, y1);
}

extern "C" void C_KVMP_GETLINEARUNIT(KVMP_HANDLE handle, double* factor, int* status)
{
    if (status == nullptr)
        return;
    *status = -1;
    if (handle == nullptr || factor == nullptr)
        return;
    const double value = handle->GetLinearUnit();
    *factor = value > 0.0 ? value : 1.0;
    *status = value > 0.0 ? 0 : -1;
}

extern "C" int C_KVMP_GETAREAOFUSE(KVMP_HANDLE handle, double* west, double* south, double* east, double* north)
{
    if (handle == nullptr || west == nullptr || south == nullptr || east == nullptr || north == nullptr)
        return -1;
    double w = 0, s = 0, e = 0, n = 0;
    if (!handle->GetAreaOfUse(w, s, e, n))
        return -1;
    *west = w;
    *south = s;
    *east = e;
    *north = n;
    return 0;
}

extern "C" int C_KVMP_GETINVERSEGEODESIC(KVMP_HANDLE handle, double lon1, double lat1, double lon2, double lat2,
                                         double* distance, double* azimuth1, double* azimuth2)
{
    if (handle == nullptr || distance == nullptr || azimuth1 == nullptr || azimuth2 == nullptr)
        return -1;
    return handle->GetInverseGeodesic(lon1, lat1, lon2, lat2, *distance, *azimuth1, *azimuth2) ? 0 : -1;
}

/* Local site grids */

extern "C" void C_KVC_CREATE(const char* text, double lon0, double lat0, double orientation, KVC_HANDLE* handle,
                             int* status)
{
    Create(handle, status, [&] { return new CKvCartography(Text(text), lon0, lat0, orientation); });
}

extern "C" void C_KVC_DESTROY(KVC_HANDLE* handle, int* status)
{
    Destroy(handle, status);
}

extern "C" KVMP_HANDLE C_KVC_GETPROJECTION(KVC_HANDLE handle)
{
    return handle != nullptr ? handle->GetProjection() : nullptr;
}

extern "C" void C_KVC_GETPROJECTIONNAME(KVC_HANDLE handle, char* buffer, int size, int* status)
{
    CopyFrom(handle, [](const CKvCartography& grid) { return grid.GetProjectionName(); }, buffer, size, status);
}

extern "C" void C_KVC_GETPROJECTIONSTRING(KVC_HANDLE handle, char* buffer, int size, int* status)
{
    CopyFrom(handle, [](const CKvCartography& grid) { return grid.GetProjectionString(); }, buffer, size, status);
}

extern "C" double C_KVC_GETTRUENORTH(KVC_HANDLE handle, double x, double y)
{
    return handle->GetTrueNorth(x, y);
}

extern "C" double C_KVC_GETPROJNORTH(KVC_HANDLE handle)
{
    return handle->GetProjectionNorth();
}

extern "C" void C_KVC_GEO2PROJ(KVC_HANDLE handle, double lon, double lat, double* X, double* Y)
{
    handle->Geo2Proj(lon, lat, X, Y);
}

extern "C" void C_KVC_PROJ2GEO(KVC_HANDLE handle, double X, double Y, double* lon, double* lat)
{
    handle->Proj2Geo(X, Y, lon, lat);
}

extern "C" void C_KVC_GEO2XY(KVC_HANDLE handle, double lon, double lat, double* x, double* y)
{
    handle->Geo2Xy(lon, lat, x, y);
}

extern "C" void C_KVC_XY2GEO(KVC_HANDLE handle, double x, double y, double* lon, double* lat)
{
    handle->Xy2Geo(x, y, lon, lat);
}

extern "C" void C_KVC_PROJ2XY(KVC_HANDLE handle, double X, double Y, double* x, double* y)
{
    handle->Proj2Xy(X, Y, x, y);
}

extern "C" void C_KVC_XY2PROJ(KVC_HANDLE handle, double x, double y, double* X, double* Y)
{
    handle->Xy2Proj(x, y, X, Y);
}

/* Datum converters */

extern "C" void C_KVDC_CREATE(const char* source, const char* target, KVDC_HANDLE* handle, int* status)
{
    Create(handle, status, [&] { return new CKvDatumConverter(Text(source), Text(target)); });
}

extern "C" void C_KVDC_DESTROY(KVDC_HANDLE* handle, int* status)
{
    Destroy(handle, status);
}

extern "C" void C_KVDC_CONVERTXY(KVDC_HANDLE handle, double* x, double* y)
{
    handle->Convert(*x, *y);
}

extern "C" void C_KVDC_INVCONVERTXY(KVDC_HANDLE handle, double* x, double* y)
{
    handle->InvConvert(*x, *y);
}

extern "C" void C_KVDC_CONVERTXYH(KVDC_HANDLE handle, double* x, double* y, double* h)
{
    handle->Convert(*x, *y, *h);
}

extern "C" void C_KVDC_CONVERTXY_N(KVDC_HANDLE handle, size_t n, double* x, double* y)
{
    handle->Convert(n, x, y, nullptr);
}

extern "C" void C_KVDC_CONVERTXYH_N(KVDC_HANDLE handle, size_t n, double* x, double* y, double* h)
{
    handle->Convert(n, x, y, h);
}

extern "C" void C_KVDC_INVCONVERTXYH(KVDC_HANDLE handle, double* x, double* y, double* h)
{
    handle->InvConvert(*x, *y, *h);
}

extern "C" void C_KVDC_DATUMSHIFT(KVDC_HANDLE handle, double* X, double* Y, double* Z)
{
    handle->DatumShift(*X, *Y, *Z);
}

extern "C" void C_KVDC_INVDATUMSHIFT(KVDC_HANDLE handle, double* X, double* Y, double* Z)
{
    handle->InvDatumShift(*X, *Y, *Z);
}

extern "C" void C_KVDC_SETCONVERSIONTYPE(KVDC_HANDLE handle, int type)
{
    // Checked before it becomes a type: any other value leaves the converter as it was.
    if (CKvDatumConverter::IsConversionType(type))
        handle->SetConversionType(static_cast<CKvDatumConverter::ETypeOfConversion>(type));
}

extern "C" int C_KVDC_GETBYPASSXYZ(KVDC_HANDLE handle)
{
    return handle->GetBypassXYZ() ? 1 : 0;
}

extern "C" void C_KVDC_BYPASSXYZ(KVDC_HANDLE handle)
{
    handle->BypassXYZ();
}

extern "C" void C_KVDC_RESETBYPASSXYZ(KVDC_HANDLE handle)
{
    handle->ResetBypassXYZ();
}

extern "C" int C_KVDC_SETDATUMSHIFT(KVDC_HANDLE handle, int type, double* params, int flag)
{
    // Refused (-1, the converter as it was) before anything is cast or read:
    // an unknown type, missing values, a value that is not finite.
    if (!CKvDatumConverter::IsShift(type, params))
        return -1;
    return handle->SetDatumShift(static_cast<CKvCartDef::ETypeOfDatumShift>(type), params, flag != 0) ? 1 : 0;
}

extern "C" void C_KVDC_INVERTORDER(KVDC_HANDLE handle)
{
    handle->InvertOrder();
}

/* Questions on strings */

extern "C" int S_ISVALID(const char* text)
{
    return Answer([&] { return CKvMapProjection::IsValid(Text(text)) ? 1 : 0; });
}

extern "C" int S_ISLOCAL(const char* text)
{
    return CKvMapProjection::IsLocal(Text(text)) ? 1 : 0;
}

extern "C" int S_ISLONGLAT(const char* text)
{
    return CKvMapProjection::IsLongLat(Text(text)) ? 1 : 0;
}

extern "C" int S_ISGEOGRAPHICAL(const char* text)
{
    return Answer([&] { return CKvMapProjection::IsGeographical(Text(text)) ? 1 : 0; });
}

extern "C" int S_ISGEOREFERENCED(const char* text)
{
    return Answer([&] { return CKvMapProjection::IsGeoreferenced(Text(text)) ? 1 : 0; });
}

extern "C" int S_HASDATUM(const char* text)
{
    return Answer([&] { return CKvMapProjection::HasDatum(Text(text)) ? 1 : 0; });
}

// The string first and the mask second, unlike the member.
extern "C" int S_ISTYPE(const char* text, int typeMask)
{
    return Answer([&] { return CKvMapProjection::IsType(typeMask, Text(text)) ? 1 : 0; });
}

extern "C" int S_AREIDENTICAL(const char* a, const char* b)
{
    return Answer([&] { return CKvMapProjection::AreIdentical(Text(a), Text(b)) ? 1 : 0; });
}

// A text that cannot be made into a system has the default axes.
extern "C" int S_GETCOORDSYSTYPE(const char* text)
{
    return Answer([&] { return CKvMapProjection::GetCoordSysType(Text(text)); }, 1);
}

extern "C" void S_PROJECTIONSHORTNAME(const char* text, char* buffer, int size, int* status)
{
    if (status == nullptr)
        return;
    // The std::string forms: no buffer shared with any other call.
    try {
        CopyResult(CKvMapProjection::ShortNameText(Text(text)), buffer, size, status);
    } catch (...) {
        *status = -1;
    }
}

extern "C" void S_LONGITUDETOUTMZONE(char* buffer, int size, int* status, double lon)
{
    if (status == nullptr)
        return;
    try {
        CopyResult(CKvMapProjection::UTMZoneName(lon), buffer, size, status);
    } catch (...) {
        *status = -1;
    }
}

extern "C" void S_POINTTOUTMZONE(char* buffer, int size, int* status, double lon, double lat, int* epsgCode)
{
    if (status == nullptr)
        return;
    if (epsgCode != nullptr)
        *epsgCode = 0;
    try {
        std::string name;
        int code = 0;
        if (!CKvMapProjection::UTMZoneName(lon, lat, name, code)) {
            *status = -1;
            return;
        }
        CopyResult(name, buffer, size, status);
        if (epsgCode != nullptr)
            *epsgCode = code;
    } catch (...) {
        *status = -1;
    }
}

extern "C" void S_GETGOOGLEMAPPROJECTIONSTRING(char* buffer, int size, int* status)
{
    CopyResult(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eGoogleMercator), buffer, size, status);
}

extern "C" void S_PROJECTIONORIGIN(const char* text, double* x, double* y, int* status)
{
    if (status == nullptr)
        return;
    if (x == nullptr || y == nullptr) {
        *status = -1;
        return;
    }
    try {
        CKvMapProjection(Text(text)).GetOrigin(x, y);
        *status = 0;
    } catch (...) {
        *status = -1;
    }
}

extern "C" KVP_HANDLE NewKvProjection(const char* text)
{
    try {
        return CKvMapProjection::GetProjection(Text(text), nullptr);
    } catch (...) {
        return nullptr;
    }
}

extern "C" void DeleteKvProjection(KVP_HANDLE engine)
{
    CKvProjection::Release(engine);
}

extern "C" void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory)
{
    CKvCartSetup::Instance()->ReadData(systemDirectory != nullptr ? systemDirectory : "",
                                       userDirectory != nullptr ? userDirectory : "");
}

extern "C" int CARTWRITEBACKLINUX(void)
{
    return CKvCartSetup::Instance()->WriteBack() ? 0 : -1;
}

extern "C" void CARTGETERRORLINUX(char* buffer, int size, int* status)
{
    if (status == nullptr)
        return;
    try {
        CopyResult(CKvCartSetup::Instance()->GetLastError(), buffer, size, status);
    } catch (...) {
        *status = -1;
    }
}

extern "C" void C_KVC_CONVERT2PROJ4(const char* text, double* datumShift, int count, char* buffer, int size,
                                    int* status)
{
    if (status == nullptr)
        return;
    // No exception may cross the C boundary.
    try {
        CopyResult(CKvProjTranslator().Convert2Proj4(text != nullptr ? text : "", datumShift, count), buffer, size,
                   status);
    } catch (...) {
        *status = -1;
    }
}

extern "C" void C_KVC_CONVERT2PROJ(const char* text, double* datumShift, int count, char* buffer, int size,
                                   int* status)
{
    if (status == nullptr)
        return;
    // No exception may cross the C boundary.
    try {
        std::string reason;
        const std::string proj =
            CKvProjTranslator().ConvertToProj(text != nullptr ? text : "", datumShift, count, &reason);
        CKvMapProjection::SetLastMessage(reason);
        if (proj.empty()) {
            *status = -1;
            return;
        }
        CopyResult(proj, buffer, size, status);
    } catch (const std::exception& e) {
        CKvMapProjection::SetLastMessage(e.what());
        *status = -1;
    } catch (...) {
        *status = -1;
    }
}
