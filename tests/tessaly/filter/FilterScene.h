#ifndef TESTS_TESSALY_FILTER_FILTERSCENE_H
#define TESTS_TESSALY_FILTER_FILTERSCENE_H

/// \file
/// A window whose picture goes through display filters, and the picture as it was ahead of them.

#include "support/PixelCompare.h"
#include "tessaly/foreground/ForegroundScene.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilter.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGDisplayFilterGroup.h>
#include <OpenSG/OSGSHLChunk.h>

#include <cmath>
#include <functional>

namespace filter_test
{

using foreground_test::Held;
using foreground_test::Stage;

/// Red, green, blue and alpha at a place of the picture, 0 to 1 each.
using Picture = std::function<std::array<double, 4>(double x, double y)>;

/// Slow waves: neighbours differ by little, so that filtering has nothing to hide.
inline std::array<double, 4> waves(double x, double y)
{
    return {0.5 + 0.5 * std::sin(5 * x + 2 * y), 0.5 + 0.5 * std::cos(4 * y - 3 * x),
            0.5 + 0.5 * std::sin(6 * x * y + 1), 0.6 + 0.4 * std::cos(3 * x + 5 * y)};
}

/// Bilinear between the centres of pixels, clamped to the edge; of a channel, 0 to 1.
inline double sampled(const test::RgbaImage &image, double u, double v, int channel)
{
    const double x = u * image.width - 0.5, y = v * image.height - 0.5;
    const double fx = x - std::floor(x), fy = y - std::floor(y);
    const auto at = [&](double column, double row) {
        const int i = int(std::min(std::max(column, 0.0), image.width - 1.0));
        const int j = int(std::min(std::max(row, 0.0), image.height - 1.0));
        return image.at(i, j)[std::size_t(channel)] / 255.0;
    };
    const double x0 = std::floor(x), y0 = std::floor(y);
    return (1 - fy) * ((1 - fx) * at(x0, y0) + fx * at(x0 + 1, y0)) +
           fy * ((1 - fx) * at(x0, y0 + 1) + fx * at(x0 + 1, y0 + 1));
}

class FilterTest : public ::testing::Test
{
  protected:
    static constexpr int width = 90;
    static constexpr int height = 70;

    static void SetUpTestSuite() { ASSERT_TRUE(osg::osgInit(0, nullptr)); }

    void SetUp() override
    {
        drawing->onDraw = [this](osg::DrawActionBase *, osg::Viewport *port) {
            const int w = port->getPixelWidth(), h = port->getPixelHeight();
            test::RgbaImage image(w, h);
            for(int y = 0; y < h; ++y)
                for(int x = 0; x < w; ++x)
                {
                    const std::array<double, 4> color = picture((x + 0.5) / w, (y + 0.5) / h);
                    test::RgbaImage::Pixel pixel;
                    for(std::size_t c = 0; c < 4; ++c)
                        pixel[c] = std::uint8_t(std::lround(255 * std::min(std::max(color[c], 0.0), 1.0)));
                    image.set(x, y, pixel);
                }
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glDisable(GL_DEPTH_TEST);
            glDisable(GL_LIGHTING);
            glRasterPos2f(-1, -1);
            glDrawPixels(w, h, GL_RGBA, GL_UNSIGNED_BYTE, image.bytes.data());
            glEnable(GL_DEPTH_TEST);
            input = test::readPixels(port->getPixelLeft(), port->getPixelBottom(), w, h);
            EXPECT_EQ(input.bytes, image.bytes);
        };
        stage.add(drawing.ptr);
        stage.add(filters.ptr);
    }
    void TearDown() override { osg::Window::unmaskAll(); }

    void use(const std::vector<osg::DisplayFilterPtr> &list)
    {
        filters->editMFFilter()->setValues(list);
        osg::endEditCP(filters.ptr, osg::DisplayFilterForeground::FilterFieldMask);
    }
    /// The program that a group works with.
    osg::SHLChunkPtr program(const char *group)
    {
        return osg::SHLChunkPtr::dcast(filters->findReadbackGroup(group)->getMaterial()->find(
            osg::SHLChunk::getClassType(), osg::State::AutoSlot));
    }
    template <class ValueT>
    static ValueT uniform(const osg::SHLChunkPtr &chunk, const char *name)
    {
        ValueT value = ValueT();
        EXPECT_TRUE(chunk->getUniformParameter(name, value)) << name;
        return value;
    }
    static bool hasUniform(const osg::SHLChunkPtr &chunk, const char *name)
    {
        for(const osg::ShaderParameterPtr &parameter : chunk->getMFParameters()->getValues())
            if(parameter->getName() == name)
                return true;
        return false;
    }

    Picture picture = waves;
    test::RgbaImage input; ///< of the latest frame
    Stage stage{width, height};
    Held<osg::TestForegroundPtr> drawing;
    Held<osg::DisplayFilterForegroundPtr> filters;
};

} // namespace filter_test

#endif
