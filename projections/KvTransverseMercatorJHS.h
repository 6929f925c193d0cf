#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATORJHS_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATORJHS_H

#include "catalogue/KvTransverseMercatorProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Transverse Mercator by the JHS 154 formulas (IOGP Guidance Note 7-2, method
// 9807): exact conformal latitude, Krüger's series to n^4 for the projection of
// the conformal sphere, and an iterated conformal latitude in the inverse. This is
// the engine every transverse Mercator definition creates.
class CKvTransverseMercatorJHS : public CKvEngine<CKvTransverseMercatorJHS, CKvTransverseMercatorProjection>
{
public:
    explicit CKvTransverseMercatorJHS(const CKvTransverseMercatorProjection* definition);
    // scale on the central meridian, central meridian and origin latitude in
    // degrees, false easting and northing in metres. An empty name means "NON-UTM".
    CKvTransverseMercatorJHS(const std::string& name, double k0, double centralMeridian, double originLatitude,
                             double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    bool IsLocal() const override { return m_bLocal; }
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    // Point scale factor, by the series formula kept as the catalogue has always had it.
    double GetScaleFactor(double lon, double lat) const;

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);

    double m_a, m_b, m_k0, m_f, m_FE, m_FN;
    double m_lambda0, m_phi0; // radians
    double m_e, m_n, m_A1;
    double m_h[4];  // forward series
    double m_hp[4]; // inverse series, subtracted
    double m_M0;
    bool m_bLocal;
};

#endif
