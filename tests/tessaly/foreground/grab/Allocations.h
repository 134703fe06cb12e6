#ifndef TESTS_TESSALY_FOREGROUND_GRAB_ALLOCATIONS_H
#define TESTS_TESSALY_FOREGROUND_GRAB_ALLOCATIONS_H

/// \file
/// Counts what the program allocates with operator new.

namespace foreground_test
{

void startCountingAllocations();
/// How many there were since, on any thread.
int stopCountingAllocations();

} // namespace foreground_test

#endif
