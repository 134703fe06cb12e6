#include "OSGNode.h"

#include "OSGAttachment.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Node::initMethod() {}

Node::Node() = default;

Node::Node(const Node &source) : Inherited(source)
{
    _sfVolume.setValue(DynamicVolume());
    _sfParent.setValue(NullFC);
    _mfChildren.clear();
    _sfCore.setValue(NullFC);
}

Node::~Node() = default;

void Node::onDestroy()
{
    const NodeCorePtr core = getCore();
    _sfCore.setValue(NullFC);
    if(core != NullFC)
    {
        core->subParent(thisNode());
        subRefCP(core);
    }
    MFNodePtr children;
    children.swap(_mfChildren);
    for(const NodePtr &child : children)
    {
        setParentOf(child, NullFC);
        subRefCP(child);
    }
    Inherited::onDestroy();
}

void Node::setCore(const NodeCorePtr &core)
{
    const NodeCorePtr old = getCore();
    if(old == core)
        return;
    addRefCP(core);
    _sfCore.setValue(core);
    if(core != NullFC)
        core->addParent(thisNode());
    if(old != NullFC)
    {
        old->subParent(thisNode());
        subRefCP(old);
    }
    invalidateVolume();
}

Int32 Node::findChild(const NodePtr &child) const
{
    const auto found = _mfChildren.find(child);
    return found == _mfChildren.end() ? -1 : Int32(found - _mfChildren.begin());
}

bool Node::mayTake(const NodePtr &child) const
{
    if(child == NullFC)
    {
        SWARNING << "Node: NullFC can't become a child" << std::endl;
        return false;
    }
    for(NodePtr node = thisNode(); node != NullFC; node = node->getParent())
    {
        if(node == child)
        {
            SWARNING << "Node: a node can't become a child of itself or of what is below it" << std::endl;
            return false;
        }
    }
    return true;
}

void Node::setParentOf(const NodePtr &child, const NodePtr &parent)
{
    child->_sfParent.setValue(parent);
    endEditCP(child, ParentFieldMask);
}

void Node::insertChild(UInt32 index, const NodePtr &child)
{
    if(!mayTake(child))
        return;
    // Referenced first: its old parent may hold the last one.
    addRefCP(child);
    const NodePtr oldParent = child->getParent();
    if(oldParent != NullFC)
    {
        const Int32 oldIndex = oldParent->findChild(child);
        oldParent->subChild(child);
        if(oldParent == thisNode())
        {
            if(oldIndex >= 0 && UInt32(oldIndex) < index)
                --index;
        }
        else
        {
            endEditCP(oldParent, ChildrenFieldMask);
        }
    }
    if(index > _mfChildren.size())
        index = _mfChildren.size();
    _mfChildren.insert(_mfChildren.begin() + index, child);
    setParentOf(child, thisNode());
    invalidateVolume();
}

void Node::addChild(const NodePtr &child)
{
    insertChild(_mfChildren.size(), child);
}

void Node::replaceChild(UInt32 index, const NodePtr &child)
{
    if(index >= _mfChildren.size())
    {
        SWARNING << "Node: there is no child " << index << " to replace" << std::endl;
        return;
    }
    const NodePtr old = _mfChildren[index];
    if(old == child || !mayTake(child))
        return;
    insertChild(index, child);
    subChild(old);
}

bool Node::replaceChildBy(const NodePtr &child, const NodePtr &replacement)
{
    const Int32 index = findChild(child);
    if(index < 0)
        return false;
    replaceChild(UInt32(index), replacement);
    return true;
}

void Node::subChild(UInt32 index)
{
    if(index >= _mfChildren.size())
    {
        SWARNING << "Node: there is no child " << index << " to remove" << std::endl;
        return;
    }
    const NodePtr child = _mfChildren[index];
    _mfChildren.erase(_mfChildren.begin() + index);
    setParentOf(child, NullFC);
    subRefCP(child);
    invalidateVolume();
}

void Node::subChild(const NodePtr &child)
{
    const Int32 index = findChild(child);
    if(index < 0)
    {
        SWARNING << "Node: the node to remove is no child" << std::endl;
        return;
    }
    subChild(UInt32(index));
}

void Node::moveChildrenFrom(const NodePtr &other)
{
    if(other == NullFC || other == thisNode())
        return;
    while(other->getNChildren() != 0)
    {
        const UInt32 before = other->getNChildren();
        addChild(other->getChild(0));
        // An ancestor among them stays where it is.
        if(other->getNChildren() == before)
            return;
    }
}

void Node::getToWorld(Matrix &result)
{
    if(getParent() != NullFC)
        getParent()->getToWorld(result);
    else
        result.setIdentity();
    if(getCore() != NullFC)
        getCore()->accumulateMatrix(result);
}

Matrix Node::getToWorld()
{
    Matrix result;
    getToWorld(result);
    return result;
}

DynamicVolume &Node::getVolume(bool update)
{
    if(update)
        updateVolume();
    return _sfVolume.getValue();
}

void Node::getWorldVolume(DynamicVolume &result)
{
    updateVolume();
    result = _sfVolume.getValue();
    if(getParent() != NullFC)
        result.transform(getParent()->getToWorld());
}

void Node::updateVolume()
{
    DynamicVolume &volume = _sfVolume.getValue();
    if(volume.isValid() || volume.isStatic())
        return;
    volume.setValid(true);
    volume.setEmpty(true);
    for(const NodePtr &child : _mfChildren)
    {
        child->updateVolume();
        volume.extendBy(child->_sfVolume.getValue());
    }
    if(getCore() != NullFC)
        getCore()->adjustVolume(volume);
}

void Node::invalidateVolume()
{
    DynamicVolume &volume = _sfVolume.getValue();
    if(!volume.isValid() || volume.isStatic())
        return;
    volume.setValid(false);
    if(getParent() != NullFC)
        getParent()->invalidateVolume();
}

void Node::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & (CoreFieldMask | ChildrenFieldMask)) != 0)
        invalidateVolume();
    Inherited::changed(whichField, origin);
}

void Node::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Node NI" << std::endl;
}

NodePtr makeNodeFor(const NodeCorePtr &core)
{
    const NodePtr node = Node::create();
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(core);
    endEditCP(node, Node::CoreFieldMask);
    return node;
}

NodePtr cloneTree(const NodePtr &root)
{
    if(root == NullFC)
        return NullFC;
    const NodePtr clone = Node::create();
    beginEditCP(clone);
    clone->setTravMask(root->getTravMask());
    for(const auto &entry : root->getAttachments())
        clone->addAttachment(entry.second, UInt16(entry.first & 0xFFFF));
    clone->setCore(root->getCore());
    for(UInt32 i = 0; i < root->getNChildren(); ++i)
        clone->addChild(cloneTree(root->getChild(i)));
    endEditCP(clone, Node::TravMaskFieldMask | Node::AttachmentsFieldMask | Node::CoreFieldMask |
                         Node::ChildrenFieldMask);
    return clone;
}

OSG_END_NAMESPACE
