#ifndef FENN_HOST_MODEL_SILLCHOICE_H
#define FENN_HOST_MODEL_SILLCHOICE_H

#include <cstddef>
#include <string>
#include <vector>

#include "analysis/OutputSill.h"

namespace krige
{

using fenn::analysis::chooseSill;
using fenn::analysis::SillChoice;

/// Reads one choice per output, or a single word for all of them: `auto`, `sample`, `12.5,auto`; words may stand in
/// double quotes. Throws UsageError that begins with name.
std::vector<SillChoice> parseSillChoices(const std::string& name, const std::string& text);

/// The text that parseSillChoices reads back to the same bits, as the value of a TOML key.
std::string tomlOf(const std::vector<SillChoice>& choices);

/// Throws UsageError unless the choices suit this many outputs: none, a single word, or one each.
void checkSillChoices(const std::vector<SillChoice>& choices, std::size_t numOutputs);

} // namespace krige

#endif
