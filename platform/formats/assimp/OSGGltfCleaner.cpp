/// \file
/// Checks of glTF's JSON against the data that it describes.

#include "OSGGltfCleaner.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstring>

#include "OSGSceneData.h"

OSG_BEGIN_NAMESPACE

namespace
{

using nlohmann::json;

constexpr UInt32 GlbMagic = 0x46546C67, ChunkJson = 0x4E4F534A, ChunkBin = 0x004E4942;
/// JSON in which values are nested deeper is refused.
constexpr int MaxJsonDepth = 64;
/// The largest of all sizes and counts.
constexpr UInt64 MaxSize = UInt64(4) << 30;
/// glTF's own limit.
constexpr UInt64 MaxStride = 252;

UInt32 wordAt(const std::vector<UInt8> &bytes, std::size_t at)
{
    return UInt32(bytes[at]) | UInt32(bytes[at + 1]) << 8 | UInt32(bytes[at + 2]) << 16 |
           UInt32(bytes[at + 3]) << 24;
}

void appendWord(std::vector<UInt8> &bytes, UInt32 word)
{
    for(int i = 0; i < 4; ++i)
        bytes.push_back(UInt8(word >> (8 * i)));
}

/// Builds the new JSON; one object for one file.
class Cleaner
{
  public:
    Cleaner(const json &source, std::vector<std::string> &textures) : _source(source), _textures(textures) {}

    /// `binSize` is the size of the chunk of data in a .glb file.
    std::string clean(json &result, UInt64 binSize, bool isGlb)
    {
        if(!_source.is_object())
            return "the JSON is no object";
        const std::string version = textOf(objectIn(_source, "asset"), "version");
        if(version.compare(0, 2, "2.") != 0)
            return "is not glTF 2, but \"" + version + "\"";
        checkExtensions();

        result = json::object();
        result["asset"]["version"] = "2.0";
        cleanBuffers(result, binSize, isGlb);
        cleanViews(result);
        cleanAccessors(result);
        cleanMaterials(result);
        cleanMeshes(result);
        cleanNodes(result);
        cleanScenes(result);
        collectTextures();
        return _fault;
    }

  private:
    struct View
    {
        UInt64 length;
        UInt64 stride; ///< 0: without gaps
    };
    struct Accessor
    {
        UInt64 componentType = 0;
        UInt64 count = 0;
        std::string type;
    };

    /// Notes the first fault.
    void fail(const std::string &fault)
    {
        if(_fault.empty())
            _fault = fault;
    }
    static std::string title(const Char8 *kind, std::size_t index)
    {
        return std::string(kind) + " " + std::to_string(index) + " ";
    }

    static const json &member(const json &value, const Char8 *key)
    {
        static const json nothing;
        if(!value.is_object())
            return nothing;
        const auto found = value.find(key);
        return found == value.end() ? nothing : *found;
    }
    static const json &objectIn(const json &value, const Char8 *key) { return member(value, key); }
    static std::string textOf(const json &value, const Char8 *key)
    {
        const json &text = member(value, key);
        return text.is_string() ? text.get<std::string>() : std::string();
    }
    /// The elements of an array; nothing where there is none.
    const json &arrayIn(const json &value, const Char8 *key)
    {
        static const json empty = json::array();
        const json &array = member(value, key);
        if(!array.is_null() && !array.is_array())
            fail(std::string("\"") + key + "\" is no array");
        return array.is_array() ? array : empty;
    }
    /// A whole number from 0 to 4 Gi; `otherwise` where there is none.
    UInt64 sizeOf(const json &value, const Char8 *key, UInt64 otherwise, const std::string &where)
    {
        const json &number = member(value, key);
        if(number.is_null())
            return otherwise;
        if(number.is_number_unsigned() && number.get<UInt64>() <= MaxSize)
            return number.get<UInt64>();
        fail(where + "has no proper \"" + key + "\"");
        return 0;
    }
    /// Copies an index into the array `of`, if there is one.
    void copyIndex(const json &from, json &to, const Char8 *key, const Char8 *of, const std::string &where)
    {
        if(member(from, key).is_null())
            return;
        const UInt64 index = sizeOf(from, key, 0, where), count = arrayIn(_source, of).size();
        if(index >= count)
            fail(where + "uses " + key + " " + std::to_string(index) + " of " + std::to_string(count));
        to[key] = index;
    }
    /// Copies so many finite numbers, if there are any.
    void copyNumbers(const json &from, json &to, const Char8 *key, std::size_t count,
                     const std::string &where)
    {
        const json &numbers = member(from, key);
        if(numbers.is_null())
            return;
        bool good = numbers.is_array() && numbers.size() == count;
        for(std::size_t i = 0; good && i < count; ++i)
            good = numbers[i].is_number() && std::abs(numbers[i].get<double>()) < 3e38;
        if(good)
            to[key] = numbers;
        else
            fail(where + "has no proper \"" + key + "\"");
    }
    void copyNumber(const json &from, json &to, const Char8 *key, const std::string &where)
    {
        const json &number = member(from, key);
        if(number.is_number() && std::abs(number.get<double>()) < 3e38)
            to[key] = number;
        else if(!number.is_null())
            fail(where + "has no proper \"" + key + "\"");
    }
    static void copyText(const json &from, json &to, const Char8 *key)
    {
        if(member(from, key).is_string())
            to[key] = member(from, key);
    }

