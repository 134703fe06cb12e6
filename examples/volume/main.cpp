/// \file
/// One volume in four styles, from left to right: lit, maximum intensity, X-ray, and lit with the opacity of
/// flat regions taken away. The voxels are computed: a folded sheet inside a ball, around a core. Draws to a
/// PNG file, whose name is the argument; a second argument names a scan to draw instead.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

constexpr int edge = 128;
constexpr int panel = 300;

/// A byte a voxel: 90 to 150 in the sheet, 220 in the core, 0 elsewhere.
std::vector<UInt8> computedVoxels()
{
    std::vector<UInt8> voxels(std::size_t(edge) * edge * edge);
    std::size_t at = 0;
    for(int z = 0; z < edge; ++z)
        for(int y = 0; y < edge; ++y)
            for(int x = 0; x < edge; ++x, ++at)
            {
                const Vec3f p(2.f * Real32(x) / (edge - 1) - 1, 2.f * Real32(y) / (edge - 1) - 1,
                              2.f * Real32(z) / (edge - 1) - 1);
                const Real32 r = p.length();
                const Vec3f q = p * 8.f;
                const Real32 gyroid = std::sin(q[0]) * std::cos(q[1]) + std::sin(q[1]) * std::cos(q[2]) +
                                      std::sin(q[2]) * std::cos(q[0]);
                // Soft edges, so that gradients point somewhere.
                const Real32 sheet = std::clamp((0.45f - std::abs(gyroid)) * 4, 0.f, 1.f);
                const Real32 ball =
                    std::clamp((0.92f - r) * 16, 0.f, 1.f) * std::clamp((r - 0.42f) * 16, 0.f, 1.f);
                const Real32 core = std::clamp((0.32f - r) * 16, 0.f, 1.f);
                voxels[at] = UInt8(std::max(sheet * ball * (90 + 65 * r), 220 * core));
            }
    return voxels;
}

TextureChunkPtr textureOf(const ImagePtr &image)
{
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    endEditCP(texture);
    return texture;
}

/// Clear up to 40, then a thin blue to sand, and a dense red from 180 on.
ImagePtr transferFunction()
{
    const ImagePtr table = Image::create();
    table->set(Image::OSG_RGBA_PF, 256);
    for(int i = 0; i < 256; ++i)
    {
        const Real32 share = std::clamp((Real32(i) - 90) / 60, 0.f, 1.f);
        const bool core = i >= 180;
        const Real32 rgba[] = {core ? 0.9f : 0.25f + 0.65f * share, core ? 0.25f : 0.5f + 0.25f * share,
                               core ? 0.2f : 0.75f - 0.3f * share,
                               core ? 0.9f : std::clamp((Real32(i) - 40) / 100, 0.f, 0.6f)};
        for(int c = 0; c < 4; ++c)
            table->getData()[4 * i + c] = UInt8(255 * rgba[c]);
    }
    endEditCP(table);
    return table;
}

BasicVolumeShadingStylePtr makeStyle(UInt32 shading)
{
    const BasicVolumeShadingStylePtr style = BasicVolumeShadingStyle::create();
    style->setShadingFuncType(shading); // 0 volume rendering, 1 maximum intensity, 2 X-ray
    style->setLighting(shading == 0);
    style->setEmissiveColor(Color3f(0.25f, 0.25f, 0.25f));
    style->setDiffuseColor(Color3f(1, 1, 1));
    style->setSpecularColor(Color3f(0.3f, 0.3f, 0.3f));
    endEditCP(style);
    return style;
}

/// Opacity is multiplied by boundaryOpacity * |gradient| ^ opacityFactor: boundaries stay, the rest clears.
ComposableVolumeShadingStylePtr boundariesOnly()
{
    const ComposableVolumeShadingStylePtr boundaries = ComposableVolumeShadingStyle::create();
    boundaries->setShadingFuncType(3);
    boundaries->setRetainedOpacity(0.0f);
    boundaries->setBoundaryOpacity(1.0f);
    boundaries->setOpacityFactor(0.65f);
    endEditCP(boundaries);
    return boundaries;
}

