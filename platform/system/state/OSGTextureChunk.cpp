#include "OSGTextureChunk.h"

#include <algorithm>
#include <utility>

#include "OSGBaseInitFunctions.h"
#include "OSGDrawActionBase.h"
#include "OSGGLError.h"
#include "OSGLog.h"
#include "OSGTextureFunctions.h"
#include "OSGTextureUpload.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::size_t MaxKeptChanges = 32;

constexpr BitVector ContentMask = TextureChunk::ImageFieldMask | TextureChunk::InternalFormatFieldMask |
                                  TextureChunk::ExternalFormatFieldMask | TextureChunk::ScaleFieldMask |
                                  TextureChunk::FrameFieldMask | TextureChunk::TargetFieldMask;

constexpr BitVector SettingsMask = TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask |
                                   TextureChunk::WrapSFieldMask | TextureChunk::WrapTFieldMask |
                                   TextureChunk::WrapRFieldMask | TextureChunk::PriorityFieldMask |
                                   TextureChunk::AnisotropyFieldMask | TextureChunk::BorderColorFieldMask |
                                   TextureChunk::CompareModeFieldMask | TextureChunk::CompareFuncFieldMask |
                                   TextureChunk::DepthModeFieldMask;

constexpr BitVector DirtyMask = TextureChunk::DirtyLeftFieldMask | TextureChunk::DirtyMinXFieldMask |
                                TextureChunk::DirtyMaxXFieldMask | TextureChunk::DirtyMinYFieldMask |
                                TextureChunk::DirtyMaxYFieldMask | TextureChunk::DirtyMinZFieldMask |
                                TextureChunk::DirtyMaxZFieldMask;

void destroyTexture(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    const GLuint name = win->getGLObjectId(id);
    if(status != Window::destroy || name == 0)
        return;
    glDeleteTextures(1, &name);
    win->setGLObjectId(id, 0);
}

/// Selects a texture unit for as long as it lives, and unit 0 behind that.
class UnitSelection
{
  public:
    UnitSelection(const TextureFunctions &gl, UInt32 unit) : _gl(gl), _unit(unit)
    {
        if(_unit != 0)
            _gl.activeTexture(GL_TEXTURE0 + _unit);
    }
    ~UnitSelection()
    {
        if(_unit != 0)
            _gl.activeTexture(GL_TEXTURE0);
    }
    UnitSelection(const UnitSelection &) = delete;
    UnitSelection &operator=(const UnitSelection &) = delete;

  private:
    const TextureFunctions &_gl;
    UInt32 _unit;
};

} // namespace

StateChunkClass TextureChunk::_class("Texture", 16);

void TextureChunk::initMethod()
{
    TextureFunctions::registerAll();
}

TextureChunk::TextureChunk() = default;

// What windows have of the source is not the copy's.
TextureChunk::TextureChunk(const TextureChunk &source) : Inherited(source) {}

TextureChunk::~TextureChunk() = default;

void TextureChunk::onCreate(const TextureChunk *source)
{
    Inherited::onCreate(source);
    addRefCP(getImage());
    if(GlobalSystemState == Startup)
        return;
    const TextureChunkPtr chunk(*this);
    setGLId(Window::registerGLObject(
        [chunk](Window *win, UInt32 idstatus) { chunk->handleGL(win, idstatus); }, 1, &destroyTexture));
    endEditCP(chunk, GLIdFieldMask);
}

void TextureChunk::onDestroy()
{
    if(getGLId() != 0)
        Window::destroyGLObject(getGLId(), 1);
    setImage(NullFC);
    Inherited::onDestroy();
}

void TextureChunk::setImage(const ImagePtr &image)
{
    const ImagePtr old = getImage();
    addRefCP(image);
    Inherited::setImage(image);
    subRefCP(old);
}

void TextureChunk::imageContentChanged(Int32 minX, Int32 maxX, Int32 minY, Int32 maxY, Int32 minZ, Int32 maxZ)
{
    setDirtyLeft(minX);
    setDirtyMinX(minX);
    setDirtyMaxX(maxX);
    setDirtyMinY(minY);
    setDirtyMaxY(maxY);
    setDirtyMinZ(minZ);
    setDirtyMaxZ(maxZ);
    endEditCP(TextureChunkPtr(*this), DirtyMask);
}

void TextureChunk::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & (ContentMask | DirtyMask)) != 0)
    {
        TextureBlock block;
        // A change that comes from another aspect may be several in one, of which the fields tell only the
        // last.
        if((whichField & ContentMask) == 0 && (origin & ChangedOrigin::Sync) == 0)
        {
            block.whole = getDirtyMinX() < 0 && getDirtyMaxX() < 0 && getDirtyMinY() < 0 &&
                          getDirtyMaxY() < 0 && getDirtyMinZ() < 0 && getDirtyMaxZ() < 0;
            const Int32 first[3] = {getDirtyMinX(), getDirtyMinY(), getDirtyMinZ()};
            const Int32 last[3] = {getDirtyMaxX(), getDirtyMaxY(), getDirtyMaxZ()};
            std::copy(first, first + 3, block.first);
            std::copy(last, last + 3, block.last);
        }
        noteContentChange(block);
    }
    if((whichField & SettingsMask) != 0)
        ++_settingsRevision;
    if((whichField & (ContentMask | DirtyMask | SettingsMask)) != 0 && getGLId() != 0)
        Window::refreshGLObject(getGLId());
    Inherited::changed(whichField, origin);
}

