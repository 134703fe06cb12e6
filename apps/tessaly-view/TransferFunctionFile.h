#ifndef TESSALY_VIEW_TRANSFERFUNCTIONFILE_H
#define TESSALY_VIEW_TRANSFERFUNCTIONFILE_H

/// \file
/// Transfer functions in text files.

#include "TransferPoints.h"

#include <string>

namespace viewer
{

/// What came of reading; without `error` there are points.
struct TransferFunctionText
{
    TransferPoints points;
    std::string error;   ///< one line "name:line: what is wrong", or ""
    std::string warning; ///< one line about a file that is right but hardly meant so, or ""
};

/// Reads the text: the number of opacity points; position and opacity of each; the number of colour points;
/// position, red, green and blue of each. Numbers are separated by any white space; all but the counts lie in
/// 0 to 1; the positions of a list do not descend. There is nothing else in the file, and no comments. \param
/// name what messages call the text
TransferFunctionText parseTransferFunction(const std::string &text, const std::string &name);

/// The same from a file.
TransferFunctionText readTransferFunction(const std::string &fileName);

/// The text that is read as just these points.
std::string transferFunctionText(const TransferPoints &points);

} // namespace viewer

#endif
