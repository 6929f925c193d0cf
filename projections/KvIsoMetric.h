#ifndef KVCART_PROJECTIONS_KVISOMETRIC_H
#define KVCART_PROJECTIONS_KVISOMETRIC_H

#include "projections/KvProjection.h"

// A local two-axis grid: a point of the input plane is projected onto two axis
// directions through an origin and scaled into an output plane. The axes need not
// be perpendicular and no skew correction is made. The grid has deliberately no
// inverse: Geo2Proj writes nothing. Abstract (no Clone); nothing creates it.
class CKvIsoMetric : public CKvProjection
{
public:
    CKvIsoMetric();
    // Input origin (x0, y0), point A on the first axis, point B on the second
    // axis, output origin (X0, Y0), the first output coordinate XA that A is to
    // receive and the second output coordinate YB that B is to receive.
    CKvIsoMetric(double x0, double y0, double xA, double yA, double xB, double yB, double X0, double Y0, double XA,
                 double YB);

    const char* GetName() const override { return "Isometric"; }
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* out1, double* out2) const override;

private:
    double m_x0, m_y0;
    double m_X0, m_Y0;
    double m_ux, m_uy; // unit vector of the first axis
    double m_vx, m_vy; // unit vector of the second axis
    double m_su, m_sv; // scales along the two axes
};

#endif
