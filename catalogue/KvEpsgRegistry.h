#ifndef KVCART_CATALOGUE_KVEPSGREGISTRY_H
#define KVCART_CATALOGUE_KVEPSGREGISTRY_H

#include <functional>
#include <memory>
#include <mutex>
#include <string>

// The EPSG (and ESRI) registry of coordinate systems, read from the file
// "epsg_registry.txt" of the system catalogue directory (made by
// tools/make_epsg_registry.py from the EPSG dataset as PROJ ships it).
//
// Each system is kept as the WKT 1 text the library reads under its EPSG
// reading, with its area of use and the datum shift to WGS 84 the registry's
// best Helmert gives. The file is read on the first look-up, not at set-up, and
// indexed by authority and code; every later look-up is a binary search and the
// assembly of one text. Look-ups are safe from several threads at once; a set-up
// that names another system directory makes the next look-up read that one.
class CKvEpsgRegistry
{
public:
    // A datum shift to WGS 84 as the registry's transformation gives it, in the
    // library's convention: dx, dy, dz in metres, rx, ry, rz in arc-seconds
    // (position vector), ds in ppm.
    struct SShift
    {
        int parameters = 0;     // 0: the datum is WGS 84 (no shift needed); 3 or 7
        double values[7] = {0, 0, 0, 0, 0, 0, 0};
        std::string code;       // "EPSG:1314"; empty for WGS 84 itself
        std::string name;       // "OSGB36 to WGS 84 (6)"
        double accuracy = -1.0; // metres; negative when the registry gives none
        std::string convention; // the transformation's own: "position-vector", "coordinate-frame", "translations"
        std::string better;     // an operation ranked above it that the library cannot apply (a grid), or empty
        double betterAccuracy = -1.0;
    };

    struct SEntry
    {
        std::string authority;  // "EPSG" or "ESRI"
        int code = 0;
        bool geographic = false;
        std::string name;
        double west = 0, south = 0, east = 0, north = 0; // area of use, Greenwich degrees (west > east across 180)
        bool hasShift = false;  // false: no transformation to WGS 84 is known for the datum
        SShift shift;
        std::string reason;     // non-empty: the system is known but not given (why)
        std::string wkt;        // the text, TOWGS84 included when a shift is known
    };

    static CKvEpsgRegistry& Instance();

    // "EPSG:27700", "epsg:27700", "ESRI:102100" (blanks around it allowed):
    // authority upper-cased and the code; false for anything else.
    static bool ParseCode(const char* text, std::string& authority, int& code);

    // The system of that code. False when it is not in the registry or the
    // registry cannot be read (GetError says which).
    bool Find(const std::string& authority, int code, SEntry& entry) const;

    // A datum by the name a WKT text gives it, in GDAL's or ESRI's spelling
    // ("Ordnance_Survey_of_Great_Britain_1936", "D_OSGB_1936"; case, blanks
    // and punctuation do not matter): the shift to WGS 84 of the first
    // geographic system on that datum, and that system's code ("EPSG:4277").
    // False for a name the registry does not know.
    bool FindDatum(const std::string& name, SShift& shift, std::string& system) const;
    // The folded form of a datum name that FindDatum compares.
    static std::string DatumKey(const std::string& name);

    // Every system, in (authority, code) order, with its name: for listings and
    // suggestions. Returns false when the registry cannot be read.
    bool ForEach(const std::function<void(const std::string& authority, int code, bool geographic,
                                          const std::string& name)>& visit) const;

    // Why the registry could not be read (empty when it was, or was not tried).
    std::string GetError() const;
    // The header line of the file that was read: the dataset's version.
    std::string GetVersion() const;
    // The file that is (or would be) read; empty while no catalogue directory
    // is set, when no file is read.
    std::string GetPath() const;

    // Reads an explicit file instead of the catalogue directory's (tests, tools).
    void UseFile(const std::string& path);

private:
    struct SData;
    CKvEpsgRegistry() = default;
    std::shared_ptr<const SData> _data() const;

    mutable std::mutex m_mutex;
    mutable std::shared_ptr<const SData> m_data;
    std::string m_explicitPath;
};

#endif
