#ifndef TESTS_PLATFORM_FORMATS_DAMAGEDFILES_H
#define TESTS_PLATFORM_FORMATS_DAMAGEDFILES_H

/// \file
/// What each reader of volumes must withstand: files cut off at every byte, and files with flipped bytes.

#include <OpenSG/OSGPixelBuffer.h>

#include <gtest/gtest.h>

#include <random>

using Bytes = std::vector<std::uint8_t>;

/// One call of a reader on damaged bytes: either pixels of the size that they state, or no pixels and one
/// line that starts with `name`. Returns whether it was read.
template <class Decode>
bool keepsItsPromise(const Bytes &file, const std::string &name, Decode decode)
{
    osg::PixelData out;
    std::string error;
    // A copy of just that size, so that a sanitizer sees the end.
    const Bytes copy = file;
    const bool done = decode(copy.data(), copy.size(), out, error);
    if(done)
        EXPECT_EQ(out.data.size(), std::size_t(out.width) * std::size_t(out.height) * std::size_t(out.depth) *
                                       osg::pixelChannels(out.pixelFormat) *
                                       (out.dataType == osg::SampleUInt16 ? 2u : 1u));
    else
    {
        EXPECT_TRUE(out.data.empty());
        EXPECT_EQ(error.rfind(name, 0), 0u) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    return done;
}

/// Reads the file cut off at every byte; returns how many of these were read all the same.
template <class Decode>
std::size_t readTruncations(const Bytes &file, const std::string &name, Decode decode)
{
    std::size_t read = 0;
    for(std::size_t i = 0; i < file.size(); ++i)
        read += keepsItsPromise(Bytes(file.begin(), file.begin() + std::ptrdiff_t(i)), name, decode) ? 1 : 0;
    return read;
}

/// Reads `rounds` copies of the file with one to four bytes changed; the seed is printed.
template <class Decode>
void readFlipped(const Bytes &file, const std::string &name, unsigned seed, int rounds, Decode decode)
{
    std::printf("seed %u\n", seed);
    std::mt19937 random(seed);
    int refused = 0;
    for(int round = 0; round < rounds; ++round)
    {
        Bytes damaged = file;
        const unsigned flips = 1 + random() % 4;
        for(unsigned i = 0; i < flips; ++i)
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        refused += keepsItsPromise(damaged, name, decode) ? 0 : 1;
    }
    // Some damage must show, or the test read nothing that mattered.
    EXPECT_GT(refused, 0);
}

#endif
