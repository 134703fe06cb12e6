#ifndef _OSGPBOGRABFOREGROUND_H_
#define _OSGPBOGRABFOREGROUND_H_

/// \file
/// Grabs frames through a ring of pixel buffer objects.

#include <Tessaly/OSGKeptPointer.h>
#include <Tessaly/OSGPBOGrabForegroundBase.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class Window;

/// Reads the viewport's pixels (RGBA, 8 bits), or a texture's (in the format and type of its image), into
/// `image`, lowest row first. Frame k goes to buffer k modulo n of a ring of n, and in the same frame the
/// buffer that was filled n - 1 frames ago is copied to the image. For the first n - 1 frames of a ring the
/// image gets the undefined contents of fresh buffers, as is meant; a new size or length of the ring begins
/// anew. Where the window lacks the extension, and with a ring of 0 and less, each frame is read straight
/// into the image.
///
/// The image is given the source's format and type, and with `autoResize` its size, at least 2 x 2. What is
/// smaller of image and source is read. The buffers belong to the context that drew first and are left to it
/// at the end.
///
/// Belongs to the thread that draws the viewport, with the window's context current.
class OSG_TESSALY_DLLMAPPING PBOGrabForeground : public PBOGrabForegroundBase
{
  public:
    typedef PBOGrabForegroundBase Inherited;

    /// Takes a reference and gives the old one back.
    void setSourceTexture(const TextureChunkPtr &value);

    /// Does nothing while not active or without an image. What can't be grabbed (a texture without an image,
    /// in a compressed format, or of a kind that can't be read) is told in one warning until the fields
    /// change.
    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PBOGrabForeground();
    /// A copy has a ring of its own.
    PBOGrabForeground(const PBOGrabForeground &source);
    ~PBOGrabForeground() override;

    void onCreate(const PBOGrabForeground *source = nullptr);
    void onDestroy() override;

    /// Makes the ring fit: `numPBOs` buffers of `size` bytes. The window is not asked whether it has the
    /// extension. \return whether the ring can be used; it is empty with a `numPBOs` of 0 and less
    bool pbosReady(Window *win, UInt32 size);
    /// The place in the ring that the current frame is read to; -1 for a ring that was emptied.
    Int32 getCurrentPBOIndex() { return _pboIndex; }
    /// The place behind it, -1 for an empty ring.
    Int32 getNextPBOIndex();
    /// Goes on to it.
    void incrementPBOIndex();

    /// Ids of extensions and functions with Window.
    static UInt32 _glVBOExtension;
    static UInt32 _funcGenBuffers;
    static UInt32 _funcDeleteBuffers;
    static UInt32 _funcBindBuffer;
    static UInt32 _funcBufferData;
    static UInt32 _funcBufferSubData;
    static UInt32 _funcGetBufferParameteriv;
    static UInt32 _funcMapBuffer;
    static UInt32 _funcUnmapBuffer;
    static UInt32 _glPBOExtension;

  private:
    friend class FieldContainer;
    friend class PBOGrabForegroundBase;

    struct Functions;
    struct Source;

    static void initMethod();

    /// What is to be read; false, with one warning, where nothing can be.
    bool findSource(Window *win, Viewport *port, Source &source);
    /// Gives the image format, type and size where it has to have others. False if it can't have them.
    bool fitImage(const Source &source);
    /// Reads a texture that has more pixels than the image, and keeps what fits.
    void readPart(const Source &source);
    void readThroughRing(Window *win, const Source &source, UInt32 size);
    bool refuse(const Char8 *why);

    UInt32 _pboSize = 0; ///< bytes of each buffer
    Int32 _pboIndex = 0;
    std::vector<UInt32> _pbos; ///< GL's names
    bool _warned = false;
    KeptPointer<TextureChunkPtr> _keptSource;
};

OSG_END_NAMESPACE

#endif
