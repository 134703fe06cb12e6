/// \file
/// Binary data: exact bytes in both orders, round trips, and streams that lie or end early.

#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGMemoryDataHandler.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace osg;

namespace
{

using Bytes = std::vector<UInt8>;

bool littleEndian()
{
    const UInt16 probe = 1;
    UInt8 first;
    std::memcpy(&first, &probe, 1);
    return first == 1;
}

/// Writes into a list of blocks, as a socket would get them, and doesn't know how much is left to read.
class BlockHandler : public BinaryDataHandler
{
  public:
    explicit BlockHandler(UInt32 threshold) : BinaryDataHandler(threshold) {}
    ~BlockHandler() override { flush(); }

    std::vector<Bytes> blocks;
    Bytes source;
    bool broken = false;

  protected:
    bool write(const void *bytes, UInt32 size) override
    {
        const UInt8 *first = static_cast<const UInt8 *>(bytes);
        blocks.emplace_back(first, first + size);
        return !broken;
    }
    bool read(void *target, UInt32 size) override
    {
        if(size > source.size())
            return false;
        std::memcpy(target, source.data(), size);
        source.erase(source.begin(), source.begin() + size);
        return true;
    }
};

template <class T>
void expectRoundTrip(const std::vector<T> &values)
{
    for(const bool networkOrder : {false, true})
    {
        MemoryDataHandler memory(networkOrder);
        for(const T &value : values)
            memory.putValue(value);
        memory.putValues(values.data(), static_cast<UInt32>(values.size()));
        EXPECT_EQ(memory.getData().size(), 2 * values.size() * sizeof(T));

        for(const T &value : values)
        {
            T got{};
            memory.getValue(got);
            EXPECT_EQ(std::memcmp(&got, &value, sizeof(T)), 0);
        }
        std::vector<T> got(values.size());
        memory.getValues(got.data(), static_cast<UInt32>(got.size()));
        EXPECT_EQ(std::memcmp(got.data(), values.data(), values.size() * sizeof(T)), 0);
        EXPECT_EQ(memory.remaining(), 0u);
        EXPECT_FALSE(memory.failed());
    }
}

template <class T>
std::vector<T> randomBits(std::size_t number, UInt32 seed)
{
    std::mt19937 random(seed);
    std::vector<T> values(number);
    for(T &value : values)
    {
        UInt8 bytes[sizeof(T)];
        for(UInt8 &byte : bytes)
            byte = static_cast<UInt8>(random());
        std::memcpy(&value, bytes, sizeof(T));
    }
    return values;
}

} // namespace

TEST(BinaryData, NetworkOrderPutsTheBigEndFirst)
{
    MemoryDataHandler memory(true);
    memory.putValue(UInt8(0x01));
    memory.putValue(Int8(-2));
    memory.putValue(UInt16(0x0203));
    memory.putValue(Int16(-2));
    memory.putValue(UInt32(0x04050607u));
    memory.putValue(Int32(-2));
    memory.putValue(UInt64(0x08090a0b0c0d0e0full));
    memory.putValue(Int64(-2));
    memory.putValue(Real32(1.0f));
    memory.putValue(Real64(-2.0));
    memory.putValue(true);
    memory.putValue(false);
    memory.putValue(std::string("ab"));
    const Bytes expected = {0x01, 0xfe,                                                 //
                            0x02, 0x03, 0xff, 0xfe,                                     //
                            0x04, 0x05, 0x06, 0x07, 0xff, 0xff, 0xff, 0xfe,             //
                            0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,             //
                            0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xfe,             //
                            0x3f, 0x80, 0x00, 0x00,                                     //
                            0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,             //
                            0x01, 0x00,                                                 //
                            0x00, 0x00, 0x00, 0x03, 'a',  'b',  0x00};
    EXPECT_EQ(memory.getData(), expected);
}

