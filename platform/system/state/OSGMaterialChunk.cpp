#include "OSGMaterialChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// What all faces, or one kind of faces, reflect.
void sendTerms(GLenum face, const Color4f &diffuse, const Color4f &ambient, const Color4f &specular,
               const Color4f &emission, Real32 shininess)
{
    glMaterialfv(face, GL_DIFFUSE, diffuse.getValues());
    glMaterialfv(face, GL_AMBIENT, ambient.getValues());
    glMaterialfv(face, GL_SPECULAR, specular.getValues());
    glMaterialfv(face, GL_EMISSION, emission.getValues());
    glMaterialf(face, GL_SHININESS, shininess);
}

} // namespace

StateChunkClass MaterialChunk::_class("Material");

void MaterialChunk::initMethod() {}

MaterialChunk::MaterialChunk() = default;

MaterialChunk::MaterialChunk(const MaterialChunk &source) : Inherited(source) {}

MaterialChunk::~MaterialChunk() = default;

void MaterialChunk::activate(DrawActionBase *, UInt32)
{
    // With colour material on, the current colour replaces terms, so it comes ahead of them.
    const GLenum front = getBackMaterial() ? GL_FRONT : GL_FRONT_AND_BACK;
    if(getColorMaterial() != GL_NONE)
    {
        glColorMaterial(front, getColorMaterial());
        glEnable(GL_COLOR_MATERIAL);
    }
    else
        glDisable(GL_COLOR_MATERIAL);
    glColor4fv(getDiffuse().getValues());
    if(!getLit())
    {
        glDisable(GL_LIGHTING);
        return;
    }
    sendTerms(front, getDiffuse(), getAmbient(), getSpecular(), getEmission(), getShininess());
    if(getBackMaterial())
        sendTerms(GL_BACK, getBackDiffuse(), getBackAmbient(), getBackSpecular(), getBackEmission(),
                  getBackShininess());
    glEnable(GL_LIGHTING);
}

void MaterialChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void MaterialChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getColorMaterial() != GL_NONE)
        glDisable(GL_COLOR_MATERIAL);
    if(getLit())
        glDisable(GL_LIGHTING);
}

bool MaterialChunk::isTransparent() const
{
    return getDiffuse().alpha() + Eps < 1.f;
}

void MaterialChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MaterialChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MaterialChunk NI" << std::endl;
}

OSG_END_NAMESPACE
