#include "geodesy/KvDatumConverter.h"

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEllipsoid.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"
#include "projections/KvProjection.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

constexpr double kPi = 3.141592653589793;

bool EllipsoidOf(const CKvMapProjection* system, CKvEllipsoid& ellipsoid)
{
    return system->GetProjection() != nullptr && system->GetProjection()->GetAnonymousEllipsoid(ellipsoid);
}

// Whether two ellipsoids are one figure for a change of datum: equivalent, or
// GRS 80 and WGS 84. Those two share their semi-major axis and differ in the
// flattening's eleventh digit (0.1 mm in the semi-minor axis); geodesy takes
// them as one figure, and the registry's zero-parameter transformations from
// datums on GRS 80 to WGS 84 (RGF93, ETRS89, NAD83, GDA94 and others) keep
// latitude and longitude as they are, as PROJ applies them (a null
// operation), rather than moving points by up to 0.1 mm through a geocentric
// step from one flattening to the other.
bool OneFigure(const CKvEllipsoid& a, const CKvEllipsoid& b)
{
    if (a.IsEquivalent(b))
        return true;
    const CKvEllipsoid grs80("GRS 1980", "", 6378137.0, 298.257222101);
    const CKvEllipsoid wgs84("WGS 84", "", 6378137.0, 298.257223563);
    return (a.IsEquivalent(grs80) && b.IsEquivalent(wgs84)) || (a.IsEquivalent(wgs84) && b.IsEquivalent(grs80));
}

// The shift as the converter uses it: rotations from arc-seconds to radians,
// the scale from ppm to a plain correction.
CKvCartDef::ETypeOfDatumShift TakeShift(const CKvMapProjection* system, double* shift)
{
    CKvDatumShift record;
    system->GetDatumShift(record);
    std::fill(shift, shift + CKvDatumShift::NoOfParameters, 0.0);
    const CKvCartDef::ETypeOfDatumShift type = record.GetType();
    if (type == CKvCartDef::eThreeParameters || type == CKvCartDef::eSevenParameters)
        std::copy(record.GetParameters(), record.GetParameters() + 3, shift);
    if (type == CKvCartDef::eSevenParameters) {
        for (int i = 3; i < 6; ++i)
            shift[i] = record[i] * kPi / 3600.0 / 180.0;
        shift[6] = record[6] / 1e6;
    }
    return type;
}

// Position-vector Helmert, small angles (EPSG method 9606), all seven
// parameters: from the shift's datum to WGS 84.
KVCART_ALWAYS_INLINE void ApplyHelmert(const double* s, double& X, double& Y, double& Z)
{
    const double k = 1.0 + s[6];
    const double x = X, y = Y, z = Z;
    X = (x - s[5] * y + s[4] * z) * k + s[0];
    Y = (s[5] * x + y - s[3] * z) * k + s[1];
    Z = (-s[4] * x + s[3] * y + z) * k + s[2];
}

// From WGS 84 back to the shift's datum: the transposed rotation, divided by the scale.
KVCART_ALWAYS_INLINE void RemoveHelmert(const double* s, double& X, double& Y, double& Z)
{
    const double k = 1.0 + s[6];
    const double dx = X - s[0], dy = Y - s[1], dz = Z - s[2];
    X = (dx + s[5] * dy - s[4] * dz) / k;
    Y = (-s[5] * dx + dy + s[3] * dz) / k;
    Z = (s[4] * dx - s[3] * dy + dz) / k;
}

void ApplyShift(CKvCartDef::ETypeOfDatumShift type, const double* s, double& X, double& Y, double& Z)
{
    if (type == CKvCartDef::eThreeParameters) {
        X += s[0];
        Y += s[1];
        Z += s[2];
    } else if (type == CKvCartDef::eSevenParameters) {
        ApplyHelmert(s, X, Y, Z);
    }
}

void RemoveShift(CKvCartDef::ETypeOfDatumShift type, const double* s, double& X, double& Y, double& Z)
{
    if (type == CKvCartDef::eThreeParameters) {
        X -= s[0];
        Y -= s[1];
        Z -= s[2];
    } else if (type == CKvCartDef::eSevenParameters) {
        RemoveHelmert(s, X, Y, Z);
    }
}

