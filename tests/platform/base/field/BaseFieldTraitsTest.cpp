/// \file
/// Field traits of the base types: names, defaults, text and bytes.

#include <OpenSG/OSGBaseFieldTraits.h>
#include <OpenSG/OSGMemoryDataHandler.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace osg;

namespace
{

using Bytes = std::vector<UInt8>;

template <class T>
std::string textOf(const T &value)
{
    std::string text;
    FieldDataTraits<T>::putToString(value, text);
    return text;
}

/// Reads the text and says what is left of it, or "bad" where reading failed.
template <class T>
std::string readText(const char *text, T &value)
{
    const Char8 *cursor = text;
    if(FieldDataTraits<T>::getFromString(value, cursor))
        return cursor;
    EXPECT_EQ(cursor, text) << "bad text must not be passed";
    return "bad";
}

template <class T>
Bytes bytesOf(const T &value, bool networkOrder = true)
{
    MemoryDataHandler memory(networkOrder);
    FieldDataTraits<T>::copyToBin(memory, value);
    return memory.getData();
}

/// Value by value and as an array, in both orders, with sizes as announced; same(a, b) compares.
template <class T, class Same>
void expectBinaryRoundTrip(const std::vector<T> &values, Same same)
{
    using Traits = FieldDataTraits<T>;
    const UInt32 n = static_cast<UInt32>(values.size());
    for(const bool networkOrder : {false, true})
    {
        MemoryDataHandler memory(networkOrder);
        UInt64 size = 0;
        for(const T &value : values)
        {
            Traits::copyToBin(memory, value);
            size += Traits::getBinSize(value);
            ASSERT_EQ(memory.getData().size(), size);
        }
        Traits::copyToBin(memory, values.data(), n);
        Traits::copyToBin(memory, values.data(), 0);
        ASSERT_EQ(memory.getData().size(), size + Traits::getBinSize(values.data(), n));
        ASSERT_EQ(memory.getData().size(), 2 * size);

        for(const T &value : values)
        {
            T got = Traits::getDefault();
            Traits::copyFromBin(memory, got);
            ASSERT_TRUE(same(got, value));
        }
        std::vector<T> got(values.size(), Traits::getDefault());
        Traits::copyFromBin(memory, got.data(), n);
        for(UInt32 i = 0; i < n; ++i)
            ASSERT_TRUE(same(got[i], values[i]));
        EXPECT_EQ(memory.remaining(), 0u);
        EXPECT_FALSE(memory.failed());
    }
}

template <class T, class Same>
void expectTextRoundTrip(const std::vector<T> &values, Same same)
{
    for(const T &value : values)
    {
        const std::string text = textOf(value);
        T got = FieldDataTraits<T>::getDefault();
        ASSERT_EQ(readText(text.c_str(), got), "") << text;
        ASSERT_TRUE(same(got, value)) << text << " came back as " << textOf(got);
    }
    // Several, one behind the other, with commas between them.
    std::string all;
    for(const T &value : values)
    {
        if(!all.empty())
            all += ", ";
        FieldDataTraits<T>::putToString(value, all);
    }
    const Char8 *cursor = all.c_str();
    for(const T &value : values)
    {
        T got = FieldDataTraits<T>::getDefault();
        ASSERT_TRUE(FieldDataTraits<T>::getFromString(got, cursor));
        ASSERT_TRUE(same(got, value));
    }
    EXPECT_STREQ(cursor, "");
}

/// A number with random bits; a real one that is finite.
template <class T>
T randomNumber(std::mt19937_64 &random)
{
    for(;;)
    {
        const UInt64 bits = random();
        T value;
        std::memcpy(&value, &bits, sizeof(T));
        if constexpr(std::is_floating_point_v<T>)
        {
            if(!std::isfinite(value))
                continue;
        }
        return value;
    }
}

template <class T, class C, UInt32 N>
struct Case
{
    using Type = T;
    using Component = C;
    static constexpr UInt32 size = N;
};

template <class T>
class ComponentTraits : public testing::Test
{
};

using ComponentCases =
    testing::Types<Case<Int8, Int8, 1>, Case<UInt8, UInt8, 1>, Case<Int16, Int16, 1>,
                   Case<UInt16, UInt16, 1>, Case<Int32, Int32, 1>, Case<UInt32, UInt32, 1>,
                   Case<Int64, Int64, 1>, Case<UInt64, UInt64, 1>, Case<Real32, Real32, 1>,
                   Case<Real64, Real64, 1>, Case<Vec2f, Real32, 2>, Case<Vec3f, Real32, 3>,
                   Case<Vec4f, Real32, 4>, Case<Vec2d, Real64, 2>, Case<Vec3d, Real64, 3>,
                   Case<Vec4d, Real64, 4>, Case<Vec2s, Int16, 2>, Case<Vec2us, UInt16, 2>,
                   Case<Vec3us, UInt16, 3>, Case<Vec4ub, UInt8, 4>, Case<Pnt2f, Real32, 2>,
                   Case<Pnt3f, Real32, 3>, Case<Pnt4f, Real32, 4>, Case<Pnt2d, Real64, 2>,
                   Case<Pnt3d, Real64, 3>, Case<Color3f, Real32, 3>, Case<Color4f, Real32, 4>,
                   Case<Color3ub, UInt8, 3>, Case<Color4ub, UInt8, 4>, Case<Matrix, Real32, 16>,
                   Case<Quaternion, Real32, 4>>;

TYPED_TEST_SUITE(ComponentTraits, ComponentCases);

} // namespace

