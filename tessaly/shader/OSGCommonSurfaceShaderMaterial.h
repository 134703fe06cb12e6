#ifndef _OSGCOMMONSURFACESHADERMATERIAL_H_
#define _OSGCOMMONSURFACESHADERMATERIAL_H_

/// \file
/// A material that carries the parameters of a surface.

#include <Tessaly/OSGCommonSurfaceShaderMaterialBase.h>

OSG_BEGIN_NAMESPACE

/// Carries colours, scalars, texture ids and texture transforms of nine surface terms, and what is needed for
/// normals and refraction, so that a host, a file or another aspect can hand them on. Nothing here reads
/// them: the material draws as the ChunkMaterial that it is, with the chunks that the host put in, and what a
/// shader makes of the values is the host's.
class OSG_TESSALY_DLLMAPPING CommonSurfaceShaderMaterial : public CommonSurfaceShaderMaterialBase
{
  public:
    typedef CommonSurfaceShaderMaterialBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    CommonSurfaceShaderMaterial();
    CommonSurfaceShaderMaterial(const CommonSurfaceShaderMaterial &source);
    ~CommonSurfaceShaderMaterial() override;

  private:
    friend class FieldContainer;
    friend class CommonSurfaceShaderMaterialBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
