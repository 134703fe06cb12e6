#include "PrimitivesDrawer.h"

#include <algorithm>
#include <string>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGGeoColors.h>
#include <OpenSG/OSGGeoIndices.h>
#include <OpenSG/OSGGeoNormals.h>
#include <OpenSG/OSGGeoPositions.h>
#include <OpenSG/OSGGeoTexCoords.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGWindow.h>

using namespace osg;

namespace
{

Window *windowOf(DrawActionBase *action)
{
    return action != nullptr ? action->getWindow() : nullptr;
}

template <class FunctionT>
FunctionT function(Window *window, UInt32 extension, UInt32 id)
{
    if(window == nullptr || !window->hasExtension(extension))
        return nullptr;
    return reinterpret_cast<FunctionT>(window->getFunction(id));
}

bool hasFloats(const GeoProperty &property, UInt32 dimension)
{
    return property.getFormat() == GL_FLOAT && property.getDimension() == dimension &&
           property.getStride() == 0;
}

/// Why GL would read something else than the vertices, or behind their end; "" where all is well.
std::string findVertexProblem(const SortedPrimitives &core)
{
    if(!hasFloats(*core.getPositions(), 3) || !hasFloats(*core.getNormals(), 3) ||
       !hasFloats(*core.getTangents(), 3) || !hasFloats(*core.getTexCoords(), 2) ||
       core.getColors()->getDimension() < 3)
        return "positions, normals and tangents must have three floats, texCoords two, colors three "
               "components or four";
    const UInt32 vertices = core.getPositions()->getSize();
    const UInt32 least = std::min({core.getNormals()->getSize(), core.getTangents()->getSize(),
                                   core.getTexCoords()->getSize(), core.getColors()->getSize()});
    if(least < vertices)
        return "a property has " + std::to_string(least) + " values for " + std::to_string(vertices) +
               " vertices";
    if(core.getIndices()->getFormat() != GL_UNSIGNED_INT)
        return "indices must be of UInt32";
    return "";
}

/// The same for the indices that are drawn.
std::string findIndexProblem(const SortedPrimitives &core, UInt32 count)
{
    const UInt32 room = core.getIndices()->getSize();
    if(count > room)
        return "indices has " + std::to_string(room) + " entries of " + std::to_string(count);
    const UInt32 vertices = core.getPositions()->getSize();
    const UInt32 largest =
        tessaly::largestIndex(reinterpret_cast<const UInt32 *>(core.getIndices()->getData()), count);
    if(count != 0 && largest >= vertices)
        return "index " + std::to_string(Int32(largest)) + " is none of " + std::to_string(vertices) +
               " vertices";
    return "";
}

/// True if all is well; else it has been told.
bool isFine(const std::string &problem)
{
    if(!problem.empty())
        SWARNING << "SortedPrimitives: " << problem << "; nothing is drawn" << std::endl;
    return problem.empty();
}

/// Fills the index buffer and closes its edit. Returns how many indices it holds now.
UInt32 fill(SortedPrimitives *core, const Int32 *order, UInt32 numPrimitives, tessaly::IndexCopy copy)
{
    const SortedPrimitives &source = *core;
    const auto &indexArray = source.getIndexArray().getValues();
    const auto &offsetArray = source.getOffsetArray().getValues();
    const tessaly::IndexLists lists{indexArray.data(), indexArray.size(), offsetArray.data(),
                                    offsetArray.size()};
    if(!(core->getLowerBound() >= 0.0f))
        SWARNING << "SortedPrimitives: lowerBound " << core->getLowerBound() << " is taken as 0"
                 << std::endl;
    const tessaly::IndexSelection selection{order, numPrimitives,
                                            tessaly::firstDrawn(numPrimitives, core->getLowerBound())};
    const tessaly::IndexCount count = tessaly::countIndices(lists, selection, copy);
    if(count.leftOut != 0)
        SWARNING << "SortedPrimitives: " << count.leftOut
                 << " primitives have no part of indexArray by offsetArray and are left out" << std::endl;

    const GeoIndicesPtr indices = core->getIndices();
    // Room is needed beyond setIndexArray's where incomplete triangles are rounded up.
    if(count.indices > indices->getSize())
        indices->resize(count.indices);
    if(count.indices != 0)
        tessaly::fillIndices(lists, selection, copy, reinterpret_cast<UInt32 *>(indices->getData()));
    endEditCP(indices);
    return UInt32(count.indices);
}

/// Gives GL the arrays while it lives. Behind it unit 1 is the one that client state is set for, which is
/// meant.
class EnabledArrays
{
  public:
    EnabledArrays(const SortedPrimitives &core, Window *window)
        : _activeTexture(function<PFNGLCLIENTACTIVETEXTUREARBPROC>(
              window, SortedPrimitives::_arbMultitexture, SortedPrimitives::_funcClientActiveTextureARB))
    {
        // GL leaves the current colour, normal and texture coordinates undefined behind arrays of them.
        glPushAttrib(GL_CURRENT_BIT);
        glVertexPointer(3, GL_FLOAT, 0, core.getPositions()->getData());
        glEnableClientState(GL_VERTEX_ARRAY);
        glNormalPointer(GL_FLOAT, 0, core.getNormals()->getData());
        glEnableClientState(GL_NORMAL_ARRAY);
        glColorPointer(GLint(core.getColors()->getDimension()), core.getColors()->getFormat(), 0,
                       core.getColors()->getData());
        glEnableClientState(GL_COLOR_ARRAY);
        if(_activeTexture != nullptr)
            _activeTexture(GL_TEXTURE0_ARB);
        glTexCoordPointer(2, GL_FLOAT, 0, core.getTexCoords()->getData());
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        if(_activeTexture == nullptr)
            return;
        _activeTexture(GL_TEXTURE1_ARB);
        glTexCoordPointer(3, GL_FLOAT, 0, core.getTangents()->getData());
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    ~EnabledArrays()
    {
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
        glDisableClientState(GL_COLOR_ARRAY);
        if(_activeTexture != nullptr)
        {
            _activeTexture(GL_TEXTURE0_ARB);
            glDisableClientState(GL_TEXTURE_COORD_ARRAY);
            _activeTexture(GL_TEXTURE1_ARB);
        }
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glPopAttrib();
    }
    EnabledArrays(const EnabledArrays &) = delete;
    EnabledArrays &operator=(const EnabledArrays &) = delete;

  private:
    PFNGLCLIENTACTIVETEXTUREARBPROC _activeTexture;
};

/// Counts and draws the first `count` entries of the index buffer.
void drawBuffer(SortedPrimitives *core, DrawActionBase *action, UInt32 count, GLenum primitive)
{
    if(!isFine(findIndexProblem(*core, count)))
        return;
    const UInt32 vertices = core->getPositions()->getSize();
    if(action != nullptr)
    {
        // A quarter of the indices for triangles too, which is meant.
        action->getStatistics()->getElem(Drawable::statNTriangles)->add(Int32(count / 4));
        action->getStatistics()->getElem(Drawable::statNVertices)->add(Int32(vertices));
    }
    if(count == 0)
        return;

    Window *const window = windowOf(action);
    const EnabledArrays arrays(*core, window);
    const UInt8 *const indices = core->getIndices()->getData();
    const auto drawRange = function<PFNGLDRAWRANGEELEMENTSEXTPROC>(
        window, SortedPrimitives::_extDrawRangeElements, SortedPrimitives::_funcDrawRangeElementsEXT);
    if(drawRange != nullptr)
        drawRange(primitive, 0, vertices - 1, GLsizei(count), GL_UNSIGNED_INT, indices);
    else
        glDrawElements(primitive, GLsizei(count), GL_UNSIGNED_INT, indices);
}

} // namespace

template <class GeoTrait>
PrimitivesDrawer<GeoTrait> *PrimitivesDrawer<GeoTrait>::the()
{
    static PrimitivesDrawer drawer;
    return &drawer;
}

template <class GeoTrait>
UInt32 PrimitivesDrawer<GeoTrait>::draw(SortedPrimitives *core, DrawActionBase *action, UInt32 numPrimitives)
{
    return drawSorted(core, action, nullptr, numPrimitives);
}

template <class GeoTrait>
void PrimitivesDrawer<GeoTrait>::drawCached(SortedPrimitives *core, DrawActionBase *action)
{
    if(isFine(findVertexProblem(*core)))
        drawBuffer(core, action, core->getIndicesSize(), GeoTrait::primitive);
}

template <class GeoTrait>
UInt32 PrimitivesDrawer<GeoTrait>::drawSorted(SortedPrimitives *core, DrawActionBase *action, Int32 *order,
                                              UInt32 numPrimitives)
{
    if(!isFine(findVertexProblem(*core)))
        return 0;
    const UInt32 count = fill(core, order, numPrimitives, GeoTrait::copy);
    drawBuffer(core, action, count, GeoTrait::primitive);
    return count;
}

template class PrimitivesDrawer<GeoTraitTriSet>;
template class PrimitivesDrawer<GeoTraitQuadSet>;
