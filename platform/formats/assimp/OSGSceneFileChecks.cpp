/// \file
/// Checks of STL and PLY files.

#include "OSGSceneFileChecks.h"

#include <cstring>
#include <sstream>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

struct PlyProperty
{
    std::size_t bytes = 0;      ///< of a value
    std::size_t countBytes = 0; ///< of a list's count; 0 where it is no list
    bool signedCount = false;
};

struct PlyElement
{
    std::string name;
    UInt64 count = 0;
    std::vector<PlyProperty> properties;
};

enum class PlyForm
{
    None,
    Ascii,
    LittleEndian,
    BigEndian
};

struct PlyHeader
{
    PlyForm form = PlyForm::None;
    std::vector<PlyElement> elements;
    std::size_t end = 0; ///< where the data begin
};

/// Bytes of a value of that type; 0 for no type.
std::size_t typeBytes(const std::string &type)
{
    static const struct
    {
        const Char8 *name;
        std::size_t bytes;
    } types[] = {{"char", 1},  {"uchar", 1},   {"int8", 1},   {"uint8", 1},  {"short", 2}, {"ushort", 2},
                 {"int16", 2}, {"uint16", 2},  {"int", 4},    {"uint", 4},   {"int32", 4}, {"uint32", 4},
                 {"float", 4}, {"float32", 4}, {"double", 8}, {"float64", 8}};
    for(const auto &known : types)
        if(type == known.name)
            return known.bytes;
    return 0;
}

std::string addPlyProperty(std::istringstream &words, PlyElement &element)
{
    PlyProperty property;
    std::string type, name;
    words >> type;
    if(type == "list")
    {
        std::string countType;
        words >> countType >> type;
        property.countBytes = typeBytes(countType);
        property.signedCount = countType[0] != 'u';
        if(property.countBytes == 0 || property.countBytes > 4 || countType[0] == 'f')
            return "the PLY header counts a list in the type \"" + countType + "\"";
    }
    property.bytes = typeBytes(type);
    if(property.bytes == 0)
        return "the PLY header has the unknown type \"" + type + "\"";
    element.properties.push_back(property);
    return std::string();
}

std::string readPlyHeader(const UInt8 *bytes, std::size_t size, PlyHeader &header)
{
    const std::string unfinished = "the PLY header has no end";
    if(size < 4 || std::memcmp(bytes, "ply", 3) != 0)
        return "is no PLY file";
    for(std::size_t at = 0; at < size;)
    {
        std::size_t end = at;
        while(end < size && bytes[end] != '\n' && bytes[end] != '\r')
            ++end;
        if(end == size)
            return unfinished;
        std::istringstream words(std::string(reinterpret_cast<const char *>(bytes + at), end - at));
        at = end + 1;
        if(bytes[end] == '\r' && at < size && bytes[at] == '\n')
            ++at;

        std::string word, fault;
        words >> word;
        if(word == "format")
        {
            words >> word;
            header.form = word == "ascii"                  ? PlyForm::Ascii
                          : word == "binary_little_endian" ? PlyForm::LittleEndian
                          : word == "binary_big_endian"    ? PlyForm::BigEndian
                                                           : PlyForm::None;
        }
        else if(word == "element")
        {
            PlyElement element;
            if(!(words >> element.name >> element.count) || words.str().find('-') != std::string::npos ||
               element.count > 0xFFFFFFFFu)
                return "the PLY header has an element without a proper count";
            header.elements.push_back(element);
        }
        else if(word == "property")
        {
            if(header.elements.empty())
                return "the PLY header has a property ahead of all elements";
            fault = addPlyProperty(words, header.elements.back());
            if(!fault.empty())
                return fault;
        }
        else if(word == "end_header")
        {
            header.end = at;
            return header.form == PlyForm::None ? "the PLY header names no known format" : std::string();
        }
    }
    return unfinished;
}

std::string tooShort(const PlyElement &element)
{
    return "the PLY header promises " + std::to_string(element.count) + " of \"" + element.name +
           "\", the file ends before";
}

/// A list's count; negative where it is.
Int64 listCount(const UInt8 *bytes, const PlyProperty &property, bool bigEndian)
{
    UInt64 value = 0;
    for(std::size_t i = 0; i < property.countBytes; ++i)
        value |= UInt64(bytes[bigEndian ? property.countBytes - 1 - i : i]) << (8 * i);
    const UInt64 sign = UInt64(1) << (8 * property.countBytes - 1);
    return property.signedCount && (value & sign) ? -1 : Int64(value);
}

