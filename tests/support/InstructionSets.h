#ifndef FENN_TESTS_SUPPORT_INSTRUCTIONSETS_H
#define FENN_TESTS_SUPPORT_INSTRUCTIONSETS_H

#include <cstdint>
#include <string>
#include <vector>

namespace fenn::test
{

/// One of the instruction sets that the vector kernels are compiled for.
struct InstructionSet
{
    std::string name;
    std::int64_t bit = 0;
};

/// Those that this processor runs, the best one first.
std::vector<InstructionSet> runnableInstructionSets();

/// Makes every kernel use this one from the next call on; all of them again with useEveryInstructionSet. For tests: not
/// while another thread runs a kernel.
void useOnly(const InstructionSet& instructionSet);
void useEveryInstructionSet();

} // namespace fenn::test

#endif
