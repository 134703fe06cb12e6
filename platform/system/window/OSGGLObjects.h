#ifndef _OSGGLOBJECTS_H_
#define _OSGGLOBJECTS_H_

/// \file
/// GL objects: registered once per process, with a name and a state in each window.

#include <functional>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

class Window;

/// Called with the window, whose context is current, and the object's id and status packed by
/// Window::packIdStatus.
typedef std::function<void(Window *win, UInt32 idstatus)> GLObjectFunctor;
/// Takes the destroy statuses, when the functor's owner may be gone.
typedef void (*GLObjectDestroyF)(Window *win, UInt32 idstatus);

/// What is to be done with a GL object in a window; the low three bits of a functor's argument.
enum GLObjectStatus
{
    GLObjectNotUsed = 1,
    GLObjectInitialize = 2,    ///< first use in this window
    GLObjectReinitialize = 3,  ///< to be made anew
    GLObjectInitialized = 4,   ///< ready; never handed to a functor
    GLObjectNeedRefresh = 5,   ///< contents changed
    GLObjectDestroy = 6,       ///< to be freed in this window
    GLObjectFinalDestroy = 7   ///< behind destroy in the last window that had it
};

/// One window's side of all GL objects. Used by the thread that draws the window; any thread may register,
/// refresh or destroy objects meanwhile.
class OSG_SYSTEMLIB_DLLMAPPING GLObjectTable
{
  public:
    GLObjectTable() = default;
    /// Forgets the window. The objects themselves go with the window's context.
    ~GLObjectTable();
    GLObjectTable(const GLObjectTable &) = delete;
    GLObjectTable &operator=(const GLObjectTable &) = delete;

    /// Registers `num` objects of consecutive ids, of which the first is returned; never 0. The functor is
    /// called for each of them. With `destroyer` the destroy statuses go there: it needs nothing of the
    /// owner. Without, they go to the functor, also behind the owner's end.
    static UInt32 registerObject(const GLObjectFunctor &functor, UInt32 num, GLObjectDestroyF destroyer);
    /// Each window calls the functor with GLObjectNeedRefresh, or GLObjectReinitialize, at its next validate.
    /// Ids that are not registered are passed over.
    static void refresh(UInt32 id, UInt32 num);
    static void reinitialize(UInt32 id, UInt32 num);
    /// Ends the objects: each window that has them frees them at the end of its next frame. Repeating it is
    /// harmless: an id is given out again only long after its end.
    static void destroy(UInt32 id, UInt32 num);
    /// Objects that are registered and not yet gone from all windows.
    static std::size_t getNumRegistered();

    /// Calls the functor where this window's object is not there or not up to date. An object that was made
    /// by a thread of another aspect shows that aspect's data, and its owner's copy here has never seen it,
    /// so it is reinitialised. False for an id that is not registered (0 among them).
    bool validate(Window *win, UInt32 id);
    /// Calls the destroyers of what has been ended.
    void destroyEnded(Window *win);
    /// The same for all that this window has: it closes. The objects stay registered.
    void destroyAll(Window *win);
    /// Whether the window has no objects.
    bool isEmpty() const;

    /// The GL name in this window, 0 if none was set.
    UInt32 getName(UInt32 id) const { return id < _objects.size() ? _objects[id].name : 0; }
    /// Sets it.
    void setName(UInt32 id, UInt32 name);

  private:
    friend struct GLObjectRegistry;

    struct Entry
    {
        UInt64 validated = 0; ///< event at which the functor was called last, 0 for never
        UInt32 aspect = 0;    ///< of the thread that validated last
        UInt32 name = 0;
    };

    Entry &entry(UInt32 id);

    std::vector<Entry> _objects; ///< by id
    std::vector<UInt32> _ended;  ///< guarded by the registry's lock
};

OSG_END_NAMESPACE

#endif
