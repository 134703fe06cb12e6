#ifndef TESSALY_VIEW_NUMBERTEXT_H
#define TESSALY_VIEW_NUMBERTEXT_H

/// \file
/// Numbers in text that comes from people, whatever the locale.

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>

namespace viewer
{

/// Reads a number that is the whole of `text`, finite, with a point for decimals. False, with `value`
/// untouched, for anything else.
inline bool numberFrom(const std::string &text, double &value)
{
    const char *begin = text.data();
    const char *end = begin + text.size();
    if (end - begin > 1 && *begin == '+' && begin[1] != '-')
    {
        ++begin;
    }
    double number = 0.0;
    const std::from_chars_result result = std::from_chars(begin, end, number);
    if (begin == end || result.ec != std::errc() || result.ptr != end || !std::isfinite(number))
    {
        return false;
    }
    value = number;
    return true;
}

/// Reads just `count` numbers with commas in between.
inline bool numbersFrom(const std::string &text, double *values, std::size_t count)
{
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::size_t comma = text.find(',', at);
        const bool last = i + 1 == count;
        if (last != (comma == std::string::npos) || !numberFrom(text.substr(at, comma - at), values[i]))
        {
            return false;
        }
        at = comma + 1;
    }
    return true;
}

} // namespace viewer

#endif
