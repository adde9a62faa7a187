// Prints one digest over a fixed set of systems, models and targets, after one line for each part of it, then one of
// the engines that answer beside the plug-in. Every instruction set, compiler, optimisation level and number of threads
// must print the same.

#include <cinttypes>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "DigestCases.h"
#include "tests/support/InstructionSets.h"

namespace
{

constexpr int usageError = 2;

int listInstructionSets()
{
    for (const fenn::test::InstructionSet& set : fenn::test::runnableInstructionSets())
        std::printf("%s\n", set.name.c_str());
    return 0;
}

bool restrictTo(const std::string& name)
{
    for (const fenn::test::InstructionSet& set : fenn::test::runnableInstructionSets())
    {
        if (set.name != name)
            continue;
        fenn::test::useOnly(set);
        return true;
    }
    return false;
}

void printDigest(const char* name, const std::vector<std::vector<fenn::test::DigestCase>>& parts)
{
    fenn::test::Digest whole;
    for (const auto& cases : parts)
    {
        for (const fenn::test::DigestCase& part : cases)
        {
            fenn::test::Digest digest;
            part.run(digest);
            whole.add(digest.value());
            std::printf("%-34s%016" PRIx64 "\n", part.name, digest.value());
            std::fflush(stdout);
        }
    }
    std::printf("%-34s%016" PRIx64 "\n", name, whole.value());
}

} // namespace

int main(int argc, char** argv)
{
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--list" && argc == 2)
        return listInstructionSets();
    if (argc > 1 && (option != "--target" || argc != 3))
    {
        std::fprintf(stderr, "usage: fenn_digest [--list | --target INSTRUCTION_SET]\n");
        return usageError;
    }
    if (argc == 3 && !restrictTo(argv[2]))
    {
        std::fprintf(stderr, "fenn_digest: %s does not run here; --list names what does\n", argv[2]);
        return usageError;
    }
    try
    {
        printDigest("digest", {fenn::test::linearSystemCases(), fenn::test::sampleCases(), fenn::test::modelCases()});
        printDigest("digest of the other engines",
                    {fenn::test::localEngineCases(), fenn::test::covarianceEngineCases()});
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "fenn_digest: %s\n", error.what());
        return 1;
    }
    return 0;
}