    void checkExtensions()
    {
        // Those change colours or add lights, which leaves what is read as it stands.
        for(const json &name : arrayIn(_source, "extensionsRequired"))
        {
            const std::string text = name.is_string() ? name.get<std::string>() : "";
            if(text.compare(0, 14, "KHR_materials_") != 0 && text != "KHR_texture_transform" &&
               text != "KHR_texture_basisu" && text != "KHR_lights_punctual" && text != "EXT_texture_webp")
                fail("needs the extension \"" + text + "\", which is not read");
        }
    }

    void cleanBuffers(json &result, UInt64 binSize, bool isGlb)
    {
        json &buffers = result["buffers"] = json::array();
        for(const json &source : arrayIn(_source, "buffers"))
        {
            const std::string where = title("buffer", buffers.size());
            json buffer = json::object();
            const UInt64 length = sizeOf(source, "byteLength", 0, where);
            const std::string uri = textOf(source, "uri");
            const bool isBin = isGlb && buffers.empty() && uri.empty();
            if(isBin && length > binSize)
                fail(where + "is longer than the file's data");
            if(!isBin && uri.empty())
                fail(where + "has no data");
            if(uri.compare(0, 5, "data:") == 0)
            {
                const std::size_t comma = uri.find(";base64,");
                if(comma == std::string::npos || (uri.size() - comma - 8) % 4 != 0 ||
                   (uri.size() - comma - 8) / 4 * 3 < length ||
                   uri.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=",
                                         comma + 8) != std::string::npos)
                    fail(where + "is longer than its data, or these are not in base64");
            }
            buffer["byteLength"] = length;
            copyText(source, buffer, "uri");
            _bufferSizes.push_back(length);
            buffers.push_back(buffer);
        }
    }

    void cleanViews(json &result)
    {
        json &views = result["bufferViews"] = json::array();
        for(const json &source : arrayIn(_source, "bufferViews"))
        {
            const std::string where = title("bufferView", views.size());
            json view = json::object();
            const UInt64 buffer = sizeOf(source, "buffer", MaxSize, where),
                         start = sizeOf(source, "byteOffset", 0, where);
            const UInt64 length = sizeOf(source, "byteLength", 0, where),
                         stride = sizeOf(source, "byteStride", 0, where);
            if(buffer >= _bufferSizes.size() || start + length > _bufferSizes[buffer])
                fail(where + "is not within its buffer");
            if(stride > MaxStride)
                fail(where + "has a stride of " + std::to_string(stride));
            view["buffer"] = buffer;
            view["byteOffset"] = start;
            view["byteLength"] = length;
            if(stride > 0)
                view["byteStride"] = stride;
            _views.push_back({length, stride});
            views.push_back(view);
        }
    }

    static UInt64 componentBytes(UInt64 type)
    {
        return type == 5120 || type == 5121   ? 1
               : type == 5122 || type == 5123 ? 2
               : type == 5125 || type == 5126 ? 4
                                              : 0;
    }
    static UInt64 componentsOf(const std::string &type)
    {
        return type == "SCALAR"                   ? 1
               : type == "VEC2"                   ? 2
               : type == "VEC3"                   ? 3
               : type == "VEC4" || type == "MAT2" ? 4
               : type == "MAT3"                   ? 9
               : type == "MAT4"                   ? 16
                                                  : 0;
    }
    /// Whether so many elements lie within a view.
    void checkRange(UInt64 view, UInt64 start, UInt64 count, UInt64 bytes, const std::string &where)
    {
        if(view >= _views.size())
        {
            fail(where + "uses bufferView " + std::to_string(view) + " of " + std::to_string(_views.size()));
            return;
        }
        const UInt64 stride = _views[view].stride > 0 ? _views[view].stride : bytes;
        if(stride < bytes || count == 0 || start + (count - 1) * stride + bytes > _views[view].length)
            fail(where + "is not within its bufferView");
    }

