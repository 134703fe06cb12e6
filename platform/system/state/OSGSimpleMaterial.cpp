#include "OSGSimpleMaterial.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

Color4f withAlpha(const Color3f &color, Real32 alpha)
{
    return Color4f(color.red(), color.green(), color.blue(), alpha);
}

} // namespace

void SimpleMaterial::initMethod() {}

SimpleMaterial::SimpleMaterial() = default;

SimpleMaterial::SimpleMaterial(const SimpleMaterial &source) : Inherited(source) {}

// Here and not in onDestroy, since each aspect's copy has chunks of its own.
SimpleMaterial::~SimpleMaterial()
{
    subRefCP(_materialChunk);
    subRefCP(_blendChunk);
}

void SimpleMaterial::fill(const StatePtr &state)
{
    if(_materialChunk == NullFC)
    {
        _materialChunk = MaterialChunk::create();
        addRefCP(_materialChunk);
        _blendChunk = BlendChunk::create();
        addRefCP(_blendChunk);
        _blendChunk->setSrcFactor(GL_SRC_ALPHA);
        _blendChunk->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    }
    const Real32 alpha = 1.f - getTransparency();
    _materialChunk->setAmbient(withAlpha(getAmbient(), alpha));
    _materialChunk->setDiffuse(withAlpha(getDiffuse(), alpha));
    _materialChunk->setSpecular(withAlpha(getSpecular(), alpha));
    _materialChunk->setEmission(withAlpha(getEmission(), alpha));
    _materialChunk->setShininess(getShininess());
    _materialChunk->setLit(getLit());
    _materialChunk->setColorMaterial(getColorMaterial());

    state->addChunk(_materialChunk);
    if(isTransparent())
        state->addChunk(_blendChunk);
    addChunksTo(state);
}

StatePtr SimpleMaterial::makeState()
{
    const StatePtr state = State::create();
    fill(state);
    return state;
}

void SimpleMaterial::rebuildState()
{
    fill(emptiedState());
}

bool SimpleMaterial::isTransparent() const
{
    if(getTransparencyMode() == TransparencyForceOpaque)
        return false;
    return getTransparency() > Eps || Inherited::isTransparent();
}

void SimpleMaterial::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SimpleMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SimpleMaterial NI" << std::endl;
}

OSG_END_NAMESPACE
