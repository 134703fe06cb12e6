/// \file
/// The walk checks every length against the file; what elements mean is the codec's.

#include "OSGDICOMElements.h"

#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::uint32_t Undefined = 0xffffffffu;
constexpr int MaxDepth = 32;

constexpr std::uint32_t Item = 0xfffee000u;
constexpr std::uint32_t ItemEnd = 0xfffee00du;
constexpr std::uint32_t SequenceEnd = 0xfffee0ddu;
constexpr std::uint32_t Pixels = 0x7fe00010u;

struct Element
{
    std::uint32_t tag = 0;
    char representation[3] = "";
    std::uint32_t length = 0;
    std::size_t value = 0; ///< where it starts
};

class Walk
{
  public:
    Walk(const std::uint8_t *bytes, std::size_t size) : _bytes(bytes), _size(size) {}

    bool run(DICOMElements &elements, std::string &fault)
    {
        std::size_t at = 132;
        const bool done = walkMeta(at) && walkSet(at, _size, 0, _implicit, false, elements.set);
        fault = _fault;
        elements.syntax = _syntax;
        elements.bigEndian = _big;
        return done;
    }

  private:
    bool fail(std::size_t at, const char *what)
    {
        _fault = "byte " + std::to_string(at) + ": " + what;
        return false;
    }

    std::uint32_t number(std::size_t at, int count, bool big) const
    {
        std::uint32_t value = 0;
        for(int i = 0; i < count; ++i)
            value |= std::uint32_t(_bytes[at + std::size_t(i)]) << (8 * (big ? count - 1 - i : i));
        return value;
    }

    std::uint32_t tagAt(std::size_t at, bool big) const
    {
        return (number(at, 2, big) << 16) | number(at + 2, 2, big);
    }

    bool readElement(std::size_t at, bool implicit, bool big, Element &element)
    {
        if(_size - at < 8)
            return fail(_size, "the file ends here");
        element.tag = tagAt(at, big);
        element.representation[0] = 0;
        element.value = at + 8;
        if(implicit || (element.tag >> 16) == 0xfffe)
            element.length = number(at + 4, 4, big);
        else
        {
            std::memcpy(element.representation, _bytes + at + 4, 2);
            for(int i = 0; i < 2; ++i)
                if(element.representation[i] < 'A' || element.representation[i] > 'Z')
                    return fail(at + 4, "no value representation");
            if(isLong(element.representation))
            {
                if(_size - at < 12)
                    return fail(_size, "the file ends here");
                element.length = number(at + 8, 4, big);
                element.value = at + 12;
            }
            else
                element.length = number(at + 6, 2, big);
        }
        if(element.length != Undefined && element.length > _size - element.value)
            return fail(at, ("an element of " + std::to_string(element.length) +
                             " bytes starts here, but the file ends at byte " + std::to_string(_size))
                                .c_str());
        return true;
    }

    static bool isLong(const char *representation)
    {
        static const char *const names[] = {"OB", "OD", "OF", "OL", "OV", "OW", "SQ",
                                            "SV", "UC", "UN", "UR", "UT", "UV"};
        for(const char *name : names)
            if(std::strcmp(representation, name) == 0)
                return true;
        return false;
    }

    /// The elements of group 2, which tell how the others are written.
    bool walkMeta(std::size_t &at)
    {
        std::string &syntax = _syntax;
        while(_size - at >= 8 && number(at, 2, false) == 2)
        {
            Element element;
            if(!readElement(at, false, false, element))
                return false;
            if(element.length == Undefined)
                return fail(at, "an element of the head without a length");
            if(element.tag == 0x00020010u)
                syntax.assign(reinterpret_cast<const char *>(_bytes + element.value), element.length);
            at = element.value + element.length;
        }
        while(!syntax.empty() && (syntax.back() == 0 || syntax.back() == ' '))
            syntax.pop_back();
        if(syntax.empty())
            return fail(at, "no transfer syntax up to here");
        if(syntax == "1.2.840.10008.1.2.1.99")
            return fail(at, "deflated data sets are not read");
        _implicit = syntax == "1.2.840.10008.1.2";
        _big = syntax == "1.2.840.10008.1.2.2";
        return true;
    }

    /// Elements up to `end`, or to the end of their item where that is to come; `at` is behind them then.
    bool walkSet(std::size_t &at, std::size_t end, int depth, bool implicit, bool delimited, DICOMSet &set)
    {
        while(at < end)
        {
            Element element;
            if(!readElement(at, implicit, _big, element))
                return false;
            if(delimited && element.tag == ItemEnd)
            {
                at = element.value;
                return true;
            }
            const std::size_t start = at;
            DICOMValue &value = set.values[element.tag];
            value = DICOMValue();
            if(!walkValue(element, at, depth, implicit, value))
                return false;
            value.offset = element.value;
            value.length = at - element.value;
            value.encapsulated = element.length == Undefined;
            value.words = implicit || std::strcmp(element.representation, "OW") == 0;
            if(at <= start)
                return fail(start, "an element without an end");
            if(depth == 0 && element.tag == Pixels)
                return true;
        }
        return !delimited || fail(at, "an item without an end");
    }

    bool walkValue(const Element &element, std::size_t &at, int depth, bool implicit, DICOMValue &value)
    {
        const bool isSequence = std::strcmp(element.representation, "SQ") == 0;
        const bool unknown = std::strcmp(element.representation, "UN") == 0;
        if(element.length == Undefined)
        {
            at = element.value;
            // An unknown sequence is written without representations.
            return walkItems(at, _size, depth + 1, implicit || unknown, true, element.tag == Pixels, value);
        }
        at = element.value + element.length;
        const bool items = isSequence || ((implicit || unknown) && element.length >= 8 &&
                                          tagAt(element.value, _big) == Item);
        std::size_t inside = element.value;
        return !items || walkItems(inside, at, depth + 1, implicit || unknown, false, false, value);
    }

    bool walkItems(std::size_t &at, std::size_t end, int depth, bool implicit, bool delimited, bool fragments,
                   DICOMValue &value)
    {
        if(depth > MaxDepth)
            return fail(at, "sequences too deep");
        while(at < end)
        {
            Element item;
            if(!readElement(at, implicit, _big, item))
                return false;
            if(delimited && item.tag == SequenceEnd)
            {
                at = item.value;
                return true;
            }
            if(item.tag != Item)
                return fail(at, "no item of a sequence");
            if(fragments)
            {
                if(item.length == Undefined)
                    return fail(at, "a fragment without a length");
                at = item.value + item.length;
                continue;
            }
            at = item.value;
            const bool open = item.length == Undefined;
            value.items.emplace_back();
            if(!walkSet(at, open ? end : item.value + item.length, depth, implicit, open, value.items.back()))
                return false;
        }
        return !delimited || fail(at, "a sequence without an end");
    }

    const std::uint8_t *_bytes;
    std::size_t _size;
    std::string _syntax;
    bool _implicit = false;
    bool _big = false;
    std::string _fault;
};

} // namespace

bool readDICOMElements(const std::uint8_t *bytes, std::size_t size, DICOMElements &elements,
                       std::string &fault)
{
    elements = DICOMElements();
    if(size < 132 || std::memcmp(bytes + 128, "DICM", 4) != 0)
    {
        fault = "byte 128: no DICOM signature";
        return false;
    }
    return Walk(bytes, size).run(elements, fault);
}

OSG_END_NAMESPACE
