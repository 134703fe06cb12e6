/// \file
/// Volumes from files and from memory.

#include "Scan.h"

#include "HiddenAir.h"
#include "NumberText.h"

#include <OpenSG/OSGImageFileHandler.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <sstream>
#include <utility>

namespace viewer
{

namespace
{

/// Below this the library takes 16-bit voxels for 12-bit values.
constexpr std::size_t twelveBitValues = 4096;
constexpr int twelveBitFactor = 16;

/// The voxel spacing that the file stated; 1 for an axis where it stated none that can be.
Vec3 spacingOf(const osg::ImagePtr &scan)
{
    Vec3 spacing{1, 1, 1};
    const std::string *text = scan->findAttachmentField("SliceThickness");
    if (text == nullptr)
    {
        return spacing;
    }
    std::istringstream words(*text);
    std::string word;
    for (double &side : spacing)
    {
        double value = 0.0;
        if (words >> word && numberFrom(word, value) && value > 0.0)
        {
            side = value;
        }
    }
    return spacing;
}

/// What stored values stand for: slope and intercept as the reader noted them.
std::optional<ScaleMap> realValuesOf(const osg::ImagePtr &scan)
{
    const std::string *text = scan->findAttachmentField("ValueScale");
    if (text == nullptr)
    {
        return std::nullopt;
    }
    std::istringstream words(*text);
    std::string slopeText;
    std::string interceptText;
    ScaleMap map;
    if (!(words >> slopeText >> interceptText) || !numberFrom(slopeText, map.factor) ||
        !numberFrom(interceptText, map.offset) || map.factor <= 0.0)
    {
        return std::nullopt;
    }
    return map;
}

std::string shortNumber(double value)
{
    char text[40];
    std::snprintf(text, sizeof(text), "%.3g", value);
    return text;
}

std::string sidesText(const std::array<int, 3> &sides)
{
    return std::to_string(sides[0]) + " x " + std::to_string(sides[1]) + " x " + std::to_string(sides[2]);
}

} // namespace

int drawnFactor(const Histogram &stored)
{
    return stored.counts.size() > 256 && stored.highest() < twelveBitValues ? twelveBitFactor : 1;
}

Scan::~Scan()
{
    if (!empty())
    {
        osg::subRefCP(_image);
    }
}

Scan::Scan(Scan &&other) noexcept
    : _image(std::exchange(other._image, osg::NullFC)), _name(std::move(other._name)), _facts(other._facts)
{
}

Scan &Scan::operator=(Scan &&other) noexcept
{
    std::swap(_image, other._image);
    std::swap(_name, other._name);
    std::swap(_facts, other._facts);
    return *this;
}

bool Scan::read(const std::string &fileName, std::string &error)
{
    const osg::ImagePtr image = osg::ImageFileHandler::the().read(fileName.c_str());
    if (image == osg::NullFC)
    {
        error = fileName + ": could not be read";
        return false;
    }
    return take(image, fileName, error);
}

bool Scan::take(const osg::ImagePtr &image, const std::string &name, std::string &error)
{
    // An image that is refused goes, if nobody else holds it.
    struct Hold
    {
        explicit Hold(const osg::ImagePtr &held) : image(held) { osg::addRefCP(image); }
        ~Hold() { osg::subRefCP(image); }
        osg::ImagePtr image;
    };
    const Hold hold(image);

    const std::array<int, 3> voxels{image->getWidth(), image->getHeight(), image->getDepth()};
    if (*std::min_element(voxels.begin(), voxels.end()) < 2)
    {
        error = name + ": has " + sidesText(voxels) + " voxels, a volume has at least 2 along each axis";
        return false;
    }
    if (image->getComponentCount() != 1)
    {
        error = name + ": has " + std::to_string(image->getComponentCount()) +
                " samples a voxel, only one can be drawn";
        return false;
    }
    const osg::Int32 type = image->getDataType();
    if (type != osg::Image::OSG_UINT8_IMAGEDATA && type != osg::Image::OSG_UINT16_IMAGEDATA)
    {
        error = name + ": has voxels of a type that can't be drawn, only 8 and 16 bits without a sign can";
        return false;
    }

    VolumeFacts facts;
    facts.voxels = voxels;
    facts.bits = type == osg::Image::OSG_UINT8_IMAGEDATA ? 8 : 16;
    facts.spacing = spacingOf(image);
    facts.bytes = static_cast<std::size_t>(facts.bits / 8);
    facts.real = realValuesOf(image);
    const std::string *unit = image->findAttachmentField("ValueUnit");
    facts.unit = unit == nullptr ? "" : *unit;
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        facts.extent[axis] = facts.spacing[axis] * voxels[axis];
        facts.bytes *= static_cast<std::size_t>(voxels[axis]);
    }

