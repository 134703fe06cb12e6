#include "OSGStatCollector.h"

#include <cstdio>
#include <mutex>

#include "OSGTime.h"

OSG_BEGIN_NAMESPACE

namespace
{

struct Descriptions
{
    std::mutex mutex;
    std::vector<StatElemDescBase *> all;
};

Descriptions &descriptions()
{
    static Descriptions *const known = new Descriptions;
    return *known;
}

std::string realText(Real64 value)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%.6g", value);
    return text;
}

} // namespace

StatElemDescBase::StatElemDescBase(const Char8 *name, const Char8 *description)
    : _name(name), _description(description), _id(0)
{
    Descriptions &known = descriptions();
    std::lock_guard<std::mutex> lock(known.mutex);
    _id = UInt32(known.all.size());
    known.all.push_back(this);
}

StatElemDescBase::~StatElemDescBase()
{
    Descriptions &known = descriptions();
    std::lock_guard<std::mutex> lock(known.mutex);
    known.all[_id] = nullptr;
}

StatElemDescBase *StatElemDescBase::findDescByName(const Char8 *name)
{
    Descriptions &known = descriptions();
    std::lock_guard<std::mutex> lock(known.mutex);
    for(StatElemDescBase *desc : known.all)
        if(desc != nullptr && desc->getName() == name)
            return desc;
    return nullptr;
}

StatElem::~StatElem() = default;

void StatIntElem::putToString(std::string &out) const
{
    out += std::to_string(_value);
}

void StatRealElem::putToString(std::string &out) const
{
    out += realText(_value);
}

void StatTimeElem::start()
{
    _start = getSystemTime();
}

void StatTimeElem::stop()
{
    if(getOn())
        _time += getSystemTime() - _start;
}

void StatTimeElem::reset()
{
    _time = 0;
}

void StatTimeElem::putToString(std::string &out) const
{
    out += realText(_time);
}

StatCollector *StatCollector::create()
{
    return new StatCollector;
}

StatCollector::StatCollector() = default;

StatCollector::~StatCollector() = default;

StatElem *StatCollector::getElem(const StatElemDescBase &desc, bool create)
{
    if(_elems.size() <= desc.getID())
    {
        if(!create)
            return nullptr;
        _elems.resize(desc.getID() + 1);
    }
    std::unique_ptr<StatElem> &elem = _elems[desc.getID()];
    if(elem == nullptr && create)
        elem = desc.createElem();
    return elem.get();
}

StatElem *StatCollector::getElem(UInt32 id) const
{
    return id < _elems.size() ? _elems[id].get() : nullptr;
}

void StatCollector::reset()
{
    for(const auto &elem : _elems)
        if(elem != nullptr)
            elem->reset();
}

bool StatCollector::getValue(const std::string &name, Real64 &value) const
{
    for(const auto &elem : _elems)
    {
        if(elem != nullptr && elem->getDesc()->getName() == name)
        {
            value = elem->getValue();
            return true;
        }
    }
    return false;
}

void StatCollector::putToString(std::string &out) const
{
    for(const auto &elem : _elems)
    {
        if(elem == nullptr)
            continue;
        if(!out.empty())
            out += "|";
        out += elem->getDesc()->getName() + "=";
        elem->putToString(out);
    }
}

OSG_END_NAMESPACE
