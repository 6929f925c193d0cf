#ifndef KVCART_PROJECTIONS_KVLAMBERT2SPBELGIUM_H
#define KVCART_PROJECTIONS_KVLAMBERT2SPBELGIUM_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertConic.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Lambert Conic Conformal (2SP Belgium), EPSG method 9803, the form of Belge
// Lambert 72 until 2000: the two-parallel Lambert conformal conic of method
// 9802 with the grid turned about the cone's apex by alpha = 29.2985 seconds
// (IOGP Guidance Note 7-2):
//   E = EF + r sin(theta - alpha),   N = NF + rF - r cos(theta - alpha),
//   lambda = (theta' + alpha) / n + lambdaF.
// Since theta = n (lambda - lambdaF), the turn is the cone of method 9802 about
// the meridian lambdaF + alpha / n: CKvLambert2SP, so drawn. (EPSG:31370 is
// Belge Lambert 72 so re-expressed in 2000.) Longitudes are points of the
// earth (540 is 180), the pole the cone opens away from gives NaN and the
// other one the apex exactly.
class CKvLambert2SPBelgium : public CKvEngine<CKvLambert2SPBelgium, CKvMethodProjection<CKvLambert2SPBelgium>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // The turn of the grid, in degrees.
    static constexpr double Alpha = 29.2985 / 3600.0;

    // parameters: first and second standard parallel, the false origin's
    // longitude and latitude (degrees), its easting and northing (metres).
    CKvLambert2SPBelgium(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // The false origin as given (not the turned cone's meridian).
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // Why a set of parameters makes no cone, "" when it does.
    static std::string Problem(const double* parameters);
    // The meridian about which the unturned cone of method 9802 draws the same
    // grid: lambdaF + alpha / n, n the cone constant of the two parallels.
    static double TurnedMeridian(double lambdaF, double coneConstant) { return lambdaF + Alpha / coneConstant; }

private:
    static CKvLambert2SP _cone(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid,
                               bool usable);

    CKvLambert2SP m_cone; // method 9802 about the turned meridian
    double m_lonF, m_latF, m_phi1, m_phi2, m_FE, m_FN;
    double m_apexPole; // the pole on the cone's apex, of the sign of n (degrees)
    double m_lonTurned; // lambdaF + alpha / n
    double m_sign;      // the sign of n
    double m_cosEdge;   // cos(pi n), the sheet's edge
    CKvLambertConic::SSphereCone m_sphere; // the cone's path on the sphere
};

#endif
