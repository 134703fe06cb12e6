#include <Tessaly/OSGVolumeNode.h>

#include <cstdio>

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTextureChunk.h>
#include <Tessaly/OSGVolumeShadingStyle.h>

#include "BlockSkippingTraversal.h"
#include "BoundaryGeometry.h"
#include "BoxGeometry.h"
#include "DVRShading.h"
#include "InterleavedRay.h"
#include "OnlineCentralDiffNormal.h"
#include "OnlineSobelNormal.h"
#include "PreCentralDiffNormal.h"
#include "PreintTransferFunction.h"
#include "SimpleRay.h"
#include "SimpleTransferfunction.h"
#include "SimpleTraversal.h"
#include "VolumeData.h"
#include "VolumeNodeHandler.h"

OSG_BEGIN_NAMESPACE

void VolumeNode::initMethod()
{
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&VolumeNode::renderEnter));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&VolumeNode::renderLeave));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&VolumeNode::intersect));
}

VolumeNode::VolumeNode() = default;

VolumeNode::VolumeNode(const VolumeNode &source)
    : Inherited(source),
      _keptVoxels(getVoxels()),
      _keptNormals(getNormals()),
      _keptTransferFunc(getTransferFunc()),
      _keptShadingStyle(getShadingStyle())
{
}

// The handler stays, which is meant: the application may go on using it, and calls setVolume if it wants it
// gone.
VolumeNode::~VolumeNode() = default;

void VolumeNode::onCreate(const VolumeNode *source)
{
    Inherited::onCreate(source);
    _keptVoxels.adopt();
    _keptNormals.adopt();
    _keptTransferFunc.adopt();
    _keptShadingStyle.adopt();
    _heldComposableStyle.follow(_mfComposableStyle, ChangedOrigin::External);
}

void VolumeNode::onDestroy()
{
    _keptVoxels.release();
    _keptNormals.release();
    _keptTransferFunc.release();
    _keptShadingStyle.release();
    _heldComposableStyle.release();
    Inherited::onDestroy();
}

void VolumeNode::setVoxels(const TextureChunkPtr &value)
{
    _keptVoxels.keep(value);
    Inherited::setVoxels(_keptVoxels.get());
}

void VolumeNode::setNormals(const TextureChunkPtr &value)
{
    _keptNormals.keep(value);
    Inherited::setNormals(_keptNormals.get());
}

void VolumeNode::setTransferFunc(const TextureChunkPtr &value)
{
    _keptTransferFunc.keep(value);
    Inherited::setTransferFunc(_keptTransferFunc.get());
}

void VolumeNode::setShadingStyle(const NodeCorePtr &value)
{
    _keptShadingStyle.keep(value);
    Inherited::setShadingStyle(_keptShadingStyle.get());
}

void VolumeNode::followReferences(BitVector whichField, UInt32 origin)
{
    if((whichField & VoxelsFieldMask) != 0)
        _keptVoxels.follow(getVoxels(), origin);
    if((whichField & NormalsFieldMask) != 0)
        _keptNormals.follow(getNormals(), origin);
    if((whichField & TransferFuncFieldMask) != 0)
        _keptTransferFunc.follow(getTransferFunc(), origin);
    if((whichField & ShadingStyleFieldMask) != 0)
        _keptShadingStyle.follow(getShadingStyle(), origin);
    if((whichField & ComposableStyleFieldMask) != 0)
        _heldComposableStyle.follow(_mfComposableStyle, origin);
}

void VolumeNode::changed(BitVector whichField, UInt32 origin)
{
    followReferences(whichField, origin);
    if((whichField & (VoxelsFieldMask | SwappedFieldMask | SliceThicknessFieldMask)) != 0)
    {
        _voxelsSynced = (origin & ChangedOrigin::Sync) != 0;
        createVolume();
    }
    _changes |= whichField;
    Inherited::changed(whichField, origin);
}

void VolumeNode::dump(UInt32, const BitVector) const { SLOG << "Dump VolumeNode NI" << std::endl; }

bool VolumeNode::hasVoxelImage() const { return getVoxels() != NullFC && getVoxels()->getImage() != NullFC; }

