#ifndef _OSGNURBSSURFACE_H_
#define _OSGNURBSSURFACE_H_

/// \file
/// The core of a NURBS surface.

#include <string>

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGHeldReferences.h>
#include <Tessaly/OSGNurbsSurfaceBase.h>

class GLUnurbs;

OSG_BEGIN_NAMESPACE

/// A surface that GLU evaluates, trimmed and textured. By default (fillGeo) it is tessellated once into the inherited
/// properties, as positions, normals and texture coordinates with one index for all three, and is drawn and hit like any
/// geometry from then on. Otherwise GLU draws it every frame or through a display list.
///
/// The net has uDim points in a row: U is fastest. Its directions are GLU's crosswise, V being GLU's first parameter, so that
/// normals are the cross product of the derivatives along V and along U, and trimming curves have V as x and U as y. The
/// tessellation fields are not crossed: uTessellation is the step of GLU's first parameter.
///
/// Nothing happens to GL while the surface is edited; the next draw tessellates anew, on the thread that draws the window and
/// with its context current. Surfaces are tessellated one at a time in a process. The bounds are those of the control points.
/// A list that was made in one window is not made in another one before a field changes.
class OSG_TESSALY_DLLMAPPING NurbsSurface : public NurbsSurfaceBase
{
  public:
    typedef NurbsSurfaceBase Inherited;

    // These take a reference and enter the surface as the property's parent; the old one is let go.
    /// Takes a reference on the property, and gives back that on the old one. Null is allowed.
    void setControlPoint(const GeoPositionsPtr &value);
    void setControlTexCoord(const GeoTexCoordsPtr &value);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Always Continue.
    Action::ResultE drawPrimitives(DrawActionBase *action) override;

    /// Tessellates into the inherited properties, which are made anew where they are of another kind. A part of a pass of GLU:
    /// nurbsRenderer must be set.
    void createGeometry();

    GLUnurbs *nurbsRenderer = nullptr; ///< null but for the time of a pass of GLU

  protected:
    NurbsSurface();
    /// A copy shares the control points and the properties; it is dirty, and its GL object is its own.
    NurbsSurface(const NurbsSurface &source);
    ~NurbsSurface() override;

    void onCreate(const NurbsSurface *source = nullptr);
    void onDestroy() override;

    void adjustVolume(Volume &volume) override;

    /// Called through Window::validateGLObject.
    void handleGL(Window *win, UInt32 idstatus);

    // Parts of a pass; nurbsRenderer is set.

    /// Compiles the list of that GL name.
    void createDList(UInt32 id);
    /// Sends the surface; nothing without control points or texture coordinates, or where GLU would read past them.
    void renderGeometry();
    /// Sets the sampling from the tessellation fields.
    void setTessProps(bool fixedSteps);

  private:
    friend class FieldContainer;
    friend class NurbsSurfaceBase;

    static void initMethod();

    /// Why the surface is not sent, or "".
    std::string findProblem() const;

    HeldReferences<NodeCorePtr> _heldTrimmingLoop;
};

OSG_END_NAMESPACE

#endif