TEST(BinaryData, HostOrderIsTheMemoryOfTheValue)
{
    MemoryDataHandler memory;
    EXPECT_FALSE(memory.getNetworkOrder());
    memory.putValue(UInt16(0x0203));
    memory.putValue(UInt32(0x04050607u));
    memory.putValue(std::string("a"));
    const Bytes little = {0x03, 0x02, 0x07, 0x06, 0x05, 0x04, 0x02, 0x00, 0x00, 0x00, 'a', 0x00};
    const Bytes big = {0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x00, 0x00, 0x00, 0x02, 'a', 0x00};
    EXPECT_EQ(memory.getData(), littleEndian() ? little : big);
}

TEST(BinaryData, ArraysHaveTheBytesOfTheirValues)
{
    MemoryDataHandler memory;
    memory.setNetworkOrder(true);
    EXPECT_TRUE(memory.getNetworkOrder());
    const UInt16 numbers[] = {0x0102, 0x0304};
    const bool flags[] = {true, false, true};
    const std::string texts[] = {"x", ""};
    memory.putValues(numbers, 2);
    memory.putValues(flags, 3);
    memory.putValues(texts, 2);
    const Bytes expected = {1, 2, 3, 4, 1, 0, 1, 0, 0, 0, 2, 'x', 0, 0, 0, 0, 1, 0};
    EXPECT_EQ(memory.getData(), expected);

    bool gotFlags[3] = {};
    std::string gotTexts[2];
    UInt16 gotNumbers[2] = {};
    memory.getValues(gotNumbers, 2);
    memory.getValues(gotFlags, 3);
    memory.getValues(gotTexts, 2);
    EXPECT_EQ(gotNumbers[1], 0x0304);
    EXPECT_TRUE(gotFlags[0] && !gotFlags[1] && gotFlags[2]);
    EXPECT_EQ(gotTexts[0], "x");
    EXPECT_EQ(gotTexts[1], "");
    EXPECT_FALSE(memory.failed());
}

TEST(BinaryData, EveryNumberTypeComesBackAsItWas)
{
    const UInt32 seed = 20240;
    SCOPED_TRACE("seed " + std::to_string(seed));
    // More values than are turned round at a time.
    expectRoundTrip(randomBits<UInt8>(20000, seed));
    expectRoundTrip(randomBits<Int8>(100, seed));
    expectRoundTrip(randomBits<UInt16>(20000, seed));
    expectRoundTrip(randomBits<Int16>(100, seed));
    expectRoundTrip(randomBits<UInt32>(20000, seed));
    expectRoundTrip(randomBits<Int32>(100, seed));
    expectRoundTrip(randomBits<UInt64>(20000, seed));
    expectRoundTrip(randomBits<Int64>(100, seed));
    expectRoundTrip(randomBits<Real32>(20000, seed));
    expectRoundTrip(randomBits<Real64>(20000, seed));
}

TEST(BinaryData, StringsMayHoldZeroBytes)
{
    MemoryDataHandler memory;
    const std::string text("a\0b", 3);
    memory.putValue(text);
    std::string got = "old";
    memory.getValue(got);
    EXPECT_EQ(got, text);
}

TEST(BinaryData, BoolOfAnyOtherByteIsTrue)
{
    MemoryDataHandler memory(Bytes{2, 255, 0});
    bool flags[3] = {};
    memory.getValues(flags, 3);
    EXPECT_TRUE(flags[0]);
    EXPECT_TRUE(flags[1]);
    EXPECT_FALSE(flags[2]);
}

TEST(BinaryData, ReadingPastTheEndGivesZerosAndSaysSo)
{
    MemoryDataHandler memory(Bytes{1, 2, 3});
    EXPECT_TRUE(memory.canRead(3));
    EXPECT_FALSE(memory.canRead(4));
    UInt32 number = 77;
    memory.getValue(number);
    EXPECT_EQ(number, 0u);
    EXPECT_TRUE(memory.failed());
    EXPECT_EQ(memory.remaining(), 0u);
    UInt8 byte = 77;
    memory.getValue(byte);
    EXPECT_EQ(byte, 0u);

    memory.rewind();
    EXPECT_FALSE(memory.failed());
    memory.getValue(byte);
    EXPECT_EQ(byte, 1u);
    memory.clear();
    EXPECT_TRUE(memory.getData().empty());
    EXPECT_FALSE(memory.canRead(1));
    EXPECT_TRUE(memory.canRead(0));
}