bool VolumeNode::createVolume(void)
{
    if(hasVoxelImage())
    {
        // The image carries the spacing of its voxels to whoever reads them.
        const ImagePtr image = getVoxels()->getImage();
        char thickness[160];
        std::snprintf(thickness, sizeof(thickness), "%f %f %f", double(getSliceThickness()[0]),
                      double(getSliceThickness()[1]), double(getSliceThickness()[2]));
        image->setAttachmentField("SliceThickness", thickness);
        if(image->getWidth() < 2 || image->getHeight() < 2 || image->getDepth() < 2)
        {
            FWARNING(("Error setting volume, image too small! Retrying..."));
            return false;
        }
    }

    VolumeNodeHandler *const handler = new VolumeNodeHandler;
    if(hasVoxelImage() && handler->setVolumeData(getVoxels(), getSwapped(), _voxelsSynced))
    {
        FNOTICE(("New volume texture was set..."));
        handler->setDimensions(getDimensions());
        handler->setRayGeneration(new SimpleRay);
        handler->setTransferfunction(new SimpleTransferfunction);
        handler->setNormalVolume(new OnlineCentralDiffNormal);
        handler->setShadingFunctions(new DVRShading);
        handler->setBVGeometry(new BoundaryGeometry);
        handler->setTraversalFunctions(new SimpleTraversal);
        setVolume(handler);
        return true;
    }
    FFATAL(("Error setting the volume!"));
    delete handler;
    setVolume(nullptr);
    return false;
}

void VolumeNode::setVolume(VolumeNodeHandler *volume)
{
    if(volume == _volume)
        return;
    delete _volume;
    _volume = volume;
}

bool VolumeNode::initVolume(void)
{
    if(_volume == nullptr)
        return false;
    const BitVector changes = _changes;
    const bool recreated = (changes & (VoxelsFieldMask | SwappedFieldMask | SliceThicknessFieldMask)) != 0;
    const auto isDue = [&](BitVector fields) { return recreated || (changes & fields) != 0; };
    bool acted = false;

    if(isDue(StepSizeFieldMask))
    {
        _volume->setStepSize(getStepSize());
        acted = true;
    }
    // A step counts as acted also where an unknown type leaves the strategy as it was; that is meant.
    if(isDue(RayGenTypeFieldMask))
    {
        initRayGeneration();
        acted = true;
    }
    if(isDue(TransferFuncFieldMask | TransferFuncTypeFieldMask))
    {
        initTransferfunction();
        acted = true;
    }
    if(isDue(NormalsFieldMask | NormalGenTypeFieldMask))
    {
        initNormalVolume();
        acted = true;
    }
    const VolumeShadingStylePtr style = VolumeShadingStylePtr::dcast(getShadingStyle());
    const bool shadingInstalled =
        isDue(ShadingStyleFieldMask) || (style != NullFC && style->hasChanged() != 0);
    if(shadingInstalled)
    {
        initShading();
        acted = true;
    }
    if(isDue(ComposableStyleFieldMask))
    {
        // The styles below begin on a clean state.
        if(DVRShadingBase *const shading = dynamic_cast<DVRShadingBase *>(_volume->getShadingFunctions()))
        {
            shading->gradientModulation = false;
            _volume->buildProgram();
        }
        acted = true;
    }
    if(initComposableStyles(isDue(ComposableStyleFieldMask), shadingInstalled))
        acted = true;
    if(isDue(BvGeoTypeFieldMask))
    {
        initGeometry();
        acted = true;
    }
    if(isDue(TraversalTypeFieldMask))
    {
        initTraversal();
        acted = true;
    }
    if(acted)
        FNOTICE(("VolumeNode::initVolume()"));
    _changes = 0;
    return acted;
}

void VolumeNode::initRayGeneration()
{
    if(getRayGenType() == 1)
        _volume->setRayGeneration(new SimpleRay);
    else if(getRayGenType() == 2)
        _volume->setRayGeneration(new InterleavedRay);
}

void VolumeNode::initTransferfunction()
{
    Transferfunction *function = nullptr;
    if(getTransferFuncType() == 2)
        function = new PreintTransferFunction;
    else
        function = new SimpleTransferfunction;
    if(getTransferFunc() != NullFC)
        function->setTransferTexture(getTransferFunc());
    else
        function->setVolumeData(_volume->getVolumeData());
    _volume->setTransferfunction(function);
}

void VolumeNode::initNormalVolume()
{
    if(getNormalGenType() == 2)
        _volume->setNormalVolume(new OnlineCentralDiffNormal);
    else if(getNormalGenType() == 3)
        _volume->setNormalVolume(new OnlineSobelNormal);
    else if(getNormalGenType() == 1 || getNormals() != NullFC)
    {
        // The strategy takes this reference over.
        addRefCP(getNormals());
        _volume->setNormalVolume(new PreCentralDiffNormal(getNormals()));
    }
}

