/// \file
/// One small picture on three boards: as it is, compressed to DXT1, compressed to DXT5. Its pixels are drawn
/// large, so that the blocks of 4 x 4 show; DXT1 loses the soft edge. Draws to a PNG file, whose name is the
/// argument.

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/DXTCompressor.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

const int pictureSide = 96;

/// A planet with bands in the light of its sun, and air around it that fades away.
ImagePtr planet()
{
    std::vector<UInt8> pixels;
    for(int j = 0; j < pictureSide; ++j)
        for(int i = 0; i < pictureSide; ++i) {
            const Real32 x = (i + 0.5f) / pictureSide * 2.4f - 1.2f,
                         y = (j + 0.5f) / pictureSide * 2.4f - 1.2f;
            const Real32 distance = std::sqrt(x * x + y * y);
            Color3f color(0.25f, 0.55f, 1.f);
            Real32 alpha = std::clamp((1.18f - distance) / 0.24f, 0.f, 1.f);
            if(distance < 0.95f) {
                const Real32 z = std::sqrt(0.9025f - distance * distance);
                const Real32 light = std::clamp((-0.6f * x + 0.5f * y + 0.7f * z) / 0.95f, 0.06f, 1.f);
                const Real32 bands = std::sin(y * 13.f + 0.8f * std::sin(x * 6.f + y * 4.f));
                const Real32 storm =
                    std::exp(-40.f * ((x - 0.3f) * (x - 0.3f) + 3.f * (y + 0.3f) * (y + 0.3f)));
                color = Color3f(0.92f - 0.1f * bands, 0.6f + 0.22f * bands, 0.38f + 0.3f * bands) * light;
                color += Color3f(0.3f, -0.35f, -0.3f) * (storm * light);
                alpha = 1.f;
            }
            for(int c = 0; c < 3; ++c)
                pixels.push_back(UInt8(255.f * std::clamp(color[c], 0.f, 1.f)));
            pixels.push_back(UInt8(255.f * alpha));
        }
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGBA_PF, pictureSide, pictureSide, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    return image;
}

/// Dark and light squares, to see through to.
ImagePtr squares()
{
    std::vector<UInt8> pixels;
    for(int j = 0; j < 16; ++j)
        for(int i = 0; i < 48; ++i)
            pixels.push_back((i + j) % 2 == 0 ? 60 : 90);
    const ImagePtr image = Image::create();
    image->set(Image::OSG_L_PF, 48, 16, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    return image;
}

/// A board that stands at x and shows an image, each pixel as a square.
NodePtr board(ImagePtr image, Real32 x, Real32 z, Real32 width)
{
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    texture->setEnvMode(GL_REPLACE);
    endEditCP(texture);
    const BlendChunkPtr blending = BlendChunk::create();
    blending->setSrcFactor(GL_SRC_ALPHA);
    blending->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blending);
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(texture);
    material->addChunk(blending);
    endEditCP(material);

    const GeometryPtr plane = makePlaneGeo(width, 1.f, 1, 1);
    plane->setMaterial(material);
    endEditCP(plane);
    Matrix place;
    place.setTranslate(x, 0.f, z);
    const TransformPtr transform = Transform::create();
    transform->setMatrix(place);
    endEditCP(transform);
    const NodePtr node = makeNodeFor(transform);
    node->addChild(makeNodeFor(plane));
    endEditCP(node);
    return node;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        const ImagePtr original = planet(), small = planet(), better = planet();
        const DXTCompressor &compressor = DXTCompressor::the();
        if(!compressor.compressImage(small, DXTCompressor::DXT1_FORMAT) ||
           !compressor.compressImage(better, DXTCompressor::AUTO_FORMAT))
            return 1;
        std::cout << "bytes: " << original->getSize() << ", DXT1 " << small->getSize() << ", DXT5 "
                  << better->getSize() << std::endl;

        const NodePtr root = makeNodeFor(Group::create());
        root->addChild(board(squares(), 0.f, -1.f, 3.f));
        root->addChild(board(original, -1.f, 0.f, 1.f));
        root->addChild(board(small, 0.f, 0.f, 1.f));
        root->addChild(board(better, 1.f, 0.f, 1.f));
        endEditCP(root);

        Matrix eye;
        eye.setTranslate(0.f, 0.f, 5.f);
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const OrthographicCameraPtr camera = OrthographicCamera::create();
        camera->setBeacon(beacon);
        camera->setVerticalSize(1.f);
        camera->setNear(1.f);
        camera->setFar(10.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 9 * pictureSide, 3 * pictureSide);
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
        window->resize(9 * pictureSide, 3 * pictureSide);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "compressed-textures.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
