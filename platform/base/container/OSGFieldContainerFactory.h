#ifndef _OSGFIELDCONTAINERFACTORY_H_
#define _OSGFIELDCONTAINERFACTORY_H_

/// \file
/// All container classes by name, and all living containers by id.

#include <string>
#include <vector>

#include "OSGFieldContainerPtr.h"

OSG_BEGIN_NAMESPACE

class FieldContainerType;

/// Knows the container classes of all libraries that are loaded, makes containers by the name of their class, and finds
/// living ones by id. Thread-safe.
class OSG_BASELIB_DLLMAPPING FieldContainerFactory
{
  public:
    /// The only one.
    static FieldContainerFactory *the();

    /// Initialises all classes that are known; called by osgInit. Classes of libraries that are loaded later are
    /// initialised when a class is next looked up.
    bool initialize();
    /// Lets the prototypes go; called by osgExit.
    bool terminate();
    /// Whether initialize has run and terminate has not.
    bool isInitialized() const;

    /// The type of that name or id; null where there is none.
    FieldContainerType *findType(const Char8 *name);
    FieldContainerType *findType(UInt32 typeId);
    /// Types.
    UInt32 getNumTypes() const;
    /// All classes, initialised, in the order of their ids.
    std::vector<FieldContainerType *> getTypes();

    /// A new container of that class, or NullFC where there is none of that name or it is abstract.
    FieldContainerPtr createFieldContainer(const Char8 *name);

    /// Enters a container and returns its id, which is never 0 and not used again while the container lives.
    UInt32 registerFieldContainer(const FieldContainerPtr &container);
    /// Lets the id go.
    void unregisterFieldContainer(UInt32 containerId);
    /// The container of that id, or NullFC.
    FieldContainerPtr getContainer(UInt32 containerId) const;
    /// Containers that live.
    UInt32 getNumContainers() const;

    /// Initialises what has been loaded since the last call, if the factory is initialised at all.
    void initializeNewTypes();

    /// Ends a container that has no reference: it is no longer found, and its onDestroy runs on the calling thread's
    /// aspect. Returns it for freeMemory, or NullFC if there is none of that id or it is referenced.
    FieldContainerPtr endUnreferenced(UInt32 containerId);
    /// Destroys the copies of all aspects of a container that has ended and gives the memory back. Nothing for NullFC.
    static void freeMemory(const FieldContainerPtr &container);

  private:
    friend class FieldContainerType;
    struct Content;

    FieldContainerFactory();

    /// Takes a container without a reference off the list of the living, for the caller to end it.
    FieldContainerPtr takeUnreferenced(UInt32 containerId);

    void addType(FieldContainerType *type);
    void removeType(FieldContainerType *type);
    UInt16 groupId(const std::string &name);

    Content *_content;
};

OSG_END_NAMESPACE

#endif
