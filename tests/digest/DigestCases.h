#ifndef FENN_TESTS_DIGEST_DIGESTCASES_H
#define FENN_TESTS_DIGEST_DIGESTCASES_H

#include <vector>

#include "Digest.h"

namespace fenn::test
{

/// A fixed computation whose results go into a digest. Uses + - * / and square roots only, which every processor rounds
/// alike.
struct DigestCase
{
    const char* name;
    void (*run)(Digest& digest);
};

std::vector<DigestCase> linearSystemCases();
std::vector<DigestCase> sampleCases();
std::vector<DigestCase> modelCases();

// The engines beside the plug-in, in a digest of their own.
std::vector<DigestCase> localEngineCases();
std::vector<DigestCase> covarianceEngineCases();

} // namespace fenn::test

#endif
