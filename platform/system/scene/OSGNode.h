#ifndef _OSGNODE_H_
#define _OSGNODE_H_

/// \file
/// The places of the scene graph.

#include "OSGNodeBase.h"
#include "OSGNodeCore.h"

OSG_BEGIN_NAMESPACE

/// A node has one parent at most, any number of children, and a core. All operations edit the calling thread's aspect;
/// brackets around them (beginEditCP, endEditCP with ChildrenFieldMask or CoreFieldMask) are the caller's, but what they
/// change in other containers they bracket themselves.
class OSG_SYSTEMLIB_DLLMAPPING Node : public NodeBase
{
  public:
    typedef NodeBase Inherited;

    /// The parent; NullFC at the root.
    NodePtr getParent() const { return _sfParent.getValue(); }
    SFNodePtr *getSFParent() { return &_sfParent; }

    /// The core; NullFC without one.
    NodeCorePtr getCore() const { return _sfCore.getValue(); }
    SFNodeCorePtr *getSFCore() { return &_sfCore; }
    /// Takes a reference on the core, and gives back that on the old one, which may end it. Null is allowed.
    void setCore(const NodeCorePtr &core);

    /// Children.
    UInt32 getNChildren() const { return _mfChildren.size(); }
    /// No check of the index.
    NodePtr getChild(UInt32 index) const { return _mfChildren[index]; }
    /// The children in their order.
    const MFNodePtr &getChildren() const { return _mfChildren; }
    MFNodePtr *getMFChildren() { return &_mfChildren; }
    /// The index of `child`, or -1.
    Int32 findChild(const NodePtr &child) const;

    /// Appends `child`, which leaves the parent that it had. Null, this node and its ancestors are refused with a
    /// warning.
    void addChild(const NodePtr &child);
    /// The same, ahead of the child of that index; an index beyond the end appends.
    void insertChild(UInt32 index, const NodePtr &child);
    /// Puts `child` in the place of the child of that index.
    void replaceChild(UInt32 index, const NodePtr &child);
    /// False if `child` is none.
    bool replaceChildBy(const NodePtr &child, const NodePtr &replacement);
    /// Lets a child go, which may end it. A warning if there is no such child.
    void subChild(const NodePtr &child);
    void subChild(UInt32 index);
    /// Makes all children of `other` the last children of this node, in their order.
    void moveChildrenFrom(const NodePtr &other);

    /// The product of all transformations from the root down to and including this node.
    void getToWorld(Matrix &result);
    Matrix getToWorld();

    /// What encloses the node, in its parent's coordinates; up to date if `update`.
    DynamicVolume &getVolume(bool update = false);
    DynamicVolume &editVolume(bool update = false) { return getVolume(update); }
    SFDynamicVolume *getSFVolume() { return &_sfVolume; }
    /// What encloses the node, in the coordinates of the world. Up to date.
    void getWorldVolume(DynamicVolume &result);
    /// Computes the volumes of this node and of all below it that are not valid. Static volumes stay.
    void updateVolume();
    /// Marks the volumes of this node and of all above it as out of date.
    void invalidateVolume();

    /// Whether actions visit the node: a mask of all bits or none.
    bool getActive() const { return getTravMask() != 0; }
    void setActive(bool active) { setTravMask(active ? 0xFFFFFFFFu : 0u); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Node();
    /// A copy has neither parent nor children nor core.
    Node(const Node &source);
    ~Node() override;

    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class NodeBase;

    static void initMethod();

    NodePtr thisNode() const { return NodePtr(*this); }
    bool mayTake(const NodePtr &child) const;
    void setParentOf(const NodePtr &child, const NodePtr &parent);

    using Inherited::setCore;
};

/// A new node with that core.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeNodeFor(const NodeCorePtr &core);

/// A new node with a new core of class Core, which is also returned in `core`.
template <class Core>
inline NodePtr makeCoredNode(typename Core::Ptr *core = nullptr)
{
    const typename Core::Ptr made = Core::create();
    if(core != nullptr)
        *core = made;
    return makeNodeFor(made);
}

/// New nodes, in the same tree, that share the cores of the old ones. Attachments are shared too.
OSG_SYSTEMLIB_DLLMAPPING NodePtr cloneTree(const NodePtr &root);

OSG_END_NAMESPACE

#endif
