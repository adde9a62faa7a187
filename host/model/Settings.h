#ifndef FENN_HOST_MODEL_SETTINGS_H
#define FENN_HOST_MODEL_SETTINGS_H

#include "analysis/DataSettings.h"
#include "estimation/ModelSettings.h"
#include "host/model/SillChoice.h"

namespace krige
{

/// What a settings file holds and the options of the same names say: the settings of the model itself, and those by
/// which the program turns its answers into the data's units. A plain value.
struct Settings : fenn::analysis::DataSettings
{
    Settings() = default;

    /// The rest as without options: any settings of a model are settings of the program.
    Settings(const fenn::estimation::ModelSettings& model) : fenn::analysis::DataSettings(model) {}

    /// Whether to go on with samples that a model cannot tell apart, where they are not merged.
    bool keepsDuplicates = false;

    /// These settings with another model.
    Settings withModel(const fenn::estimation::ModelSettings& model) const;
};

bool operator==(const Settings& a, const Settings& b);

} // namespace krige

#endif
