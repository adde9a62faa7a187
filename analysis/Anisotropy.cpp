#include "analysis/Anisotropy.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace fenn::analysis
{

namespace
{

constexpr double degree = 0.017453292519943295; // in radians

/// In [0, 180).
double reducedAngle(double angle)
{
    const double remainder = std::fmod(angle, 180.0);
    const double reduced = remainder < 0.0 ? remainder + 180.0 : remainder;
    return reduced < 180.0 ? reduced + 0.0 : 0.0; // what is just below 0 rounds up to 180; and no negative zero
}

} // namespace

Anisotropy::Anisotropy(double ratio_, double angle_) : ratio(ratio_), angle(reducedAngle(angle_))
{
    if (!(ratio >= 1.0 && std::isfinite(ratio)))
        throw std::invalid_argument(
            "the ratio of the longer over the shorter range must be finite and at least 1, not " +
            std::to_string(ratio_));
    if (!std::isfinite(angle_))
        throw std::invalid_argument("the angle of the longer range must be finite");
    // Along an axis nothing is to be rounded.
    cosine = angle == 90.0 ? 0.0 : std::cos(angle * degree);
    sine = angle == 90.0 ? 1.0 : std::sin(angle * degree);
}

void Anisotropy::apply(const double* x, const double* y, std::size_t count, double* along, double* across) const
{
    for (std::size_t i = 0; i < count; ++i)
    {
        const double rotatedX = x[i] * cosine + y[i] * sine;
        const double rotatedY = y[i] * cosine - x[i] * sine;
        along[i] = rotatedX;
        across[i] = ratio * rotatedY;
    }
}

SampleSet Anisotropy::apply(const SampleSet& samples) const
{
    if (samples.getNumInputVars() != 2)
        throw std::invalid_argument("an anisotropy has an angle with two input variables only");
    std::vector<std::vector<double>> inputs{samples.getInput(0), samples.getInput(1)};
    apply(inputs[0].data(), inputs[1].data(), samples.getNumSamples(), inputs[0].data(), inputs[1].data());
    std::vector<std::vector<double>> outputs;
    for (std::size_t w = 0; w < samples.getNumOutputVars(); ++w)
        outputs.push_back(samples.getOutput(w));
    return {std::move(inputs), std::move(outputs), samples.getIncludeFlags()};
}

} // namespace fenn::analysis
