#include <Tessaly/OSGNurbsSurface.h>

#include <cstdint>

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActorBase.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGWindow.h>
#include <Tessaly/OSGNurbsTrimmingLoop.h>

#include "../frame/PropertyLink.h"
#include "ControlVolume.h"
#include "GluPass.h"
#include "NurbsInput.h"
#include "NurbsSampling.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The surface that is being tessellated: GLU's callbacks carry no data of their own.
NurbsSurfacePtr currentSurface;

void nurbsError(GLenum code)
{
    FWARNING(("Nurbs Surface error: %d/ %s\n", Int32(code), gluErrorText(code)));
}

void nurbsSurfaceBegin(GLenum type)
{
    if(const GeoPTypesUI8Ptr types = GeoPTypesUI8Ptr::dcast(currentSurface->getTypes()))
        types->addValue(type);
    currentSurface->setNumVertices(0);
}

void nurbsSurfaceVertex(GLfloat *vertex)
{
    const GeoPositions3fPtr positions = GeoPositions3fPtr::dcast(currentSurface->getPositions());
    const GeoIndicesUI32Ptr indices = GeoIndicesUI32Ptr::dcast(currentSurface->getIndices());
    if(positions == NullFC || indices == NullFC)
        return;
    positions->addValue(vertex != nullptr ? Pnt3f(vertex[0], vertex[1], vertex[2]) : Pnt3f(0.f, 0.f, 0.f));
    currentSurface->setNumVertices(currentSurface->getNumVertices() + 1);
    indices->addValue(indices->getSize());
}

void nurbsSurfaceNormal(GLfloat *normal)
{
    if(const GeoNormals3fPtr normals = GeoNormals3fPtr::dcast(currentSurface->getNormals()))
        normals->addValue(normal != nullptr ? Vec3f(normal[0], normal[1], normal[2]) : Vec3f(0.f, 0.f, 0.f));
}

void nurbsSurfaceTexCoord(GLfloat *texCoord)
{
    if(const GeoTexCoords2fPtr texCoords = GeoTexCoords2fPtr::dcast(currentSurface->getTexCoords()))
        texCoords->addValue(texCoord != nullptr ? Vec2f(texCoord[0], texCoord[1]) : Vec2f(0.f, 0.f));
}

void nurbsSurfaceEnd()
{
    if(const GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32Ptr::dcast(currentSurface->getLengths()))
        lengths->addValue(currentSurface->getNumVertices());
}

/// What makes the tessellation out of date.
constexpr BitVector definingFields =
    NurbsSurface::ControlPointFieldMask | NurbsSurface::UOrderFieldMask | NurbsSurface::VOrderFieldMask |
    NurbsSurface::UKnotFieldMask | NurbsSurface::VKnotFieldMask | NurbsSurface::UTessellationFieldMask |
    NurbsSurface::VTessellationFieldMask | NurbsSurface::UDimFieldMask | NurbsSurface::VDimFieldMask |
    NurbsSurface::TrimmingLoopFieldMask | NurbsSurface::ControlTexCoordFieldMask | NurbsSurface::FillGeoFieldMask;

/// What is drawn goes by the polygon mode of GL.
GLenum displayMode()
{
    GLint modes[2] = {GL_FILL, GL_FILL};
    glGetIntegerv(GL_POLYGON_MODE, modes);
    switch(modes[0])
    {
    case GL_FILL: return GLU_FILL;
    case GL_LINE: return GLU_OUTLINE_PATCH;
    default: return GLU_OUTLINE_POLYGON;
    }
}

} // namespace

void NurbsSurface::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::renderActionLeaveHandler));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Geometry::intersect));
    IntersectActorBase::regClassEnter(makeActorFunctor(&Geometry::intersectActor), getClassType());
}

NurbsSurface::NurbsSurface() = default;

NurbsSurface::NurbsSurface(const NurbsSurface &source) : Inherited(source)
{
    _sfDirty.setValue(true);
    _sfSurfaceGLId.setValue(0);
}

