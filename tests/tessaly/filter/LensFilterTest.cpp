/// \file
/// The lens filters: their pictures against their formulas on the processor, their programs and uniforms.

#include "FilterScene.h"

#include <Tessaly/OSGImprovedColorDisplayFilter.h>
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGOculusRiftFilter2.h>

OSG_USING_NAMESPACE
using namespace filter_test;

namespace
{

struct Lens
{
    double k[4] = {1.0, 0.22, 0.24, 0.0};
    double chroma[4] = {1, 0, 1, 0};
    double width = 1280, height = 800;
    double separation = 0.064, screen = 0.14976;
    bool left = true;
};

struct Point
{
    double x, y;
};

/// What a filter gives at a pixel; `sure` is false near the picture's edge, where a hair's breadth decides.
struct Shown
{
    double color[4];
    bool inside;
    bool sure;
};

bool isInside(Point p, double margin)
{
    return p.x > -margin && p.x < 1 + margin && p.y > -margin && p.y < 1 + margin;
}

Shown first(const test::RgbaImage &image, const Lens &lens, double u, double v)
{
    const double aspect = lens.width / (lens.height * 2);
    const double lc = 1 - lens.separation * 2 / lens.screen;
    const double r = -1 - lc;
    const double s =
        lens.k[0] + lens.k[1] * std::pow(r, 2) + lens.k[2] * std::pow(r, 4) + lens.k[3] * std::pow(r, 6);
    const double cx = lens.left ? lc : -lc;
    const double tx = (2 * u - 1 - cx), ty = (2 * v - 1) / aspect;
    const double q = tx * tx + ty * ty;
    const double distortion = lens.k[0] + lens.k[1] * q + lens.k[2] * q * q + lens.k[3] * q * q * q;
    const auto place = [&](double chroma) {
        return Point{(cx + tx * distortion * chroma / s + 1) / 2,
                     (ty * distortion * chroma * aspect / s + 1) / 2};
    };
    const Point red = place(lens.chroma[0] + lens.chroma[1] * q), green = place(1),
                blue = place(lens.chroma[2] + lens.chroma[3] * q);
    Shown shown = {{0, 0, 0, 1}, isInside(blue, 0), isInside(blue, 1e-3) == isInside(blue, -1e-3)};
    if(shown.inside)
    {
        shown.color[0] = sampled(image, red.x, red.y, 0);
        shown.color[1] = sampled(image, green.x, green.y, 1);
        shown.color[2] = sampled(image, blue.x, blue.y, 2);
        shown.color[3] = sampled(image, green.x, green.y, 3);
    }
    return shown;
}

/// \param box whether green is the box of five samples, as it should be, or one
Shown second(const test::RgbaImage &image, const Lens &lens, double u, double v, bool box = true)
{
    const double c = (1 - lens.separation * 2 / lens.screen) * 0.5;
    const double reach = (c + 0.5) * (c + 0.5) + 0.625 * 0.625;
    const double s = 0.5 / (lens.k[0] + reach * (lens.k[1] + reach * (lens.k[2] + reach * lens.k[3])));
    const double cx = lens.left ? 0.5 + c : 0.5 - c;
    const auto place = [&](double pu, double pv, int channel) {
        const double tx = (pu - cx) * 2, ty = (pv - 0.5) * 2.5;
        const double q = tx * tx + ty * ty;
        const double distortion = lens.k[0] + q * (lens.k[1] + q * (lens.k[2] + q * lens.k[3]));
        const double chroma = channel == 1 ? 1 : lens.chroma[channel] + lens.chroma[channel + 1] * q;
        return Point{cx + tx * s * distortion * chroma, 0.5 + ty * 0.8 * s * distortion * chroma};
    };
    const Point red = place(u, v, 0), green = place(u, v, 1), blue = place(u, v, 2);
    Shown shown = {{0, 0, 0, 1}, isInside(blue, 0), isInside(blue, 1e-3) == isInside(blue, -1e-3)};
    if(!shown.inside)
        return shown;
    // Derivatives over the quad of 2 x 2 pixels that the pixel is in.
    const double px = 1.0 / image.width, py = 1.0 / image.height;
    const double u0 = (2 * std::floor(u / px / 2) + 0.5) * px, v0 = (2 * std::floor(v / py / 2) + 0.5) * py;
    const Point dx0 = place(u0, v, 1), dx1 = place(u0 + px, v, 1), dy0 = place(u, v0, 1),
                dy1 = place(u, v0 + py, 1);
    const double ex = 0.5 * (dx1.x - dx0.x + dy1.x - dy0.x), ey = 0.5 * (dx1.y - dx0.y + dy1.y - dy0.y);
    const double corners =
        sampled(image, green.x - ex, green.y - ey, 1) + sampled(image, green.x + ex, green.y + ey, 1) +
        sampled(image, green.x - ex, green.y + ey, 1) + sampled(image, green.x + ex, green.y - ey, 1);
    const double middle = sampled(image, green.x, green.y, 1);
    shown.color[0] = sampled(image, red.x, red.y, 0);
    shown.color[1] = box ? (0.5 * corners + middle) / 3 : middle;
    shown.color[2] = sampled(image, blue.x, blue.y, 2);
    return shown;
}

typedef std::function<Shown(const test::RgbaImage &, const Lens &, double, double)> Formula;

/// The largest difference over all pixels and channels away from the picture's edge.
/// \param outside what is to be seen outside of the picture; null for what was there
int worst(const test::RgbaImage &got, const test::RgbaImage &input, const Lens &lens, const Formula &formula,
          const test::RgbaImage::Pixel *outside)
{
    int largest = 0, compared = 0, black = 0;
    for(int y = 0; y < got.height; ++y)
        for(int x = 0; x < got.width; ++x)
        {
            const Shown shown = formula(input, lens, (x + 0.5) / got.width, (y + 0.5) / got.height);
            if(!shown.sure)
                continue;
            ++(shown.inside ? compared : black);
            for(std::size_t c = 0; c < 4; ++c)
            {
                const int wanted = shown.inside         ? int(std::lround(255 * shown.color[c]))
                                   : outside != nullptr ? int((*outside)[c])
                                                        : int(input.at(x, y)[c]);
                largest = std::max(largest, std::abs(int(got.at(x, y)[c]) - wanted));
            }
        }
    // Both kinds of pixels are there.
    EXPECT_GT(compared, got.width * got.height / 3);
    EXPECT_GT(black, 10);
    return largest;
}

const test::RgbaImage::Pixel blackPixel = {0, 0, 0, 255};

const std::array<double, 4> chromas[] = {{1, 0, 1, 0}, {0.996, -0.004, 1.014, 0.0}, {0.9, 0.05, 1.05, -0.02}};

template <class FilterPtr>
void set(const FilterPtr &filter, const Lens &lens)
{
    filter->setDistortionK(Vec4f(Real32(lens.k[0]), Real32(lens.k[1]), Real32(lens.k[2]), Real32(lens.k[3])));
    filter->setChromaAbCorrection(Vec4f(Real32(lens.chroma[0]), Real32(lens.chroma[1]),
                                        Real32(lens.chroma[2]), Real32(lens.chroma[3])));
    filter->setWidth(UInt32(lens.width));
    filter->setHeight(UInt32(lens.height));
    filter->setLensSeparationDistance(Real32(lens.separation));
    filter->setHScreenSize(Real32(lens.screen));
    filter->setLeftEye(lens.left);
    endEditCP(filter);
}

std::vector<Lens> lenses()
{
    std::vector<Lens> result;
    for(const std::array<double, 4> &chroma : chromas)
        for(const bool left : {true, false})
        {
            Lens lens;
            std::copy(chroma.begin(), chroma.end(), lens.chroma);
            lens.left = left;
            result.push_back(lens);
        }
    Lens other;
    other.k[0] = 0.9;
    other.k[1] = 0.4;
    other.k[2] = 0.1;
    other.k[3] = 0.05;
    other.chroma[1] = 0.01;
    other.width = 1000;
    other.height = 700;
    other.separation = 0.05;
    other.left = false;
    result.push_back(other);
    return result;
}

class LensFilterTest : public FilterTest
{
  protected:
    SHLChunkPtr chunk() { return program("ColorDisplayFilter"); }

