#include "host/model/Settings.h"

namespace krige
{

Settings Settings::withModel(const fenn::estimation::ModelSettings& model) const
{
    Settings settings = *this;
    static_cast<fenn::estimation::ModelSettings&>(settings) = model;
    return settings;
}

bool operator==(const Settings& a, const Settings& b)
{
    return static_cast<const fenn::analysis::DataSettings&>(a) == static_cast<const fenn::analysis::DataSettings&>(b) &&
           a.keepsDuplicates == b.keepsDuplicates;
}

} // namespace krige
