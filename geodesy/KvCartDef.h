#ifndef KVCART_GEODESY_KVCARTDEF_H
#define KVCART_GEODESY_KVCARTDEF_H

// Enumerations shared by the geodetic classes.
class CKvCartDef
{
public:
    // Int-based, so that any integer brought in is a value of the type, which
    // the functions taking it check.
    enum ETypeOfDatumShift : int
    {
        eNoDatumShift = 0,
        eThreeParameters = 1,  // translation only
        eSevenParameters = 2   // Helmert: translation, rotation, scale
    };

    virtual ~CKvCartDef() = default;
};

#endif
