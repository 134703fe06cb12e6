/// \file
/// Copies a viewport's pixels into an image.

#include "OSGGrabForeground.h"

#include <algorithm>

#include "OSGGL.h"
#include "OSGImage.h"
#include "OSGLog.h"
#include "OSGViewport.h"

OSG_BEGIN_NAMESPACE

void GrabForeground::initMethod() {}

GrabForeground::GrabForeground() = default;

GrabForeground::GrabForeground(const GrabForeground &source) : Inherited(source) {}

GrabForeground::~GrabForeground() = default;

void GrabForeground::onCreate(const GrabForeground *source)
{
    addRefCP(_sfImage.getValue());
    Inherited::onCreate(source);
}

void GrabForeground::onDestroy()
{
    clearRefCP(_sfImage.getValue());
    Inherited::onDestroy();
}

void GrabForeground::setImage(const ImagePtr &value)
{
    setRefdCP(_sfImage.getValue(), ImagePtr(value));
}

void GrabForeground::draw(DrawActionBase *, Viewport *port)
{
    const ImagePtr image = getImage();
    if(!getActive() || image == NullFC || port == nullptr)
        return;
    const Int32 portWidth = port->getPixelWidth();
    const Int32 portHeight = port->getPixelHeight();
    if(portWidth <= 0 || portHeight <= 0)
        return;

    // An image that is still as good as empty is always given the size.
    BitVector changes = Image::PixelFieldMask;
    const bool differs = image->getWidth() != portWidth || image->getHeight() != portHeight;
    if(differs && (getAutoResize() || image->getWidth() <= 1 || image->getHeight() <= 1))
    {
        const bool isSet = image->set(image->getPixelFormat(), portWidth, portHeight, 1, 1, 1, 0.0, nullptr,
                                      image->getDataType(), true, 1);
        if(!isSet)
            return;
        changes = FieldBits::AllFields;
    }
    UInt8 *const pixels = image->editData();
    if(pixels == nullptr)
        return;

    // Rows without padding; what is smaller of image and viewport is read.
    GLint alignment = 4;
    GLint rowLength = 0;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, image->getWidth());
    glReadPixels(port->getPixelLeft(), port->getPixelBottom(), std::min(portWidth, image->getWidth()),
                 std::min(portHeight, image->getHeight()), image->getPixelFormat(),
                 GLenum(image->getDataType()), pixels);
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
    glPixelStorei(GL_PACK_ROW_LENGTH, rowLength);
    endEditCP(image, changes);
}

void GrabForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void GrabForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump GrabForeground NI" << std::endl;
}

OSG_END_NAMESPACE
