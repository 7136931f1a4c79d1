#pragma once

#include <cstdint>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik::fakes {

/// A machine that could not exist as easily as one that could: leftovers, databases, builds, other users, deep trees,
/// parents that are gone, and cycles in the parent links. The same seed makes the same machine.
Machine generatedMachine(std::uint32_t seed);

/// True if some process is its own ancestor.
bool hasCycle(const std::vector<Proc>& procs);

}  // namespace ravik::fakes
