#ifndef _OSGRENDERPARAMS_H_
#define _OSGRENDERPARAMS_H_

/// \file
/// One word by which a host steers what is drawn in the whole process.

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGConfig.h>

#include <Tessaly/OSGTessalyDef.h>

OSG_BEGIN_NAMESPACE

/// The word, 0 at first. Bit 0: SortedPrimitives makes no new order and draws what it has. The other bits
/// have no meaning. The library itself never sets any. Any thread may call both.
OSG_TESSALY_DLLMAPPING UInt32 getRenderParams();
OSG_TESSALY_DLLMAPPING void setRenderParams(UInt32 params);

OSG_END_NAMESPACE

#endif