// The geocentric step by the math kernels, the same arithmetic in the block
// loop and in a single call. Both shifts are applied in their seven-parameter
// form whatever their type: the values a shift does not use are zero (as
// TakeShift and SetDatumShift leave them), and with zero rotations and a scale
// of exactly 1 the form adds the translation alone, bit for bit, and leaves
// the coordinates as they are for no shift. lon, lat and h are replaced only
// where the step holds (the return value); elsewhere they stay for the
// general step.
KVCART_ALWAYS_INLINE bool KernelStep(const CKvGeocentric& from, const CKvGeocentric& to, const double* apply,
                                     const double* remove, double& lon, double& lat, double& h)
{
    CKvGeocentric::SAngles angles;
    double X, Y, Z, lonOut, latOut, hOut;
    const bool in = from.ForwardKernel(lon, lat, h, X, Y, Z, angles);
    ApplyHelmert(apply, X, Y, Z);
    RemoveHelmert(remove, X, Y, Z);
    const bool ok = in & to.InverseNear(X, Y, Z, angles, lonOut, latOut, hOut);
    lon = ok ? lonOut : lon;
    lat = ok ? latOut : lat;
    h = ok ? hOut : h;
    return ok;
}

// What a datum is, as the converter compares two sides.
enum class EDatum
{
    eNone,  // no datum named (LONG/LAT, NON-UTM)
    eWgs84, // WGS 84, or a datum whose known shift to it is zero
    eNamed  // any other datum
};

// A datum name reduced to what tells datums apart, so that the registry's,
// GDAL's and Esri's spellings of one datum meet: letters and digits in lower
// case, without Esri's "D_" prefix, the registry's long names in their short
// forms and a two-digit year in four ("OSGB 1936", "OSGB_1936", "D_OSGB_1936"
// and "Ordnance Survey of Great Britain 1936" are "osgb1936"; "NAD27",
// "North_American_Datum_1927" and "D_North_American_1927" are "nad1927").
// Names it does not join count as different datums, which at worst gives a
// message, never a silent answer.
std::string KeyOf(const char* name)
{
    std::string key;
    if (name == nullptr)
        return key;
    const char* p = name;
    if ((p[0] == 'D' || p[0] == 'd') && p[1] == '_')
        p += 2;
    for (; *p != '\0'; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c >= 'A' && c <= 'Z')
            key += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            key += static_cast<char>(c);
    }
    static const char* const kShortForms[][2] = {
        {"northamericandatum", "nad"},
        {"northamerican", "nad"},
        {"worldgeodeticsystem", "wgs"},
        {"reseaugeodesiquefrancais", "rgf"},
        {"europeanterrestrialreferencesystem", "etrs"},
        {"ordnancesurveyofgreatbritain", "osgb"},
        {"geocentricdatumofaustralia", "gda"},
        {"newzealandgeodeticdatum", "nzgd"},
    };
    for (const auto& form : kShortForms) {
        const std::string prefix = form[0];
        if (key.compare(0, prefix.size(), prefix) == 0) {
            key = form[1] + key.substr(prefix.size());
            break;
        }
    }
    // "nad27" as "nad1927": two digits after a letter at the end are a year
    // of the last century, as in every datum name that abbreviates one (ED50,
    // NAD83, GDA94; GDA2020 writes four).
    const size_t n = key.size();
    if (n >= 3 && std::isdigit(static_cast<unsigned char>(key[n - 1])) &&
        std::isdigit(static_cast<unsigned char>(key[n - 2])) && std::isalpha(static_cast<unsigned char>(key[n - 3])))
        key.insert(n - 2, "19");
    return key;
}

EDatum KindOf(const std::string& key, bool known, CKvCartDef::ETypeOfDatumShift type)
{
    if (key.empty())
        return EDatum::eNone;
    if (known)
        return type == CKvCartDef::eNoDatumShift ? EDatum::eWgs84 : EDatum::eNamed;
    return key == "wgs1984" ? EDatum::eWgs84 : EDatum::eNamed;
}

