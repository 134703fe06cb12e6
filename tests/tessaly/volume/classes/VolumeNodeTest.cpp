#include <Tessaly/OSGVolumeNode.h>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTransform.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>

#include "VolumeScene.h"
#include "volume/DVRShading.h"
#include "volume/DVRShadingAndLighting.h"
#include "volume/MIPShading.h"
#include "volume/VolumeData.h"
#include "volume/VolumeNodeHandler.h"
#include "volume/XRayShading.h"

using namespace osg;

namespace
{

/// A volume node with voxels, and the log of what it says.
struct Scene
{
    LogCapture log;
    Held<VolumeNodePtr> node{VolumeNode::create()};

    explicit Scene(const TextureChunkPtr &voxels = makeVolume<UInt8>(16, 16, 16, 100))
    {
        node->setVoxels(voxels);
        standardOutput([&] { endEditCP(node, VolumeNode::VoxelsFieldMask); });
    }
    ~Scene() { node->setVolume(nullptr); }

    VolumeNode *operator->() const { return node.get().getCPtr(); }
    VolumeNodeHandler *handler() const { return node->getVolume(); }
    std::string text() const { return node->getVolume()->getShader()->getFragmentProgram(); }
    bool textHas(const char *part) const { return text().find(part) != std::string::npos; }

    /// Closes an edit of the fields and applies it.
    bool apply(BitVector fields)
    {
        endEditCP(node, fields);
        return node->initVolume();
    }
};

} // namespace

TEST(VolumeNode, VoxelsMakeAHandlerAtOnce)
{
    Scene volume;
    ASSERT_NE(volume.handler(), nullptr);
    EXPECT_TRUE(volume.log.contains(LOG_NOTICE, "New volume texture was set..."));
    EXPECT_EQ(volume.log.count(LOG_WARNING), 0u);
    EXPECT_EQ(volume.log.count(LOG_FATAL), 0u);
    const std::string *const thickness =
        volume->getVoxels()->getImage()->findAttachmentField("SliceThickness");
    ASSERT_NE(thickness, nullptr);
    EXPECT_EQ(*thickness, "1.000000 1.000000 1.000000");
    // Starting strategies, whatever the fields say.
    EXPECT_NE(volume.handler()->getRootNode(), NullFC);
    EXPECT_EQ(uniform<Real32>(volume.handler()->getShader(), "stepSize"), 0.0039f);

    volume.log.clear();
    EXPECT_TRUE(volume->initVolume());
    EXPECT_EQ(volume.log.text(LOG_NOTICE), "VolumeNode::initVolume()");
    EXPECT_EQ(uniform<Real32>(volume.handler()->getShader(), "stepSize"), 0.004f);
    volume.log.clear();
    EXPECT_FALSE(volume->initVolume());
    EXPECT_EQ(volume.log.count(), 0u);
}

TEST(VolumeNode, ImagesThatAreTooSmallLeaveTheHandler)
{
    Scene volume;
    VolumeNodeHandler *const before = volume.handler();
    volume.log.clear();
    volume->setVoxels(makeVolume<UInt8>(8, 1, 8, 1));
    EXPECT_FALSE(volume->createVolume());
    EXPECT_EQ(volume.log.text(LOG_WARNING), "Error setting volume, image too small! Retrying...");
    EXPECT_EQ(volume.handler(), before);
}

TEST(VolumeNode, WithoutVoxelsThereIsNoHandler)
{
    Scene volume;
    volume.log.clear();
    volume->setVoxels(NullFC);
    EXPECT_FALSE(volume->createVolume());
    EXPECT_EQ(volume.log.text(LOG_FATAL), "Error setting the volume!");
    EXPECT_EQ(volume.handler(), nullptr);
    EXPECT_FALSE(volume->initVolume());
    volume.log.clear();
    EXPECT_FALSE(volume->attachVolume());
    EXPECT_EQ(volume.log.text(LOG_FATAL), "VolumeNode::attachVolume() -> No Volume!\n0; 0");
    volume->setVoxels(TextureChunk::create());
    EXPECT_FALSE(volume->createVolume());
}

TEST(VolumeNode, TheSliceThicknessReachesTheHandler)
{
    Scene volume;
    volume->setSliceThickness(Vec3f(1, 2, 0.5f));
    volume->setDimensions(Vec3f(-1, 1, 1));
    standardOutput([&] { endEditCP(volume.node, VolumeNode::SliceThicknessFieldMask); });
    EXPECT_EQ(volume.handler()->getVolumeData()->getSliceThickness(), Vec3f(1, 2, 0.5f));
    const Matrix matrix = TransformPtr::dcast(volume.handler()->getRootNode()->getCore())->getMatrix();
    EXPECT_TRUE((matrix * Pnt3f(1, 1, 1)).equals(Pnt3f(8, 16, 4), 1e-4f));
}