TEST(BinaryData, StringThatClaimsMoreThanThereIsComesOutEmpty)
{
    MemoryDataHandler memory(Bytes{0xff, 0xff, 0xff, 0xf0, 'a', 'b'}, true);
    std::string text = "old";
    memory.getValue(text);
    EXPECT_EQ(text, "");
    EXPECT_TRUE(memory.failed());
    EXPECT_EQ(memory.remaining(), 0u);

    // A length of 0 lacks even the closing zero byte; it reads as empty and takes nothing more.
    MemoryDataHandler zero(Bytes{0, 0, 0, 0, 9}, true);
    zero.getValue(text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(zero.remaining(), 1u);
}

TEST(BinaryData, SourceThatDoesNotKnowItsEndCanNotBeMadeToAllocateALot)
{
    BlockHandler handler(0);
    handler.setNetworkOrder(true);
    handler.source = Bytes{0xff, 0xff, 0xff, 0xf0};
    handler.source.resize(40000, 'x');
    std::string text;
    handler.getValue(text);
    EXPECT_EQ(text, "");
    EXPECT_LT(text.capacity(), 1000000u);
    EXPECT_TRUE(handler.failed());
}

TEST(BinaryData, LongStringComesBackFromASourceThatDoesNotKnowItsEnd)
{
    BlockHandler handler(0);
    std::string text(100001, 'a');
    for(std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>('a' + i % 26);
    handler.putValue(text);
    for(const Bytes &block : handler.blocks)
        handler.source.insert(handler.source.end(), block.begin(), block.end());
    std::string got;
    handler.getValue(got);
    EXPECT_EQ(got, text);
    EXPECT_TRUE(handler.source.empty());
    EXPECT_FALSE(handler.failed());
}

TEST(BinaryData, BlocksAreCopiedFreedAndAllocated)
{
    MemoryDataHandler memory;
    MemoryHandle block = new UInt8[3]{5, 6, 7};
    memory.putAndFree(block, 3);
    memory.put(nullptr, 0);
    memory.get(nullptr, 0);
    EXPECT_EQ(memory.getData(), (Bytes{5, 6, 7}));

    MemoryHandle got = nullptr;
    memory.getAndAlloc(got, 3);
    ASSERT_NE(got, nullptr);
    EXPECT_EQ(Bytes(got, got + 3), (Bytes{5, 6, 7}));
    delete[] got;

    memory.getAndAlloc(got, 0);
    EXPECT_EQ(got, nullptr);
    EXPECT_FALSE(memory.failed());
    memory.getAndAlloc(got, 0xfffffff0u);
    EXPECT_EQ(got, nullptr);
    EXPECT_TRUE(memory.failed());
}

TEST(BinaryData, SmallBlocksAreGatheredAndLargeOnesGoOutByThemselves)
{
    BlockHandler handler(4);
    handler.putValue(UInt8(1));
    handler.putValue(UInt16(0));
    EXPECT_TRUE(handler.blocks.empty());
    const UInt8 large[4] = {1, 2, 3, 4};
    handler.put(large, 4);
    ASSERT_EQ(handler.blocks.size(), 2u);
    EXPECT_EQ(handler.blocks[0], (Bytes{1, 0, 0}));
    EXPECT_EQ(handler.blocks[1], (Bytes{1, 2, 3, 4}));
    handler.putValue(UInt8(9));
    handler.flush();
    handler.flush();
    ASSERT_EQ(handler.blocks.size(), 3u);
    EXPECT_EQ(handler.blocks[2], (Bytes{9}));
}

TEST(BinaryData, WriteThatFailsIsRemembered)
{
    BlockHandler handler(0);
    handler.broken = true;
    handler.putValue(UInt8(1));
    EXPECT_TRUE(handler.failed());
    handler.clearFailed();
    EXPECT_FALSE(handler.failed());
}
