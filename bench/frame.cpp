/// \file
/// Draws frames of a volume on demand and tells how long each took.
///
///     bench_frame write full|shell FILE       writes voxels and, as FILE.table, the table
///     bench_frame serve full|shell dvr|lit    draws on demand
///
/// The second reads commands, line by line: "frame ANGLE" draws and answers seconds and processor seconds;
/// "picture FILE" writes the last frame, RGB, bottom row first.

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>
#include <Tessaly/Tessaly.h>

#include <volume/BitVolume.h>
#include <volume/VolumeData.h>
#include <volume/VolumeNodeHandler.h>

#include "Quiet.h"

using namespace osg;

namespace
{

constexpr int side = 256;
constexpr int pictureSide = 512;
// What the other renderer is told too: see vtk_frame.py.
constexpr double eyeDistance = 850.0;
constexpr double eyeHeight = 0.35; // sine of the elevation
constexpr double fieldOfView = 0.5235987755982988;
constexpr float stepSize = 0.004f;

/// Something in every voxel, so that no ray can be cut short and no block left out.
std::vector<UInt8> fullVolume()
{
    std::vector<UInt8> voxels(std::size_t(side) * side * side);
    std::size_t at = 0;
    UInt32 noise = 1;
    for(int z = 0; z < side; ++z)
        for(int y = 0; y < side; ++y)
            for(int x = 0; x < side; ++x) {
                noise = noise * 1664525u + 1013904223u;
                const double wave = std::sin(x * 0.07) + std::sin(y * 0.05 + 1.0) + std::sin(z * 0.06 + 2.0);
                voxels[at++] = UInt8(128.0 + 30.0 * wave + double(noise >> 28));
            }
    return voxels;
}

/// A thin hollow ball in a surrounding that is not zero, but that the table makes invisible.
std::vector<UInt8> shellVolume()
{
    std::vector<UInt8> voxels(std::size_t(side) * side * side);
    std::size_t at = 0;
    for(int z = 0; z < side; ++z)
        for(int y = 0; y < side; ++y)
            for(int x = 0; x < side; ++x) {
                const double dx = x - 127.5;
                const double dy = y - 127.5;
                const double dz = z - 127.5;
                const double away = std::abs(std::sqrt(dx * dx + dy * dy + dz * dz) - 75.0);
                voxels[at++] = away < 4.0 ? UInt8(200.0 - 190.0 * away / 4.0) : UInt8(10);
            }
    return voxels;
}

/// 256 times red, green, blue and opacity. All white: then a picture is the square of what another renderer
/// shows, since the library weights the colour of a ray by its opacity once more.
std::vector<UInt8> tableOf(bool shell)
{
    std::vector<UInt8> table;
    for(int value = 0; value < 256; ++value) {
        const int opacity = shell ? (value < 100 ? 0 : (value - 100) * 3 / 4) : value / 50;
        for(const int channel : {255, 255, 255, opacity})
            table.push_back(UInt8(channel));
    }
    return table;
}

int writeFiles(bool shell, const std::string &name)
{
    const std::vector<UInt8> voxels = shell ? shellVolume() : fullVolume();
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char *>(voxels.data()), std::streamsize(voxels.size()));
    std::ofstream table(name + ".table");
    int column = 0;
    for(const UInt8 entry : tableOf(shell))
        table << int(entry) << (++column % 4 == 0 ? "\n" : " ");
    return file.good() && table.good() ? 0 : 1;
}

template <class Ptr>
Ptr made()
{
    const Ptr container = Ptr::StoredObjectType::create();
    addRefCP(container); // until the process ends
    return container;
}

ImagePtr madeImage(UInt32 format, Int32 width, Int32 height, Int32 depth, const UInt8 *data)
{
    const ImagePtr image = made<ImagePtr>();
    beginEditCP(image);
    image->set(format, width, height, depth, 1, 1, 0.0, data);
    endEditCP(image);
    return image;
}

TextureChunkPtr madeTexture(const ImagePtr &image)
{
    const TextureChunkPtr chunk = made<TextureChunkPtr>();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    return chunk;
}

NodePtr madeNode(const NodeCorePtr &core)
{
    const NodePtr node = made<NodePtr>();
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(core);
    endEditCP(node, Node::CoreFieldMask);
    return node;
}

