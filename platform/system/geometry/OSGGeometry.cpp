#include "OSGGeometry.h"

#include <algorithm>

#include "OSGBaseInitFunctions.h"
#include "OSGDrawAction.h"
#include "OSGGL.h"
#include "OSGGeoPositions3f.h"
#include "OSGGeometryDrawer.h"
#include "OSGIntersectAction.h"
#include "OSGIntersectActor.h"
#include "OSGLog.h"
#include "OSGMaterial.h"
#include "OSGNode.h"
#include "OSGRenderAction.h"
#include "OSGTriangleIterator.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

// Behind the end of a geometry: all that is known is the window and the id.
void destroyList(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::destroy)
        return;
    if(win->getGLObjectId(id) != 0)
        glDeleteLists(win->getGLObjectId(id), 1);
    win->setGLObjectId(id, 0);
}

void destroyBuffer(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::destroy)
        return;
    if(win->getGLObjectId(id) != 0)
        GeometryDrawer::deleteBuffer(win, win->getGLObjectId(id));
    win->setGLObjectId(id, 0);
}

void extend(Pnt3f &low, Pnt3f &high, const Pnt3f &point)
{
    for(UInt32 axis = 0; axis < 3; ++axis)
    {
        low[axis] = std::min(low[axis], point[axis]);
        high[axis] = std::max(high[axis], point[axis]);
    }
}

/// The nearest triangle on the line that is not behind its start.
struct NearestTriangle
{
    Real32 t = 0.f;
    Int32 index = -1;
    Vec3f normal;
};

NearestTriangle findNearestTriangle(const GeometryPtr &geometry, const Line &line)
{
    NearestTriangle nearest;
    TriangleIterator triangle(geometry);
    for(triangle.setToBegin(); !triangle.isAtEnd(); ++triangle)
    {
        Real32 t = 0.f;
        Vec3f normal;
        if(!line.intersect(triangle.getPosition(0), triangle.getPosition(1), triangle.getPosition(2), t,
                           &normal))
            continue;
        if(t >= 0.f && (nearest.index < 0 || t < nearest.t))
        {
            nearest.t = t;
            nearest.index = triangle.getIndex();
            nearest.normal = normal;
        }
    }
    return nearest;
}

} // namespace

void Geometry::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionLeaveHandler));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Geometry::intersect));
    IntersectActorBase::regClassEnter(makeActorFunctor(&Geometry::intersectActor), getClassType());
}

Geometry::Geometry() = default;

Geometry::Geometry(const Geometry &source) : Inherited(source)
{
    _sfGLId.setValue(0);
    _sfVBOGLId.setValue(0);
    _sfIndexRangeValid.setValue(false);
}

Geometry::~Geometry() = default;

template <class FunctionT>
void Geometry::forEachProperty(const FunctionT &function)
{
    function(_sfTypes, TypesFieldId);
    function(_sfLengths, LengthsFieldId);
    function(_sfPositions, PositionsFieldId);
    function(_sfNormals, NormalsFieldId);
    function(_sfColors, ColorsFieldId);
    function(_sfSecondaryColors, SecondaryColorsFieldId);
    function(_sfTexCoords, TexCoordsFieldId);
    function(_sfTexCoords1, TexCoords1FieldId);
    function(_sfTexCoords2, TexCoords2FieldId);
    function(_sfTexCoords3, TexCoords3FieldId);
    function(_sfTexCoords4, TexCoords4FieldId);
    function(_sfTexCoords5, TexCoords5FieldId);
    function(_sfTexCoords6, TexCoords6FieldId);
    function(_sfTexCoords7, TexCoords7FieldId);
    function(_sfIndices, IndicesFieldId);
}

// The new property is referenced first: setting the same one again must not end it.
template <class PtrT>
void Geometry::setProperty(SField<PtrT> &field, const PtrT &value, UInt32 fieldId)
{
    const PtrT taken = value;
    addRefCP(taken);
    const PtrT old = field.getValue();
    if(old != NullFC)
    {
        old->subParent(GeometryPtr(*this));
        endEditCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }
    if(taken != NullFC)
    {
        taken->addParent(GeometryPtr(*this), UInt16(fieldId));
        endEditCP(taken, Attachment::ParentsFieldMask);
    }
    field.setValue(taken);
}

