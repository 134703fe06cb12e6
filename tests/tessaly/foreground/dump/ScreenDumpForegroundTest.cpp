/// \file
/// Screenshots: which frames are written where, read back by libpng.

#include "tessaly/foreground/ForegroundScene.h"

#include "support/Png.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <Tessaly/OSGScreenDumpForeground.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

OSG_USING_NAMESPACE
using namespace foreground_test;
namespace fs = std::filesystem;

namespace
{

class ScreenDumpTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osgInit(0, nullptr)); }

    void SetUp() override
    {
        folder = fs::temp_directory_path() / ("tessaly-dump-" + std::to_string(::getpid()));
        fs::create_directories(folder);
        // A picture with a corner: rows and columns that are swapped or turned over don't pass.
        picture->onDraw = [](DrawActionBase *, Viewport *port) {
            glEnable(GL_SCISSOR_TEST);
            glScissor(port->getPixelLeft() + 3, port->getPixelBottom() + 5, 7, 11);
            clearTo(1.0f, 0.5f, 0.0f);
            port->activateSize();
        };
        stage.add(picture.ptr);
        stage.add(dump.ptr);
    }
    void TearDown() override { fs::remove_all(folder); }

    void ask(const fs::path &file)
    {
        dump->getMFFilenames()->push_back(file.string());
        endEditCP(dump.ptr, ScreenDumpForeground::FilenamesFieldMask);
    }
    std::size_t files() const
    {
        return std::size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    /// Whether the file holds the window's colours, opaque.
    void expectWindowIn(const fs::path &file)
    {
        test::RgbaImage written;
        ASSERT_TRUE(test::readPng(file.string(), written)) << file;
        test::RgbaImage shown = stage.pixels();
        EXPECT_EQ(written.width, shown.width);
        EXPECT_EQ(written.height, shown.height);
        EXPECT_EQ(written.bytes, shown.bytes);
    }

    fs::path folder;
    // Neither side a multiple of four: rows are written without gaps.
    Stage stage{61, 47};
    Held<TestForegroundPtr> picture;
    Held<ScreenDumpForegroundPtr> dump;
};

} // namespace

TEST_F(ScreenDumpTest, TheTableIsAsPromised)
{
    checkClass("ScreenDumpForeground", "GrabForeground", {{"filenames", "MFString", 5, ""}});
    EXPECT_EQ(UInt32(ScreenDumpForeground::NextFieldId), 6u);
}

TEST_F(ScreenDumpTest, AnEmptyListGrabsNothing)
{
    LogCapture log;
    stage.frame();
    EXPECT_TRUE(dump->getImage() == NullFC);
    EXPECT_EQ(log.count(), 0u);
    EXPECT_EQ(files(), 0u);
}

