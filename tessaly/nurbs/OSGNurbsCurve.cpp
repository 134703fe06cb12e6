#include <Tessaly/OSGNurbsCurve.h>

#include <cmath>
#include <cstdint>

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGWindow.h>

#include "../frame/PropertyLink.h"
#include "ControlVolume.h"
#include "GluPass.h"
#include "NurbsInput.h"
#include "NurbsSampling.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The curve that is being tessellated: GLU's callbacks carry no data of their own.
NurbsCurvePtr currentCurve;

void nurbsCError(GLenum code)
{
    FWARNING(("Nurbs Curve error: %d/ %s\n", Int32(code), gluErrorText(code)));
}

void nurbsCurveBegin(GLenum type)
{
    if(const GeoPTypesUI8Ptr types = GeoPTypesUI8Ptr::dcast(currentCurve->getTypes()))
        types->addValue(type);
    currentCurve->setNumVertices(0);
}

void nurbsCurveVertex(GLfloat *vertex)
{
    const GeoPositions3fPtr positions = GeoPositions3fPtr::dcast(currentCurve->getPositions());
    const GeoIndicesUI32Ptr indices = GeoIndicesUI32Ptr::dcast(currentCurve->getIndices());
    if(positions == NullFC || indices == NullFC)
        return;
    positions->addValue(vertex != nullptr ? Pnt3f(vertex[0], vertex[1], vertex[2]) : Pnt3f(0.f, 0.f, 0.f));
    currentCurve->setNumVertices(currentCurve->getNumVertices() + 1);
    indices->addValue(indices->getSize());
}

void nurbsCurveEnd()
{
    if(const GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32Ptr::dcast(currentCurve->getLengths()))
        lengths->addValue(currentCurve->getNumVertices());
}

/// What makes the tessellation out of date.
constexpr BitVector definingFields = NurbsCurve::ControlPointFieldMask | NurbsCurve::OrderFieldMask |
                                     NurbsCurve::KnotFieldMask | NurbsCurve::TessellationFieldMask |
                                     NurbsCurve::ControlCurveFieldMask | NurbsCurve::PolylineFieldMask |
                                     NurbsCurve::FillGeoFieldMask;

GLenum mapType(UInt32 dimension)
{
    return dimension == 4 ? GL_MAP1_VERTEX_4 : GL_MAP1_VERTEX_3;
}

GLenum trimType(UInt32 dimension)
{
    return dimension == 3 ? GLU_MAP1_TRIM_3 : GLU_MAP1_TRIM_2;
}

} // namespace

void NurbsCurve::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::renderActionLeaveHandler));
}

NurbsCurve::NurbsCurve() = default;

NurbsCurve::NurbsCurve(const NurbsCurve &source) : Inherited(source)
{
    _sfDirty.setValue(true);
    _sfSurfaceGLId.setValue(0);
}

NurbsCurve::~NurbsCurve()
{
    if(nurbsRenderer != nullptr)
        gluDeleteNurbsRenderer(nurbsRenderer);
}

void NurbsCurve::onCreate(const NurbsCurve *source)
{
    const NurbsCurvePtr self(*this);
    addRefCP(getControlPoint());
    enterPropertyLink(getControlPoint(), self, ControlPointFieldId);
    // A prototype is never drawn.
    if(GlobalSystemState != Startup && Int32(Thread::getAspect()) != getIgnoreGLForAspect())
    {
        setSurfaceGLId(Int32(Window::registerGLObject(
            [self](Window *win, UInt32 idstatus) { self->handleGL(win, idstatus); }, 1, &leaveGluList)));
        endEditCP(self, SurfaceGLIdFieldMask);
    }
    Inherited::onCreate(source);
}

void NurbsCurve::onDestroy()
{
    setPropertyLink(_sfControlPoint, GeoPositionsPtr(), NurbsCurvePtr(*this), ControlPointFieldId);
    if(getSurfaceGLId() > 0)
        Window::destroyGLObject(UInt32(getSurfaceGLId()), 1);
    Inherited::onDestroy();
}

void NurbsCurve::setControlPoint(const GeoPositionsPtr &value)
{
    setPropertyLink(_sfControlPoint, value, NurbsCurvePtr(*this), ControlPointFieldId);
}

void NurbsCurve::setMaterial(const MaterialPtr &material)
{
    setRefdCP(_sfMaterial.getValue(), material);
}