    Held<OculusRiftFilterPtr> plain;
    Held<OculusRiftFilter2Ptr> boxed;
};

} // namespace

TEST_F(LensFilterTest, TheFirstFiltersPictureIsThatOfItsFormulas)
{
    use({plain.ptr});
    for(const Lens &lens : lenses())
    {
        SCOPED_TRACE(testing::Message() << "left " << lens.left << ", chroma " << lens.chroma[0] << " "
                                        << lens.chroma[1] << " " << lens.chroma[2]);
        set(plain.ptr, lens);
        stage.frame();
        EXPECT_LE(worst(stage.pixels(), input, lens, first, &blackPixel), 2);
    }
}

TEST_F(LensFilterTest, TheSecondFiltersPictureIsThatOfItsFormulas)
{
    use({boxed.ptr});
    const Formula formula = [](const test::RgbaImage &i, const Lens &l, double u, double v) {
        return second(i, l, u, v);
    };
    for(const Lens &lens : lenses())
    {
        SCOPED_TRACE(testing::Message() << "left " << lens.left << ", chroma " << lens.chroma[0] << " "
                                        << lens.chroma[1] << " " << lens.chroma[2]);
        set(boxed.ptr, lens);
        stage.frame();
        EXPECT_LE(worst(stage.pixels(), input, lens, formula, nullptr), 2);
    }
}

