// The model through the exported boundary, bit for bit against the plain loops: construction and its errors, requests
// to all points and to the nearest ones, what an error leaves behind, on every instruction set of the processor.
//
// Left out because the host answers for it: arrays shorter than announced, fewer scale factors than input variables
// (unless none), a negative number of points, indices of output variables that there are not, and a request to the
// nearest points without input variables.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <QThread>

#include "fuzz/InputBytes.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "tests/support/Bits.h"
#include "tests/support/InstructionSets.h"
#include "tests/support/ModelSample.h"
#include "tests/support/NaiveModel.h"
#include "tests/support/ThrownError.h"

using fenn::fuzz::check;
using fenn::fuzz::decodePoints;
using fenn::fuzz::fail;
using fenn::fuzz::InputBytes;
using namespace fenn::test;

namespace
{

using Lists = std::vector<std::vector<double>>;

constexpr double unwritten = -77.25;

std::ptrdiff_t numThreadsOfThisProcess()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

/// Waits at its end until there are no more threads than at its beginning. A pool's destructor returns a moment before
/// its threads give back their last memory, and libFuzzer would look through the whole heap for it.
class ThreadsGone
{
public:
    ThreadsGone() : numBefore(numThreadsOfThisProcess()) {}
    ThreadsGone(const ThreadsGone& other) = delete;
    ThreadsGone& operator=(const ThreadsGone& other) = delete;

    ~ThreadsGone()
    {
        while (numThreadsOfThisProcess() > numBefore)
            std::this_thread::yield();
    }

private:
    std::ptrdiff_t numBefore;
};

/// Mostly a few; now and then enough for panels of the factorisation, at last for two threads to share one.
std::size_t decodeNumPts(InputBytes& input)
{
    const std::size_t kind = input.byte();
    if (kind < 248)
        return kind % 25;
    if (kind < 254)
        return 25 + input.pick(40);
    const std::size_t size = input.byte();
    return kind < 255 || size < 224 ? 65 + size % 90 : 256 + size % 8;
}

std::vector<double> decodeScaleFactors(InputBytes& input, std::size_t numVars)
{
    std::vector<double> factors;
    const std::size_t kind = input.byte();
    if (kind % 2 == 0)
        return factors;
    const std::size_t numFactors = numVars + (kind > 240 ? 1 : 0); // one too many is looked at, but not used
    for (std::size_t v = 0; v < numFactors; ++v)
        factors.push_back(input.oneOf({1.0, -1.0, 2.0, -0.5, 4.0, 1e-3, 1e3, -1e3, 0.1}));
    return factors;
}

int decodeDriftOrder(InputBytes& input)
{
    const std::size_t kind = input.byte();
    return kind < 224 ? static_cast<int>(kind % 6) - (kind > 200 ? 1 : 0) : input.rawBits<int>();
}

int decodeNumNearest(InputBytes& input, std::size_t numPts)
{
    const std::size_t kind = input.byte();
    if (kind < 96)
        return 0;
    return kind < 240 ? static_cast<int>(kind % (numPts + 2)) : input.rawBits<int>();
}

ModelSettings decodeSettings(InputBytes& input, std::size_t numVars, std::size_t numPts)
{
    ModelSettings settings;
    settings.duplicateTolerance = input.oneOf({-1.0, 0.0, -1.0, 0.0, 1e-3, 0.02, 0.0625, 0.125, 0.5, 1.0});
    settings.scaleFactors = decodeScaleFactors(input, numVars);
    settings.driftOrder = decodeDriftOrder(input);
    settings.rangeFraction = input.oneOf({1.0, 0.5, 2.0, 0.25, 0.05, 10.0, 0.0, -1.0});
    settings.nugget = input.oneOf({0.0, 0.1, 0.5, 1.0, -0.25, 3.0});
    settings.numNearestPoints = numVars == 0 ? 0 : decodeNumNearest(input, numPts);
    return settings;
}

std::set<int> decodeOutputVars(InputBytes& input, std::size_t numOutputVars)
{
    std::set<int> outputVars;
    const std::size_t leftOut = input.byte();
    for (std::size_t o = 0; o < numOutputVars; ++o)
    {
        if ((leftOut >> o & 1U) == 0)
            outputVars.insert(static_cast<int>(o));
    }
    return outputVars;
}

/// Anything between the samples and far outside; every other one on a sample.
Lists decodeTargets(InputBytes& input, const Lists& samples, std::size_t numTargets, bool isPlain)
{
    Lists targets = decodePoints(input, samples.size(), numTargets, isPlain);
    const std::size_t onSamples = input.byte();
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        for (std::size_t v = 0; v < samples.size(); ++v)
        {
            if (!samples[v].empty() && (onSamples >> t % 8 & 1U) != 0)
                targets[v][t] = samples[v][t % samples[v].size()];
        }
    }
    return targets;
}

