#include "volume/VolumeNodeHandler.h"

#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform.h>

#include "VolumeScene.h"
#include "volume/BlockSkippingTraversal.h"
#include "volume/BlockVolume.h"
#include "volume/BoundaryGeometry.h"
#include "volume/BoxGeometry.h"
#include "volume/DVRShading.h"
#include "volume/InterleavedRay.h"
#include "volume/MIPShading.h"
#include "volume/OnlineCentralDiffNormal.h"
#include "volume/PassText.h"
#include "volume/PreintTransferFunction.h"
#include "volume/ProgramText.h"
#include "volume/SimpleRay.h"
#include "volume/SimpleTransferfunction.h"
#include "volume/SimpleTraversal.h"
#include "volume/VolumeData.h"

using namespace osg;

namespace
{

/// A handler of voxels that all have one value, with starting strategies but for the traversal.
struct Handler
{
    LogCapture log;
    VolumeNodeHandler handler;

    explicit Handler(const TextureChunkPtr &voxels)
    {
        const Held<TextureChunkPtr> held(voxels);
        standardOutput([&] { EXPECT_TRUE(handler.setVolumeData(held, false)); });
        handler.setRayGeneration(new SimpleRay);
        handler.setTransferfunction(new SimpleTransferfunction);
        handler.setNormalVolume(new OnlineCentralDiffNormal);
        handler.setShadingFunctions(new DVRShading);
        handler.setBVGeometry(new BoundaryGeometry);
    }
    VolumeNodeHandler *operator->() { return &handler; }
};

struct CompleteHandler : Handler
{
    explicit CompleteHandler(const TextureChunkPtr &voxels = makeVolume<UInt8>(16, 8, 8, 100))
        : Handler(voxels)
    {
        handler.setTraversalFunctions(new SimpleTraversal);
    }
};

/// The four textures of a viewport.
struct Textures
{
    Held<TextureChunkPtr> front{makeTexture(makeVoxels<UInt8>(40, 30, 1, [](int, int, int) { return 0; }))};
    Held<TextureChunkPtr> back{TextureChunk::create()};
    Held<TextureChunkPtr> color{TextureChunk::create()};
    Held<TextureChunkPtr> depth{TextureChunk::create()};
};

GeometryPtr quadOf(VolumeNodeHandler &handler)
{
    return GeometryPtr::dcast(handler.getRootNode()->getChild(0)->getCore());
}

ChunkMaterialPtr materialOf(VolumeNodeHandler &handler)
{
    return ChunkMaterialPtr::dcast(quadOf(handler)->getMaterial());
}

Matrix placementOf(VolumeNodeHandler &handler)
{
    return TransformPtr::dcast(handler.getRootNode()->getCore())->getMatrix();
}

/// Where the unit cube goes.
void expectBox(VolumeNodeHandler &handler, const Vec3f &extent)
{
    const Matrix matrix = placementOf(handler);
    const Pnt3f low = matrix * Pnt3f(0, 0, 0);
    const Pnt3f high = matrix * Pnt3f(1, 1, 1);
    for(int axis = 0; axis < 3; ++axis)
    {
        EXPECT_NEAR(low[axis], -extent[axis] / 2, 1e-4f) << axis;
        EXPECT_NEAR(high[axis], extent[axis] / 2, 1e-4f) << axis;
    }
}

ChunkMaterialPtr materialOfNode(const NodePtr &node)
{
    return ChunkMaterialPtr::dcast(MaterialGroupPtr::dcast(node->getCore())->getMaterial());
}

template <class ChunkPtr>
ChunkPtr chunkAt(const ChunkMaterialPtr &material, UInt32 index)
{
    return ChunkPtr::dcast(material->getChunk(index));
}

/// Culling, texts, depth test and colour mask of a material of faces; the chunks behind the first may be
/// shifted.
void expectFaceMaterial(const ChunkMaterialPtr &material, UInt32 cull, UInt32 depthFunction, bool colors,
                        UInt32 shift)
{
    EXPECT_EQ(chunkAt<PolygonChunkPtr>(material, 0)->getCullFace(), cull);
    const DepthChunkPtr depth = chunkAt<DepthChunkPtr>(material, 2 + shift);
    EXPECT_TRUE(depth->getEnable());
    EXPECT_EQ(depth->getFunc(), depthFunction);
    const ColorMaskChunkPtr mask = chunkAt<ColorMaskChunkPtr>(material, 3 + shift);
    EXPECT_EQ(mask->getMaskR(), colors);
    EXPECT_EQ(mask->getMaskG(), colors);
    EXPECT_EQ(mask->getMaskB(), colors);
    EXPECT_TRUE(mask->getMaskA());
}

} // namespace