TEST(VolumeNode, DimensionsAloneDoNotMoveTheVolume)
{
    Scene volume;
    volume->initVolume();
    const Matrix before = TransformPtr::dcast(volume.handler()->getRootNode()->getCore())->getMatrix();
    volume->setDimensions(Vec3f(3, 3, 3));
    EXPECT_FALSE(volume.apply(VolumeNode::DimensionsFieldMask));
    EXPECT_TRUE(TransformPtr::dcast(volume.handler()->getRootNode()->getCore())->getMatrix() == before);
}

TEST(VolumeNode, TypesChooseTheStrategies)
{
    Scene volume;
    volume->setRayGenType(0);
    EXPECT_TRUE(volume.apply(VolumeNode::RayGenTypeFieldMask));
    EXPECT_FALSE(volume.textHas("rayOffset"));
    volume->setRayGenType(2);
    EXPECT_TRUE(volume.apply(VolumeNode::RayGenTypeFieldMask));
    EXPECT_TRUE(volume.textHas("rayOffset"));
    volume->setRayGenType(9); // acted, with no effect
    EXPECT_TRUE(volume.apply(VolumeNode::RayGenTypeFieldMask));
    EXPECT_TRUE(volume.textHas("rayOffset"));

    volume->setTraversalType(2);
    EXPECT_TRUE(volume.apply(VolumeNode::TraversalTypeFieldMask));
    EXPECT_TRUE(volume.textHas("bitVolume"));

    volume->setTransferFuncType(2);
    EXPECT_TRUE(volume.apply(VolumeNode::TransferFuncTypeFieldMask));
    EXPECT_TRUE(volume.textHas("preIntTable"));
    volume->setTransferFuncType(3);
    EXPECT_TRUE(volume.apply(VolumeNode::TransferFuncTypeFieldMask));
    EXPECT_FALSE(volume.textHas("preIntTable"));

    volume->setNormalGenType(3);
    EXPECT_TRUE(volume.apply(VolumeNode::NormalGenTypeFieldMask));
    EXPECT_TRUE(volume.textHas("xGrad"));
    volume->setNormalGenType(7); // without normals the strategy stays
    EXPECT_TRUE(volume.apply(VolumeNode::NormalGenTypeFieldMask));
    EXPECT_TRUE(volume.textHas("xGrad"));
    volume->setNormalGenType(1); // computes its own
    EXPECT_TRUE(volume.apply(VolumeNode::NormalGenTypeFieldMask));
    EXPECT_TRUE(volume.textHas("normalVolume"));
    EXPECT_TRUE(hasUniform(volume.handler()->getShader(), "normalVolume"));

    const auto corners = [&]
    {
        return GeometryPtr::dcast(
                   volume.handler()->getFrontRoot()->getChild(0)->getChild(0)->getChild(0)->getCore())
            ->getPositions()
            ->getSize();
    };
    EXPECT_EQ(corners(), 27u);
    volume->setBvGeoType(1);
    EXPECT_TRUE(volume.apply(VolumeNode::BvGeoTypeFieldMask));
    EXPECT_EQ(corners(), 8u);
}

TEST(VolumeNode, FinishedNormalsAndTablesSurviveTheirStrategies)
{
    Scene volume;
    const Held<TextureChunkPtr> normals(
        makeTexture(makeVoxels<UInt8>(16, 16, 16, [](int, int, int) { return 1; })));
    const Held<TextureChunkPtr> table(
        makeTexture(makeVoxels<UInt32>(256, 1, 1, [](int, int, int) { return 0; })));
    table->getImage()->set(6408, 256, 1, 1, 1, 1, 0.0, nullptr, 5121, true, 1);
    volume->setNormals(normals);
    volume->setNormalGenType(7);
    volume->setTransferFunc(table);
    EXPECT_TRUE(volume.apply(VolumeNode::NormalsFieldMask | VolumeNode::NormalGenTypeFieldMask |
                             VolumeNode::TransferFuncFieldMask));
    EXPECT_TRUE(volume.textHas("normalVolume"));
    for(int i = 0; i < 3; ++i)
        volume.apply(VolumeNode::NormalsFieldMask | VolumeNode::TransferFuncFieldMask);
    volume->setNormals(NullFC);
    volume->setTransferFunc(NullFC);
    volume->setNormalGenType(2);
    volume.apply(VolumeNode::NormalsFieldMask | VolumeNode::NormalGenTypeFieldMask |
                 VolumeNode::TransferFuncFieldMask);
    volume->setVolume(nullptr);
    EXPECT_EQ(normals.get().getRefCount(), 1);
    EXPECT_EQ(table.get().getRefCount(), 1);
}

