#include <OpenSG/OSGImageFileHandler.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include <OpenSG/OSGLogCapture.h>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

class ImageFiles : public ::testing::Test
{
  protected:
    ImageFiles()
    {
        char name[] = "/tmp/imagefilesXXXXXX";
        folder = ::mkdtemp(name);
    }
    ~ImageFiles() override
    {
        for(const std::string &name : written)
            std::remove(name.c_str());
        ::rmdir(folder.c_str());
    }
    std::string path(const std::string &name)
    {
        written.push_back(folder + "/" + name);
        return written.back();
    }
    std::string file(const std::string &name, const Bytes &bytes)
    {
        const std::string full = path(name);
        std::ofstream out(full, std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return full;
    }

    std::string folder;
    std::vector<std::string> written;
};

ImageFileHandler &handler()
{
    return ImageFileHandler::the();
}

Bytes smallPNG()
{
    return pngFile(1, 2, 8, 2, {0, 1, 2, 3, 0, 4, 5, 6});
}

/// What one failing call logs, which is one warning.
template <class Call>
std::string onlyWarning(Call call)
{
    LogCapture log;
    call();
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    return log.text();
}

void drop(const ImagePtr &image)
{
    addRefCP(image);
    subRefCP(image);
}

} // namespace

TEST_F(ImageFiles, FormatsAreFoundByMIMETypeAndByTheEndOfTheName)
{
    ASSERT_NE(handler().getFileType("image/png"), nullptr);
    EXPECT_EQ(handler().getFileType("image/png"), handler().getFileType(nullptr, "a/b.PNG"));
    EXPECT_EQ(handler().getFileType("image/png"), handler().getDefaultType());
    EXPECT_EQ(handler().getFileType("image/x-nifti"), handler().getFileType(nullptr, "b.nii.gz"));
    EXPECT_EQ(handler().getFileType("image/x-nifti"), handler().getFileType(nullptr, "b.nii"));
    EXPECT_EQ(handler().getFileType("image/x-dat"), handler().getFileType("no/such", "b.dat"));
    EXPECT_EQ(handler().getFileType("image/png", "b.dat"), handler().getDefaultType());
    EXPECT_EQ(handler().getFileType(nullptr, "png"), nullptr);
    EXPECT_EQ(handler().getFileType("image/foo"), nullptr);
    EXPECT_EQ(handler().getSuffixList(),
              (std::list<std::string>{"png", "jpg", "jpeg", "nii", "nii.gz", "dat", "tif", "tiff", "nrrd",
                                      "nhdr", "dcm", "ima"}));
    EXPECT_FALSE(handler().addImageFileType(*handler().getDefaultType()));
}

