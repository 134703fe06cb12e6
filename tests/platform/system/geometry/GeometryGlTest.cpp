/// \file
/// Pictures of geometries: whichever way they go to GL, they are the same.

#include "GeometryFixture.h"
#include "SceneView.h"

#include "support/PixelCompare.h"

#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeoColors3ub.h>
#include <OpenSG/OSGGeoColors4ub.h>
#include <OpenSG/OSGGeoIndicesUI16.h>
#include <OpenSG/OSGGeoIndicesUI8.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoTexCoords1f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeoTexCoords3f.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGWindow.h>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

typedef test::RgbaImage::Pixel Pixel;

const Pixel black = {0, 0, 0, 0};

/// Ways in which a geometry goes to GL.
struct Way
{
    const char *name;
    bool dlistCache;
    bool vbo;
};

const Way ways[] = {
    {"memory", false, false}, {"list", true, false}, {"buffers", false, true}, {"both", true, true}};

void take(const GeometryPtr &geometry, const Way &way)
{
    geometry->setDlistCache(way.dlistCache);
    geometry->setVbo(way.vbo);
    endEditCP(geometry, Geometry::DlistCacheFieldMask | Geometry::VboFieldMask);
}

/// A material without any state: the colours are those of the vertices.
MaterialPtr plainMaterial()
{
    return ChunkMaterial::create();
}

class GeometryOnGl : public ::testing::Test
{
  protected:
    void SetUp() override { ASSERT_TRUE(osgInit(0, nullptr)); }
    void TearDown() override { Window::unmaskAll(); }
};

const std::vector<Pnt3f> starPoints = {
    Pnt3f(-0.9f, -0.9f, 0), Pnt3f(0.1f, -0.8f, 0.5f), Pnt3f(-0.7f, 0.2f, 0),  Pnt3f(0.3f, 0.1f, 0),
    Pnt3f(-0.2f, 0.9f, 1),  Pnt3f(0.9f, 0.8f, 0),     Pnt3f(0.8f, -0.6f, -1), Pnt3f(0.4f, -0.9f, 0)};
const std::vector<Color3ub> starColors = {
    Color3ub(255, 0, 0),  Color3ub(0, 255, 0),     Color3ub(0, 0, 255),   Color3ub(255, 255, 0),
    Color3ub(9, 99, 199), Color3ub(255, 255, 255), Color3ub(200, 0, 100), Color3ub(0, 200, 100)};
// No quads: GL may colour a quad along either of its diagonals, and drivers do so differently with and
// without indices.
const std::vector<UInt8> starTypes = {GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_TRIANGLES, GL_LINE_STRIP};
const std::vector<UInt32> starLengths = {5, 4, 3, 3};
const std::vector<UInt32> starIndices = {0, 1, 2, 3, 4, 3, 5, 4, 2, 7, 6, 3, 6, 5, 7};

GeometryPtr makeStar()
{
    const GeometryPtr geometry = Geometry::create();
    geometry->setTypes(make<GeoPTypesUI8>(starTypes));
    geometry->setLengths(make<GeoPLengthsUI32>(starLengths));
    geometry->setPositions(make<GeoPositions3f>(starPoints));
    geometry->setColors(make<GeoColors3ub>(starColors));
    geometry->setIndices(make<GeoIndicesUI32>(starIndices));
    geometry->setMaterial(plainMaterial());
    endEditCP(geometry);
    return geometry;
}

/// The star vertex by vertex, with nothing of the geometry's own drawing.
test::RgbaImage naiveStar(SceneView &view)
{
    view.render();
    EXPECT_TRUE(view.window()->activate());
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, -10, 10);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    std::size_t at = 0;
    for(std::size_t p = 0; p < starTypes.size(); ++p)
    {
        glBegin(starTypes[p]);
        for(UInt32 i = 0; i < starLengths[p]; ++i, ++at)
        {
            glColor3ubv(starColors[starIndices[at]].getValues());
            glVertex3fv(starPoints[starIndices[at]].getValues());
        }
        glEnd();
    }
    glPopAttrib();
    return view.read();
}

TEST_F(GeometryOnGl, EveryWayGivesThePictureThatVertexByVertexGives)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = naiveStar(view);
    EXPECT_NE(view.at(expected, -0.4, -0.4), black);
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(star.ptr, way);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
        EXPECT_TRUE(test::imagesMatch(view.render(), expected)) << "the second frame";
        EXPECT_TRUE(test::imagesMatch(view.draw(), expected)) << "the action that does not sort";
    }
}