TYPED_TEST(ComponentTraits, ComeBackFromTextAndBytesBitByBit)
{
    using T = typename TypeParam::Type;
    using C = typename TypeParam::Component;
    const UInt64 seed = 4711;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    std::vector<T> values(300);
    for(T &value : values)
    {
        C numbers[TypeParam::size];
        for(C &number : numbers)
            number = randomNumber<C>(random);
        std::memcpy(static_cast<void *>(&value), numbers, sizeof(value));
    }
    const auto same = [](const T &a, const T &b) { return std::memcmp(&a, &b, sizeof(T)) == 0; };
    expectBinaryRoundTrip(values, same);
    expectTextRoundTrip(values, same);
}

TYPED_TEST(ComponentTraits, BadTextLeavesTheValueAlone)
{
    using T = typename TypeParam::Type;
    const T before = FieldDataTraits<T>::getDefault();
    std::string tooFew = "1";
    for(UInt32 i = 2; i < TypeParam::size; ++i)
        tooFew += " 1";
    if(TypeParam::size == 1)
        tooFew = "  ";
    const std::string cases[] = {"",    "x",   "1x 1 1 1", tooFew, tooFew + " ,", tooFew + " one",
                                 "- 1", "--1", "+-1",      "\"1\""};
    for(const std::string &text : cases)
    {
        T value = before;
        EXPECT_EQ(readText(text.c_str(), value), "bad") << "'" << text << "'";
        EXPECT_EQ(std::memcmp(&value, &before, sizeof(T)), 0) << "'" << text << "'";
    }
    T value = before;
    const Char8 *none = nullptr;
    EXPECT_FALSE(FieldDataTraits<T>::getFromString(value, none));
}

TYPED_TEST(ComponentTraits, ReadingStopsBehindTheValue)
{
    using T = typename TypeParam::Type;
    std::string text = " \t\n, +1";
    for(UInt32 i = 1; i < TypeParam::size; ++i)
        text += i % 2 == 1 ? " ,1" : "\n1";
    T value = FieldDataTraits<T>::getDefault();
    EXPECT_EQ(readText((text + ", rest").c_str(), value), ", rest");
    EXPECT_EQ(readText((text + "]").c_str(), value), "]");
}

