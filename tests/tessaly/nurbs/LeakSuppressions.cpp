/// \file
/// What a leak check of this program passes over.

/// GLU keeps memory of contours that it can't make sense of, and the GL driver some of the display lists that live
/// when their context goes. Lists of curves and surfaces do, which is meant.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libGLU.so\nleak:swrast_dri.so\n";
}
