/// \file
/// Values as bytes: what fields are written to and read from when containers are synchronised.

#include "OSGBinaryDataHandler.h"

#include <algorithm>

OSG_BEGIN_NAMESPACE

namespace
{

/// How much is gathered before it is written, and how much is swapped or read at a time.
constexpr UInt32 chunkSize = 16384;

bool hostIsNetwork()
{
    const UInt16 probe = 1;
    UInt8 first = 0;
    std::memcpy(&first, &probe, 1);
    return first == 0;
}

/// Turns the bytes of each value of `width` bytes round.
void swapBytes(UInt8 *bytes, UInt32 width, std::size_t number)
{
    for(std::size_t i = 0; i < number; ++i)
        std::reverse(bytes + i * width, bytes + (i + 1) * width);
}

} // namespace

BinaryDataHandler::BinaryDataHandler(UInt32 zeroCopyThreshold, bool networkOrder)
    : _zeroCopyThreshold(zeroCopyThreshold), _networkOrder(networkOrder)
{
}

BinaryDataHandler::~BinaryDataHandler() = default;

void BinaryDataHandler::setNetworkOrder(bool networkOrder)
{
    _networkOrder = networkOrder;
}

bool BinaryDataHandler::getNetworkOrder() const
{
    return _networkOrder;
}

bool BinaryDataHandler::failed() const
{
    return _failed;
}

void BinaryDataHandler::clearFailed()
{
    _failed = false;
}

bool BinaryDataHandler::canRead(UInt64) const
{
    return true;
}

void BinaryDataHandler::flush()
{
    if(_gathered.empty())
        return;
    if(!write(_gathered.data(), static_cast<UInt32>(_gathered.size())))
        _failed = true;
    _gathered.clear();
}

void BinaryDataHandler::put(const void *source, UInt32 size)
{
    if(size == 0)
        return;
    if(size >= _zeroCopyThreshold)
    {
        flush();
        if(!write(source, size))
            _failed = true;
        return;
    }
    const UInt8 *bytes = static_cast<const UInt8 *>(source);
    _gathered.insert(_gathered.end(), bytes, bytes + size);
    if(_gathered.size() >= chunkSize)
        flush();
}

void BinaryDataHandler::putAndFree(MemoryHandle source, UInt32 size)
{
    put(source, size);
    delete[] source;
}

void BinaryDataHandler::get(void *target, UInt32 size)
{
    if(size == 0)
        return;
    if(!read(target, size))
    {
        std::memset(target, 0, size);
        _failed = true;
    }
}

void BinaryDataHandler::getAndAlloc(MemoryHandle &target, UInt32 size)
{
    target = nullptr;
    if(size == 0)
        return;
    if(!canRead(size))
    {
        _failed = true;
        return;
    }
    std::unique_ptr<UInt8[]> block(new UInt8[size]);
    if(read(block.get(), size))
        target = block.release();
    else
        _failed = true;
}

void BinaryDataHandler::putValue(const std::string &value)
{
    const UInt32 size = static_cast<UInt32>(value.size()) + 1;
    putValue(size);
    put(value.c_str(), size);
}

void BinaryDataHandler::getValue(std::string &value)
{
    value.clear();
    UInt32 size = 0;
    getValue(size);
    if(size == 0)
        return;
    if(!canRead(size))
    {
        // Swallow what is left, so that the values behind this one don't come from the middle of its text.
        UInt8 rest;
        while(canRead(1) && read(&rest, 1))
            continue;
        _failed = true;
        return;
    }

    // A source that doesn't know its end gets no more memory at a time than it has filled so far.
    UInt32 done = 0;
    while(done < size)
    {
        const UInt32 part = std::min(size - done, std::max(chunkSize, done));
        value.resize(done + part);
        if(!read(&value[done], part))
        {
            value.clear();
            _failed = true;
            return;
        }
        done += part;
    }
    value.pop_back(); // the zero byte behind the text
}

void BinaryDataHandler::putValues(const bool *values, UInt32 number)
{
    for(UInt32 i = 0; i < number; ++i)
        putValue(static_cast<UInt8>(values[i] ? 1 : 0));
}

void BinaryDataHandler::getValues(bool *values, UInt32 number)
{
    for(UInt32 i = 0; i < number; ++i)
    {
        UInt8 byte = 0;
        getValue(byte);
        values[i] = byte != 0;
    }
}

void BinaryDataHandler::putValues(const std::string *values, UInt32 number)
{
    for(UInt32 i = 0; i < number; ++i)
        putValue(values[i]);
}

void BinaryDataHandler::getValues(std::string *values, UInt32 number)
{
    for(UInt32 i = 0; i < number; ++i)
        getValue(values[i]);
}

bool BinaryDataHandler::swaps() const
{
    return _networkOrder && !hostIsNetwork();
}

void BinaryDataHandler::putNumbers(const void *values, UInt32 width, UInt32 number)
{
    const UInt8 *bytes = static_cast<const UInt8 *>(values);
    const bool swap = width > 1 && swaps();
    UInt8 turned[chunkSize];
    // A part's size in bytes always fits in 32 bits, whatever the number of values.
    const UInt32 largest = swap ? chunkSize / width : 0x40000000u / width;
    while(number > 0)
    {
        const UInt32 part = std::min(number, largest);
        const UInt32 size = part * width;
        if(swap)
        {
            std::memcpy(turned, bytes, size);
            swapBytes(turned, width, part);
            put(turned, size);
        }
        else
            put(bytes, size);
        bytes += size;
        number -= part;
    }
}

void BinaryDataHandler::getNumbers(void *values, UInt32 width, UInt32 number)
{
    UInt8 *bytes = static_cast<UInt8 *>(values);
    const UInt32 largest = 0x40000000u / width;
    while(number > 0)
    {
        const UInt32 part = std::min(number, largest);
        const UInt32 size = part * width;
        get(bytes, size);
        if(width > 1 && swaps())
            swapBytes(bytes, width, part);
        bytes += size;
        number -= part;
    }
}

OSG_END_NAMESPACE
