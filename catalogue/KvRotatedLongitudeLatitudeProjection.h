#ifndef KVCART_CATALOGUE_KVROTATEDLONGITUDELATITUDEPROJECTION_H
#define KVCART_CATALOGUE_KVROTATEDLONGITUDELATITUDEPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Longitude/latitude about a displaced pole, as used by atmospheric model grids.
class CKvRotatedLongitudeLatitudeProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvRotatedLongitudeLatitudeProjection();
    CKvRotatedLongitudeLatitudeProjection(const std::string& name, const std::string& branch,
                                          const std::string& ellipsoidID);
    CKvRotatedLongitudeLatitudeProjection(const std::string& name, const std::string& branch,
                                          const std::string& ellipsoidID, double longitudeOfSouthPole,
                                          double latitudeOfSouthPole, double angleOfRotation);
    // parameters: 3 values in stored order, or null for zeros
    CKvRotatedLongitudeLatitudeProjection(const std::string& name, const std::string& branch,
                                          const std::string& ellipsoidID, const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetLongitudeOfSouthPole() const { return _param(0); }
    void SetLongitudeOfSouthPole(double value) { _setParam(0, value); }
    double GetLatitudeOfSouthPole() const { return _param(1); }
    void SetLatitudeOfSouthPole(double value) { _setParam(1, value); }
    double GetAngleOfRotation() const { return _param(2); }
    void SetAngleOfRotation(double value) { _setParam(2, value); }
    // The same three under the names the engine reads them by.
    double GetSouthPoleLongitude() const { return _param(0); }
    double GetSouthPoleLatitude() const { return _param(1); }
    double GetRotationAngle() const { return _param(2); }
};

#endif
