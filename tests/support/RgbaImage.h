#ifndef TESTS_SUPPORT_RGBAIMAGE_H
#define TESTS_SUPPORT_RGBAIMAGE_H

/// \file
/// The picture that tests of drawing read back and compare.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace test
{

/// Four bytes a pixel, red, green, blue, alpha; x fastest; the lowest row first, as GL reads pictures back.
struct RgbaImage
{
    using Pixel = std::array<std::uint8_t, 4>;

    RgbaImage() = default;
    RgbaImage(int w, int h, Pixel fill = {0, 0, 0, 0})
        : width(w), height(h), bytes(4 * static_cast<std::size_t>(w) * static_cast<std::size_t>(h))
    {
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            bytes[i] = fill[i % 4];
        }
    }

    Pixel at(int x, int y) const
    {
        const std::uint8_t *p = bytes.data() + offset(x, y);
        return {p[0], p[1], p[2], p[3]};
    }
    void set(int x, int y, Pixel pixel)
    {
        for (std::size_t c = 0; c < 4; ++c)
        {
            bytes[offset(x, y) + c] = pixel[c];
        }
    }
    std::size_t offset(int x, int y) const
    {
        return 4 *
               (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
    }

    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

} // namespace test

#endif
