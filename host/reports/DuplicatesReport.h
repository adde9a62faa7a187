#ifndef FENN_HOST_REPORTS_DUPLICATESREPORT_H
#define FENN_HOST_REPORTS_DUPLICATESREPORT_H

#include <string>

#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

/// Writes a CSV file of all samples that the duplicate tolerance merges, one row each: the number of the averaged point
/// that stands for it (from 1), the line of the samples' file that it begins on, its inputs and its outputs. A header
/// row alone when there are none.
void writeDuplicatesReport(const std::string& path, const SampleTable& samples, const Settings& settings);

} // namespace krige

#endif
