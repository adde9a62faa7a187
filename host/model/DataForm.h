#ifndef FENN_HOST_MODEL_DATAFORM_H
#define FENN_HOST_MODEL_DATAFORM_H

#include <string>
#include <vector>

#include "analysis/Anisotropy.h"
#include "analysis/OutputTransform.h"
#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

// Settings by which a model works on something else than what stands in the files: --anisotropy and --transform, and
// --clamp for the way back. As texts of options and of settings files, where words may stand in double quotes, and as
// what they make of samples and targets.

/// "2,30": ratio and angle in degrees. Throws UsageError that begins with name.
fenn::analysis::Anisotropy parseAnisotropy(const std::string& name, const std::string& text);

/// "log" or "none": whether logarithms are taken. Throws UsageError that begins with name.
bool parseTransform(const std::string& name, const std::string& text);

/// "0:100", "0:" or ":100". Throws UsageError that begins with name.
fenn::analysis::Interval parseClamp(const std::string& name, const std::string& text);

/// The text that parseClamp reads back to the same bits; empty for no limits.
std::string clampText(const fenn::analysis::Interval& limits);

/// Whether samples are something else to the model than in their file.
bool hasDataForm(const Settings& settings);

/// The samples as the model takes them: inputs rotated and stretched under names of their own, outputs replaced by
/// their logarithms likewise; path and lines stay. Throws InputError with line and column for a value without a
/// logarithm, and with the file for a place that cannot be rotated.
SampleTable inModelForm(const SampleTable& samples, const Settings& settings);

/// Targets likewise, in place: one column per input.
void bringIntoModelForm(std::vector<std::vector<double>>& targets, const Settings& settings);

} // namespace krige

#endif
