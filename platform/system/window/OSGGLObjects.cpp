/// \file
/// The process-wide registry of GL objects.

#include "OSGGLObjects.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>

#include "OSGThread.h"

OSG_BEGIN_NAMESPACE

/// All registered objects. Every operation takes the lock; functors are called without it, so they may use GL
/// objects.
struct GLObjectRegistry
{
    struct Object
    {
        GLObjectFunctor functor;
        GLObjectDestroyF destroyer = nullptr;
        UInt64 refreshed = 0;
        UInt64 reinitialized = 0;
        bool ended = false;
        std::vector<GLObjectTable *> tables; ///< the windows that have it
    };

    static constexpr UInt32 StatusShift = 3;
    /// A free id rests until that many others are free, so that late calls for its former object meet
    /// nothing.
    static constexpr std::size_t RestingIds = 1024;

    // Never destroyed: containers that outlive main's statics still end their objects.
    static GLObjectRegistry &the()
    {
        static GLObjectRegistry *const registry = new GLObjectRegistry;
        return *registry;
    }

    std::shared_ptr<Object> find(UInt32 id) const { return id < objects.size() ? objects[id] : nullptr; }

    void remove(UInt32 id)
    {
        objects[id].reset();
        freeIds.push_back(id);
        --registered;
    }

    static void call(const Object &object, Window *win, UInt32 id, GLObjectStatus status)
    {
        const UInt32 idstatus = (id << StatusShift) | UInt32(status);
        if(object.destroyer != nullptr && (status == GLObjectDestroy || status == GLObjectFinalDestroy))
            object.destroyer(win, idstatus);
        else if(object.functor)
            object.functor(win, idstatus);
    }

    std::mutex mutex;
    std::vector<std::shared_ptr<Object>> objects =
        std::vector<std::shared_ptr<Object>>(1); ///< by id; 0 is none
    std::deque<UInt32> freeIds;
    std::size_t registered = 0;
    UInt64 event = 1;
};

GLObjectTable::~GLObjectTable()
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for(UInt32 id = 1; id < _objects.size(); ++id)
    {
        if(_objects[id].validated == 0)
            continue;
        const auto object = registry.find(id);
        if(object == nullptr)
            continue;
        auto &tables = object->tables;
        tables.erase(std::remove(tables.begin(), tables.end(), this), tables.end());
        if(object->ended && tables.empty())
            registry.remove(id);
    }
}

UInt32 GLObjectTable::registerObject(const GLObjectFunctor &functor, UInt32 num, GLObjectDestroyF destroyer)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);

    num = std::max(num, 1u);
    UInt32 first = 0;
    if(num == 1 && registry.freeIds.size() > GLObjectRegistry::RestingIds)
    {
        first = registry.freeIds.front();
        registry.freeIds.pop_front();
    }
    else
    {
        first = UInt32(registry.objects.size());
        registry.objects.resize(registry.objects.size() + num);
    }
    for(UInt32 i = 0; i < num; ++i)
    {
        auto object = std::make_shared<GLObjectRegistry::Object>();
        object->functor = functor;
        object->destroyer = destroyer;
        registry.objects[first + i] = object;
    }
    registry.registered += num;
    return first;
}

void GLObjectTable::refresh(UInt32 id, UInt32 num)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    ++registry.event;
    for(UInt32 i = 0; i < num; ++i)
    {
        if(const auto object = registry.find(id + i))
            object->refreshed = registry.event;
    }
}

void GLObjectTable::reinitialize(UInt32 id, UInt32 num)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    ++registry.event;
    for(UInt32 i = 0; i < num; ++i)
    {
        if(const auto object = registry.find(id + i))
            object->reinitialized = registry.event;
    }
}

void GLObjectTable::destroy(UInt32 id, UInt32 num)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for(UInt32 i = 0; i < num; ++i)
    {
        const auto object = registry.find(id + i);
        if(object == nullptr || object->ended)
            continue;
        object->ended = true;
        for(GLObjectTable *table : object->tables)
            table->_ended.push_back(id + i);
        if(object->tables.empty())
            registry.remove(id + i);
    }
}

std::size_t GLObjectTable::getNumRegistered()
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    return registry.registered;
}

bool GLObjectTable::validate(Window *win, UInt32 id)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    std::shared_ptr<GLObjectRegistry::Object> object;
    GLObjectStatus status = GLObjectInitialized;
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        if(id >= registry.objects.size() || registry.objects[id] == nullptr || registry.objects[id]->ended)
            return false;
        GLObjectRegistry::Object &found = *registry.objects[id];
        Entry &mine = entry(id);
        if(mine.validated == 0)
        {
            status = GLObjectInitialize;
            found.tables.push_back(this);
        }
        else if(mine.validated < found.reinitialized || mine.aspect != Thread::getAspect())
            status = GLObjectReinitialize;
        else if(mine.validated < found.refreshed)
            status = GLObjectNeedRefresh;
        else
            return true;
        // Set ahead of the call: what changes during it asks for another.
        mine.validated = registry.event;
        mine.aspect = Thread::getAspect();
        object = registry.objects[id];
    }
    GLObjectRegistry::call(*object, win, id, status);
    return true;
}

void GLObjectTable::destroyEnded(Window *win)
{
    GLObjectRegistry &registry = GLObjectRegistry::the();
    std::vector<UInt32> ended;
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        if(_ended.empty())
            return;
        ended.swap(_ended);
    }
    for(const UInt32 id : ended)
    {
        std::shared_ptr<GLObjectRegistry::Object> object;
        bool last = false;
        {
            const std::lock_guard<std::mutex> lock(registry.mutex);
            object = registry.find(id);
            if(object == nullptr)
                continue;
            auto &tables = object->tables;
            tables.erase(std::remove(tables.begin(), tables.end(), this), tables.end());
            last = tables.empty();
        }
        GLObjectRegistry::call(*object, win, id, GLObjectDestroy);
        if(last)
            GLObjectRegistry::call(*object, win, id, GLObjectFinalDestroy);
        entry(id) = Entry();
        if(last)
        {
            const std::lock_guard<std::mutex> lock(registry.mutex);
            registry.remove(id);
        }
    }
}

void GLObjectTable::destroyAll(Window *win)
{
    destroyEnded(win);
    GLObjectRegistry &registry = GLObjectRegistry::the();
    for(UInt32 id = 1; id < _objects.size(); ++id)
    {
        if(_objects[id].validated == 0)
            continue;
        std::shared_ptr<GLObjectRegistry::Object> object;
        {
            const std::lock_guard<std::mutex> lock(registry.mutex);
            object = registry.find(id);
            if(object == nullptr || object->ended)
                continue;
            auto &tables = object->tables;
            tables.erase(std::remove(tables.begin(), tables.end(), this), tables.end());
        }
        // The owner lives, so its functor is told: it may keep things for each window.
        if(object->functor)
            object->functor(win, (id << GLObjectRegistry::StatusShift) | UInt32(GLObjectDestroy));
        _objects[id] = Entry();
    }
}

bool GLObjectTable::isEmpty() const
{
    return std::all_of(_objects.begin(), _objects.end(),
                       [](const Entry &mine) { return mine.validated == 0; });
}

void GLObjectTable::setName(UInt32 id, UInt32 name)
{
    entry(id).name = name;
}

GLObjectTable::Entry &GLObjectTable::entry(UInt32 id)
{
    if(id >= _objects.size())
        _objects.resize(id + 1);
    return _objects[id];
}

OSG_END_NAMESPACE
