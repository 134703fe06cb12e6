#ifndef TESSALY_VIEW_SCAN_H
#define TESSALY_VIEW_SCAN_H

/// \file
/// A volume in memory and what is known about it, ahead of all drawing.

#include "Geometry.h"
#include "Histogram.h"
#include "Presets.h"
#include "VolumeReduction.h"

#include <OpenSG/OSGImage.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace viewer
{

/// What is known about a volume that was read.
struct VolumeFacts
{
    std::array<int, 3> voxels{};  ///< along x, y, z
    int bits = 8;                 ///< of a voxel: 8 or 16
    Vec3 spacing{1, 1, 1};        ///< of the voxels, all above 0
    Vec3 extent{};                ///< of the volume: voxels times spacing
    std::size_t bytes = 0;        ///< of all voxels
    std::optional<ScaleMap> real; ///< from a stored value to what it stands for, where the file says so
    std::string unit;             ///< of the real values, "HU" for Hounsfield units; mostly ""

    /// The volume in the scene: its middle is the origin.
    Box box() const { return {-0.5 * extent, 0.5 * extent}; }
};

/// The values that voxels are drawn with: those of less than 4096 in 16 bits are multiplied by 16, as the
/// library does.
struct DrawnValues
{
    Histogram histogram;
    /// From real values to positions of a transfer function, where the file tells what its values stand for.
    std::optional<ScaleMap> real;
};

/// Owns the voxels. Movable, on one thread, between osgInit and osgExit. Operations that can fail return
/// false with one line in `error`, without a line end, and leave the scan as it was; the log may hold a
/// better line.
class Scan
{
public:
    Scan() = default;
    ~Scan();
    Scan(Scan &&other) noexcept;
    Scan &operator=(Scan &&other) noexcept;

    /// Reads a volume of one sample a voxel, of 8 or 16 bits, with two voxels at least along each axis.
    bool read(const std::string &fileName, std::string &error);
    /// The same of an image in memory, whose voxels may be changed from now on. \param name what messages
    /// call it
    bool take(const osg::ImagePtr &image, const std::string &name, std::string &error);

    bool empty() const { return _image == osg::NullFC; }
    const std::string &name() const { return _name; }
    const VolumeFacts &facts() const { return _facts; }
    const osg::ImagePtr &image() const { return _image; }

    /// Counts the voxels as they lie in memory.
    Histogram histogram() const;
    /// What the voxels are drawn as. Only ahead of the drawing, which changes them in just that way.
    DrawnValues drawnValues() const;

    /// Exchanges the two bytes of each 16-bit voxel; 8 bits stay.
    void swapBytes();

    /// Makes the volume as small as the limits ask, and says so in one line, "" where it fits.
    /// \param bytesPerVoxel of all that is made of a voxel
    bool reduce(const VolumeLimits &limits, std::uint64_t bytesPerVoxel, std::string &notice,
                std::string &error);
    /// Raises voxels of value 0 to 1; see HiddenAir.h. Only 8 bits.
    void raiseAir();

private:
    osg::ImagePtr _image; ///< one reference is held
    std::string _name;
    VolumeFacts _facts;
};

/// The factor that the library multiplies 16-bit voxels with as it takes them: 16 where none reaches 4096,
/// which are 12-bit values, else 1.
int drawnFactor(const Histogram &stored);

} // namespace viewer

#endif