TEST(Handler, NothingIsBuiltBeforeTheLastStrategy)
{
    Handler handler(makeVolume<UInt8>(16, 8, 8, 100));
    EXPECT_TRUE(handler->rebuild());
    EXPECT_TRUE(handler->getRootNode() == NullFC);
    EXPECT_TRUE(handler->getFrontRoot() == NullFC);
    EXPECT_EQ(handler->getVolumeData()->getBlockVolume(), nullptr);
    EXPECT_FALSE(handler->buildProgram());
    EXPECT_EQ(handler->getShader()->getFragmentProgram(), "");

    handler->setTraversalFunctions(new SimpleTraversal);
    ASSERT_TRUE(handler->getRootNode() != NullFC);
    EXPECT_STREQ(getName(handler->getRootNode()), "VolumeNode");
    EXPECT_EQ(handler->getRootNode()->getNChildren(), 1u);
    EXPECT_NE(handler->getVolumeData()->getBitVolume(), nullptr);
    EXPECT_EQ(handler->getShader()->getFragmentProgram(),
              tessaly::joinFragmentProgram(SimpleRay().getShaderCode(),
                                           OnlineCentralDiffNormal().getShaderCode(),
                                           SimpleTransferfunction().getShaderCode(),
                                           DVRShading().getShaderCode(), SimpleTraversal().getShaderCode()));
    EXPECT_EQ(handler->getShader()->getVertexProgram(), tessaly::programVertexText);
    EXPECT_TRUE(handler->buildProgram());
}

TEST(Handler, TheQuadCoversTheViewport)
{
    CompleteHandler handler;
    const GeometryPtr quad = quadOf(handler.handler);
    EXPECT_EQ(quad->getTypes()->getValue(0), 7u);
    EXPECT_EQ(quad->getLengths()->getValue(0), 4u);
    ASSERT_EQ(quad->getPositions()->getSize(), 4u);
    EXPECT_EQ(quad->getPositions()->getDimension(), 2u);
    EXPECT_EQ(quad->getPositions()->getValue(0), Pnt3f(-1, -1, 0));
    EXPECT_EQ(quad->getPositions()->getValue(2), Pnt3f(1, 1, 0));
    EXPECT_EQ(quad->getTexCoords()->getSize(), 4u);
    EXPECT_EQ(quad->getIndices()->getValue(3), 3u);
}

TEST(Handler, ChunksAndUnitsFollowTheOrderOfTheParameters)
{
    CompleteHandler handler;
    Textures textures;
    handler->setTraversalFunctions(new BlockSkippingTraversal);
    handler->setRayTextures(textures.front, textures.back);
    handler->setSceneTextures(textures.color, textures.depth);
    EXPECT_EQ(textures.front.get().getRefCount(), 1 + 1 + 2); // ours, the handler, two materials
    const SHLChunkPtr shader = handler->getShader();
    const ChunkMaterialPtr material = materialOf(handler.handler);
    const std::string texture = "TextureChunk";
    EXPECT_EQ(chunkTypes(material), (std::vector<std::string>{"DepthChunk", "SHLChunk", texture, texture,
                                                              texture, texture, texture, texture, texture}));
    const DepthChunkPtr depth = chunkAt<DepthChunkPtr>(material, 0);
    EXPECT_TRUE(depth->getEnable());
    EXPECT_TRUE(depth->getReadOnly());
    EXPECT_EQ(depth->getFunc(), 519u);
    EXPECT_TRUE(material->getChunk(1) == shader);
    EXPECT_TRUE(material->getChunk(2) == handler->getVolumeData()->getTexture());
    EXPECT_TRUE(material->getChunk(3) == textures.front.get());
    EXPECT_TRUE(material->getChunk(4) == textures.back.get());
    EXPECT_TRUE(material->getChunk(5) == textures.color.get());
    EXPECT_TRUE(material->getChunk(6) == textures.depth.get());
    const char *const units[] = {"volume",     "frontTexture",     "backTexture", "sceneColor",
                                 "sceneDepth", "transferFunction", "bitVolume"};
    for(Int32 unit = 0; unit < 7; ++unit)
        EXPECT_EQ(uniform<Int32>(shader, units[unit]), unit);
    EXPECT_EQ(uniform<Real32>(shader, "stepSize"), 0.0039f);
    EXPECT_EQ(uniform<Vec3f>(shader, "volumeSize"), Vec3f(4, 2, 2));
    EXPECT_EQ(uniform<Vec3f>(shader, "volumeResolution"), Vec3f(16, 8, 8));
    EXPECT_EQ(uniform<Vec3f>(shader, "texelSize"), Vec3f(1.0f / 16, 0.125f, 0.125f));
    EXPECT_EQ(uniform<Real32>(shader, "correctionFactor"), 200.0f);
}