void compare(const Lists& actual, const Lists& expected)
{
    for (std::size_t k = 0; k < expected.size(); ++k)
    {
        for (std::size_t t = 0; t < expected[k].size(); ++t)
        {
            if (!sameBits(actual[k][t], expected[k][t]))
            {
                char numbers[100];
                std::snprintf(numbers, sizeof numbers, "%a, expected %a", actual[k][t], expected[k][t]);
                fail("estimate " + std::to_string(t) + " of list " + std::to_string(k) + ": " + numbers);
            }
        }
    }
}

/// So many that the plain loops are done with a system of this many points for each in a few hundredths of a second.
std::size_t mostTargets(std::size_t numPts)
{
    return 1 + 20'000'000 / (numPts * numPts * numPts + 1);
}

void compareRequest(InputBytes& input, const KrigingSurrogateModel& model, const NaiveModel& naive,
                    const Lists& samples, std::size_t numOutputVars, bool isPlain)
{
    const std::size_t kind = input.byte();
    const std::size_t wanted = kind < 224 ? kind % 9 : 9 + input.pick(70);
    const std::size_t numTargets = naive.isLocal() ? std::min(wanted, mostTargets(naive.getNumSources())) : wanted;
    Lists targets = decodeTargets(input, samples, numTargets, isPlain);
    const std::set<int> outputVars = decodeOutputVars(input, numOutputVars);

    Lists expected(outputVars.size(), std::vector<double>(numTargets, unwritten));
    Lists values = expected;
    const std::string expectedFailure = naive.interpolate(targets, outputVars, numTargets, expected);

    std::vector<double*> targetArrays = pointersTo(targets);
    std::vector<double*> valueArrays = pointersTo(values);
    const std::string failure =
        textOfError([&] { model.interpolateDependentValues(targetArrays, outputVars, valueArrays, numTargets); });
    check(failure == (expectedFailure.empty() ? "no Error" : expectedFailure),
          "the request's outcome is '" + failure + "', expected '" + expectedFailure + "'");
    compare(values, expected);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    // Qt's threads would each make an event loop of GLib's, whose memory pools look like leaks.
    return setenv("QT_NO_GLIB", "1", 1);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<InstructionSet> instructionSets = runnableInstructionSets();

    const ThreadsGone threadsGone;
    InputBytes input(data, size);
    const std::size_t flags = input.byte();
    const bool isPlain = (flags & 3U) != 3;
    useOnly(instructionSets[(flags >> 2) % instructionSets.size()]);
    const std::size_t numInputVars = std::vector<std::size_t>{2, 1, 3, 4, 2, 0}[input.pick(6)];
    const std::size_t numOutputVars = std::vector<std::size_t>{1, 2, 0, 3}[input.pick(4)];
    const std::size_t numPts = decodeNumPts(input);
    ModelSettings settings = decodeSettings(input, numInputVars, numPts);
    Lists inputs = decodePoints(input, numInputVars, std::max<std::size_t>(numPts, 1), isPlain);
    Lists outputs = decodePoints(input, numOutputVars, std::max<std::size_t>(numPts, 1), isPlain);

    const NaiveModel naive(inputs, outputs, static_cast<int>(numPts), settings, QThread::idealThreadCount());
    std::unique_ptr<KrigingSurrogateModel> model;
    const std::string failure = textOfError(
        [&]
        {
            model = std::make_unique<KrigingSurrogateModel>(
                pointersTo(inputs), pointersTo(outputs), static_cast<int>(numPts), settings.duplicateTolerance,
                settings.scaleFactors, settings.driftOrder, settings.rangeFraction, settings.nugget,
                settings.numNearestPoints);
        });
    check(failure == (naive.getFailure().empty() ? "no Error" : naive.getFailure()),
          "construction's outcome is '" + failure + "', expected '" + naive.getFailure() + "'");
    if (!model)
        return 0;

    for (std::size_t numRequests = 1 + input.pick(3); numRequests > 0; --numRequests)
    {
        model->activateDependentVariables(decodeOutputVars(input, 8)); // changes no estimate, whatever it names
        compareRequest(input, *model, naive, inputs, numOutputVars, isPlain);
    }
    return 0;
}
