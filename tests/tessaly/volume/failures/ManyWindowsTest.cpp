/// \file
/// A process that opens and closes windows all day keeps its memory.

#include "VolumeStage.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGThread.h>

#include <fstream>

#include <malloc.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

using namespace osg;

namespace
{

constexpr int side = 32;

/// The memory of this process that is in use, in bytes.
long residentBytes()
{
#ifdef __SANITIZE_ADDRESS__
    // The sanitizer keeps what was freed for a while, but knows what is allocated.
    return long(__sanitizer_get_current_allocated_bytes());
#else
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    long size = 0;
    long resident = 0;
    file >> size >> resident;
    return resident * sysconf(_SC_PAGESIZE);
#endif
}

TextureChunkPtr texture(const std::vector<UInt8> &pixels, Int32 width, Int32 height)
{
    const ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGBA_PF, width, height, 1, 1, 1, 0.0, pixels.empty() ? nullptr : pixels.data());
    endEditCP(image);
    const TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    chunk->setMinFilter(0x2600);
    chunk->setMagFilter(0x2600);
    endEditCP(chunk);
    return chunk;
}

/// A box whose program doubles the red of its texture and takes green from a uniform.
NodePtr texturedBox()
{
    std::vector<UInt8> pixels;
    for(int i = 0; i < 64 * 64; ++i)
        pixels.insert(pixels.end(), {64, 0, 32, 255});
    const SHLChunkPtr program = SHLChunk::create();
    beginEditCP(program);
    program->setVertexProgram("#version 110\nvoid main() { gl_TexCoord[0] = gl_MultiTexCoord0;"
                              " gl_Position = ftransform(); }\n");
    program->setFragmentProgram("#version 110\nuniform sampler2D image; uniform float green;\n"
                                "void main() { vec4 c = texture2D(image, gl_TexCoord[0].st);"
                                " gl_FragColor = vec4(2.0 * c.r, green, c.b, 1.0); }\n");
    program->setUniformParameter("image", Int32(0));
    program->setUniformParameter("green", Real32(1.0f));
    endEditCP(program);
    const ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(texture(pixels, 64, 64));
    material->addChunk(program);
    endEditCP(material);
    const GeometryPtr geometry = makeBoxGeo(1, 1, 1, 1, 1, 1);
    beginEditCP(geometry);
    geometry->setMaterial(material);
    endEditCP(geometry);
    return makeNodeFor(geometry);
}

/// Opens a window, draws the scene into a texture and into the window, and closes it. The pixel in the
/// middle.
test::RgbaImage::Pixel openDrawClose(const NodePtr &root, const PerspectiveCameraPtr &camera,
                                     const SolidBackgroundPtr &background, RenderAction *action)
{
    const EGLWindowPtr window = EGLWindow::create();
    addRefCP(window);
    const FBOViewportPtr pass = FBOViewport::create();
    beginEditCP(pass);
    pass->setCamera(camera);
    pass->setRoot(root);
    pass->setBackground(background);
    pass->setStorageSize(side, side);
    pass->setFboOn(true);
    pass->getTextures().push_back(texture({}, side, side));
    endEditCP(pass);
    const ViewportPtr view = Viewport::create();
    beginEditCP(view);
    view->setCamera(camera);
    view->setRoot(root);
    view->setBackground(background);
    view->setSize(0, 0, 1, 1);
    endEditCP(view);
    window->resize(side, side);
    window->addPort(pass);
    window->addPort(view);
    window->init();
    window->activate();
    window->render(action);
    const test::RgbaImage::Pixel pixel = test::readPixel(side / 2, side / 2);
    window->deactivate();
    subRefCP(window);
    Thread::getCurrentChangeList()->clearAll();
    return pixel;
}

TEST(ManyWindows, OpenedDrawnAndClosedLeaveNoMemoryBehind)
{
    osgInit(0, nullptr);
    const LogCapture log(LOG_WARNING);
    TransformPtr eye;
    const NodePtr beacon = makeCoredNode<Transform>(&eye);
    Matrix back;
    back.setTranslate(0, 0, 3);
    beginEditCP(eye);
    eye->setMatrix(back);
    endEditCP(eye);
    const NodePtr root = makeCoredNode<Group>();
    addRefCP(root);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(beacon);
    root->addChild(texturedBox());
    endEditCP(root, Node::ChildrenFieldMask);
    const PerspectiveCameraPtr camera = PerspectiveCamera::create();
    addRefCP(camera);
    beginEditCP(camera);
    camera->setBeacon(beacon);
    camera->setFov(0.9f);
    camera->setNear(0.1f);
    camera->setFar(10);
    endEditCP(camera);
    const SolidBackgroundPtr background = SolidBackground::create();
    addRefCP(background);
    RenderAction *const action = RenderAction::create();

    constexpr int warmUp = 100;
    constexpr int windows = 1000;
    const test::RgbaImage::Pixel expected = {128, 255, 32, 255};
    for(int i = 0; i < warmUp; ++i)
        ASSERT_EQ(openDrawClose(root, camera, background, action), expected);
    const long before = residentBytes();
    for(int i = 0; i < windows; ++i)
        ASSERT_EQ(openDrawClose(root, camera, background, action), expected) << "window " << i;
    const long grown = residentBytes() - before;
    RecordProperty("grown", std::to_string(grown));
    EXPECT_LT(grown, 2 * 1024 * 1024);
    EXPECT_EQ(test::complaintsIn(log), "");

    delete action;
    subRefCP(background);
    subRefCP(camera);
    subRefCP(root);
}

} // namespace
