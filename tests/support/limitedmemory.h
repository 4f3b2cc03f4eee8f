#pragma once

namespace testsupport {

/// How many allocations of this thread succeed from here on, of the program's own `operator new`; -1 for all.
void setAllocationsLeft(int count);
int allocationsLeft();

} // namespace testsupport