    osg::addRefCP(image);
    if (!empty())
    {
        osg::subRefCP(_image);
    }
    _image = image;
    _name = name;
    _facts = facts;
    return true;
}

Histogram Scan::histogram() const
{
    const osg::UInt8 *voxels = _image->getData();
    return _facts.bits == 8 ? histogramOf8(voxels, _facts.bytes) : histogramOf16(voxels, _facts.bytes / 2);
}

void Scan::swapBytes()
{
    if (_facts.bits != 16)
    {
        return;
    }
    osg::UInt8 *const bytes = _image->editData();
    for (std::size_t i = 0; i < _facts.bytes; i += 2)
    {
        std::swap(bytes[i], bytes[i + 1]);
    }
}

DrawnValues Scan::drawnValues() const
{
    DrawnValues drawn;
    drawn.histogram = histogram();
    const int factor = drawnFactor(drawn.histogram);
    if (factor != 1)
    {
        const Histogram stored = std::move(drawn.histogram);
        drawn.histogram.counts.assign(stored.counts.size(), 0);
        for (std::size_t value = 0; value < twelveBitValues; ++value)
        {
            drawn.histogram.counts[static_cast<std::size_t>(factor) * value] = stored.counts[value];
        }
        drawn.histogram.total = stored.total;
    }
    if (_facts.real)
    {
        // real = offset + slope * stored, and position = factor * stored / number of values.
        const double perValue = factor / static_cast<double>(drawn.histogram.counts.size());
        const double slope = _facts.real->factor;
        drawn.real = ScaleMap{-_facts.real->offset / slope * perValue, perValue / slope};
    }
    return drawn;
}

bool Scan::reduce(const VolumeLimits &limits, std::uint64_t bytesPerVoxel, std::string &notice,
                  std::string &error)
{
    notice.clear();
    const std::array<int, 3> sides = _facts.voxels;
    const std::array<int, 3> factors = reductionFactors(sides, bytesPerVoxel, limits);
    if (factors == std::array<int, 3>{1, 1, 1})
    {
        return true;
    }
    const std::array<int, 3> small = reducedSides(sides, factors);
    std::vector<std::uint8_t> voxels;
    try
    {
        voxels = reducedVoxels(_image->getData(), _facts.bits, sides, factors);
    }
    catch (const std::bad_alloc &)
    {
        error = _name + ": no memory to reduce the volume of " + sidesText(sides) + " voxels";
        return false;
    }

    const osg::ImagePtr image = osg::Image::create();
    osg::addRefCP(image);
    osg::beginEditCP(image);
    const bool isSet = image->set(_image->getPixelFormat(), small[0], small[1], small[2], 1, 1, 0.0,
                                  voxels.data(), _image->getDataType());
    osg::endEditCP(image);
    if (!isSet)
    {
        osg::subRefCP(image);
        error = _name + ": no memory to reduce the volume of " + sidesText(sides) + " voxels";
        return false;
    }
    osg::subRefCP(_image);
    _image = image;

    _facts.voxels = small;
    _facts.bytes = static_cast<std::size_t>(_facts.bits / 8);
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        // The volume keeps its size; a block that is cut at its end counts as a whole one.
        _facts.spacing[axis] = _facts.extent[axis] / small[axis];
        _facts.bytes *= static_cast<std::size_t>(small[axis]);
    }
    const bool tooLong = limits.side > 0 && *std::max_element(sides.begin(), sides.end()) > limits.side;
    notice = _name + ": " + sidesText(sides) + " voxels reduced to " + sidesText(small) + ", ";
    notice += tooLong ? "this machine's GL takes " + std::to_string(limits.side) + " along an axis"
                      : "--max-memory allows " + shortNumber(static_cast<double>(limits.bytes) / (1 << 20)) +
                            " MiB";
    return true;
}

void Scan::raiseAir()
{
    liftAir(_image->editData(), _facts.bytes);
}

} // namespace viewer
