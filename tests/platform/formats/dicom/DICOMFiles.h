#ifndef TESTS_PLATFORM_FORMATS_DICOM_DICOMFILES_H
#define TESTS_PLATFORM_FORMATS_DICOM_DICOMFILES_H

/// \file
/// Builds small DICOM files byte by byte, apart from the code that reads them.

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

template <class T>
void append(Bytes &bytes, T value)
{
    std::uint8_t raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    bytes.insert(bytes.end(), raw, raw + sizeof(T));
}

template <class T>
Bytes asBytes(const std::vector<T> &values)
{
    Bytes bytes;
    for(T value : values)
        append(bytes, value);
    return bytes;
}

/// One element with explicit representation, little endian; odd values are filled up.
inline Bytes element(std::uint32_t tag, const char *representation, Bytes value)
{
    const std::string name = representation;
    if(value.size() % 2 == 1)
        value.push_back(name == "UI" || name == "OB" ? 0 : ' ');
    Bytes bytes;
    append(bytes, static_cast<std::uint16_t>(tag >> 16));
    append(bytes, static_cast<std::uint16_t>(tag));
    bytes.insert(bytes.end(), name.begin(), name.end());
    if(name == "OB" || name == "OW" || name == "SQ" || name == "UN")
    {
        append<std::uint16_t>(bytes, 0);
        append(bytes, static_cast<std::uint32_t>(value.size()));
    }
    else
        append(bytes, static_cast<std::uint16_t>(value.size()));
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

inline Bytes text(const std::string &words)
{
    return Bytes(words.begin(), words.end());
}

inline Bytes number(std::uint16_t value)
{
    return asBytes<std::uint16_t>({value});
}

/// An item of a sequence with its length.
inline Bytes item(const Bytes &content)
{
    Bytes bytes;
    append<std::uint16_t>(bytes, 0xfffe);
    append<std::uint16_t>(bytes, 0xe000);
    append(bytes, static_cast<std::uint32_t>(content.size()));
    bytes.insert(bytes.end(), content.begin(), content.end());
    return bytes;
}

/// What a file says; elements go out in the order of their tags.
class DICOMFile
{
  public:
    /// A CT slice of `columns` x `rows` samples of 16 bits with sign.
    DICOMFile(int columns, int rows, const std::vector<std::int16_t> &samples)
    {
        set(0x00080016, "UI", text("1.2.840.10008.5.1.4.1.1.2"));
        set(0x00080018, "UI", text("1.2.3.4"));
        set(0x00080060, "CS", text("CT"));
        set(0x0008103e, "LO", text("Thorax"));
        set(0x0020000e, "UI", text("1.2.3"));
        set(0x00200013, "IS", text("1"));
        set(0x00280002, "US", number(1));
        set(0x00280004, "CS", text("MONOCHROME2"));
        set(0x00280010, "US", number(static_cast<std::uint16_t>(rows)));
        set(0x00280011, "US", number(static_cast<std::uint16_t>(columns)));
        set(0x00280100, "US", number(16));
        set(0x00280101, "US", number(16));
        set(0x00280102, "US", number(15));
        set(0x00280103, "US", number(1));
        set(0x7fe00010, "OW", asBytes(samples));
    }

    DICOMFile &set(std::uint32_t tag, const char *representation, const Bytes &value)
    {
        _elements[tag] = element(tag, representation, value);
        return *this;
    }
    DICOMFile &bits(int allocated, int stored, bool sign)
    {
        set(0x00280100, "US", number(static_cast<std::uint16_t>(allocated)));
        set(0x00280101, "US", number(static_cast<std::uint16_t>(stored)));
        set(0x00280102, "US", number(static_cast<std::uint16_t>(stored - 1)));
        return set(0x00280103, "US", number(sign ? 1 : 0));
    }
    DICOMFile &rescale(const std::string &slope, const std::string &intercept)
    {
        set(0x00281053, "DS", text(slope));
        return set(0x00281052, "DS", text(intercept));
    }
    DICOMFile &place(const std::string &position, const std::string &orientation = "1\\0\\0\\0\\1\\0",
                     const std::string &spacing = "0.75\\0.5")
    {
        set(0x00200032, "DS", text(position));
        set(0x00200037, "DS", text(orientation));
        return set(0x00280030, "DS", text(spacing));
    }
    /// The value as it stands, for what `element` can't write.
    DICOMFile &raw(std::uint32_t tag, const Bytes &bytes)
    {
        _elements[tag] = bytes;
        return *this;
    }
    DICOMFile &syntax(const std::string &uid)
    {
        _syntax = uid;
        return *this;
    }

    Bytes bytes() const
    {
        Bytes meta;
        for(const Bytes &part :
            {element(0x00020002, "UI", text("1.2.840.10008.5.1.4.1.1.2")),
             element(0x00020003, "UI", text("1.2.3.4")), element(0x00020010, "UI", text(_syntax))})
            meta.insert(meta.end(), part.begin(), part.end());
        Bytes length;
        append(length, static_cast<std::uint32_t>(meta.size()));
        Bytes file(128, 0);
        for(char c : std::string("DICM"))
            file.push_back(static_cast<std::uint8_t>(c));
        const Bytes head = element(0x00020000, "UL", length);
        file.insert(file.end(), head.begin(), head.end());
        file.insert(file.end(), meta.begin(), meta.end());
        for(const auto &entry : _elements)
            file.insert(file.end(), entry.second.begin(), entry.second.end());
        return file;
    }

  private:
    std::map<std::uint32_t, Bytes> _elements;
    std::string _syntax = "1.2.840.10008.1.2.1";
};

#endif
