#ifndef _OSGTESSALYDEF_H_
#define _OSGTESSALYDEF_H_

/// \file
/// What the library exports.

/// The library is built with hidden visibility; a class or function with this mark can be reached by hosts.
#define OSG_TESSALY_DLLMAPPING __attribute__((visibility("default")))

#endif
