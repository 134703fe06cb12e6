#include "Recorder.h"

RECORD_ALL(plain)