TEST(BaseFieldTraits, HaveOpenSGsNames)
{
    EXPECT_STREQ(FieldDataTraits<bool>::getSName(), "SFBool");
    EXPECT_STREQ(FieldDataTraits<bool>::getMName(), "MFBool");
    EXPECT_STREQ(FieldDataTraits<Real32>::getSName(), "SFReal32");
    EXPECT_STREQ(FieldDataTraits<Real64>::getMName(), "MFReal64");
    EXPECT_STREQ(FieldDataTraits<std::string>::getSName(), "SFString");
    EXPECT_STREQ(FieldDataTraits<std::string>::getMName(), "MFString");
    EXPECT_STREQ(FieldDataTraits<Vec3f>::getSName(), "SFVec3f");
    EXPECT_STREQ(FieldDataTraits<Color4ub>::getMName(), "MFColor4ub");
    EXPECT_STREQ(FieldDataTraits<Matrix>::getSName(), "SFMatrix");
    EXPECT_STREQ(FieldDataTraits<DynamicVolume>::getSName(), "SFVolume");

    EXPECT_EQ(FieldDataTraits<bool>::getType().getName(), "bool");
    EXPECT_EQ(FieldDataTraits<UInt64>::getType().getName(), "UInt64");
    EXPECT_EQ(FieldDataTraits<std::string>::getType().getName(), "string");
    EXPECT_EQ(FieldDataTraits<DynamicVolume>::getType().getName(), "Volume");
    EXPECT_EQ(FieldDataTraits<Pnt3f>::getType().getParentName(), "None");
    EXPECT_EQ(TypeFactory::the()->findType("Plane"), &FieldDataTraits<Plane>::getType());
    EXPECT_NE(TypeFactory::the()->findType("Time"), nullptr);
}

TEST(BaseFieldTraits, StartAtZeroOrIdentity)
{
    EXPECT_EQ(FieldDataTraits<bool>::getDefault(), false);
    EXPECT_EQ(FieldDataTraits<Int32>::getDefault(), 0);
    EXPECT_EQ(FieldDataTraits<Real64>::getDefault(), 0.0);
    EXPECT_EQ(FieldDataTraits<std::string>::getDefault(), "");
    EXPECT_EQ(FieldDataTraits<Vec3f>::getDefault(), Vec3f(0, 0, 0));
    EXPECT_EQ(textOf(FieldDataTraits<Matrix>::getDefault()), "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1");
    EXPECT_EQ(textOf(FieldDataTraits<Quaternion>::getDefault()), "0 0 0 1");
}

TEST(BaseFieldTraits, TextIsTheShortestThatReadsBack)
{
    EXPECT_EQ(textOf(Real32(0.1f)), "0.1");
    EXPECT_EQ(textOf(Real64(0.1)), "0.1");
    EXPECT_EQ(textOf(Real32(1.0f)), "1");
    EXPECT_EQ(textOf(Real32(-2.5f)), "-2.5");
    EXPECT_EQ(textOf(UInt8(200)), "200");
    EXPECT_EQ(textOf(Int8(-128)), "-128");
    EXPECT_EQ(textOf(std::numeric_limits<UInt64>::max()), "18446744073709551615");
    EXPECT_EQ(textOf(Vec3f(1, 0.5f, -3)), "1 0.5 -3");
    EXPECT_EQ(textOf(Color4ub(255, 0, 51, 102)), "1 0 0.2 0.4");
    EXPECT_EQ(textOf(true), "true");
    EXPECT_EQ(textOf(false), "false");
}

TEST(BaseFieldTraits, WritingAppends)
{
    std::string text = "x: ";
    FieldDataTraits<Int32>::putToString(5, text);
    FieldDataTraits<std::string>::putToString("a", text);
    FieldDataTraits<bool>::putToString(true, text);
    EXPECT_EQ(text, "x: 5\"a\"true");
}