std::string followBinary(const PlyHeader &header, const UInt8 *bytes, std::size_t size)
{
    UInt64 at = header.end;
    for(const PlyElement &element : header.elements)
    {
        UInt64 fixed = 0;
        bool lists = false;
        for(const PlyProperty &property : element.properties)
        {
            fixed += property.countBytes > 0 ? property.countBytes : property.bytes;
            lists = lists || property.countBytes > 0;
        }
        // Elements of no bytes would be counted for ever.
        if(element.count > 0 && fixed == 0)
            return "the PLY header has no properties for \"" + element.name + "\"";
        if(element.count * fixed > size - at)
            return tooShort(element);
        if(!lists)
        {
            at += element.count * fixed;
            continue;
        }
        for(UInt64 i = 0; i < element.count; ++i)
            for(const PlyProperty &property : element.properties)
            {
                UInt64 need = property.countBytes > 0 ? property.countBytes : property.bytes;
                if(need > size - at)
                    return tooShort(element);
                if(property.countBytes > 0)
                {
                    const Int64 count = listCount(bytes + at, property, header.form == PlyForm::BigEndian);
                    if(count < 0 || need + UInt64(count) * property.bytes > size - at)
                        return tooShort(element);
                    need += UInt64(count) * property.bytes;
                }
                at += need;
            }
    }
    return std::string();
}

bool isBlank(UInt8 c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Words between blanks.
class Words
{
  public:
    Words(const UInt8 *bytes, std::size_t begin, std::size_t end) : _bytes(bytes), _at(begin), _end(end) {}

    /// Goes to the next word; false where there is none.
    bool next()
    {
        while(_at < _end && isBlank(_bytes[_at]))
            ++_at;
        _begin = _at;
        while(_at < _end && !isBlank(_bytes[_at]))
            ++_at;
        return _begin < _at;
    }
    /// The word as a whole number; beyond all counts where it is none.
    UInt64 asCount() const
    {
        UInt64 count = 0;
        for(std::size_t i = _begin; i < _at; ++i)
        {
            if(_bytes[i] < '0' || _bytes[i] > '9' || count > 0xFFFFFFFFu)
                return ~UInt64(0);
            count = 10 * count + UInt64(_bytes[i] - '0');
        }
        return count;
    }
    std::size_t left() const { return _end - _at; }

  private:
    const UInt8 *_bytes;
    std::size_t _at, _end, _begin = 0;
};

std::string followText(const PlyHeader &header, const UInt8 *bytes, std::size_t size)
{
    Words words(bytes, header.end, size);
    for(const PlyElement &element : header.elements)
    {
        if(element.count > 0 && element.properties.empty())
            return "the PLY header has no properties for \"" + element.name + "\"";
        for(UInt64 i = 0; i < element.count; ++i)
            for(const PlyProperty &property : element.properties)
            {
                if(!words.next())
                    return tooShort(element);
                const UInt64 count = property.countBytes > 0 ? words.asCount() : 0;
                if(count > words.left() / 2)
                    return tooShort(element);
                for(UInt64 value = 0; value < count; ++value)
                    if(!words.next())
                        return tooShort(element);
            }
    }
    return std::string();
}

/// Whether a file of text ends as STL does, so that a part that is missing is noticed.
bool endsAsSolid(const UInt8 *bytes, std::size_t size)
{
    static const Char8 last[] = "endsolid";
    const std::size_t length = sizeof(last) - 1, reach = size < 4096 ? size : 4096;
    for(std::size_t at = size - reach; at + length <= size; ++at)
    {
        std::size_t same = 0;
        while(same < length && (bytes[at + same] | 0x20) == last[same])
            ++same;
        if(same == length)
            return true;
    }
    return false;
}

} // namespace

std::string findStlFault(const UInt8 *bytes, std::size_t size)
{
    std::size_t text = 0;
    while(text < size &&
          (bytes[text] == ' ' || bytes[text] == '\t' || bytes[text] == '\r' || bytes[text] == '\n'))
        ++text;
    const bool solid = size >= text + 5 && std::memcmp(bytes + text, "solid", 5) == 0;
    const std::string cutText = "the STL text has no \"endsolid\" at its end";
    if(size < 84)
        return !solid ? "is no STL file" : endsAsSolid(bytes, size) ? std::string() : cutText;
    UInt64 count = 0;
    for(std::size_t i = 0; i < 4; ++i)
        count |= UInt64(bytes[80 + i]) << (8 * i);
    if(84 + 50 * count == size)
        return std::string();
    if(solid)
        return endsAsSolid(bytes, size) ? std::string() : cutText;
    const UInt64 held = (size - 84) / 50;
    return "the STL header promises " + std::to_string(count) + " triangles, the file holds " +
           std::to_string(held) + (84 + 50 * held == size ? "" : " and a part of one");
}

std::string findPlyFault(const UInt8 *bytes, std::size_t size)
{
    PlyHeader header;
    const std::string fault = readPlyHeader(bytes, size, header);
    if(!fault.empty())
        return fault;
    return header.form == PlyForm::Ascii ? followText(header, bytes, size)
                                         : followBinary(header, bytes, size);
}

OSG_END_NAMESPACE
