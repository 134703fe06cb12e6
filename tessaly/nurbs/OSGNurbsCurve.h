#ifndef _OSGNURBSCURVE_H_
#define _OSGNURBSCURVE_H_

/// \file
/// The core of a NURBS curve.

#include <string>

#include <OpenSG/OSGGeometry.h>
#include <Tessaly/OSGNurbsCurveBase.h>

class GLUnurbs;

OSG_BEGIN_NAMESPACE

/// A curve that GLU evaluates, in one of three uses: tessellated once into the inherited properties and drawn from there
/// (fillGeo, the default), drawn by GLU every frame or through a display list, or as a part of a contour that trims a surface
/// (controlCurve), which is never drawn.
///
/// GLU hands out the vertices of a curve with four-component control points undivided, and they are stored as they come: with
/// weights other than 1 the tessellated form is off the true curve, which is meant to stay. The list form and the direct form
/// draw such a curve rightly.
///
/// Nothing happens to GL while the curve is edited; the next draw tessellates anew, on the thread that draws the window and
/// with its context current. Curves are tessellated one at a time in a process. The bounds are those of the control points.
/// A list that was made in one window is not made in another one before a field changes.
class OSG_TESSALY_DLLMAPPING NurbsCurve : public NurbsCurveBase
{
  public:
    typedef NurbsCurveBase Inherited;

    /// Takes a reference on the control points and enters the curve as their parent; the old ones are let go.
    void setControlPoint(const GeoPositionsPtr &value);
    /// Takes a reference on the material and gives back that on the old one.
    void setMaterial(const MaterialPtr &material);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Always Continue.
    Action::ResultE drawPrimitives(DrawActionBase *action) override;

    /// Sends a trimming curve to `nurb`, the renderer of the surface, between gluBeginTrim and gluEndTrim. Nothing without
    /// controlCurve. `action` is not read. A curve that GLU would read past its points is left out, with one warning. Always
    /// Continue.
    virtual Action::ResultE trim(DrawActionBase *action, GLUnurbs *nurb);

    GLUnurbs *nurbsRenderer = nullptr; ///< null but for the time of a pass of GLU

  protected:
    NurbsCurve();
    /// A copy shares the control points and the properties; it is dirty, and its GL object is its own.
    NurbsCurve(const NurbsCurve &source);
    ~NurbsCurve() override;

    void onCreate(const NurbsCurve *source = nullptr);
    void onDestroy() override;

    void adjustVolume(Volume &volume) override;

    /// Called through Window::validateGLObject.
    void handleGL(Window *win, UInt32 idstatus);

    // Parts of a pass; nurbsRenderer is set.

    /// Tessellates into the inherited properties, which are made anew where they are of another kind.
    void createGeometry();
    /// Compiles the list of that GL name.
    void createDList(UInt32 id);
    /// Sends the curve; nothing without control points or where GLU would read past them.
    void renderGeometry();
    /// Sets the sampling from tessellation.
    void setTessProps();

  private:
    friend class FieldContainer;
    friend class NurbsCurveBase;

    static void initMethod();

    /// Why the curve, or the trimming curve, is not sent, or "".
    std::string findProblem() const;
};

OSG_END_NAMESPACE

#endif