void VolumeNode::initShading()
{
    const VolumeShadingStylePtr style = VolumeShadingStylePtr::dcast(getShadingStyle());
    if(style != NullFC)
        style->paramShading(_volume);
    else
        _volume->setShadingFunctions(new DVRShading);
}

bool VolumeNode::initComposableStyles(bool all, bool shadingInstalled)
{
    bool acted = false;
    for(UInt32 i = 0; i < getComposableStyle().size(); ++i)
    {
        const VolumeShadingStylePtr style = VolumeShadingStylePtr::dcast(getComposableStyle(i));
        if(style == NullFC || !(all || shadingInstalled || style->hasChanged() != 0))
            continue;
        style->paramShading(_volume);
        acted = true;
    }
    return acted;
}

void VolumeNode::initGeometry()
{
    if(getBvGeoType() == 1)
        _volume->setBVGeometry(new BoxGeometry);
    else if(getBvGeoType() == 2)
        _volume->setBVGeometry(new BoundaryGeometry);
}

void VolumeNode::initTraversal()
{
    if(getTraversalType() == 1)
        _volume->setTraversalFunctions(new SimpleTraversal);
    else if(getTraversalType() == 2)
        _volume->setTraversalFunctions(new BlockSkippingTraversal);
}

bool VolumeNode::attachVolume(void)
{
    bool attached = false;
    const NodePtr root = _volume == nullptr ? NodePtr() : _volume->getRootNode();
    if(root == NullFC)
    {
        SFATAL << "VolumeNode::attachVolume() -> No Volume!\n"
               << static_cast<const void *>(_volume) << "; " << static_cast<const void *>(root.getCPtr());
    }
    else
    {
        // The list is not touched by what follows: the parents keep this core.
        for(UInt32 i = 0; i < getParents().size(); ++i)
        {
            const NodePtr parent = getParents(i);
            if(parent == NullFC)
            {
                FFATAL(("VolumeNode::attachVolume() -> No Parent!\n"));
                continue;
            }
            beginEditCP(parent, Node::ChildrenFieldMask);
            for(UInt32 child = parent->getNChildren(); child > 0; --child)
                parent->subChild(child - 1);
            parent->addChild(root);
            parent->invalidateVolume();
            endEditCP(parent, Node::ChildrenFieldMask);
            attached = true;
        }
    }
    invalidateVolume();
    if(attached)
        FNOTICE(("VolumeNode::attachVolume() -> Parent OK!"));
    return attached;
}

void VolumeNode::adjustVolume(Volume &volume)
{
    if(!hasVoxelImage())
        return;
    // In voxels and not in `dimensions`; meant, since what is drawn is a quad over the viewport and not this
    // box.
    const ImagePtr image = getVoxels()->getImage();
    const Pnt3f corner(Real32(image->getWidth()) / 2.0f, Real32(image->getHeight()) / 2.0f,
                       Real32(image->getDepth()) / 2.0f);
    volume.setValid(true);
    volume.setEmpty(true);
    volume.extendBy(corner);
    volume.extendBy(Pnt3f(-corner[0], -corner[1], -corner[2]));
}

Action::ResultE VolumeNode::renderEnter(Action *action)
{
    RenderAction *const renderAction = dynamic_cast<RenderAction *>(action);
    if(renderAction != nullptr)
    {
        _frustumCulling = renderAction->getFrustumCulling();
        renderAction->setFrustumCulling(false);
    }
    return Action::Continue;
}

Action::ResultE VolumeNode::renderLeave(Action *action)
{
    RenderAction *const renderAction = dynamic_cast<RenderAction *>(action);
    if(renderAction != nullptr)
        renderAction->setFrustumCulling(_frustumCulling);
    return Action::Continue;
}

Action::ResultE VolumeNode::intersect(Action *action)
{
    IntersectAction *const intersectAction = dynamic_cast<IntersectAction *>(action);
    if(intersectAction == nullptr || action->getActNode() == NullFC)
        return Action::Continue;
    const DynamicVolume &volume = action->getActNode()->getVolume();
    if(!volume.isValid())
        return Action::Continue;
    return volume.intersect(intersectAction->getLine()) ? Action::Continue : Action::Skip;
}

OSG_END_NAMESPACE
