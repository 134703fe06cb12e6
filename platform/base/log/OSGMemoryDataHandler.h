#ifndef _OSGMEMORYDATAHANDLER_H_
#define _OSGMEMORYDATAHANDLER_H_

/// \file
/// A binary data handler that writes to and reads from memory.

#include <vector>

#include "OSGBinaryDataHandler.h"

OSG_BEGIN_NAMESPACE

/// Writes to the end of a byte array and reads from its start on; what is put can be got at once.
class OSG_BASELIB_DLLMAPPING MemoryDataHandler : public BinaryDataHandler
{
  public:
    /// Empty.
    explicit MemoryDataHandler(bool networkOrder = false);
    /// Starts with bytes to read.
    explicit MemoryDataHandler(std::vector<UInt8> data, bool networkOrder = false);
    ~MemoryDataHandler() override;

    /// All bytes, read or not.
    const std::vector<UInt8> &getData() const;
    /// How many bytes are still to be read.
    UInt64 remaining() const;
    bool canRead(UInt64 bytes) const override;
    /// Reads from the start again, with failed() off.
    void rewind();
    /// Empties the array as well.
    void clear();

  protected:
    bool write(const void *source, UInt32 size) override;
    /// A read that asks for more than is left takes nothing more off afterwards: the position goes to the
    /// end.
    bool read(void *target, UInt32 size) override;

  private:
    std::vector<UInt8> _data;
    std::size_t _position = 0;
};

OSG_END_NAMESPACE

#endif
