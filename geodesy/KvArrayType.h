#ifndef KVCART_GEODESY_KVARRAYTYPE_H
#define KVCART_GEODESY_KVARRAYTYPE_H

// The shape side of the array templates: how many dimensions an array has.
class CKvArrayType
{
public:
    virtual ~CKvArrayType() = default;
    virtual int Dim() const = 0;
};

#endif
