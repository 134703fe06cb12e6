#ifndef TESSALY_TRANSFERTEXT_H
#define TESSALY_TRANSFERTEXT_H

/// \file
/// GLSL of the transfer functions.
///
/// Each text defines getClassification, applyCorrectionFactor and compositeColor and declares
/// correctionFactor, the number of steps per edge of the unit cube that opacities are meant for.

#include <cstdint>
#include <string>

namespace tessaly
{

/// Classification by one value. Declares transferFunction, a table of one dimension in form 0, and of two in
/// form 1, where the value is split into row and column.
/// \param form 0 or 1; any other gives an empty text
std::string simpleTransferfunctionText(std::uint32_t form);

/// Classification by the pair of values at the ends of a step. Declares preIntTable, averages per pair in
/// form 0; any other form takes differences of running integrals, and declares transferFunction for equal
/// values.
std::string preintTransferFunctionText(std::uint32_t form);

} // namespace tessaly

#endif
