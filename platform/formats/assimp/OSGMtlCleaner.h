#ifndef _OSGMTLCLEANER_H_
#define _OSGMTLCLEANER_H_

/// \file
/// Material files of OBJ brought to what is read of them.

#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// The materials in a file with their names, colours (Ka, Kd, Ks, Ke), shininess and opacity, and nothing
/// else. Statements ahead of the first material and those without proper numbers are left out. `textures`
/// gets the names of the pictures that materials ask for.
std::string cleanMtl(const std::vector<UInt8> &bytes, std::vector<std::string> &textures);

OSG_END_NAMESPACE

#endif
