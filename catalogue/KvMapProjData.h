#ifndef KVCART_CATALOGUE_KVMAPPROJDATA_H
#define KVCART_CATALOGUE_KVMAPPROJDATA_H

#include "catalogue/KvEllipsoid.h"
#include "catalogue/KvUserCatalogue.h"
#include "geodesy/KvDatumShift.h"

#include <limits>
#include <string>
#include <vector>

class CKvPRJParser;
class CKvProjection;
struct GxrSection;

// A projection definition: name, branch (the group a catalogue lists it under,
// also written as the datum name), ellipsoid identification code and the
// parameters of its projection type. One subclass per type holds the type's
// descriptor (section ID, keywords, labels, WKT names) and typed accessors; the
// reading, writing, display and transfer of parameters live here, once.
class CKvMapProjData
{
public:
    enum EProjectionType
    {
        eTransverseMercator = 1,
        eLambert2SP = 2,
        eLambert1SP = 3,
        eStereographic = 4,
        eNewZealandMapGrid = 5,
        eHotineObliqueMercator = 6,
        eObliqueMercator = 7,
        eRectifiedSkewOrthomorphic = 8,
        eRotatedLongitudeLatitude = 9,
        eMercator2SP = 10,
        eMercator1SP = 11,
        eStereographicNorthPole = 12,
        eStereographicSouthPole = 13,
        eGeographical = 14,
        eKrovak = 15,
        eAlbersEqualArea = 16,
        eLambertAzimuthalEqualArea = 17,
        eCassiniSoldner = 18,
        eEquidistantConic = 19,
        ePolarStereographic = 20,
        eNonProjected = 21, // a system that is not projected ("Non_Projected" in WKT)
        eNoProjection = 22, // nothing parsed, or a failed parse
        // Types beyond the established table.
        eStereographicSnyder = 23, // Snyder's ellipsoidal stereographic (ESRI "Stereographic")
        ePseudoMercator = 24,      // Popular Visualisation Pseudo Mercator, EPSG method 1024 (Web Mercator)
        // Methods described wholly by their descriptor (STypeInfo::method):
        // their WKT names, parameters and PROJ string are read and written from
        // it, and their engine is made from the parameters in stored order.
        eMillerCylindrical = 25,
        eEqualEarth = 26,                   // EPSG method 1078
        eRobinson = 27,
        eMollweide = 28,
        eSinusoidal = 29,
        eEckertIV = 30,
        eWinkelTripel = 31,
        eVanDerGrinten = 32,
        eNaturalEarth = 33,
        eCylindricalEqualArea = 34,         // EPSG methods 9834, 9835
        eEquidistantCylindrical = 35,       // EPSG methods 1028, 1029
        ePolyconic = 36,                    // EPSG method 9818
        eBonne = 37,                        // EPSG method 9827
        eBonneSouthOrientated = 38,         // EPSG method 9828
        eAzimuthalEquidistant = 39,
        eModifiedAzimuthalEquidistant = 40, // EPSG method 9832
        eGuam = 41,                         // EPSG method 9831
        eLaborde = 42,                      // EPSG method 9813
        eLambertWestOrientated = 43,        // EPSG method 9826
        eLambert2SPBelgium = 44,            // EPSG method 9803
        eLambertNearConformal = 45,         // EPSG method 9817
        ePolarStereographicC = 46,          // EPSG method 9830
        eTunisiaMiningGrid = 47,            // EPSG method 9816
        eKrovakModified = 48,               // EPSG method 1042
        eKrovakModifiedNorth = 49,          // EPSG method 1043
        eColombiaUrban = 50,                // EPSG method 1052
        eTransverseMercatorZoned = 51,      // EPSG method 9824
        eHyperbolicCassini = 52,            // EPSG method 9833
        eEquidistantCylindricalEllipsoidal = 53, // EPSG method 1028
        eLastMethod = 53
    };

    enum EParamType
    {
        eDimensionless = 0, // scale factors
        eLength = 1,        // metres
        eAngle = 2          // decimal degrees
    };

    static constexpr int MaxParameters = 10;

    // One parameter of a type: its keyword in parameter files, its display label
    // and kind, and the WKT record field it is handed to.
    struct SParameter
    {
        const char* keyword;
        const char* label;
        EParamType kind;
        void (CKvPRJParser::*wktSetter)(double);
        // The types described by their descriptor hand the WKT record their
        // values by position (wktSetter null) and name them here. WKT 1 names:
        // ESRI's (written in ESRI's form), OGC's (written in OGC WKT 1; null:
        // ESRI's), then others also read (the registry's own spelling); every
        // name is read in any case.
        const char* wktNames[4] = {};
        // PROJ's key (lon_0, x_0, ...); null: not written.
        const char* projKey = nullptr;
        // An angle counted from the prime meridian (converted to Greenwich).
        bool longitude = false;
        // The value when a text does not give the parameter; NaN: it must.
        double fallback = std::numeric_limits<double>::quiet_NaN();
    };

