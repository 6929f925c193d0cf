#ifndef KVCART_PROJECTIONS_KVNEWZEALANDMAPGRID_H
#define KVCART_PROJECTIONS_KVNEWZEALANDMAPGRID_H

#include "catalogue/KvNewZealandMapGridProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// The New Zealand Map Grid (IOGP Guidance Note 7-2, method 9811; Reilly, NZ
// Department of Lands and Survey Technical Circular 1973/32): a complex
// polynomial of the isometric latitude and longitude offsets, with the published
// coefficients. The inverse refines the polynomial inverse by Newton-Raphson.
class CKvNewZealandMapGrid : public CKvEngine<CKvNewZealandMapGrid, CKvNewZealandMapGridProjection>
{
public:
    explicit CKvNewZealandMapGrid(const CKvNewZealandMapGridProjection* definition);
    // longitude and latitude of the origin (degrees), FE, FN.
    CKvNewZealandMapGrid(const std::string& name, double originLongitude, double originLatitude, double falseEasting,
                         double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lambda0, m_phi0, m_FE, m_FN; // origin in degrees
};

#endif