    void cleanAccessors(json &result)
    {
        json &accessors = result["accessors"] = json::array();
        for(const json &source : arrayIn(_source, "accessors"))
        {
            const std::string where = title("accessor", accessors.size());
            Accessor known;
            known.componentType = sizeOf(source, "componentType", 0, where);
            known.type = textOf(source, "type");
            known.count = sizeOf(source, "count", 0, where);
            const UInt64 bytes = componentBytes(known.componentType) * componentsOf(known.type);
            const UInt64 start = sizeOf(source, "byteOffset", 0, where);
            if(bytes == 0)
                fail(where + "has no known type");
            if(!member(source, "sparse").is_null())
                fail(where + "is sparse, which is not read");
            else
                checkRange(sizeOf(source, "bufferView", MaxSize, where), start, known.count, bytes, where);
            json accessor = json::object();
            accessor["bufferView"] = sizeOf(source, "bufferView", 0, where);
            accessor["byteOffset"] = start;
            accessor["componentType"] = known.componentType;
            accessor["count"] = known.count;
            accessor["type"] = known.type;
            if(member(source, "normalized").is_boolean())
                accessor["normalized"] = member(source, "normalized");
            _accessors.push_back(known);
            accessors.push_back(accessor);
        }
    }

    void cleanMaterials(json &result)
    {
        json &materials = result["materials"] = json::array();
        for(const json &source : arrayIn(_source, "materials"))
        {
            const std::string where = title("material", materials.size());
            json material = json::object();
            copyText(source, material, "name");
            copyText(source, material, "alphaMode");
            copyNumbers(source, material, "emissiveFactor", 3, where);
            const json &surface = objectIn(source, "pbrMetallicRoughness");
            json &cleaned = material["pbrMetallicRoughness"] = json::object();
            copyNumbers(surface, cleaned, "baseColorFactor", 4, where);
            copyNumber(surface, cleaned, "metallicFactor", where);
            copyNumber(surface, cleaned, "roughnessFactor", where);
            materials.push_back(material);
        }
    }

    void cleanAttributes(const json &source, json &primitive, const std::string &where)
    {
        const json &attributes = objectIn(source, "attributes");
        json &cleaned = primitive["attributes"] = json::object();
        const Accessor *position = nullptr;
        for(const Char8 *key : {"POSITION", "NORMAL", "TEXCOORD_0", "COLOR_0"})
        {
            if(member(attributes, key).is_null())
                continue;
            copyIndex(attributes, cleaned, key, "accessors", where);
            const UInt64 index = sizeOf(attributes, key, 0, where);
            if(index >= _accessors.size())
                return;
            const Accessor &accessor = _accessors[index];
            const bool isColor = std::strcmp(key, "COLOR_0") == 0;
            const bool typeFits = isColor ? accessor.type == "VEC3" || accessor.type == "VEC4"
                                  : std::strcmp(key, "TEXCOORD_0") == 0 ? accessor.type == "VEC2"
                                                                        : accessor.type == "VEC3";
            const bool valuesFit =
                accessor.componentType == 5126 ||
                (isColor && (accessor.componentType == 5121 || accessor.componentType == 5123));
            if(!typeFits || !valuesFit)
                fail(where + "has \"" + key + "\" of a type that is not read");
            if(std::strcmp(key, "POSITION") == 0)
                position = &accessor;
            else if(!position || accessor.count != position->count)
                fail(where + "has not as many \"" + key + "\" as positions");
        }
        if(!position)
            fail(where + "has no positions");
    }

    void cleanMeshes(json &result)
    {
        json &meshes = result["meshes"] = json::array();
        for(const json &source : arrayIn(_source, "meshes"))
        {
            const std::string where = title("mesh", meshes.size());
            json mesh = json::object();
            copyText(source, mesh, "name");
            json &primitives = mesh["primitives"] = json::array();
            for(const json &part : arrayIn(source, "primitives"))
            {
                json primitive = json::object();
                cleanAttributes(part, primitive, where);
                copyIndex(part, primitive, "material", "materials", where);
                copyIndex(part, primitive, "indices", "accessors", where);
                const UInt64 mode = sizeOf(part, "mode", 4, where);
                primitive["mode"] = mode;
                checkCount(part, mode, where);
                primitives.push_back(primitive);
            }
            if(primitives.empty())
                fail(where + "has no primitives");
            meshes.push_back(mesh);
        }
    }

