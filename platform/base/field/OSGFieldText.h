#ifndef _OSGFIELDTEXT_H_
#define _OSGFIELDTEXT_H_

/// \file
/// The text form of the values that fields hold, the same under every locale.

#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Reads one number and moves `in` behind it. White space and commas ahead of it are skipped; behind it there
/// must be another separator, one of `)]};` or the end. False, with both as they were, for anything else and
/// for a number that T can't hold, be it too large or too small. Real numbers may be written with or without
/// point and exponent, "inf" and "nan" as well. T is one of the sized integers, Real32 or Real64. `in` may be
/// null.
template <class T>
bool getNumberFromText(const Char8 *&in, T &out);

/// Appends the shortest text that reads back as the same number.
template <class T>
void putNumberToText(T value, std::string &out);

/// Reads "true" or "false" in any case, or a number (true unless it is 0); else as getNumberFromText.
OSG_BASELIB_DLLMAPPING bool getBoolFromText(const Char8 *&in, bool &out);

/// Reads a text in double quotes, in which a backslash goes ahead of a quote or backslash of the text itself,
/// and moves `in` behind the closing quote; white space and commas ahead of it are skipped. Without an
/// opening quote all that is left is the text, as it stands. False, with both as they were, if the closing
/// quote is missing or `in` is null.
OSG_BASELIB_DLLMAPPING bool getStringFromText(const Char8 *&in, std::string &out);

/// Appends the text in double quotes, as getStringFromText reads it.
OSG_BASELIB_DLLMAPPING void putStringToText(const std::string &value, std::string &out);

/// Reads a word of letters, digits and underscores; separators as with numbers.
OSG_BASELIB_DLLMAPPING bool getWordFromText(const Char8 *&in, std::string &out);

OSG_END_NAMESPACE

#endif