NurbsSurface::~NurbsSurface()
{
    if(nurbsRenderer != nullptr)
        gluDeleteNurbsRenderer(nurbsRenderer);
}

void NurbsSurface::onCreate(const NurbsSurface *source)
{
    const NurbsSurfacePtr self(*this);
    addRefCP(getControlPoint());
    enterPropertyLink(getControlPoint(), self, ControlPointFieldId);
    addRefCP(getControlTexCoord());
    enterPropertyLink(getControlTexCoord(), self, ControlTexCoordFieldId);
    _heldTrimmingLoop.follow(_mfTrimmingLoop, ChangedOrigin::External);
    // A prototype is never drawn.
    if(GlobalSystemState != Startup && Int32(Thread::getAspect()) != getIgnoreGLForAspect())
    {
        setSurfaceGLId(Int32(Window::registerGLObject(
            [self](Window *win, UInt32 idstatus) { self->handleGL(win, idstatus); }, 1, &leaveGluList)));
        endEditCP(self, SurfaceGLIdFieldMask);
    }
    Inherited::onCreate(source);
}

void NurbsSurface::onDestroy()
{
    const NurbsSurfacePtr self(*this);
    setPropertyLink(_sfControlPoint, GeoPositionsPtr(), self, ControlPointFieldId);
    setPropertyLink(_sfControlTexCoord, GeoTexCoordsPtr(), self, ControlTexCoordFieldId);
    _heldTrimmingLoop.release();
    if(getSurfaceGLId() > 0)
        Window::destroyGLObject(UInt32(getSurfaceGLId()), 1);
    Inherited::onDestroy();
}

void NurbsSurface::setControlPoint(const GeoPositionsPtr &value)
{
    setPropertyLink(_sfControlPoint, value, NurbsSurfacePtr(*this), ControlPointFieldId);
}

void NurbsSurface::setControlTexCoord(const GeoTexCoordsPtr &value)
{
    setPropertyLink(_sfControlTexCoord, value, NurbsSurfacePtr(*this), ControlTexCoordFieldId);
}

void NurbsSurface::adjustVolume(Volume &volume)
{
    fitVolume(getControlPoint(), volume);
}

void NurbsSurface::changed(BitVector whichField, UInt32 origin)
{
    const NurbsSurfacePtr self(*this);
    if((whichField & ControlPointFieldMask) != 0)
    {
        invalidateVolume();
        repairPropertyLink(_sfControlPoint, self, ControlPointFieldId, origin);
    }
    if((whichField & ControlTexCoordFieldMask) != 0)
        repairPropertyLink(_sfControlTexCoord, self, ControlTexCoordFieldId, origin);
    if((whichField & TrimmingLoopFieldMask) != 0)
        _heldTrimmingLoop.follow(_mfTrimmingLoop, origin);
    if((whichField & definingFields) != 0)
    {
        setDirty(true);
        endEditCP(self, DirtyFieldMask);
        Window::refreshGLObject(UInt32(getSurfaceGLId()));
    }
    Inherited::changed(whichField, origin);
}

void NurbsSurface::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsSurface NI" << std::endl;
}

std::string NurbsSurface::findProblem() const
{
    const GeoPositionsPtr points = getControlPoint();
    const GeoTexCoordsPtr texCoords = getControlTexCoord();
    if(points == NullFC || texCoords == NullFC)
        return "";
    const tessaly::KnotRow u(getUKnot().getValues(), getUOrder());
    const tessaly::KnotRow v(getVKnot().getValues(), getVOrder());
    std::string problem =
        tessaly::surfaceProblem(u, v, getUDim(), tessaly::controlValues(*points, points->getDimension() == 4 ? 4 : 3));
    if(problem.empty())
    {
        problem = tessaly::surfaceProblem(u, v, getUDim(), tessaly::controlValues(*texCoords, 2));
        if(!problem.empty())
            problem = "of the texture coordinates " + problem;
    }
    return problem;
}

