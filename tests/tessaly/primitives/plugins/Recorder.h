#ifndef TESTS_TESSALY_PRIMITIVES_PLUGINS_RECORDER_H
#define TESTS_TESSALY_PRIMITIVES_PLUGINS_RECORDER_H

/// \file
/// The functions of plug-ins that tell the program that loads them how they are called.

#include <cstring>
#include <string>

/// Of the program. What is noted: the function's name and what is wrong with its arguments.
extern "C" void notePlugInCall(const char *call);

/// Which handle a plug-in was called with, behind the function's name; nothing for `own`.
inline void noteCall(const std::string &function, const void *handle, const void *own)
{
    notePlugInCall((function + (handle == own ? "" : handle == nullptr ? " with null" : " with another"))
                       .c_str());
}

/// The handle is the address of a variable of the prefix's own.
#define RECORD_HANDLE(prefix) static int prefix##Handle

#define RECORD_INITIALIZE(prefix)                                                                            \
    extern "C" void *prefix##_initialize()                                                                   \
    {                                                                                                        \
        notePlugInCall(#prefix "_initialize");                                                               \
        return &prefix##Handle;                                                                              \
    }

#define RECORD_DRAW_PRIM(prefix)                                                                             \
    extern "C" void prefix##_drawPrim(void *handle)                                                          \
    {                                                                                                        \
        noteCall(#prefix "_drawPrim", handle, &prefix##Handle);                                              \
    }

/// The box is from (-1, 2, 3) to (4, -5, 6): the corners are not in order.
#define RECORD_GET_BBOX(prefix)                                                                              \
    extern "C" void prefix##_getBBox(void *handle, float *min, float *max)                                   \
    {                                                                                                        \
        const float zero[3] = {0.f, 0.f, 0.f};                                                               \
        const bool isZero =                                                                                  \
            std::memcmp(min, zero, sizeof(zero)) == 0 && std::memcmp(max, zero, sizeof(zero)) == 0;          \
        noteCall(isZero ? #prefix "_getBBox" : #prefix "_getBBox not zero", handle, &prefix##Handle);        \
        const float low[3] = {-1.f, 2.f, 3.f};                                                               \
        const float high[3] = {4.f, -5.f, 6.f};                                                              \
        std::memcpy(min, low, sizeof(low));                                                                  \
        std::memcpy(max, high, sizeof(high));                                                                \
    }

/// The value "bad" fails.
#define RECORD_SET_PARAM(prefix)                                                                             \
    extern "C" int prefix##_setParam(void *handle, const char *name, const char *value)                      \
    {                                                                                                        \
        noteCall(std::string(#prefix "_setParam ") + name + "=" + value, handle, &prefix##Handle);           \
        return std::strcmp(value, "bad") == 0 ? 0 : -7;                                                      \
    }

#define RECORD_SHUTDOWN(prefix)                                                                              \
    extern "C" void prefix##_shutdown(void *handle)                                                          \
    {                                                                                                        \
        noteCall(#prefix "_shutdown", handle, &prefix##Handle);                                              \
    }

#define RECORD_ALL(prefix)                                                                                   \
    RECORD_HANDLE(prefix);                                                                                   \
    RECORD_INITIALIZE(prefix)                                                                                \
    RECORD_DRAW_PRIM(prefix)                                                                                 \
    RECORD_GET_BBOX(prefix)                                                                                  \
    RECORD_SET_PARAM(prefix)                                                                                 \
    RECORD_SHUTDOWN(prefix)

#endif
