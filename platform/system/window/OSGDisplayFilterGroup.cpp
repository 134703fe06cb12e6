/// \file
/// The picture of a viewport as a texture, and the quad that draws it again.

#include "OSGDisplayFilterGroup.h"

#include "OSGDrawActionBase.h"
#include "OSGGL.h"
#include "OSGGLError.h"
#include "OSGViewport.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

DisplayFilterGroup::DisplayFilterGroup(const std::string &name)
    : _name(name),
      _image(Image::create()),
      _picture(TextureChunk::create()),
      _material(ChunkMaterial::create()),
      _quad(PolygonForeground::create())
{
    addRefCP(_image);
    addRefCP(_picture);
    addRefCP(_material);
    addRefCP(_quad);

    beginEditCP(_picture);
    _picture->setImage(_image);
    _picture->setInternalFormat(GL_RGBA8);
    _picture->setTarget(GL_TEXTURE_2D);
    _picture->setMinFilter(GL_LINEAR);
    _picture->setMagFilter(GL_LINEAR);
    _picture->setWrapS(GL_CLAMP_TO_EDGE);
    _picture->setWrapT(GL_CLAMP_TO_EDGE);
    _picture->setScale(false);
    _picture->setNPOTMatrixScale(1);
    endEditCP(_picture);

    beginEditCP(_material);
    _material->addChunk(_picture, State::AutoSlot);
    endEditCP(_material);

    beginEditCP(_quad);
    _quad->setMaterial(_material);
    for(const Pnt2f &corner : {Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 1), Pnt2f(0, 1)})
    {
        _quad->editMFPositions()->push_back(corner);
        _quad->editMFTexCoords()->push_back(Vec3f(corner[0], corner[1], 0));
    }
    endEditCP(_quad);
}

DisplayFilterGroup::~DisplayFilterGroup()
{
    subRefCP(_quad);
    subRefCP(_material);
    subRefCP(_picture);
    subRefCP(_image);
}

void DisplayFilterGroup::draw(DrawActionBase *action, Viewport *port)
{
    Window *const win = action->getWindow();
    const Int32 width = port->getPixelWidth();
    const Int32 height = port->getPixelHeight();
    if(win == nullptr || width < 1 || height < 1)
        return;
    if(_image->getWidth() != width || _image->getHeight() != height)
    {
        _image->set(Image::OSG_RGBA_PF, width, height, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT8_IMAGEDATA,
                    false);
        endEditCP(_image);
        _picture->imageContentChanged();
    }

    win->validateGLObject(_picture->getGLId());
    glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(_picture->getGLId()));
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, port->getPixelLeft(), port->getPixelBottom(), width, height);
    glBindTexture(GL_TEXTURE_2D, 0);
    glErr("grabbing the picture");
    _quad->draw(action, port);
}

OSG_END_NAMESPACE