void TextureChunk::noteContentChange(const TextureBlock &block)
{
    ++_contentRevision;
    if(_changes.size() == MaxKeptChanges)
        _changes.erase(_changes.begin());
    _changes.push_back({_contentRevision, block});
}

TextureBlock TextureChunk::changedSince(UInt32 revision) const
{
    TextureBlock result;
    if(_changes.empty() || _changes.front().revision > revision + 1)
        return result;
    bool first = true;
    for(const ContentChange &change : _changes)
    {
        if(change.revision <= revision)
            continue;
        result = first ? change.block : joinBlocks(result, change.block);
        first = false;
    }
    return result;
}

GLenum TextureChunk::effectiveTarget() const
{
    const ImagePtr image = getImage();
    if(image == NullFC)
        return GL_NONE;
    return getTarget() != GL_NONE ? getTarget()
                                  : textureTarget(image->getWidth(), image->getHeight(), image->getDepth());
}

TextureSettings TextureChunk::settings() const
{
    TextureSettings result;
    result.minFilter = getMinFilter();
    result.magFilter = getMagFilter();
    result.wrap[0] = getWrapS();
    result.wrap[1] = getWrapT();
    result.wrap[2] = getWrapR();
    result.priority = getPriority();
    result.anisotropy = getAnisotropy();
    std::copy(getBorderColor().getValues(), getBorderColor().getValues() + 4, result.borderColor);
    result.compareMode = getCompareMode();
    result.compareFunc = getCompareFunc();
    result.depthMode = getDepthMode();
    return result;
}

void TextureChunk::handleGL(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status == Window::destroy)
    {
        // The window ends ahead of the chunk.
        destroyTexture(win, idstatus);
        _windows.erase(win);
        return;
    }
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;

    // What others left pending must not count as a failed transfer below.
    osgGlCheckError("TextureChunk", "found pending");
    const TextureFunctions gl(win);
    const GLenum target = effectiveTarget();
    WindowTexture &texture = _windows[win];
    if(status != Window::needrefresh || texture.target != target)
    {
        // A GL texture keeps the kind that it was first bound as, so another kind needs another texture.
        const GLuint old = win->getGLObjectId(id);
        if(old != 0 && glIsTexture(old))
            glDeleteTextures(1, &old);
        texture = WindowTexture();
        texture.target = target;
        queryUnits(texture);
        GLuint name = 0;
        glGenTextures(1, &name);
        win->setGLObjectId(id, name);
    }
    if(textureDimensions(target) == 0)
    {
        texture.usable = false;
        texture.contentRevision = _contentRevision;
        if(target != GL_NONE)
            SWARNING << "TextureChunk: there are no textures of the kind " << target << std::endl;
        return;
    }

    const TextureBinding binding(target, win->getGLObjectId(id));
    if(texture.contentRevision != _contentRevision)
    {
        TextureBlock block = texture.usable ? changedSince(texture.contentRevision) : TextureBlock();
        const TextureSource source = {getImage(), getFrame(), getInternalFormat(), getExternalFormat(),
                                      getScale()};
        if(block.whole || !transferTextureBlock(gl, target, source, block, texture.storage))
        {
            texture.usable = transferTexture(gl, target, source, texture.storage);
            texture.hasMipmaps = texture.usable && texture.storage.levels > 1;
        }
        else if(texture.hasMipmaps)
            texture.hasMipmaps = makeTextureMipmaps(gl, target);
        ++_numTransfers;
        texture.contentRevision = _contentRevision;
        texture.settingsRevision = 0;
    }
    if(texture.usable && texture.settingsRevision != _settingsRevision)
    {
        if(filterNeedsMipmaps(getMinFilter()) && !texture.hasMipmaps)
            texture.hasMipmaps = makeTextureMipmaps(gl, target);
        sendTextureSettings(gl, target, settings(), texture.storage, texture.hasMipmaps);
        texture.settingsRevision = _settingsRevision;
    }
}

void TextureChunk::queryUnits(WindowTexture &texture) const
{
    const auto query = [](GLenum name) {
        GLint value = 0;
        glGetIntegerv(name, &value);
        return UInt32(std::max(value, 1));
    };
    texture.fixedUnits = query(GL_MAX_TEXTURE_UNITS);
    texture.coordinateUnits = std::max(texture.fixedUnits, query(GL_MAX_TEXTURE_COORDS));
    texture.imageUnits = std::max(texture.fixedUnits, query(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS));
    // Contexts without programs don't know the last two names, which is no fault of anybody.
    while(glGetError() != GL_NO_ERROR)
        ;
}

