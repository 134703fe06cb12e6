#ifndef _OSGPRIMITIVEDRAWER_H_
#define _OSGPRIMITIVEDRAWER_H_

/// \file
/// The core that is drawn by a plug-in.

#include <memory>
#include <string>

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGSharedLibrary.h>
#include <Tessaly/OSGPrimitiveDrawerBase.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// Gives a plug-in a place in the scene, with a material and a bounding volume. The plug-in is a shared
/// library that exports, as extern "C", functions whose names begin with one prefix:
///
///     void *PREFIX_initialize();
///     void  PREFIX_drawPrim(void *handle);
///     void  PREFIX_getBBox(void *handle, float *min, float *max);
///     int   PREFIX_setParam(void *handle, const char *name, const char *value);
///     void  PREFIX_shutdown(void *handle);
///
/// The first is called once the library is open; what it returns, which may be null, is the others' handle. It
/// may be missing, and so may the last, which is called ahead of the closing. drawPrim finds the context
/// current and the material active. getBBox writes two corners, three floats each, which are zero ahead of the
/// call. setParam returns 0 where it failed.
///
/// The edit of libName closes the library that is open and loads the new one, first by that name, then with
/// ".dll" behind it, on every system. An edit of paramDic tells the plug-in all pairs; an edit of libName
/// alone tells none, so that a host sets both in one edit. All failures are warnings, and the core stays.
///
/// The copies for other aspects, and copies made of this core, share the plug-in, which the copy whose thread
/// edited libName loads and closes. Nothing of a plug-in is called once it is closed. Nothing is locked:
/// libName is edited while no other thread draws. It can't be hit by an IntersectAction.
class OSG_TESSALY_DLLMAPPING PrimitiveDrawer : public PrimitiveDrawerBase
{
  public:
    typedef PrimitiveDrawerBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Calls the plug-in. Always Continue.
    Action::ResultE drawPrimitives(DrawActionBase *action) override;
    /// Does nothing. Always Continue.
    Action::ResultE intersect(Action *action);

  protected:
    PrimitiveDrawer();
    /// A copy shares the plug-in, without opening its library.
    PrimitiveDrawer(const PrimitiveDrawer &source);
    ~PrimitiveDrawer() override;

    void onCreate(const PrimitiveDrawer *source = nullptr);

    /// Extends the volume by the plug-in's box.
    void adjustVolume(Volume &volume) override;

  private:
    friend class FieldContainer;
    friend class PrimitiveDrawerBase;

    typedef void *(*InitializeFunction)();
    typedef void (*ShutdownFunction)(void *);
    typedef void (*DrawPrimFunction)(void *);
    typedef void (*GetBBoxFunction)(void *, float *, float *);
    typedef int (*SetParamFunction)(void *, const char *, const char *);
    struct PlugIn;
    struct Content;

    static void initMethod();

    /// Tells the plug-in that it ends and closes the library, where this copy has opened it.
    void shutdown();
    /// Closes what is open and opens what libName names.
    void load();
    /// Takes over what another aspect's copy has loaded, and closes what this one had.
    void share();
    void sendParameters();
    /// Whether a drawer is loaded.
    bool isLoaded() const;

    SharedLibrary library;
    std::string symbolPrefix;
    void *handle = nullptr;
    // As last looked up. They stay behind the end of the library, when they must not be called.
    DrawPrimFunction drawPrim = nullptr;
    GetBBoxFunction getBBox = nullptr;
    SetParamFunction setParam = nullptr;

    std::shared_ptr<PlugIn> _plugIn;   ///< what the members above are of; null before the first load
    std::shared_ptr<Content> _content; ///< one for the copies of all aspects
};

OSG_END_NAMESPACE

#endif
