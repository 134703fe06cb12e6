#ifndef _OSGDICOMSERIES_H_
#define _OSGDICOMSERIES_H_

/// \file
/// Which of many DICOM frames make up a volume, and in which order; plain data, apart from any file.

#include <cstddef>
#include <string>
#include <vector>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

/// One frame of one file, as far as its place in a volume goes. Lengths are in mm.
struct DICOMFrame
{
    std::string fileName;
    unsigned frame = 0;      ///< within the file, from 0
    std::string series;      ///< the series' unique id
    std::string description; ///< of the series, in words
    int columns = 0;
    int rows = 0;
    std::string kind; ///< frames of different kinds of samples make no volume
    bool hasPosition = false;
    double position[3] = {0.0, 0.0, 0.0}; ///< of the first pixel
    double across[3] = {1.0, 0.0, 0.0};   ///< direction along a row
    double down[3] = {0.0, 1.0, 0.0};     ///< direction along a column
    double pixelSpacing[2] = {0.0, 0.0};  ///< along x and y; 0 where not stated
    double apart = 0.0;                   ///< from slice to slice as the file states it; 0 where not
    long number = 0;                      ///< of the instance
};

/// A volume of frames: x along the rows, y along the columns, z along across x down, which is right-handed.
struct DICOMPlan
{
    std::vector<std::size_t> order; ///< indices of the frames, by ascending z
    bool hasSpacing = false;
    float spacing[3] = {1.f, 1.f, 1.f};
    std::vector<std::string> notices; ///< one line each, starting with the name
};

/// Chooses and orders frames. Of several series the one with most frames is taken (of as many, the one whose
/// description comes first in the alphabet), of its frames those of the size, direction and kind of samples
/// that most have. They are ordered by their positions along the normal of the slices, never by file names;
/// of frames at one place the one with the lowest instance number stays. Without positions the instance
/// numbers order them. The distance of slices is the mean of the distances where they agree to a hundredth
/// and the median where they don't. Notices tell of other series, frames left out, doubles, gaps and missing
/// positions. No frames make an empty plan.
DICOMPlan planDICOMVolume(const std::vector<DICOMFrame> &frames, const std::string &name);

OSG_END_NAMESPACE

#endif