template <class PtrT>
void Geometry::repair(SField<PtrT> &field, UInt32 fieldId, BitVector whichField, UInt32 origin)
{
    if((whichField & (BitVector(1) << fieldId)) == 0 || (origin & ChangedOrigin::Abstract) == 0)
        return;
    const PtrT value = field.getValue();
    if((origin & ChangedOrigin::AbstrCheckValid) != 0)
    {
        if(value == NullFC || value->findParent(GeometryPtr(*this)) != -1)
            return;
    }
    else if((origin & ChangedOrigin::AbstrIncRefCount) != 0)
    {
        addRefCP(value);
        return;
    }
    // Written without its setter: nothing is known yet of what is to be let go.
    field.setValue(NullFC);
    setProperty(field, value, fieldId);
}

void Geometry::onCreate(const Geometry *source)
{
    const GeometryPtr self(*this);
    forEachProperty([&self](auto &field, UInt32 fieldId) {
        const auto value = field.getValue();
        if(value == NullFC)
            return;
        addRefCP(value);
        value->addParent(self, UInt16(fieldId));
        endEditCP(value, Attachment::ParentsFieldMask);
    });
    // A prototype is never drawn.
    if(GlobalSystemState != Startup && Int32(Thread::getAspect()) != getIgnoreGLForAspect())
    {
        setGLId(Int32(Window::registerGLObject(
            [self](Window *win, UInt32 idstatus) { self->handleGL(win, idstatus); }, 1, &destroyList)));
        setVBOGLId(Int32(Window::registerGLObject(
            [self](Window *win, UInt32 idstatus) { self->handleVBO(win, idstatus); }, 2, &destroyBuffer)));
        endEditNotChangedCP(self, GLIdFieldMask | VBOGLIdFieldMask);
    }
    Inherited::onCreate(source);
}

void Geometry::onDestroy()
{
    if(getGLId() > 0)
        Window::destroyGLObject(UInt32(getGLId()), 1);
    if(getVBOGLId() > 0)
        Window::destroyGLObject(UInt32(getVBOGLId()), 2);
    forEachProperty([this](auto &field, UInt32 fieldId) {
        if(field.getValue() != NullFC)
            this->setProperty(field, std::decay_t<decltype(field.getValue())>(), fieldId);
    });
    Inherited::onDestroy();
}

void Geometry::setTypes(const GeoPTypesPtr &value)
{
    setProperty(_sfTypes, value, TypesFieldId);
}

void Geometry::setLengths(const GeoPLengthsPtr &value)
{
    setProperty(_sfLengths, value, LengthsFieldId);
}

void Geometry::setPositions(const GeoPositionsPtr &value)
{
    setProperty(_sfPositions, value, PositionsFieldId);
}

void Geometry::setNormals(const GeoNormalsPtr &value)
{
    setProperty(_sfNormals, value, NormalsFieldId);
}

void Geometry::setColors(const GeoColorsPtr &value)
{
    setProperty(_sfColors, value, ColorsFieldId);
}

void Geometry::setSecondaryColors(const GeoColorsPtr &value)
{
    setProperty(_sfSecondaryColors, value, SecondaryColorsFieldId);
}

void Geometry::setTexCoords(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords, value, TexCoordsFieldId);
}

void Geometry::setTexCoords1(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords1, value, TexCoords1FieldId);
}

void Geometry::setTexCoords2(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords2, value, TexCoords2FieldId);
}

void Geometry::setTexCoords3(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords3, value, TexCoords3FieldId);
}

void Geometry::setTexCoords4(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords4, value, TexCoords4FieldId);
}

void Geometry::setTexCoords5(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords5, value, TexCoords5FieldId);
}

void Geometry::setTexCoords6(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords6, value, TexCoords6FieldId);
}

void Geometry::setTexCoords7(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords7, value, TexCoords7FieldId);
}

