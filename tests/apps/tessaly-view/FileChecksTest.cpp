/// \file
/// Files that can't be read or written are found ahead of the work.

#include "FileChecks.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace viewer;

class FileChecks : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "tessaly-view-XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override
    {
        for (const std::string &name : made)
        {
            std::remove(name.c_str());
        }
        rmdir(folder.c_str());
    }

    std::string file(const std::string &name)
    {
        made.push_back(folder + "/" + name);
        std::ofstream(made.back()) << "x";
        return made.back();
    }

    std::string folder;
    std::vector<std::string> made;
};

TEST_F(FileChecks, VolumesAreKnownByTheirSuffixInEitherCase)
{
    EXPECT_EQ(checkInput(file("a.nii")), "");
    EXPECT_EQ(checkInput(file("b.nii.gz")), "");
    EXPECT_EQ(checkInput(file("c.DAT")), "");
    const std::string other = file("d.mha");
    const std::string known =
        ": unknown suffix, volumes end in .nii, .nii.gz, .dat, .tif, .tiff, .nrrd, .nhdr, .dcm or .ima";
    EXPECT_EQ(checkInput(other), other + known);
    const std::string bare = file(".nii");
    EXPECT_EQ(checkInput(bare), bare + known);
    const std::string gz = file("e.gz");
    EXPECT_EQ(checkInput(gz), gz + known);
}

TEST_F(FileChecks, MissingFilesAreNoVolumesAndAFolderMayHoldASeries)
{
    EXPECT_EQ(checkInput("missing.nii"), "missing.nii: No such file or directory");
    EXPECT_EQ(checkInput(folder), "");
    EXPECT_EQ(checkInput("/dev/null"), "/dev/null: is not a file");
}

TEST_F(FileChecks, APictureMayBeNewOrOverwrittenAndNothingIsCreated)
{
    EXPECT_EQ(checkOutput(folder + "/new.png"), "");
    EXPECT_NE(access((folder + "/new.png").c_str(), F_OK), 0);
    EXPECT_EQ(checkOutput("new.PNG"), "");
    EXPECT_EQ(checkOutput(file("old.png")), "");
}

TEST_F(FileChecks, WherePicturesCannotGoIsTold)
{
    EXPECT_EQ(checkOutput(folder), folder + ": is a folder, not a picture");
    EXPECT_EQ(checkOutput(folder + "/a.jpg"), folder + "/a.jpg: unknown suffix, pictures end in .png");
    EXPECT_EQ(checkOutput(folder + "/sub/a.png"), folder + "/sub: No such file or directory");
    const std::string plain = file("plain");
    EXPECT_EQ(checkOutput(plain + "/a.png"), plain + ": is not a folder");
}

TEST_F(FileChecks, WithoutPermissionNothingIsReadOrWritten)
{
    const std::string scan = file("locked.nii");
    const std::string picture = file("locked.png");
    ASSERT_EQ(chmod(scan.c_str(), 0), 0);
    ASSERT_EQ(chmod(picture.c_str(), 0444), 0);
    // The superuser may do everything; for anyone else the reason is told.
    const bool super = geteuid() == 0;
    EXPECT_EQ(checkInput(scan), super ? "" : scan + ": Permission denied");
    EXPECT_EQ(checkOutput(picture), super ? "" : picture + ": Permission denied");
}

} // namespace