TEST_F(LensFilterTest, TheSecondFiltersGreenIsABoxOfFiveSamples)
{
    picture = [](double x, double y) {
        return std::array<double, 4>{0.5, 0.5 + 0.5 * std::sin(width * x * 1.1) * std::cos(height * y * 0.4),
                                     0.5, 1};
    };
    use({boxed.ptr});
    const Lens lens;
    stage.frame();
    const auto with = [](bool box) {
        return [box](const test::RgbaImage &i, const Lens &l, double u, double v) {
            return second(i, l, u, v, box);
        };
    };
    EXPECT_LE(worst(stage.pixels(), input, lens, with(true), nullptr), 2);
    EXPECT_GT(worst(stage.pixels(), input, lens, with(false), nullptr), 20)
        << "the picture can tell the two apart";
}

TEST_F(LensFilterTest, TheUniformsAreThePromisedNumbers)
{
    const auto expect2 = [&](const char *name, double x, double y) {
        const Vec2f value = uniform<Vec2f>(chunk(), name);
        EXPECT_NEAR(value[0], x, 1e-5) << name;
        EXPECT_NEAR(value[1], y, 1e-5) << name;
    };
    use({plain.ptr});
    stage.frame();
    EXPECT_EQ(uniform<Int32>(chunk(), "Texture"), 0);
    EXPECT_EQ(uniform<Vec4f>(chunk(), "HmdWarpParam"), Vec4f(1.f, 0.22f, 0.24f, 0.f));
    EXPECT_FALSE(hasUniform(chunk(), "ChromAbParam"));
    expect2("ScaleIn", 1, 1.25);
    expect2("Scale", 0.58771, 0.47017);
    expect2("LensCenter", 0.14530, 0);
    plain->setLeftEye(false);
    endEditCP(plain.ptr, OculusRiftFilter::LeftEyeFieldMask);
    expect2("LensCenter", -0.14530, 0);
    expect2("Scale", 0.58771, 0.47017);

    use({boxed.ptr});
    stage.frame();
    EXPECT_EQ(uniform<Int32>(chunk(), "PostSceneColorTex"), 0);
    EXPECT_EQ(uniform<Vec4f>(chunk(), "HmdWarpParam"), Vec4f(1.f, 0.22f, 0.24f, 0.f));
    EXPECT_EQ(uniform<Vec4f>(chunk(), "Chroma"), Vec4f(1, 0, 1, 0));
    expect2("Scale", 0.39002, 0.31201);
    expect2("LensCenter", 0.57265, 0.5);
    boxed->setLeftEye(false);
    endEditCP(boxed.ptr, OculusRiftFilter2::LeftEyeFieldMask);
    expect2("LensCenter", 0.42735, 0.5);
}

