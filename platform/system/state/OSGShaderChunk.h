#ifndef _OSGSHADERCHUNK_H_
#define _OSGSHADERCHUNK_H_

/// \file
/// A chunk that has the texts of a program.

#include <istream>

#include "OSGShaderChunkBase.h"

OSG_BEGIN_NAMESPACE

/// A chunk that has the texts of a program, which can be read from files.
class OSG_SYSTEMLIB_DLLMAPPING ShaderChunk : public ShaderChunkBase
{
  public:
    typedef ShaderChunkBase Inherited;

    /// Each takes a whole file, or what is left of a stream, as the text of one program. False, with one
    /// warning, where it can't be read, or the name is null; the text is then as it was. The caller closes
    /// the edit of the field.
    bool readVertexProgram(const char *file);
    bool readVertexProgram(std::istream &stream);
    bool readFragmentProgram(const char *file);
    bool readFragmentProgram(std::istream &stream);
    bool readGeometryProgram(const char *file);
    bool readGeometryProgram(std::istream &stream);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderChunk();
    ShaderChunk(const ShaderChunk &source);
    ~ShaderChunk() override;

  private:
    friend class FieldContainer;
    friend class ShaderChunkBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
