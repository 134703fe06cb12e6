#ifndef _OSGGL_H_
#define _OSGGL_H_

/// \file
/// The OpenGL and GLU headers. What goes beyond OpenGL 1.1 is declared as function pointer types only, since
/// it is fetched at run time through a window.

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#endif