void NurbsCurve::adjustVolume(Volume &volume)
{
    fitVolume(getControlPoint(), volume);
}

void NurbsCurve::changed(BitVector whichField, UInt32 origin)
{
    const NurbsCurvePtr self(*this);
    if((whichField & ControlPointFieldMask) != 0)
    {
        invalidateVolume();
        repairPropertyLink(_sfControlPoint, self, ControlPointFieldId, origin);
    }
    if((whichField & definingFields) != 0)
    {
        setDirty(true);
        endEditCP(self, DirtyFieldMask);
        Window::refreshGLObject(UInt32(getSurfaceGLId()));
    }
    Inherited::changed(whichField, origin);
}

void NurbsCurve::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsCurve NI" << std::endl;
}

std::string NurbsCurve::findProblem() const
{
    const GeoPositionsPtr points = getControlPoint();
    if(points == NullFC)
        return "";
    const UInt32 dimension = points->getDimension();
    if(getControlCurve())
    {
        const auto control = tessaly::controlValues(*points, trimType(dimension) == GLU_MAP1_TRIM_3 ? 3 : 2);
        return getPolyline() ? tessaly::polylineProblem(control)
                             : tessaly::curveProblem({getKnot().getValues(), getOrder()}, control);
    }
    return tessaly::curveProblem({getKnot().getValues(), getOrder()},
                                 tessaly::controlValues(*points, mapType(dimension) == GL_MAP1_VERTEX_4 ? 4 : 3));
}