    struct STypeInfo
    {
        EProjectionType type;
        const char* sectionID;
        const char* sectionAlias; // also accepted when reading, or null
        const char* title;
        const char* wktName;
        int noOfParameters;
        SParameter parameters[MaxParameters];
        // What CreateDefaultParameterProjection makes of the type.
        const char* defaultName;
        const char* defaultEllipsoidID;
        double defaults[MaxParameters];
        // For the types described wholly here (25 onwards): the EPSG method code
        // (0 for none), the OGC WKT 1 name (GDAL's; null: no OGC form), other
        // projection names read, PROJ's method with any fixed tokens (null: PROJ
        // has none), and why a set of parameters (degrees, metres, in stored
        // order) makes no map: "" when it does; null: every set does.
        int epsgMethod = 0;
        const char* ogcName = nullptr;
        const char* otherNames[4] = {};
        const char* proj = nullptr;
        std::string (*problem)(const double* parameters) = nullptr;
        // The directions of the engine's own coordinates when they are not
        // easting and northing ("SOUTH", "WEST" for the modified Krovak): AXIS
        // nodes naming them, in either order, say only the order.
        const char* engineAxes[2] = {};
    };

    virtual ~CKvMapProjData();

    virtual std::string GetName() const { return m_name; }
    // The name without a copy, for scans over the whole catalogue.
    const std::string& GetStoredName() const { return m_name; }
    virtual void SetName(const std::string& name) { m_name = name; }
    virtual std::string GetBranchName() const { return m_branchName; }
    virtual void SetBranchName(const std::string& name) { m_branchName = name; }
    virtual std::string GetEllipsoidID() const { return m_ellipsoidID; }
    virtual void SetEllipsoidID(const std::string& id) { m_ellipsoidID = id; }
    // handle: the GxrSection of this type. Returns false for a null handle.
    virtual bool ReadFromHandle(void* handle, bool custom);
    // handle: the GxrTarget to which the section is added.
    virtual bool WriteToHandle(void* handle) const;
    virtual bool IsSectionID(const std::string& id) const;
    // Every keyword that a section of this type may hold when it is read: the
    // strings, the parameters and their alternative forms (_dms, _ft_us,
    // Scale_Reduction).
    std::vector<CKvUserCatalogue::SKeywordRule> GetKeywordRules() const;
    // Whether a section of this type can be read exactly: its keywords by
    // GetKeywordRules, then the values those rules cannot tell (an EPSG code
    // that is no whole number, ...). False with "line: what" in problem.
    bool CheckSection(const GxrSection& section, std::string& problem) const;
    virtual bool CanDelete() const { return m_bCanDelete; }
    virtual bool CanEdit() const { return m_bCanEdit; }
    // A new engine for this definition, owned by the caller; null when the
    // library has no engine for the method.
    virtual CKvProjection* CreateProjection() const = 0;
    virtual void TransferParameters(CKvPRJParser& parser) const;
    virtual std::string GetProjectionTypeTitle() const { return m_pInfo->title; }
    virtual EProjectionType GetProjectionType() const { return m_pInfo->type; }
    virtual int GetNoOfParameters() const { return m_pInfo->noOfParameters; }
    virtual bool GetParameter(int index, std::string& label, double& value, EParamType& kind) const;
    virtual void SetParameters(const double* values);
    // Whether the grid's coordinates are in US survey feet: a definition read
    // with both its false easting and northing in them (the "_ft_us" keywords,
    // as the EPSG state planes on NAD27 are) is a system in that unit. Its
    // parameters are held in metres all the same, as the engines work in metres.
    bool IsInUsSurveyFeet() const { return m_bUsSurveyFeet; }
    // The EPSG code of the coordinate reference system the definition stands
    // for ("EPSG_Code n" in a parameter file, a whole number from 1 to
    // 2147483647); 0 when none is given. A code of 0 or less removes it.
    int GetEpsgCode() const { return m_epsgCode; }
    void SetEpsgCode(int code) { m_epsgCode = code > 0 ? code : 0; }
    // The shift from the definition's datum to WGS 84, in a parameter file
    //   TOWGS84           dx dy dz [rx ry rz ds]
    //   TOWGS84_Code      1314        (the EPSG code of the transformation)
    //   TOWGS84_Accuracy  2           (metres)
    // with the translations in metres, the rotations in arc-seconds in the
    // position-vector convention (EPSG method 9606, as CKvDatumShift holds
    // them) and the scale correction in ppm. A shift of zero is a shift all the
    // same: the datum coincides with WGS 84 at the transformation's accuracy
    // (NAD83, ETRS89), where a definition without one has an unknown shift.
    // GetDatumShift gives false, and shift reset, for a definition without one.
    bool HasDatumShift() const { return m_shiftCount != 0; }
    bool GetDatumShift(CKvDatumShift& shift) const;
    // 3 or 7: the values the shift is written with; 0 without a shift.
    int GetDatumShiftCount() const { return m_shiftCount; }
    // The EPSG code of the transformation, 0 when none is given.
    int GetDatumShiftCode() const { return m_shiftCode; }
    // The transformation's accuracy in metres; negative when none is given.
    double GetDatumShiftAccuracy() const { return m_shiftAccuracy; }
    // count values (3 or 7, finite; rotations in arc-seconds, position vector;
    // scale in ppm). A code of 0 or less is none, an accuracy that is negative
    // or no finite number is none. False, changing nothing, for another count
    // or a value that is not finite.
    bool SetDatumShift(const double* values, int count, int code = 0, double accuracy = -1.0);
    void RemoveDatumShift();

