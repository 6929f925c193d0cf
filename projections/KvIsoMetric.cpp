#include "projections/KvIsoMetric.h"

#include <cmath>

// The default grid sets nothing; its results are unspecified until assigned.
CKvIsoMetric::CKvIsoMetric()
    : m_x0(0.0), m_y0(0.0), m_X0(0.0), m_Y0(0.0), m_ux(0.0), m_uy(0.0), m_vx(0.0), m_vy(0.0), m_su(0.0), m_sv(0.0)
{
}

CKvIsoMetric::CKvIsoMetric(double x0, double y0, double xA, double yA, double xB, double yB, double X0, double Y0,
                           double XA, double YB)
    : m_x0(x0), m_y0(y0), m_X0(X0), m_Y0(Y0)
{
    // A point on top of the origin gives a zero length and NaN results, by design
    // of the formula: there is no axis to project onto.
    const double lengthA = std::sqrt((xA - x0) * (xA - x0) + (yA - y0) * (yA - y0));
    m_ux = (xA - x0) / lengthA;
    m_uy = (yA - y0) / lengthA;
    const double lengthB = std::sqrt((xB - x0) * (xB - x0) + (yB - y0) * (yB - y0));
    m_vx = (xB - x0) / lengthB;
    m_vy = (yB - y0) / lengthB;
    m_su = (XA - X0) / lengthA;
    m_sv = (YB - Y0) / lengthB;
}

void CKvIsoMetric::Geo2Proj(double, double, double*, double*) const {}

void CKvIsoMetric::Proj2Geo(double x, double y, double* out1, double* out2) const
{
    const double dx = x - m_x0;
    const double dy = y - m_y0;
    *out1 = (m_ux * dx + m_uy * dy) * m_su + m_X0;
    *out2 = (m_vx * dx + m_vy * dy) * m_sv + m_Y0;
}
