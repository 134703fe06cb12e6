#ifndef _OSGSIMPLEATTACHMENTS_H_
#define _OSGSIMPLEATTACHMENTS_H_

/// \file
/// The attachments that hold one value.

#include "OSGName.h"

#endif