// The error to expect from a datum whose shift to WGS 84 is not known, judged
// by its ellipsoid: a datum on the geocentric figures (GRS 80, WGS 84) is
// realised from satellite geodesy and differs from WGS 84 by its epoch and
// plate motion, up to about 2 m (NAD83(1986), GDA94); a classical datum's
// centre lies typically 150 to 800 m from the earth's (the 10th to 90th
// percentile of the translations of the EPSG registry's Helmert
// transformations to WGS 84; OSGB 1936 713 m, which moves points in Britain
// by 124 m), and up to about 2 km for the remotest island datums (Kusaie
// 1951, 2.2 km).
std::string ExpectedError(const CKvMapProjection* system, const std::string& datum)
{
    CKvEllipsoid ellipsoid;
    if (!EllipsoidOf(system, ellipsoid))
        return "an unknown error (\"" + datum + "\" has no ellipsoid)";
    const double a = ellipsoid.GetMajor(), rf = ellipsoid.GetInvFlatness();
    const bool geocentric = std::fabs(a - 6378137.0) < 0.001 &&
                            (std::fabs(rf - 298.257222101) < 1e-6 || std::fabs(rf - 298.257223563) < 1e-6);
    // The engine's figure is anonymous: its name is the catalogue's for that figure.
    std::string name = ellipsoid.GetName();
    const CKvEllipsoidList& list = CKvCartSetup::Instance()->GetEllipsoidList();
    for (auto it = list.GetIteratorBegin(CKvEllipsoidList::eComplete);
         name.empty() && it != list.GetIteratorEnd(CKvEllipsoidList::eComplete); ++it)
        if ((*it)->IsEquivalent(ellipsoid))
            name = (*it)->GetName();
    char figure[192];
    if (!name.empty())
        std::snprintf(figure, sizeof figure, "the %.128s ellipsoid", name.c_str());
    else
        std::snprintf(figure, sizeof figure, "an ellipsoid of a = %.3f m, 1/f = %.9g", a, rf);
    if (geocentric)
        return std::string("up to about 2 m (\"") + datum + "\" is on " + figure +
               ", as the datums realised from satellite geodesy are, which differ from WGS 84 by their epoch and "
               "plate motion)";
    return std::string("hundreds of metres, typically 150 to 800 m and up to about 2 km (\"") + datum + "\" is on " +
           figure + ": a classical datum, whose centre lies that far from the earth's)";
}

// Geographical output is a point or NaN in both coordinates: where no engine
// nor geocentric step has looked at it (a bypassed conversion from degrees to
// degrees), a latitude beyond the poles or a longitude that is no number would
// otherwise pass as it came.
inline void KeepPoint(double& lon, double& lat)
{
    if (!CKvAngle::IsPoint(lon, lat))
        lon = lat = std::nan("");
}

} // namespace

CKvDatumConverter::CKvDatumConverter(const char* source, const char* target)
    : m_pSource(nullptr), m_pTarget(nullptr), m_ownsSystems(true)
{
    std::unique_ptr<CKvMapProjection> sourceSystem(new CKvMapProjection(source));
    std::unique_ptr<CKvMapProjection> targetSystem(new CKvMapProjection(target));
    m_pSource = sourceSystem.release();
    m_pTarget = targetSystem.release();
    _init();
    if (!m_message.empty()) {
        const std::string& last = CKvMapProjection::GetLastMessage();
        CKvMapProjection::SetLastMessage(last.empty() ? m_message : last + "\n" + m_message);
    }
}

CKvDatumConverter::CKvDatumConverter(CKvMapProjection* source, CKvMapProjection* target)
    : m_pSource(source), m_pTarget(target), m_ownsSystems(false)
{
    _init();
}

CKvDatumConverter::CKvDatumConverter(const CKvDatumConverter& other)
    : CKvCartDef(other), m_pSource(nullptr), m_pTarget(nullptr), m_ownsSystems(false)
{
    _copy(other);
}

CKvDatumConverter& CKvDatumConverter::operator=(const CKvDatumConverter& other)
{
    if (this != &other) {
        _dealloc();
        _copy(other);
    }
    return *this;
}

CKvDatumConverter::~CKvDatumConverter()
{
    _dealloc();
}

