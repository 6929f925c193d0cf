#ifndef KVCART_COORDSYS_KVCARTOGRAPHY_H
#define KVCART_COORDSYS_KVCARTOGRAPHY_H

class CKvMapProjection;

// A local site grid on top of a map projection: its origin at a geographical
// point, its y axis turned by an orientation from true north (positive from
// north towards east). Local (x, y), projected (X, Y) and geographical
// coordinates convert into one another.
class CKvCartography
{
public:
    // "UTM" names the zone of lon0 (CKvMapProjection::UTMZoneName: 1 to 60, the
    // antimeridian in zone 1); any other text goes to the projection, which
    // throws std::out_of_range for a generic "UTM" it trims to, and for "UTM"
    // itself when lon0 is NaN or infinite and so has no zone.
    CKvCartography(const char* projection, double lon0, double lat0, double orientation);
    CKvCartography(const CKvMapProjection& projection, double lon0, double lat0, double orientation);
    // The copy builds its projection again from the projection string.
    CKvCartography(const CKvCartography& other);
    CKvCartography& operator=(const CKvCartography& other);
    virtual ~CKvCartography();

    // Still owned by this object.
    CKvMapProjection* GetProjection() const { return m_pProjection; }
    const char* GetProjectionName() const;
    const char* GetProjectionString() const;

    void Geo2Proj(double lon, double lat, double* X, double* Y) const;
    void Proj2Geo(double X, double Y, double* lon, double* lat) const;
    void Proj2Xy(double X, double Y, double* x, double* y) const;
    void Xy2Proj(double x, double y, double* X, double* Y) const;
    void Geo2Xy(double lon, double lat, double* x, double* y) const;
    void Xy2Geo(double x, double y, double* lon, double* lat) const;

    // The angle of the grid's y axis from grid north, degrees.
    double GetProjectionNorth() const { return m_projectionNorth; }
    // The angle of the grid's y axis from true north at a local point, degrees;
    // the orientation at the origin.
    double GetTrueNorth(double x, double y) const;
    // Projected coordinates of the other grid's projection into this one's; the
    // local origins and rotations take no part.
    void ConvertFrom(const CKvCartography& other, double X, double Y, double* X2, double* Y2) const;

    // (x, y) turned by angle degrees: xr = x cos a + y sin a, yr = -x sin a + y cos a.
    static void _csysrot(double x, double y, double angle, double* xr, double* yr);

protected:
    void _init(double lon0, double lat0, double orientation);
    void _copy(const CKvCartography& other);
    void _dealloc();

private:
    CKvMapProjection* m_pProjection;
    double m_originX;
    double m_originY;
    double m_projectionNorth;
    double m_cosine;
    double m_sine;
    double m_originLon;
    double m_originLat;
    double m_orientation;
};

#endif
