#ifndef TESSALY_VIEW_AUTOMATICTRANSFERFUNCTION_H
#define TESSALY_VIEW_AUTOMATICTRANSFERFUNCTION_H

/// \file
/// A transfer function for a volume that nothing is known about but its histogram.

#include "Histogram.h"
#include "TransferPoints.h"

namespace viewer
{

/// The background, up to backgroundThreshold(), is transparent; above it the opacity rises to nearly 1 at the
/// brightest values, and the colours run from a dark red over flesh to the white of bone. Both lists begin at
/// position 0, end at position 1 and never fall. A volume of one value only becomes transparent up to that
/// value.
TransferPoints automaticTransferFunction(const Histogram &histogram);

} // namespace viewer

#endif
