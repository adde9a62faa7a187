#include "tests/support/InstructionSets.h"

// As the kernels are compiled: vectors of unknown length cannot stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
#include <hwy/targets.h>

namespace fenn::test
{

std::vector<InstructionSet> runnableInstructionSets()
{
    std::vector<InstructionSet> result;
    std::int64_t remaining = hwy::SupportedTargets() & HWY_TARGETS;
    while (remaining != 0)
    {
        const std::int64_t lowest = remaining & -remaining; // a better set has a lower bit
        result.push_back({hwy::TargetName(lowest), lowest});
        remaining &= remaining - 1;
    }
    return result;
}

void useOnly(const InstructionSet& instructionSet)
{
    hwy::SetSupportedTargetsForTest(instructionSet.bit);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

void useEveryInstructionSet()
{
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace fenn::test
