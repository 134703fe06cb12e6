#ifndef _OSGBINARYDATAHANDLER_H_
#define _OSGBINARYDATAHANDLER_H_

/// \file
/// Values as bytes: what fields are written to and read from when containers are synchronised.

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Memory made by `new UInt8[]`.
using MemoryHandle = UInt8 *;

/// Puts numbers, strings and blocks into a stream of bytes and gets them back, in host order or in network
/// order (big end first). A derived class moves the bytes. Nothing stands between values: no tags, no
/// padding.
///
/// bool is one byte, 0 or 1. A string is its length plus 1 as UInt32, its bytes, and a zero byte.
///
/// Reading past the end gives zeros and empty strings and sets failed(). One object is for one thread at a
/// time.
class OSG_BASELIB_DLLMAPPING BinaryDataHandler
{
  public:
    /// Blocks below `zeroCopyThreshold` bytes are gathered before they go out; larger ones go straight from
    /// the caller's memory. With 0 all do.
    explicit BinaryDataHandler(UInt32 zeroCopyThreshold = 0, bool networkOrder = false);
    /// Derived classes flush in their own destructor: here it is too late to write.
    virtual ~BinaryDataHandler();
    BinaryDataHandler(const BinaryDataHandler &) = delete;
    BinaryDataHandler &operator=(const BinaryDataHandler &) = delete;

    /// Whether the bytes of a number go in network order.
    void setNetworkOrder(bool networkOrder);
    bool getNetworkOrder() const;

    /// Whether a read or a write has not been possible, since the start or clearFailed().
    bool failed() const;
    /// Forgets that.
    void clearFailed();

    /// Whether so many more bytes can be read. Readers ask it ahead of making room for a count that the
    /// stream claims. True where the source can't know.
    virtual bool canRead(UInt64 bytes) const;

    /// Sends out what is gathered.
    void flush();

    /// Appends bytes as they are.
    void put(const void *source, UInt32 size);
    /// Takes `source` over and deletes it.
    void putAndFree(MemoryHandle source, UInt32 size);
    /// Fills `target` with zeros if fewer bytes are left.
    void get(void *target, UInt32 size);
    /// Makes room for the block, which is then the caller's to `delete[]`; null for size 0 and on failure.
    void getAndAlloc(MemoryHandle &target, UInt32 size);

    /// A number in the order of bytes that is set.
    template <class T>
    void putValue(const T &value)
    {
        static_assert(std::is_arithmetic<T>::value, "only numbers have a byte form of their own");
        putValues(&value, 1);
    }
    /// A number in the order of bytes that is set.
    template <class T>
    void getValue(T &value)
    {
        static_assert(std::is_arithmetic<T>::value, "only numbers have a byte form of their own");
        getValues(&value, 1);
    }
    /// The length with the 0 at its end, then the characters and the 0.
    void putValue(const std::string &value);
    void getValue(std::string &value);

    /// The values one behind the other, without their number.
    template <class T>
    void putValues(const T *values, UInt32 number)
    {
        static_assert(std::is_arithmetic<T>::value, "only numbers have a byte form of their own");
        putNumbers(values, sizeof(T), number);
    }
    template <class T>
    void getValues(T *values, UInt32 number)
    {
        static_assert(std::is_arithmetic<T>::value, "only numbers have a byte form of their own");
        getNumbers(values, sizeof(T), number);
    }
    void putValues(const bool *values, UInt32 number);
    void getValues(bool *values, UInt32 number);
    void putValues(const std::string *values, UInt32 number);
    void getValues(std::string *values, UInt32 number);

  protected:
    /// Moves bytes out; false if that isn't possible.
    virtual bool write(const void *source, UInt32 size) = 0;
    /// Fills `size` bytes; false, with any contents, if fewer are left.
    virtual bool read(void *target, UInt32 size) = 0;

  private:
    bool swaps() const;
    void putNumbers(const void *values, UInt32 width, UInt32 number);
    void getNumbers(void *values, UInt32 width, UInt32 number);

    std::vector<UInt8> _gathered;
    UInt32 _zeroCopyThreshold;
    bool _networkOrder;
    bool _failed = false;
};

OSG_END_NAMESPACE

#endif
