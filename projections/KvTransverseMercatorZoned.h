#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATORZONED_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATORZONED_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <string>

// Transverse Mercator Zoned Grid System (IOGP Guidance Note 7-2, EPSG method
// 9824), the form of "WGS 84 / UTM grid system" (EPSG:32600, 32700): one grid for
// all zones of width W from the initial longitude lambdaI. The zone of a point is
//   Z = (floor((lambda - lambdaI) / W) mod (360 / W)) + 1,
// its central meridian lambdaI + Z W - W / 2, and the easting carries the zone
// number: E = Z * 10^6 + FE + (the transverse Mercator easting of the zone). The
// way back reads the zone from the easting, Z = floor((E - FE) / 10^6 + 1/2): the
// zone whose central easting Z * 10^6 + FE lies nearest.
//
// The transverse Mercator of every zone is one engine (the library's JHS one)
// with its central meridian at 0, fed with the longitude from the zone's central
// meridian.
//
// Parameters: latitude of natural origin, initial longitude, zone width
// (degrees, a whole fraction of 360), scale factor at natural origin, false
// easting and northing.
class CKvTransverseMercatorZoned
    : public CKvEngine<CKvTransverseMercatorZoned, CKvMethodProjection<CKvTransverseMercatorZoned>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    CKvTransverseMercatorZoned(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // Blocks of points through the zones' transverse Mercator in its batch form.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    // The initial longitude and the latitude of natural origin.
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    // From the western edge of the first zone to the eastern edge of the last,
    // between the latitudes 84 S and 84 N.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    // The zone of a longitude in [-180, 180] (1 .. zones), and the longitude from
    // its central meridian.
    int _zone(double lon, double* fromCentre) const;
    int _zoneAtEdge(double lon, double* fromCentre) const; // the general rule, next to an edge
    // The zone of a point, 0 for one without an image (NaN for both coordinates).
    int _forwardZone(double lon, double lat, double* fromCentre) const;
    int _inverseZone(double x, double y) const;
    // The longitude from the zone's central meridian, the poles and the guard.
    void _inverseFinish(int zone, double x, double y, double* lon, double* lat) const;
    double _centralMeridian(int zone) const { return m_lonI + zone * m_width - 0.5 * m_width; }

    CKvTransverseMercatorJHS m_tm; // central meridian 0, false easting 0
    double m_lat0, m_lonI, m_width, m_FE;
    int m_zones; // 360 / W
    bool m_valid;
};

#endif