void Geometry::setIndices(const GeoIndicesPtr &value)
{
    setProperty(_sfIndices, value, IndicesFieldId);
}

GeoTexCoordsPtr Geometry::getTexCoordsOfUnit(UInt32 unit) const
{
    switch(unit)
    {
    case 0: return getTexCoords();
    case 1: return getTexCoords1();
    case 2: return getTexCoords2();
    case 3: return getTexCoords3();
    case 4: return getTexCoords4();
    case 5: return getTexCoords5();
    case 6: return getTexCoords6();
    case 7: return getTexCoords7();
    default: return NullFC;
    }
}

const GeoProperty *Geometry::getAttribute(UInt16 attribute) const
{
    switch(attribute)
    {
    case MapPosition: return getPositions().getCPtr();
    case MapNormal: return getNormals().getCPtr();
    case MapColor: return getColors().getCPtr();
    case MapSecondaryColor: return getSecondaryColors().getCPtr();
    case MapTexCoords: return getTexCoords().getCPtr();
    case MapTexCoords1: return getTexCoords1().getCPtr();
    case MapTexCoords2: return getTexCoords2().getCPtr();
    case MapTexCoords3: return getTexCoords3().getCPtr();
    case MapTexCoords4: return getTexCoords4().getCPtr();
    case MapTexCoords5: return getTexCoords5().getCPtr();
    case MapTexCoords6: return getTexCoords6().getCPtr();
    case MapTexCoords7: return getTexCoords7().getCPtr();
    default: return nullptr;
    }
}

Int32 Geometry::calcMappingIndex(UInt16 attribute) const
{
    // Without indices the properties go side by side, whatever the mapping says.
    const MFUInt16 &mapping = getIndexMapping();
    if(mapping.empty() || getIndices() == NullFC)
        return 0;
    for(UInt32 i = 0; i < mapping.size(); ++i)
        if((mapping[i] & attribute) != 0)
            return Int32(i);
    return -1;
}

void Geometry::adjustVolume(Volume &volume)
{
    volume.setValid();
    const GeoPositionsPtr positions = getPositions();
    if(positions == NullFC || positions->getSize() == 0)
        return;
    Pnt3f low = positions->getValue(0);
    Pnt3f high = low;
    if(const GeoPositions3fPtr plain = GeoPositions3fPtr::dcast(positions))
    {
        for(const Pnt3f &point : plain->getField())
            extend(low, high, point);
    }
    else
    {
        for(UInt32 i = 1; i < positions->getSize(); ++i)
            extend(low, high, positions->getValue(i));
    }
    volume.extendBy(low);
    volume.extendBy(high);
}

GeometryDrawer &Geometry::drawer()
{
    if(_drawer == nullptr)
        _drawer = std::make_unique<GeometryDrawer>();
    return *_drawer;
}

void Geometry::refreshGL()
{
    if(getGLId() > 0)
        Window::refreshGLObject(UInt32(getGLId()));
    if(getVBOGLId() > 0)
        Window::refreshGLObject(UInt32(getVBOGLId()), 2);
}

Action::ResultE Geometry::drawPrimitives(DrawActionBase *action)
{
    Window *const window = action != nullptr ? action->getWindow() : nullptr;
    // What GL keeps may be of arrays that have moved without an edit; a new plan does not fit it.
    if(drawer().update(*this))
        refreshGL();
    const DrawPlan &plan = drawer().plan();
    setMinindex(plan.minIndex);
    setMaxindex(plan.maxIndex);
    setIndexRangeValid(true);
    if(plan.ranges.empty())
        return Action::Continue;

    if(getVbo() && getVBOGLId() > 0 && GeometryDrawer::hasBuffers(window))
    {
        const UInt32 id = UInt32(getVBOGLId());
        window->validateGLObject(id);
        if(drawer().isIndexed())
            window->validateGLObject(id + 1);
        drawer().drawFromBuffers(window, window->getGLObjectId(id), window->getGLObjectId(id + 1));
    }
    else if(getDlistCache() && getGLId() > 0 && window != nullptr)
    {
        window->validateGLObject(UInt32(getGLId()));
        if(const UInt32 list = window->getGLObjectId(UInt32(getGLId())))
            glCallList(list);
        else
            drawer().drawFromMemory(window);
    }
    else
    {
        drawer().drawFromMemory(window);
    }

    if(action != nullptr)
    {
        StatCollector *const statistics = action->getStatistics();
        statistics->getElem(statNTriangles)->add(Int32(plan.counts.triangles));
        statistics->getElem(statNLines)->add(Int32(plan.counts.lines));
        statistics->getElem(statNPoints)->add(Int32(plan.counts.points));
        statistics->getElem(statNVertices)->add(Int32(plan.counts.vertices));
        statistics->getElem(statNPrimitives)->add(Int32(plan.counts.primitives));
        statistics->getElem(statNGeoBytes)->add(Int32(drawer().bytes()));
    }
    return Action::Continue;
}