TEST_F(LensFilterTest, TheProgramFollowsTheChroma)
{
    const auto isChromatic = [&] {
        return chunk()->getFragmentProgram().find("ChromAbParam") != std::string::npos;
    };
    use({plain.ptr});
    stage.frame();
    EXPECT_FALSE(isChromatic()) << "the default is neutral";
    const auto setChroma = [&](const Vec4f &chroma) {
        plain->setChromaAbCorrection(chroma);
        endEditCP(plain.ptr, OculusRiftFilter::ChromaAbCorrectionFieldMask);
    };
    setChroma(Vec4f(1, 0, 1, 0.01f));
    EXPECT_TRUE(isChromatic());
    EXPECT_EQ(uniform<Vec4f>(chunk(), "ChromAbParam"), Vec4f(1, 0, 1, 0.01f));
    stage.frame();
    EXPECT_EQ(chunk()->getNumCompiles(), 2u);
    setChroma(Vec4f(1, 0, 1, 0.02f));
    stage.frame();
    EXPECT_EQ(chunk()->getNumCompiles(), 2u) << "another value is another uniform only";
    setChroma(Vec4f(1, 5e-7f, 1, 0));
    EXPECT_FALSE(isChromatic()) << "neutral again";
    // One that is not neutral from the start on.
    setChroma(Vec4f(0.9f, 0, 1, 0));
    use({plain.ptr});
    stage.frame();
    EXPECT_TRUE(isChromatic());
}

