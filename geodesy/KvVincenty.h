#ifndef KVCART_GEODESY_KVVINCENTY_H
#define KVCART_GEODESY_KVVINCENTY_H

#include "catalogue/KvEllipsoid.h"

// Geodesics on one ellipsoid with Vincenty's series (T. Vincenty, "Direct and
// inverse solutions of geodesics on the ellipsoid with application of nested
// equations", Survey Review XXIII, 1975).
class CKvVincenty
{
public:
    explicit CKvVincenty(const CKvEllipsoid& ellipsoid);
    virtual ~CKvVincenty() = default;

    // Direct problem: from (lon1, lat1) along azimuth1 (degrees clockwise from
    // north) for distance metres. Writes the end point and the forward azimuth
    // there, in degrees. The end longitude is lon1 plus the longitude difference,
    // not wrapped into a fixed range.
    void GetPoint(double lon1, double lat1, double azimuth1, double distance, double& lon2, double& lat2,
                  double& azimuth2) const;

    // Inverse problem: not provided by this class. It returns at once and leaves
    // its outputs untouched; callers must not rely on them.
    void GetDistance(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth1,
                     double& azimuth2) const;

    // Vincenty's A and B series in u^2.
    double PolyA(double u2) const;
    double PolyB(double u2) const;

private:
    double m_a;   // semi-major axis
    double m_b;   // semi-minor axis
    double m_f;   // flattening, 0 for a sphere
    double m_ep2; // second eccentricity squared, (a^2 - b^2) / b^2
};

#endif
