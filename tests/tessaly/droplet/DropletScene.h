#ifndef TESTS_TESSALY_DROPLET_DROPLETSCENE_H
#define TESTS_TESSALY_DROPLET_DROPLETSCENE_H

/// \file
/// A window, an object that can carry liquid, and maps as arrays.

#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoTexCoords3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include "support/Held.h"

#include "droplet/DropletFlow.h"
#include "droplet/DropletFlowContext.h"
#include "droplet/DropletSources.h"

namespace droplet_test
{

using test::Held;

/// A surface map: velocity in x and y, volume in z; x fastest.
struct Map
{
    int width = 0;
    int height = 0;
    std::vector<std::array<float, 4>> cells;

    Map() = default;
    Map(int w, int h) : width(w), height(h), cells(std::size_t(w) * std::size_t(h), {0, 0, 0, 0}) {}

    std::array<float, 4> &at(int x, int y) { return cells[std::size_t(y * width + x)]; }
    const std::array<float, 4> &at(int x, int y) const { return cells[std::size_t(y * width + x)]; }
    /// As textures that repeat are read.
    const std::array<float, 4> &wrapped(int x, int y) const
    {
        return at((x % width + width) % width, (y % height + height) % height);
    }
    double volume() const
    {
        double sum = 0;
        for(const auto &cell : cells)
            sum += double(cell[2]);
        return sum;
    }
};

/// A window whose context is current, and an action, told to the droplet context.
struct Stage
{
    Held<osg::WindowPtr> window{osg::EGLWindow::create()};
    std::unique_ptr<osg::RenderAction> action{osg::RenderAction::create()};

    Stage()
    {
        window->resize(64, 48);
        window->init();
        begin();
    }
    ~Stage()
    {
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end";
        DropletFlowContext::get()->setRender(osg::NullFC, nullptr);
    }

    /// What render does ahead of a simulation's work.
    void begin()
    {
        ASSERT_TRUE(window->activate());
        window->frameInit();
        action->setWindow(window.ptr.getCPtr());
        DropletFlowContext::get()->setRender(window, action.get());
    }

    GLuint bind(const osg::TextureChunkPtr &texture)
    {
        window->activate();
        window->validateGLObject(texture->getGLId());
        const GLuint name = window->getGLObjectId(texture->getGLId());
        glBindTexture(GL_TEXTURE_2D, name);
        return name;
    }
    Map read(const osg::TextureChunkPtr &texture)
    {
        bind(texture);
        GLint width = 0, height = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
        Map map(width, height);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, map.cells.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return map;
    }
    /// The texture rounds to half floats; read tells what it has.
    void write(const osg::TextureChunkPtr &texture, const Map &map)
    {
        bind(texture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, map.width, map.height, GL_RGBA, GL_FLOAT, map.cells.data());
        glBindTexture(GL_TEXTURE_2D, 0);
    }
};

/// A plane over the whole unwrap: normals +z, tangents +x.
inline osg::NodePtr makeObject(const osg::ChunkMaterialPtr &material = osg::NullFC, float size = 1.0f)
{
    const osg::GeometryPtr plane = osg::makePlaneGeo(size, size, 1, 1);
    const osg::GeoTexCoords3fPtr tangents = osg::GeoTexCoords3f::create();
    tangents->getField().setValues(std::vector<osg::Vec3f>(4, osg::Vec3f(1, 0, 0)));
    osg::endEditCP(tangents);
    plane->setTexCoords1(tangents);
    // The indices of the plane name texture coordinates too.
    plane->getIndexMapping()[0] |= osg::Geometry::MapTexCoords1;
    if(material != osg::NullFC)
        plane->setMaterial(material);
    osg::endEditCP(plane);
    return osg::makeNodeFor(plane);
}

/// The distance of half floats around a value.
inline double halfStep(double value)
{
    const double magnitude = std::max(std::abs(value), std::ldexp(1.0, -14));
    return std::ldexp(1.0, int(std::floor(std::log2(magnitude))) - 10);
}

/// The type names of a material's chunks, in order.
inline std::vector<std::string> chunkTypes(const osg::ChunkMaterialPtr &material)
{
    std::vector<std::string> types;
    for(osg::UInt32 i = 0; i < material->getChunks().size(); ++i)
        types.push_back(material->getChunk(i)->getTypeName());
    return types;
}

template <class ValueT>
ValueT uniform(const osg::SHLChunkPtr &shader, const char *name)
{
    ValueT value{};
    EXPECT_TRUE(shader->getUniformParameter(name, value)) << name;
    return value;
}

} // namespace droplet_test

#endif
