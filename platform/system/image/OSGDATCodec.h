#ifndef _OSGDATCODEC_H_
#define _OSGDATCODEC_H_

/// \file
/// Volumes described by a text file (.dat) beside a file of bare voxels (.raw).

#include "OSGPixelBuffer.h"
#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

/// What the text file says. A line is a key with a colon and its value:
///     ObjectFileName: head.raw          the voxels, beside the text file; required
///     Resolution:     256 256 109       required
///     SliceThickness: 1 1 1.5           size of a voxel
///     Format:         USHORT            UCHAR (assumed where missing), CHAR, USHORT, SHORT, UINT, INT,
///     FLOAT, DOUBLE ObjectModel:    I                 I, L, DENSITY: one channel (assumed where missing);
///     LA, RGB, RGBA Endian:         LITTLE            LITTLE (assumed where missing) or BIG
/// Other keys are read over.
struct DATHeader
{
    std::string rawName; ///< file of the voxels
    int size[3] = {0, 0, 0}; ///< voxels along x, y and z
    bool hasSpacing = false; ///< whether spacing says something
    float spacing[3] = {1.f, 1.f, 1.f}; ///< of the voxels along x, y and z
    SampleType sample = SampleType::UInt8; ///< type of a channel
    unsigned pixelFormat = PixelL; ///< which channels
    bool bigEndian = false; ///< order of bytes
};

/// Reads the text. False, with one line in `error` that names the file, the fault and the line, where it is
/// broken.
OSG_SYSTEMLIB_DLLMAPPING bool parseDAT(const std::uint8_t *bytes, std::size_t size, const std::string &name,
                                       DATHeader &header, std::string &error);

/// The bytes of voxels that a header asks for, where `present` bytes are there. A description says RGBA for
/// many volumes of one channel: where the bytes are just enough for one, `header` is changed to that and
/// `notice` says so. False, with one line in `error` that starts with `rawName`, where there are too few
/// bytes.
OSG_SYSTEMLIB_DLLMAPPING bool fitDAT(DATHeader &header, std::uint64_t present, const std::string &rawName,
                                     std::uint64_t &needed, std::string &notice, std::string &error);

/// Turns voxels as the header describes them, at least as many as fitDAT asked for, into pixels of 8 or 16
/// bits.
OSG_SYSTEMLIB_DLLMAPPING bool decodeDAT(const DATHeader &header, const std::uint8_t *raw, std::size_t rawSize,
                                        const std::string &rawName, PixelData &out, std::string &error,
                                        std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// Reads a .dat file and the file of voxels that it names, which lies beside it unless its name is an
/// absolute path.
OSG_SYSTEMLIB_DLLMAPPING bool readDATFile(const std::string &fileName, PixelData &out, std::string &error,
                                          std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// Writes the text to `fileName` and the voxels beside it, under the same name with .raw for .dat. Takes L,
/// LA, RGB and RGBA of 8 and 16 bits. False, with one line in `error`, otherwise, or where a file can't be
/// written.
OSG_SYSTEMLIB_DLLMAPPING bool writeDATFile(const std::string &fileName, const PixelView &in,
                                           std::string &error);

OSG_END_NAMESPACE

#endif
