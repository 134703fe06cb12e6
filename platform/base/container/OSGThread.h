#ifndef _OSGTHREAD_H_
#define _OSGTHREAD_H_

/// \file
/// Threads that have an aspect and a change list of their own, and what they wait for each other with.

#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

class ChangeList;

/// What is particular to the calling thread. Plain data without a constructor, so that the aspect, which every use of
/// a container pointer asks for, costs one load.
struct ThreadState
{
    UInt32 aspect; ///< the thread's aspect
    ChangeList *changeList; ///< where its edits are noted
};

/// What the calling thread works with.
extern OSG_BASELIB_DLLMAPPING __thread ThreadState currentThreadState __attribute__((tls_model("initial-exec")));

/// A thread of execution with an aspect, that is, an own copy of all containers, and a change list, which records what
/// it does to them. A thread that was not started here (the main thread, a std::thread) has aspect 0 until
/// `initialize` gives it another, and gets a change list when it first needs one.
///
/// Two threads may share an aspect only if they never run at the same time.
class OSG_BASELIB_DLLMAPPING Thread
{
  public:
    /// What a thread runs.
    typedef void (*ThreadFuncF)(void *argument);

    /// The thread of that name, made if there is none. Threads are kept until osgExit.
    static Thread *get(const Char8 *name);
    /// The thread of that name, or null.
    static Thread *find(const Char8 *name);
    /// Waits until the function of `thread` has returned. Null and threads that don't run return at once.
    static void join(Thread *thread);

    /// The record of the calling thread, or null for one that neither was started by `runFunction` nor is the
    /// main thread.
    static Thread *getCurrent();
    /// The aspect of the calling thread.
    static UInt32 getAspect() { return currentThreadState.aspect; }
    /// The change list of the calling thread, made if there is none yet.
    static ChangeList *getCurrentChangeList()
    {
        ChangeList *const list = currentThreadState.changeList;
        return list != nullptr ? list : makeCurrentChangeList();
    }
    /// Makes `list`, which the caller owns, the calling thread's change list.
    static void setCurrentChangeList(ChangeList *list);

    /// Starts `function(argument)` on the aspect. False, with a warning, if this thread runs already or the aspect is
    /// not below ThreadManager::getNumAspects().
    bool runFunction(ThreadFuncF function, UInt32 aspect, void *argument);

    /// Makes the calling thread, started elsewhere, this thread. The same refusals as `runFunction`.
    bool initialize(UInt32 aspect);

    /// The name, list and aspect that the thread was made with, and whether it runs.
    const Char8 *getName() const;
    /// The list that notes the thread's edits.
    ChangeList *getChangeList();
    /// The thread's aspect.
    UInt32 getAspectId() const;
    /// Whether its function runs.
    bool isRunning() const;

  private:
    friend class ThreadManager;
    struct Content;

    explicit Thread(const Char8 *name);
    ~Thread();
    Thread(const Thread &) = delete;
    Thread &operator=(const Thread &) = delete;

    static ChangeList *makeCurrentChangeList();

    Content *_content;
};

/// The names that other systems have for it.
typedef Thread ThreadBase;
typedef Thread WinThreadBase;
typedef Thread PThreadBase;
typedef Thread ExternalThread;

/// Holds threads back until a number of them has arrived; used again and again.
class OSG_BASELIB_DLLMAPPING Barrier
{
  public:
    /// The barrier of that name, made if there is none yet.
    static Barrier *get(const Char8 *name);

    /// Waits until `numWaitFor` threads are inside; with 0, the number of setNumWaitFor (1 at first).
    void enter(UInt32 numWaitFor = 0);
    /// How many threads enter waits for by itself.
    void setNumWaitFor(UInt32 number);
    /// How many threads are inside.
    UInt32 getNumWaiting();

  private:
    friend class ThreadManager;
    struct Content;

    Barrier();
    ~Barrier();

    Content *_content;
};

/// Mutual exclusion by name; may be taken again by the thread that holds it.
class OSG_BASELIB_DLLMAPPING Lock
{
  public:
    /// The lock of that name, made if there is none yet.
    static Lock *get(const Char8 *name);

    /// Waits for the lock, gives it back, or takes it if that needs no waiting.
    void acquire();
    void release();
    bool request();

  private:
    friend class ThreadManager;
    struct Content;

    Lock();
    ~Lock();

    Content *_content;
};

/// How many aspects there are, and the threads, barriers and locks by name.
class OSG_BASELIB_DLLMAPPING ThreadManager
{
  public:
    /// The only one.
    static ThreadManager *the();

    /// Before osgInit only: how many copies each container has. At least 1; 2 unless set. Later calls are refused with
    /// a warning, since the containers that exist have their memory already.
    static void setNumAspects(UInt32 number);
    static UInt32 getNumAspects() { return _numAspects; }

    /// The thread that called osgInit.
    static Thread *getAppThread();

    /// The one of that name, made if there is none yet.
    Thread *getThread(const Char8 *name) { return Thread::get(name); }
    Barrier *getBarrier(const Char8 *name) { return Barrier::get(name); }
    Lock *getLock(const Char8 *name) { return Lock::get(name); }

    /// How many threads now run on an aspect other than that of the main thread. While there are any, a container
    /// that goes stays in memory until the change list that holds its end is cleared.
    static UInt32 getNumForeignAspectThreads();

    /// Called by osgInit and osgExit.
    static bool initialize();
    static bool terminate();

  private:
    friend class Thread;
    friend class Barrier;
    friend class Lock;
    struct Content;

    ThreadManager();

    static UInt32 _numAspects;
    Content *_content;
};

OSG_END_NAMESPACE

#endif
