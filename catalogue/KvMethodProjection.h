#ifndef KVCART_CATALOGUE_KVMETHODPROJECTION_H
#define KVCART_CATALOGUE_KVMETHODPROJECTION_H

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvMapProjData.h"

#include <string>

// The definition of a method described wholly by its descriptor: the engine
// class TEngine holds the descriptor (TEngine::TypeInfo, with the method's WKT
// names, parameters and PROJ string) and is made from the name, the parameters
// in stored order (degrees, longitudes from Greenwich, metres) and the
// ellipsoid. Everything else (parameter files, WKT, PROJ strings, display) is
// the common definition's, driven by the descriptor.
template <class TEngine> class CKvMethodProjection : public CKvMapProjData
{
public:
    CKvMethodProjection() : CKvMapProjData(TEngine::TypeInfo, std::string(), std::string(), std::string(), nullptr) {}
    // parameters: TypeInfo.noOfParameters values in stored order, or null for zeros
    CKvMethodProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                        const double* parameters)
        : CKvMapProjData(TEngine::TypeInfo, name, branch, ellipsoidID, parameters)
    {
    }

    // An unknown ellipsoid identifier gives the engine no figure (every answer
    // NaN), as for every other type.
    CKvProjection* CreateProjection() const override
    {
        double values[MaxParameters] = {};
        for (int i = 0; i < GetNoOfParameters(); ++i)
            values[i] = _param(i);
        const CKvEllipsoid* ellipsoid =
            CKvCartSetup::Instance()->GetEllipsoidList().GetEllipsoid(GetEllipsoidID());
        return new TEngine(GetName(), values, ellipsoid != nullptr ? *ellipsoid : CKvEllipsoid());
    }
};

#endif
