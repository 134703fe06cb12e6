/// \file
/// The text form of the values that fields hold, the same under every locale.

#include "OSGFieldText.h"

#include <charconv>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

// The C library's tests of characters go by the locale; these don't.
bool isSeparator(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v' || c == ',';
}

bool isWordChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool endsValue(char c)
{
    return c == '\0' || isSeparator(c) || std::strchr(")]};", c) != nullptr;
}

const Char8 *skipSeparators(const Char8 *in)
{
    while(isSeparator(*in))
        ++in;
    return in;
}

const Char8 *wordEnd(const Char8 *in)
{
    while(isWordChar(*in))
        ++in;
    return in;
}

} // namespace

template <class T>
bool getNumberFromText(const Char8 *&in, T &out)
{
    if(in == nullptr)
        return false;
    const Char8 *first = skipSeparators(in);
    if(*first == '+' && first[1] != '-')
        ++first;
    const Char8 *last = first;
    while(!endsValue(*last))
        ++last;

    T value{};
    const std::from_chars_result result = std::from_chars(first, last, value);
    if(result.ec != std::errc() || result.ptr != last)
        return false;
    out = value;
    in = last;
    return true;
}

template <class T>
void putNumberToText(T value, std::string &out)
{
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof(text), value);
    out.append(text, result.ptr);
}

#define OSG_NUMBER_TEXT(T)                                                                    \
    template OSG_BASELIB_DLLMAPPING bool getNumberFromText<T>(const Char8 *&in, T &out); \
    template OSG_BASELIB_DLLMAPPING void putNumberToText<T>(T value, std::string &out);

OSG_NUMBER_TEXT(Int8)
OSG_NUMBER_TEXT(UInt8)
OSG_NUMBER_TEXT(Int16)
OSG_NUMBER_TEXT(UInt16)
OSG_NUMBER_TEXT(Int32)
OSG_NUMBER_TEXT(UInt32)
OSG_NUMBER_TEXT(Int64)
OSG_NUMBER_TEXT(UInt64)
OSG_NUMBER_TEXT(Real32)
OSG_NUMBER_TEXT(Real64)

#undef OSG_NUMBER_TEXT

bool getBoolFromText(const Char8 *&in, bool &out)
{
    if(in == nullptr)
        return false;
    const Char8 *cursor = in;
    std::string word;
    if(getWordFromText(cursor, word))
    {
        for(char &c : word)
            c = lower(c);
        if(word == "true" || word == "false")
        {
            out = word == "true";
            in = cursor;
            return true;
        }
    }
    Int64 number = 0;
    if(!getNumberFromText(in, number))
        return false;
    out = number != 0;
    return true;
}

bool getStringFromText(const Char8 *&in, std::string &out)
{
    if(in == nullptr)
        return false;
    const Char8 *cursor = skipSeparators(in);
    if(*cursor != '"')
    {
        out = in;
        in += out.size();
        return true;
    }

    std::string text;
    for(++cursor; *cursor != '"'; ++cursor)
    {
        if(*cursor == '\\' && (cursor[1] == '"' || cursor[1] == '\\'))
            ++cursor;
        if(*cursor == '\0')
            return false;
        text += *cursor;
    }
    out = text;
    in = cursor + 1;
    return true;
}

void putStringToText(const std::string &value, std::string &out)
{
    out += '"';
    for(const char c : value)
    {
        if(c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    out += '"';
}

bool getWordFromText(const Char8 *&in, std::string &out)
{
    if(in == nullptr)
        return false;
    const Char8 *first = skipSeparators(in);
    const Char8 *last = wordEnd(first);
    if(last == first || !endsValue(*last))
        return false;
    out.assign(first, last);
    in = last;
    return true;
}

OSG_END_NAMESPACE
