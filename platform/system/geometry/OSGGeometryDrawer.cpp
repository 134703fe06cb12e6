#include "OSGGeometryDrawer.h"

#include "OSGGL.h"
#include "OSGGeometry.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

const UInt32 multitexture = Window::registerExtension("GL_ARB_multitexture");
const UInt32 secondaryColor = Window::registerExtension("GL_EXT_secondary_color");
const UInt32 drawRangeElements = Window::registerExtension("GL_EXT_draw_range_elements");
const UInt32 bufferObject = Window::registerExtension("GL_ARB_vertex_buffer_object");

const UInt32 funcClientActiveTexture =
    Window::registerFunction("glClientActiveTextureARB", multitexture, 0x0103);
const UInt32 funcSecondaryColorPointer =
    Window::registerFunction("glSecondaryColorPointerEXT", secondaryColor, 0x0104);
const UInt32 funcDrawRangeElements =
    Window::registerFunction("glDrawRangeElementsEXT", drawRangeElements, 0x0102);
const UInt32 funcGenBuffers = Window::registerFunction("glGenBuffersARB", bufferObject);
const UInt32 funcDeleteBuffers = Window::registerFunction("glDeleteBuffersARB", bufferObject);
const UInt32 funcBindBuffer = Window::registerFunction("glBindBufferARB", bufferObject);
const UInt32 funcBufferData = Window::registerFunction("glBufferDataARB", bufferObject);
const UInt32 funcBufferSubData = Window::registerFunction("glBufferSubDataARB", bufferObject);

template <class FunctionT>
FunctionT function(Window *window, UInt32 id)
{
    return window == nullptr ? nullptr : reinterpret_cast<FunctionT>(window->getFunction(id));
}

void bind(Window *window, GLenum target, UInt32 buffer)
{
    if(const auto bindBuffer = function<PFNGLBINDBUFFERARBPROC>(window, funcBindBuffer))
        bindBuffer(target, buffer);
}

GLenum indexFormat(UInt32 bytes)
{
    return bytes == 1 ? GL_UNSIGNED_BYTE : bytes == 2 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
}

UInt16 attributeOfRole(UInt32 role)
{
    return UInt16(1u << role);
}

} // namespace

void GeometryDrawer::collect(const Geometry &geometry, GeometryArrays &arrays)
{
    // The bits of the index mapping stand in the order of the roles.
    static_assert(Geometry::MapPosition == 1u << PositionRole, "");
    static_assert(Geometry::MapNormal == 1u << NormalRole, "");
    static_assert(Geometry::MapColor == 1u << ColorRole, "");
    static_assert(Geometry::MapSecondaryColor == 1u << SecondaryColorRole, "");
    static_assert(Geometry::MapTexCoords == 1u << TexCoordsRole, "");
    static_assert(Geometry::MapTexCoords7 == 1u << (TexCoordsRole + 7), "");

    const GeoIndicesPtr indices = geometry.getIndices();
    arrays.indexed = indices != NullFC;
    if(arrays.indexed)
    {
        arrays.indices.data = static_cast<const GeoIndices &>(*indices).getData();
        arrays.indices.bytes = indices->getFormatSize();
        arrays.indices.size = indices->getSize();
        arrays.indices.perVertex = std::max<UInt32>(1, geometry.getIndexMapping().size());
    }
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
    {
        const GeoProperty *const property = geometry.getAttribute(attributeOfRole(role));
        if(property == nullptr)
            continue;
        VertexArray &array = arrays.arrays[role];
        array.data = property->getData();
        array.format = property->getFormat();
        array.componentBytes = property->getFormatSize();
        array.dimension = property->getDimension();
        array.size = property->getSize();
        array.place = geometry.calcMappingIndex(attributeOfRole(role));
    }
}

bool GeometryDrawer::sameMemory(const GeometryArrays &a, const GeometryArrays &b)
{
    if(a.indexed != b.indexed || a.indices.data != b.indices.data || a.indices.size != b.indices.size ||
       a.indices.perVertex != b.indices.perVertex || a.indices.bytes != b.indices.bytes)
        return false;
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
    {
        const VertexArray &left = a.arrays[role];
        const VertexArray &right = b.arrays[role];
        if(left.data != right.data || left.size != right.size || left.format != right.format ||
           left.dimension != right.dimension || left.place != right.place)
            return false;
    }
    return true;
}