void NurbsCurve::setTessProps()
{
    const tessaly::NurbsSampling sampling = tessaly::curveSampling(getTessellation());
    if(sampling.domainDistance)
    {
        gluNurbsProperty(nurbsRenderer, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
        gluNurbsProperty(nurbsRenderer, GLU_U_STEP, sampling.uStep);
    }
    else
    {
        gluNurbsProperty(nurbsRenderer, GLU_SAMPLING_METHOD, GLU_PARAMETRIC_ERROR);
        gluNurbsProperty(nurbsRenderer, GLU_PARAMETRIC_TOLERANCE, sampling.tolerance);
    }
}

void NurbsCurve::renderGeometry()
{
    const GeoPositionsPtr points = getControlPoint();
    if(points == NullFC || !findProblem().empty())
        return;
    const UInt32 dimension = points->getDimension();
    gluBeginCurve(nurbsRenderer);
    gluNurbsCurve(nurbsRenderer, GLint(getKnot().size()), getKnot().getValues().data(), GLint(dimension),
                  reinterpret_cast<GLfloat *>(points->getData()), GLint(getOrder()), mapType(dimension));
    gluEndCurve(nurbsRenderer);
}

void NurbsCurve::createGeometry()
{
    FINFO(("NurbsCurve::createGeometry() called (%p)\n", static_cast<void *>(this)));

    gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
    setTessProps();
    gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
    setGluCallback(nurbsRenderer, GLU_ERROR, &nurbsCError);
    setGluCallback(nurbsRenderer, GLU_NURBS_BEGIN, &nurbsCurveBegin);
    setGluCallback(nurbsRenderer, GLU_NURBS_END, &nurbsCurveEnd);
    setGluCallback(nurbsRenderer, GLU_NURBS_VERTEX, &nurbsCurveVertex);

    const auto lengths = ofKindOrNew<GeoPLengthsUI32Ptr>(getLengths());
    const auto types = ofKindOrNew<GeoPTypesUI8Ptr>(getTypes());
    const auto indices = ofKindOrNew<GeoIndicesUI32Ptr>(getIndices());
    const auto positions = ofKindOrNew<GeoPositions3fPtr>(getPositions());

    const NurbsCurvePtr self(*this);
    currentCurve = self;
    setNumVertices(0);
    setTypes(types);
    setLengths(lengths);
    setIndices(indices);
    setPositions(positions);
    _mfIndexMapping.clear();
    _mfIndexMapping.push_back(MapPosition);
    endEditCP(self, IndexMappingFieldMask | PositionsFieldMask | IndicesFieldMask | LengthsFieldMask | TypesFieldMask |
                        NumVerticesFieldMask);

    types->clear();
    lengths->clear();
    indices->clear();
    positions->clear();
    renderGeometry();
    endEditCP(types);
    endEditCP(lengths);
    endEditCP(indices);
    endEditCP(positions);

    gluNurbsCallback(nurbsRenderer, GLU_NURBS_BEGIN, nullptr);
    gluNurbsCallback(nurbsRenderer, GLU_NURBS_END, nullptr);
    gluNurbsCallback(nurbsRenderer, GLU_NURBS_VERTEX, nullptr);
}

void NurbsCurve::createDList(UInt32 id)
{
    // Address and id stand crosswise to the text, which is meant.
    FINFO(("NurbsCurve::createDList(%d) called (%p)\n", Int32(reinterpret_cast<std::uintptr_t>(this)),
           reinterpret_cast<void *>(std::uintptr_t(id))));

    gluNurbsProperty(nurbsRenderer, GLU_DISPLAY_MODE, GLU_OUTLINE_PATCH);
    gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
    setTessProps();
    gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
    setGluCallback(nurbsRenderer, GLU_ERROR, &nurbsCError);

    const NurbsCurvePtr self(*this);
    currentCurve = self;
    setNumVertices(0);
    endEditCP(self, NumVerticesFieldMask);

    glNewList(id, GL_COMPILE);
    renderGeometry();
    glEndList();
}

void NurbsCurve::handleGL(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;

    const NurbsCurvePtr self(*this);
    if(tessaly::isGluTooOld(gluVersion()))
    {
        FWARNING(("Can't create static geometry with glu version %s. Version 1.3 and above is needed!\n", gluVersion()));
        setFillGeo(false);
        endEditCP(self, FillGeoFieldMask);
    }
    if(status == Window::initialize)
        win->setGLObjectId(id, glGenLists(1));
    if(!getDirty())
        return;

    const std::string problem = findProblem();
    if(!problem.empty())
        SWARNING << "NurbsCurve: not sent to GLU, since " << problem << std::endl;

    nurbsRenderer = gluNewNurbsRenderer();
    if(getFillGeo())
    {
        createGeometry();
    }
    else if(getDlistCache())
    {
        UInt32 list = win->getGLObjectId(id);
        if(list == 0)
        {
            list = glGenLists(1);
            win->setGLObjectId(id, list);
        }
        createDList(list);
    }
    gluDeleteNurbsRenderer(nurbsRenderer);
    nurbsRenderer = nullptr;
    currentCurve = NullFC;

    setDirty(false);
    endEditCP(self, DirtyFieldMask);
}

Action::ResultE NurbsCurve::drawPrimitives(DrawActionBase *action)
{
    Window *const window = action != nullptr ? action->getWindow() : nullptr;
    if(window != nullptr)
        window->validateGLObject(UInt32(getSurfaceGLId()));
    if(getControlCurve())
        return Action::Continue;
    if(getPolyline())
    {
        FWARNING(("NurbsCurve::drawPrimitives NYI for linear segments!\n"));
        return Action::Continue;
    }
    if(getFillGeo())
    {
        Inherited::drawPrimitives(action);
        return Action::Continue;
    }

    nurbsRenderer = gluNewNurbsRenderer();
    if(getDlistCache())
    {
        if(window != nullptr)
            glCallList(window->getGLObjectId(UInt32(getSurfaceGLId())));
    }
    else
    {
        gluNurbsProperty(nurbsRenderer, GLU_DISPLAY_MODE, GLU_OUTLINE_PATCH);
        gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
        setTessProps();
        gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
        renderGeometry();
    }
    gluDeleteNurbsRenderer(nurbsRenderer);
    nurbsRenderer = nullptr;
    return Action::Continue;
}

Action::ResultE NurbsCurve::trim(DrawActionBase *, GLUnurbs *nurb)
{
    if(!getControlCurve())
        return Action::Continue;
    const GeoPositionsPtr points = getControlPoint();
    const std::string problem = points == NullFC ? "there are no control points" : findProblem();
    if(!problem.empty())
    {
        SWARNING << "NurbsCurve: trims nothing, since " << problem << std::endl;
        return Action::Continue;
    }
    const UInt32 dimension = points->getDimension();
    GLfloat *const data = reinterpret_cast<GLfloat *>(points->getData());
    if(getPolyline())
        gluPwlCurve(nurb, GLint(points->getSize()), data, GLint(dimension), trimType(dimension));
    else
        gluNurbsCurve(nurb, GLint(getKnot().size()), getKnot().getValues().data(), GLint(dimension), data,
                      GLint(getOrder()), trimType(dimension));
    return Action::Continue;
}

OSG_END_NAMESPACE