TEST_F(GeometryOnGl, IndicesOfEveryWidthGiveTheSamePicture)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = view.render();
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(star.ptr, way);
        star->setIndices(make<GeoIndicesUI8>(std::vector<UInt8>(starIndices.begin(), starIndices.end())));
        endEditCP(star.ptr, Geometry::IndicesFieldMask);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
        star->setIndices(make<GeoIndicesUI16>(std::vector<UInt16>(starIndices.begin(), starIndices.end())));
        endEditCP(star.ptr, Geometry::IndicesFieldMask);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
    }
}

TEST_F(GeometryOnGl, SeveralIndicesPerVertexGiveTheSamePicture)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = view.render();
    // The colours in reverse order, with indices of their own.
    star->setColors(make<GeoColors3ub>(std::vector<Color3ub>(starColors.rbegin(), starColors.rend())));
    std::vector<UInt32> indices;
    for(const UInt32 index : starIndices)
    {
        indices.push_back(UInt32(starColors.size()) - 1 - index);
        indices.push_back(index);
    }
    star->setIndices(make<GeoIndicesUI32>(indices));
    star->getIndexMapping().push_back(Geometry::MapColor);
    star->getIndexMapping().push_back(Geometry::MapPosition);
    endEditCP(star.ptr);
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(star.ptr, way);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
        EXPECT_TRUE(test::imagesMatch(view.render(), expected)) << "the second frame";
    }
}

TEST_F(GeometryOnGl, WithoutIndicesThePropertiesGoSideBySide)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = view.render();
    std::vector<Pnt3f> positions;
    std::vector<Color3ub> colors;
    for(const UInt32 index : starIndices)
    {
        positions.push_back(starPoints[index]);
        colors.push_back(starColors[index]);
    }
    star->setPositions(make<GeoPositions3f>(positions));
    star->setColors(make<GeoColors3ub>(colors));
    star->setIndices(NullFC);
    endEditCP(star.ptr);
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(star.ptr, way);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
    }
}

TEST_F(GeometryOnGl, WithoutBufferObjectsOrOtherExtensionsThePictureIsTheSame)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = view.render();
    for(const char *extension :
        {"GL_ARB_vertex_buffer_object", "GL_EXT_draw_range_elements", "GL_ARB_multitexture"})
    {
        Window::maskExtension(extension);
        for(const Way &way : ways)
        {
            SCOPED_TRACE(std::string(extension) + " " + way.name);
            take(star.ptr, way);
            EXPECT_TRUE(test::imagesMatch(view.render(), expected));
        }
    }
}

TEST_F(GeometryOnGl, AnEditOfAPropertyShowsInTheNextFrame)
{
    HeldGeometry quad({GL_QUADS}, {4},
                      {Pnt3f(-1, -1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 1, 0), Pnt3f(-1, 1, 0)});
    quad->setColors(make<GeoColors3f>(std::vector<Color3f>(4, Color3f(1, 0, 0))));
    quad->setMaterial(plainMaterial());
    endEditCP(quad.ptr);
    SceneView view(makeNodeFor(quad.ptr));
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(quad.ptr, way);
        const GeoColorsPtr colors = quad->getColors();
        for(const Color3f &color : {Color3f(0, 1, 0), Color3f(0, 0, 1), Color3f(1, 0, 0)})
        {
            for(UInt32 i = 0; i < 4; ++i)
                colors->setValue(color, i);
            endEditCP(colors);
            const test::RgbaImage image = view.render();
            const Pixel expected = {UInt8(color[0] * 255), UInt8(color[1] * 255), UInt8(color[2] * 255), 255};
            EXPECT_EQ(view.at(image, -0.5, 0), expected);
            EXPECT_EQ(view.at(image, 0.5, 0), black);
        }
    }
}