TEST_F(LensFilterTest, AChangeAheadOfTheSettingUpIsHarmless)
{
    LogCapture log(LOG_WARNING);
    plain->setWidth(3);
    endEditCP(plain.ptr);
    boxed->setLeftEye(false);
    endEditCP(boxed.ptr);
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(LensFilterTest, TheHeightOfTheScreenHasNoEffect)
{
    use({plain.ptr});
    stage.frame();
    test::RgbaImage before = stage.pixels();
    plain->setVScreenSize(0.5f);
    endEditCP(plain.ptr);
    stage.frame();
    EXPECT_EQ(stage.pixels().bytes, before.bytes);

    use({boxed.ptr});
    stage.frame();
    before = stage.pixels();
    boxed->setVScreenSize(0.5f);
    // Nor have the pixels of the display, for the second filter.
    boxed->setWidth(77);
    boxed->setHeight(3);
    endEditCP(boxed.ptr);
    stage.frame();
    EXPECT_EQ(stage.pixels().bytes, before.bytes);
}

TEST_F(LensFilterTest, WithoutProgramsThePictureStaysAndOneLineSaysSo)
{
    Window::maskExtension("GL_ARB_shading_language_100");
    LogCapture log(LOG_WARNING);
    for(const DisplayFilterPtr &filter : {DisplayFilterPtr(plain.ptr), DisplayFilterPtr(boxed.ptr)})
    {
        use({filter});
        stage.frame();
        stage.frame();
        EXPECT_EQ(stage.pixels().bytes, input.bytes);
    }
    EXPECT_EQ(log.text(), "SHLChunk: GL_ARB_shading_language_100 or GL_ARB_shader_objects is not there, so "
                          "this window draws without programs\n");
}

TEST_F(LensFilterTest, AnAllZeroChromaCollapsesRedAndBlueOntoTheLensCentre)
{
    boxed->setChromaAbCorrection(Vec4f(0, 0, 0, 0));
    use({boxed.ptr});
    stage.frame();
    const test::RgbaImage got = stage.pixels();
    for(int y = 0; y < height; ++y)
        for(int x = 0; x < width; ++x)
        {
            ASSERT_NEAR(got.at(x, y)[0], 255 * sampled(input, 0.572650, 0.5, 0), 1.0);
            ASSERT_NEAR(got.at(x, y)[2], 255 * sampled(input, 0.572650, 0.5, 2), 1.0);
        }
}

TEST_F(LensFilterTest, BadNumbersLeaveTheFrameGoing)
{
    const Held<TestForegroundPtr> behind;
    stage.add(behind.ptr);
    for(const DisplayFilterPtr &filter : {DisplayFilterPtr(plain.ptr), DisplayFilterPtr(boxed.ptr)})
    {
        use({filter});
        for(const BitVector field :
            {BitVector(OculusRiftFilter::HeightFieldMask), BitVector(OculusRiftFilter::HScreenSizeFieldMask)})
        {
            plain->setHeight(field == OculusRiftFilter::HeightFieldMask ? 0 : 800);
            plain->setHScreenSize(field == OculusRiftFilter::HScreenSizeFieldMask ? 0.f : 0.14976f);
            endEditCP(plain.ptr);
            boxed->setHScreenSize(plain->getHScreenSize());
            endEditCP(boxed.ptr);
            stage.frame();
        }
    }
    EXPECT_EQ(behind->draws, 4);
}

TEST_F(LensFilterTest, WherePicturesArePaddedOneLineSaysSoAndTheFrameGoesOn)
{
    Window::maskExtension("GL_ARB_texture_non_power_of_two");
    const Held<TestForegroundPtr> behind;
    stage.add(behind.ptr);
    for(const DisplayFilterPtr &filter : {DisplayFilterPtr(plain.ptr), DisplayFilterPtr(boxed.ptr)})
    {
        behind->draws = 0;
        use({filter});
        LogCapture log(LOG_WARNING);
        stage.frame();
        stage.frame();
        EXPECT_EQ(log.text(),
                  "Lens filter: without GL_ARB_texture_non_power_of_two the picture is only right where its "
                  "sides are powers of two\n");
        EXPECT_EQ(behind->draws, 2);
    }
    // Where they are, the picture is right.
    stage.port->setSize(10, 3, 73, 34);
    endEditCP(stage.port.ptr);
    for(const bool isFirst : {true, false})
    {
        const DisplayFilterPtr filter = isFirst ? DisplayFilterPtr(plain.ptr) : DisplayFilterPtr(boxed.ptr);
        use({filter});
        stage.frame();
        ASSERT_EQ(input.width, 64);
        ASSERT_EQ(input.height, 32);
        const Formula formula = isFirst
                                    ? Formula(&first)
                                    : [](const test::RgbaImage &i, const Lens &l, double u, double v) {
                                          return second(i, l, u, v);
                                      };
        EXPECT_LE(worst(test::readPixels(10, 3, 64, 32), input, Lens(), formula,
                        isFirst ? &blackPixel : nullptr),
                  2);
    }
}

TEST_F(LensFilterTest, TheLensFiltersShareAGroupThatIsNotTheColourFilters)
{
    const Held<ImprovedColorDisplayFilterPtr> color;
    use({plain.ptr, color.ptr});
    LogCapture log(LOG_WARNING);
    stage.frame();
    const std::vector<DisplayFilterGroup *> groups = filters->getGroups();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0]->getName(), "ColorDisplayFilter");
    EXPECT_EQ(groups[1]->getName(), "ImprovedColorDisplayFilter");
    EXPECT_EQ(filters->findReadbackGroup("ColorDisplayFilter"), groups[0]);
    // The material of each has the picture first.
    for(DisplayFilterGroup *const group : groups)
        EXPECT_TRUE(TextureChunkPtr::dcast(group->getMaterial()->getChunk(0)) != NullFC);

    // A second lens in the group finds no place for its program.
    const Held<OculusRiftFilterPtr> other;
    use({plain.ptr, other.ptr});
    stage.frame();
    EXPECT_EQ(filters->getGroups().size(), 1u);
    EXPECT_TRUE(log.contains(LOG_WARNING, "no free slot"));
    EXPECT_LE(worst(stage.pixels(), input, Lens(), first, &blackPixel), 2) << "the first has it";
}

