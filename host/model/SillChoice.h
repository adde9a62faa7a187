#ifndef FENN_HOST_MODEL_SILLCHOICE_H
#define FENN_HOST_MODEL_SILLCHOICE_H

#include <cstddef>
#include <string>
#include <vector>

namespace krige
{

/// Where the sill of an output comes from, which turns Kriging variances for a sill of 1 into its units.
struct SillChoice
{
    enum class Rule
    {
        Automatic, // restricted maximum likelihood; see docs/method.md
        Sample,    // the sample variance over the points
        Given
    };

    Rule rule = Rule::Automatic;
    double value = 0.0; // of Given: above 0, in squared units of the output
};

bool operator==(const SillChoice& a, const SillChoice& b);

/// Reads one choice per output, or a single word for all of them: `auto`, `sample`, `12.5,auto`; words may stand in
/// double quotes. Throws UsageError that begins with name.
std::vector<SillChoice> parseSillChoices(const std::string& name, const std::string& text);

/// The text that parseSillChoices reads back to the same bits, as the value of a TOML key.
std::string tomlOf(const std::vector<SillChoice>& choices);

/// Throws UsageError unless the choices suit this many outputs: none, a single word, or one each.
void checkSillChoices(const std::vector<SillChoice>& choices, std::size_t numOutputs);

/// Of checked choices: the one of an output.
SillChoice chooseSill(const std::vector<SillChoice>& choices, std::size_t output);

} // namespace krige

#endif
