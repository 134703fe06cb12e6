#ifndef TESSALY_VIEW_FILECHECKS_H
#define TESSALY_VIEW_FILECHECKS_H

/// \file
/// Looks at files ahead of the work, so that a wrong name costs no time.

#include <string>

namespace viewer
{

/// What follows the last slash of a path; of the folder's own name where it ends in one.
std::string baseName(const std::string &path);

/// Whether a file's name ends in the suffix, given in small letters, in letters of either case, with
/// something ahead of it.
bool hasSuffix(const std::string &fileName, const std::string &suffix);

/// What speaks against reading a volume from this file, in one line, or "".
std::string checkInput(const std::string &fileName);

/// What speaks against writing a picture to this file, in one line, or "". Nothing is created or changed.
std::string checkOutput(const std::string &fileName);

/// The same of a file of any name.
std::string checkFolderOf(const std::string &fileName);

/// Writes a text file anew. False, with one line in `error`, where that fails.
bool writeText(const std::string &fileName, const std::string &text, std::string &error);

} // namespace viewer

#endif
