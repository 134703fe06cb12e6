#ifndef TESSALY_NURBS_GLUPASS_H
#define TESSALY_NURBS_GLUPASS_H

/// \file
/// What the passes of curve and surface through GLU share.

#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class Window;

/// The text of a GLU error, never null.
inline const Char8 *gluErrorText(GLenum code)
{
    const GLubyte *const text = gluErrorString(code);
    return text != nullptr ? reinterpret_cast<const Char8 *>(text) : "";
}

/// Sets a callback of whatever arguments GLU has for it.
template <class... ArgumentsT>
void setGluCallback(GLUnurbs *nurb, GLenum which, void (*callback)(ArgumentsT...))
{
    gluNurbsCallback(nurb, which, reinterpret_cast<_GLUfuncptr>(callback));
}

/// What GLU says its version is, never null.
inline const Char8 *gluVersion()
{
    const GLubyte *const version = gluGetString(GLU_VERSION);
    return version != nullptr ? reinterpret_cast<const Char8 *>(version) : "";
}

/// `property` if it is of that kind, else a new one of that kind.
template <class PtrT, class PropertyPtrT>
PtrT ofKindOrNew(const PropertyPtrT &property)
{
    const PtrT same = PtrT::dcast(property);
    return same != NullFC ? same : PtrT::StoredObjectType::create();
}

/// Takes the place of a functor whose core is gone: lists of curves and surfaces are never deleted, which is meant.
inline void leaveGluList(Window *, UInt32) {}

OSG_END_NAMESPACE

#endif