void CKvDatumConverter::_init()
{
    m_local = CKvMapProjection::IsLocal(m_pSource->GetName()) || CKvMapProjection::IsLocal(m_pTarget->GetName());
    m_conversionType = eProjToProj;
    CKvEllipsoid sourceEllipsoid, targetEllipsoid;
    const bool sourceKnown = EllipsoidOf(m_pSource, sourceEllipsoid);
    const bool targetKnown = EllipsoidOf(m_pTarget, targetEllipsoid);
    m_sourceOwn = sourceKnown ? CKvGeocentric(sourceEllipsoid) : CKvGeocentric();
    m_targetOwn = targetKnown ? CKvGeocentric(targetEllipsoid) : CKvGeocentric();
    m_sameEllipsoid = sourceKnown && targetKnown && OneFigure(sourceEllipsoid, targetEllipsoid);
    m_sourceType = TakeShift(m_pSource, m_sourceShift);
    m_targetType = TakeShift(m_pTarget, m_targetShift);
    m_explicitShift = false;
    m_sourceKnown = m_pSource->IsDatumShiftKnown();
    m_targetKnown = m_pTarget->IsDatumShiftKnown();
    _judgeDatums(true);
    _settle();
}

void CKvDatumConverter::_judgeDatums(bool share)
{
    m_message.clear();
    m_sameDatum = false;
    if (m_local)
        return;
    const std::string sourceName = m_pSource->GetDatumName(), targetName = m_pTarget->GetDatumName();
    const std::string sourceKey = KeyOf(sourceName.c_str()), targetKey = KeyOf(targetName.c_str());
    EDatum source = KindOf(sourceKey, m_sourceKnown, m_sourceType);
    EDatum target = KindOf(targetKey, m_targetKnown, m_targetType);
    if (source == EDatum::eNone || target == EDatum::eNone)
        return; // the LONG/LAT rule: no datum named is no change of datum
    const bool sameName = sourceKey == targetKey;
    // One datum, one shift: a side that does not know it takes the other's.
    if (share && sameName && m_sourceKnown != m_targetKnown) {
        double* to = m_sourceKnown ? m_targetShift : m_sourceShift;
        const double* from = m_sourceKnown ? m_sourceShift : m_targetShift;
        std::copy(from, from + CKvDatumShift::NoOfParameters, to);
        (m_sourceKnown ? m_targetType : m_sourceType) = m_sourceKnown ? m_sourceType : m_targetType;
        m_sourceKnown = m_targetKnown = true;
    }
    if (sameName || (source == EDatum::eWgs84 && target == EDatum::eWgs84)) {
        // On one datum and one ellipsoid the points keep their latitude and
        // longitude, whatever shifts the two sides carry: a datum such as NAD27
        // has regional shifts to WGS 84 (Alaska's is 28 m from the
        // conterminous states'), and applying two of them would move points
        // that change no datum. A shift set by the host is applied as set.
        m_sameDatum = m_sameEllipsoid && !m_explicitShift;
        return;
    }
    const bool sourceMissing = source == EDatum::eNamed && !m_sourceKnown;
    const bool targetMissing = target == EDatum::eNamed && !m_targetKnown;
    if (!sourceMissing && !targetMissing)
        return;
    m_message = "the datum changes from \"" + sourceName + "\" to \"" + targetName + "\", and ";
    if (sourceMissing && targetMissing)
        m_message += "the shifts of both to WGS 84 are not known: the points are converted without a datum shift; "
                     "expect errors of " +
                     ExpectedError(m_pSource, sourceName) + " and of " + ExpectedError(m_pTarget, targetName);
    else {
        const std::string& missing = sourceMissing ? sourceName : targetName;
        m_message += "the shift of \"" + missing + "\" to WGS 84 is not known: the points are converted as if \"" +
                     missing + "\" were WGS 84; expect errors of " +
                     ExpectedError(sourceMissing ? m_pSource : m_pTarget, missing);
    }
}

