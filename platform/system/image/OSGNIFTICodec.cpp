/// \file
/// The header is read by libniftiio, once it has been checked; the voxels are taken from memory that is known
/// to be there.

#include "OSGNIFTICodec.h"

#include <nifti1_io.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "OSGGzip.h"
#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::size_t HeaderSize = 348;

/// A header is followed by four bytes that announce extensions, even where there are none.
constexpr double FirstVoxelByte = 352;

struct FreeImage
{
    void operator()(nifti_image *image) const { nifti_image_free(image); }
};

using HeaderImage = std::unique_ptr<nifti_image, FreeImage>;

struct Kind
{
    int code;
    std::size_t bytes;
    unsigned pixelFormat;
    SampleType sample;
};

constexpr Kind kinds[] = {
    {DT_UINT8, 1, PixelL, SampleType::UInt8},     {DT_INT8, 1, PixelL, SampleType::Int8},
    {DT_INT16, 2, PixelL, SampleType::Int16},     {DT_UINT16, 2, PixelL, SampleType::UInt16},
    {DT_INT32, 4, PixelL, SampleType::Int32},     {DT_UINT32, 4, PixelL, SampleType::UInt32},
    {DT_INT64, 8, PixelL, SampleType::Int64},     {DT_UINT64, 8, PixelL, SampleType::UInt64},
    {DT_FLOAT32, 4, PixelL, SampleType::Float32}, {DT_FLOAT64, 8, PixelL, SampleType::Float64},
    {DT_RGB24, 3, PixelRGB, SampleType::UInt8},   {DT_RGBA32, 4, PixelRGBA, SampleType::UInt8}};

const Kind *findKind(int code)
{
    const Kind *found =
        std::find_if(std::begin(kinds), std::end(kinds), [code](const Kind &k) { return k.code == code; });
    return found == std::end(kinds) ? nullptr : found;
}

/// What the checked header says.
struct Layout
{
    const Kind *kind = nullptr;
    int size[3] = {1, 1, 1};
    std::uint64_t frames = 1;
    std::uint64_t offset = 0; ///< of the first voxel, in bytes
    std::uint64_t voxels = 0; ///< of one frame
    std::uint64_t frameBytes = 0;
    bool swapped = false;
    double slope = 1.0;
    double intercept = 0.0;
    float spacing[3] = {1.f, 1.f, 1.f};
};

/// The header's faults as "byte N: what", or nothing. `header` is in the machine's byte order.
std::string findFault(const nifti_1_header &header)
{
    if(std::memcmp(header.magic, "ni1", 4) == 0)
        return "byte 344: voxels in a file of their own are not read";
    if(std::memcmp(header.magic, "n+1", 4) != 0)
        return "byte 344: no NIfTI-1 signature";
    if(header.dim[0] < 1 || header.dim[0] > 7)
        return "byte 40: " + std::to_string(header.dim[0]) + " dimensions, not 1 to 7";
    for(int i = 1; i <= header.dim[0]; ++i)
        if(header.dim[i] < 1)
            return "byte " + std::to_string(40 + 2 * i) + ": dimension " + std::to_string(i) + " is " +
                   std::to_string(header.dim[i]);
    const Kind *kind = findKind(header.datatype);
    if(!kind)
        return "byte 70: data type " + std::to_string(header.datatype) + " is not read";
    if(header.bitpix != static_cast<short>(8 * kind->bytes))
        return "byte 72: " + std::to_string(header.bitpix) + " bits a voxel, data type " +
               std::to_string(header.datatype) + " has " + std::to_string(8 * kind->bytes);
    if(header.vox_offset != 0.f && !(header.vox_offset >= FirstVoxelByte && header.vox_offset <= 1e9f))
        return "byte 108: the voxels can't start at byte " + std::to_string(header.vox_offset);
    return {};
}

