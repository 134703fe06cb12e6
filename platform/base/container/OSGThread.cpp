#include "OSGThread.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "OSGChangeList.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

__thread ThreadState currentThreadState __attribute__((tls_model("initial-exec"))) = {0, nullptr};

namespace
{

thread_local Thread *currentThread = nullptr;

/// Frees the change list of a thread that nobody registered, when that thread ends.
struct OwnChangeList
{
    std::unique_ptr<ChangeList> list;

    ~OwnChangeList()
    {
        if(currentThreadState.changeList == list.get())
            currentThreadState.changeList = nullptr;
    }
};

std::atomic<UInt32> foreignAspectThreads{0};

} // namespace

UInt32 ThreadManager::_numAspects = 2;

struct Thread::Content
{
    std::string name;
    std::thread runner;
    std::atomic<bool> running{false};
    std::atomic<UInt32> aspect{0};
    ChangeList changeList;
};

struct Barrier::Content
{
    std::mutex mutex;
    std::condition_variable condition;
    UInt32 numWaitFor = 1;
    UInt32 waiting = 0;
    UInt64 round = 0;
};

struct Lock::Content
{
    std::recursive_mutex mutex;
};

struct ThreadManager::Content
{
    std::mutex mutex;
    std::map<std::string, Thread *> threads;
    std::map<std::string, Barrier *> barriers;
    std::map<std::string, Lock *> locks;
    Thread *appThread = nullptr;
    bool initialized = false;
};

ThreadManager::ThreadManager() : _content(new Content) {}

ThreadManager *ThreadManager::the()
{
    static ThreadManager *const manager = new ThreadManager;
    return manager;
}

void ThreadManager::setNumAspects(UInt32 number)
{
    if(the()->_content->initialized)
    {
        FWARNING(("ThreadManager::setNumAspects: the number of aspects stands since osgInit; it stays %u\n",
                  _numAspects));
        return;
    }
    _numAspects = number == 0 ? 1 : number;
}

Thread *ThreadManager::getAppThread()
{
    return the()->_content->appThread;
}

UInt32 ThreadManager::getNumForeignAspectThreads()
{
    return foreignAspectThreads.load();
}

bool ThreadManager::initialize()
{
    Content &content = *the()->_content;
    if(content.initialized)
        return true;
    content.initialized = true;
    Thread *const app = Thread::get("OSGAppThread");
    content.appThread = app;
    currentThread = app;
    app->_content->aspect = currentThreadState.aspect;
    // What was recorded before osgInit goes on in the list that the application thread now has.
    if(currentThreadState.changeList != nullptr)
        app->_content->changeList.merge(*currentThreadState.changeList);
    Thread::setCurrentChangeList(&app->_content->changeList);
    return true;
}

bool ThreadManager::terminate()
{
    Content &content = *the()->_content;
    std::map<std::string, Thread *> threads;
    {
        std::lock_guard<std::mutex> lock(content.mutex);
        threads.swap(content.threads);
        content.appThread = nullptr;
        content.initialized = false;
    }
    for(auto &entry : threads)
    {
        Thread::join(entry.second);
        if(currentThreadState.changeList == &entry.second->_content->changeList)
            currentThreadState.changeList = nullptr;
        delete entry.second;
    }
    currentThread = nullptr;
    std::lock_guard<std::mutex> lock(content.mutex);
    for(auto &entry : content.barriers)
        delete entry.second;
    for(auto &entry : content.locks)
        delete entry.second;
    content.barriers.clear();
    content.locks.clear();
    return true;
}

Thread::Thread(const Char8 *name) : _content(new Content)
{
    _content->name = name;
}

Thread::~Thread()
{
    delete _content;
}

Thread *Thread::get(const Char8 *name)
{
    ThreadManager::Content &content = *ThreadManager::the()->_content;
    std::lock_guard<std::mutex> lock(content.mutex);
    Thread *&thread = content.threads[name != nullptr ? name : ""];
    if(thread == nullptr)
        thread = new Thread(name != nullptr ? name : "");
    return thread;
}

Thread *Thread::find(const Char8 *name)
{
    ThreadManager::Content &content = *ThreadManager::the()->_content;
    std::lock_guard<std::mutex> lock(content.mutex);
    const auto found = content.threads.find(name != nullptr ? name : "");
    return found == content.threads.end() ? nullptr : found->second;
}

void Thread::join(Thread *thread)
{
    if(thread != nullptr && thread->_content->runner.joinable())
        thread->_content->runner.join();
}

