#ifndef TESSALY_PYTHON_KEYWORDS_H
#define TESSALY_PYTHON_KEYWORDS_H

/// \file
/// Keyword arguments as the options of the viewer's command line, and back.

#include "Options.h"
#include "TransferPoints.h"

#include <map>
#include <string>

#include <pybind11/pybind11.h>

namespace binding
{

/// Options by their names on the command line ("opaque-size"), with the texts that they have there.
using Keywords = std::map<std::string, std::string>;

/// Enters keyword arguments over those that are there: None takes an option back, `camera` replaces all that
/// places the camera, `transfer_function` all that told one. Throws TypeError for an unknown name and for a
/// value of a wrong type. \param bits of a voxel: the rows of an RGBA table are spread over the values that
/// it can have \param who what a TypeError calls the function
void enter(Keywords &keywords, const pybind11::dict &arguments, int bits, const char *who);

/// What the command line makes of them. Throws ValueError with its message.
viewer::Options optionsOf(const Keywords &keywords);

/// The options of a file that tessaly-view --save-state wrote, all of them, those of the camera too. Throws
/// ValueError.
Keywords keywordsOfState(const std::string &fileName);

/// Options as keyword arguments that come to the same.
pybind11::dict dictOf(const viewer::Options &options);

/// {"opacity": (N, 2) array, "color": (N, 4) array}, float32.
pybind11::dict dictOf(const viewer::TransferPoints &points);

/// The path that an os.PathLike, str or bytes names.
std::string pathOf(const pybind11::handle &path);

/// A message of the command line with the names that keyword arguments have.
std::string inKeywords(const std::string &message);

} // namespace binding

#endif