void CKvDatumConverter::_settle()
{
    const bool sourceShifted = m_sourceType != eNoDatumShift, targetShifted = m_targetType != eNoDatumShift;
    // A side without an ellipsoid and without a shift of its own is WGS 84 when
    // the other side has a shift: the datum that shift leads to. A side without
    // an ellipsoid but with a shift keeps its missing figure, and its points
    // come out NaN: the shift of an unknown figure places nothing.
    m_sourceFigure = m_sourceOwn.HasFigure() || sourceShifted || !targetShifted ? m_sourceOwn : CKvGeocentric::Wgs84();
    m_targetFigure = m_targetOwn.HasFigure() || targetShifted || !sourceShifted ? m_targetOwn : CKvGeocentric::Wgs84();
    // Equal shifts on one ellipsoid cancel: the datum is the same on both sides.
    const bool equalShifts = m_sourceType == m_targetType &&
                             std::equal(m_sourceShift, m_sourceShift + CKvDatumShift::NoOfParameters, m_targetShift);
    if (m_sourceOwn.HasFigure() && m_targetOwn.HasFigure())
        m_bypass = m_sameEllipsoid && (equalShifts || m_sameDatum);
    else
        // Without a figure on a side and without any shift there is nothing to
        // shift between; with a shift the geocentric step always runs.
        m_bypass = !sourceShifted && !targetShifted;
    m_bypassDefault = m_bypass;
}

// Owned systems are copied, so that each converter deletes only its own;
// systems the source converter does not own are shared, unowned.
void CKvDatumConverter::_copy(const CKvDatumConverter& other)
{
    if (other.m_ownsSystems) {
        std::unique_ptr<CKvMapProjection> source(new CKvMapProjection(*other.m_pSource));
        std::unique_ptr<CKvMapProjection> target(new CKvMapProjection(*other.m_pTarget));
        m_pSource = source.release();
        m_pTarget = target.release();
    } else {
        m_pSource = other.m_pSource;
        m_pTarget = other.m_pTarget;
    }
    m_ownsSystems = other.m_ownsSystems;
    m_conversionType = other.m_conversionType;
    m_sourceOwn = other.m_sourceOwn;
    m_targetOwn = other.m_targetOwn;
    m_sourceFigure = other.m_sourceFigure;
    m_targetFigure = other.m_targetFigure;
    m_sameEllipsoid = other.m_sameEllipsoid;
    m_bypass = other.m_bypass;
    m_bypassDefault = other.m_bypassDefault;
    m_local = other.m_local;
    m_sourceType = other.m_sourceType;
    m_targetType = other.m_targetType;
    std::copy(other.m_sourceShift, other.m_sourceShift + CKvDatumShift::NoOfParameters, m_sourceShift);
    std::copy(other.m_targetShift, other.m_targetShift + CKvDatumShift::NoOfParameters, m_targetShift);
    m_sourceKnown = other.m_sourceKnown;
    m_targetKnown = other.m_targetKnown;
    m_sameDatum = other.m_sameDatum;
    m_explicitShift = other.m_explicitShift;
    m_message = other.m_message;
}

void CKvDatumConverter::_dealloc()
{
    if (m_ownsSystems) {
        delete m_pSource;
        delete m_pTarget;
    }
    m_pSource = nullptr;
    m_pTarget = nullptr;
    m_ownsSystems = false;
}

void CKvDatumConverter::DatumShift(double& X, double& Y, double& Z) const
{
    ApplyShift(m_sourceType, m_sourceShift, X, Y, Z);
    RemoveShift(m_targetType, m_targetShift, X, Y, Z);
}

void CKvDatumConverter::InvDatumShift(double& X, double& Y, double& Z) const
{
    ApplyShift(m_targetType, m_targetShift, X, Y, Z);
    RemoveShift(m_sourceType, m_sourceShift, X, Y, Z);
}

void CKvDatumConverter::_geocentric(double& lon, double& lat, double& h, bool forward) const
{
    if (m_bypass)
        return;
    const bool kernel = forward ? KernelStep(m_sourceFigure, m_targetFigure, m_sourceShift, m_targetShift, lon, lat, h)
                                : KernelStep(m_targetFigure, m_sourceFigure, m_targetShift, m_sourceShift, lon, lat, h);
    if (!kernel)
        _geocentricGeneral(lon, lat, h, forward);
}

