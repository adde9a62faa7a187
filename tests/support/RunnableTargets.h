#ifndef FENN_TESTS_SUPPORT_RUNNABLETARGETS_H
#define FENN_TESTS_SUPPORT_RUNNABLETARGETS_H

#include "tests/support/InstructionSets.h"

namespace fenn::test
{

/// Calls check(name) once for every instruction set that this processor runs; the kernels use that one meanwhile.
template <class Check>
void forEachRunnableTarget(const Check& check)
{
    for (const InstructionSet& instructionSet : runnableInstructionSets())
    {
        useOnly(instructionSet);
        check(instructionSet.name.c_str());
    }
    useEveryInstructionSet();
}

} // namespace fenn::test

#endif
