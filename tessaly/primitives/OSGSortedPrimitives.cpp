#include <Tessaly/OSGSortedPrimitives.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoColors.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals.h>
#include <OpenSG/OSGGeoPositions.h>
#include <OpenSG/OSGGeoTexCoords.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSphereVolume.h>
#include <OpenSG/OSGWindow.h>
#include <Tessaly/OSGRenderParams.h>

#include "PrimitiveOrder.h"
#include "PrimitivesDrawer.h"
#include "../frame/PropertyLink.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// In getRenderParams.
constexpr UInt32 keepOrder = 1;

/// The points of a property as three floats each, in `storage` where they are stored otherwise.
const float *pointsOf(const GeoPositions &property, std::vector<float> &storage)
{
    if(property.getFormat() == GL_FLOAT && property.getDimension() == 3)
        return reinterpret_cast<const float *>(property.getData());
    storage.resize(3 * std::size_t(property.getSize()));
    for(UInt32 i = 0; i < property.getSize(); ++i)
    {
        const Pnt3f point = property.getValue(i);
        std::copy_n(point.getValues(), 3, storage.data() + 3 * std::size_t(i));
    }
    return storage.data();
}

} // namespace

UInt32 SortedPrimitives::_arbMultitexture = Window::invalidExtensionID;
UInt32 SortedPrimitives::_funcClientActiveTextureARB = Window::invalidFunctionID;
UInt32 SortedPrimitives::_extDrawRangeElements = Window::invalidExtensionID;
UInt32 SortedPrimitives::_funcDrawRangeElementsEXT = Window::invalidFunctionID;

void SortedPrimitives::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionLeaveHandler));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&SortedPrimitives::intersect));
}

bool SortedPrimitives::registerNames()
{
    _arbMultitexture = Window::registerExtension("GL_ARB_multitexture");
    _funcClientActiveTextureARB =
        Window::registerFunction("glClientActiveTextureARB", _arbMultitexture, 0xFFFF);
    _extDrawRangeElements = Window::registerExtension("GL_EXT_draw_range_elements");
    _funcDrawRangeElementsEXT =
        Window::registerFunction("glDrawRangeElementsEXT", _extDrawRangeElements, 0xFFFF);
    return true;
}

SortedPrimitives::SortedPrimitives()
{
    // The prototype comes first, on the thread that brings the classes up.
    [[maybe_unused]] static const bool registered = registerNames();
}

SortedPrimitives::SortedPrimitives(const SortedPrimitives &source) : Inherited(source) {}

SortedPrimitives::~SortedPrimitives() = default;

template <class FunctionT>
void SortedPrimitives::forEachProperty(const FunctionT &function)
{
    function(_sfRefPoints, RefPointsFieldId);
    function(_sfPositions, PositionsFieldId);
    function(_sfColors, ColorsFieldId);
    function(_sfNormals, NormalsFieldId);
    function(_sfTangents, TangentsFieldId);
    function(_sfTexCoords, TexCoordsFieldId);
    function(_sfIndices, IndicesFieldId);
}

void SortedPrimitives::onCreate(const SortedPrimitives *source)
{
    const SortedPrimitivesPtr self(*this);
    forEachProperty([&self](auto &field, UInt32 fieldId) {
        addRefCP(field.getValue());
        enterPropertyLink(field.getValue(), self, fieldId);
    });
    Inherited::onCreate(source);
}

void SortedPrimitives::onDestroy()
{
    const SortedPrimitivesPtr self(*this);
    forEachProperty([&self](auto &field, UInt32 fieldId) {
        setPropertyLink(field, std::decay_t<decltype(field.getValue())>(), self, fieldId);
    });
    Inherited::onDestroy();
}

void SortedPrimitives::setRefPoints(const GeoPositionsPtr &value)
{
    setPropertyLink(_sfRefPoints, value, SortedPrimitivesPtr(*this), RefPointsFieldId);
}

void SortedPrimitives::setPositions(const GeoPositionsPtr &value)
{
    setPropertyLink(_sfPositions, value, SortedPrimitivesPtr(*this), PositionsFieldId);
}

void SortedPrimitives::setNormals(const GeoNormalsPtr &value)
{
    setPropertyLink(_sfNormals, value, SortedPrimitivesPtr(*this), NormalsFieldId);
}

void SortedPrimitives::setTangents(const GeoNormalsPtr &value)
{
    setPropertyLink(_sfTangents, value, SortedPrimitivesPtr(*this), TangentsFieldId);
}

void SortedPrimitives::setColors(const GeoColorsPtr &value)
{
    setPropertyLink(_sfColors, value, SortedPrimitivesPtr(*this), ColorsFieldId);
}

void SortedPrimitives::setTexCoords(const GeoTexCoordsPtr &value)
{
    setPropertyLink(_sfTexCoords, value, SortedPrimitivesPtr(*this), TexCoordsFieldId);
}

void SortedPrimitives::setIndices(const GeoIndicesPtr &value)
{
    setPropertyLink(_sfIndices, value, SortedPrimitivesPtr(*this), IndicesFieldId);
}

void SortedPrimitives::setMaterial(const MaterialPtr &material)
{
    setRefdCP(_sfMaterial.getValue(), material);
}

void SortedPrimitives::setIndexArray(const std::vector<Int32> *values)
{
    if(values == nullptr)
    {
        SWARNING << "SortedPrimitives: there is no index array to set" << std::endl;
        return;
    }
    if(getIndices() == NullFC)
    {
        const GeoIndicesUI32Ptr made = GeoIndicesUI32::create();
        made->resize(values->size());
        setIndices(made);
        endEditCP(getIndices());
    }
    else if(getIndices()->getSize() != values->size())
    {
        getIndices()->resize(values->size());
        endEditCP(getIndices());
    }
    _mfIndexArray.setValues(*values);
}