class Scene
{
public:
    Scene(bool shell, bool lit)
    {
        const BasicVolumeShadingStylePtr style = made<BasicVolumeShadingStylePtr>();
        beginEditCP(style);
        style->setLighting(lit);
        style->setEmissiveColor(Color3f(0.2f, 0.2f, 0.2f));
        style->setDiffuseColor(Color3f(0.7f, 0.7f, 0.7f));
        style->setSpecularColor(Color3f(0.2f, 0.2f, 0.2f));
        style->setShininess(0.1f);
        endEditCP(style);

        _volume = made<VolumeNodePtr>();
        beginEditCP(_volume);
        const std::vector<UInt8> voxels = shell ? shellVolume() : fullVolume();
        const ImagePtr table = madeImage(Image::OSG_RGBA_PF, 256, 1, 1, tableOf(shell).data());
        _volume->setVoxels(madeTexture(madeImage(Image::OSG_L_PF, side, side, side, voxels.data())));
        _volume->setTransferFunc(madeTexture(table));
        _volume->setDimensions(Vec3f(-1, -1, -1));
        _volume->setStepSize(stepSize);
        _volume->setShadingStyle(style);
        endEditCP(_volume);

        _eye = made<TransformPtr>();
        const NodePtr beacon = madeNode(_eye);
        const DirectionalLightPtr light = made<DirectionalLightPtr>();
        beginEditCP(light);
        light->setDirection(Vec3f(0, 0, 1));
        light->setDiffuse(Color4f(1, 1, 1, 1));
        light->setSpecular(Color4f(1, 1, 1, 1));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = madeNode(light);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(beacon);
        root->addChild(madeNode(_volume));
        endEditCP(root, Node::ChildrenFieldMask);

        const PerspectiveCameraPtr camera = made<PerspectiveCameraPtr>();
        beginEditCP(camera);
        camera->setBeacon(beacon);
        camera->setFov(Real32(fieldOfView));
        camera->setNear(Real32(eyeDistance - 230.0));
        camera->setFar(Real32(eyeDistance + 230.0));
        endEditCP(camera);
        const SolidBackgroundPtr background = made<SolidBackgroundPtr>();
        beginEditCP(background);
        background->setColor(Color3f(0, 0, 0));
        endEditCP(background);

        _picture = madeImage(Image::OSG_RGB_PF, pictureSide, pictureSide, 1, nullptr);
        const GrabForegroundPtr grab = made<GrabForegroundPtr>();
        beginEditCP(grab);
        grab->setImage(_picture);
        endEditCP(grab);
        const VolumeViewportPtr passes = made<VolumeViewportPtr>();
        beginEditCP(passes);
        passes->setCamera(camera);
        passes->setRoot(root);
        passes->setBackground(background);
        passes->getVolumeNodes().push_back(_volume);
        endEditCP(passes);
        const ViewportPtr view = made<ViewportPtr>();
        beginEditCP(view);
        view->setCamera(camera);
        view->setRoot(root);
        view->setBackground(background);
        view->setSize(0, 0, 1, 1);
        view->getForegrounds().push_back(grab);
        endEditCP(view);

        _window = made<EGLWindowPtr>();
        beginEditCP(_window);
        _window->resize(pictureSide, pictureSide);
        _window->addPort(passes);
        _window->addPort(view);
        endEditCP(_window);
    }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;
    ~Scene() { delete _action; }

    bool open()
    {
        _window->init();
        _action = RenderAction::create();
        return _window->activate();
    }

    std::string renderer() const { return reinterpret_cast<const char *>(glGetString(GL_RENDERER)); }

    /// From the camera's move to the pixels in memory.
    void drawFrame(double angle)
    {
        const double across = std::sqrt(1.0 - eyeHeight * eyeHeight);
        const Vec3f back(Real32(across * std::sin(angle)), Real32(eyeHeight),
                         Real32(across * std::cos(angle)));
        const Vec3f right(Real32(std::cos(angle)), 0.0f, Real32(-std::sin(angle)));
        beginEditCP(_eye, Transform::MatrixFieldMask);
        _eye->setMatrix(Matrix(right, back.cross(right), back, back * Real32(eyeDistance)));
        endEditCP(_eye, Transform::MatrixFieldMask);
        _window->render(_action);
    }

    /// Share of the blocks that are visible; known behind the first frame.
    double visibleShare() const
    {
        const VolumeData *const data = _volume->getVolume()->getVolumeData();
        const ImagePtr bits = data->getBitVolume()->getTexture()->getImage();
        const std::size_t blocks = std::size_t(bits->getWidth()) * bits->getHeight() * bits->getDepth();
        std::size_t visible = 0;
        for(std::size_t i = 0; i < blocks; ++i)
            visible += bits->getData()[i] != 0;
        return double(visible) / double(blocks);
    }

    bool writePicture(const std::string &name) const
    {
        std::ofstream file(name, std::ios::binary);
        file.write(reinterpret_cast<const char *>(_picture->getData()), pictureSide * pictureSide * 3);
        return file.good();
    }

private:
    VolumeNodePtr _volume;
    TransformPtr _eye;
    ImagePtr _picture;
    EGLWindowPtr _window;
    RenderAction *_action = nullptr;
};

/// Seconds on the clock and of all processors of this process.
std::string timed(Scene &scene, double angle)
{
    const auto begin = std::chrono::steady_clock::now();
    const std::clock_t processors = std::clock();
    scene.drawFrame(angle);
    const double used = double(std::clock() - processors) / CLOCKS_PER_SEC;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return std::to_string(seconds) + " " + std::to_string(used);
}

int serve(bool shell, bool lit)
{
    const QuietLog quiet;
    const Hush hush;
    const auto answer = [&](const std::string &line) {
        const std::string text = line + "\n";
        return write(hush.kept(), text.data(), text.size()) == ssize_t(text.size());
    };

    Scene scene(shell, lit);
    if(!scene.open())
        return 1;
    // The first frames make textures and programs.
    for(int frame = 0; frame < 3; ++frame)
        scene.drawFrame(0.0);
    answer("ready " + std::to_string(scene.visibleShare()) + " " + scene.renderer());

    std::string line;
    while(std::getline(std::cin, line)) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if(command == "frame") {
            double angle = 0.0;
            words >> angle;
            answer(timed(scene, angle));
        }
        else if(command == "picture") {
            std::string name;
            words >> name;
            answer(scene.writePicture(name) ? "written" : "not written");
        }
        else
            answer("unknown command");
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto among = [&](std::size_t place, const char *one, const char *other) {
        return words.size() == 3 && (words[place] == one || words[place] == other);
    };
    const bool serving = among(0, "serve", "serve");
    if(!among(1, "full", "shell") || !(serving ? among(2, "dvr", "lit") : among(0, "write", "write"))) {
        std::cerr << "bench_frame write full|shell FILE or serve full|shell dvr|lit" << std::endl;
        return 2;
    }
    const bool shell = words[1] == "shell";
    if(words[0] == "write")
        return writeFiles(shell, words[2]);
    if(!osgInit(argc, argv))
        return 1;
    initTessalyExtention();
    const int status = serve(shell, words[2] == "lit");
    osgExit();
    return status;
}
