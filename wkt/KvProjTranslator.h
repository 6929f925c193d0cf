#ifndef KVCART_WKT_KVPROJTRANSLATOR_H
#define KVCART_WKT_KVPROJTRANSLATOR_H

#include <string>

// Writes a coordinate system as a PROJ.4 definition for tools that speak PROJ.4.
// It goes through the WKT form of the system: the projection tokens come from
// the parsed record, then the ellipsoid, an optional datum shift and the unit.
class CKvProjTranslator
{
public:
    CKvProjTranslator() = default;
    virtual ~CKvProjTranslator() = default;

    // text: WKT, a catalogue name such as "UTM-32", "NON-UTM" or "LONG/LAT".
    // datumShift (count values, dx dy dz rx ry rz scale) replaces the system's own
    // TOWGS84 when count >= 1; missing values are written as 0. "" when the text
    // resolves to no engine; "+proj=undef " for systems PROJ.4 cannot express.
    // Throws std::out_of_range for the generic name "UTM".
    std::string Convert2Proj4(const std::string& text, const double* datumShift, int count) const;
    // The same for the first line of a .prj file; an unreadable file converts an
    // empty line.
    std::string ConvertPRJFile2Proj4(const std::string& path, const double* datumShift, int count) const;

    // A PROJ string that PROJ 9 reads as the same system, the WKT read by the EPSG
    // rules: PROJ's own names and conventions (+lonc and +no_uoff for the oblique
    // Mercator, +gamma only when a grid angle is given, +axis for the
    // south-orientated transverse Mercator and Krovak, +lat_ts or +k for the
    // polar stereographic, +k_0 for a scaled two-parallel Lambert), numbers in
    // their shortest exact form, ending "+no_defs +type=crs". Empty, with the
    // reason in reason (when not null), for a text that does not resolve or a
    // system PROJ cannot be told.
    std::string ConvertToProj(const std::string& text, const double* datumShift, int count,
                              std::string* reason = nullptr) const;
};

#endif
