#ifndef _OSGTESTFOREGROUND_H_
#define _OSGTESTFOREGROUND_H_

/// \file
/// A foreground that does what a test says.

#include <functional>

#include <OpenSG/OSGTestForegroundBase.h>

OSG_BEGIN_NAMESPACE

class TestForeground : public TestForegroundBase
{
  public:
    typedef TestForegroundBase Inherited;

    /// Called by each draw, also of one that is not active; of this aspect's copy.
    std::function<void(DrawActionBase *, Viewport *)> onDraw;
    int draws = 0;

    void draw(DrawActionBase *action, Viewport *port) override
    {
        ++draws;
        if(onDraw)
            onDraw(action, port);
    }

  protected:
    TestForeground() = default;
    TestForeground(const TestForeground &source) : Inherited(source) {}
    ~TestForeground() override = default;

  private:
    friend class FieldContainer;
    friend class TestForegroundBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