bool GeometryDrawer::update(const Geometry &geometry)
{
    // Arrays may have moved without a word, while somebody appends to them.
    GeometryArrays arrays;
    collect(geometry, arrays);
    if(_planned && sameMemory(arrays, _arrays))
        return false;

    const GeoPTypesPtr types = geometry.getTypes();
    for(UInt32 i = 0; types != NullFC && i < types->getSize(); ++i)
        arrays.types.push_back(types->getValue(i));
    const GeoPLengthsPtr lengths = geometry.getLengths();
    arrays.hasLengths = lengths != NullFC;
    for(UInt32 i = 0; lengths != NullFC && i < lengths->getSize(); ++i)
        arrays.lengths.push_back(lengths->getValue(i));

    _arrays = std::move(arrays);
    _plan = planDrawing(_arrays);
    releaseExpanded();
    _planned = true;
    if(!_plan.problem.empty())
        SWARNING << "Geometry: " << _plan.problem << std::endl;
    return true;
}

const GeometryArrays &GeometryDrawer::drawn()
{
    if(!needsExpansion(_arrays))
        return _arrays;
    if(!_isExpanded)
        expandVertices(_arrays, _plan, _expandedStore, _expanded);
    _isExpanded = true;
    return _expanded;
}

void GeometryDrawer::releaseExpanded()
{
    _isExpanded = false;
    _expanded = GeometryArrays();
    std::vector<UInt8>().swap(_expandedStore);
}

std::size_t GeometryDrawer::bytes() const
{
    std::size_t sum = std::size_t(_arrays.indices.size) * _arrays.indices.bytes;
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
        if((_plan.usable & (1u << role)) != 0)
            sum += _arrays.arrays[role].bytes();
    return sum;
}

void GeometryDrawer::drawFromMemory(Window *window)
{
    draw(window, false);
}

void GeometryDrawer::drawFromBuffers(Window *window, UInt32 vertexBuffer, UInt32 indexBuffer)
{
    bind(window, GL_ARRAY_BUFFER_ARB, vertexBuffer);
    if(isIndexed())
        bind(window, GL_ELEMENT_ARRAY_BUFFER_ARB, indexBuffer);
    draw(window, true);
    bind(window, GL_ARRAY_BUFFER_ARB, 0);
    if(isIndexed())
        bind(window, GL_ELEMENT_ARRAY_BUFFER_ARB, 0);
}

