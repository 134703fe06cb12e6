#ifndef _OSGTESTTHING_H_
#define _OSGTESTTHING_H_

/// \file
/// A container that counts what happens to it.

#include <vector>

#include <OpenSG/OSGTestThingBase.h>

OSG_BEGIN_NAMESPACE

class TestThing : public TestThingBase
{
  public:
    typedef TestThingBase Inherited;

    struct Change
    {
        BitVector whichField;
        UInt32 origin;
    };

    static int alive;      ///< copies, of all aspects
    static int created;    ///< calls of onCreate
    static int destroyed;  ///< calls of onDestroy
    static int initialised; ///< calls of initMethod

    std::vector<Change> changes; ///< of this copy
    TestThingPtr markAtEnd;      ///< gets the number 99 when this ends

    void changed(BitVector whichField, UInt32 origin) override
    {
        changes.push_back({whichField, origin});
        Inherited::changed(whichField, origin);
    }

    void setNeighbour(const TestThingPtr &value)
    {
        addRefCP(value);
        subRefCP(getNeighbour());
        Inherited::setNeighbour(value);
    }

  protected:
    TestThing() { ++alive; }
    TestThing(const TestThing &source) : Inherited(source) { ++alive; }
    ~TestThing() override { --alive; }

    void onCreate(const TestThing *) { ++created; }
    void onDestroy() override
    {
        ++destroyed;
        subRefCP(getNeighbour());
        if(markAtEnd != NullFC)
        {
            markAtEnd->setNumber(99);
            endEditCP(markAtEnd, NumberFieldMask);
        }
    }

  private:
    friend class FieldContainer;
    friend class TestThingBase;

    static void initMethod() { ++initialised; }
};

OSG_END_NAMESPACE

#endif
