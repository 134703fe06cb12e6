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
    UInt32 aspect;
    ChangeList *changeList;
};

extern OSG_BASELIB_DLLMAPPING __thread ThreadState currentThreadState __attribute__((tls_model("initial-exec")));

/// A thread of execution with an aspect, that is, an own copy of all containers, and a change list, which records what
/// it does to them. A thread that was not started here (the main thread, a std::thread) has aspect 0 until
/// `initialize` gives it another, and gets a change list when it first needs one.
///
/// Two threads may share an aspect only if they never run at the same time.
class OSG_BASELIB_DLLMAPPING Thread
{
  public:
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
    static UInt32 getAspect() { return currentThreadState.aspect; }
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

    const Char8 *getName() const;
    ChangeList *getChangeList();
    UInt32 getAspectId() const;
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

typedef Thread ThreadBase;
typedef Thread WinThreadBase;
typedef Thread PThreadBase;
typedef Thread ExternalThread;

/// Holds threads back until a number of them has arrived; used again and again.
class OSG_BASELIB_DLLMAPPING Barrier
{
  public:
    static Barrier *get(const Char8 *name);

    /// Waits until `numWaitFor` threads are inside; with 0, the number of setNumWaitFor (1 at first).
    void enter(UInt32 numWaitFor = 0);
    void setNumWaitFor(UInt32 number);
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
    static Lock *get(const Char8 *name);

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
    static ThreadManager *the();

    /// Before osgInit only: how many copies each container has. At least 1; 2 unless set. Later calls are refused with
    /// a warning, since the containers that exist have their memory already.
    static void setNumAspects(UInt32 number);
    static UInt32 getNumAspects() { return _numAspects; }

    /// The thread that called osgInit.
    static Thread *getAppThread();

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