void GeometryDrawer::draw(Window *window, bool fromBuffers)
{
    const GeometryArrays &from = drawn();
    const auto address = [&](UInt32 role) -> const void * {
        return fromBuffers ? reinterpret_cast<const void *>(bufferOffset(role)) : from.arrays[role].data;
    };
    const auto isDrawn = [&](UInt32 role) { return (_plan.usable & (1u << role)) != 0; };
    const auto clientActiveTexture =
        function<PFNGLCLIENTACTIVETEXTUREARBPROC>(window, funcClientActiveTexture);
    const auto secondaryColorPointer =
        function<PFNGLSECONDARYCOLORPOINTEREXTPROC>(window, funcSecondaryColorPointer);

    // GL leaves the current colour undefined behind an array of colours; what is drawn next may go by it.
    const bool keepsCurrent = isDrawn(ColorRole) || isDrawn(SecondaryColorRole);
    if(keepsCurrent)
        glPushAttrib(GL_CURRENT_BIT);

    const VertexArray &positions = from.arrays[PositionRole];
    glVertexPointer(GLint(positions.dimension), positions.format, 0, address(PositionRole));
    glEnableClientState(GL_VERTEX_ARRAY);
    if(isDrawn(NormalRole))
    {
        glNormalPointer(from.arrays[NormalRole].format, 0, address(NormalRole));
        glEnableClientState(GL_NORMAL_ARRAY);
    }
    if(isDrawn(ColorRole))
    {
        const VertexArray &colors = from.arrays[ColorRole];
        glColorPointer(GLint(colors.dimension), colors.format, 0, address(ColorRole));
        glEnableClientState(GL_COLOR_ARRAY);
    }
    const bool hasSecondary = isDrawn(SecondaryColorRole) && secondaryColorPointer != nullptr;
    if(hasSecondary)
    {
        // GL takes three components of secondary colours; those of four are stepped over.
        const VertexArray &colors = from.arrays[SecondaryColorRole];
        secondaryColorPointer(3, colors.format, GLsizei(colors.valueBytes()), address(SecondaryColorRole));
        glEnableClientState(GL_SECONDARY_COLOR_ARRAY_EXT);
    }
    const UInt32 units = clientActiveTexture != nullptr ? Geometry::NumTexCoords : 1;
    for(UInt32 unit = 0; unit < units; ++unit)
    {
        if(!isDrawn(TexCoordsRole + unit))
            continue;
        if(clientActiveTexture != nullptr)
            clientActiveTexture(GL_TEXTURE0_ARB + unit);
        const VertexArray &coordinates = from.arrays[TexCoordsRole + unit];
        glTexCoordPointer(GLint(coordinates.dimension), coordinates.format, 0, address(TexCoordsRole + unit));
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }

    if(from.indexed)
    {
        const GLenum format = indexFormat(from.indices.bytes);
        const UInt8 *const base = fromBuffers ? nullptr : from.indices.data;
        const auto drawRange = function<PFNGLDRAWRANGEELEMENTSEXTPROC>(window, funcDrawRangeElements);
        for(const DrawRange &range : _plan.ranges)
        {
            const void *const first = reinterpret_cast<const void *>(
                reinterpret_cast<std::uintptr_t>(base) + std::uintptr_t(range.first) * from.indices.bytes);
            if(drawRange != nullptr)
                drawRange(range.type, _plan.minIndex, _plan.maxIndex, GLsizei(range.count), format, first);
            else
                glDrawElements(range.type, GLsizei(range.count), format, first);
        }
    }
    else
    {
        for(const DrawRange &range : _plan.ranges)
            glDrawArrays(range.type, GLint(range.first), GLsizei(range.count));
    }

    for(UInt32 unit = 0; unit < units; ++unit)
    {
        if(!isDrawn(TexCoordsRole + unit))
            continue;
        if(clientActiveTexture != nullptr)
            clientActiveTexture(GL_TEXTURE0_ARB + unit);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if(clientActiveTexture != nullptr)
        clientActiveTexture(GL_TEXTURE0_ARB);
    if(hasSecondary)
        glDisableClientState(GL_SECONDARY_COLOR_ARRAY_EXT);
    if(isDrawn(ColorRole))
        glDisableClientState(GL_COLOR_ARRAY);
    if(isDrawn(NormalRole))
        glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    if(keepsCurrent)
        glPopAttrib();
}

bool GeometryDrawer::hasBuffers(Window *window)
{
    return window != nullptr && window->hasExtension(bufferObject) &&
           window->getFunction(funcBindBuffer) != nullptr && window->getFunction(funcGenBuffers) != nullptr &&
           window->getFunction(funcBufferData) != nullptr &&
           window->getFunction(funcBufferSubData) != nullptr;
}

std::size_t GeometryDrawer::bufferOffset(UInt32 role)
{
    // One property behind the other, each at a multiple of four bytes.
    const GeometryArrays &from = drawn();
    std::size_t offset = 0;
    for(UInt32 before = 0; before < role; ++before)
        if((_plan.usable & (1u << before)) != 0)
            offset += (from.arrays[before].bytes() + 3) / 4 * 4;
    return offset;
}

UInt32 GeometryDrawer::makeBuffer(Window *window)
{
    GLuint buffer = 0;
    if(const auto genBuffers = function<PFNGLGENBUFFERSARBPROC>(window, funcGenBuffers))
        genBuffers(1, &buffer);
    return buffer;
}

void GeometryDrawer::deleteBuffer(Window *window, UInt32 buffer)
{
    const GLuint name = buffer;
    if(const auto deleteBuffers = function<PFNGLDELETEBUFFERSARBPROC>(window, funcDeleteBuffers))
        deleteBuffers(1, &name);
}

void GeometryDrawer::fillVertexBuffer(Window *window, UInt32 buffer)
{
    const GeometryArrays &from = drawn();
    bind(window, GL_ARRAY_BUFFER_ARB, buffer);
    function<PFNGLBUFFERDATAARBPROC>(window, funcBufferData)(
        GL_ARRAY_BUFFER_ARB, GLsizeiptrARB(bufferOffset(NumVertexArrayRoles)), nullptr, GL_STATIC_DRAW_ARB);
    const auto bufferSubData = function<PFNGLBUFFERSUBDATAARBPROC>(window, funcBufferSubData);
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
        if((_plan.usable & (1u << role)) != 0)
            bufferSubData(GL_ARRAY_BUFFER_ARB, GLintptrARB(bufferOffset(role)),
                          GLsizeiptrARB(from.arrays[role].bytes()), from.arrays[role].data);
    bind(window, GL_ARRAY_BUFFER_ARB, 0);
}

void GeometryDrawer::fillIndexBuffer(Window *window, UInt32 buffer)
{
    const IndexArray &indices = drawn().indices;
    bind(window, GL_ELEMENT_ARRAY_BUFFER_ARB, buffer);
    function<PFNGLBUFFERDATAARBPROC>(window, funcBufferData)(
        GL_ELEMENT_ARRAY_BUFFER_ARB, GLsizeiptrARB(std::size_t(indices.size) * indices.bytes), indices.data,
        GL_STATIC_DRAW_ARB);
    bind(window, GL_ELEMENT_ARRAY_BUFFER_ARB, 0);
}

OSG_END_NAMESPACE