TEST(VolumeNode, AttachingLeavesOneChild)
{
    Scene volume;
    volume.log.clear();
    EXPECT_FALSE(volume->attachVolume());
    EXPECT_EQ(volume.log.count(), 0u);
    const Held<NodePtr> node(makeNodeFor(volume.node));
    node->addChild(makeCoredNode<Group>());
    node->addChild(makeCoredNode<Group>());
    EXPECT_TRUE(volume->attachVolume());
    EXPECT_EQ(volume.log.text(LOG_NOTICE), "VolumeNode::attachVolume() -> Parent OK!");
    ASSERT_EQ(node->getNChildren(), 1u);
    EXPECT_TRUE(volume->attachVolume());
    ASSERT_EQ(node->getNChildren(), 1u);
    EXPECT_TRUE(node->getChild(0) == volume.handler()->getRootNode());
    node->subChild(0u);
}

TEST(VolumeNode, ItsBoxIsInVoxels)
{
    Scene volume(makeVolume<UInt8>(16, 8, 24, 100));
    BoxVolume box(-100, -100, -100, 100, 100, 100);
    volume->adjustVolume(box);
    EXPECT_EQ(box.getMin(), Pnt3f(-8, -4, -12));
    EXPECT_EQ(box.getMax(), Pnt3f(8, 4, 12));
    EXPECT_TRUE(box.isValid());
}

TEST(VolumeNode, ALineThatMissesTheBoxSkipsWhatIsBelow)
{
    Scene volume;
    const Held<NodePtr> node(makeNodeFor(volume.node));
    node->updateVolume();
    struct Case
    {
        Pnt3f from;
        Action::ResultE result;
    };
    for(const Case &line : {Case{Pnt3f(0, 0, 50), Action::Continue}, Case{Pnt3f(30, 0, 50), Action::Skip}})
    {
        IntersectAction test(Line(line.from, Vec3f(0, 0, -1)));
        std::vector<Action::ResultE> results;
        test.registerEnterFunction(VolumeNode::getClassType(),
                                   [&](NodeCore *core, Action *visited)
                                   {
                                       results.push_back(static_cast<VolumeNode *>(core)->intersect(visited));
                                       return results.back();
                                   });
        test.apply(node);
        ASSERT_EQ(results.size(), 1u);
        EXPECT_EQ(results[0], line.result);
    }
}

TEST(VolumeNode, NothingBelowItIsCulled)
{
    Scene volume;
    const Held<NodePtr> node(makeNodeFor(volume.node));
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    for(const bool culling : {true, false})
    {
        action->setFrustumCulling(culling);
        EXPECT_EQ(volume->renderEnter(action.get()), Action::Continue);
        EXPECT_FALSE(action->getFrustumCulling());
        EXPECT_EQ(volume->renderLeave(action.get()), Action::Continue);
        EXPECT_EQ(action->getFrustumCulling(), culling);
    }
}

TEST(VolumeNode, AnotherAspectTakesTheVoxelsAsTheyAre)
{
    Thread::getCurrentChangeList()->clearAll();
    // 0x0002 becomes 0x0200 when its bytes are swapped, which is 12-bit data and is scaled to 0x2000.
    LogCapture log;
    const Held<VolumeNodePtr> node(VolumeNode::create());
    const Held<TextureChunkPtr> voxels(makeVolume<UInt16>(8, 8, 8, 0x0002));
    node->setVoxels(voxels);
    node->setSwapped(true);
    standardOutput([&] { endEditCP(node, VolumeNode::VoxelsFieldMask | VolumeNode::SwappedFieldMask); });
    EXPECT_EQ(valueAt<UInt16>(voxels->getImage(), 0), 0x2000);

    struct Job
    {
        VolumeNodePtr node;
        ChangeList *changes;
        bool initialised;
        UInt16 voxel;
        bool ownHandler;
        VolumeNodeHandler *other;
    } job{node, Thread::getCurrentChangeList(), false, 0, false, node->getVolume()};
    standardOutput(
        [&]
        {
            Thread *const thread = Thread::get("draw");
            thread->runFunction(
                [](void *argument)
                {
                    Job &work = *static_cast<Job *>(argument);
                    work.changes->applyToCurrent();
                    work.voxel = valueAt<UInt16>(work.node->getVoxels()->getImage(), 0);
                    work.ownHandler =
                        work.node->getVolume() != nullptr && work.node->getVolume() != work.other;
                    work.initialised = work.node->initVolume();
                    work.node->setVolume(nullptr);
                    Thread::getCurrentChangeList()->clearAll();
                },
                1, &job);
            Thread::join(thread);
        });
    EXPECT_EQ(job.voxel, 0x2000);
    EXPECT_TRUE(job.ownHandler);
    EXPECT_TRUE(job.initialised);
    EXPECT_EQ(voxels.get().getRefCount(), 4); // ours, the node, VolumeData, the material
    node->setVolume(nullptr);
    EXPECT_EQ(voxels.get().getRefCount(), 2);
    Thread::getCurrentChangeList()->clearAll();
}

