/// \file
/// Looks at files ahead of the work, so that a wrong name costs no time.

#include "FileChecks.h"

#include <OpenSG/OSGImageFileHandler.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <list>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{

namespace
{

std::string folderOf(const std::string &fileName)
{
    const std::size_t slash = fileName.rfind('/');
    if (slash == std::string::npos)
    {
        return ".";
    }
    return slash == 0 ? "/" : fileName.substr(0, slash);
}

/// ".nii, .nii.gz or .dat", of all formats but those of single pictures.
std::string volumeSuffixes()
{
    std::string text;
    std::list<std::string> suffixes = osg::ImageFileHandler::the().getSuffixList();
    suffixes.remove_if([](const std::string &s) { return s == "png" || s == "jpg" || s == "jpeg"; });
    std::size_t left = suffixes.size();
    for (const std::string &suffix : suffixes)
    {
        --left;
        text += (text.empty() ? "." : left == 0 ? " or ." : ", .") + suffix;
    }
    return text;
}

std::string reason(const std::string &name)
{
    return name + ": " + std::strerror(errno);
}

} // namespace

std::string baseName(const std::string &path)
{
    const std::string cut = path.substr(0, path.find_last_not_of('/') + 1);
    const std::size_t slash = cut.rfind('/');
    return slash == std::string::npos ? cut : cut.substr(slash + 1);
}

bool hasSuffix(const std::string &fileName, const std::string &suffix)
{
    const std::string name = baseName(fileName);
    if (name.size() <= suffix.size())
    {
        return false;
    }
    return std::equal(suffix.begin(), suffix.end(), name.end() - static_cast<std::ptrdiff_t>(suffix.size()),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

std::string checkInput(const std::string &fileName)
{
    struct stat about = {};
    if (stat(fileName.c_str(), &about) != 0)
    {
        return reason(fileName);
    }
    if (!S_ISREG(about.st_mode) && !S_ISDIR(about.st_mode))
    {
        return fileName + ": is not a file";
    }
    // ".nii" is a name, not a suffix.
    const bool named = S_ISDIR(about.st_mode) || baseName(fileName).rfind('.') != 0;
    if (!named || osg::ImageFileHandler::the().getFileType(nullptr, fileName.c_str()) == nullptr)
    {
        return fileName + ": unknown suffix, volumes end in " + volumeSuffixes();
    }
    if (access(fileName.c_str(), R_OK) != 0)
    {
        return reason(fileName);
    }
    return {};
}

std::string checkFolderOf(const std::string &fileName)
{
    struct stat about = {};
    if (stat(fileName.c_str(), &about) == 0)
    {
        if (!S_ISREG(about.st_mode))
        {
            return fileName + ": is not a file";
        }
        return access(fileName.c_str(), W_OK) == 0 ? std::string() : reason(fileName);
    }
    const std::string folder = folderOf(fileName);
    if (stat(folder.c_str(), &about) != 0)
    {
        return reason(folder);
    }
    if (!S_ISDIR(about.st_mode))
    {
        return folder + ": is not a folder";
    }
    return access(folder.c_str(), W_OK | X_OK) == 0 ? std::string() : reason(folder);
}

std::string checkOutput(const std::string &fileName)
{
    struct stat about = {};
    if (stat(fileName.c_str(), &about) == 0 && S_ISDIR(about.st_mode))
    {
        return fileName + ": is a folder, not a picture";
    }
    if (!hasSuffix(fileName, ".png"))
    {
        return fileName + ": unknown suffix, pictures end in .png";
    }
    return checkFolderOf(fileName);
}

bool writeText(const std::string &fileName, const std::string &text, std::string &error)
{
    std::ofstream out(fileName, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out)
    {
        error = reason(fileName);
        return false;
    }
    return true;
}

} // namespace viewer
