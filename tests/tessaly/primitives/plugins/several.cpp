#include "Recorder.h"

RECORD_ALL(one)
RECORD_ALL(two)
