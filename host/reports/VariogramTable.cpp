#include "host/reports/VariogramTable.h"

#include "host/text/NumberText.h"

namespace krige
{

std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins, const LagUnit& unit)
{
    std::string text = "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n";
    for (const fenn::analysis::LagBin& bin : bins)
    {
        for (const double lag : {bin.lowerLag, bin.upperLag, bin.meanLag})
        {
            appendNumber(text, lag * unit.perNormalised);
            text += ',';
        }
        for (const double value : {bin.semivariance, bin.modelValue})
        {
            appendNumber(text, value);
            text += ',';
        }
        text += std::to_string(bin.numPairs) + "\n";
    }
    return text;
}

} // namespace krige