TEST_F(ScreenDumpTest, AFileHoldsThePixelsOfTheFrame)
{
    ask(folder / "one.png");
    stage.frame();
    EXPECT_TRUE(dump->getMFFilenames()->empty());
    expectWindowIn(folder / "one.png");
    EXPECT_EQ(stage.pixels().at(4, 6), (test::RgbaImage::Pixel{255, 128, 0, 255}));
    ASSERT_TRUE(dump->getImage() != NullFC);
    EXPECT_EQ(dump->getImage()->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(dump->getImage().getRefCount(), 1);
}

TEST_F(ScreenDumpTest, TwoNamesMakeTwoFilesInTwoFrames)
{
    ask(folder / "a.png");
    ask(folder / "b.png");
    stage.setBackground(Color3f(0, 0, 0));
    stage.frame();
    EXPECT_EQ(files(), 1u);
    EXPECT_EQ(dump->getMFFilenames()->size(), 1u);
    expectWindowIn(folder / "a.png");
    stage.setBackground(Color3f(1, 1, 1));
    stage.frame();
    EXPECT_EQ(files(), 2u);
    expectWindowIn(folder / "b.png");
    test::RgbaImage first;
    ASSERT_TRUE(test::readPng((folder / "a.png").string(), first));
    EXPECT_EQ(first.at(0, 0), (test::RgbaImage::Pixel{0, 0, 0, 255})) << "still the earlier picture";
    stage.frame();
    EXPECT_EQ(files(), 2u);
}

TEST_F(ScreenDumpTest, TheFormatIsPngWhateverTheSuffix)
{
    ask(folder / "picture.jpg");
    stage.frame();
    expectWindowIn(folder / "picture.jpg");
}

TEST_F(ScreenDumpTest, ANameInUtf8OpensThatFile)
{
    const std::string name = "\xC3\xA4\xC3\xB6 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\xA8.png";
    ask(folder / name);
    stage.frame();
    ASSERT_EQ(files(), 1u);
    EXPECT_EQ(fs::directory_iterator(folder)->path().filename().string(), name);
    expectWindowIn(folder / name);
}

TEST_F(ScreenDumpTest, ANameInAFolderThatIsNotThereVanishesWithoutAWord)
{
    ask(folder / "nowhere" / "x.png");
    ask(folder);
    ask("");
    ask(folder / "y.png");
    LogCapture log;
    for(std::size_t left = 3; left-- > 0;)
    {
        stage.frame();
        EXPECT_EQ(dump->getMFFilenames()->size(), left + 1);
        EXPECT_EQ(files(), 0u);
    }
    stage.frame();
    EXPECT_EQ(files(), 1u);
    EXPECT_EQ(log.count(), 0u);
    expectWindowIn(folder / "y.png");
}

TEST_F(ScreenDumpTest, AFileThatIsThereIsReplaced)
{
    {
        std::ofstream old(folder / "old.png", std::ios::binary);
        old << std::string(100000, 'x');
    }
    ask(folder / "old.png");
    stage.frame();
    expectWindowIn(folder / "old.png");
    EXPECT_LT(fs::file_size(folder / "old.png"), 100000u);
}

TEST_F(ScreenDumpTest, AForegroundThatIsNotActiveKeepsItsNames)
{
    ask(folder / "later.png");
    dump->setActive(false);
    stage.frame();
    EXPECT_EQ(dump->getMFFilenames()->size(), 1u);
    EXPECT_EQ(files(), 0u);
    EXPECT_TRUE(dump->getImage() == NullFC);
    dump->setActive(true);
    stage.frame();
    EXPECT_TRUE(dump->getMFFilenames()->empty());
    expectWindowIn(folder / "later.png");
}

TEST_F(ScreenDumpTest, TheWindowsNewSizeIsTheNextFilesSize)
{
    ask(folder / "small.png");
    stage.frame();
    stage.window->resize(90, 33);
    ask(folder / "wide.png");
    stage.frame();
    expectWindowIn(folder / "wide.png");
}

TEST_F(ScreenDumpTest, AnImageOfTheHostIsTheBuffer)
{
    const Held<ImagePtr> image;
    image->set(GL_RGBA, 2, 2);
    dump->setImage(image.ptr);
    ask(folder / "rgba.png");
    stage.frame();
    EXPECT_TRUE(dump->getImage() == image.ptr);
    EXPECT_EQ(image->getWidth(), 61);
    expectWindowIn(folder / "rgba.png");
}

TEST_F(ScreenDumpTest, BinaryDataBringsTheNamesAcross)
{
    const Held<ScreenDumpForegroundPtr> other;
    ask("/a");
    ask("b");
    MemoryDataHandler memory;
    const BitVector mask = ScreenDumpForeground::FilenamesFieldMask;
    dump->copyToBin(memory, mask);
    EXPECT_EQ(dump->getBinSize(mask), memory.getData().size());
    other->copyFromBin(memory, mask);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_EQ(other->getMFFilenames()->getValues(), dump->getMFFilenames()->getValues());
}
