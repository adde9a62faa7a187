#ifndef FENN_HOST_PAGE_FITSECTION_H
#define FENN_HOST_PAGE_FITSECTION_H

#include <string>
#include <vector>

#include "host/model/OutputSill.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

/// What a page says about the model.
struct FitData
{
    const SampleTable& samples;
    const Settings& settings;
    const SampleModel& model;
    std::vector<OutputSill> sills;
    std::string origin;  // where the settings come from: a sentence
    std::string range;   // describeRange
    std::string engine;  // a sentence
    std::string repeat;  // the command line that makes this page again
    std::string predict; // and one that writes its map
};

/// The settings in words, as command lines and as a settings file.
std::string fitSection(const FitData& data);

} // namespace krige

#endif
