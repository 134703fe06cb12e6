#ifndef _OSGSTATCOLLECTOR_H_
#define _OSGSTATCOLLECTOR_H_

/// \file
/// Counters and timers of what a frame does.

#include <memory>
#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

class StatElem;

/// The record of a kind of element. Made by static initialisers; the id is unique in the process.
class OSG_SYSTEMLIB_DLLMAPPING StatElemDescBase
{
  public:
    /// Enters the description in the list of all.
    StatElemDescBase(const Char8 *name, const Char8 *description);
    virtual ~StatElemDescBase();

    /// What it was made with, and its place in the list of all.
    UInt32 getID() const { return _id; }
    const std::string &getName() const { return _name; }
    const std::string &getDescription() const { return _description; }
    /// A new element of this description.
    virtual std::unique_ptr<StatElem> createElem() const = 0;

    /// The record of that name, or null.
    static StatElemDescBase *findDescByName(const Char8 *name);

  private:
    std::string _name;
    std::string _description;
    UInt32 _id;
};

/// One value that is collected.
class OSG_SYSTEMLIB_DLLMAPPING StatElem
{
  public:
    /// Made by the description.
    explicit StatElem(const StatElemDescBase *desc) : _desc(desc) {}
    virtual ~StatElem();

    /// The description, and whether the element counts.
    const StatElemDescBase *getDesc() const { return _desc; }
    /// Whether the element counts.
    bool getOn() const { return _on; }
    void setOn(bool on) { _on = on; }

    /// Back to the beginning.
    virtual void reset() = 0;
    /// The number.
    virtual Real64 getValue() const = 0;
    /// As text, appended.
    virtual void putToString(std::string &out) const = 0;

  private:
    const StatElemDescBase *_desc;
    bool _on = true;
};

/// The description of elements of class T.
template <class T>
class StatElemDesc : public StatElemDescBase
{
  public:
    /// Both texts are kept.
    StatElemDesc(const Char8 *name, const Char8 *description) : StatElemDescBase(name, description) {}
    std::unique_ptr<StatElem> createElem() const override { return std::unique_ptr<StatElem>(new T(this)); }
};

/// A counter.
class OSG_SYSTEMLIB_DLLMAPPING StatIntElem : public StatElem
{
  public:
    /// As the parent.
    using StatElem::StatElem;

    /// Read or written; add and its like do nothing while the element is off.
    void set(Int32 value) { _value = value; }
    Int32 get() const { return _value; }
    void inc() { add(1); }
    void dec() { add(-1); }
    void add(Int32 value)
    {
        if(getOn())
            _value += value;
    }

    /// As StatElem has it.
    void reset() override { _value = 0; }
    Real64 getValue() const override { return _value; }
    void putToString(std::string &out) const override;

  private:
    Int32 _value = 0;
};

/// A sum of real numbers.
class OSG_SYSTEMLIB_DLLMAPPING StatRealElem : public StatElem
{
  public:
    /// As the parent.
    using StatElem::StatElem;

    /// Read or written; add does nothing while the element is off.
    void set(Real64 value) { _value = value; }
    Real64 get() const { return _value; }
    void add(Real64 value)
    {
        if(getOn())
            _value += value;
    }

    /// As StatElem has it.
    void reset() override { _value = 0; }
    Real64 getValue() const override { return _value; }
    void putToString(std::string &out) const override;

  private:
    Real64 _value = 0;
};

/// Time between start and stop, in seconds.
class OSG_SYSTEMLIB_DLLMAPPING StatTimeElem : public StatElem
{
  public:
    /// As the parent.
    using StatElem::StatElem;

    /// Measures from start to stop.
    void start();
    void stop();
    /// The time that was measured last, in seconds.
    Time getTime() const { return _time; }

    /// As StatElem has it.
    void reset() override;
    Real64 getValue() const override { return _time; }
    void putToString(std::string &out) const override;

  private:
    Time _start = 0;
    Time _time = 0;
};

/// A set of elements, made when they are first asked for.
class OSG_SYSTEMLIB_DLLMAPPING StatCollector
{
  public:
    /// The caller owns it and deletes it.
    static StatCollector *create();

    StatCollector();
    ~StatCollector();
    StatCollector(const StatCollector &) = delete;
    StatCollector &operator=(const StatCollector &) = delete;

    /// The element of that kind; null if there is none and `create` is false.
    StatElem *getElem(const StatElemDescBase &desc, bool create = true);
    template <class T>
    T *getElem(const StatElemDesc<T> &desc, bool create = true)
    {
        return static_cast<T *>(getElem(static_cast<const StatElemDescBase &>(desc), create));
    }
    /// The element of that id of a kind; null if there is none.
    StatElem *getElem(UInt32 id) const;
    /// How many ids the collector has room for.
    UInt32 getNumOfElems() const { return UInt32(_elems.size()); }

    /// Resets all elements.
    void reset();
    /// The value of the element of that name; false if there is none.
    bool getValue(const std::string &name, Real64 &value) const;
    /// All elements as text, appended.
    void putToString(std::string &out) const;

  private:
    std::vector<std::unique_ptr<StatElem>> _elems;
};

OSG_END_NAMESPACE

#endif
