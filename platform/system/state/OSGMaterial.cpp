#include "OSGMaterial.h"

#include <mutex>

#include "OSGBaseInitFunctions.h"
#include "OSGGeometry.h"
#include "OSGLog.h"
#include "OSGSimpleMaterial.h"

OSG_BEGIN_NAMESPACE

namespace
{

struct DefaultMaterials
{
    std::mutex mutex;
    MaterialPtr lit;
    MaterialPtr unlit;
};

DefaultMaterials &defaultMaterials()
{
    static DefaultMaterials materials;
    return materials;
}

MaterialPtr makeDefaultMaterial(bool lit)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    addRefCP(material);
    beginEditCP(material);
    material->setAmbient(Color3f(0.1f, 0.1f, 0.1f));
    material->setDiffuse(Color3f(0.7f, 0.7f, 0.5f));
    material->setSpecular(Color3f(1.f, 1.f, 1.f));
    material->setShininess(20.f);
    material->setLit(lit);
    endEditCP(material);
    return material;
}

bool makeDefaultMaterials()
{
    getDefaultMaterial();
    getDefaultUnlitMaterial();
    return true;
}

bool dropDefaultMaterials()
{
    DefaultMaterials &materials = defaultMaterials();
    std::lock_guard<std::mutex> lock(materials.mutex);
    clearRefCP(materials.lit);
    clearRefCP(materials.unlit);
    return true;
}

} // namespace

// The default materials are made when OpenSG is initialised, on the application's aspect: so the first
// change list carries them to all others, whichever aspect asks for them first.
void Material::initMethod()
{
    addInitFunction(&makeDefaultMaterials);
    addSystemExitFunction(&dropDefaultMaterials);
}

Material::Material() = default;

Material::Material(const Material &source) : Inherited(source) {}

// Here and not in onDestroy, since each aspect's copy has a state of its own.
Material::~Material()
{
    subRefCP(_pState);
}

void Material::onCreate(const Material *source)
{
    Inherited::onCreate(source);
}

void Material::draw(DrawFunctor &functor, DrawActionBase *action)
{
    const StatePtr state = getState();
    state->activate(action);
    functor(action);
    state->deactivate(action);
}

void Material::draw(Geometry *geometry, DrawActionBase *action)
{
    const StatePtr state = getState();
    state->activate(action);
    geometry->drawPrimitives(action);
    state->deactivate(action);
}

StatePtr Material::getState()
{
    if(_stateOutdated || _pState == NullFC)
        rebuildState();
    return _pState;
}

const StatePtr &Material::emptiedState()
{
    if(_pState == NullFC)
    {
        _pState = State::create();
        addRefCP(_pState);
    }
    _pState->clearChunks();
    _stateOutdated = false;
    return _pState;
}

bool Material::isTransparent() const
{
    return false;
}

void Material::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ~AttachmentsFieldMask) != 0)
        _stateOutdated = true;
    Inherited::changed(whichField, origin);
}

void Material::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Material NI" << std::endl;
}

MaterialPtr getDefaultMaterial()
{
    DefaultMaterials &materials = defaultMaterials();
    std::lock_guard<std::mutex> lock(materials.mutex);
    if(materials.lit == NullFC)
        materials.lit = makeDefaultMaterial(true);
    return materials.lit;
}

MaterialPtr getDefaultUnlitMaterial()
{
    DefaultMaterials &materials = defaultMaterials();
    std::lock_guard<std::mutex> lock(materials.mutex);
    if(materials.unlit == NullFC)
        materials.unlit = makeDefaultMaterial(false);
    return materials.unlit;
}

OSG_END_NAMESPACE