TEST_F(ImageFiles, APictureIsReadWithItsName)
{
    const std::string name = file("a.png", smallPNG());
    LogCapture log;
    const ImagePtr image = handler().read(name.c_str());
    ASSERT_TRUE(image != NullFC);
    EXPECT_EQ(image->getWidth(), 1);
    EXPECT_EQ(image->getHeight(), 2);
    EXPECT_EQ(image->getPixelFormat(), 6407u);
    EXPECT_EQ(image->getPixel().getValues(), (Bytes{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(image->getName(), name);
    EXPECT_EQ(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(image->findAttachmentField("ValueScale"), nullptr);
    EXPECT_EQ(log.count(), 0u);
    drop(image);
}

TEST_F(ImageFiles, AVolumeBringsItsSliceThicknessAndItsNotice)
{
    const std::string name =
        file("scan.nii.gz", gzipped(niftiFile({2, 1, 1}, 4, 16, asBytes<Int16>({-1, 1000}))));
    LogCapture log;
    const ImagePtr image = handler().read(name.c_str());
    ASSERT_TRUE(image != NullFC);
    EXPECT_EQ(image->getDataType(), 5123);
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.500000 0.750000 2.000000");
    ASSERT_NE(image->findAttachmentField("ValueScale"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("ValueScale"), "1 -1");
    EXPECT_EQ(image->findAttachmentField("ValueUnit"), nullptr);
    EXPECT_EQ(log.text(LOG_NOTICE),
              name + ": int16 voxels in [-1, 1000], less their minimum, brought to 16 bits\n");
    EXPECT_EQ(log.count(), 1u);
    drop(image);
}

TEST_F(ImageFiles, AVolumeIsWrittenAsDATAndReadBackWithItsSliceThickness)
{
    const ImagePtr image = ImageBase::create();
    addRefCP(image);
    const Bytes voxels = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2, 2, 2, 1, 1, 0.0, voxels.data()));
    image->setAttachmentField("SliceThickness", "1 1 2.5");
    const std::string name = path("v.dat");
    path("v.raw");
    LogCapture log;
    ASSERT_TRUE(image->write(name.c_str()));
    image->clear();
    image->setAttachmentField("Other", "x");
    ASSERT_TRUE(image->read(name.c_str()));
    EXPECT_EQ(image->getPixel().getValues(), voxels);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1.000000 1.000000 2.500000");
    EXPECT_EQ(image->findAttachmentField("Other"), nullptr);
    EXPECT_EQ(log.count(), 0u);
    subRefCP(image);
}

TEST_F(ImageFiles, AStreamIsReadAndWrittenByMIMEType)
{
    const Bytes bytes = smallPNG();
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    const ImagePtr image = handler().read(in, "image/png");
    ASSERT_TRUE(image != NullFC);
    std::ostringstream out;
    ASSERT_TRUE(handler().write(image, out, "image/png"));
    std::istringstream again(out.str());
    const ImagePtr other = handler().read(again, "image/png");
    ASSERT_TRUE(other != NullFC);
    EXPECT_EQ(other->getPixel().getValues(), image->getPixel().getValues());
    drop(image);
    drop(other);
}

TEST_F(ImageFiles, PixelsThatAFileCantHoldAreBroughtToTheNearest)
{
    const ImagePtr image = ImageBase::create();
    addRefCP(image);
    const Bytes bgra = {1, 2, 3, 4};
    ASSERT_TRUE(image->set(Image::OSG_BGRA_PF, 1, 1, 1, 1, 1, 0.0, bgra.data()));
    const std::string name = path("b.png");
    ASSERT_TRUE(handler().write(image, name.c_str()));
    ASSERT_TRUE(handler().read(image, name.c_str()));
    EXPECT_EQ(image->getPixel().getValues(), (Bytes{3, 2, 1, 4}));

    const float grey[2] = {0.5f, 3.f};
    ASSERT_TRUE(
        image->set(Image::OSG_ALPHA_PF, 2, 1, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(grey), 5126));
    ASSERT_TRUE(handler().write(image, name.c_str()));
    ASSERT_TRUE(handler().read(image, name.c_str()));
    EXPECT_EQ(image->getPixelFormat(), 6409u);
    EXPECT_EQ(fromBytes<UInt16>(image->getPixel().getValues()), (std::vector<UInt16>{32768, 65535}));
    subRefCP(image);
}

TEST_F(ImageFiles, EachFailureIsOneWarningAndANullImage)
{
    const auto readWarning = [](const std::string &name) {
        return onlyWarning([&] { EXPECT_TRUE(handler().read(name.c_str()) == NullFC); });
    };
    EXPECT_EQ(readWarning(folder + "/none.png"),
              folder + "/none.png: can't be opened: No such file or directory\n");
    EXPECT_EQ(readWarning(folder + "/a.foo"), folder + "/a.foo: no image format has this name\n");
    EXPECT_EQ(readWarning(file("e.png", {})), folder + "/e.png: byte 0: no PNG signature\n");
    EXPECT_EQ(readWarning(file("e.nii", {})),
              folder + "/e.nii: byte 0: the file ends inside of the header\n");
    EXPECT_EQ(readWarning(file("e.dat", {})), folder + "/e.dat: no ObjectFileName up to the end\n");
    EXPECT_EQ(readWarning(file("100%s.png", {1})), folder + "/100%s.png: byte 0: no PNG signature\n");

    std::istringstream empty;
    EXPECT_EQ(onlyWarning([&] { EXPECT_TRUE(handler().read(empty, "image/foo") == NullFC); }),
              "stream: no image format has this name or the MIME type \"image/foo\"\n");
    EXPECT_EQ(onlyWarning([&] { EXPECT_TRUE(handler().read(empty, "image/x-dat") == NullFC); }),
              "stream: image/x-dat can't be read from a stream\n");
}

TEST_F(ImageFiles, WhatCantBeWrittenIsOneWarning)
{
    const ImagePtr image = ImageBase::create();
    addRefCP(image);
    const auto writeWarning = [&image](const std::string &name) {
        return onlyWarning([&] { EXPECT_FALSE(handler().write(image, name.c_str())); });
    };
    EXPECT_EQ(writeWarning(folder + "/a.png"), folder + "/a.png: the image has no pixels to be written\n");
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2, 2, 2));
    EXPECT_EQ(
        writeWarning(folder + "/a.png"),
        folder +
            "/a.png: PNG holds L, LA, RGB and RGBA pictures of 8 or 16 bits, not 2 x 2 x 2 pixels of format "
            "6409 and type 5121\n");
    EXPECT_EQ(writeWarning(folder + "/a.nii"), folder + "/a.nii: image/x-nifti can't be written\n");
    EXPECT_EQ(writeWarning(folder + "/no/a.dat"),
              folder + "/no/a.raw: can't be written: No such file or directory\n");
    EXPECT_EQ(onlyWarning([&] { EXPECT_FALSE(handler().write(ImagePtr(NullFC), "a.png")); }),
              "a.png: there is no image to be written\n");
    ASSERT_TRUE(image->set(Image::OSG_RGB_DXT1, 4, 4));
    EXPECT_EQ(writeWarning(folder + "/a.png"),
              folder + "/a.png: pixels of format 33776 and type 5121 can't be written\n");
    subRefCP(image);
}

TEST_F(ImageFiles, AFailedReadLeavesTheImageAsItWas)
{
    const ImagePtr image = ImageBase::create();
    addRefCP(image);
    const Bytes pixels = {1, 2};
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2, 1, 1, 1, 1, 0.0, pixels.data()));
    const std::string name = file("e.png", {1, 2, 3});
    EXPECT_EQ(onlyWarning([&] { EXPECT_FALSE(image->read(name.c_str())); }),
              name + ": byte 0: no PNG signature\n");
    EXPECT_EQ(image->getPixel().getValues(), pixels);
    subRefCP(image);
}
