#ifndef _OSGDICOMRUNLENGTHS_H_
#define _OSGDICOMRUNLENGTHS_H_

/// \file
/// Pixels packed as run lengths, the way of packing that DICOM defines itself (PS3.5, annex G).

#include <cstddef>
#include <cstdint>
#include <string>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

namespace dicom
{

/// Unpacks grey frames. `items` are the fragments with their heads, as they lie in the file, the offset table
/// first; each further one holds a frame, the planes of its samples' bytes one behind the other, the highest
/// first. `out` takes frames x pixels x sampleBytes bytes, in the machine's byte order. False with a fault
/// where that can't be had of them; `out` may be written to by then.
bool unpackRunLengths(const std::uint8_t *items, std::size_t size, std::size_t frames, std::size_t pixels,
                      std::size_t sampleBytes, std::uint8_t *out, std::string &fault);

} // namespace dicom

OSG_END_NAMESPACE

#endif