TEST_F(GeometryOnGl, ArraysThatGrewWithoutAnEditAreReadWhereTheyAreNow)
{
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        HeldGeometry quad({GL_QUADS}, {4},
                          {Pnt3f(-1, -1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 1, 0), Pnt3f(-1, 1, 0)});
        quad->setIndices(make<GeoIndicesUI32>({0, 1, 2, 3}));
        quad->setMaterial(plainMaterial());
        take(quad.ptr, way);
        SceneView view(makeNodeFor(quad.ptr));
        EXPECT_NE(view.at(view.render(), -0.5, 0), black);
        const GeoPositionsPtr positions = quad->getPositions();
        for(int i = 0; i < 10000; ++i)
            positions->push_back(Pnt3f(Real32(i % 2), Real32(i / 2 % 2), 0));
        // The last four, which no buffer of the first frame holds.
        for(UInt32 i = 0; i < 4; ++i)
            quad->getIndices()->push_back(10000 + (i ^ (i >> 1)));
        quad->getLengths()->setValue(8, 0);
        EXPECT_NE(view.at(view.render(), 0.5, 0.5), black);
        positions->clear();
        EXPECT_EQ(view.at(view.render(), -0.5, 0), black);
    }
}

TEST_F(GeometryOnGl, WithoutGLObjectsForItsAspectAGeometryIsDrawnFromMemory)
{
    const GeometryPtr prototype = GeometryPtr::dcast(Geometry::getClassType().getPrototype());
    prototype->setIgnoreGLForAspect(Int32(Thread::getAspect()));
    HeldGeometry star(makeStar());
    prototype->setIgnoreGLForAspect(-1);
    EXPECT_EQ(star->getGLId(), 0);
    EXPECT_EQ(star->getVBOGLId(), 0);
    SceneView view(makeNodeFor(star.ptr));
    const test::RgbaImage expected = naiveStar(view);
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(star.ptr, way);
        EXPECT_TRUE(test::imagesMatch(view.render(), expected));
    }
}

TEST_F(GeometryOnGl, TwoWindowsShowTheSameAndBothFollowAnEdit)
{
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        HeldGeometry star(makeStar());
        take(star.ptr, way);
        HeldNode node(makeNodeFor(star.ptr));
        SceneView first(node.ptr);
        const test::RgbaImage expected = first.render();
        {
            SceneView second(node.ptr);
            EXPECT_TRUE(test::imagesMatch(second.render(), expected));
            star->getPositions()->setValue(Pnt3f(-0.9f, 0.9f, 0), 0);
            endEditCP(star->getPositions());
            const test::RgbaImage changed = first.render();
            EXPECT_FALSE(changed.bytes == expected.bytes);
            EXPECT_TRUE(test::imagesMatch(second.render(), changed));
        }
        star->getPositions()->setValue(starPoints[0], 0);
        endEditCP(star->getPositions());
        EXPECT_TRUE(test::imagesMatch(first.render(), expected)) << "behind the end of the other window";
    }
}

TEST_F(GeometryOnGl, GLObjectsEndWithTheGeometry)
{
    HeldNode root(makeCoredNode<Group>());
    SceneView view(root.ptr);
    view.render();
    const std::size_t before = GLObjectTable::getNumRegistered();
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        UInt32 list = 0;
        {
            HeldGeometry star(makeStar());
            take(star.ptr, way);
            root->addChild(makeNodeFor(star.ptr));
            endEditCP(root.ptr);
            view.render();
            list = view.window()->getGLObjectId(UInt32(star->getGLId()));
            EXPECT_EQ(list != 0, way.dlistCache && !way.vbo);
            EXPECT_GT(GLObjectTable::getNumRegistered(), before);
            root->subChild(0);
            endEditCP(root.ptr);
        }
        view.render();
        EXPECT_EQ(GLObjectTable::getNumRegistered(), before);
        ASSERT_TRUE(view.window()->activate());
        if(list != 0)
        {
            EXPECT_EQ(glIsList(list), GLboolean(GL_FALSE));
        }
    }
}

TEST_F(GeometryOnGl, WhatDoesNotFitTogetherIsDrawnAsFarAsItGoesAndToldOnce)
{
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        HeldGeometry quads(
            {GL_QUADS, GL_QUADS, GL_POINTS}, {4, 4, 1000000},
            {Pnt3f(-1, -1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 1, 0), Pnt3f(-1, 1, 0), Pnt3f(0, -1, 0)});
        quads->setNormals(make<GeoNormals3f>({Vec3f(0, 0, 1)}));
        quads->setMaterial(plainMaterial());
        endEditCP(quads.ptr);
        take(quads.ptr, way);
        SceneView view(makeNodeFor(quads.ptr));
        LogCapture log;
        for(int frame = 0; frame < 3; ++frame)
        {
            const test::RgbaImage image = view.render();
            EXPECT_NE(view.at(image, -0.5, 0), black);
            EXPECT_EQ(view.at(image, 0.5, 0), black);
        }
        EXPECT_EQ(log.count(LOG_WARNING), 1u);
        EXPECT_TRUE(log.contains(LOG_WARNING, "Geometry: the lengths ask for more vertices than there are"));
    }
}