void CKvDatumConverter::_geocentricBlock(const CKvDatumConverter& self, std::size_t count, double* lon, double* lat,
                                         double* h, bool forward, bool* ok)
{
    // Local copies: nothing the loop writes can alias them, so the figures and
    // shifts stay in registers.
    const CKvGeocentric from = forward ? self.m_sourceFigure : self.m_targetFigure;
    const CKvGeocentric to = forward ? self.m_targetFigure : self.m_sourceFigure;
    constexpr int Count = CKvDatumShift::NoOfParameters;
    const double* first = forward ? self.m_sourceShift : self.m_targetShift;
    const double* second = forward ? self.m_targetShift : self.m_sourceShift;
    double applied[Count], removed[Count];
    std::copy(first, first + Count, applied);
    std::copy(second, second + Count, removed);
    KVCART_SIMD_LOOP
    for (std::size_t i = 0; i < count; ++i)
        ok[i] = KernelStep(from, to, applied, removed, lon[i], lat[i], h[i]);
}

void CKvDatumConverter::_geocentricGeneral(double& lon, double& lat, double& h, bool forward) const
{
    // A longitude beyond +-180 is brought onto the globe by the exact
    // remainder, as Forward does, and then goes through the kernels as the
    // same meridian written within +-180 does (540 and 180 give one point).
    if (!(std::fabs(lon) <= 180.0)) {
        double onGlobe = CKvAngle::ReduceLongitudeDegrees(lon);
        const bool kernel =
            forward ? KernelStep(m_sourceFigure, m_targetFigure, m_sourceShift, m_targetShift, onGlobe, lat, h)
                    : KernelStep(m_targetFigure, m_sourceFigure, m_targetShift, m_sourceShift, onGlobe, lat, h);
        if (kernel) {
            lon = onGlobe;
            return;
        }
    }
    const CKvGeocentric& from = forward ? m_sourceFigure : m_targetFigure;
    const CKvGeocentric& to = forward ? m_targetFigure : m_sourceFigure;
    double X = 0.0, Y = 0.0, Z = 0.0;
    from.Forward(lon, lat, h, X, Y, Z);
    if (forward)
        DatumShift(X, Y, Z);
    else
        InvDatumShift(X, Y, Z);
    to.Inverse(X, Y, Z, lon, lat, h);
}

CKvDatumConverter::SEnds CKvDatumConverter::_ends(bool forward) const
{
    // Forward, types 0 and 1 read projected input and 0 and 2 write projected
    // output; the reverse conversion reads what the forward one writes.
    const bool projectedSource = m_conversionType == eProjToProj || m_conversionType == eProjToGeo;
    const bool projectedTarget = m_conversionType == eProjToProj || m_conversionType == eGeoToProj;
    return forward ? SEnds{m_pSource, m_pTarget, projectedSource, projectedTarget}
                   : SEnds{m_pTarget, m_pSource, projectedTarget, projectedSource};
}

void CKvDatumConverter::_convert(double& x, double& y, double& h, bool forward) const
{
    if (m_local)
        return;
    const SEnds ends = _ends(forward);
    const CKvMapProjection* from = ends.from;
    const CKvMapProjection* to = ends.to;
    const bool projectedIn = ends.projectedIn, projectedOut = ends.projectedOut;
    double lon = x, lat = y;
    if (projectedIn)
        from->Proj2Geo(x, y, &lon, &lat);
    _geocentric(lon, lat, h, forward);
    if (projectedOut) {
        to->Geo2Proj(lon, lat, &x, &y);
    } else {
        KeepPoint(lon, lat);
        x = lon;
        y = lat;
    }
}

void CKvDatumConverter::Convert(double& x, double& y) const
{
    double h = 0.0;
    _convert(x, y, h, true);
}

void CKvDatumConverter::Convert(double& x, double& y, double& h) const
{
    _convert(x, y, h, true);
}

void CKvDatumConverter::InvConvert(double& x, double& y) const
{
    double h = 0.0;
    _convert(x, y, h, false);
}

void CKvDatumConverter::InvConvert(double& x, double& y, double& h) const
{
    _convert(x, y, h, false);
}

std::string CKvDatumConverter::DatumKey(const char* name)
{
    return KeyOf(name);
}

bool CKvDatumConverter::IsConversionType(int type)
{
    return type >= eProjToProj && type <= eGeoToGeo;
}