TEST(Handler, WithoutVoxelsNoUnitIsSpentOnThem)
{
    VolumeNodeHandler handler;
    Textures textures;
    LogCapture log;
    EXPECT_FALSE(handler.setVolumeData(NullFC, false));
    handler.setRayGeneration(new SimpleRay);
    handler.setTransferfunction(new SimpleTransferfunction);
    handler.setNormalVolume(new OnlineCentralDiffNormal);
    handler.setShadingFunctions(new DVRShading);
    handler.setTraversalFunctions(new SimpleTraversal);
    handler.setRayTextures(textures.front, textures.back);
    EXPECT_FALSE(handler.buildProgram()); // there is no quad
    EXPECT_FALSE(hasUniform(handler.getShader(), "volume"));
    EXPECT_EQ(uniform<Int32>(handler.getShader(), "frontTexture"), 0);
    EXPECT_EQ(uniform<Int32>(handler.getShader(), "transferFunction"), 2);
}

TEST(Handler, TheStepSizeIsAUniformOnly)
{
    VolumeNodeHandler empty;
    empty.setStepSize(0.5f);
    CompleteHandler handler;
    const std::string text = handler->getShader()->getFragmentProgram();
    handler->setStepSize(0.01f);
    EXPECT_EQ(uniform<Real32>(handler->getShader(), "stepSize"), 0.01f);
    EXPECT_EQ(handler->getShader()->getFragmentProgram(), text);
    handler->buildProgram();
    EXPECT_EQ(uniform<Real32>(handler->getShader(), "stepSize"), 0.01f);
}

TEST(Handler, AStrategyReplacesItsPieceOnly)
{
    CompleteHandler handler;
    handler->setShadingFunctions(new MIPShading);
    EXPECT_EQ(handler->getShader()->getFragmentProgram(),
              tessaly::joinFragmentProgram(SimpleRay().getShaderCode(),
                                           OnlineCentralDiffNormal().getShaderCode(),
                                           SimpleTransferfunction().getShaderCode(),
                                           MIPShading().getShaderCode(), SimpleTraversal().getShaderCode()));
    RayGeneration *const ray = new InterleavedRay;
    handler->setRayGeneration(ray);
    handler->setRayGeneration(ray);
    EXPECT_NE(handler->getShader()->getFragmentProgram().find("rayOffset"), std::string::npos);
}

TEST(Handler, TheVoxelsTypeGivesTheTablesForm)
{
    for(const bool words : {false, true})
    {
        CompleteHandler handler(words ? makeVolume<UInt16>(8, 8, 8, 5000) : makeVolume<UInt8>(8, 8, 8, 50));
        for(Transferfunction *function : {static_cast<Transferfunction *>(new SimpleTransferfunction),
                                          static_cast<Transferfunction *>(new PreintTransferFunction)})
        {
            handler->setTransferfunction(function);
            EXPECT_EQ(function->dependentTexture, words ? 1u : 0u);
            EXPECT_EQ(function->getTransferImage()->getHeight(), words ? 256 : 1);
            EXPECT_EQ(function->getSummedAreaImage()->getHeight(), words ? 256 : 1);
        }
    }
}

TEST(Handler, VoxelsAreReducedOnceForAllRebuilds)
{
    CompleteHandler handler(makeVolume<UInt8>(20, 10, 10, 50));
    for(int i = 0; i < 5; ++i)
        handler->rebuild();
    handler->setTransferfunction(new SimpleTransferfunction);
    EXPECT_EQ(handler->getVolumeData()->getBlockVolume()->getNumPasses(), 1u);
    EXPECT_EQ(handler->getVolumeData()->getResolution(), Vec3us(24, 16, 16));
}

