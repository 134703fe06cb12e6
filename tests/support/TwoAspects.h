#ifndef TESTS_SUPPORT_TWOASPECTS_H
#define TESTS_SUPPORT_TWOASPECTS_H

/// \file
/// A window that one thread draws on an aspect of its own, while the test's thread edits the scene.

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGThread.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace test
{

/// What happens frame by frame.
struct TwoAspects
{
    osg::EGLWindowPtr window;
    int frames = 0;
    std::function<void(int)> edit; ///< on the test's thread, while the drawing thread draws the frame before
    std::function<void(int)> look; ///< on the drawing thread, behind the frame
    bool takesBack = false;        ///< whether what drawing changed comes back to the test's thread

    /// Comes back when all frames are drawn. The name is of the thread and the barrier, one per test.
    void run(const std::string &name)
    {
        _barrier = osg::Barrier::get(name.c_str());
        osg::Thread *const drawer = osg::Thread::get(name.c_str());
        ASSERT_TRUE(drawer->runFunction(&TwoAspects::draw, 1, this));
        for(int frame = 0; frame < frames; ++frame)
        {
            edit(frame);
            _barrier->enter(2);
            if(takesBack && frame > 0)
                drawer->getChangeList()->applyToCurrent();
            _barrier->enter(2);
            _barrier->enter(2);
            osg::Thread::getCurrentChangeList()->clearAll();
        }
        osg::Thread::join(drawer);
    }

  private:
    static void draw(void *argument)
    {
        TwoAspects &self = *static_cast<TwoAspects *>(argument);
        std::unique_ptr<osg::RenderAction> action;
        for(int frame = 0; frame < self.frames; ++frame)
        {
            self._barrier->enter(2);
            self._barrier->enter(2);
            osg::Thread::getCurrentChangeList()->clearAll();
            osg::ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
            self._barrier->enter(2);
            if(action == nullptr)
            {
                action.reset(osg::RenderAction::create());
                self.window->init();
            }
            self.window->render(action.get());
            self.look(frame);
        }
        action.reset();
        self.window->deactivate();
    }

    osg::Barrier *_barrier = nullptr;
};

} // namespace test

#endif
