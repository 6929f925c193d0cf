#ifndef KVCART_CATALOGUE_KVKROVAKPROJECTION_H
#define KVCART_CATALOGUE_KVKROVAKPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Krovak oblique conformal conic, with the axis scales and rotation that orient its grid.
class CKvKrovakProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvKrovakProjection();
    CKvKrovakProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvKrovakProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                        double scaleAtPseudoParallel, double pseudoParallel, double centerLongitude,
                        double centerLatitude, double azimuth, double xYPlaneRotation, double xScale, double yScale,
                        double falseEasting, double falseNorthing);
    // parameters: 10 values in stored order, or null for zeros
    CKvKrovakProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                        const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetScaleAtPseudoParallel() const { return _param(0); }
    void SetScaleAtPseudoParallel(double value) { _setParam(0, value); }
    double GetPseudoParallel() const { return _param(1); }
    void SetPseudoParallel(double value) { _setParam(1, value); }
    double GetCenterLongitude() const { return _param(2); }
    void SetCenterLongitude(double value) { _setParam(2, value); }
    double GetCenterLatitude() const { return _param(3); }
    void SetCenterLatitude(double value) { _setParam(3, value); }
    double GetAzimuth() const { return _param(4); }
    void SetAzimuth(double value) { _setParam(4, value); }
    double GetXYPlaneRotation() const { return _param(5); }
    void SetXYPlaneRotation(double value) { _setParam(5, value); }
    double GetXScale() const { return _param(6); }
    void SetXScale(double value) { _setParam(6, value); }
    double GetYScale() const { return _param(7); }
    void SetYScale(double value) { _setParam(7, value); }
    double GetFalseEasting() const { return _param(8); }
    void SetFalseEasting(double value) { _setParam(8, value); }
    double GetFalseNorthing() const { return _param(9); }
    void SetFalseNorthing(double value) { _setParam(9, value); }
};

#endif