TEST(Handler, DimensionsPlaceTheVolume)
{
    const ImagePtr image = makeVoxels<UInt8>(16, 8, 8, [](int, int, int) { return 1; });
    image->setAttachmentField("SliceThickness", "0.5 1 2");
    CompleteHandler handler(makeTexture(image));
    expectBox(handler.handler, Vec3f(8, 8, 16));
    const NodeCorePtr core = handler->getRootNode()->getCore();
    handler->setDimensions(Vec3f(2, 1, 1));
    expectBox(handler.handler, Vec3f(8, 8, 16)); // takes effect at the next rebuild
    EXPECT_TRUE(handler->rebuild());
    expectBox(handler.handler, Vec3f(2, 1, 1));
    EXPECT_FALSE(handler->getRootNode()->getCore() == core);
    handler->setDimensions(Vec3f(-1, 1, 1));
    EXPECT_TRUE(handler->rebuild());
    expectBox(handler.handler, Vec3f(8, 8, 16));
}

TEST(PassGraphs, FrontGraph)
{
    CompleteHandler handler;
    const NodePtr root = handler->getFrontRoot();
    EXPECT_STREQ(root->getCore()->getTypeName(), "Group");
    ASSERT_EQ(root->getNChildren(), 2u);
    const NodePtr faces = root->getChild(0);
    const NodePtr plane = root->getChild(1);
    EXPECT_STREQ(faces->getCore()->getTypeName(), "Transform");
    EXPECT_EQ(TransformPtr::dcast(plane->getCore())->getMatrix(), Matrix());
    ASSERT_EQ(faces->getNChildren(), 2u);
    ASSERT_EQ(plane->getNChildren(), 1u);

    const ChunkMaterialPtr planeMaterial = materialOfNode(plane->getChild(0));
    EXPECT_EQ(planeMaterial->getSortKey(), 1);
    EXPECT_EQ(chunkTypes(planeMaterial), (std::vector<std::string>{"SHLChunk", "DepthChunk"}));
    EXPECT_EQ(chunkAt<SHLChunkPtr>(planeMaterial, 0)->getVertexProgram(), tessaly::planeVertexText);
    EXPECT_EQ(chunkAt<SHLChunkPtr>(planeMaterial, 0)->getFragmentProgram(), tessaly::planeFragmentText);
    EXPECT_FALSE(chunkAt<DepthChunkPtr>(planeMaterial, 1)->getEnable());
    ASSERT_EQ(plane->getChild(0)->getNChildren(), 1u);
    EXPECT_STREQ(plane->getChild(0)->getChild(0)->getCore()->getTypeName(), "Geometry");

    const std::vector<std::string> types{"PolygonChunk", "SHLChunk", "DepthChunk", "ColorMaskChunk"};
    const ChunkMaterialPtr front = materialOfNode(faces->getChild(0));
    EXPECT_EQ(front->getSortKey(), 3);
    EXPECT_EQ(chunkTypes(front), types);
    expectFaceMaterial(front, 1029, 515, true, 0);
    const ChunkMaterialPtr back = materialOfNode(faces->getChild(1));
    EXPECT_EQ(back->getSortKey(), 2);
    EXPECT_EQ(chunkTypes(back), types);
    expectFaceMaterial(back, 1028, 515, false, 0);
    EXPECT_FALSE(front->getChunk(1) == back->getChunk(1));
    EXPECT_EQ(chunkAt<SHLChunkPtr>(front, 1)->getVertexProgram(), tessaly::faceVertexText);
    EXPECT_EQ(chunkAt<SHLChunkPtr>(back, 1)->getFragmentProgram(), tessaly::faceFragmentText);

    // Both faces and the exit share the bounding geometry.
    const NodeCorePtr core = faces->getChild(0)->getChild(0)->getCore();
    EXPECT_STREQ(core->getTypeName(), "Geometry");
    EXPECT_TRUE(faces->getChild(1)->getChild(0)->getCore() == core);
    EXPECT_TRUE(handler->getBackRoot()->getChild(0)->getChild(0)->getChild(0)->getCore() == core);
}

