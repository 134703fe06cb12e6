/// \file
/// Transfer functions in text files.

#include "TransferFunctionFile.h"

#include "NumberText.h"
#include "OptionTexts.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace viewer
{

namespace
{

/// Far above any list that a person or a program writes for 65536 entries.
constexpr long maxFileBytes = 16 << 20;
constexpr double maxPoints = 65536;

/// The words of a text, each with its line.
class Words
{
public:
    explicit Words(const std::string &text) : _text(text) {}

    /// The next word, or "" at the end.
    std::string next()
    {
        while (_at < _text.size() && isSpace(_text[_at]))
        {
            _line += _text[_at] == '\n';
            ++_at;
        }
        const std::size_t begin = _at;
        while (_at < _text.size() && !isSpace(_text[_at]))
        {
            ++_at;
        }
        return _text.substr(begin, _at - begin);
    }

    /// The line of the word that came last, from 1 on.
    long line() const { return _line; }

private:
    static bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

    const std::string &_text;
    std::size_t _at = 0;
    long _line = 1;
};

/// A word as a message may show it: short, printable.
std::string shown(const std::string &word)
{
    std::string result = word.substr(0, 40);
    std::replace_if(
        result.begin(), result.end(), [](unsigned char c) { return c < 32 || c > 126; }, '?');
    return "'" + result + (word.size() > 40 ? "...'" : "'");
}

class Reader
{
public:
    Reader(const std::string &text, const std::string &name) : _words(text), _name(name) {}

    TransferFunctionText read()
    {
        TransferFunctionText result;
        std::vector<std::vector<float>> opacity;
        std::vector<std::vector<float>> color;
        if (list("opacity", {"position", "opacity"}, opacity) &&
            list("colour", {"position", "red", "green", "blue"}, color))
        {
            const std::string rest = _words.next();
            if (!rest.empty())
            {
                fail(shown(rest) + " stands behind the last colour point");
            }
        }
        if (!_error.empty())
        {
            result.error = _error;
            return result;
        }
        for (const std::vector<float> &p : opacity)
        {
            result.points.opacity.push_back({p[0], p[1]});
        }
        for (const std::vector<float> &p : color)
        {
            result.points.color.push_back({p[0], p[1], p[2], p[3]});
        }
        if (opacity.back()[0] < 1.0f)
        {
            result.warning =
                _name + ": the opacity points end below position 1, so the last opacity holds for all values";
        }
        return result;
    }

private:
    bool fail(const std::string &what)
    {
        _error = _name + ":" + std::to_string(_words.line()) + ": " + what;
        return false;
    }

    /// A count, and as many points of as many numbers as there are names.
    bool list(const std::string &kind, const std::vector<std::string> &names,
              std::vector<std::vector<float>> &points)
    {
        const std::string word = _words.next();
        if (word.empty())
        {
            return fail("the file ends where the number of " + kind + " points should be");
        }
        double count = 0.0;
        if (!numberFrom(word, count) || count != std::floor(count))
        {
            return fail(shown(word) + " is not a number of " + kind + " points");
        }
        if (count < 1.0 || count > maxPoints)
        {
            return fail(shown(word) + " " + kind + " points, there must be 1 to 65536");
        }

        for (long i = 0; i < static_cast<long>(count); ++i)
        {
            const std::string which = kind + " point " + std::to_string(i + 1);
            std::vector<float> point;
            for (const std::string &name : names)
            {
                float value = 0.0f;
                if (!member(name + " of " + which, value))
                {
                    return false;
                }
                point.push_back(value);
                if (point.size() == 1 && !points.empty() && value < points.back()[0])
                {
                    return fail("the position of " + which + " is below that of the point ahead of it");
                }
            }
            points.push_back(point);
        }
        return true;
    }

    bool member(const std::string &what, float &value)
    {
        const std::string word = _words.next();
        if (word.empty())
        {
            return fail("the file ends where the " + what + " should be");
        }
        double number = 0.0;
        if (!numberFrom(word, number))
        {
            return fail("the " + what + " is " + shown(word) + ", not a number");
        }
        if (number < 0.0 || number > 1.0)
        {
            return fail("the " + what + " is " + shown(word) + ", it must lie in 0 to 1");
        }
        value = static_cast<float>(number);
        return true;
    }

    Words _words;
    std::string _name;
    std::string _error;
};

} // namespace

TransferFunctionText parseTransferFunction(const std::string &text, const std::string &name)
{
    return Reader(text, name).read();
}

TransferFunctionText readTransferFunction(const std::string &fileName)
{
    TransferFunctionText failed;
    struct stat about = {};
    if (stat(fileName.c_str(), &about) != 0)
    {
        failed.error = fileName + ": " + std::strerror(errno);
        return failed;
    }
    if (!S_ISREG(about.st_mode))
    {
        failed.error = fileName + ": is not a file";
        return failed;
    }
    if (about.st_size > maxFileBytes)
    {
        failed.error = fileName + ": is too large for a transfer function";
        return failed;
    }
    std::ifstream file(fileName, std::ios::binary);
    if (!file)
    {
        failed.error = fileName + ": " + std::strerror(errno);
        return failed;
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return parseTransferFunction(text, fileName);
}

std::string transferFunctionText(const TransferPoints &points)
{
    std::string text = std::to_string(points.opacity.size()) + "\n";
    for (const OpacityPoint &point : points.opacity)
    {
        text += numberText(point.position) + " " + numberText(point.opacity) + "\n";
    }
    text += std::to_string(points.color.size()) + "\n";
    for (const ColorPoint &point : points.color)
    {
        text += numberText(point.position) + " " + numberText(point.red) + " " + numberText(point.green) +
                " " + numberText(point.blue) + "\n";
    }
    return text;
}

} // namespace viewer
