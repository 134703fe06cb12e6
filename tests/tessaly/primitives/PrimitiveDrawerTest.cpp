#include <dlfcn.h>

#include <filesystem>
#include <functional>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGThread.h>
#include <Tessaly/OSGPrimitiveDrawer.h>

#include "PrimitiveScene.h"
#include "primitives/PluginName.h"

using namespace osg;

namespace
{

using Calls = std::vector<std::string>;

Calls calls;          ///< of the plug-ins, and "close" for the end of a library
bool closings = false; ///< whether these are noted
bool closeFails = false;

Calls takeCalls()
{
    Calls result;
    result.swap(calls);
    return result;
}

} // namespace

/// What the plug-ins of these tests call.
extern "C" void notePlugInCall(const char *call)
{
    calls.emplace_back(call);
}

/// Stands in front of the system's, to see closings and to let them fail.
extern "C" int dlclose(void *handle) noexcept
{
    typedef int (*Close)(void *);
    const Close close = reinterpret_cast<Close>(dlsym(RTLD_NEXT, "dlclose"));
    const int result = close(handle);
    if(!closings)
        return result;
    calls.emplace_back("close");
    return closeFails ? -1 : result;
}

namespace
{

const std::string folder = PLUGIN_FOLDER;

struct DrawerAccess : PrimitiveDrawer
{
    static void adjust(PrimitiveDrawer &core, Volume &volume) { (core.*&DrawerAccess::adjustVolume)(volume); }
};

class PrimitiveDrawerTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        takeCalls();
        closings = true;
        closeFails = false;
        addRefCP(core);
    }
    void TearDown() override
    {
        subRefCP(core);
        closings = false;
        Thread::getCurrentChangeList()->clearAll();
    }
    /// Ends the core ahead of the test's end.
    void drop() { clearRefCP(core); }

    void load(const std::string &name)
    {
        core->setLibName(name);
        endEditCP(core, PrimitiveDrawer::LibNameFieldMask);
    }
    void send(const std::vector<std::string> &parameters)
    {
        core->editMFParamDic()->setValues(parameters);
        endEditCP(core, PrimitiveDrawer::ParamDicFieldMask);
    }
    std::string takeWarnings()
    {
        const std::string text = log.text(LOG_WARNING);
        EXPECT_EQ(log.count(), log.count(LOG_WARNING));
        log.clear();
        return text;
    }

    PrimitiveDrawerPtr core = PrimitiveDrawer::create();
    LogCapture log;
};

/// Runs on a thread of aspect 1, while the test's thread waits.
void onAspectOne(const std::function<void()> &work)
{
    Thread *const thread = Thread::get("aspect one");
    thread->runFunction(
        [](void *argument) {
            (*static_cast<const std::function<void()> *>(argument))();
            Thread::getCurrentChangeList()->clearAll();
        },
        1, const_cast<std::function<void()> *>(&work));
    Thread::join(thread);
}

const std::string missing = "Missing function pointer: ";

} // namespace

TEST(PluginName, IsSplitAtTheLastMark)
{
    const auto split = [](const char *text) {
        const tessaly::PluginName name = tessaly::splitPluginName(text);
        return name.library + "|" + name.prefix;
    };
    EXPECT_EQ(split("foo"), "foo|foo");
    EXPECT_EQ(split("dir/foo#bar"), "dir/foo|bar");
    EXPECT_EQ(split("a#b#c"), "a#b|c");
    EXPECT_EQ(split("#c"), "|c");
    EXPECT_EQ(split("a#"), "a|");
    EXPECT_EQ(split(""), "|");
}