/// The volume in a window of its own; the picture is what was drawn.
ImagePtr draw(const VolumeNodePtr &volume)
{
    Matrix eye;
    MatrixLookAt(eye, Pnt3f(2.3f, 1.7f, 3.2f), Pnt3f(0.f, 0.f, 0.f), Vec3f(0, 1, 0));
    const TransformPtr place = Transform::create();
    place->setMatrix(eye);
    const NodePtr beacon = makeNodeFor(place);
    const DirectionalLightPtr light = DirectionalLight::create();
    light->setBeacon(beacon);
    light->setDirection(Vec3f(-0.5f, 0.6f, 1));
    endEditCP(light);
    const NodePtr root = makeNodeFor(light);
    root->addChild(beacon);
    root->addChild(makeNodeFor(volume));
    endEditCP(root);
    const PerspectiveCameraPtr camera = PerspectiveCamera::create();
    camera->setBeacon(beacon);
    camera->setFov(0.47f);
    camera->setNear(0.1f);
    camera->setFar(20);
    endEditCP(camera);
    const SolidBackgroundPtr background = SolidBackground::create();
    background->setColor(Color3f(0.08f, 0.09f, 0.13f));
    endEditCP(background);

    const VolumeViewportPtr passes = VolumeViewport::create(); // ahead of the one that shows the scene
    passes->setCamera(camera);
    passes->setRoot(root);
    passes->setBackground(background);
    passes->getVolumeNodes().push_back(volume);
    endEditCP(passes);

    const ImagePtr picture = Image::create();
    picture->set(Image::OSG_RGB_PF, panel, panel);
    const GrabForegroundPtr grab = GrabForeground::create();
    grab->setImage(picture);
    endEditCP(grab);
    const ViewportPtr viewport = Viewport::create();
    viewport->setCamera(camera);
    viewport->setRoot(root);
    viewport->setBackground(background);
    viewport->getForegrounds().push_back(grab);
    endEditCP(viewport);
    const EGLWindowPtr window = EGLWindow::create();
    addRefCP(window);
    window->resize(panel, panel);
    window->addPort(passes);
    window->addPort(viewport);
    window->init();
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    for(int frame = 0; frame < 3; ++frame) // the first frame of a volume only prepares
        window->render(action.get());
    addRefCP(picture);
    volume->setVolume(nullptr); // what the node made of the voxels belongs to whoever made the node
    subRefCP(window);
    return picture;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        const ImagePtr scan = Image::create();
        addRefCP(scan); // outlives each of the four volumes
        if(argc > 2 && !scan->read(argv[2]))
            return 1;
        if(argc <= 2)
            scan->set(Image::OSG_L_PF, edge, edge, edge, 1, 1, 0.0, computedVoxels().data());

        const ImagePtr strip = Image::create();
        strip->set(Image::OSG_RGB_PF, 4 * panel, panel);
        for(int i = 0; i < 4; ++i)
        {
            const VolumeNodePtr volume = VolumeNode::create();
            volume->setVoxels(textureOf(scan));
            volume->setTransferFunc(textureOf(transferFunction()));
            volume->setDimensions(Vec3f(2, 2, 2));
            volume->setShadingStyle(makeStyle(i < 3 ? UInt32(i) : 0));
            if(i == 3)
                volume->getComposableStyle().push_back(boundariesOnly());
            endEditCP(volume);
            const ImagePtr picture = draw(volume);
            for(int y = 0; y < panel; ++y)
                std::memcpy(strip->getData() + std::size_t(3) * panel * (4 * y + i),
                            picture->getData() + std::size_t(3) * panel * y, std::size_t(3) * panel);
            subRefCP(picture);
        }
        written = strip->write(argc > 1 ? argv[1] : "volume.png");
        subRefCP(scan);
    }
    osgExit();
    return written ? 0 : 1;
}
