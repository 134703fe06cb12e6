/// \file
/// Writes frames to image files.

#include <Tessaly/OSGScreenDumpForeground.h>

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <fstream>

OSG_BEGIN_NAMESPACE

void ScreenDumpForeground::initMethod() {}

ScreenDumpForeground::ScreenDumpForeground() = default;

ScreenDumpForeground::ScreenDumpForeground(const ScreenDumpForeground &source) : Inherited(source) {}

ScreenDumpForeground::~ScreenDumpForeground() = default;

void ScreenDumpForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || _mfFilenames.empty())
        return;

    // An image of one pixel is given the viewport's size.
    if(getImage() == NullFC)
    {
        const ImagePtr made = Image::create();
        made->set(Image::OSG_RGB_PF, 1, 1, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT8_IMAGEDATA, true, 1);
        setImage(made);
        endEditCP(ScreenDumpForegroundPtr(*this), ImageFieldMask);
    }
    Inherited::draw(action, port);

    // File names of this system are UTF-8 as they are.
    std::ofstream file(_mfFilenames[0], std::ios::out | std::ios::binary | std::ios::trunc);
    if(file.is_open())
        ImageFileHandler::the().write(getImage(), file, "image/png");

    // Whether it could be written or not.
    _mfFilenames.erase(_mfFilenames.begin());
    endEditCP(ScreenDumpForegroundPtr(*this), FilenamesFieldMask);
}

void ScreenDumpForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ScreenDumpForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ScreenDumpForeground NI" << std::endl;
}

OSG_END_NAMESPACE
