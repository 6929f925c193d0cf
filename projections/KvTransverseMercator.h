#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATOR_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATOR_H

#include "catalogue/KvTransverseMercatorProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Transverse Mercator in the complex Gauss-Krüger formulation (Poder and
// Engsager): geodetic to Gaussian latitude by a trigonometric series, Krüger's
// series to n^4 summed as a complex Clenshaw sum. A complete alternative to the
// JHS engine; the library's definitions create the JHS one.
class CKvTransverseMercator : public CKvEngine<CKvTransverseMercator, CKvTransverseMercatorProjection>
{
public:
    explicit CKvTransverseMercator(const CKvTransverseMercatorProjection* definition);
    CKvTransverseMercator(const std::string& name, double k0, double centralMeridian, double originLatitude,
                          double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    bool IsLocal() const override { return m_bLocal; }
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    double GetScaleFactor(double lon, double lat) const;

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
    void _Coeffs();
    // sum over k = 1..count of c[k] sin(k x), by Clenshaw's recurrence, from
    // sin x and cos x
    static double _Csin(const double* c, int count, double sinX, double cosX);
    // the complex sum of c[k] sin(k (u + i v)); real part to du, imaginary to dv,
    // from sin u, cos u, sinh v and cosh v
    static void _Cksin(const double* c, int count, double sinU, double cosU, double sinhV, double coshV, double& du,
                       double& dv);
    void _Geo2Proj(double lon, double lat, double X0, double Y0, double* x, double* y) const;
    void _Proj2Geo(double x, double y, double X0, double Y0, double* lon, double* lat) const;
    double _radius() const;

    double m_a, m_b, m_k0, m_f, m_FE, m_FN;
    double m_lambda0, m_phi0; // degrees
    double m_n, m_Q;
    double m_y0; // the northing of the origin's parallel, FN aside
    double m_cbg[5], m_cgb[5], m_gtu[5], m_gut[5]; // elements 1..4 used
    bool m_bLocal;
};

#endif
