/// \file
/// Chunks, states and materials without GL: tables, slots, references, transparency.

#include <gtest/gtest.h>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGLineChunk.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPointChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransformChunk.h>

OSG_USING_NAMESPACE

namespace
{

class StateTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { osgInit(0, nullptr); }
};

/// A container with a reference that goes with the test.
template <class X>
class Held
{
  public:
    Held() : ptr(X::create()) { addRefCP(ptr); }
    ~Held() { subRefCP(ptr); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    X *operator->() const { return ptr.get(); }
    operator typename X::Ptr() const { return ptr; }

    const typename X::Ptr ptr;
};

TEST_F(StateTest, FieldIdsAreThoseThatDerivedClassesBuildOn)
{
    EXPECT_EQ(4u, UInt32(StateChunk::NextFieldId));
    EXPECT_EQ(15u, UInt32(SHLChunk::NextFieldId));
    EXPECT_EQ(4u, UInt32(SHLChunk::ParametersFieldId));
    EXPECT_EQ(2u, UInt32(Material::SortKeyFieldId));
    EXPECT_EQ(3u, UInt32(ChunkMaterial::ChunksFieldId));
    EXPECT_EQ(4u, UInt32(ChunkMaterial::SlotsFieldId));
    EXPECT_EQ(5u, UInt32(ChunkMaterial::TransparencyModeFieldId));
    EXPECT_EQ(6u, UInt32(ChunkMaterial::NextFieldId));
    EXPECT_EQ(BitVector(16), BitVector(SHLChunk::ParametersFieldMask));
}

TEST_F(StateTest, DefaultsLeaveTheBaseStateAlone)
{
    Held<DepthChunk> depth;
    EXPECT_TRUE(depth->getEnable());
    EXPECT_FALSE(depth->getReadOnly());
    EXPECT_EQ(GLenum(GL_LEQUAL), depth->getFunc());
    EXPECT_LT(depth->getNear(), 0.f);
    Held<PolygonChunk> polygon;
    EXPECT_EQ(GLenum(GL_NONE), polygon->getCullFace());
    EXPECT_EQ(GLenum(GL_CCW), polygon->getFrontFace());
    EXPECT_EQ(GLenum(GL_FILL), polygon->getFrontMode());
    Held<ColorMaskChunk> mask;
    EXPECT_TRUE(mask->getMaskR() && mask->getMaskG() && mask->getMaskB() && mask->getMaskA());
    Held<BlendChunk> blend;
    EXPECT_EQ(GLenum(GL_ONE), blend->getSrcFactor());
    EXPECT_EQ(GLenum(GL_ZERO), blend->getDestFactor());
    EXPECT_EQ(GLenum(GL_NONE), blend->getAlphaFunc());
    Held<TextureChunk> texture;
    EXPECT_EQ(NullFC, texture->getImage());
    EXPECT_EQ(GLenum(GL_NONE), texture->getTarget());
    EXPECT_EQ(GLenum(GL_NONE), texture->getInternalFormat());
    EXPECT_EQ(GLenum(GL_LINEAR_MIPMAP_LINEAR), texture->getMinFilter());
    EXPECT_EQ(GLenum(GL_LINEAR), texture->getMagFilter());
    EXPECT_EQ(GLenum(GL_REPEAT), texture->getWrapR());
    EXPECT_TRUE(texture->getScale());
    EXPECT_EQ(0u, texture->getNPOTMatrixScale());
    EXPECT_NE(0u, texture->getGLId());
}

TEST_F(StateTest, EveryTextureAndProgramHasAGLObjectOfItsOwnAndThePrototypeNone)
{
    Held<TextureChunk> first;
    Held<TextureChunk> second;
    EXPECT_NE(first->getGLId(), second->getGLId());
    const TextureChunkPtr copy = TextureChunkPtr::dcast(first->shallowCopy());
    addRefCP(copy);
    EXPECT_NE(first->getGLId(), copy->getGLId());
    subRefCP(copy);
    EXPECT_EQ(0u, TextureChunkPtr::dcast(TextureChunk::getClassType().getPrototype())->getGLId());
    EXPECT_EQ(0u, SHLChunkPtr::dcast(SHLChunk::getClassType().getPrototype())->getGLId());
}

TEST_F(StateTest, ClassesOfChunksHaveConsecutiveIdsForTheirSlots)
{
    EXPECT_STREQ("Texture", TextureChunk::getStaticClass()->getName());
    EXPECT_EQ(16u, TextureChunk::getStaticClass()->getNumSlots());
    EXPECT_EQ(8u, LightChunk::getStaticClass()->getNumSlots());
    EXPECT_EQ(1u, DepthChunk::getStaticClass()->getNumSlots());
    const UInt32 id = TextureChunk::getStaticClassId();
    for(UInt32 slot = 0; slot < 16; ++slot)
    {
        ASSERT_STREQ("Texture", StateChunkClass::getName(id + slot));
        ASSERT_EQ(16u, StateChunkClass::getNumSlots(id + slot));
    }
    const Char8 *const behind = StateChunkClass::getName(id + 16);
    EXPECT_TRUE(behind == nullptr || std::string(behind) != "Texture");
    EXPECT_EQ(nullptr, StateChunkClass::getName(StateChunkClass::getNumIds()));
    EXPECT_EQ(0u, StateChunkClass::getNumSlots(StateChunkClass::getNumIds()));
    Held<TextureChunk> texture;
    EXPECT_EQ(id, texture->getClassId());
}

TEST_F(StateTest, AutoSlotsOfTexturesFollowTheOrderOfAdditionAndTheSeventeenthIsRefused)
{
    Held<State> state;
    std::vector<TextureChunkPtr> textures;
    for(int i = 0; i < 16; ++i)
    {
        textures.push_back(TextureChunk::create());
        ASSERT_TRUE(state->addChunk(textures.back(), State::AutoSlot));
    }
    for(UInt32 i = 0; i < 16; ++i)
        EXPECT_EQ(textures[i], state->getChunk(TextureChunk::getStaticClassId() + i));
    Held<TextureChunk> oneTooMany;
    LogCapture log;
    EXPECT_FALSE(state->addChunk(oneTooMany, State::AutoSlot));
    EXPECT_EQ(1u, log.count(LOG_WARNING));
    EXPECT_TRUE(log.contains(LOG_WARNING, "no free slot for a chunk of class Texture"));
    EXPECT_EQ(1, oneTooMany.ptr.getRefCount());

    EXPECT_TRUE(state->addChunk(oneTooMany, State::AutoSlotReplace)) << "takes slot 0";
    EXPECT_EQ(StateChunkPtr(oneTooMany), state->getChunk(TextureChunk::getStaticClassId()));
    EXPECT_EQ(2, oneTooMany.ptr.getRefCount());
}

TEST_F(StateTest, AGivenSlotReplacesWhatIsThereAndOneThatDoesNotExistIsRefused)
{
    Held<State> state;
    Held<TextureChunk> first;
    Held<TextureChunk> second;
    EXPECT_TRUE(state->addChunk(first, 3));
    EXPECT_TRUE(state->addChunk(second, 3));
    EXPECT_EQ(1, first.ptr.getRefCount());
    EXPECT_EQ(2, second.ptr.getRefCount());
    LogCapture log;
    EXPECT_FALSE(state->addChunk(first, 16));
    EXPECT_EQ(1u, log.count(LOG_WARNING));
    EXPECT_FALSE(state->addChunk(NullFC, 0));
    EXPECT_FALSE(state->subChunk(first));
    EXPECT_TRUE(state->subChunk(second));
    EXPECT_EQ(1, second.ptr.getRefCount());
    EXPECT_FALSE(state->chunkPresent(TextureChunk::getStaticClassId() + 3));
}

TEST_F(StateTest, AStateGivesItsReferencesBackWhenItGoes)
{
    Held<DepthChunk> depth;
    {
        Held<State> state;
        state->addChunk(depth);
        const StatePtr copy = StatePtr::dcast(state->shallowCopy());
        addRefCP(copy);
        EXPECT_EQ(3, depth.ptr.getRefCount());
        EXPECT_TRUE(*state.ptr == *copy);
        subRefCP(copy);
        EXPECT_EQ(2, depth.ptr.getRefCount());
    }
    EXPECT_EQ(1, depth.ptr.getRefCount());
}

TEST_F(StateTest, AMaterialsStateFollowsItsChunksInPlace)
{
    Held<ChunkMaterial> material;
    Held<DepthChunk> depth;
    Held<TextureChunk> first;
    Held<TextureChunk> second;
    const StatePtr state = material->getState();
    EXPECT_TRUE(material->addChunk(depth));
    EXPECT_TRUE(material->addChunk(first, State::AutoSlot));
    EXPECT_TRUE(material->addChunk(second, State::AutoSlot));
    EXPECT_FALSE(material->addChunk(NullFC));
    endEditCP(material.ptr, ChunkMaterial::ChunksFieldMask);
    EXPECT_EQ(state, material->getState());
    EXPECT_EQ(StateChunkPtr(depth), state->getChunk(DepthChunk::getStaticClassId()));
    EXPECT_EQ(StateChunkPtr(first), state->getChunk(TextureChunk::getStaticClassId()));
    EXPECT_EQ(StateChunkPtr(second), state->getChunk(TextureChunk::getStaticClassId() + 1));

    EXPECT_EQ(1, material->find(first));
    EXPECT_EQ(StateChunkPtr(second), material->find(TextureChunk::getClassType(), 1));
    EXPECT_EQ(StateChunkPtr(first), material->find(TextureChunk::getClassType()));
    EXPECT_EQ(StateChunkPtr(), material->find(LineChunk::getClassType()));

    EXPECT_FALSE(material->subChunk(first)) << "it was added with another slot";
    EXPECT_TRUE(material->subChunk(first, State::AutoSlot));
    endEditCP(material.ptr, ChunkMaterial::ChunksFieldMask);
    EXPECT_EQ(StateChunkPtr(second), material->getState()->getChunk(TextureChunk::getStaticClassId()));
    EXPECT_EQ(1, first.ptr.getRefCount());

    material->clearChunks();
    endEditCP(material.ptr, ChunkMaterial::ChunksFieldMask);
    material->getState();
    EXPECT_EQ(1, second.ptr.getRefCount());
    EXPECT_EQ(1, depth.ptr.getRefCount());
    EXPECT_EQ(0u, material->getSlots().size());
}

TEST_F(StateTest, TwoMaterialsOfTheSameChunksHaveEqualStates)
{
    Held<ChunkMaterial> one;
    Held<ChunkMaterial> other;
    Held<DepthChunk> depth;
    one->addChunk(depth);
    other->addChunk(depth);
    EXPECT_NE(one->getState(), other->getState());
    EXPECT_TRUE(*one->getState() == *other->getState());
    EXPECT_FALSE(*one->getState() != *other->getState());
}

TEST_F(StateTest, AMaterialIsTransparentWhereAChunkIsUnlessItsModeSaysOtherwise)
{
    Held<ChunkMaterial> material;
    Held<BlendChunk> blend;
    material->addChunk(blend);
    EXPECT_FALSE(material->isTransparent());
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_TRUE(material->isTransparent());
    blend->setIgnore(true);
    EXPECT_FALSE(material->isTransparent());
    material->setTransparencyMode(ChunkMaterial::TransparencyForceTransparent);
    EXPECT_TRUE(material->isTransparent());
    blend->setIgnore(false);
    material->setTransparencyMode(ChunkMaterial::TransparencyForceOpaque);
    EXPECT_FALSE(material->isTransparent());

    Held<MaterialChunk> terms;
    EXPECT_FALSE(terms->isTransparent());
    terms->setDiffuse(Color4f(1, 1, 1, 0.5f));
    EXPECT_TRUE(terms->isTransparent());
    Held<TextureChunk> texture;
    EXPECT_FALSE(texture->isTransparent());
}

TEST_F(StateTest, ASimpleMaterialMakesItsChunksFromItsFields)
{
    Held<SimpleMaterial> material;
    material->setDiffuse(Color3f(0.25f, 0.5f, 0.75f));
    material->setLit(false);
    endEditCP(material.ptr);
    const StatePtr state = material->getState();
    const MaterialChunkPtr terms =
        MaterialChunkPtr::dcast(state->getChunk(MaterialChunk::getStaticClassId()));
    ASSERT_NE(NullFC, terms);
    EXPECT_EQ(Color4f(0.25f, 0.5f, 0.75f, 1.f), terms->getDiffuse());
    EXPECT_FALSE(terms->getLit());
    EXPECT_FALSE(state->chunkPresent(BlendChunk::getStaticClassId()));
    EXPECT_FALSE(material->isTransparent());

    material->setTransparency(0.75f);
    endEditCP(material.ptr, SimpleMaterial::TransparencyFieldMask);
    EXPECT_TRUE(material->isTransparent());
    EXPECT_EQ(state, material->getState());
    EXPECT_EQ(0.25f, terms->getDiffuse().alpha());
    EXPECT_TRUE(state->chunkPresent(BlendChunk::getStaticClassId()));
}

TEST_F(StateTest, TheDefaultMaterialsStayTheSame)
{
    const MaterialPtr lit = getDefaultMaterial();
    const MaterialPtr unlit = getDefaultUnlitMaterial();
    ASSERT_NE(NullFC, lit);
    ASSERT_NE(NullFC, unlit);
    EXPECT_NE(lit, unlit);
    EXPECT_EQ(lit, getDefaultMaterial());
    EXPECT_TRUE(SimpleMaterialPtr::dcast(lit)->getLit());
    EXPECT_FALSE(SimpleMaterialPtr::dcast(unlit)->getLit());
}

TEST_F(StateTest, ATextureHoldsOneReferenceOnItsImage)
{
    const ImagePtr image = Image::create();
    addRefCP(image);
    {
        Held<TextureChunk> texture;
        texture->setImage(image);
        EXPECT_EQ(2, image.getRefCount());
        texture->setImage(image);
        EXPECT_EQ(2, image.getRefCount());
        const TextureChunkPtr copy = TextureChunkPtr::dcast(texture->shallowCopy());
        addRefCP(copy);
        EXPECT_EQ(3, image.getRefCount());
        subRefCP(copy);
        texture->setImage(NullFC);
        EXPECT_EQ(1, image.getRefCount());
        texture->setImage(image);
    }
    EXPECT_EQ(1, image.getRefCount());
    subRefCP(image);
}

TEST_F(StateTest, TheKindOfATextureFollowsTheImageUnlessItIsSaid)
{
    Held<TextureChunk> texture;
    EXPECT_EQ(GLenum(GL_NONE), texture->effectiveTarget());
    const ImagePtr image = Image::create();
    texture->setImage(image);
    image->set(Image::OSG_L_PF, 4);
    EXPECT_EQ(GLenum(GL_TEXTURE_1D), texture->effectiveTarget());
    image->set(Image::OSG_L_PF, 4, 2);
    EXPECT_EQ(GLenum(GL_TEXTURE_2D), texture->effectiveTarget());
    image->set(Image::OSG_L_PF, 4, 1, 2);
    EXPECT_EQ(GLenum(GL_TEXTURE_3D), texture->effectiveTarget());
    texture->setTarget(GL_TEXTURE_2D);
    EXPECT_EQ(GLenum(GL_TEXTURE_2D), texture->effectiveTarget());
}

TEST_F(StateTest, ProgramParametersKeepNamesAndValuesTogether)
{
    Held<SHLChunk> shader;
    shader->setProgramParameter(1, 10);
    shader->setProgramParameter(2, 20);
    shader->setProgramParameter(1, 11);
    EXPECT_EQ(11u, shader->getProgramParameter(1));
    EXPECT_EQ(20u, shader->getProgramParameter(2));
    EXPECT_EQ(0u, shader->getProgramParameter(3));
    EXPECT_TRUE(shader->subProgramParameter(1));
    EXPECT_FALSE(shader->subProgramParameter(1));
    EXPECT_EQ(20u, shader->getProgramParameter(2));
    shader->clearProgramParameters();
    EXPECT_EQ(0u, shader->getProgramParameter(2));
    EXPECT_EQ(0u, shader->getProgramParameterValues().size());
}

TEST_F(StateTest, ProgramTextsAreReadFromStreamsAndAMissingFileGivesOneWarning)
{
    Held<SHLChunk> shader;
    std::istringstream stream("void main() {}\n");
    EXPECT_TRUE(shader->readVertexProgram(stream));
    EXPECT_EQ("void main() {}\n", shader->getVertexProgram());
    LogCapture log;
    EXPECT_FALSE(shader->readVertexProgram("no/such/file.vert"));
    EXPECT_EQ(1u, log.count(LOG_WARNING));
    EXPECT_TRUE(log.contains(LOG_WARNING, "no/such/file.vert"));
    EXPECT_FALSE(shader->readFragmentProgram(static_cast<const char *>(nullptr)));
    EXPECT_EQ("void main() {}\n", shader->getVertexProgram());
}

/// The values of the calling thread's aspect, as another one sees them.
struct Seen
{
    TextureChunkPtr texture;
    SHLChunkPtr shader;
    ChunkMaterialPtr material;
    GLenum filter = 0;
    Real32 value = 0.f;
    UInt32 numChunks = 0;
    StatePtr state;
};

void look(void *argument)
{
    Seen &seen = *static_cast<Seen *>(argument);
    ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
    seen.filter = seen.texture->getMagFilter();
    seen.shader->getUniformParameter("value", seen.value);
    seen.state = seen.material->getState();
    seen.numChunks = 0;
    for(const StateChunkPtr &chunk : seen.state->getChunks())
        seen.numChunks += chunk == NullFC ? 0 : 1;
}

TEST_F(StateTest, AnotherAspectSeesFieldsParametersByNameAndAStateOfItsOwn)
{
    Held<TextureChunk> texture;
    Held<SHLChunk> shader;
    Held<ChunkMaterial> material;
    texture->setMagFilter(GL_NEAREST);
    endEditCP(texture.ptr);
    shader->setUniformParameter("other", 1);
    shader->setUniformParameter("value", 2.5f);
    endEditCP(shader.ptr, SHLChunk::ParametersFieldMask);
    material->addChunk(texture, State::AutoSlot);
    material->addChunk(shader, State::AutoSlot);
    endEditCP(material.ptr);
    const StatePtr mine = material->getState();

    Seen seen;
    seen.texture = texture;
    seen.shader = shader;
    seen.material = material;
    Thread *const thread = Thread::get("look");
    ASSERT_TRUE(thread->runFunction(&look, 1, &seen));
    Thread::join(thread);
    EXPECT_EQ(GLenum(GL_NEAREST), seen.filter);
    EXPECT_EQ(2.5f, seen.value);
    EXPECT_EQ(2u, seen.numChunks);
    EXPECT_NE(mine, seen.state);
    EXPECT_EQ(4, texture.ptr.getRefCount()) << "the test's, the material's, and that of two states";
    Thread::getCurrentChangeList()->clearAll();
}

} // namespace
