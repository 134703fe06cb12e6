/// \file
/// Memory and files for the readers and writers of images.

#include "OSGPixelBuffer.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

OSG_BEGIN_NAMESPACE

namespace
{

struct FileCloser
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

} // namespace

unsigned pixelChannels(unsigned pixelFormat)
{
    switch(pixelFormat)
    {
    case PixelL:
        return 1;
    case PixelLA:
        return 2;
    case PixelRGB:
        return 3;
    case PixelRGBA:
        return 4;
    default:
        return 0;
    }
}

bool allocatePixels(std::vector<std::uint8_t> &data, std::uint64_t size, std::uint64_t maxBytes,
                    const std::string &name, std::string &error)
{
    if(size > maxBytes)
    {
        error =
            name + ": " + std::to_string(size) + " bytes are over the limit of " + std::to_string(maxBytes);
        return false;
    }
    // The standard library throws where memory is short; here that is a failure like any other.
    try
    {
        data.resize(static_cast<std::size_t>(size));
    }
    catch(const std::bad_alloc &)
    {
        error = name + ": no memory for " + std::to_string(size) + " bytes";
        return false;
    }
    return true;
}

bool regularFileSize(const std::string &fileName, std::uint64_t &size, std::string &error)
{
    struct stat status;
    if(::stat(fileName.c_str(), &status) != 0)
    {
        error = fileName + ": can't be opened: " + std::strerror(errno);
        return false;
    }
    if(!S_ISREG(status.st_mode))
    {
        error = fileName + ": is no regular file";
        return false;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return true;
}

bool readFileBytes(const std::string &fileName, std::vector<std::uint8_t> &bytes, std::string &error,
                   std::uint64_t wanted, std::uint64_t maxBytes)
{
    std::uint64_t size = 0;
    if(!regularFileSize(fileName, size, error))
        return false;
    const File file(std::fopen(fileName.c_str(), "rb"));
    if(!file)
    {
        error = fileName + ": can't be opened: " + std::strerror(errno);
        return false;
    }
    size = std::min(size, wanted);
    if(!allocatePixels(bytes, size, maxBytes, fileName, error))
        return false;
    const std::size_t got = std::fread(bytes.data(), 1, bytes.size(), file.get());
    if(got != bytes.size())
    {
        error = fileName + ": can't be read past byte " + std::to_string(got);
        return false;
    }
    return true;
}

bool writeFileBytes(const std::string &fileName, const std::uint8_t *bytes, std::size_t size,
                    std::string &error)
{
    File file(std::fopen(fileName.c_str(), "wb"));
    if(!file)
    {
        error = fileName + ": can't be written: " + std::strerror(errno);
        return false;
    }
    const bool written = std::fwrite(bytes, 1, size, file.get()) == size;
    if(std::fclose(file.release()) != 0 || !written)
    {
        error = fileName + ": can't be written: " + std::strerror(errno);
        return false;
    }
    return true;
}

OSG_END_NAMESPACE
