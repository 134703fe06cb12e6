#ifndef _OSGTESTDECORATOR_H_
#define _OSGTESTDECORATOR_H_

/// \file
/// A decorator that changes nothing.

#include <OpenSG/OSGTestDecoratorBase.h>

OSG_BEGIN_NAMESPACE

class TestDecorator : public TestDecoratorBase
{
  public:
    typedef TestDecoratorBase Inherited;

  protected:
    TestDecorator() = default;
    TestDecorator(const TestDecorator &source) : Inherited(source) {}
    ~TestDecorator() override = default;

  private:
    friend class FieldContainer;
    friend class TestDecoratorBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
