#ifndef TESTS_TESSALY_NURBS_GLUSPY_H
#define TESTS_TESSALY_NURBS_GLUSPY_H

/// \file
/// What the library asks of GLU. The functions of this program stand ahead of GLU's, note the call and pass it on.

#include <map>
#include <string>
#include <vector>

namespace nurbs_test
{

struct GluSpy
{
    /// Names of the calls in their order; a property as "property NUMBER".
    std::vector<std::string> calls;
    /// The last value of each property.
    std::map<unsigned, float> properties;
    /// The last arguments of gluNurbsCurve, gluPwlCurve, and all of gluNurbsSurface: the numbers in their order, no pointers.
    std::vector<int> curve;
    std::vector<int> polyline;
    std::vector<std::vector<int>> surfaces;
    int renderers = 0; ///< made and not deleted yet
    int made = 0;
    /// What GLU says its version is; null for the truth.
    const char *version = nullptr;

    static GluSpy &the();
    void clear() { *this = GluSpy(); }
    int count(const std::string &call) const;
    /// Place of the first such call, -1 if there was none.
    int place(const std::string &call) const;
};

} // namespace nurbs_test

#endif
