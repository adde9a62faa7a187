#ifndef FENN_TESTS_SUPPORT_NAIVEDATABLOCK_H
#define FENN_TESTS_SUPPORT_NAIVEDATABLOCK_H

#include <cmath>
#include <utility>
#include <vector>

#include "tests/support/BlockSet.h"

// The plainest code that says what SurrogateModelDataBlock computes: copied lists, one value at a time, level by level.

namespace fenn::test
{

using PointList = std::vector<std::pair<int, int>>;

inline PointList naiveUnblankedPts(const std::vector<SampleBlock>& samples)
{
    PointList points;
    for (std::size_t b = 0; b < samples.size(); ++b)
    {
        for (int i = 0; i < samples[b].numPts; ++i)
        {
            if (samples[b].isUnblanked[static_cast<std::size_t>(i)])
                points.push_back({static_cast<int>(b), i});
        }
    }
    return points;
}

inline double inputOf(const std::vector<SampleBlock>& samples, const std::pair<int, int>& point, std::size_t inputVar)
{
    return samples[static_cast<std::size_t>(point.first)].inputs[inputVar][static_cast<std::size_t>(point.second)];
}

inline double outputOf(const std::vector<SampleBlock>& samples, const std::pair<int, int>& point, std::size_t outputVar)
{
    return samples[static_cast<std::size_t>(point.first)].outputs[outputVar][static_cast<std::size_t>(point.second)];
}

struct NaiveStatistics
{
    double min = 0.0;
    double max = 0.0;
    double mean = 0.0;
    double variance = 0.0;
};

inline NaiveStatistics naiveStatistics(const std::vector<SampleBlock>& samples, std::size_t outputVar)
{
    const PointList points = naiveUnblankedPts(samples);
    if (points.empty())
        return {};

    const double count = static_cast<double>(points.size());
    NaiveStatistics result{1e150, -1e150, 0.0, 0.0};
    double sum = 0.0;
    for (const auto& point : points)
    {
        const double x = outputOf(samples, point, outputVar);
        sum = sum + x;
        if (result.min > x)
        {
            result.min = x;
            continue;
        }
        if (result.max < x)
            result.max = x;
    }
    result.mean = sum / count;

    double sumOfSquares = 0.0;
    for (const auto& point : points)
    {
        const double deviation = outputOf(samples, point, outputVar) - result.mean;
        const double square = deviation * deviation;
        sumOfSquares = sumOfSquares + square;
    }
    result.variance = sumOfSquares / (count - 1.0);
    return result;
}

/// Insertion sort: a point goes in front of the first one that is greater, a NaN greater than any number.
inline PointList naivelySorted(const std::vector<SampleBlock>& samples, const PointList& points, std::size_t inputVar)
{
    PointList sorted;
    for (const auto& point : points)
    {
        const double value = inputOf(samples, point, inputVar);
        std::size_t place = 0;
        while (place < sorted.size())
        {
            const double other = inputOf(samples, sorted[place], inputVar);
            if (!std::isnan(value) && (other > value || std::isnan(other)))
                break;
            ++place;
        }
        sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(place), point);
    }
    return sorted;
}

/// The groups of two or more points that one more input variable leaves of one group.
inline std::vector<PointList> naiveRuns(const std::vector<SampleBlock>& samples, const PointList& group,
                                        std::size_t inputVar, double threshold)
{
    std::vector<PointList> runs;
    double previous = 0.0;
    for (const auto& point : naivelySorted(samples, group, inputVar))
    {
        const double value = inputOf(samples, point, inputVar);
        const bool continuesRun = !runs.empty() && std::abs(value - previous) <= threshold;
        if (!continuesRun)
            runs.push_back({});
        runs.back().push_back(point);
        previous = value;
    }
    std::vector<PointList> groups;
    for (const PointList& run : runs)
    {
        if (run.size() >= 2)
            groups.push_back(run);
    }
    return groups;
}

/// Blanks the members of every group in samples and appends the block of averages, when there is any.
inline std::vector<PointList> naiveRemoveDuplicates(std::vector<SampleBlock>& samples,
                                                    const std::vector<double>& minValues,
                                                    const std::vector<double>& maxValues, double tolerance)
{
    std::vector<PointList> groups{naiveUnblankedPts(samples)};
    for (std::size_t v = 0; v < minValues.size(); ++v)
    {
        const double range = maxValues[v] - minValues[v];
        double threshold = range * tolerance;
        if (range < 1e-150)
            threshold = 0.0;
        std::vector<PointList> refined;
        for (const PointList& group : groups)
        {
            for (PointList& run : naiveRuns(samples, group, v, threshold))
                refined.push_back(std::move(run));
        }
        groups = refined;
    }
    if (groups.empty())
        return groups;

    SampleBlock averages;
    averages.inputs.resize(samples[0].inputs.size());
    averages.outputs.resize(samples[0].outputs.size());
    for (const PointList& group : groups)
    {
        const double factor = 1.0 / static_cast<double>(group.size());
        for (std::size_t v = 0; v < averages.inputs.size(); ++v)
        {
            double sum = 0.0;
            for (const auto& point : group)
                sum = sum + inputOf(samples, point, v);
            averages.inputs[v].push_back(sum * factor);
        }
        for (std::size_t w = 0; w < averages.outputs.size(); ++w)
        {
            double sum = 0.0;
            for (const auto& point : group)
                sum = sum + outputOf(samples, point, w);
            averages.outputs[w].push_back(sum * factor);
        }
        for (const auto& point : group)
            samples[static_cast<std::size_t>(point.first)].isUnblanked[static_cast<std::size_t>(point.second)] = false;
        averages.isUnblanked.push_back(true);
    }
    averages.numPts = static_cast<int>(groups.size());
    samples.push_back(averages);
    return groups;
}

} // namespace fenn::test

#endif
