/// \file
/// First the heads of all files, then the plan of the volume, then the pixels of the slices that it names.

#include "OSGDICOMCodec.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>

#include "OSGDICOMHead.h"
#include "OSGDICOMSamples.h"
#include "OSGDICOMSeries.h"

OSG_BEGIN_NAMESPACE

namespace
{

using namespace dicom;

/// Turns converted samples over, so that the largest is the darkest, and what they stand for with them.
void turnOver(PixelData &out)
{
    const unsigned most = out.dataType == SampleUInt8 ? 255u : 65535u;
    unsigned high = 0;
    const std::size_t bytes = out.dataType == SampleUInt8 ? 1 : 2, count = out.data.size() / bytes;
    const auto sampleAt = [&](std::size_t i) {
        std::uint16_t sample = out.data[i];
        if(bytes == 2)
            std::memcpy(&sample, out.data.data() + 2 * i, 2);
        return sample;
    };
    for(std::size_t i = 0; i < count; ++i)
        high = std::max<unsigned>(high, sampleAt(i));
    high = std::min(high, most);
    for(std::size_t i = 0; i < count; ++i)
    {
        const std::uint16_t sample = static_cast<std::uint16_t>(high - sampleAt(i));
        if(bytes == 2)
            std::memcpy(out.data.data() + 2 * i, &sample, 2);
        else
            out.data[i] = static_cast<std::uint8_t>(sample);
    }
    out.valueIntercept += out.valueSlope * high;
    out.valueSlope = -out.valueSlope;
}

void turnRows(std::vector<std::uint8_t> &samples, std::size_t rows)
{
    const std::size_t row = samples.size() / rows;
    for(std::size_t y = 0; y < rows / 2; ++y)
        std::swap_ranges(samples.data() + y * row, samples.data() + (y + 1) * row,
                         samples.data() + (rows - 1 - y) * row);
}

/// Hands out the bytes of a file.
class FileLoader
{
  public:
    virtual ~FileLoader() = default;
    virtual bool load(const std::string &fileName, const std::uint8_t *&bytes, std::size_t &size,
                      std::string &error) = 0;
};

class DiskLoader : public FileLoader
{
  public:
    bool load(const std::string &fileName, const std::uint8_t *&bytes, std::size_t &size,
              std::string &error) override
    {
        if(!readFileBytes(fileName, _bytes, error))
            return false;
        bytes = _bytes.data();
        size = _bytes.size();
        return true;
    }

  private:
    std::vector<std::uint8_t> _bytes;
};

class MemoryLoader : public FileLoader
{
  public:
    MemoryLoader(const std::uint8_t *bytes, std::size_t size) : _bytes(bytes), _size(size) {}
    bool load(const std::string &, const std::uint8_t *&bytes, std::size_t &size, std::string &) override
    {
        bytes = _bytes;
        size = _size;
        return true;
    }

