#ifndef TESSALY_PREINTEGRATION_H
#define TESSALY_PREINTEGRATION_H

/// \file
/// Integrals of a transfer function over intervals of values, by the trapezoid rule over one unit per entry,
/// with colour weighted by opacity.

#include <cstddef>
#include <cstdint>

#include <OpenSG/OSGReal16.h>

namespace tessaly
{

/// Averages of a transfer function of bytes between each two values. Entry (row, column) is the integral
/// between the two values divided by their distance; for equal values it is the source entry itself,
/// premultiplied. Each of its four channels is 0 at least. The table is symmetric. The averages are for 256
/// values: entries of the source behind \a width count as 0, entries behind the 256th are not read, and at
/// most width * width entries are written, one after the other, so that only a width of 256 gives a useful
/// table.
/// \param transfer \a width RGBA entries of four bytes
/// \param table room for width * width RGBA entries
void averageIntervals(const std::uint8_t *transfer, std::size_t width, osg::Real16 *table);

/// The running integral of a transfer function of half floats: entry k holds the integral from value 0 up to
/// value k, entry 0 is zero. Summed in double precision, rounded at the store; nothing is divided or clipped.
/// \param transfer \a entries RGBA entries
/// \param table room for \a entries RGBA entries
void integrateEntries(const osg::Real16 *transfer, std::size_t entries, float *table);

} // namespace tessaly

#endif