bool CKvDatumConverter::IsShift(int type, const double* parameters)
{
    if (type == eNoDatumShift)
        return true;
    const int count = type == eThreeParameters ? 3 : type == eSevenParameters ? CKvDatumShift::NoOfParameters : 0;
    if (count == 0 || parameters == nullptr)
        return false;
    return std::all_of(parameters, parameters + count, [](double value) { return std::isfinite(value); });
}

void CKvDatumConverter::SetConversionType(ETypeOfConversion type)
{
    if (!IsConversionType(type))
        throw std::invalid_argument("datum converter: the conversion type must be 0 to 3");
    m_conversionType = type;
}

bool CKvDatumConverter::SetDatumShift(ETypeOfDatumShift type, const double* parameters, bool source)
{
    if (!IsShift(type, parameters))
        throw std::invalid_argument("datum converter: a datum shift takes type 0, or type 1 or 2 with 3 or 7 finite "
                                    "values");
    double* shift = source ? m_sourceShift : m_targetShift;
    (source ? m_sourceType : m_targetType) = type;
    // Values a type does not read stay zero, as TakeShift leaves them.
    std::fill(shift, shift + CKvDatumShift::NoOfParameters, 0.0);
    if (type == eThreeParameters)
        std::copy(parameters, parameters + 3, shift);
    else if (type == eSevenParameters)
        std::copy(parameters, parameters + CKvDatumShift::NoOfParameters, shift);
    (source ? m_sourceKnown : m_targetKnown) = true;
    m_explicitShift = true;
    _judgeDatums(false);
    _settle();
    return m_bypass;
}

void CKvDatumConverter::InvertOrder()
{
    std::swap(m_pSource, m_pTarget);
    std::swap(m_sourceOwn, m_targetOwn);
    std::swap(m_sourceFigure, m_targetFigure);
    if (m_conversionType == eProjToGeo)
        m_conversionType = eGeoToProj;
    else if (m_conversionType == eGeoToProj)
        m_conversionType = eProjToGeo;
    std::swap(m_sourceType, m_targetType);
    std::swap(m_sourceShift, m_targetShift);
    std::swap(m_sourceKnown, m_targetKnown);
    _judgeDatums(false);
}

void CKvDatumConverter::Convert(std::size_t n, double* x, double* y, double* h) const
{
    _convert(n, x, y, h, true);
}

void CKvDatumConverter::InvConvert(std::size_t n, double* x, double* y, double* h) const
{
    _convert(n, x, y, h, false);
}

void CKvDatumConverter::_convert(std::size_t n, double* x, double* y, double* h, bool forward) const
{
    if (m_local)
        return;
    const SEnds ends = _ends(forward);
    const CKvMapProjection* from = ends.from;
    const CKvMapProjection* to = ends.to;
    const bool projectedIn = ends.projectedIn, projectedOut = ends.projectedOut;
    constexpr std::size_t Block = CKvBatch::BlockSize;
    alignas(64) double lon[Block], lat[Block], height[Block];
    bool ok[Block];
    for (std::size_t first = 0; first < n; first += Block) {
        const std::size_t count = n - first < Block ? n - first : Block;
        double* bx = x + first;
        double* by = y + first;
        if (projectedIn) {
            // As a single call: the geographical values start as the input ones,
            // which a system without an engine leaves in place.
            std::copy(bx, bx + count, lon);
            std::copy(by, by + count, lat);
            from->Proj2Geo(count, bx, by, lon, lat);
        } else {
            std::copy(bx, bx + count, lon);
            std::copy(by, by + count, lat);
        }
        if (!m_bypass) {
            for (std::size_t i = 0; i < count; ++i)
                height[i] = h != nullptr ? h[first + i] : 0.0;
            _geocentricBlock(*this, count, lon, lat, height, forward, ok);
            // The points the kernels leave, as a single call computes them.
            for (std::size_t i = 0; i < count; ++i)
                if (!ok[i])
                    _geocentricGeneral(lon[i], lat[i], height[i], forward);
            if (h != nullptr)
                std::copy(height, height + count, h + first);
        }
        if (projectedOut) {
            to->Geo2Proj(count, lon, lat, bx, by);
        } else {
            for (std::size_t i = 0; i < count; ++i)
                KeepPoint(lon[i], lat[i]);
            std::copy(lon, lon + count, bx);
            std::copy(lat, lat + count, by);
        }
    }
}