TEST_F(GeometryOnGl, ColoursDoNotStainWhatIsDrawnNextWithTheSameMaterial)
{
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        const MaterialPtr material = plainMaterial();
        HeldNode root(makeCoredNode<Group>());
        HeldGeometry left({GL_QUADS}, {4},
                          {Pnt3f(-1, -1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 1, 0), Pnt3f(-1, 1, 0)});
        left->setColors(make<GeoColors4ub>(std::vector<Color4ub>(4, Color4ub(255, 0, 0, 255))));
        left->setMaterial(material);
        endEditCP(left.ptr);
        HeldGeometry right({GL_QUADS}, {4},
                           {Pnt3f(0, -1, 0), Pnt3f(1, -1, 0), Pnt3f(1, 1, 0), Pnt3f(0, 1, 0)});
        right->setMaterial(material);
        endEditCP(right.ptr);
        take(left.ptr, way);
        take(right.ptr, way);
        root->addChild(makeNodeFor(left.ptr));
        root->addChild(makeNodeFor(right.ptr));
        SceneView view(root.ptr);
        const test::RgbaImage image = view.render();
        EXPECT_EQ(view.at(image, -0.5, 0), (Pixel{255, 0, 0, 255}));
        EXPECT_EQ(view.at(image, 0.5, 0), (Pixel{255, 255, 255, 255}));
    }
}

TEST_F(GeometryOnGl, AQuadOfTwoComponentsCoversTheScreen)
{
    HeldGeometry quad;
    quad->setTypes(make<GeoPTypesUI8>({UInt8(GL_QUADS)}));
    quad->setLengths(make<GeoPLengthsUI32>({4}));
    quad->setPositions(make<GeoPositions2f>({Pnt2f(-1, -1), Pnt2f(1, -1), Pnt2f(1, 1), Pnt2f(-1, 1)}));
    quad->setIndices(make<GeoIndicesUI32>({0, 1, 2, 3}));
    quad->setMaterial(plainMaterial());
    endEditCP(quad.ptr);
    SceneView view(makeNodeFor(quad.ptr));
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        take(quad.ptr, way);
        EXPECT_TRUE(test::imagesMatch(view.render(), test::RgbaImage(64, 64, {255, 255, 255, 255})));
    }
}

TEST_F(GeometryOnGl, TheFrameCountsWhatWasDrawn)
{
    HeldGeometry star(makeStar());
    SceneView view(makeNodeFor(star.ptr));
    StatCollector statistics;
    view.action()->setStatistics(&statistics);
    view.render();
    EXPECT_EQ(statistics.getElem(Drawable::statNTriangles)->get(), 3 + 2 + 1);
    EXPECT_EQ(statistics.getElem(Drawable::statNLines)->get(), 2);
    EXPECT_EQ(statistics.getElem(Drawable::statNPoints)->get(), 0);
    EXPECT_EQ(statistics.getElem(Drawable::statNVertices)->get(), 15);
    EXPECT_EQ(statistics.getElem(Drawable::statNPrimitives)->get(), 4);
    EXPECT_EQ(star->getMinindex(), 0u);
    EXPECT_EQ(star->getMaxindex(), 7u);
    view.action()->setStatistics(nullptr);
}

