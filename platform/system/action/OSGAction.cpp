#include "OSGAction.h"

#include "OSGLog.h"
#include "OSGNode.h"

OSG_BEGIN_NAMESPACE

Action::Action() = default;

Action::Action(const Action &source) : _travMask(source._travMask), _enter(source._enter), _leave(source._leave) {}

Action::~Action() = default;

void Action::store(FunctorStore &functors, const FieldContainerType &type, const Functor &functor)
{
    if(functors.size() <= type.getId())
        functors.resize(type.getId() + 1);
    functors[type.getId()] = functor;
}

void Action::registerEnterFunction(const FieldContainerType &type, const Functor &functor)
{
    store(_enter, type, functor);
}

void Action::registerLeaveFunction(const FieldContainerType &type, const Functor &functor)
{
    store(_leave, type, functor);
}

FieldContainerPtr Action::getActParent() const
{
    return _actNode == NullFC ? NodePtr() : _actNode->getParent();
}

Action::ResultE Action::start()
{
    return Continue;
}

Action::ResultE Action::stop(ResultE result)
{
    return result;
}

bool Action::mayVisit(const NodePtr &node)
{
    return (node->getTravMask() & _travMask) != 0;
}

Action::ResultE Action::apply(const NodePtr &root)
{
    if(root == NullFC)
    {
        SWARNING << "Action::apply: there is no node to start from" << std::endl;
        return Continue;
    }
    return apply(std::vector<NodePtr>(1, root));
}

Action::ResultE Action::apply(const std::vector<NodePtr> &roots)
{
    // An action may be applied again from within a functor; what it was doing goes on afterwards.
    const NodePtr actNode = _actNode;
    const Level level = _level;

    ResultE result = start();
    if(result == Continue)
    {
        for(const NodePtr &root : roots)
        {
            if(root == NullFC)
                continue;
            result = recurse(root);
            if(result == Quit)
                break;
        }
    }
    result = stop(result);

    _actNode = actNode;
    _level = level;
    return result == Quit ? Quit : Continue;
}

Action::ResultE Action::recurse(const NodePtr &node)
{
    // A node without a core has nothing to say and is left out with all that is below it.
    if(node == NullFC || node->getCore() == NullFC || !mayVisit(node))
        return Continue;

    const Level outer = _level;
    _level = {false, _lists.size()};
    _actNode = node;

    ResultE result = callEnter(node);
    if(result == Continue)
    {
        if(_level.useList)
        {
            const Level mine = _level;
            for(std::size_t i = mine.first; i < _lists.size() && result == Continue; ++i)
            {
                const NodePtr child = _lists[i];
                const std::size_t size = _lists.size();
                result = recurse(child);
                _lists.resize(size);
            }
            _level = mine;
        }
        else
        {
            for(UInt32 i = 0; i < node->getNChildren() && result == Continue; ++i)
                result = recurse(node->getChild(i));
        }
        if(result == Break)
            result = Continue;
    }
    const bool quit = result == Quit;
    const bool broken = result == Break;
    _lists.resize(_level.first);
    _level.useList = false;
    _actNode = node;

    const ResultE left = callLeave(node);
    _lists.resize(_level.first);
    _level = outer;
    if(quit || left == Quit)
        return Quit;
    return broken ? Break : left == Skip ? Continue : left;
}

Action::ResultE Action::call(const NodePtr &node, const FunctorStore &own, const FunctorStore *defaults)
{
    NodeCore *const core = node->getCore().getCPtr();
    const UInt32 type = core->getTypeId();
    if(type < own.size() && own[type])
        return own[type](core, this);
    if(defaults != nullptr && type < defaults->size() && (*defaults)[type])
        return (*defaults)[type](core, this);
    return Continue;
}

Action::ResultE Action::callEnter(const NodePtr &node)
{
    if(node == NullFC || node->getCore() == NullFC)
        return Continue;
    return call(node, _enter, getDefaultEnterFunctors());
}

Action::ResultE Action::callLeave(const NodePtr &node)
{
    if(node == NullFC || node->getCore() == NullFC)
        return Continue;
    return call(node, _leave, getDefaultLeaveFunctors());
}

UInt32 Action::getNNodes() const
{
    if(_level.useList)
        return UInt32(_lists.size() - _level.first);
    return _actNode == NullFC ? 0 : _actNode->getNChildren();
}

NodePtr Action::getNode(UInt32 index) const
{
    if(_level.useList)
        return _lists[_level.first + index];
    return _actNode->getChild(index);
}

void Action::addNode(const NodePtr &node)
{
    _level.useList = true;
    _lists.push_back(node);
}

void Action::useNodeList(bool use)
{
    _level.useList = use;
    _lists.resize(_level.first);
}

Action::ResultE traverse(const NodePtr &root, const std::function<Action::ResultE(NodePtr &)> &enter)
{
    if(root == NullFC)
        return Action::Continue;
    NodePtr node = root;
    Action::ResultE result = enter(node);
    if(result == Action::Continue)
    {
        for(UInt32 i = 0; i < root->getNChildren() && result == Action::Continue; ++i)
            result = traverse(root->getChild(i), enter);
        return result == Action::Break ? Action::Continue : result;
    }
    return result == Action::Skip ? Action::Continue : result;
}

OSG_END_NAMESPACE