bool TextureChunk::unitIsThere(const TextureFunctions &gl, WindowTexture &texture, UInt32 unit)
{
    if(unit < texture.imageUnits && (unit == 0 || gl.activeTexture != nullptr))
        return true;
    if(!texture.unitWarned)
        SWARNING << "TextureChunk: there is no texture unit " << unit << " in this window" << std::endl;
    texture.unitWarned = true;
    return false;
}

void TextureChunk::update(DrawActionBase *action)
{
    action->getWindow()->validateGLObject(getGLId());
}

void TextureChunk::activate(DrawActionBase *action, UInt32 index)
{
    Window *const win = action->getWindow();
    win->validateGLObject(getGLId());
    WindowTexture &texture = _windows[win];
    const TextureFunctions gl(win);
    if(!texture.usable || !unitIsThere(gl, texture, index))
        return;
    const UnitSelection selection(gl, index);
    glBindTexture(texture.target, win->getGLObjectId(getGLId()));
    setEnvironment(gl, texture, index);
    // Only the units of the fixed pipeline can be switched on; programs read the others all the same.
    if(index < texture.fixedUnits)
        glEnable(texture.target);
}

void TextureChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    if(old == this)
        update(action);
    else
        Inherited::changeFrom(action, old, index);
}

void TextureChunk::deactivate(DrawActionBase *action, UInt32 index)
{
    Window *const win = action->getWindow();
    WindowTexture &texture = _windows[win];
    const TextureFunctions gl(win);
    if(!texture.usable || index >= texture.imageUnits || (index != 0 && gl.activeTexture == nullptr))
        return;
    const UnitSelection selection(gl, index);
    if(index < texture.fixedUnits)
        glDisable(texture.target);
    resetEnvironment(gl, texture, index);
    // Unbound, so that the texture may be drawn into next.
    glBindTexture(texture.target, 0);
}

void TextureChunk::setEnvironment(const TextureFunctions &gl, const WindowTexture &texture, UInt32 unit) const
{
    if(unit < texture.fixedUnits)
    {
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GLint(getEnvMode()));
        glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, getEnvColor().getValues());
        if(getEnvMode() == GL_COMBINE && gl.hasCombine)
        {
            const std::pair<GLenum, GLenum> values[] = {
                {GL_COMBINE_RGB, getEnvCombineRGB()},         {GL_COMBINE_ALPHA, getEnvCombineAlpha()},
                {GL_SOURCE0_RGB, getEnvSource0RGB()},         {GL_SOURCE1_RGB, getEnvSource1RGB()},
                {GL_SOURCE2_RGB, getEnvSource2RGB()},         {GL_SOURCE0_ALPHA, getEnvSource0Alpha()},
                {GL_SOURCE1_ALPHA, getEnvSource1Alpha()},     {GL_SOURCE2_ALPHA, getEnvSource2Alpha()},
                {GL_OPERAND0_RGB, getEnvOperand0RGB()},       {GL_OPERAND1_RGB, getEnvOperand1RGB()},
                {GL_OPERAND2_RGB, getEnvOperand2RGB()},       {GL_OPERAND0_ALPHA, getEnvOperand0Alpha()},
                {GL_OPERAND1_ALPHA, getEnvOperand1Alpha()},   {GL_OPERAND2_ALPHA, getEnvOperand2Alpha()},
            };
            for(const auto &[name, value] : values)
                glTexEnvi(GL_TEXTURE_ENV, name, GLint(value));
            glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, getEnvScaleRGB());
            glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, getEnvScaleAlpha());
        }
    }
    if(unit >= texture.coordinateUnits)
        return;
    if(getLodBias() != 0.f && gl.hasLodBias)
        glTexEnvf(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, getLodBias());
    if(getPointSprite() && gl.hasPointSprite)
        glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_TRUE);
    if(getNPOTMatrixScale() == 1)
    {
        const TextureStorage &storage = texture.storage;
        Matrix matrix;
        matrix.setScale(Real32(storage.used[0]) / Real32(storage.size[0]),
                        Real32(storage.used[1]) / Real32(storage.size[1]),
                        Real32(storage.used[2]) / Real32(storage.size[2]));
        loadTextureMatrix(matrix);
    }
}

void TextureChunk::resetEnvironment(const TextureFunctions &gl, const WindowTexture &texture,
                                    UInt32 unit) const
{
    if(unit < texture.fixedUnits && getEnvMode() != GL_MODULATE)
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    if(unit >= texture.coordinateUnits)
        return;
    if(getLodBias() != 0.f && gl.hasLodBias)
        glTexEnvf(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, 0.f);
    if(getPointSprite() && gl.hasPointSprite)
        glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_FALSE);
    if(getNPOTMatrixScale() == 1)
        loadTextureMatrix(Matrix());
}

bool TextureChunk::isTransparent() const
{
    return false;
}

void TextureChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TextureChunk NI" << std::endl;
}

OSG_END_NAMESPACE