TEST_F(GeometryOnGl, AMaterialOfTheActionGoesAheadOfTheOwn)
{
    const auto unlit = [](const Color3f &color) {
        const SimpleMaterialPtr material = SimpleMaterial::create();
        material->setDiffuse(color);
        material->setLit(false);
        endEditCP(material);
        return material;
    };
    MaterialGroupPtr group;
    HeldNode root(makeCoredNode<MaterialGroup>(&group));
    HeldGeometry plane(makePlaneGeo(2, 2, 1, 1));
    plane->setMaterial(unlit(Color3f(1, 0, 0)));
    endEditCP(plane.ptr);
    root->addChild(makeNodeFor(plane.ptr));
    SceneView view(root.ptr);
    EXPECT_EQ(view.at(view.render(), 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(view.at(view.draw(), 0, 0), (Pixel{255, 0, 0, 255}));
    group->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(group);
    EXPECT_EQ(view.at(view.render(), 0, 0), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(view.at(view.draw(), 0, 0), (Pixel{0, 255, 0, 255}));
}

TEST_F(GeometryOnGl, WithoutAMaterialTheDefaultOneIsTaken)
{
    HeldGeometry plane(makePlaneGeo(2, 2, 1, 1));
    SceneView view(makeNodeFor(plane.ptr));
    const test::RgbaImage expected = view.render();
    plane->setMaterial(NullFC);
    endEditCP(plane.ptr);
    EXPECT_TRUE(test::imagesMatch(view.render(), expected));
}

/// A program that gives each vertex the colour that `expression` says; used until the end of the object.
class VertexProgram
{
  public:
    VertexProgram(SceneView &view, const std::string &expression) : _view(view)
    {
        _view.render();
        EXPECT_TRUE(_view.window()->activate());
        const std::string vertexText =
            "void main() { gl_Position = ftransform(); gl_FrontColor = vec4(" + expression + ", 1.0); }";
        const char *texts[] = {vertexText.c_str(), "void main() { gl_FragColor = gl_Color; }"};
        const GLenum types[] = {GL_VERTEX_SHADER_ARB, GL_FRAGMENT_SHADER_ARB};
        const GLhandleARB program = get<PFNGLCREATEPROGRAMOBJECTARBPROC>("glCreateProgramObjectARB")();
        for(int i = 0; i < 2; ++i)
        {
            const GLhandleARB shader =
                get<PFNGLCREATESHADEROBJECTARBPROC>("glCreateShaderObjectARB")(types[i]);
            get<PFNGLSHADERSOURCEARBPROC>("glShaderSourceARB")(shader, 1, &texts[i], nullptr);
            get<PFNGLCOMPILESHADERARBPROC>("glCompileShaderARB")(shader);
            get<PFNGLATTACHOBJECTARBPROC>("glAttachObjectARB")(program, shader);
            get<PFNGLDELETEOBJECTARBPROC>("glDeleteObjectARB")(shader);
        }
        get<PFNGLLINKPROGRAMARBPROC>("glLinkProgramARB")(program);
        GLint linked = 0;
        get<PFNGLGETOBJECTPARAMETERIVARBPROC>("glGetObjectParameterivARB")(program, GL_OBJECT_LINK_STATUS_ARB,
                                                                           &linked);
        EXPECT_EQ(linked, 1) << expression;
        get<PFNGLUSEPROGRAMOBJECTARBPROC>("glUseProgramObjectARB")(program);
        get<PFNGLDELETEOBJECTARBPROC>("glDeleteObjectARB")(program);
    }
    ~VertexProgram()
    {
        EXPECT_TRUE(_view.window()->activate());
        get<PFNGLUSEPROGRAMOBJECTARBPROC>("glUseProgramObjectARB")(0);
    }

  private:
    template <class FunctionT>
    FunctionT get(const char *name)
    {
        const UInt32 id = Window::registerFunction(name, Window::registerExtension("GL_ARB_shader_objects"));
        return reinterpret_cast<FunctionT>(_view.window()->getFunction(id));
    }

    SceneView &_view;
};

TEST_F(GeometryOnGl, EveryPropertyArrivesAtItsPlaceInAProgram)
{
    HeldGeometry quad({GL_QUADS}, {4},
                      {Pnt3f(-1, -1, 0), Pnt3f(1, -1, 0), Pnt3f(1, 1, 0), Pnt3f(-1, 1, 0)});
    const auto four = [](Real32 s, Real32 t) {
        return make<GeoTexCoords2f>(std::vector<Vec2f>(4, Vec2f(s, t)));
    };
    quad->setNormals(make<GeoNormals3f>(std::vector<Vec3f>(4, Vec3f(0.6f, 0.8f, 0))));
    quad->setSecondaryColors(make<GeoColors4ub>(std::vector<Color4ub>(4, Color4ub(10, 20, 30, 40))));
    quad->setTexCoords(make<GeoTexCoords3f>(std::vector<Vec3f>(4, Vec3f(0.2f, 0.4f, 0.6f))));
    quad->setTexCoords1(make<GeoTexCoords1f>(std::vector<Real32>(4, 0.8f)));
    quad->setTexCoords2(four(0.0f, 0.2f));
    quad->setTexCoords3(four(0.2f, 0.0f));
    quad->setTexCoords4(four(0.4f, 0.6f));
    quad->setTexCoords5(four(0.6f, 0.4f));
    quad->setTexCoords6(four(0.8f, 1.0f));
    quad->setTexCoords7(four(1.0f, 0.8f));
    quad->setMaterial(plainMaterial());
    endEditCP(quad.ptr);
    SceneView view(makeNodeFor(quad.ptr));
    const struct
    {
        const char *expression;
        Pixel expected;
    } cases[] = {
        {"gl_Normal", {153, 204, 0, 255}},
        {"gl_SecondaryColor.rgb", {10, 20, 30, 255}},
        {"gl_MultiTexCoord0.xyz", {51, 102, 153, 255}},
        {"gl_MultiTexCoord1.xyz", {204, 0, 0, 255}},
        {"gl_MultiTexCoord2.xyz", {0, 51, 0, 255}},
        {"gl_MultiTexCoord3.xyz", {51, 0, 0, 255}},
        {"gl_MultiTexCoord4.xyz", {102, 153, 0, 255}},
        {"gl_MultiTexCoord5.xyz", {153, 102, 0, 255}},
        {"gl_MultiTexCoord6.xyz", {204, 255, 0, 255}},
        {"gl_MultiTexCoord7.xyz", {255, 204, 0, 255}},
    };
    for(const Way &way : ways)
    {
        take(quad.ptr, way);
        for(const auto &one : cases)
        {
            SCOPED_TRACE(std::string(way.name) + " " + one.expression);
            VertexProgram program(view, one.expression);
            EXPECT_EQ(view.at(view.render(), 0, 0), one.expected);
        }
    }
}

struct OtherAspect
{
    SceneView *view = nullptr;
    test::RgbaImage before;
    test::RgbaImage unsynchronised;
    test::RgbaImage after;
};

void drawOnOtherAspect(void *argument)
{
    OtherAspect &shared = *static_cast<OtherAspect *>(argument);
    Barrier *const barrier = Barrier::get("geometry");
    ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
    shared.before = shared.view->render();
    barrier->enter(2);
    barrier->enter(2);
    shared.unsynchronised = shared.view->render();
    ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
    shared.after = shared.view->render();
    shared.view->window()->deactivate();
}

TEST_F(GeometryOnGl, WhatIsEditedOnOneAspectIsDrawnOnAnother)
{
    for(const Way &way : ways)
    {
        SCOPED_TRACE(way.name);
        Thread::getCurrentChangeList()->clearAll();
        HeldGeometry quad({GL_QUADS}, {4},
                          {Pnt3f(-1, -1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 1, 0), Pnt3f(-1, 1, 0)});
        quad->setMaterial(plainMaterial());
        take(quad.ptr, way);
        endEditCP(quad.ptr);
        OtherAspect shared;
        {
            SceneView view(makeNodeFor(quad.ptr));
            view.window()->deactivate();
            shared.view = &view;
            Thread *const drawer = Thread::get("geometryDrawer");
            ASSERT_TRUE(drawer->runFunction(&drawOnOtherAspect, 1, &shared));
            Barrier *const barrier = Barrier::get("geometry");
            barrier->enter(2);
            for(UInt32 i = 0; i < 4; ++i)
                quad->getPositions()->setValue(quad->getPositions()->getValue(i) + Vec3f(1, 0, 0), i);
            endEditCP(quad->getPositions());
            barrier->enter(2);
            Thread::join(drawer);
            EXPECT_NE(view.at(shared.before, -0.5, 0), black);
            EXPECT_EQ(view.at(shared.before, 0.5, 0), black);
            EXPECT_TRUE(test::imagesMatch(shared.unsynchronised, shared.before));
            EXPECT_EQ(view.at(shared.after, -0.5, 0), black);
            EXPECT_NE(view.at(shared.after, 0.5, 0), black);
        }
        Thread::getCurrentChangeList()->clearAll();
    }
}

} // namespace
