#ifndef _OSGSHADERPARAMETERCHUNK_H_
#define _OSGSHADERPARAMETERCHUNK_H_

/// \file
/// A chunk that has uniform parameters.

#include "OSGShaderParameterAccess.h"
#include "OSGShaderParameterChunkBase.h"

OSG_BEGIN_NAMESPACE

/// A chunk that has uniform parameters. The operations change the field `parameters` and the parameters in
/// it; the caller closes the edit with endEditCP and ParametersFieldMask.
class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterChunk : public ShaderParameterChunkBase
{
  public:
    typedef ShaderParameterChunkBase Inherited;

    /// Gives the uniform of that name a value; one that was set before has to be of the same type. False
    /// for a null name, and, with a warning, for another type. A sampler takes the number of its texture
    /// unit as Int32.
    bool setUniformParameter(const char *name, bool value);
    bool setUniformParameter(const char *name, Int32 value);
    bool setUniformParameter(const char *name, Real32 value);
    bool setUniformParameter(const char *name, const Vec2f &value);
    bool setUniformParameter(const char *name, const Vec3f &value);
    bool setUniformParameter(const char *name, const Vec4f &value);
    bool setUniformParameter(const char *name, const Matrix &value);
    bool setUniformParameter(const char *name, const MFInt32 &value);
    bool setUniformParameter(const char *name, const MFReal32 &value);
    bool setUniformParameter(const char *name, const MFVec2f &value);
    bool setUniformParameter(const char *name, const MFVec3f &value);
    bool setUniformParameter(const char *name, const MFVec4f &value);
    bool setUniformParameter(const char *name, const MFMatrix &value);

    /// The value of the uniform of that name, as it was set. False, with a warning, if there is none of
    /// that type.
    bool getUniformParameter(const char *name, bool &value);
    bool getUniformParameter(const char *name, Int32 &value);
    bool getUniformParameter(const char *name, Real32 &value);
    bool getUniformParameter(const char *name, Vec2f &value);
    bool getUniformParameter(const char *name, Vec3f &value);
    bool getUniformParameter(const char *name, Vec4f &value);
    bool getUniformParameter(const char *name, Matrix &value);
    bool getUniformParameter(const char *name, MFInt32 &value);
    bool getUniformParameter(const char *name, MFReal32 &value);
    bool getUniformParameter(const char *name, MFVec2f &value);
    bool getUniformParameter(const char *name, MFVec3f &value);
    bool getUniformParameter(const char *name, MFVec4f &value);
    bool getUniformParameter(const char *name, MFMatrix &value);

    /// Takes the uniform of that name away; false if there is none.
    bool subUniformParameter(const char *name);
    /// Takes all uniforms away.
    void clearUniformParameters();
    /// Reads the names of the parameters anew; needed where the field was changed without an edit.
    void updateMap() { _parameterAccess.updateMap(); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterChunk();
    ShaderParameterChunk(const ShaderParameterChunk &source);
    ~ShaderParameterChunk() override;

    /// A copy shares the parameters.
    void onCreate(const ShaderParameterChunk *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterChunkBase;

    static void initMethod();

    ShaderParameterAccess _parameterAccess;
};

OSG_END_NAMESPACE

#endif
