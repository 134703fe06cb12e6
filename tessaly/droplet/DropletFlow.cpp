#include "DropletFlow.h"

#include <algorithm>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGShaderFunctions.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureFunctions.h>
#include <OpenSG/OSGWindow.h>

#include "DropletFlowContext.h"
#include "DropletPixels.h"
#include "DropletSources.h"
#include "DropletText.h"

using namespace osg;

namespace
{

/// What all textures over the object have in common. The surface map wraps: what flows over its right and
/// upper border comes in at the left and the lower one, whose cells the advection empties.
void setMapSettings(const TextureChunkPtr &texture, UInt32 internalFormat)
{
    texture->setEnvMode(GL_MODULATE);
    texture->setMinFilter(GL_LINEAR);
    texture->setMagFilter(GL_LINEAR);
    texture->setWrapS(GL_REPEAT);
    texture->setWrapT(GL_REPEAT);
    texture->setTarget(GL_TEXTURE_2D);
    texture->setInternalFormat(internalFormat);
}

/// A texture to render to, all 0 at first; NullFC if there is no memory for its image.
TextureChunkPtr makeMap(UInt32 internalFormat, Int32 width, Int32 height)
{
    const ImagePtr image = ImageBase::create();
    beginEditCP(image);
    const bool made = image->set(GL_RGBA, width, height, 1, 1, 1, 0.0, nullptr, GL_UNSIGNED_BYTE, true, 1);
    if(made)
        std::fill(image->getData(), image->getData() + image->getSize(), UInt8(0));
    endEditCP(image);
    if(!made)
    {
        addRefCP(image);
        subRefCP(image);
        return NullFC;
    }
    const TextureChunkPtr texture = TextureChunkBase::create();
    beginEditCP(texture);
    texture->setImage(image);
    setMapSettings(texture, internalFormat);
    endEditCP(texture);
    return texture;
}

/// Sets uniforms and ends the edit.
template <class FunctionT>
void editUniforms(const SHLChunkPtr &shader, FunctionT set)
{
    if(shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    set(*shader.getCPtr());
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

/// How the passes of a step draw, as long as it lives: their quads cover all cells, so depth has no say, and
/// they look maps up at the centres of cells, where the nearest texel is what a linear filter gives. The
/// textures themselves are linear, for the display. Software drivers pay for both per cell.
class CellByCell
{
  public:
    /// \param maps what is read, of the size of what is drawn to, with a linear filter
    CellByCell(Window *win, const std::vector<TextureChunkPtr> &maps)
        : _hadDepthTest(glIsEnabled(GL_DEPTH_TEST))
    {
        win->frameInit();
        for(const TextureChunkPtr &map : maps)
        {
            win->validateGLObject(map->getGLId());
            _names.push_back(win->getGLObjectId(map->getGLId()));
        }
        setFilters(GL_NEAREST);
        glDisable(GL_DEPTH_TEST);
    }
    ~CellByCell()
    {
        if(_hadDepthTest == GL_TRUE)
            glEnable(GL_DEPTH_TEST);
        setFilters(GL_LINEAR);
    }
    CellByCell(const CellByCell &) = delete;
    CellByCell &operator=(const CellByCell &) = delete;

  private:
    void setFilters(GLint filter) const
    {
        for(const GLuint name : _names)
        {
            glBindTexture(GL_TEXTURE_2D, name);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        }
        glBindTexture(GL_TEXTURE_2D, 0);
    }

    GLboolean _hadDepthTest;
    std::vector<GLuint> _names;
};

} // namespace

DropletFlow::DropletFlow(NodePtr scene, ChunkMaterialPtr material, Int32 width, Int32 height, Int32 matMode,
                         TextureChunkPtr surfaceTexture)
    : _width(width), _height(height), _ownsMaps(surfaceTexture == NullFC),
      _timer(new DropletFlowTimer(this)), _context(DropletFlowContext::get())
{
    setRefdCP(_scene, scene);
    setRefdCP(_material, material);
    setRefdCP(_normalShader, _context->makeShader(tessaly::normalVertexText, tessaly::normalFragmentText));
    setRefdCP(_tangentShader, _context->makeShader(tessaly::tangentVertexText, tessaly::tangentFragmentText));
    setRefdCP(_advectionShader,
              _context->makeShader(tessaly::flowVertexText, tessaly::advectionFragmentText));
    setRefdCP(_forceShader, _context->makeShader(tessaly::flowVertexText, tessaly::forceFragmentText));

    _usable = makeMaps(surfaceTexture);
    if(_usable)
    {
        makePasses();
        extendMaterial(matMode);
    }
    _sources.reset(new DropletSources(_surfaceMaps[1]));
    // Degrees by its looks, but taken for radians; that is meant, and the viewport replaces it right away.
    _sources->createSplat(89.999f);
    createNoiseMap(32, 32);

    if(_usable)
    {
        const Vec2f texel(1.0f / Real32(_width), 1.0f / Real32(_height));
        editUniforms(_renderShader, [&](SHLChunk &shader) { shader.setUniformParameter("offset", texel); });
        editUniforms(_advectionShader, [&](SHLChunk &shader) {
            shader.setUniformParameter("offset", texel);
            shader.setUniformParameter("surfaceMap", Int32(0));
        });
    }
    for(const SHLChunkPtr &shader : {_normalShader, _tangentShader})
        editUniforms(shader,
                     [](SHLChunk &bakeShader) { bakeShader.setUniformParameter("noiseMap", Int32(0)); });
    editUniforms(_forceShader, [](SHLChunk &shader) {
        shader.setUniformParameter("surfaceMap", Int32(0));
        shader.setUniformParameter("normalMap", Int32(1));
        shader.setUniformParameter("tangentMap", Int32(2));
    });

    setFluidColor(Color4f(0.0f, 0.3f, 1.0f, 1.0f));
    setForce(Vec3f(0.0f, -1.0f, 0.0f));
    setSimulationParameters(0.01f, 0.1f, 1.0f, 1.0f, 3.0f, 0.1f);
    updateInvViewMatrix();
}

DropletFlow::~DropletFlow()
{
    if(!_added.empty())
    {
        beginEditCP(_material, ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask);
        for(const auto &[chunk, slot] : _added)
        {
            _material->subChunk(chunk, slot);
            subRefCP(chunk);
        }
        endEditCP(_material, ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask);
    }
    clearRefCP(_scene);
    clearRefCP(_material);
    _sources.reset();
    for(int i = 0; i < 2; ++i)
    {
        clearRefCP(_passes[i]);
        clearRefCP(_flowNodes[i]);
        clearRefCP(_surfaceMaps[i]);
    }
    clearRefCP(_normalMap);
    clearRefCP(_tangentMap);
    clearRefCP(_noiseMap);
    clearRefCP(_renderShader);
    clearRefCP(_normalShader);
    clearRefCP(_tangentShader);
    clearRefCP(_forceShader);
    clearRefCP(_advectionShader);
}

bool DropletFlow::makeMaps(const TextureChunkPtr &surfaceTexture)
{
    if(_width < 1 || _height < 1)
    {
        FWARNING(("DropletFlow: there is no surface map of %d x %d cells, no step runs\n", _width, _height));
        return false;
    }
    const ImagePtr given = surfaceTexture == NullFC ? ImagePtr() : surfaceTexture->getImage();
    if(surfaceTexture != NullFC && (given == NullFC || given->getWidth() < 1 || given->getHeight() < 1))
    {
        FWARNING(("DropletFlow: the texture for the surface map has no size, no step runs\n"));
        return false;
    }

    setRefdCP(_normalMap, makeMap(GL_RGBA8, _width, _height));
    setRefdCP(_tangentMap, makeMap(GL_RGBA8, _width, _height));
    setRefdCP(_surfaceMaps[0],
              surfaceTexture != NullFC ? surfaceTexture : makeMap(GL_RGBA16F, _width, _height));
    setRefdCP(_surfaceMaps[1], makeMap(GL_RGBA16F, _width, _height));
    if(_normalMap == NullFC || _tangentMap == NullFC || _surfaceMaps[0] == NullFC ||
       _surfaceMaps[1] == NullFC)
    {
        FWARNING(
            ("DropletFlow: no memory for surface maps of %d x %d cells, no step runs\n", _width, _height));
        return false;
    }
    return true;
}

void DropletFlow::makePasses()
{
    for(int i = 0; i < 2; ++i)
    {
        setRefdCP(_flowNodes[i], _context->makeQuad({i == 0 ? _forceShader : _advectionShader,
                                                     _surfaceMaps[1 - i], _normalMap, _tangentMap}));
        setRefdCP(_passes[i], _context->makeViewport(_flowNodes[i], _surfaceMaps[i], NullFC));
    }
}

void DropletFlow::addToMaterial(const StateChunkPtr &chunk, Int32 slot)
{
    if(!_material->addChunk(chunk, slot))
        return;
    addRefCP(chunk);
    _added.emplace_back(chunk, slot);
}

void DropletFlow::extendMaterial(Int32 matMode)
{
    if(matMode < 0)
        return;
    if(matMode > 0)
    {
        const bool textured = matMode > 1;
        setRefdCP(_renderShader,
                  _context->makeShader(tessaly::displayVertexText, textured ? tessaly::texturedFragmentText
                                                                            : tessaly::fluidFragmentText));
        editUniforms(_renderShader, [textured](SHLChunk &shader) {
            if(textured)
                shader.setUniformParameter("diffuseMap", Int32(0));
            shader.setUniformParameter("surfaceMap", Int32(1));
        });
    }
    if(_material == NullFC)
        return;

    const BitVector chunks = ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask;
    beginEditCP(_material, chunks);
    if(matMode == 0)
    {
        addToMaterial(_surfaceMaps[0], State::AutoSlot);
        endEditCP(_material, chunks);
        return;
    }
    const MaterialChunkPtr terms = MaterialChunkBase::create();
    beginEditCP(terms);
    terms->setAmbient(Color4f(0.05f, 0.05f, 0.05f, 1.0f));
    terms->setEmission(Color4f(0.05f, 0.05f, 0.05f, 1.0f));
    terms->setSpecular(Color4f(0.2f, 0.2f, 0.2f, 1.0f));
    terms->setShininess(80.0f);
    endEditCP(terms);
    const PolygonChunkPtr culling = PolygonChunkBase::create();
    beginEditCP(culling, PolygonChunk::CullFaceFieldMask);
    culling->setCullFace(GL_BACK);
    endEditCP(culling, PolygonChunk::CullFaceFieldMask);
    const BlendChunkPtr blend = BlendChunkBase::create();
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);
    const DepthChunkPtr depth = DepthChunkBase::create();
    beginEditCP(depth);
    depth->setEnable(true);
    depth->setReadOnly(false);
    depth->setFunc(GL_LEQUAL);
    depth->setNear(-1.0f);
    depth->setFar(-1.0f);
    endEditCP(depth);

    addToMaterial(_renderShader, State::AutoSlot);
    addToMaterial(_surfaceMaps[0], 1);
    addToMaterial(terms, State::AutoSlot);
    addToMaterial(culling, State::AutoSlot);
    addToMaterial(blend, State::AutoSlot);
    addToMaterial(depth, State::AutoSlot);
    endEditCP(_material, chunks);
}

void DropletFlow::setSimulationParameters(Real32 interval, Real32 timeStep, Real32 density, Real32 viscosity,
                                          Real32 frictionN, Real32 frictionSigma)
{
    _timer->setInterval(Real64(interval));
    editUniforms(_forceShader, [&](SHLChunk &shader) {
        shader.setUniformParameter("timeStep", timeStep);
        shader.setUniformParameter("density", density);
        shader.setUniformParameter("viscosity", viscosity);
        shader.setUniformParameter("frictionN", frictionN);
        shader.setUniformParameter("frictionSigma", frictionSigma);
    });
    editUniforms(_advectionShader,
                 [&](SHLChunk &shader) { shader.setUniformParameter("timeStep", timeStep); });
}

void DropletFlow::setForce(const Vec3f &force)
{
    editUniforms(_forceShader, [&](SHLChunk &shader) { shader.setUniformParameter("force", force); });
}

void DropletFlow::setFluidColor(const Color4f &color)
{
    editUniforms(_renderShader, [&](SHLChunk &shader) {
        shader.setUniformParameter("fluidColor", Vec4f(color[0], color[1], color[2], color[3]));
    });
}

void DropletFlow::createNoiseMap(Int32 width, Int32 height)
{
    if(width < 1 || height < 1)
    {
        FWARNING(("DropletFlow::createNoiseMap: there is no noise map of %d x %d texels\n", width, height));
        return;
    }
    const ImagePtr image = ImageBase::create();
    addRefCP(image);
    beginEditCP(image);
    const bool made = image->set(GL_RGB, width, height, 1, 1, 1, 0.0, nullptr, GL_UNSIGNED_BYTE, true, 1);
    if(made)
        tessaly::fillNoise(image->getData(), std::size_t(image->getSize()));
    endEditCP(image);
    if(made)
    {
        if(_noiseMap == NullFC)
            setRefdCP(_noiseMap, TextureChunkPtr(TextureChunkBase::create()));
        beginEditCP(_noiseMap);
        _noiseMap->setImage(image);
        setMapSettings(_noiseMap, GL_RGBA8);
        endEditCP(_noiseMap);
    }
    subRefCP(image);
}

void DropletFlow::bakeSurfaceMaps(Real32 perturbAngle)
{
    for(const SHLChunkPtr &shader : {_normalShader, _tangentShader})
        editUniforms(shader,
                     [&](SHLChunk &uniforms) { uniforms.setUniformParameter("perturbAngle", perturbAngle); });
    if(!canDraw())
        return;
    bake(_normalMap, _normalShader, Color3f(0.0f, 0.0f, 1.0f));
    bake(_tangentMap, _tangentShader, Color3f(1.0f, 0.0f, 0.0f));
}

void DropletFlow::bake(const TextureChunkPtr &target, const SHLChunkPtr &shader, const Color3f &background)
{
    const ChunkMaterialPtr material = ChunkMaterialBase::create();
    beginEditCP(material);
    material->addChunk(shader, State::AutoSlot);
    material->addChunk(_noiseMap, 0);
    endEditCP(material);
    const MaterialGroupPtr core = MaterialGroupBase::create();
    beginEditCP(core, MaterialGroup::MaterialFieldMask);
    core->setMaterial(material);
    endEditCP(core, MaterialGroup::MaterialFieldMask);
    const NodePtr root = makeNodeFor(core);
    if(_scene != NullFC)
    {
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(cloneTree(_scene));
        endEditCP(root, Node::ChildrenFieldMask);
    }

    // The colour of cells that the object does not cover is written as it stands, not encoded.
    const SolidBackgroundPtr clear = SolidBackgroundBase::create();
    beginEditCP(clear, SolidBackground::ColorFieldMask);
    clear->setColor(background);
    endEditCP(clear, SolidBackground::ColorFieldMask);
    const FBOViewportPtr viewport = _context->makeViewport(root, target, clear);
    addRefCP(viewport);
    _context->render(viewport);
    subRefCP(viewport);
}

void DropletFlow::updateInvViewMatrix()
{
    Matrix toWorld;
    if(_scene != NullFC)
        _scene->getToWorld(toWorld);
    Matrix inverse;
    inverse.setValue(tessaly::inverseOrIdentity(toWorld.getValues()).data());
    editUniforms(_forceShader,
                 [&](SHLChunk &shader) { shader.setUniformParameter("invViewMatrix", inverse); });
}

bool DropletFlow::canDraw()
{
    RenderActionBase *const action = _context->getAction();
    if(!_usable || action == nullptr || action->getWindow() == nullptr)
        return false;
    Window *const window = action->getWindow();
    // Without programs the fixed pipeline would draw in their place, and fill the maps with colours.
    GLSLFunctions gl;
    if(!gl.fetch(window))
        return refuse("the window has no GLSL");
    // In a corner of a larger texture the neighbours of a cell would not be where the texts look for them.
    for(const TextureChunkPtr &map : _surfaceMaps)
    {
        const UInt32 width = UInt32(map->getImage()->getWidth());
        const UInt32 height = UInt32(map->getImage()->getHeight());
        const bool isPowerOf2 = (width & (width - 1)) == 0 && (height & (height - 1)) == 0;
        if(!isPowerOf2 && !TextureFunctions(window).hasNonPowerOf2)
            return refuse("the window has no textures of " + std::to_string(width) + " x " +
                          std::to_string(height) + " (GL_ARB_texture_non_power_of_two)");
    }
    return true;
}

bool DropletFlow::refuse(const std::string &why)
{
    if(!_warned)
        FWARNING(("DropletFlow: %s, no step runs\n", why.c_str()));
    _warned = true;
    return false;
}

bool DropletFlow::tick(DropletFlowTimer *, Real64, UInt32)
{
    if(!canDraw())
        return false;
    const WindowPtr window = _context->getWindow();
    // A map of the host's may have another size, filter or border.
    const std::vector<TextureChunkPtr> maps =
        _ownsMaps ? std::vector<TextureChunkPtr>{_surfaceMaps[0], _surfaceMaps[1], _normalMap, _tangentMap}
                  : std::vector<TextureChunkPtr>();
    const CellByCell access(window != NullFC ? window.get() : _context->getAction()->getWindow(), maps);
    for(const FBOViewportPtr &pass : _passes)
        _context->render(pass);
    return false;
}
