#pragma once

namespace testsupport {

enum class Shortage {
    Lasting, ///< what fails once fails from then on
    Passing, ///< one allocation fails, and those behind it succeed
};

/// How many allocations of this thread succeed from here on, of the program's own `operator new`; -1 for all.
void setAllocationsLeft(int count, Shortage shortage = Shortage::Lasting);
/// 0 once one has failed.
int allocationsLeft();

/// SQLite's allocations count as well from here on. To be called before anything uses SQLite.
void limitSqliteMemory();

} // namespace testsupport