/// Checks the header and reads it through libniftiio.
bool readHeader(const std::uint8_t *bytes, std::size_t size, const std::string &name, Layout &layout,
                std::string &error)
{
    if(size < HeaderSize)
    {
        error = name + ": byte " + std::to_string(size) + ": the file ends inside of the header";
        return false;
    }
    nifti_1_header header;
    static_assert(sizeof(header) == HeaderSize, "the header is read as it lies in the file");
    std::memcpy(&header, bytes, HeaderSize);
    nifti_1_header native = header;
    if(header.sizeof_hdr != static_cast<int>(HeaderSize))
    {
        swap_nifti_header(&native, 1);
        layout.swapped = true;
    }
    if(native.sizeof_hdr != static_cast<int>(HeaderSize))
    {
        error = name + ": byte 0: no NIfTI-1 header";
        return false;
    }
    const std::string fault = findFault(native);
    if(!fault.empty())
    {
        error = name + ": " + fault;
        return false;
    }
    // Sides behind the last dimension mean nothing, but libniftiio takes a 0 there at its word.
    std::fill(native.dim + native.dim[0] + 1, native.dim + 8, short(1));
    // libniftiio talks on standard error unless told not to.
    static const bool quiet = (nifti_set_debug_level(0), true);
    const HeaderImage image(quiet ? nifti_convert_nhdr2nim(native, nullptr) : nullptr);
    if(!image)
    {
        error = name + ": byte 0: libniftiio refuses the header";
        return false;
    }

    layout.kind = findKind(image->datatype);
    layout.offset = static_cast<std::uint64_t>(native.vox_offset != 0.f ? native.vox_offset : FirstVoxelByte);
    layout.slope = image->scl_slope;
    layout.intercept = image->scl_inter;
    const int sizes[3] = {int(image->nx), int(image->ny), int(image->nz)};
    const double spacings[3] = {image->dx, image->dy, image->dz};
    for(int i = 0; i < 3; ++i)
    {
        layout.size[i] = sizes[i];
        const float spacing = static_cast<float>(std::fabs(spacings[i]));
        layout.spacing[i] = std::isfinite(spacing) && spacing > 0.f ? spacing : 1.f;
    }
    layout.voxels = std::uint64_t(sizes[0]) * std::uint64_t(sizes[1]) * std::uint64_t(sizes[2]);
    layout.frameBytes = layout.voxels * layout.kind->bytes;
    for(int i = 4; i <= native.dim[0]; ++i)
    {
        // Past this many there can be no such file; the product must not run over.
        layout.frames = std::min<std::uint64_t>(layout.frames * std::uint64_t(native.dim[i]), 1u << 30);
    }
    return true;
}

/// True where the header's voxels can lie in `present` bytes; says where they end otherwise.
bool checkSize(const Layout &layout, std::uint64_t present, const std::string &name, std::string &error)
{
    const std::uint64_t there = present > layout.offset ? present - layout.offset : 0;
    if(there / layout.frameBytes >= layout.frames)
        return true;
    error = name + ": byte " + std::to_string(present) + ": the file ends here, but " +
            std::to_string(layout.size[0]) + " x " + std::to_string(layout.size[1]) + " x " +
            std::to_string(layout.size[2]) + " voxels of " + std::to_string(layout.kind->bytes) +
            " bytes in " + std::to_string(layout.frames) + " frames start at byte " +
            std::to_string(layout.offset);
    return false;
}

bool takeVoxels(const Layout &layout, const std::uint8_t *voxels, const std::string &name,
                std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    out.width = layout.size[0];
    out.height = layout.size[1];
    out.depth = layout.size[2];
    out.pixelFormat = layout.kind->pixelFormat;
    out.hasSpacing = true;
    std::copy(layout.spacing, layout.spacing + 3, out.spacing);
    if(layout.frames > 1)
        out.notices.push_back(name + ": the first of " + std::to_string(layout.frames) + " frames is taken");

    RawSamples raw;
    raw.bytes = voxels;
    raw.type = layout.kind->sample;
    raw.count = static_cast<std::size_t>(layout.frameBytes / sampleBytes(raw.type));
    raw.swapped = layout.swapped;
    // Colours have no slope.
    raw.slope = layout.kind->pixelFormat == PixelL ? layout.slope : 1.0;
    raw.intercept = layout.kind->pixelFormat == PixelL ? layout.intercept : 0.0;
    return convertSamples(raw, name, maxBytes, out, error);
}

bool decodePacked(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                  std::string &error, std::uint64_t maxBytes)
{
    std::vector<std::uint8_t> head;
    std::uint64_t total = 0;
    Layout layout;
    if(!unpackGzip(bytes, size, 0, HeaderSize, true, name, maxBytes, head, total, error) ||
       !readHeader(head.data(), head.size(), name, layout, error))
        return false;
    std::vector<std::uint8_t> voxels;
    return unpackGzip(bytes, size, layout.offset, layout.frameBytes, false, name, maxBytes, voxels, total,
                      error) &&
           checkSize(layout, total, name, error) &&
           takeVoxels(layout, voxels.data(), name, maxBytes, out, error);
}

} // namespace

bool decodeNIFTI(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                 std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    Layout layout;
    const bool done = isGzip(bytes, size)
                          ? decodePacked(bytes, size, name, out, error, maxBytes)
                          : readHeader(bytes, size, name, layout, error) &&
                                checkSize(layout, size, name, error) &&
                                takeVoxels(layout, bytes + layout.offset, name, maxBytes, out, error);
    if(!done)
        out = PixelData();
    return done;
}

OSG_END_NAMESPACE