TEST_F(LensFilterTest, TwoFiltersInOneForegroundWorkOneAfterTheOther)
{
    // A matrix that swaps red and blue, and no curve: exact on bytes.
    const Held<ImprovedColorDisplayFilterPtr> color;
    color->setGamma(1.f);
    color->setMatrix(Matrix(0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1));
    color->editMFTable()->setValues({Vec3f(0, 0, 0), Vec3f(1, 1, 1)});
    endEditCP(color.ptr);
    Lens lens;
    std::copy(chromas[2].begin(), chromas[2].end(), lens.chroma);
    set(plain.ptr, lens);
    const auto swapped = [](const test::RgbaImage &image) {
        test::RgbaImage result = image;
        for(std::size_t i = 0; i < result.bytes.size(); i += 4)
            std::swap(result.bytes[i], result.bytes[i + 2]);
        return result;
    };
    use({color.ptr, plain.ptr});
    stage.frame();
    EXPECT_LE(worst(stage.pixels(), swapped(input), lens, first, &blackPixel), 2);
    use({plain.ptr, color.ptr});
    stage.frame();
    EXPECT_LE(worst(swapped(stage.pixels()), input, lens, first, &blackPixel), 2);
}

TEST_F(LensFilterTest, FiltersThatAreNotEnabledOrNullAreLeftOut)
{
    use({plain.ptr});
    plain->setEnabled(false);
    stage.frame();
    EXPECT_EQ(stage.pixels().bytes, input.bytes);
    EXPECT_TRUE(filters->getGroups().empty());
    plain->setEnabled(true);
    stage.frame();
    EXPECT_LE(worst(stage.pixels(), input, Lens(), first, &blackPixel), 2);
    use({NullFC, plain.ptr});
    LogCapture log(LOG_WARNING);
    stage.frame();
    stage.frame();
    EXPECT_EQ(log.text(), "DisplayFilterForeground::draw: a filter is null\n");
    EXPECT_LE(worst(stage.pixels(), input, Lens(), first, &blackPixel), 2);
    filters->setActive(false);
    stage.frame();
    EXPECT_EQ(stage.pixels().bytes, input.bytes);
}

TEST_F(LensFilterTest, TheStateOfGlIsThatOfBefore)
{
    const Held<TestForegroundPtr> behind;
    behind->onDraw = [](DrawActionBase *, Viewport *) {
        GLint unit = 0, texture = -1, programName = -1, mode = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        glGetIntegerv(GL_CURRENT_PROGRAM, &programName);
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        EXPECT_EQ(unit, GL_TEXTURE0);
        EXPECT_EQ(texture, 0);
        EXPECT_EQ(programName, 0);
        EXPECT_EQ(mode, GL_MODELVIEW);
        EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    };
    stage.add(behind.ptr);
    use({plain.ptr});
    stage.frame();
    EXPECT_EQ(behind->draws, 1);
}

TEST_F(LensFilterTest, NothingIsLeftWhenTheForegroundAndTheFiltersGo)
{
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    {
        const Held<DisplayFilterForegroundPtr> other;
        const Held<OculusRiftFilterPtr> one;
        const Held<OculusRiftFilter2Ptr> two;
        const Held<ImprovedColorDisplayFilterPtr> three;
        other->editMFFilter()->setValues({one.ptr, three.ptr});
        endEditCP(other.ptr);
        EXPECT_EQ(one.ptr.getRefCount(), 2);
        stage.frame();
        LogCapture quiet;
        other->draw(stage.action.get(), stage.port.ptr.get());
        other->editMFFilter()->setValues({two.ptr});
        endEditCP(other.ptr);
        other->draw(stage.action.get(), stage.port.ptr.get());
        EXPECT_EQ(one.ptr.getRefCount(), 1);
    }
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before);
}
