#ifndef FENN_TESTS_SUPPORT_NAIVENORMALISATION_H
#define FENN_TESTS_SUPPORT_NAIVENORMALISATION_H

#include <cmath>
#include <string>
#include <vector>

namespace fenn::test
{

/// What a model makes of its samples' limits and its scale factors, one entry per input variable, or the message of
/// the error it throws instead.
struct NaiveNormalisation
{
    std::string message;
    std::vector<double> minValues;
    std::vector<double> maxValues;
    std::vector<double> offsets;
    std::vector<double> scales;
};

inline NaiveNormalisation naiveNormalisation(const std::vector<std::vector<double>>& inputs,
                                             std::vector<double> scaleFactors)
{
    if (scaleFactors.empty())
        scaleFactors.assign(inputs.size(), -1.0);

    NaiveNormalisation result;
    for (const double factor : scaleFactors)
    {
        const double magnitude = std::abs(factor);
        if (magnitude >= 1e150)
            result.message = "Scaling factor too large";
        else if (magnitude <= 1e-150)
            result.message = "Scaling factor too small";
        if (!result.message.empty())
            return result;
    }

    std::vector<double> normalisedRanges;
    for (std::size_t v = 0; v < inputs.size(); ++v)
    {
        double min = inputs[v][0];
        double max = inputs[v][0];
        for (const double value : inputs[v])
        {
            min = value < min ? value : min;
            max = value > max ? value : max;
        }
        const double range = max - min;
        double scale = scaleFactors[v];
        if (!(scale > 1e-150))
        {
            if (!(range > 1e-150))
            {
                result.message = "Value range too small to normalize data";
                return result;
            }
            const double twice = 2.0 * std::abs(scale);
            scale = twice / range;
        }
        result.minValues.push_back(min);
        result.maxValues.push_back(max);
        result.offsets.push_back(-((min + max) * 0.5));
        result.scales.push_back(scale);
        normalisedRanges.push_back(range * scale);
    }

    double smallest = 1e150;
    double largest = -1e150;
    for (const double range : normalisedRanges)
    {
        if (std::isnan(range))
            return result;
        smallest = range < smallest ? range : smallest;
        largest = range > largest ? range : largest;
    }
    const double mean = std::sqrt(smallest * largest);
    if (mean > 1e-150 && mean < 1e150)
    {
        const double common = 2.0 / mean;
        for (double& scale : result.scales)
            scale = scale * common;
    }
    return result;
}

} // namespace fenn::test

#endif