TEST_F(PrimitiveDrawerTest, HasTheFieldsOfItsTable)
{
    const FieldContainerType *const type = FieldContainerFactory::the()->findType("PrimitiveDrawer");
    ASSERT_NE(type, nullptr);
    EXPECT_FALSE(type->isAbstract());
    EXPECT_STREQ(type->getParent()->getCName(), "MaterialDrawable");
    EXPECT_EQ(UInt32(PrimitiveDrawer::NextFieldId), 6u);
    EXPECT_EQ(BitVector(PrimitiveDrawer::LibNameFieldMask), 16u);
    EXPECT_EQ(BitVector(PrimitiveDrawer::ParamDicFieldMask), 32u);
    const char *const names[] = {"libName", "paramDic"};
    const char *const types[] = {"SFString", "MFString"};
    for(UInt32 i = 0; i < 2; ++i)
    {
        const FieldDescription *const field = type->getFieldDescription(4 + i);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), names[i]);
        EXPECT_STREQ(field->getTypeName(), types[i]);
        EXPECT_EQ(field->getFieldMask(), BitVector(16) << i);
        EXPECT_FALSE(field->isInternal());
    }
    const Held<FieldContainerPtr> made(FieldContainerFactory::the()->createFieldContainer("PrimitiveDrawer"));
    const PrimitiveDrawerPtr fresh = PrimitiveDrawerPtr::dcast(made);
    ASSERT_NE(fresh, NullFC);
    EXPECT_EQ(fresh->getLibName(), "");
    EXPECT_TRUE(fresh->getParamDic().empty());
    fresh->editLibName() = "x";
    EXPECT_EQ(fresh->editSFLibName()->getValue(), "x");
    fresh->editMFParamDic()->push_back("y");
    EXPECT_EQ(fresh->editParamDic(0), "y");
    made->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump PrimitiveDrawer NI\n");
    EXPECT_EQ(log.count(), 1u);
}

TEST_F(PrimitiveDrawerTest, BinaryDataBringsTheTextsAcrossAndLoadsNothing)
{
    load(folder + "/several#one");
    core->editMFParamDic()->push_back("name");
    takeCalls();
    MemoryDataHandler memory;
    core->copyToBin(memory, PrimitiveDrawer::LibNameFieldMask | PrimitiveDrawer::ParamDicFieldMask);
    EXPECT_EQ(core->getBinSize(PrimitiveDrawer::LibNameFieldMask | PrimitiveDrawer::ParamDicFieldMask),
              memory.getData().size());
    const Held<PrimitiveDrawerPtr> other(PrimitiveDrawer::create());
    other->copyFromBin(memory, PrimitiveDrawer::LibNameFieldMask | PrimitiveDrawer::ParamDicFieldMask);
    EXPECT_EQ(other->getLibName(), folder + "/several#one");
    ASSERT_EQ(other->getParamDic().size(), 1u);
    EXPECT_EQ(other->getParamDic(0), "name");
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(PrimitiveDrawerTest, APlugInIsCalledWithItsHandleFromItsBeginningToItsEnd)
{
    core->setLibName(folder + "/several#one");
    core->editMFParamDic()->setValues(Calls{"a", "1", "b", "2"});
    endEditCP(core);
    EXPECT_EQ(takeCalls(), (Calls{"one_initialize", "one_setParam a=1", "one_setParam b=2"}));
    EXPECT_EQ(core->drawPrimitives(nullptr), Action::Continue);
    BoxVolume box;
    DrawerAccess::adjust(*core, box);
    EXPECT_EQ(takeCalls(), (Calls{"one_drawPrim", "one_getBBox"}));
    Pnt3f low;
    Pnt3f high;
    box.getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1.f, -5.f, 3.f));
    EXPECT_EQ(high, Pnt3f(4.f, 2.f, 6.f));
    drop();
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close"}));
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, TheBoxIsAddedToTheVolumeAsItIs)
{
    load(folder + "/several#one");
    BoxVolume box;
    box.setBounds(Pnt3f(0.f, 0.f, 0.f), Pnt3f(10.f, 1.f, 1.f));
    DrawerAccess::adjust(*core, box);
    Pnt3f low;
    Pnt3f high;
    box.getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1.f, -5.f, 0.f));
    EXPECT_EQ(high, Pnt3f(10.f, 2.f, 6.f));
    // It is neither emptied nor made valid ahead: a volume that takes no part stays as it is.
    box.setValid(false);
    load(folder + "/several#two");
    DrawerAccess::adjust(*core, box);
    EXPECT_FALSE(box.isValid());
    box.getBounds(low, high);
    EXPECT_EQ(high, Pnt3f(10.f, 2.f, 6.f));
}

