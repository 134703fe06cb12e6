#ifndef TESSALY_FILTER_SHADINGTABLE_H
#define TESSALY_FILTER_SHADINGTABLE_H

/// \file
/// The lookup table of the colour filter as bytes.

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGVector.h>

#include <vector>

namespace tessaly
{

/// A table of RGB bytes: width across the screen fastest, then height up the screen, then depth along a
/// colour value.
struct ShadingTable
{
    osg::UInt32 width = 1;
    osg::UInt32 height = 1;
    osg::UInt32 depth = 2;
    std::vector<osg::UInt8> bytes;
};

/// The table of entries 0 to 1, in the same order; what is above 1 or below 0 overflows its byte, as is
/// meant. \return false for a table without entries or of another number of entries, with `table` the
/// identity: black below
///         white
bool makeShadingTable(const std::vector<osg::Vec3f> &entries, osg::UInt32 width, osg::UInt32 height,
                      osg::UInt32 depth, ShadingTable &table);

} // namespace tessaly

#endif
