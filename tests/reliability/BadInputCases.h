#ifndef FENN_TESTS_RELIABILITY_BADINPUTCASES_H
#define FENN_TESTS_RELIABILITY_BADINPUTCASES_H

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/ModelSample.h"

namespace fenn::test
{

/// What a request gives that throws nothing.
enum class Numbers
{
    none,
    finite,
    notANumber,
    ofBothKinds
};

/// What a host sees of one input: the text of the error that construction, or the request, throws, or numbers.
struct Outcome
{
    std::string constructionError;
    std::string requestError;
    Numbers numbers = Numbers::finite;
};

/// Something that a host should not hand over, and what is to come of it.
struct BadInput
{
    std::string name;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    std::optional<int> numPts; // as the host says, where that is not what the arrays hold
    ModelSettings settings;
    std::vector<std::vector<double>> targets;
    Outcome outcome;
};

inline void PrintTo(const BadInput& input, std::ostream* out)
{
    *out << input.name;
}

/// Every input twice: for a model over all points and for one over the nearest 16 of 24.
std::vector<BadInput> badSampleCases();
std::vector<BadInput> badSettingCases();
std::vector<BadInput> badTargetCases();

} // namespace fenn::test

#endif
