#include "Recorder.h"

RECORD_ALL(suffixed)
