#ifndef FENN_HOST_TARGETS_GRIDSPEC_H
#define FENN_HOST_TARGETS_GRIDSPEC_H

#include <cstdint>
#include <string>
#include <vector>

namespace krige
{

/// Equally spaced nodes of one input: node i is low + i ((high - low) / (count - 1)), the last one exactly high. A
/// single node is low.
struct GridAxis
{
    std::string name;
    double low = 0.0;
    double high = 0.0;
    std::uint64_t count = 1;

    double getNode(std::uint64_t i) const;
};

/// A grid over all inputs, its axes in the order in which they were named: the first one runs fastest.
struct GridSpec
{
    std::vector<GridAxis> axes;
    std::uint64_t numNodes = 0;
    bool overSamples = false; // the axes still lack their ends: see spanSamples
};

/// Reads `x=LO:HI:COUNT,y=LO:HI:COUNT`, or `200x100`: one count per input, in their order, over the samples' box.
/// Throws UsageError when the text is malformed, a bound is not a finite number, HI is below LO, COUNT is below 1, the
/// nodes are too many to count, or the axes are not exactly the inputs, in any order. A name with a comma needs CSV
/// quotes around its whole axis.
GridSpec parseGridSpec(const std::string& text, const std::vector<std::string>& inputNames);

/// Gives a grid over the samples' box its ends: each input's least and greatest value, one column per input. Throws
/// InputError when a span is beyond the doubles.
void spanSamples(GridSpec& grid, const std::vector<std::vector<double>>& sampleInputs);

/// The same nodes with the axes in the order of the inputs.
GridSpec inOrderOfInputs(const GridSpec& grid, const std::vector<std::string>& inputNames);

} // namespace krige

#endif
