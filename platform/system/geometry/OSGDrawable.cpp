#include "OSGDrawable.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> Drawable::statNTriangles("NTriangles", "number of rendered triangles");
StatElemDesc<StatIntElem> Drawable::statNLines("NLines", "number of rendered lines");
StatElemDesc<StatIntElem> Drawable::statNPoints("NPoints", "number of rendered points");
StatElemDesc<StatIntElem> Drawable::statNVertices("NVertices", "number of transformed vertices");
StatElemDesc<StatIntElem> Drawable::statNPrimitives("NPrimitives", "number of rendered primitives");
StatElemDesc<StatIntElem> Drawable::statNGeoBytes("NGeoBytes", "bytes of geometry data that were drawn");

void Drawable::initMethod() {}

Drawable::Drawable() = default;

Drawable::Drawable(const Drawable &source) : Inherited(source) {}

Drawable::~Drawable() = default;

void Drawable::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Drawable::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Drawable NI" << std::endl;
}

OSG_END_NAMESPACE