    /// Whether the indices are indices, and enough for one primitive.
    void checkCount(const json &part, UInt64 mode, const std::string &where)
    {
        if(!_fault.empty())
            return;
        const bool indexed = !member(part, "indices").is_null();
        const Accessor &counted =
            _accessors[indexed ? sizeOf(part, "indices", 0, where)
                               : sizeOf(objectIn(part, "attributes"), "POSITION", 0, where)];
        if(indexed &&
           (counted.type != "SCALAR" || (counted.componentType != 5121 && counted.componentType != 5123 &&
                                         counted.componentType != 5125)))
            fail(where + "has indices of a type that is not read");
        if(mode > 6 || counted.count < (mode == 0 ? 1u : mode < 4 ? 2u : 3u))
            fail(where + "has a primitive without enough vertices, or of no known mode");
    }

    void cleanNodes(json &result)
    {
        json &nodes = result["nodes"] = json::array();
        const json &sources = arrayIn(_source, "nodes");
        std::vector<bool> hasParent(sources.size(), false);
        std::vector<std::vector<UInt32>> children(sources.size());
        for(const json &source : sources)
        {
            const std::size_t index = nodes.size();
            const std::string where = title("node", index);
            json node = json::object();
            copyText(source, node, "name");
            copyNumbers(source, node, "matrix", 16, where);
            copyNumbers(source, node, "translation", 3, where);
            copyNumbers(source, node, "rotation", 4, where);
            copyNumbers(source, node, "scale", 3, where);
            copyIndex(source, node, "mesh", "meshes", where);
            for(const json &child : arrayIn(source, "children"))
            {
                if(!child.is_number_unsigned() || child.get<UInt64>() >= sources.size())
                {
                    fail(where + "has a child that is no node");
                    continue;
                }
                const UInt32 number = child.get<UInt32>();
                if(hasParent[number])
                    fail("node " + std::to_string(number) + " is below two nodes");
                hasParent[number] = true;
                children[index].push_back(number);
            }
            if(!children[index].empty())
                node["children"] = children[index];
            nodes.push_back(node);
        }
        checkForest(hasParent, children);
    }

    void checkForest(const std::vector<bool> &hasParent, const std::vector<std::vector<UInt32>> &children)
    {
        std::vector<UInt32> level, below;
        for(std::size_t i = 0; i < hasParent.size(); ++i)
            if(!hasParent[i])
                level.push_back(UInt32(i));
        std::size_t reached = 0;
        // assimp and the scene graph add a root above.
        for(UInt32 depth = 1; !level.empty() && _fault.empty(); ++depth, level.swap(below))
        {
            reached += level.size();
            below.clear();
            for(const UInt32 node : level)
                below.insert(below.end(), children[node].begin(), children[node].end());
            if(depth > MaxSceneDepth)
                fail("nodes are nested deeper than " + std::to_string(MaxSceneDepth));
        }
        if(reached < hasParent.size())
            fail("nodes are below themselves");
    }

    void cleanScenes(json &result)
    {
        json &scenes = result["scenes"] = json::array();
        for(const json &source : arrayIn(_source, "scenes"))
        {
            const std::string where = title("scene", scenes.size());
            std::vector<bool> used(arrayIn(_source, "nodes").size(), false);
            json scene = json::object();
            json &nodes = scene["nodes"] = json::array();
            for(const json &node : arrayIn(source, "nodes"))
            {
                const bool good = node.is_number_unsigned() && node.get<UInt64>() < used.size();
                if(!good || used[node.get<std::size_t>()])
                {
                    fail(where + "has a root that is no node, or twice");
                    continue;
                }
                used[node.get<std::size_t>()] = true;
                nodes.push_back(node);
            }
            scenes.push_back(scene);
        }
        if(scenes.empty())
            fail("has no scene");
        const UInt64 shown = sizeOf(_source, "scene", 0, "the file ");
        if(shown >= scenes.size())
            fail("shows scene " + std::to_string(shown) + " of " + std::to_string(scenes.size()));
        result["scene"] = shown;
    }

