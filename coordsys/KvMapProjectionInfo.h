#ifndef KVCART_COORDSYS_KVMAPPROJECTIONINFO_H
#define KVCART_COORDSYS_KVMAPPROJECTIONINFO_H

#include <string>

// The string of one coordinate system, carried by value; no parsing.
class CKvMapProjectionInfo
{
public:
    explicit CKvMapProjectionInfo(const char* projection) : m_projection(projection != nullptr ? projection : "") {}
    CKvMapProjectionInfo(const CKvMapProjectionInfo& other) = default;
    CKvMapProjectionInfo& operator=(const CKvMapProjectionInfo& other) = default;
    virtual ~CKvMapProjectionInfo() = default;

    std::string GetMapProjection() const { return m_projection; }

private:
    std::string m_projection;
};

#endif
