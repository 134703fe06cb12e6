#include "DropletFlowContext.h"

#include <cmath>

#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGWindow.h>

using namespace osg;

DropletFlowContext *DropletFlowContext::get()
{
    static DropletFlowContext *const context = new DropletFlowContext;
    return context;
}

void DropletFlowContext::setRender(const WindowPtr &window, RenderActionBase *action)
{
    _window = window;
    _action = action;
}

SHLChunkPtr DropletFlowContext::makeShader(const char *vertexText, const char *fragmentText) const
{
    const SHLChunkPtr shader = SHLChunkBase::create();
    const BitVector texts = SHLChunk::VertexProgramFieldMask | SHLChunk::FragmentProgramFieldMask;
    beginEditCP(shader, texts);
    shader->setVertexProgram(vertexText);
    shader->setFragmentProgram(fragmentText);
    endEditCP(shader, texts);
    return shader;
}

NodePtr DropletFlowContext::makeQuad(const std::vector<StateChunkPtr> &chunks, Real32 side) const
{
    const ChunkMaterialPtr material = ChunkMaterialBase::create();
    beginEditCP(material);
    for(const StateChunkPtr &chunk : chunks)
        material->addChunk(chunk, State::AutoSlot);
    endEditCP(material);
    const GeometryPtr plane = makePlaneGeo(side, side, 1, 1);
    beginEditCP(plane, Geometry::MaterialFieldMask);
    plane->setMaterial(material);
    endEditCP(plane, Geometry::MaterialFieldMask);
    const NodePtr root = makeCoredNode<Group>();
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(makeNodeFor(plane));
    endEditCP(root, Node::ChildrenFieldMask);
    return root;
}

FBOViewportPtr DropletFlowContext::makeViewport(const NodePtr &root, const TextureChunkPtr &target,
                                                const BackgroundPtr &background) const
{
    const ImagePtr image = target == NullFC ? ImagePtr() : target->getImage();
    if(image == NullFC || image->getWidth() < 1 || image->getHeight() < 1)
        return NullFC;
    const Int32 w = image->getWidth();
    const Int32 h = image->getHeight();

    Matrix place;
    place.setTranslate(0.0f, 0.0f, 1.0f);
    TransformPtr transform = TransformBase::create();
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(place);
    endEditCP(transform, Transform::MatrixFieldMask);

    const PerspectiveCameraPtr camera = PerspectiveCameraBase::create();
    beginEditCP(camera);
    camera->setBeacon(makeNodeFor(transform));
    // 1 for the square maps of old; on others it undoes the widening by the picture's sides.
    camera->setAspect(Real32(h) / Real32(w));
    camera->setNear(0.01f);
    camera->setFar(100.0f);
    camera->setFov(2.0f * std::atan(0.5f));
    endEditCP(camera);

    BackgroundPtr behind = background;
    if(behind == NullFC)
    {
        const SolidBackgroundPtr grey = SolidBackgroundBase::create();
        beginEditCP(grey, SolidBackground::ColorFieldMask);
        grey->setColor(Color3f(0.5f, 0.5f, 0.5f));
        endEditCP(grey, SolidBackground::ColorFieldMask);
        behind = grey;
    }

    const FBOViewportPtr viewport = FBOViewportBase::create();
    beginEditCP(viewport);
    viewport->setLeft(0.0f);
    viewport->setRight(Real32(w - 1));
    viewport->setBottom(0.0f);
    viewport->setTop(Real32(h - 1));
    viewport->setStorageWidth(w);
    viewport->setStorageHeight(h);
    viewport->setCamera(camera);
    viewport->setParent(_window);
    viewport->setBackground(behind);
    viewport->getTextures().push_back(target);
    viewport->setRoot(root);
    endEditCP(viewport);
    return viewport;
}

bool DropletFlowContext::render(const FBOViewportPtr &viewport) const
{
    if(viewport == NullFC)
        return false;
    if(_action == nullptr || _action->getWindow() == nullptr)
    {
        FWARNING(("DropletFlowContext::render: there is no action with a window\n"));
        return false;
    }
    // The viewport may have been made for another window.
    if(viewport->getParent() != _window)
    {
        beginEditCP(viewport, Viewport::ParentFieldMask);
        viewport->setParent(_window);
        endEditCP(viewport, Viewport::ParentFieldMask);
    }
    // What is drawn in texture space need not be in front of the camera.
    const bool culling = _action->getFrustumCulling();
    _action->setFrustumCulling(false);
    viewport->render(_action);
    _action->setFrustumCulling(culling);
    return true;
}
