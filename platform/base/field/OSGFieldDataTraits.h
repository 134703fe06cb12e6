#ifndef _OSGFIELDDATATRAITS_H_
#define _OSGFIELDDATATRAITS_H_

/// \file
/// What a field template asks of the type that it holds: names, default, text and binary form.

#include <string>

#include "OSGBaseTypes.h"
#include "OSGDataType.h"
#include "OSGField.h"

OSG_BEGIN_NAMESPACE

/// Specialised for every type that a field can hold. Members of a specialisation: `_type`, `getType`, `getSName`,
/// `getMName`, `getDefault`, `getFromString`, `putToString`, `getBinSize`, `copyToBin`, `copyFromBin`, the last three
/// for one value and for an array of `n`.
template <class T>
struct FieldDataTraits;

/// The text conversions of a type that has no text form.
template <class T>
struct ErrorFromToString
{
    /// Logs that there is no such conversion. False.
    static bool getFromString(T &, const Char8 *&)
    {
        logNoConversionFromString();
        return false;
    }

    /// Logs that there is no such conversion, and leaves the text alone.
    static void putToString(const T &, std::string &) { logNoConversionToString(); }
};

OSG_END_NAMESPACE

#endif