    // Only the name, branch, ellipsoid, parameters, EPSG code and datum shift;
    // the flags stay as they are.
    void CopyFieldsFrom(const CKvMapProjData& other);
    void SetPermissions(bool canDelete, bool canEdit);
    const STypeInfo& GetTypeInfo() const { return *m_pInfo; }

    // Hands the WKT record the names, the ellipsoid, the type and the parameters.
    // found: whether the ellipsoid is known; without it the system is written as
    // not projected. writeUnknownEllipsoid: write the ellipsoid even when unknown.
    void TransferWith(CKvPRJParser& parser, const CKvEllipsoid& ellipsoid, bool found,
                      bool writeUnknownEllipsoid) const;

    // The definition types in catalogue order, by an index 0 .. GetNoOfProjections() - 1:
    // types 1..20, then 23 and 24 (21 and 22 name no definition), then the
    // described methods from 25 that the library has. Enum2ProjectionType gives
    // eNoProjection for an index outside that range, ProjectionType2Enum -1 for a type
    // that is no definition.
    static int GetNoOfProjections();
    static EProjectionType Enum2ProjectionType(int index);
    static int ProjectionType2Enum(EProjectionType type);
    // Whether the type is described wholly by its descriptor (25 onwards, with
    // an engine in the library).
    static bool IsDescribedMethod(EProjectionType type);
    // The engine of a described method for parameters in stored order (degrees,
    // longitudes from Greenwich, metres) on an ellipsoid; null for any other type.
    static CKvProjection* CreateMethodEngine(EProjectionType type, const std::string& name, const double* parameters,
                                             const CKvEllipsoid& ellipsoid);
    // Bit 1 (value 2) selects the geographic-like types 9 and 14, bit 0 (value 1)
    // every other projected type; 21 and 22 never match.
    static bool IsEquivalent(int flags, EProjectionType type);
    // Degrees, minutes, seconds from a keyword of up to three numbers.
    static bool gxrGetParamDMS(GxrSection* handle, const char* keyword, int* degrees, int* minutes, double* seconds);
    // A new definition of the type with these strings and parameters (in stored
    // order); null for a type that is no definition (21, 22).
    static CKvMapProjData* CreateProjection(EProjectionType type, const std::string& name, const std::string& branch,
                                            const std::string& ellipsoidID, const double* parameters);
    static CKvMapProjData* CreateDefaultParameterProjection(EProjectionType type);
    // The descriptor of a definition type (1..20, 23, 24); null for any other value.
    static const STypeInfo* GetTypeInfo(EProjectionType type);
    // Coefficients of the auxiliary-latitude series of the engines.
    static void ComputeFourierCoefficients(EProjectionType type, bool forward, double x, double* c);

protected:
    CKvMapProjData(const STypeInfo& info, const std::string& name, const std::string& branch,
                   const std::string& ellipsoidID, const double* parameters);
    CKvMapProjData(const CKvMapProjData& other) = default;
    CKvMapProjData& operator=(const CKvMapProjData& other) = default;

    double _param(int index) const { return m_adParams[index]; }
    void _setParam(int index, double value) { m_adParams[index] = value; }

private:
    double _readParameter(GxrSection* section, const char* keyword) const;

    const STypeInfo* m_pInfo;
    std::string m_name;
    std::string m_branchName;
    std::string m_ellipsoidID;
    bool m_bCanDelete;
    bool m_bCanEdit;
    bool m_bUsSurveyFeet = false;
    int m_epsgCode = 0;
    int m_shiftCount = 0; // 0: no shift, else 3 or 7
    double m_shift[CKvDatumShift::NoOfParameters] = {0, 0, 0, 0, 0, 0, 0};
    int m_shiftCode = 0;
    double m_shiftAccuracy = -1.0;
    double m_adParams[MaxParameters];
};

#endif
