#include "host/reports/DuplicatesReport.h"

#include <vector>

#include "estimation/MergedSamples.h"
#include "host/files/CsvReader.h"
#include "host/files/OutputFile.h"
#include "host/model/DataForm.h"
#include "host/text/NumberText.h"

namespace krige
{

void writeDuplicatesReport(const std::string& path, const SampleTable& samples, const Settings& settings)
{
    OutputFile output(path);
    std::string text = "point,line";
    for (const std::vector<std::string>* names : {&samples.inputNames, &samples.outputNames})
    {
        for (const std::string& name : *names)
        {
            text += ',';
            appendCsvField(text, name);
        }
    }
    text += '\n';

    const auto groups =
        fenn::estimation::findMergedSamples(inModelForm(samples, settings).inputs, settings.duplicateTolerance).groups;
    for (std::size_t g = 0; g < groups.size(); ++g)
    {
        for (const std::size_t i : groups[g])
        {
            text += std::to_string(g + 1) + ',' + std::to_string(samples.lines[i]);
            for (const std::vector<std::vector<double>>* columns : {&samples.inputs, &samples.outputs})
            {
                for (const std::vector<double>& column : *columns)
                {
                    text += ',';
                    appendNumber(text, column[i]);
                }
            }
            text += '\n';
        }
    }
    output.write(text);
    output.commit();
}

} // namespace krige
