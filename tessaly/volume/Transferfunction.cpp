#include "Transferfunction.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include "ImageAccess.h"

using namespace osg;

namespace
{

/// Entries of the table, as many as the form has and the image holds.
template <class ChannelT>
std::size_t entriesOf(const ImagePtr &image, std::size_t formEntries)
{
    return std::min(formEntries, tessaly::bytesOf(image) / (4 * sizeof(ChannelT)));
}

/// Takes the image into the chunk, made where it is missing, with the settings of a transfer table.
void setTable(TextureChunkPtr &texture, const ImagePtr &image)
{
    tessaly::provideTexture(texture);
    beginEditCP(texture);
    texture->setImage(image);
    texture->setInternalFormat(GL_RGBA16);
    tessaly::setSampling(texture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    endEditCP(texture);
}

void noteNewContent(const TextureChunkPtr &texture)
{
    if(texture == NullFC)
        return;
    beginEditCP(texture);
    texture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    endEditCP(texture);
}

} // namespace

Transferfunction::Transferfunction()
{
    tessaly::TransferPoints points = tessaly::defaultTransferPoints();
    _alphaPoints.swap(points.alpha);
    _colorPoints.swap(points.color);
}

Transferfunction::~Transferfunction()
{
    clearRefCP(_transferTexture);
    clearRefCP(_summedAreaTexture);
    clearRefCP(_dependTexture);
    clearRefCP(_spareTexture);
}

bool Transferfunction::loadTransferfunction(std::string fileName)
{
    std::ifstream file(fileName);
    if(file.fail())
    {
        FWARNING(("Couldn't load file %s!\n", fileName.c_str()));
        return false;
    }
    const tessaly::TransferPoints points = tessaly::readTransferPoints(file);
    file.close();

    ImagePtr image = makeTable(dependentTexture);
    applyAlphaPoints(image, points.alpha);
    applyColorPoints(image, points.color);
    if(image != NullFC)
        setTransferfunction(image);
    clearRefCP(image);
    return true;
}

void Transferfunction::setTransferfunction(ImagePtr image)
{
    if(image == NullFC)
    {
        SNOTICE << "Empty transferfunction" << std::endl;
        return;
    }
    setTable(_transferTexture, image);
}

ImagePtr Transferfunction::makeTable(UInt32 dependent)
{
    const tessaly::Sides sides = {256, dependent == 0 ? 1u : 256u, 1};
    const ImagePtr image = tessaly::makeImage(
        GL_RGBA, sides, dependent == 0 ? Image::OSG_UINT8_IMAGEDATA : Image::OSG_FLOAT16_IMAGEDATA);
    addRefCP(image);
    return image;
}

void Transferfunction::applyAlphaPoints(ImagePtr image, const std::list<AlphaPoint> &points)
{
    _alphaPoints = points;
    if(image == NullFC)
        return;
    if(dependentTexture == 0)
        tessaly::fillOpacity(_alphaPoints, image->getData(),
                             entriesOf<UInt8>(image, tessaly::byteTableEntries));
    else
        tessaly::fillOpacity(_alphaPoints, reinterpret_cast<Real16 *>(image->getData()),
                             entriesOf<Real16>(image, tessaly::halfTableEntries));
    noteNewContent(_transferTexture);
}

void Transferfunction::applyColorPoints(ImagePtr image, const std::list<ColorPoint> &points)
{
    _colorPoints = points;
    if(image == NullFC)
        return;
    if(dependentTexture == 0)
        tessaly::fillColor(_colorPoints, image->getData(),
                           entriesOf<UInt8>(image, tessaly::byteTableEntries));
    else
        tessaly::fillColor(_colorPoints, reinterpret_cast<Real16 *>(image->getData()),
                           entriesOf<Real16>(image, tessaly::halfTableEntries));
    noteNewContent(_transferTexture);
}

void Transferfunction::applyOwnPoints(ImagePtr image)
{
    // The operations replace the members that they would be reading.
    const std::list<AlphaPoint> alphaPoints = _alphaPoints;
    const std::list<ColorPoint> colorPoints = _colorPoints;
    applyAlphaPoints(image, alphaPoints);
    applyColorPoints(image, colorPoints);
}

bool Transferfunction::adoptTransferTexture(TextureChunkPtr texture)
{
    if(texture == NullFC)
        return false;
    beginEditCP(texture);
    texture->setInternalFormat(GL_RGBA16);
    tessaly::setSampling(texture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    endEditCP(texture);
    setRefdCP(_transferTexture, texture);
    return true;
}

bool Transferfunction::needsOtherForm() const
{
    const ImagePtr image = getTransferImage();
    if(image == NullFC)
        return true;
    return (image->getDataType() == Image::OSG_FLOAT16_IMAGEDATA && dependentTexture == 0) ||
           (image->getDataType() == Image::OSG_UINT8_IMAGEDATA && dependentTexture == 1);
}

bool Transferfunction::calcSummedAreaTable()
{
    const ImagePtr table = getTransferImage();
    if(table == NullFC)
    {
        FWARNING(("Die Transferfunction ist leer!\n"));
        return false;
    }
    const bool bytes = table->getDataType() == Image::OSG_UINT8_IMAGEDATA;
    if(!bytes && table->getDataType() != Image::OSG_FLOAT16_IMAGEDATA)
    {
        // Counts as success, and leaves what was built before; that is meant.
        std::printf("Format der Transferfunktion konnte nicht erkannt werden\n");
        return true;
    }

    tessaly::Sides sides = tessaly::sidesOf(table);
    sides[2] = 1;
    if(bytes)
        sides[1] = 1;
    ImagePtr sums = tessaly::makeImage(GL_ALPHA, sides, Image::OSG_FLOAT32_IMAGEDATA);
    if(sums == NullFC)
        return false;
    addRefCP(sums);
    beginEditCP(sums);
    const std::size_t entries = tessaly::voxelCount(sides);
    float *const values = reinterpret_cast<float *>(sums->getData());
    if(bytes)
    {
        std::vector<UInt8> spare;
        tessaly::sumOpacity(tessaly::valuesOf(table, 4 * entries, spare), entries, values);
    }
    else
    {
        std::vector<Real16> spare;
        tessaly::sumOpacity(tessaly::valuesOf(table, 4 * entries, spare), entries, values);
    }
    endEditCP(sums);

    tessaly::provideTexture(_summedAreaTexture);
    beginEditCP(_summedAreaTexture);
    _summedAreaTexture->setInternalFormat(GL_ALPHA32F_ARB);
    _summedAreaTexture->setImage(sums);
    tessaly::setSampling(_summedAreaTexture, GL_CLAMP_TO_BORDER, GL_NEAREST);
    endEditCP(_summedAreaTexture);
    clearRefCP(sums);
    return true;
}

bool Transferfunction::calcDependTransferTextur()
{
    if(getSummedAreaImage() == NullFC)
    {
        FWARNING(("Die Summed Area Table ist leer\n"));
        return false;
    }
    const ImagePtr table = getTransferImage();
    if(table == NullFC)
    {
        FWARNING(("Die Transferfunction ist leer!\n"));
        return false;
    }

    const std::uint32_t width = tessaly::sidesOf(table)[0];
    ImagePtr maxima = tessaly::makeImage(GL_ALPHA, {width, width, 1}, Image::OSG_UINT8_IMAGEDATA);
    if(maxima == NullFC)
        return false;
    addRefCP(maxima);
    beginEditCP(maxima);
    // The first bytes of the table are read whatever its type; that is meant.
    std::vector<UInt8> spare;
    tessaly::intervalMaxima(tessaly::valuesOf(table, std::size_t(4) * width, spare), width,
                            maxima->getData());
    endEditCP(maxima);

    tessaly::provideTexture(_dependTexture);
    beginEditCP(_dependTexture);
    _dependTexture->setInternalFormat(GL_ALPHA);
    _dependTexture->setImage(maxima);
    tessaly::setSampling(_dependTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_dependTexture);
    clearRefCP(maxima);
    return true;
}

ImagePtr Transferfunction::getTransferImage() const
{
    return _transferTexture == NullFC ? ImagePtr() : _transferTexture->getImage();
}

ImagePtr Transferfunction::getSummedAreaImage() const
{
    return _summedAreaTexture == NullFC ? ImagePtr() : _summedAreaTexture->getImage();
}
