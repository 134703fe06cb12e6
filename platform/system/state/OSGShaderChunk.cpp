#include "OSGShaderChunk.h"

#include <fstream>
#include <iterator>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

bool readText(std::istream &stream, std::string &text)
{
    std::string read(std::istreambuf_iterator<char>(stream), {});
    if(stream.bad())
    {
        SWARNING << "ShaderChunk: a program could not be read from its stream" << std::endl;
        return false;
    }
    text.swap(read);
    return true;
}

bool readText(const char *file, std::string &text)
{
    std::ifstream stream;
    if(file != nullptr)
        stream.open(file, std::ios::binary);
    if(file == nullptr || !stream || stream.peek() == std::ifstream::traits_type::eof())
    {
        SWARNING << "ShaderChunk: no program could be read from '" << (file == nullptr ? "" : file) << "'"
                 << std::endl;
        return false;
    }
    return readText(stream, text);
}

} // namespace

void ShaderChunk::initMethod() {}

ShaderChunk::ShaderChunk() = default;

ShaderChunk::ShaderChunk(const ShaderChunk &source) : Inherited(source) {}

ShaderChunk::~ShaderChunk() = default;

bool ShaderChunk::readVertexProgram(const char *file)
{
    return readText(file, editVertexProgram());
}

bool ShaderChunk::readVertexProgram(std::istream &stream)
{
    return readText(stream, editVertexProgram());
}

bool ShaderChunk::readFragmentProgram(const char *file)
{
    return readText(file, editFragmentProgram());
}

bool ShaderChunk::readFragmentProgram(std::istream &stream)
{
    return readText(stream, editFragmentProgram());
}

bool ShaderChunk::readGeometryProgram(const char *file)
{
    return readText(file, editGeometryProgram());
}

bool ShaderChunk::readGeometryProgram(std::istream &stream)
{
    return readText(stream, editGeometryProgram());
}

void ShaderChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderChunk NI" << std::endl;
}

OSG_END_NAMESPACE