TEST_F(PrimitiveDrawerTest, TwoCoresUseTwoPlugInsOfOneLibrary)
{
    const Held<PrimitiveDrawerPtr> other(PrimitiveDrawer::create());
    load(folder + "/several#one");
    other->setLibName(folder + "/several#two");
    endEditCP(other, PrimitiveDrawer::LibNameFieldMask);
    core->drawPrimitives(nullptr);
    other->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"one_initialize", "two_initialize", "one_drawPrim", "two_drawPrim"}));
    drop();
    other->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close", "two_drawPrim"}));
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, ANameWithoutAMarkIsLibraryAndPrefix)
{
    // Loaded once they are found by their bare names.
    void *const plain = dlopen((folder + "/plain").c_str(), RTLD_LAZY | RTLD_LOCAL);
    void *const suffixed = dlopen((folder + "/suffixed.dll").c_str(), RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(suffixed, nullptr);
    load("plain");
    EXPECT_EQ(takeCalls(), (Calls{"plain_initialize"}));
    load("suffixed"); // there is suffixed.dll only
    EXPECT_EQ(takeCalls(), (Calls{"plain_shutdown", "close", "suffixed_initialize"}));
    EXPECT_EQ(log.count(), 0u);
    drop();
    dlclose(plain);
    dlclose(suffixed);
}

TEST_F(PrimitiveDrawerTest, TheSuffixIsTriedWhereTheNameFails)
{
    load(folder + "/suffixed#suffixed");
    EXPECT_EQ(takeCalls(), (Calls{"suffixed_initialize"}));
    load(folder + "/suffixed.dll#suffixed");
    EXPECT_EQ(takeCalls(), (Calls{"suffixed_shutdown", "close", "suffixed_initialize"}));
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, AMarkMayBePartOfTheFilesName)
{
    const std::string copy = ::testing::TempDir() + "plug#in";
    std::filesystem::copy_file(folder + "/several", copy, std::filesystem::copy_options::overwrite_existing);
    load(copy + "#two");
    EXPECT_EQ(takeCalls(), (Calls{"two_initialize"}));
    EXPECT_EQ(log.count(), 0u);
    drop();
    std::filesystem::remove(copy);
}

TEST_F(PrimitiveDrawerTest, WhatCanNotBeOpenedIsTold)
{
    for(const std::string name : {"", "#one", "no such file", "no such file#one"})
    {
        load(name);
        EXPECT_EQ(takeWarnings(), "Could not open shared library " + name);
        core->drawPrimitives(nullptr);
        EXPECT_EQ(takeWarnings(), missing + "drawPrim");
    }
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(PrimitiveDrawerTest, WithoutAPlugInEachUseIsTold)
{
    send({"a", "1"});
    EXPECT_EQ(takeWarnings(), missing + "setParam");
    EXPECT_EQ(core->drawPrimitives(nullptr), Action::Continue);
    EXPECT_EQ(takeWarnings(), missing + "drawPrim");
    BoxVolume box;
    DrawerAccess::adjust(*core, box);
    EXPECT_EQ(takeWarnings(), missing + "getBBox");
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(PrimitiveDrawerTest, AMissingFunctionIsToldAndTheOthersWork)
{
    const std::string file = folder + "/incomplete";
    const std::string told = "Could not load correct symbols from library " + file;
    BoxVolume box;

    load(file + "#nodraw");
    EXPECT_EQ(takeWarnings(), told);
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeWarnings(), missing + "drawPrim");
    DrawerAccess::adjust(*core, box);
    send({"a", "1"});
    EXPECT_EQ(takeCalls(), (Calls{"nodraw_initialize", "nodraw_getBBox", "nodraw_setParam a=1"}));

    load(file + "#nobox");
    EXPECT_EQ(takeWarnings(), told);
    core->drawPrimitives(nullptr);
    DrawerAccess::adjust(*core, box);
    EXPECT_EQ(takeWarnings(), missing + "getBBox");
    EXPECT_EQ(takeCalls(), (Calls{"nodraw_shutdown", "close", "nobox_initialize", "nobox_drawPrim"}));

    load(file + "#noparam");
    EXPECT_EQ(takeWarnings(), told);
    core->drawPrimitives(nullptr);
    send({"a", "1"});
    EXPECT_EQ(takeWarnings(), missing + "setParam");
    EXPECT_EQ(takeCalls(), (Calls{"nobox_shutdown", "close", "noparam_initialize", "noparam_drawPrim"}));

    load(file + "#nothing of this prefix");
    EXPECT_EQ(takeWarnings(), told);
    EXPECT_EQ(takeCalls(), (Calls{"noparam_shutdown", "close"}));
    drop();
    EXPECT_EQ(takeCalls(), Calls{"close"});
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, InitializeAndShutdownMayBeMissing)
{
    load(folder + "/incomplete#nolife");
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), Calls{"nolife_drawPrim with null"});
    drop();
    EXPECT_EQ(takeCalls(), Calls{"close"});
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, AParameterThatFailsIsToldAndTheNextOnesFollow)
{
    load(folder + "/several#one");
    takeCalls();
    send({"a", "1", "colour", "bad", "c", ""});
    EXPECT_EQ(takeCalls(), (Calls{"one_setParam a=1", "one_setParam colour=bad", "one_setParam c="}));
    EXPECT_EQ(takeWarnings(), "Could not set parameter colour to bad");
    // A name without a value behind it is left out.
    send({"a", "1", "b"});
    EXPECT_EQ(takeCalls(), Calls{"one_setParam a=1"});
    EXPECT_EQ(takeWarnings(), "PrimitiveDrawer: parameter b has no value\n");
    send({"b"});
    EXPECT_EQ(takeCalls(), Calls());
    EXPECT_EQ(takeWarnings(), "PrimitiveDrawer: parameter b has no value\n");
    send({});
    EXPECT_EQ(takeCalls(), Calls());
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, AnotherLibraryAloneIsNotSentTheParameters)
{
    core->setLibName(folder + "/several#one");
    core->editMFParamDic()->setValues(Calls{"a", "1"});
    endEditCP(core);
    takeCalls();
    load(folder + "/several#two");
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close", "two_initialize"}));
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), Calls{"two_drawPrim"});
}

