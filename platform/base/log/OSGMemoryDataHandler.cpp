/// \file
/// A binary data handler that writes to and reads from memory.

#include "OSGMemoryDataHandler.h"

#include <utility>

OSG_BEGIN_NAMESPACE

MemoryDataHandler::MemoryDataHandler(bool networkOrder) : BinaryDataHandler(0, networkOrder)
{
}

MemoryDataHandler::MemoryDataHandler(std::vector<UInt8> data, bool networkOrder)
    : BinaryDataHandler(0, networkOrder), _data(std::move(data))
{
}

MemoryDataHandler::~MemoryDataHandler() = default;

const std::vector<UInt8> &MemoryDataHandler::getData() const
{
    return _data;
}

UInt64 MemoryDataHandler::remaining() const
{
    return _data.size() - _position;
}

bool MemoryDataHandler::canRead(UInt64 bytes) const
{
    return bytes <= remaining();
}

void MemoryDataHandler::rewind()
{
    _position = 0;
    clearFailed();
}

void MemoryDataHandler::clear()
{
    _data.clear();
    rewind();
}

bool MemoryDataHandler::write(const void *source, UInt32 size)
{
    const UInt8 *bytes = static_cast<const UInt8 *>(source);
    _data.insert(_data.end(), bytes, bytes + size);
    return true;
}

bool MemoryDataHandler::read(void *target, UInt32 size)
{
    if(!canRead(size))
    {
        _position = _data.size();
        return false;
    }
    std::memcpy(target, _data.data() + _position, size);
    _position += size;
    return true;
}

OSG_END_NAMESPACE