TEST(BaseFieldTraits, NumbersOutOfRangeAreBadText)
{
    Int8 small = 3;
    EXPECT_EQ(readText("128", small), "bad");
    EXPECT_EQ(readText("-129", small), "bad");
    UInt8 positive = 3;
    EXPECT_EQ(readText("-1", positive), "bad");
    EXPECT_EQ(readText("256", positive), "bad");
    Real32 real = 3.0f;
    EXPECT_EQ(readText("1e39", real), "bad");
    EXPECT_EQ(readText("1e-60", real), "bad");
    Int32 whole = 3;
    EXPECT_EQ(readText("1.5", whole), "bad");
    EXPECT_EQ(small, 3);
    EXPECT_EQ(positive, 3);
    EXPECT_EQ(real, 3.0f);
    EXPECT_EQ(whole, 3);

    EXPECT_EQ(readText("1e3", real), "");
    EXPECT_EQ(real, 1000.0f);
    EXPECT_EQ(readText(".5", real), "");
    EXPECT_EQ(real, 0.5f);
    EXPECT_EQ(readText("-inf", real), "");
    EXPECT_EQ(real, -std::numeric_limits<Real32>::infinity());
    EXPECT_EQ(readText("nan", real), "");
    EXPECT_TRUE(std::isnan(real));
}