Thread *Thread::getCurrent()
{
    return currentThread;
}

void Thread::setCurrentChangeList(ChangeList *list)
{
    currentThreadState.changeList = list;
    if(list != nullptr)
        list->setAspect(currentThreadState.aspect);
}

ChangeList *Thread::makeCurrentChangeList()
{
    static thread_local OwnChangeList own;
    if(own.list == nullptr)
        own.list.reset(new ChangeList);
    setCurrentChangeList(own.list.get());
    return own.list.get();
}

bool Thread::runFunction(ThreadFuncF function, UInt32 aspect, void *argument)
{
    if(function == nullptr || aspect >= ThreadManager::getNumAspects())
    {
        FWARNING(("Thread::runFunction: aspect %u is not below the number of aspects, %u\n", aspect,
                  ThreadManager::getNumAspects()));
        return false;
    }
    if(_content->running.exchange(true))
    {
        FWARNING(("Thread::runFunction: the thread %s runs already\n", getName()));
        return false;
    }
    join(this);
    _content->aspect = aspect;
    if(aspect != 0)
        ++foreignAspectThreads;
    _content->runner = std::thread([this, function, aspect, argument]() {
        currentThread = this;
        currentThreadState.aspect = aspect;
        setCurrentChangeList(&_content->changeList);
        function(argument);
        currentThreadState.changeList = nullptr;
        if(aspect != 0)
            --foreignAspectThreads;
        _content->running = false;
    });
    return true;
}

bool Thread::initialize(UInt32 aspect)
{
    if(aspect >= ThreadManager::getNumAspects())
    {
        FWARNING(("Thread::initialize: aspect %u is not below the number of aspects, %u\n", aspect,
                  ThreadManager::getNumAspects()));
        return false;
    }
    if(_content->running.exchange(true))
    {
        FWARNING(("Thread::initialize: the thread %s runs already\n", getName()));
        return false;
    }
    if(aspect != 0 && currentThreadState.aspect == 0)
        ++foreignAspectThreads;
    _content->aspect = aspect;
    currentThread = this;
    currentThreadState.aspect = aspect;
    setCurrentChangeList(&_content->changeList);
    return true;
}

const Char8 *Thread::getName() const
{
    return _content->name.c_str();
}

ChangeList *Thread::getChangeList()
{
    return &_content->changeList;
}

UInt32 Thread::getAspectId() const
{
    return _content->aspect;
}

bool Thread::isRunning() const
{
    return _content->running;
}

Barrier::Barrier() : _content(new Content) {}

Barrier::~Barrier()
{
    delete _content;
}

Barrier *Barrier::get(const Char8 *name)
{
    ThreadManager::Content &content = *ThreadManager::the()->_content;
    std::lock_guard<std::mutex> lock(content.mutex);
    Barrier *&barrier = content.barriers[name != nullptr ? name : ""];
    if(barrier == nullptr)
        barrier = new Barrier;
    return barrier;
}

void Barrier::enter(UInt32 numWaitFor)
{
    std::unique_lock<std::mutex> lock(_content->mutex);
    const UInt32 number = numWaitFor != 0 ? numWaitFor : _content->numWaitFor;
    const UInt64 round = _content->round;
    if(++_content->waiting >= number)
    {
        _content->waiting = 0;
        ++_content->round;
        _content->condition.notify_all();
        return;
    }
    _content->condition.wait(lock, [this, round]() { return _content->round != round; });
}

void Barrier::setNumWaitFor(UInt32 number)
{
    std::lock_guard<std::mutex> lock(_content->mutex);
    _content->numWaitFor = number;
}

UInt32 Barrier::getNumWaiting()
{
    std::lock_guard<std::mutex> lock(_content->mutex);
    return _content->waiting;
}

Lock::Lock() : _content(new Content) {}

Lock::~Lock()
{
    delete _content;
}

Lock *Lock::get(const Char8 *name)
{
    ThreadManager::Content &content = *ThreadManager::the()->_content;
    std::lock_guard<std::mutex> lock(content.mutex);
    Lock *&found = content.locks[name != nullptr ? name : ""];
    if(found == nullptr)
        found = new Lock;
    return found;
}

void Lock::acquire()
{
    _content->mutex.lock();
}

void Lock::release()
{
    _content->mutex.unlock();
}

bool Lock::request()
{
    return _content->mutex.try_lock();
}

OSG_END_NAMESPACE
