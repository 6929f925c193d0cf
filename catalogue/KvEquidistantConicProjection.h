#ifndef KVCART_CATALOGUE_KVEQUIDISTANTCONICPROJECTION_H
#define KVCART_CATALOGUE_KVEQUIDISTANTCONICPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Equidistant conic with two standard parallels.
class CKvEquidistantConicProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvEquidistantConicProjection();
    CKvEquidistantConicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvEquidistantConicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                  double parallel1, double parallel2, double centralMeridian, double originLatitude,
                                  double falseEasting, double falseNorthing);
    // parameters: 6 values in stored order, or null for zeros
    CKvEquidistantConicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                  const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetParallel1() const { return _param(0); }
    void SetParallel1(double value) { _setParam(0, value); }
    double GetParallel2() const { return _param(1); }
    void SetParallel2(double value) { _setParam(1, value); }
    double GetCentralMeridian() const { return _param(2); }
    void SetCentralMeridian(double value) { _setParam(2, value); }
    double GetOriginLatitude() const { return _param(3); }
    void SetOriginLatitude(double value) { _setParam(3, value); }
    double GetFalseEasting() const { return _param(4); }
    void SetFalseEasting(double value) { _setParam(4, value); }
    double GetFalseNorthing() const { return _param(5); }
    void SetFalseNorthing(double value) { _setParam(5, value); }
};

#endif