TEST(BaseFieldTraits, TextDoesNotGoByTheLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    // Where none of these is installed the loop tests the C locale once more.
    for(const char *name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "C"})
    {
        if(std::setlocale(LC_ALL, name) == nullptr)
            continue;
        EXPECT_EQ(textOf(Real32(1.5f)), "1.5") << name;
        Vec2f vector;
        EXPECT_EQ(readText("1.5,2.5", vector), "") << name;
        EXPECT_EQ(vector, Vec2f(1.5f, 2.5f)) << name;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(BaseFieldTraits, BoolReadsWordsInAnyCaseAndNumbers)
{
    const std::pair<const char *, bool> good[] = {{"true", true},   {"TRUE", true},   {" True", true},
                                                  {"1", true},      {"7", true},      {"false", false},
                                                  {"FALSE", false}, {",0", false}};
    for(const auto &one : good)
    {
        bool value = !one.second;
        EXPECT_EQ(readText(one.first, value), "") << one.first;
        EXPECT_EQ(value, one.second) << one.first;
    }
    for(const char *text : {"", "yes", "truest", "tru", "1.0", "t"})
    {
        bool value = true;
        EXPECT_EQ(readText(text, value), "bad") << text;
        EXPECT_TRUE(value);
    }
    bool value = false;
    EXPECT_EQ(readText("true false", value), " false");

    EXPECT_EQ(bytesOf(true), Bytes{1});
    EXPECT_EQ(bytesOf(false), Bytes{0});
    EXPECT_EQ(FieldDataTraits<bool>::getBinSize(true), 1u);
    const bool flags[] = {true, false, true};
    bool got[3] = {};
    MemoryDataHandler memory;
    FieldDataTraits<bool>::copyToBin(memory, flags, 3);
    EXPECT_EQ(memory.getData().size(), FieldDataTraits<bool>::getBinSize(flags, 3));
    FieldDataTraits<bool>::copyFromBin(memory, got, 3);
    EXPECT_TRUE(got[0] && !got[1] && got[2]);
}

TEST(BaseFieldTraits, StringsStandInQuotesAndReadWithoutThem)
{
    EXPECT_EQ(textOf(std::string("one two")), "\"one two\"");
    EXPECT_EQ(textOf(std::string()), "\"\"");
    EXPECT_EQ(textOf(std::string("say \"x\" in c:\\dir")), "\"say \\\"x\\\" in c:\\\\dir\"");

    std::string value = "old";
    EXPECT_EQ(readText(" , \"one, two\", \"three\"", value), ", \"three\"");
    EXPECT_EQ(value, "one, two");
    EXPECT_EQ(readText("one, two ", value), "");
    EXPECT_EQ(value, "one, two ");
    EXPECT_EQ(readText("\"c:\\new\"", value), "");
    EXPECT_EQ(value, "c:\\new");
    EXPECT_EQ(readText("", value), "");
    EXPECT_EQ(value, "");
    value = "old";
    EXPECT_EQ(readText("\"no end", value), "bad");
    EXPECT_EQ(readText("\"no end\\", value), "bad");
    EXPECT_EQ(readText("\"no end\\\"", value), "bad");
    EXPECT_EQ(value, "old");
    const Char8 *none = nullptr;
    EXPECT_FALSE(FieldDataTraits<std::string>::getFromString(value, none));
}

TEST(BaseFieldTraits, StringsOfAnyBytesComeBack)
{
    const UInt32 seed = 99;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::string> texts = {"", "\"", "\\", "\\\"", " a ", "a,b"};
    for(int i = 0; i < 200; ++i)
    {
        std::string text(random() % 40, ' ');
        for(char &c : text)
            c = static_cast<char>(random() % 255 + 1);
        texts.push_back(text);
    }
    const auto same = [](const std::string &a, const std::string &b) { return a == b; };
    expectTextRoundTrip(texts, same);
    expectBinaryRoundTrip(texts, same);
    EXPECT_EQ(bytesOf(std::string("ab")), (Bytes{0, 0, 0, 3, 'a', 'b', 0}));
    EXPECT_EQ(FieldDataTraits<std::string>::getBinSize(std::string("ab")), 7u);
}

TEST(BaseFieldTraits, BytesAreTheComponentsInOrder)
{
    EXPECT_EQ(bytesOf(Vec2us(0x0102, 0x0304)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(bytesOf(Vec4ub(1, 2, 3, 4)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(bytesOf(Color3ub(9, 8, 7)), (Bytes{9, 8, 7}));
    EXPECT_EQ(bytesOf(Vec2f(1, -2)), (Bytes{0x3f, 0x80, 0, 0, 0xc0, 0, 0, 0}));
    EXPECT_EQ(bytesOf(Int64(-2)), (Bytes{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xfe}));
    EXPECT_EQ(FieldDataTraits<Matrix>::getBinSize(Matrix()), 64u);
    EXPECT_EQ(FieldDataTraits<Vec3d>::getBinSize(Vec3d()), 24u);
}

TEST(BaseFieldTraits, MatrixIsTextRowByRowAndBytesColumnByColumn)
{
    Matrix matrix;
    EXPECT_EQ(readText("1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16", matrix), "");
    for(UInt32 row = 0; row < 4; ++row)
        for(UInt32 column = 0; column < 4; ++column)
            EXPECT_EQ(matrix[column][row], static_cast<Real32>(4 * row + column + 1));
    EXPECT_EQ(textOf(matrix), "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16");

    MemoryDataHandler memory;
    FieldDataTraits<Matrix>::copyToBin(memory, matrix);
    Real32 numbers[16];
    memory.getValues(numbers, 16);
    EXPECT_EQ(numbers[1], 5.0f);
    EXPECT_EQ(numbers[4], 2.0f);
    EXPECT_EQ(numbers[12], 4.0f);
}

TEST(BaseFieldTraits, ByteColoursReadRealsAndClamp)
{
    Color3ub color;
    EXPECT_EQ(readText("1 0.5 0", color), "");
    EXPECT_EQ(color, Color3ub(255, 128, 0));
    EXPECT_EQ(readText("7 -3 nan", color), "");
    EXPECT_EQ(color, Color3ub(255, 0, 0));
    EXPECT_EQ(readText("inf -inf 0.002", color), "");
    EXPECT_EQ(color, Color3ub(255, 0, 1));
}

TEST(BaseFieldTraits, PlanesComeBackBitByBit)
{
    const UInt32 seed = 5;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<Real32> uniform(-1.0f, 1.0f);
    std::vector<Plane> planes = {Plane()};
    for(int i = 0; i < 300; ++i)
    {
        const Vec3f normal(uniform(random), uniform(random), uniform(random) + 1.1f);
        planes.push_back(Plane(normal, 10.0f * uniform(random)));
    }
    const auto same = [](const Plane &a, const Plane &b) { return a == b; };
    expectTextRoundTrip(planes, same);
    expectBinaryRoundTrip(planes, same);

    Plane plane;
    EXPECT_EQ(readText("0 2 0 3", plane), "");
    EXPECT_EQ(plane, Plane(Vec3f(0, 2, 0), 3.0f));
    EXPECT_EQ(plane.getNormal(), Vec3f(0, 1, 0));
    EXPECT_EQ(textOf(plane), "0 1 0 3");
    EXPECT_EQ(readText("0 2 0", plane), "bad");
}

TEST(BaseFieldTraits, VolumesComeBackWithKindShapeAndState)
{
    std::vector<DynamicVolume> volumes(8);
    static_cast<BoxVolume &>(volumes[1].getInstance()).setBounds(Pnt3f(-1, 0.1f, 2), Pnt3f(3, 4, 5e10f));
    volumes[2].setVolumeType(DynamicVolume::SPHERE_VOLUME);
    static_cast<SphereVolume &>(volumes[2].getInstance()).setValue(Pnt3f(1, 2, 3), 0.3f);
    volumes[3].setInfinite();
    volumes[3].setEmpty(false);
    volumes[4].setVolumeType(DynamicVolume::SPHERE_VOLUME);
    volumes[5] = volumes[2];
    volumes[5].setInfinite();
    volumes[6] = volumes[1];
    volumes[7] = volumes[2];
    const auto sameShape = [](const DynamicVolume &a, const DynamicVolume &b) {
        return a.getType() == b.getType() && a.isEmpty() == b.isEmpty() && a.isInfinite() == b.isInfinite() &&
               (a.isEmpty() || a.isInfinite() || a == b);
    };
    expectTextRoundTrip(volumes, sameShape);
    volumes[6].setStatic();
    volumes[7].setValid(false);
    const auto same = [](const DynamicVolume &a, const DynamicVolume &b) {
        return a == b && a.getState() == b.getState();
    };
    expectBinaryRoundTrip(volumes, same);

    EXPECT_EQ(textOf(volumes[0]), "BoxVolume empty");
    EXPECT_EQ(textOf(volumes[1]), "BoxVolume -1 0.1 2 3 4 5e+10");
    EXPECT_EQ(textOf(volumes[2]), "SphereVolume 1 2 3 0.3");
    EXPECT_EQ(textOf(volumes[3]), "BoxVolume infinite");

    DynamicVolume small;
    small.setVolumeType(DynamicVolume::SPHERE_VOLUME);
    static_cast<SphereVolume &>(small.getInstance()).setValue(Pnt3f(1, 0, 0), 2);
    EXPECT_EQ(bytesOf(small), (Bytes{0, 1, 0, 1, 0x3f, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0}));
}

TEST(BaseFieldTraits, BadVolumeTextAndBytesDoNoHarm)
{
    DynamicVolume volume;
    static_cast<BoxVolume &>(volume.getInstance()).setBounds(Pnt3f(1, 1, 1), Pnt3f(2, 2, 2));
    const DynamicVolume before = volume;
    for(const char *text : {"", "Box 1 2 3 4 5 6", "BoxVolume", "BoxVolume 1 2 3 4 5", "SphereVolume 1 2 3",
                            "1 2 3 4 5 6", "BoxVolume full", "BoxVolumes 1 2 3 4 5 6"})
    {
        EXPECT_EQ(readText(text, volume), "bad") << text;
        EXPECT_EQ(volume, before) << text;
    }
    const Char8 *none = nullptr;
    EXPECT_FALSE(FieldDataTraits<DynamicVolume>::getFromString(volume, none));

    MemoryDataHandler unknownKind(Bytes{0, 9, 0, 1}, true);
    FieldDataTraits<DynamicVolume>::copyFromBin(unknownKind, volume);
    EXPECT_EQ(volume.getType(), DynamicVolume::BOX_VOLUME);
    EXPECT_TRUE(volume.isEmpty());
    MemoryDataHandler shortStream(Bytes{0, 1, 0, 1, 0x3f}, true);
    FieldDataTraits<DynamicVolume>::copyFromBin(shortStream, volume);
    EXPECT_TRUE(shortStream.failed());
    EXPECT_EQ(volume.getType(), DynamicVolume::SPHERE_VOLUME);
}
