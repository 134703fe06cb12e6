#ifndef _OSGDICOMELEMENTS_H_
#define _OSGDICOMELEMENTS_H_

/// \file
/// The elements of a DICOM file, each known to lie in the file before anybody asks for memory.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

struct DICOMSet;

/// Where the value of an element lies in the file; a sequence has items besides.
struct DICOMValue
{
    std::size_t offset = 0;
    std::size_t length = 0;    ///< with the items' heads, and the end mark where there is one
    bool encapsulated = false; ///< of no stated length: packed pixels, or a sequence
    bool words = false;        ///< OW
    std::vector<DICOMSet> items;
};

/// Elements by tag, the group in the upper half.
struct DICOMSet
{
    std::map<std::uint32_t, DICOMValue> values;
};

/// A file's elements up to its pixels.
struct DICOMElements
{
    std::string syntax; ///< the unique id of the transfer syntax
    bool bigEndian = false;
    DICOMSet set;
};

/// Reads the elements of a file with "DICM" at byte 128, of explicit or implicit representation and either
/// byte order; nothing behind the pixels is looked at. False, with "byte N: what" in `fault`, where an
/// element does not fit the file.
bool readDICOMElements(const std::uint8_t *bytes, std::size_t size, DICOMElements &elements,
                       std::string &fault);

OSG_END_NAMESPACE

#endif
