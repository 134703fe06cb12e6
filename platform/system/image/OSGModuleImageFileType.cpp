/// \file
/// Loads the module and hands files on to it.

#include "OSGModuleImageFileType.h"

#include <utility>

OSG_BEGIN_NAMESPACE

ModuleImageFileType::ModuleImageFileType(const FormatModule &module, const std::string &mimeType,
                                         std::list<std::string> suffixes)
    : ImageFileType(mimeType, std::move(suffixes), READ_SUPPORTED), _module(module)
{}

ModuleImageFileType &ModuleImageFileType::tiff()
{
    static ModuleImageFileType type(*findFormatModule("TIFF"), "image/tiff", {"tif", "tiff"});
    return type;
}

ModuleImageFileType &ModuleImageFileType::nrrd()
{
    static ModuleImageFileType type(*findFormatModule("NRRD"), "image/x-nrrd", {"nrrd", "nhdr"});
    return type;
}

ModuleImageFileType &ModuleImageFileType::dicom()
{
    static ModuleImageFileType type(*findFormatModule("DICOM"), "application/dicom", {"dcm", "ima"});
    return type;
}

std::string ModuleImageFileType::getName() const
{
    return _module.name;
}

bool ModuleImageFileType::isBuilt() const
{
    return _module.built;
}

const ImageFileType *ModuleImageFileType::load(const std::string &fileName, std::string &error) const
{
    std::string fault;
    const Entry entry = reinterpret_cast<Entry>(loadFormatModule(_module, fault));
    if(!entry)
        error = fileName + ": " + fault;
    return entry ? entry() : nullptr;
}

bool ModuleImageFileType::decode(const UInt8 *bytes, std::size_t size, const std::string &name,
                                 PixelData &out, std::string &error) const
{
    const ImageFileType *reader = load(name, error);
    return reader && reader->decode(bytes, size, name, out, error);
}

bool ModuleImageFileType::readFile(const std::string &fileName, PixelData &out, std::string &error) const
{
    const ImageFileType *reader = load(fileName, error);
    return reader && reader->readFile(fileName, out, error);
}

OSG_END_NAMESPACE