TEST_F(PrimitiveDrawerTest, NothingIsCalledBehindTheClosing)
{
    load(folder + "/several#one");
    takeCalls();
    core->setLibName("no such file");
    core->editMFParamDic()->setValues(Calls{"a", "1"});
    endEditCP(core);
    EXPECT_EQ(takeWarnings(), "Could not open shared library no such file" + missing + "setParam");
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close"}));
    core->drawPrimitives(nullptr);
    BoxVolume box;
    DrawerAccess::adjust(*core, box);
    EXPECT_EQ(takeWarnings(), missing + "drawPrim" + missing + "getBBox");
    load(folder + "/several#two");
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"two_initialize", "two_drawPrim"}));
}

TEST_F(PrimitiveDrawerTest, AFailingCloseIsTold)
{
    const std::string told = "Could not close shared library " + folder + "/several";
    load(folder + "/several#one");
    closeFails = true;
    load(folder + "/several#two");
    EXPECT_EQ(takeWarnings(), told);
    EXPECT_EQ(takeCalls(), (Calls{"one_initialize", "one_shutdown", "close", "two_initialize"}));
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), Calls{"two_drawPrim"});
    drop();
    EXPECT_EQ(takeWarnings(), told);
    EXPECT_EQ(takeCalls(), (Calls{"two_shutdown", "close"}));
}

