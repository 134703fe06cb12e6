#include "GluSpy.h"

#include <OpenSG/OSGGL.h>

#include <algorithm>

#include <dlfcn.h>

namespace nurbs_test
{

GluSpy &GluSpy::the()
{
    static GluSpy spy;
    return spy;
}

int GluSpy::count(const std::string &call) const
{
    return int(std::count(calls.begin(), calls.end(), call));
}

int GluSpy::place(const std::string &call) const
{
    const auto found = std::find(calls.begin(), calls.end(), call);
    return found == calls.end() ? -1 : int(found - calls.begin());
}

} // namespace nurbs_test

namespace
{

using nurbs_test::GluSpy;

/// GLU's own function of that name.
template <class FunctionT>
FunctionT *own(FunctionT *, const char *name)
{
    return reinterpret_cast<FunctionT *>(dlsym(RTLD_NEXT, name));
}

#define OWN(function) own(&function, #function)

} // namespace

extern "C"
{

const GLubyte *GLAPIENTRY gluGetString(GLenum name)
{
    GluSpy &spy = GluSpy::the();
    if(name == GLU_VERSION && spy.version != nullptr)
        return reinterpret_cast<const GLubyte *>(spy.version);
    return OWN(gluGetString)(name);
}

GLUnurbs *GLAPIENTRY gluNewNurbsRenderer()
{
    GluSpy &spy = GluSpy::the();
    spy.calls.push_back("new");
    ++spy.renderers;
    ++spy.made;
    return OWN(gluNewNurbsRenderer)();
}

void GLAPIENTRY gluDeleteNurbsRenderer(GLUnurbs *nurb)
{
    GluSpy::the().calls.push_back("delete");
    --GluSpy::the().renderers;
    OWN(gluDeleteNurbsRenderer)(nurb);
}

void GLAPIENTRY gluNurbsProperty(GLUnurbs *nurb, GLenum property, GLfloat value)
{
    GluSpy::the().calls.push_back("property " + std::to_string(property));
    GluSpy::the().properties[property] = value;
    OWN(gluNurbsProperty)(nurb, property, value);
}

void GLAPIENTRY gluNurbsCallback(GLUnurbs *nurb, GLenum which, _GLUfuncptr callback)
{
    GluSpy::the().calls.push_back((callback != nullptr ? "callback " : "no callback ") + std::to_string(which));
    OWN(gluNurbsCallback)(nurb, which, callback);
}

void GLAPIENTRY gluBeginTrim(GLUnurbs *nurb)
{
    GluSpy::the().calls.push_back("begin trim");
    OWN(gluBeginTrim)(nurb);
}

void GLAPIENTRY gluEndTrim(GLUnurbs *nurb)
{
    GluSpy::the().calls.push_back("end trim");
    OWN(gluEndTrim)(nurb);
}

void GLAPIENTRY gluBeginCurve(GLUnurbs *nurb)
{
    GluSpy::the().calls.push_back("begin curve");
    OWN(gluBeginCurve)(nurb);
}

void GLAPIENTRY gluEndCurve(GLUnurbs *nurb)
{
    GluSpy::the().calls.push_back("end curve");
    OWN(gluEndCurve)(nurb);
}

void GLAPIENTRY gluNurbsCurve(GLUnurbs *nurb, GLint knotCount, GLfloat *knots, GLint stride, GLfloat *control, GLint order,
                              GLenum type)
{
    GluSpy::the().calls.push_back("curve");
    GluSpy::the().curve = {knotCount, stride, order, int(type)};
    OWN(gluNurbsCurve)(nurb, knotCount, knots, stride, control, order, type);
}

void GLAPIENTRY gluPwlCurve(GLUnurbs *nurb, GLint count, GLfloat *data, GLint stride, GLenum type)
{
    GluSpy::the().calls.push_back("polyline");
    GluSpy::the().polyline = {count, stride, int(type)};
    OWN(gluPwlCurve)(nurb, count, data, stride, type);
}

void GLAPIENTRY gluNurbsSurface(GLUnurbs *nurb, GLint sKnotCount, GLfloat *sKnots, GLint tKnotCount, GLfloat *tKnots,
                                GLint sStride, GLint tStride, GLfloat *control, GLint sOrder, GLint tOrder, GLenum type)
{
    GluSpy::the().calls.push_back("surface");
    GluSpy::the().surfaces.push_back({sKnotCount, tKnotCount, sStride, tStride, sOrder, tOrder, int(type)});
    OWN(gluNurbsSurface)(nurb, sKnotCount, sKnots, tKnotCount, tKnots, sStride, tStride, control, sOrder, tOrder, type);
}
}
