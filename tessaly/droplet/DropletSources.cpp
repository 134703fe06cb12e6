#include "DropletSources.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include "DropletFlowContext.h"
#include "DropletPixels.h"

using namespace osg;

DropletSources::DropletSources(const TextureChunkPtr &target)
{
    setRefdCP(_target, target);
}

DropletSources::~DropletSources()
{
    clearRefCP(_viewport);
    clearRefCP(_splat);
    clearRefCP(_target);
}

void DropletSources::addSource(const Vec4f &drop)
{
    _drops.push_back(drop);
    _dirty = true;
}

void DropletSources::clearSources()
{
    _drops.clear();
    _dirty = true;
}

void DropletSources::createSplat(Real32 contactAngle)
{
    std::vector<UInt8> pixels(std::size_t(tessaly::splatSize) * tessaly::splatSize * 3);
    if(!tessaly::fillSplat(contactAngle, pixels.data()))
        FWARNING(("DropletSources::createSplat: with a contact angle of %g there is no droplet\n",
                  Real64(contactAngle)));
    const ImagePtr image = ImageBase::create();
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, tessaly::splatSize, tessaly::splatSize, 1, 1, 1, 0.0, pixels.data(),
               Image::OSG_UINT8_IMAGEDATA, true, 1);
    endEditCP(image);

    if(_splat == NullFC)
        setRefdCP(_splat, TextureChunkPtr(TextureChunkBase::create()));
    beginEditCP(_splat);
    _splat->setImage(image);
    _splat->setEnvMode(GL_MODULATE);
    _splat->setMinFilter(GL_LINEAR);
    _splat->setMagFilter(GL_LINEAR);
    _splat->setWrapS(GL_CLAMP_TO_EDGE);
    _splat->setWrapT(GL_CLAMP_TO_EDGE);
    _splat->setTarget(GL_TEXTURE_2D);
    _splat->setInternalFormat(GL_RGBA8);
    endEditCP(_splat);
}

void DropletSources::render(bool clear)
{
    if(_drops.empty() && !clear)
        return;
    if(_dirty || !clear || _viewport == NullFC)
        rebuild(clear);
    _dirty = false;
    DropletFlowContext::get()->render(_viewport);
}

NodePtr DropletSources::makeRoot() const
{
    const MaterialChunkPtr unlit = MaterialChunkBase::create();
    beginEditCP(unlit, MaterialChunk::LitFieldMask);
    unlit->setLit(false);
    endEditCP(unlit, MaterialChunk::LitFieldMask);
    const DepthChunkPtr noDepth = DepthChunkBase::create();
    beginEditCP(noDepth, DepthChunk::EnableFieldMask);
    noDepth->setEnable(false);
    endEditCP(noDepth, DepthChunk::EnableFieldMask);
    const BlendChunkPtr add = BlendChunkBase::create();
    beginEditCP(add, BlendChunk::SrcFactorFieldMask | BlendChunk::DestFactorFieldMask);
    add->setSrcFactor(GL_ONE);
    add->setDestFactor(GL_ONE);
    endEditCP(add, BlendChunk::SrcFactorFieldMask | BlendChunk::DestFactorFieldMask);

    const ChunkMaterialPtr material = ChunkMaterialBase::create();
    beginEditCP(material);
    material->addChunk(unlit, State::AutoSlot);
    material->addChunk(_splat, State::AutoSlot);
    material->addChunk(noDepth, State::AutoSlot);
    material->addChunk(add, State::AutoSlot);
    endEditCP(material);

    const NodePtr group = makeCoredNode<Group>();
    for(const Vec4f &drop : _drops)
    {
        const GeoColors3fPtr colors = GeoColors3f::create();
        beginEditCP(colors);
        colors->getField().setValues(std::vector<Color3f>(4, Color3f(0.0f, 0.0f, drop[3])));
        endEditCP(colors);
        const GeometryPtr plane = makePlaneGeo(1.0f, 1.0f, 1, 1);
        beginEditCP(plane, Geometry::ColorsFieldMask);
        plane->setColors(colors);
        endEditCP(plane, Geometry::ColorsFieldMask);

        Matrix place;
        place.setTransform(Vec3f(drop[0] - 0.5f, drop[1] - 0.5f, 0.0f));
        place.setScale(drop[2], drop[2], 1.0f);
        const TransformPtr transform = TransformBase::create();
        beginEditCP(transform, Transform::MatrixFieldMask);
        transform->setMatrix(place);
        endEditCP(transform, Transform::MatrixFieldMask);
        const NodePtr node = makeNodeFor(transform);
        node->addChild(makeNodeFor(plane));
        endEditCP(node, Node::ChildrenFieldMask);
        group->addChild(node);
    }
    endEditCP(group, Node::ChildrenFieldMask);

    const MaterialGroupPtr core = MaterialGroupBase::create();
    beginEditCP(core, MaterialGroup::MaterialFieldMask);
    core->setMaterial(material);
    endEditCP(core, MaterialGroup::MaterialFieldMask);
    const NodePtr root = makeNodeFor(core);
    root->addChild(group);
    endEditCP(root, Node::ChildrenFieldMask);
    return root;
}

void DropletSources::rebuild(bool clear)
{
    const NodePtr root = makeRoot();
    if(_viewport == NullFC)
    {
        const FBOViewportPtr viewport = DropletFlowContext::get()->makeViewport(root, _target, NullFC);
        if(viewport == NullFC)
        {
            addRefCP(root);
            subRefCP(root);
            return;
        }
        setRefdCP(_viewport, viewport);
    }
    else
    {
        beginEditCP(_viewport, Viewport::RootFieldMask);
        _viewport->setRoot(root);
        endEditCP(_viewport, Viewport::RootFieldMask);
    }

    beginEditCP(_viewport, Viewport::BackgroundFieldMask);
    if(clear)
    {
        SolidBackgroundPtr black = SolidBackgroundPtr::dcast(_viewport->getBackground());
        if(black == NullFC)
            black = SolidBackgroundBase::create();
        beginEditCP(black, SolidBackground::ColorFieldMask);
        black->setColor(Color3f(0.0f, 0.0f, 0.0f));
        endEditCP(black, SolidBackground::ColorFieldMask);
        _viewport->setBackground(black);
    }
    else if(PassiveBackgroundPtr::dcast(_viewport->getBackground()) == NullFC)
        _viewport->setBackground(PassiveBackgroundBase::create());
    endEditCP(_viewport, Viewport::BackgroundFieldMask);
    _dirty = false;
}