TEST(VolumeNode, NothingIsLeftWhenItIsGone)
{
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    {
        Scene volume;
        volume->setNormalGenType(1);
        volume->setTransferFuncType(2);
        volume->setTraversalType(2);
        volume->setShadingStyle(BasicVolumeShadingStyle::create());
        volume->getComposableStyle().push_back(ComposableVolumeShadingStyle::create());
        EXPECT_TRUE(volume.apply(FieldBits::AllFields & ~VolumeNode::VoxelsFieldMask &
                                 ~VolumeNode::SwappedFieldMask & ~VolumeNode::SliceThicknessFieldMask));
        volume->setBvGeoType(1);
        EXPECT_TRUE(volume.apply(VolumeNode::BvGeoTypeFieldMask));
        EXPECT_GT(FieldContainerFactory::the()->getNumContainers(), before);
    }
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before);
}

TEST(ShadingStyles, ABasicStyleInstallsTheFunction)
{
    Scene volume;
    const Held<BasicVolumeShadingStylePtr> style(BasicVolumeShadingStyle::create());
    EXPECT_EQ(style->hasChanged(), 0u);
    volume->setShadingStyle(style);
    EXPECT_TRUE(volume.apply(VolumeNode::ShadingStyleFieldMask));
    EXPECT_NE(dynamic_cast<DVRShading *>(volume.handler()->getShadingFunctions()), nullptr);
    EXPECT_EQ(style->getShadingFunction(), volume.handler()->getShadingFunctions());

    const auto set = [&](UInt32 type, bool lighting, bool enabled)
    {
        style->setShadingFuncType(type);
        style->setLighting(lighting);
        style->setEnabled(enabled);
        endEditCP(style);
        EXPECT_NE(style->hasChanged(), 0u);
        EXPECT_TRUE(volume->initVolume());
        EXPECT_EQ(style->hasChanged(), 0u);
        return volume.handler()->getShadingFunctions();
    };
    EXPECT_NE(dynamic_cast<MIPShading *>(set(1, true, true)), nullptr);
    EXPECT_NE(dynamic_cast<XRayShading *>(set(2, false, true)), nullptr);
    EXPECT_NE(dynamic_cast<DVRShading *>(set(2, true, false)), nullptr);
    volume.log.clear();
    ShadingFunctions *const before = volume.handler()->getShadingFunctions();
    EXPECT_EQ(set(3, false, true), before); // the function that is there stays
    EXPECT_EQ(volume.log.text(LOG_WARNING), "Shading Style 3 not impl. in BasicVolumeShadingStyle\n");
}