void Geometry::handleGL(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;
    UInt32 list = win->getGLObjectId(id);
    if(list == 0)
    {
        list = glGenLists(1);
        win->setGLObjectId(id, list);
    }
    if(list == 0)
        return;
    drawer().update(*this);
    glNewList(list, GL_COMPILE);
    drawer().drawFromMemory(win);
    glEndList();
    drawer().releaseExpanded();
}

void Geometry::handleVBO(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;
    if(win->getGLObjectId(id) == 0)
        win->setGLObjectId(id, GeometryDrawer::makeBuffer(win));
    drawer().update(*this);
    if(id == UInt32(getVBOGLId()))
        drawer().fillVertexBuffer(win, win->getGLObjectId(id));
    else
        drawer().fillIndexBuffer(win, win->getGLObjectId(id));
}

Action::ResultE Geometry::intersect(Action *action)
{
    IntersectAction *const intersect = dynamic_cast<IntersectAction *>(action);
    const NodePtr node = action->getActNode();
    if(!node->getVolume(true).intersect(intersect->getLine()))
        return Action::Skip;
    const NearestTriangle nearest = findNearestTriangle(GeometryPtr(*this), intersect->getLine());
    if(nearest.index >= 0)
        intersect->setHit(nearest.t, node, nearest.index, nearest.normal);
    return Action::Continue;
}

IntersectActorBase::ResultE Geometry::intersectActor(IntersectActorBase::FunctorArgumentType &argument)
{
    IntersectActor *const actor = dynamic_cast<IntersectActor *>(argument.getActor());
    if(actor == nullptr)
        return NewActionTypes::Continue;
    if(!argument.getNode()->getVolume(true).intersect(actor->getRay()))
        return NewActionTypes::Skip;
    const NearestTriangle nearest = findNearestTriangle(GeometryPtr(*this), actor->getRay());
    if(nearest.index >= 0)
        actor->setHit(nearest.t, argument.getNode(), nearest.index, nearest.normal);
    return NewActionTypes::Continue;
}

void Geometry::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & PositionsFieldMask) != 0)
        invalidateVolume();
    forEachProperty([&](auto &field, UInt32 fieldId) { this->repair(field, fieldId, whichField, origin); });
    if((whichField & MaterialFieldMask) != 0 && (origin & ChangedOrigin::Abstract) != 0)
    {
        const MaterialPtr material = getMaterial();
        if((origin & ChangedOrigin::AbstrIncRefCount) == 0)
        {
            _sfMaterial.setValue(NullFC);
            setRefdCP(_sfMaterial.getValue(), material);
        }
        else
        {
            addRefCP(material);
        }
    }

    BitVector drawn = IndexMappingFieldMask;
    forEachProperty([&drawn](auto &, UInt32 fieldId) { drawn |= BitVector(1) << fieldId; });
    if((whichField & drawn) != 0)
    {
        if(_drawer != nullptr)
            _drawer->forget();
        setIndexRangeValid(false);
        refreshGL();
    }
    Inherited::changed(whichField, origin);
}

void Geometry::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Geometry NI" << std::endl;
}

OSG_END_NAMESPACE
