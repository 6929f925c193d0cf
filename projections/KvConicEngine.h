#ifndef KVCART_PROJECTIONS_KVCONICENGINE_H
#define KVCART_PROJECTIONS_KVCONICENGINE_H

#include "coordsys/KvMapProjection.h"
#include "projections/KvConicVariant.h"
#include "projections/KvProjectionEngine.h"

// An engine that keeps its mathematics in a sphere and an ellipsoid variant and
// forwards to the one its ellipsoid selects: an inverse flattening of exactly 0
// takes the sphere. Without a known ellipsoid there is no variant, and the
// conversions leave their outputs as they were.
template <class TEngine, class TDefinition, class TSphere, class TEllipsoid>
class CKvConicEngine : public CKvEngine<TEngine, TDefinition>
{
public:
    enum EVariant
    {
        eNoVariant = 0,
        eEllipsoidVariant = 1,
        eSphereVariant = 2
    };

    CKvConicEngine(const CKvConicEngine& other)
        : CKvEngine<TEngine, TDefinition>(other), m_pVariant(other.m_pVariant ? other.m_pVariant->Clone() : nullptr),
          m_nVariant(other.m_nVariant)
    {
    }
    CKvConicEngine& operator=(const CKvConicEngine&) = delete;
    ~CKvConicEngine() override { delete m_pVariant; }

    void Geo2Proj(double lon, double lat, double* x, double* y) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->Geo2Proj(lon, lat, x, y);
    }
    void Proj2Geo(double x, double y, double* lon, double* lat) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->Proj2Geo(x, y, lon, lat);
    }
    void GetOrigin(double* x, double* y) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->GetOrigin(x, y);
        else
            CKvProjection::GetOrigin(x, y);
    }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override
    {
        if (m_pVariant != nullptr)
            m_pVariant->GetDefaultArea(x1, y1, x2, y2);
    }
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override
    {
        return m_pVariant != nullptr && m_pVariant->GetAnonymousEllipsoid(ellipsoid);
    }
    double GetConvergence(double lon, double lat) const override { return this->_numericConvergence(lon, lat); }

    EVariant GetVariant() const { return m_nVariant; }

protected:
    // From a definition: the ellipsoid comes from the catalogue by its identifier.
    explicit CKvConicEngine(const TDefinition& definition) : CKvEngine<TEngine, TDefinition>(definition)
    {
        const std::string id = definition.GetEllipsoidID();
        const CKvEllipsoid* ellipsoid = CKvMapProjection::EllipsoidFromID(id.c_str());
        if (ellipsoid != nullptr)
            _createVariant(definition.GetParallel1(), definition.GetParallel2(), definition.GetCentralMeridian(),
                           definition.GetOriginLatitude(), definition.GetFalseEasting(), definition.GetFalseNorthing(),
                           *ellipsoid);
    }

    CKvConicEngine(const char* name, double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                   double falseNorthing, const CKvEllipsoid& ellipsoid)
        : CKvEngine<TEngine, TDefinition>(name, ellipsoid)
    {
        _createVariant(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid);
    }

private:
    void _createVariant(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                        double falseNorthing, const CKvEllipsoid& ellipsoid)
    {
        if (ellipsoid.GetInvFlatness() == 0.0) {
            m_pVariant = new TSphere(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid);
            m_nVariant = eSphereVariant;
        } else {
            m_pVariant = new TEllipsoid(phi1, phi2, lambda0, phi0, falseEasting, falseNorthing, ellipsoid);
            m_nVariant = eEllipsoidVariant;
        }
    }

    CKvConicVariant* m_pVariant = nullptr;
    EVariant m_nVariant = eNoVariant;
};

#endif