TEST(ShadingStyles, LightingParametersReachTheProgram)
{
    Scene volume;
    volume->initVolume();
    const Held<BasicVolumeShadingStylePtr> style(BasicVolumeShadingStyle::create());
    style->setLighting(true);
    style->setDiffuseColor(Color3f(0.1f, 0.2f, 0.3f));
    style->setEmissiveColor(Color3f(0.4f, 0.5f, 0.6f));
    style->setSpecularColor(Color3f(0.7f, 0.8f, 0.9f));
    volume->setShadingStyle(style);
    EXPECT_TRUE(volume.apply(VolumeNode::ShadingStyleFieldMask));
    auto *const shading = dynamic_cast<DVRShadingAndLighting *>(volume.handler()->getShadingFunctions());
    ASSERT_NE(shading, nullptr);
    const SHLChunkPtr shader = volume.handler()->getShader();
    EXPECT_FLOAT_EQ(shading->exponent, 25.6f);
    EXPECT_FLOAT_EQ(uniform<Real32>(shader, "exponent"), 25.6f);
    EXPECT_EQ(shading->emissiveColor, Vec3f(0.4f, 0.5f, 0.6f));
    EXPECT_EQ(uniform<Vec3f>(shader, "diffuseColor"), Vec3f(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(uniform<Vec3f>(shader, "specularColor"), Vec3f(0.7f, 0.8f, 0.9f));
    // The next program begins with 25 again.
    volume.handler()->buildProgram();
    EXPECT_EQ(uniform<Real32>(shader, "exponent"), 25.0f);
    EXPECT_EQ(uniform<Vec3f>(shader, "diffuseColor"), Vec3f(0.1f, 0.2f, 0.3f));
}

TEST(ShadingStyles, AStyleOfAnotherClassCountsAsNone)
{
    Scene volume;
    volume.handler()->setShadingFunctions(new MIPShading);
    volume->setShadingStyle(Group::create());
    EXPECT_TRUE(volume.apply(VolumeNode::ShadingStyleFieldMask));
    EXPECT_NE(dynamic_cast<DVRShading *>(volume.handler()->getShadingFunctions()), nullptr);
}

TEST(ShadingStyles, AComposableStyleWeightsByTheGradient)
{
    Scene volume;
    const Held<ComposableVolumeShadingStylePtr> style(ComposableVolumeShadingStyle::create());
    volume->getComposableStyle().push_back(style);
    EXPECT_TRUE(volume.apply(VolumeNode::ComposableStyleFieldMask));
    EXPECT_TRUE(volume.textHas("gradMag"));
    const SHLChunkPtr shader = volume.handler()->getShader();
    EXPECT_EQ(uniform<Real32>(shader, "kgc"), 1.0f);
    EXPECT_EQ(uniform<Real32>(shader, "kgs"), 0.0f);
    EXPECT_EQ(uniform<Real32>(shader, "kge"), 1.0f);

    volume.log.clear();
    style->setRetainedOpacity(0.25f);
    style->setBoundaryOpacity(3.0f);
    style->setOpacityFactor(2.0f);
    style->setEnabled(true);
    style->setShadingFuncType(1);
    endEditCP(style);
    EXPECT_TRUE(volume->initVolume());
    EXPECT_EQ(volume.log.text(LOG_WARNING), "Shading Style 1 not impl. in ComposableVolumeShadingStyle\n");
    EXPECT_TRUE(volume.textHas("gradMag"));
    EXPECT_EQ(uniform<Real32>(shader, "kgc"), 0.25f);
    EXPECT_EQ(uniform<Real32>(shader, "kgs"), 3.0f);
    EXPECT_EQ(uniform<Real32>(shader, "kge"), 2.0f);
    auto *const shading = dynamic_cast<DVRShadingBase *>(volume.handler()->getShadingFunctions());
    EXPECT_EQ(shading->kgs, 3.0f);

    // Logged only where one of the two fields has changed.
    volume.log.clear();
    endEditCP(style, VolumeShadingStyle::OpacityFactorFieldMask);
    EXPECT_TRUE(volume->initVolume());
    EXPECT_EQ(volume.log.count(LOG_WARNING), 0u);

    style->setShadingFuncType(3);
    style->setEnabled(false);
    endEditCP(style);
    EXPECT_TRUE(volume->initVolume());
    EXPECT_EQ(volume.log.count(LOG_WARNING), 0u);
    EXPECT_FALSE(volume.textHas("gradMag"));

    // Taken off the list, nothing of it is left.
    style->setEnabled(true);
    endEditCP(style);
    EXPECT_TRUE(volume->initVolume());
    EXPECT_TRUE(volume.textHas("gradMag"));
    volume->getComposableStyle().clear();
    EXPECT_TRUE(volume.apply(VolumeNode::ComposableStyleFieldMask));
    EXPECT_FALSE(volume.textHas("gradMag"));
}

TEST(ShadingStyles, AComposableStyleLeavesProjectionsAlone)
{
    Scene volume;
    const Held<ComposableVolumeShadingStylePtr> style(ComposableVolumeShadingStyle::create());
    endEditCP(style, VolumeShadingStyle::OpacityFactorFieldMask);
    volume.handler()->setShadingFunctions(new MIPShading);
    const std::string before = volume.text();
    style->paramShading(volume.handler());
    EXPECT_EQ(style->hasChanged(), 0u);
    EXPECT_EQ(volume.text(), before);
}

TEST(ShadingStyles, TheBaseDoesNothing)
{
    Scene volume;
    const Held<VolumeShadingStylePtr> style(VolumeShadingStyle::create());
    EXPECT_EQ(style->getShadingFunction(), nullptr);
    endEditCP(style, VolumeShadingStyle::ThresholdFieldMask);
    const std::string before = volume.text();
    style->paramShading(volume.handler());
    EXPECT_EQ(volume.text(), before);
    EXPECT_EQ(style->hasChanged(), BitVector(VolumeShadingStyle::ThresholdFieldMask));
}