TEST(PassGraphs, BackGraphAndItsMaterial)
{
    CompleteHandler handler;
    const NodePtr root = handler->getBackRoot();
    EXPECT_STREQ(root->getCore()->getTypeName(), "Group");
    ASSERT_EQ(root->getNChildren(), 1u);
    EXPECT_STREQ(root->getChild(0)->getCore()->getTypeName(), "Transform");
    const ChunkMaterialPtr exit = materialOfNode(root->getChild(0)->getChild(0));
    EXPECT_TRUE(exit->getChunks().empty());
    handler->setDepthRange(1, 2); // there is no shader yet

    Textures textures;
    handler->setRayTextures(textures.front, textures.back);
    EXPECT_TRUE(exit->getChunks().empty());
    handler->setSceneTextures(textures.color, textures.depth);
    EXPECT_EQ(exit->getSortKey(), 0);
    EXPECT_EQ(chunkTypes(exit), (std::vector<std::string>{"PolygonChunk", "TextureChunk", "TextureChunk",
                                                          "SHLChunk", "DepthChunk", "ColorMaskChunk"}));
    expectFaceMaterial(exit, 1028, 518, true, 2);
    EXPECT_TRUE(exit->getChunk(1) == textures.front.get());
    EXPECT_TRUE(exit->getChunk(2) == textures.depth.get());
    const SHLChunkPtr shader = chunkAt<SHLChunkPtr>(exit, 3);
    EXPECT_EQ(shader->getVertexProgram(), tessaly::exitVertexText);
    EXPECT_EQ(shader->getFragmentProgram(), tessaly::exitFragmentText);
    EXPECT_EQ(uniform<Vec2f>(shader, "textureSize"), Vec2f(40, 30));
    EXPECT_EQ(uniform<Vec2f>(shader, "depthRange"), Vec2f(0.01f, 100.0f));
    EXPECT_EQ(uniform<Int32>(shader, "startImage"), 0);
    EXPECT_EQ(uniform<Int32>(shader, "sceneDepth"), 1);
    handler->setDepthRange(0.5f, 20.0f);
    EXPECT_EQ(uniform<Vec2f>(shader, "depthRange"), Vec2f(0.5f, 20.0f));

    // Refilled with the same shader; a front texture without an image counts as 512 x 512.
    handler->setRayTextures(textures.back, textures.front);
    EXPECT_TRUE(exit->getChunk(3) == shader);
    EXPECT_EQ(exit->getChunks().size(), 6u);
    EXPECT_EQ(uniform<Vec2f>(shader, "textureSize"), Vec2f(512, 512));
}

TEST(PassGraphs, ANewShapeMakesNewGraphs)
{
    CompleteHandler handler;
    const Held<NodePtr> front(handler->getFrontRoot());
    handler->setShadingFunctions(new DVRShading);
    EXPECT_TRUE(handler->getFrontRoot() == front.get());
    handler->setBVGeometry(new BoxGeometry);
    EXPECT_FALSE(handler->getFrontRoot() == front.get());
    EXPECT_EQ(front.get().getRefCount(), 1);
    const GeometryPtr box =
        GeometryPtr::dcast(handler->getFrontRoot()->getChild(0)->getChild(0)->getChild(0)->getCore());
    EXPECT_EQ(box->getPositions()->getSize(), 8u);
}

TEST(PassGraphs, TheViewReachesThePasses)
{
    VolumeNodeHandler empty;
    empty.setViewMatrix(Matrix());
    CompleteHandler handler;
    handler->setDimensions(Vec3f(2, 2, 2));
    handler->rebuild();
    // The volume stands at x = 10.
    const Held<NodePtr> world(makeCoredNode<Transform>());
    Matrix there;
    there.setTranslate(10, 0, 0);
    TransformPtr::dcast(world->getCore())->setMatrix(there);
    world->addChild(handler->getRootNode());
    Matrix beacon;
    beacon.setTranslate(10, 0, 5);
    handler->setViewMatrix(beacon);

    const NodePtr faces = handler->getFrontRoot()->getChild(0);
    const Matrix volumeToWorld = TransformPtr::dcast(faces->getCore())->getMatrix();
    EXPECT_TRUE(TransformPtr::dcast(handler->getBackRoot()->getChild(0)->getCore())->getMatrix() ==
                volumeToWorld);
    EXPECT_TRUE((volumeToWorld * Pnt3f(0.5f, 0.5f, 0.5f)).equals(Pnt3f(10, 0, 0), 1e-5f));
    EXPECT_TRUE((volumeToWorld * Pnt3f(1, 1, 1)).equals(Pnt3f(11, 1, 1), 1e-5f));
    const SHLChunkPtr plane =
        chunkAt<SHLChunkPtr>(materialOfNode(handler->getFrontRoot()->getChild(1)->getChild(0)), 0);
    const Matrix viewToVolume = uniform<Matrix>(plane, "viewToVolume");
    // 5 ahead of the camera is the volume's middle.
    EXPECT_TRUE((viewToVolume * Pnt3f(0, 0, -5)).equals(Pnt3f(0.5f, 0.5f, 0.5f), 1e-5f));
}