  private:
    const std::uint8_t *_bytes;
    std::size_t _size;
};

/// The volume that the plan names, from the files that hold it.
bool buildVolume(const std::vector<FileHead> &heads, const std::vector<std::size_t> &headOf,
                 const std::vector<DICOMFrame> &frames, const DICOMPlan &plan, const std::string &name,
                 FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    const std::size_t first = plan.order.front();
    const FileHead &model = heads[headOf[first]];
    const double slope = model.slopes[frames[first].frame], intercept = model.intercepts[frames[first].frame];
    const SampleType type = sampleTypeOf(model);
    const bool alike = std::all_of(plan.order.begin(), plan.order.end(), [&](std::size_t i) {
        const FileHead &head = heads[headOf[i]];
        const std::size_t frame = frames[i].frame;
        return sampleTypeOf(head) == type && head.slopes[frame] == slope &&
               head.intercepts[frame] == intercept;
    });

    RawSamples raw;
    raw.type = alike ? type : SampleType::Float32;
    const std::size_t pixels = model.pixels(), frameBytes = pixels * sampleBytes(raw.type);
    std::vector<std::uint8_t> volume, samples;
    if(!allocatePixels(volume, std::uint64_t(frameBytes) * plan.order.size(), maxBytes, name, error))
        return false;
    std::size_t loaded = heads.size();
    for(std::size_t z = 0; z < plan.order.size(); ++z)
    {
        const std::size_t i = plan.order[z];
        const FileHead &head = heads[headOf[i]];
        if(loaded != headOf[i])
        {
            const std::uint8_t *bytes = nullptr;
            std::size_t size = 0;
            std::string fault;
            if(!loader.load(head.fileName, bytes, size, error))
                return false;
            if(!readSamples(bytes, size, head, maxBytes, samples, fault))
            {
                error = head.fileName + ": " + fault;
                return false;
            }
            takeStored(head, samples);
            loaded = headOf[i];
        }
        const std::uint8_t *from = samples.data() + frames[i].frame * pixels * head.sampleBytes();
        if(alike)
            std::memcpy(volume.data() + z * frameBytes, from, frameBytes);
        else
            valuesOf(sampleTypeOf(head), from, pixels, head.slopes[frames[i].frame],
                     head.intercepts[frames[i].frame], volume.data() + z * frameBytes);
    }
    if(plan.order.size() == 1)
        turnRows(volume, std::size_t(model.rows));

    out.width = model.columns;
    out.height = model.rows;
    out.depth = static_cast<int>(plan.order.size());
    out.pixelFormat = PixelL;
    out.hasSpacing = plan.hasSpacing;
    std::copy(plan.spacing, plan.spacing + 3, out.spacing);
    out.notices.insert(out.notices.end(), plan.notices.begin(), plan.notices.end());
    if(!alike)
        out.notices.push_back(name + ": slices differ in what their samples stand for");
    raw.bytes = volume.data();
    raw.count = pixels * plan.order.size();
    // The slope goes to what the samples stand for, not into them, so that they stay exact.
    if(!convertSamples(raw, name, maxBytes, out, error))
        return false;
    if(alike)
    {
        out.valueIntercept = slope * out.valueIntercept + intercept;
        out.valueSlope *= slope;
    }
    out.valueUnit = model.unit;
    if(model.turned)
        turnOver(out);
    return true;
}

/// Reads the head of each file, plans and builds. Broken files of a folder are left out.
bool readFiles(const std::vector<std::string> &files, bool isFolder, const std::string &name,
               FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    std::vector<FileHead> heads;
    std::vector<std::size_t> headOf;
    std::vector<DICOMFrame> frames;
    std::size_t leftOut = 0;
    std::string firstFault;
    for(const std::string &file : files)
    {
        const std::uint8_t *bytes = nullptr;
        std::size_t size = 0;
        std::string fault;
        if(!loader.load(file, bytes, size, error))
            return false;
        if(isFolder && (size < 132 || std::memcmp(bytes + 128, "DICM", 4) != 0))
            continue;
        FileHead head;
        if(readHead(bytes, size, file, head, frames, fault))
        {
            headOf.resize(frames.size(), heads.size());
            heads.push_back(head);
            continue;
        }
        frames.resize(headOf.size());
        firstFault = firstFault.empty() ? file + ": " + fault : firstFault;
        ++leftOut;
    }
    if(heads.empty())
    {
        error = firstFault.empty() ? name + ": no DICOM files in this folder" : firstFault;
        return false;
    }
    if(leftOut > 0)
        out.notices.push_back(name + ": " + std::to_string(leftOut) +
                              (leftOut == 1 ? " file is" : " files are") + " no slices and left out, " +
                              firstFault);
    const DICOMPlan plan = planDICOMVolume(frames, name);
    return buildVolume(heads, headOf, frames, plan, name, loader, maxBytes, out, error);
}

/// The same, with what GDCM and the standard library throw brought to a line.
bool readGuarded(const std::vector<std::string> &files, bool isFolder, const std::string &name,
                 FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    quietenGDCM();
    bool done = false;
    try
    {
        done = readFiles(files, isFolder, name, loader, maxBytes, out, error);
    }
    catch(const std::exception &)
    {
        // The words of these name places in GDCM's code, which help nobody.
        error = name + ": GDCM can't read it";
    }
    if(!done)
        out = PixelData();
    return done;
}

} // namespace

bool readDICOM(const std::string &path, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    namespace fs = std::filesystem;
    out = PixelData();
    error.clear();
    std::error_code code;
    const bool isFolder = fs::is_directory(path, code);
    std::vector<std::string> files;
    if(!isFolder)
        files.push_back(path);
    else
    {
        for(fs::directory_iterator at(path, code), end; !code && at != end; at.increment(code))
        {
            std::error_code ignored;
            if(at->is_regular_file(ignored))
                files.push_back(at->path().string());
        }
        if(code)
        {
            error = path + ": can't be listed: " + code.message();
            return false;
        }
        // The order of a folder is chance; notices and doubles must not follow it.
        std::sort(files.begin(), files.end());
    }
    DiskLoader loader;
    return readGuarded(files, isFolder, path, loader, maxBytes, out, error);
}

bool decodeDICOM(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                 std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    MemoryLoader loader(bytes, size);
    return readGuarded({name}, false, name, loader, maxBytes, out, error);
}

OSG_END_NAMESPACE
