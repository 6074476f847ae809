#pragma once
// Counts the test binary's heap allocations, so tests can prove that steady-state work allocates nothing.

#include <cstddef>

namespace testing_support {

// Allocations made through operator new and new[] since the program started.
std::size_t allocationCount();
// Size in bytes of the most recent allocation.
std::size_t lastAllocationSize();
// Bytes of the blocks operator new and new[] have handed out that are not deleted yet, as the
// heap sizes them.
std::size_t liveAllocationBytes();

} // namespace testing_support