void SortedPrimitives::setOffsetArray(const std::vector<Int32> *values)
{
    if(values == nullptr)
    {
        SWARNING << "SortedPrimitives: there is no offset array to set" << std::endl;
        return;
    }
    _mfOffsetArray.setValues(*values);
}

void SortedPrimitives::changed(BitVector whichField, UInt32 origin)
{
    const SortedPrimitivesPtr self(*this);
    if((whichField & RefPointsFieldMask) != 0)
        invalidateVolume();
    forEachProperty([&](auto &field, UInt32 fieldId) {
        if((whichField & (BitVector(1) << fieldId)) != 0)
            repairPropertyLink(field, self, fieldId, origin);
    });
    if((whichField & MaterialFieldMask) != 0 && (origin & ChangedOrigin::Abstract) != 0)
    {
        const MaterialPtr material = getMaterial();
        if((origin & ChangedOrigin::AbstrIncRefCount) != 0)
            addRefCP(material);
        else
        {
            // Nothing is known yet of what is to be let go.
            _sfMaterial.setValue(NullFC);
            setRefdCP(_sfMaterial.getValue(), material);
        }
    }
    Inherited::changed(whichField, origin);
}

void SortedPrimitives::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SortedPrimitives NI" << std::endl;
}

Action::ResultE SortedPrimitives::intersect(Action *)
{
    return Action::Continue;
}

void SortedPrimitives::adjustVolume(Volume &volume)
{
    const GeoPositionsPtr points = getRefPoints();
    if(points == NullFC)
        return;
    if(!volume.isStatic())
        volume.setValid();
    volume.setEmpty();
    const Real32 radius = getSize().length();
    for(UInt32 i = 0; i < points->getSize(); ++i)
        volume.extendBy(SphereVolume(points->getValue(i), radius));
}

Int32 *SortedPrimitives::calcIndex(DrawActionBase *action, UInt32 &numIndices, Int32 *index)
{
    numIndices = 0;
    const GeoPositionsPtr points = getRefPoints();
    if(action == nullptr || points == NullFC)
        return nullptr;

    tessaly::OrderView view;
    if(RenderAction *const render = dynamic_cast<RenderAction *>(action))
        view.toWorld = render->top_matrix();
    else if(const NodePtr node = action->getActNode(); node != NullFC)
        view.toWorld = node->getToWorld();
    // A matrix without an inverse is not looked at: the eye is then where it is in the world.
    Matrix cameraToObject;
    view.toWorld.inverse(cameraToObject);
    cameraToObject.mult(action->getCameraToWorld());
    view.eye = Pnt3f(cameraToObject[3][0], cameraToObject[3][1], cameraToObject[3][2]);
    view.threshold = getThresholdVal();
    view.occluders = getOccluderSpheres().getValues().data();
    view.numOccluders = getOccluderSpheres().size();

    numIndices = points->getSize();
    Int32 *const order = index != nullptr ? index : new Int32[numIndices];
    std::vector<float> storage;
    tessaly::orderPrimitives(pointsOf(*points, storage), numIndices, view, order);
    if(!(view.threshold >= -1.0f && view.threshold <= 1.0f))
        SWARNING << "SortedPrimitives: thresholdVal " << view.threshold << " is not within -1 to 1"
                 << std::endl;
    return order;
}

PrimitivesDrawerBase *SortedPrimitives::findDrawer()
{
    if(getRefPoints() == NullFC || getPositions() == NullFC || getTangents() == NullFC ||
       getNormals() == NullFC || getTexCoords() == NullFC || getColors() == NullFC)
        return nullptr;
    if(getOffsetArray().size() < getRefPoints()->getSize())
        return nullptr;
    if(getIndices() == NullFC)
    {
        FFATAL(("getIndices() NullFC\n"));
        return nullptr;
    }
    switch(getMode())
    {
    case 0: return PrimitivesDrawer<GeoTraitTriSet>::the();
    case 1: return PrimitivesDrawer<GeoTraitQuadSet>::the();
    default: return nullptr;
    }
}

Action::ResultE SortedPrimitives::drawPrimitives(DrawActionBase *action)
{
    PrimitivesDrawerBase *const drawer = findDrawer();
    if(drawer == nullptr)
    {
        FWARNING(("SortedPrimitives 0x%lx: couldn't find drawer!\n",
                  static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(this))));
        return Action::Continue;
    }
    const SortedPrimitivesPtr self(*this);
    const RenderAction *const render = dynamic_cast<RenderAction *>(action);
    const bool isEffect = render != nullptr && render->getEffectsPass();
    if((getRenderParams() & keepOrder) != 0 || isEffect)
    {
        drawer->drawCached(this, action);
        return Action::Continue;
    }

    // Every fourth drawing, whatever the camera has done between.
    const UInt32 count = getSort();
    setSort((count + 1) & 3);
    endEditCP(self, SortFieldMask);
    if(count != 0)
    {
        drawer->drawCached(this, action);
        return Action::Continue;
    }

    UInt32 numOrdered = 0;
    std::unique_ptr<Int32[]> order;
    if(getDrawOrder() != 0)
        order.reset(calcIndex(action, numOrdered, nullptr));
    setIndicesSize(order != nullptr ? drawer->drawSorted(this, action, order.get(), numOrdered)
                                    : drawer->draw(this, action, getRefPoints()->getSize()));
    endEditCP(self, IndicesSizeFieldMask);
    return Action::Continue;
}

OSG_END_NAMESPACE