TEST_F(PrimitiveDrawerTest, AnotherAspectSharesThePlugIn)
{
    Thread::getCurrentChangeList()->clearAll();
    core->setLibName(folder + "/several#one");
    core->editMFParamDic()->setValues(Calls{"a", "1"});
    endEditCP(core);
    EXPECT_EQ(takeCalls(), (Calls{"one_initialize", "one_setParam a=1"}));
    ChangeList *const changes = Thread::getCurrentChangeList();
    onAspectOne([&] {
        changes->applyToCurrent();
        core->drawPrimitives(nullptr);
        BoxVolume box;
        DrawerAccess::adjust(*core, box);
    });
    EXPECT_EQ(takeCalls(), (Calls{"one_drawPrim", "one_getBBox"}));

    // Until it is told of the next one, the other aspect calls nothing.
    changes->clearAll();
    load(folder + "/several#two");
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close", "two_initialize"}));
    EXPECT_EQ(log.count(), 0u);
    onAspectOne([&] {
        core->drawPrimitives(nullptr);
        EXPECT_EQ(takeWarnings(), missing + "drawPrim");
        changes->applyToCurrent();
        core->drawPrimitives(nullptr);
    });
    EXPECT_EQ(takeCalls(), Calls{"two_drawPrim"});
    changes->clearAll();
    drop();
    changes->clearAll();
    EXPECT_EQ(takeCalls(), (Calls{"two_shutdown", "close"}));
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PrimitiveDrawerTest, WhatAnotherAspectLoadsReplacesWhatThisOneHas)
{
    Thread::getCurrentChangeList()->clearAll();
    load(folder + "/several#one");
    ChangeList *const changes = Thread::getCurrentChangeList();
    takeCalls();
    Calls there;
    onAspectOne([&] {
        changes->applyToCurrent();
        load(folder + "/several#two");
        there = takeCalls();
    });
    EXPECT_EQ(there, Calls{"two_initialize"});
    // As the other's change list would bring it.
    core->setLibName(folder + "/several#two");
    core->changed(PrimitiveDrawer::LibNameFieldMask, ChangedOrigin::Sync);
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close", "two_drawPrim"}));
    // What the other could not open closes this one's, too.
    load(folder + "/several#one");
    EXPECT_EQ(takeCalls(), Calls{"one_initialize"});
    onAspectOne([&] { load("no such file"); });
    EXPECT_EQ(takeWarnings(), "Could not open shared library no such file");
    EXPECT_EQ(takeCalls(), (Calls{"two_shutdown", "close"}));
    core->changed(PrimitiveDrawer::LibNameFieldMask, ChangedOrigin::Sync);
    core->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close"}));
    EXPECT_EQ(takeWarnings(), missing + "drawPrim");
    drop();
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(PrimitiveDrawerTest, ACopyOfTheCoreSharesThePlugInWhileItIsOpen)
{
    load(folder + "/several#one");
    takeCalls();
    const Held<FieldContainerPtr> made(core->shallowCopy());
    const PrimitiveDrawerPtr copy = PrimitiveDrawerPtr::dcast(made);
    copy->drawPrimitives(nullptr);
    EXPECT_EQ(takeCalls(), Calls{"one_drawPrim"});
    {
        const Held<FieldContainerPtr> second(core->shallowCopy());
    }
    EXPECT_EQ(takeCalls(), Calls()); // the copy's end is not the plug-in's
    drop();
    EXPECT_EQ(takeCalls(), (Calls{"one_shutdown", "close"}));
    EXPECT_EQ(log.count(), 0u);
    copy->drawPrimitives(nullptr);
    EXPECT_EQ(takeWarnings(), missing + "drawPrim");
    EXPECT_EQ(takeCalls(), Calls());
}

TEST_F(PrimitiveDrawerTest, TheVolumeIsReadAnewBehindAnotherLibrary)
{
    const Held<NodePtr> node(makeNodeFor(core));
    EXPECT_TRUE(node->getVolume(true).isEmpty());
    EXPECT_EQ(takeWarnings(), missing + "getBBox");
    load(folder + "/several#one");
    Pnt3f low;
    Pnt3f high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1.f, -5.f, 3.f));
    EXPECT_EQ(high, Pnt3f(4.f, 2.f, 6.f));
}

TEST_F(PrimitiveDrawerTest, CanNotBeHit)
{
    load(folder + "/several#one");
    const Held<NodePtr> node(makeNodeFor(core));
    const std::unique_ptr<IntersectAction> action(
        IntersectAction::create(Line(Pnt3f(0.f, 0.f, 50.f), Vec3f(0.f, 0.f, -1.f))));
    EXPECT_EQ(action->apply(node), Action::Continue);
    EXPECT_FALSE(action->didHit());
    EXPECT_EQ(core->intersect(action.get()), Action::Continue);
}

TEST_F(PrimitiveDrawerTest, DrawsWithItsMaterialInBothActions)
{
    closings = false;
    load(folder + "/painter#painter");
    const Held<SimpleMaterialPtr> material(SimpleMaterial::create());
    material->setLit(false);
    material->setDiffuse(Color3f(1.f, 0.2f, 0.f));
    endEditCP(material);
    core->setMaterial(material.ptr);
    PrimitiveView view(core);
    const test::RgbaImage::Pixel red{255, 51, 0, 255};
    const test::RgbaImage::Pixel black{0, 0, 0, 0};
    const auto colours = [](test::RgbaImage::Pixel pixel) {
        return std::vector<int>(pixel.begin(), pixel.begin() + 3);
    };
    view.render();
    EXPECT_EQ(colours(view.read(-0.5, 0.1)), colours(red));
    EXPECT_EQ(colours(view.read(0.5, 0.1)), colours(black));
    load("no such file");
    view.render();
    EXPECT_EQ(colours(view.read(-0.5, 0.1)), colours(black));
    load(folder + "/painter#painter");
    view.draw();
    EXPECT_EQ(colours(view.read(-0.5, 0.1)), colours(red));
}
