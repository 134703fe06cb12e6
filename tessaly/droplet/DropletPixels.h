#ifndef TESSALY_DROPLETPIXELS_H
#define TESSALY_DROPLETPIXELS_H

/// \file
/// What the droplet simulation computes on the processor: pixels, sizes and a matrix, as plain data.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tessaly
{

/// Width and height of a droplet's profile in pixels.
constexpr int splatSize = 128;

/// Writes the profile of a droplet, a spherical cap of that contact angle in radians: splatSize x splatSize
/// pixels of three bytes, x fastest; the height is the blue byte, 0 outside of the unit circle. With c =
/// -|cos(contactAngle)| and the distance r of the pixel's centre from the middle, 1 at the middle of an edge,
/// it is (sqrt(1 - (1 - c * c) * r * r) + c) / sqrt(1 - c * c), so 1 in the middle at the right angle. False
/// for an angle that has no cap, such as 0, NaN or infinity: all pixels are then 0.
bool fillSplat(float contactAngle, std::uint8_t *rgb);

/// Writes `count` bytes of noise from rand(), of whose values the low 15 bits count, so that 32767 is the
/// largest.
void fillNoise(std::uint8_t *bytes, std::size_t count);

/// The inverse of a 4 x 4 matrix, by cofactors; both are stored alike, by rows or by columns. The identity
/// where the absolute determinant is below 1e-30 or no number.
std::array<float, 16> inverseOrIdentity(const float *matrix);

/// A side of a map in cells: the value truncated, 0 for NaN, kept in the range of an int.
int cellsOf(float side);

/// The nearest float; a value beyond the range of floats becomes the largest.
float narrowed(double value);

} // namespace tessaly

#endif
