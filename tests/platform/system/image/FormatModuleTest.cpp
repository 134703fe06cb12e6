#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGModuleImageFileType.h>

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace osg;

namespace
{

std::string readFault(const ModuleImageFileType &type)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(type.readFile("a/b.tif", out, error));
    return error;
}

} // namespace

TEST(FormatModule, AFormatThatThisBuildLacksSaysWhatItWasConfiguredWithout)
{
    const ModuleImageFileType type({"TIFF", "TIFF images", "libtiff", false}, "image/x-lacks", {"lacks"});
    EXPECT_EQ(readFault(type),
              "a/b.tif: this build does not read TIFF images, it was configured without libtiff");
    EXPECT_FALSE(type.isBuilt());
    EXPECT_EQ(type.getName(), "TIFF");
    PixelData out;
    std::string error;
    EXPECT_FALSE(type.decode(nullptr, 0, "stream", out, error));
    EXPECT_EQ(error, "stream: this build does not read TIFF images, it was configured without libtiff");
}

TEST(FormatModule, AModuleThatIsNotInstalledIsNamed)
{
    const ModuleImageFileType type({"NOSUCH", "such images", "libsuch", true}, "image/x-such", {"such"});
    EXPECT_EQ(readFault(type),
              "a/b.tif: such images need OSGFormats/OSGFormatNOSUCH.so, which is not installed");
    // Nothing of a failure is remembered but the words.
    EXPECT_EQ(readFault(type),
              "a/b.tif: such images need OSGFormats/OSGFormatNOSUCH.so, which is not installed");
}

TEST(FormatModule, TheTableHasTheFormatsByName)
{
    for(const char *name : {"TIFF", "NRRD", "DICOM", "ASSIMP"})
    {
        ASSERT_NE(findFormatModule(name), nullptr) << name;
        EXPECT_STREQ(findFormatModule(name)->name, name);
    }
    EXPECT_STREQ(findFormatModule("TIFF")->library, "libtiff");
    EXPECT_EQ(findFormatModule("tiff"), nullptr);
    EXPECT_EQ(findFormatModule(""), nullptr);
}

TEST(FormatModule, ThreadsThatLoadAtOnceGetOneAnswer)
{
    const FormatModule &module = *findFormatModule("TIFF");
    std::vector<void *> entries(8, nullptr);
    std::vector<std::string> errors(8);
    std::vector<std::thread> threads;
    for(std::size_t i = 0; i < 8; ++i)
        threads.emplace_back([&, i] { entries[i] = loadFormatModule(module, errors[i]); });
    for(std::thread &thread : threads)
        thread.join();
    for(std::size_t i = 0; i < 8; ++i)
    {
        EXPECT_EQ(entries[i], entries[0]);
        EXPECT_EQ(errors[i], errors[0]);
    }
    EXPECT_EQ(entries[0] == nullptr, !errors[0].empty());
}

TEST(FormatModule, AllFormatsAreListedWithThoseThatThisBuildLacks)
{
    std::list<FormatInfo> formats = ImageFileHandler::the().getFormats();
    std::list<std::string> names;
    for(const FormatInfo &format : formats)
        names.push_back(format.name);
    EXPECT_EQ(names, (std::list<std::string>{"PNG", "JPEG", "NIfTI", "DAT", "TIFF", "NRRD", "DICOM"}));
    for(const FormatInfo &format : formats)
    {
        EXPECT_TRUE(format.readable) << format.name;
        EXPECT_EQ(format.writable, format.name == "PNG" || format.name == "JPEG" || format.name == "DAT")
            << format.name;
        const FormatModule *module = findFormatModule(format.name);
        EXPECT_EQ(format.built, !module || module->built) << format.name;
        EXPECT_FALSE(format.suffixes.empty()) << format.name;
        EXPECT_EQ(ImageFileHandler::the().getFileType(format.mimeType.c_str())->getSuffixList(),
                  format.suffixes);
    }
}

TEST(FormatModule, FoldersAndFilesThatSaySoAreOfDICOM)
{
    char pattern[] = "/tmp/moduleXXXXXX";
    const std::string folder = mkdtemp(pattern);
    const ImageFileHandler &handler = ImageFileHandler::the();
    const ImageFileType *const dicom = handler.getFileType("application/dicom");
    ASSERT_NE(dicom, nullptr);
    EXPECT_EQ(handler.getFileType(nullptr, folder.c_str()), dicom);
    EXPECT_EQ(handler.getFileType(nullptr, "a.DCM"), dicom);
    EXPECT_EQ(handler.getFileType(nullptr, "a.ima"), dicom);

    const auto put = [&folder](const std::string &name, const std::string &bytes) {
        std::ofstream(folder + "/" + name, std::ios::binary) << bytes;
        return folder + "/" + name;
    };
    const std::string head = std::string(128, '\0') + "DICM";
    EXPECT_EQ(handler.getFileType(nullptr, put("IM0001", head).c_str()), dicom);
    EXPECT_EQ(handler.getFileType(nullptr, put("1.2.840", head + "rest").c_str()), dicom);
    EXPECT_EQ(handler.getFileType(nullptr, put("short", std::string(128, '\0') + "DIC").c_str()), nullptr);
    EXPECT_EQ(handler.getFileType(nullptr, put("other", std::string(200, 'x')).c_str()), nullptr);
    EXPECT_EQ(handler.getFileType(nullptr, put("a.png", head).c_str()), handler.getFileType("image/png"));
    std::filesystem::create_directory(folder + "/scan.png");
    EXPECT_EQ(handler.getFileType(nullptr, (folder + "/scan.png").c_str()), dicom);
    std::filesystem::remove_all(folder);
}