    void collectTextures()
    {
        std::size_t index = 0;
        for(const json &image : arrayIn(_source, "images"))
        {
            std::string name = textOf(image, "uri");
            if(name.empty() || name.compare(0, 5, "data:") == 0)
                name = textOf(image, "name");
            _textures.push_back(name.empty() ? "picture " + std::to_string(index) + " within the file"
                                             : name);
            ++index;
        }
    }

    const json &_source;
    std::vector<std::string> &_textures;
    std::string _fault;
    std::vector<UInt64> _bufferSizes;
    std::vector<View> _views;
    std::vector<Accessor> _accessors;
};

/// Where in a file JSON and data stand.
struct Parts
{
    std::size_t jsonBegin = 0;
    std::size_t jsonEnd = 0;
    std::size_t binBegin = 0;
    std::size_t binEnd = 0;
    bool isGlb = false;
};

std::string findParts(const std::vector<UInt8> &bytes, Parts &parts)
{
    parts.jsonEnd = bytes.size();
    parts.isGlb = bytes.size() >= 4 && wordAt(bytes, 0) == GlbMagic;
    if(!parts.isGlb)
        return std::string();
    if(bytes.size() < 20)
        return "the file ends within its header";
    if(wordAt(bytes, 4) != 2)
        return "is not glTF 2, but version " + std::to_string(wordAt(bytes, 4));
    if(wordAt(bytes, 8) > bytes.size())
        return "the header promises " + std::to_string(wordAt(bytes, 8)) + " bytes, the file has " +
               std::to_string(bytes.size());
    const UInt64 jsonSize = wordAt(bytes, 12);
    if(wordAt(bytes, 16) != ChunkJson || jsonSize > bytes.size() - 20)
        return "the file ends within its JSON, or has none";
    parts.jsonBegin = 20;
    parts.jsonEnd = 20 + std::size_t(jsonSize);
    if(bytes.size() - parts.jsonEnd < 8 || wordAt(bytes, parts.jsonEnd + 4) != ChunkBin)
        return std::string();
    parts.binBegin = parts.jsonEnd + 8;
    const UInt64 binSize = wordAt(bytes, parts.jsonEnd);
    if(binSize > bytes.size() - parts.binBegin)
        return "the file ends within its data";
    parts.binEnd = parts.binBegin + std::size_t(binSize);
    return std::string();
}

} // namespace

std::string cleanGltf(std::vector<UInt8> &bytes, std::vector<std::string> &textures)
{
    Parts parts;
    const std::string fault = findParts(bytes, parts);
    if(!fault.empty())
        return fault;

    bool tooDeep = false;
    const auto watch = [&tooDeep](int depth, json::parse_event_t, json &)
    {
        tooDeep = tooDeep || depth > MaxJsonDepth;
        return !tooDeep;
    };
    const json source = json::parse(bytes.begin() + std::ptrdiff_t(parts.jsonBegin),
                                    bytes.begin() + std::ptrdiff_t(parts.jsonEnd), watch, false);
    if(tooDeep)
        return "the JSON is nested deeper than " + std::to_string(MaxJsonDepth);
    if(source.is_discarded())
        return "the JSON is damaged";

    json result;
    const std::string found =
        Cleaner(source, textures).clean(result, parts.binEnd - parts.binBegin, parts.isGlb);
    if(!found.empty())
        return found;

    std::string text = result.dump();
    std::vector<UInt8> cleaned;
    if(parts.isGlb)
    {
        text.resize((text.size() + 3) / 4 * 4, ' ');
        const std::size_t binSize = (parts.binEnd - parts.binBegin + 3) / 4 * 4;
        appendWord(cleaned, GlbMagic);
        appendWord(cleaned, 2);
        appendWord(cleaned, UInt32(20 + text.size() + (binSize > 0 ? 8 + binSize : 0)));
        appendWord(cleaned, UInt32(text.size()));
        appendWord(cleaned, ChunkJson);
        cleaned.insert(cleaned.end(), text.begin(), text.end());
        if(binSize > 0)
        {
            appendWord(cleaned, UInt32(binSize));
            appendWord(cleaned, ChunkBin);
            cleaned.insert(cleaned.end(), bytes.begin() + std::ptrdiff_t(parts.binBegin),
                           bytes.begin() + std::ptrdiff_t(parts.binEnd));
            cleaned.resize(28 + text.size() + binSize, 0);
        }
    }
    else
        cleaned.assign(text.begin(), text.end());
    bytes.swap(cleaned);
    return std::string();
}

OSG_END_NAMESPACE