void NurbsSurface::setTessProps(bool fixedSteps)
{
    const tessaly::NurbsSampling sampling =
        tessaly::surfaceSampling(fixedSteps, getUTessellation(), getVTessellation(), getUDim(), getVDim());
    if(sampling.domainDistance)
    {
        // GLU's first parameter is V here, and yet its step is made from uTessellation, which is meant.
        gluNurbsProperty(nurbsRenderer, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
        gluNurbsProperty(nurbsRenderer, GLU_U_STEP, sampling.uStep);
        gluNurbsProperty(nurbsRenderer, GLU_V_STEP, sampling.vStep);
    }
    else
    {
        gluNurbsProperty(nurbsRenderer, GLU_SAMPLING_METHOD, GLU_PARAMETRIC_ERROR);
        gluNurbsProperty(nurbsRenderer, GLU_PARAMETRIC_TOLERANCE, sampling.tolerance);
    }
}

void NurbsSurface::renderGeometry()
{
    const GeoPositionsPtr points = getControlPoint();
    const GeoTexCoordsPtr texCoords = getControlTexCoord();
    if(points == NullFC || texCoords == NullFC || !findProblem().empty())
        return;

    // Both nets lie over the same knots.
    const auto send = [this](GeoProperty &net, GLenum type) {
        const GLint dimension = GLint(net.getDimension());
        gluNurbsSurface(nurbsRenderer, GLint(getVKnot().size()), getVKnot().getValues().data(), GLint(getUKnot().size()),
                        getUKnot().getValues().data(), GLint(getUDim()) * dimension, dimension,
                        reinterpret_cast<GLfloat *>(net.getData()), GLint(getVOrder()), GLint(getUOrder()), type);
    };
    gluBeginSurface(nurbsRenderer);
    send(*points, points->getDimension() == 4 ? GL_MAP2_VERTEX_4 : GL_MAP2_VERTEX_3);
    send(*texCoords, GL_MAP2_TEXTURE_COORD_2);
    for(const NodeCorePtr &core : getTrimmingLoop())
    {
        const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoopPtr::dcast(core);
        if(loop == NullFC)
            continue;
        gluBeginTrim(nurbsRenderer);
        loop->trim(nullptr, nurbsRenderer);
        gluEndTrim(nurbsRenderer);
    }
    gluEndSurface(nurbsRenderer);
}

void NurbsSurface::createGeometry()
{
    if(nurbsRenderer == nullptr)
    {
        SWARNING << "NurbsSurface: createGeometry called outside of a pass of GLU, nothing is tessellated" << std::endl;
        return;
    }
    FINFO(("NurbsSurface::createGeometry() called (%p)\n", static_cast<void *>(this)));

    gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
    setTessProps(true);
    gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
    setGluCallback(nurbsRenderer, GLU_ERROR, &nurbsError);
    setGluCallback(nurbsRenderer, GLU_NURBS_BEGIN, &nurbsSurfaceBegin);
    setGluCallback(nurbsRenderer, GLU_NURBS_END, &nurbsSurfaceEnd);
    setGluCallback(nurbsRenderer, GLU_NURBS_VERTEX, &nurbsSurfaceVertex);
    setGluCallback(nurbsRenderer, GLU_NURBS_NORMAL, &nurbsSurfaceNormal);
    setGluCallback(nurbsRenderer, GLU_NURBS_TEXTURE_COORD, &nurbsSurfaceTexCoord);

    const auto lengths = ofKindOrNew<GeoPLengthsUI32Ptr>(getLengths());
    const auto types = ofKindOrNew<GeoPTypesUI8Ptr>(getTypes());
    const auto indices = ofKindOrNew<GeoIndicesUI32Ptr>(getIndices());
    const auto positions = ofKindOrNew<GeoPositions3fPtr>(getPositions());
    const auto normals = ofKindOrNew<GeoNormals3fPtr>(getNormals());
    const auto texCoords = ofKindOrNew<GeoTexCoords2fPtr>(getTexCoords());

    const NurbsSurfacePtr self(*this);
    currentSurface = self;
    setNumVertices(0);
    setTypes(types);
    setLengths(lengths);
    setIndices(indices);
    setPositions(positions);
    setNormals(normals);
    setTexCoords(texCoords);
    _mfIndexMapping.clear();
    _mfIndexMapping.push_back(UInt16(MapPosition | MapNormal | MapTexCoords));
    endEditCP(self, IndexMappingFieldMask | TexCoordsFieldMask | NormalsFieldMask | PositionsFieldMask | IndicesFieldMask |
                        LengthsFieldMask | TypesFieldMask | NumVerticesFieldMask);

    types->clear();
    lengths->clear();
    indices->clear();
    positions->clear();
    normals->clear();
    texCoords->clear();
    renderGeometry();
    endEditCP(types);
    endEditCP(lengths);
    endEditCP(indices);
    endEditCP(positions);
    endEditCP(normals);
    endEditCP(texCoords);

    for(const GLenum which : {GLU_NURBS_BEGIN, GLU_NURBS_END, GLU_NURBS_VERTEX, GLU_NURBS_NORMAL, GLU_NURBS_TEXTURE_COORD})
        gluNurbsCallback(nurbsRenderer, which, nullptr);
}

void NurbsSurface::createDList(UInt32 id)
{
    // Address and id stand crosswise to the text, which is meant.
    FINFO(("NurbsSurface::createDList(%d) called (%p)\n", Int32(reinterpret_cast<std::uintptr_t>(this)),
           reinterpret_cast<void *>(std::uintptr_t(id))));

    gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
    setTessProps(true);
    gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
    setGluCallback(nurbsRenderer, GLU_ERROR, &nurbsError);

    const NurbsSurfacePtr self(*this);
    currentSurface = self;
    setNumVertices(0);
    endEditCP(self, NumVerticesFieldMask);

    glNewList(id, GL_COMPILE);
    glEnable(GL_AUTO_NORMAL);
    glEnable(GL_NORMALIZE);
    renderGeometry();
    glDisable(GL_NORMALIZE);
    glDisable(GL_AUTO_NORMAL);
    glEndList();
}

void NurbsSurface::handleGL(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;

    const NurbsSurfacePtr self(*this);
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
        SWARNING << "NurbsSurface: not sent to GLU, since " << problem << std::endl;

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
    currentSurface = NullFC;

    setDirty(false);
    endEditCP(self, DirtyFieldMask);
}

Action::ResultE NurbsSurface::drawPrimitives(DrawActionBase *action)
{
    Window *const window = action != nullptr ? action->getWindow() : nullptr;
    if(window != nullptr)
        window->validateGLObject(UInt32(getSurfaceGLId()));
    if(getFillGeo())
    {
        Inherited::drawPrimitives(action);
        return Action::Continue;
    }

    nurbsRenderer = gluNewNurbsRenderer();
    gluNurbsProperty(nurbsRenderer, GLU_DISPLAY_MODE, GLfloat(displayMode()));
    if(getDlistCache())
    {
        if(window != nullptr)
            glCallList(window->getGLObjectId(UInt32(getSurfaceGLId())));
    }
    else
    {
        gluNurbsProperty(nurbsRenderer, GLU_CULLING, GL_FALSE);
        setTessProps(true);
        gluNurbsProperty(nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
        // The mask leaves the enables out: unlike with a list both stay on behind the drawing, which is meant.
        glPushAttrib(0xFA1);
        glEnable(GL_AUTO_NORMAL);
        glEnable(GL_NORMALIZE);
        renderGeometry();
        glPopAttrib();
    }
    gluDeleteNurbsRenderer(nurbsRenderer);
    nurbsRenderer = nullptr;
    return Action::Continue;
}

OSG_END_NAMESPACE
