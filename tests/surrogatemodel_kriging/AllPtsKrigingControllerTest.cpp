#include "surrogatemodel_kriging/AllPtsKrigingController.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/AllocationWatch.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/Meeting.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

/// Shows what the base keeps, so that a test can have variables centred.
class CentringController : public AllPtsKrigingController
{
public:
    using AllPtsKrigingController::AllPtsKrigingController;
    using AllPtsKrigingController::centredOutputVars;
    using AllPtsKrigingController::outputNormalizers;
};

/// Samples with a spherical model over the box [-1, 1).
struct SphericalSamples
{
    SphericalSamples(const SampleShape& shape, std::uint64_t seed, double nugget)
        : samples(shape, seed),
          low(shape.numInputVars, -1.0),
          high(shape.numInputVars, 1.0),
          semivariogram(low, samples.normalizers, low, high, 0.5, nugget),
          naiveSemivariogram(naiveSpherical(scalesOf(samples.normalizers), low, high, 0.5, nugget))
    {
    }

    NaiveRequest naive(const ValueArrays& targets, std::size_t numTargets, int driftOrder,
                       const std::vector<double>& references) const
    {
        const NaiveKriging kriging(samples, samples.unblankedPts(), naiveSemivariogram, driftOrder);
        NaiveLinearSystem factors(kriging.rows());
        EXPECT_EQ(factors.factorise(), "");
        return naiveRequest(targets, numTargets, references.size(),
                            [&](const std::vector<double>& target)
                            { return kriging.evaluate(factors, target, references); });
    }

    SampleBlocks samples;
    std::vector<double> low, high;
    SphericalSemivariogram semivariogram;
    NaiveSemivariogram naiveSemivariogram;
};

void request(KrigingControllerAbstract& controller, ValueArrays& targets, const std::set<int>& outputVars,
             std::size_t numTargets, ResultArrays& values, ResultArrays& variances)
{
    controller.interpolate(targets.arrays(), outputVars, static_cast<int>(numTargets), values.arrays(),
                           variances.arrays());
}

std::string textOfConstruction(const SampleBlocks& samples, int driftOrder)
{
    FunctionSemivariogram semivariogram(oneSidedModel);
    return textOfError([&] { const AllPtsKrigingController controller(&samples.block(), &semivariogram, driftOrder); });
}

} // namespace

TEST(AllPtsKrigingControllerTest, TooFewUnblankedPointsForKrigingAreRejected)
{
    const SampleBlocks samples({{{0.0, 1.0}, {2.0, 3.0}}}, {{{0.0, 1.0}}}, {{true, true}}, std::vector<Normalizer>(2));
    const SampleBlocks blanked({{{0.0, 1.0}}}, {{{0.0, 1.0}}}, {{true, false}}, {Normalizer()});

    EXPECT_EQ(textOfConstruction(samples, 0), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(blanked, 0), "Not enough source points for kriging.");
}

TEST(AllPtsKrigingControllerTest, TooFewUnblankedPointsForTheDriftAreRejected)
{
    EXPECT_EQ(textOfConstruction(SampleBlocks(SampleShape{2, 1, {4}, 0.0, 0}, 1), 2),
              "Not enough source points to calculate drift.");
}

TEST(AllPtsKrigingControllerTest, ADriftTermThatVanishesEverywhereIsSingularAtConstruction)
{
    EXPECT_EQ(textOfConstruction(SampleBlocks({{0.0, 0.0, 0.0}}, {{1.0, 2.0, 3.0}}), 1), "Singular matrix");
}

TEST(AllPtsKrigingControllerTest, ConstructionEvaluatesEachPairOfPointsOnce)
{
    const SampleBlocks samples(SampleShape{2, 1, {11, 9}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    const AllPtsKrigingController controller(&samples.block(), &semivariogram, 1);

    EXPECT_EQ(semivariogram.getNumEvaluations(), 190);
}

TEST(AllPtsKrigingControllerTest, ARequestEvaluatesEachPairOfSourceAndTargetOnce)
{
    const SampleBlocks samples(SampleShape{2, 1, {11, 9}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 1, 3);
    const int numBefore = semivariogram.getNumEvaluations();
    ValueArrays targets(randomValues(2, 50, -1.0, 1.0, 2));
    ResultArrays values(1, 50);
    ResultArrays variances(1, 50);

    request(controller, targets, {0}, 50, values, variances);

    EXPECT_EQ(semivariogram.getNumEvaluations() - numBefore, 20 * 50);
}

TEST(AllPtsKrigingControllerTest, EveryThreadCountGivesTheBitsOfTheNaiveLoops)
{
    const SphericalSamples given(SampleShape{2, 3, {40, 30}, 0.2, 0}, 600, 0.05);
    for (const std::size_t numTargets : {0u, 1u, 2u, 6u, 7u, 8u, 29u, 101u})
    {
        ValueArrays targets(randomValues(2, numTargets, -1.2, 1.2, 601));
        const NaiveRequest expected = given.naive(targets, numTargets, 2, {0.0, 0.0, 0.0});
        for (const int maxThreads : {0, 1, 2, 3, 7})
        {
            SCOPED_TRACE(testing::Message() << numTargets << " targets, " << maxThreads << " threads");
            SphericalSemivariogram semivariogram(given.low, given.samples.normalizers, given.low, given.high, 0.5,
                                                 0.05);
            AllPtsKrigingController controller(&given.samples.block(), &semivariogram, 2, maxThreads);
            ResultArrays values(3, numTargets);
            ResultArrays variances(3, numTargets);

            request(controller, targets, {0, 1, 2}, numTargets, values, variances);

            for (std::size_t o = 0; o < 3; ++o)
            {
                EXPECT_TRUE(sameBits(values[o], expected.values[o]));
                EXPECT_TRUE(sameBits(variances[o], expected.variances));
            }
        }
    }
}

TEST(AllPtsKrigingControllerTest, ASystemFactorisedByTheWholePoolHasTheBitsOfTheNaiveLoops)
{
    const SphericalSamples given(SampleShape{2, 1, {320}, 0.0, 0}, 602, 0.05);
    ValueArrays targets(randomValues(2, 5, -1.2, 1.2, 603));
    const NaiveRequest expected = given.naive(targets, 5, 1, {0.0});
    for (const int maxThreads : {1, 2, 5})
    {
        SCOPED_TRACE(testing::Message() << maxThreads << " threads");
        SphericalSemivariogram semivariogram(given.low, given.samples.normalizers, given.low, given.high, 0.5, 0.05);
        AllPtsKrigingController controller(&given.samples.block(), &semivariogram, 1, maxThreads);
        ResultArrays values(1, 5);
        ResultArrays variances(1, 5);

        request(controller, targets, {0}, 5, values, variances);

        EXPECT_TRUE(sameBits(values[0], expected.values[0]));
        EXPECT_TRUE(sameBits(variances[0], expected.variances));
    }
}

TEST(AllPtsKrigingControllerTest, EverySystemHasTheBitsOfTheNaiveLoops)
{
    for (std::size_t d = 1; d <= 4; ++d)
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            SCOPED_TRACE(testing::Message() << d << " variables, order " << driftOrder);
            SphericalSamples given(SampleShape{d, 1, {50, 0, 41}, 0.1, 0}, 700 + d, 0.0);
            AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, driftOrder, 2);
            ValueArrays targets(randomValues(d, 33, -1.2, 1.2, 701));
            for (std::size_t v = 0; v < d; ++v)
                targets[v][5] = given.samples.inputs[0][v][7]; // perhaps blanked, perhaps a source point
            ResultArrays values(1, 33);
            ResultArrays variances(1, 33);

            request(controller, targets, {0}, 33, values, variances);

            const NaiveRequest expected = given.naive(targets, 33, driftOrder, {0.0});
            EXPECT_TRUE(sameBits(values[0], expected.values[0]));
            EXPECT_TRUE(sameBits(variances[0], expected.variances));
        }
    }
}

TEST(AllPtsKrigingControllerTest, TheKthArrayBelongsToTheKthSmallestOutputVariable)
{
    SphericalSamples given(SampleShape{2, 3, {30}, 0.0, 0}, 800, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0);
    ValueArrays targets(randomValues(2, 9, -1.0, 1.0, 801));
    ResultArrays values(2, 9);
    ResultArrays none(0, 9);

    request(controller, targets, {2, 0}, 9, values, none);

    const NaiveRequest expected = given.naive(targets, 9, 0, {0.0, 0.0, 0.0});
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(values[1], expected.values[2]));
}

TEST(AllPtsKrigingControllerTest, NoTargetsWriteNothing)
{
    SphericalSamples given(SampleShape{}, 800, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, 4);
    ValueArrays targets(2, 3);
    ResultArrays values(1, 3);
    ResultArrays variances(1, 3);

    request(controller, targets, {0}, 0, values, variances);

    EXPECT_EQ(values[0], std::vector<double>(3, unwritten));
    EXPECT_EQ(variances[0], std::vector<double>(3, unwritten));
}

TEST(AllPtsKrigingControllerTest, WithoutTargetsOutputsMayBeMissing)
{
    SphericalSamples given(SampleShape{}, 800, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, 2);
    std::vector<double*> none;

    for (const int numTargets : {0, -1})
        EXPECT_NO_THROW(controller.interpolate(none, {-1, 7, 1000000}, numTargets, none, none));
}

TEST(AllPtsKrigingControllerTest, OutputsAreGatheredOnceForARequestHoweverManyRanges)
{
    constexpr std::size_t numPts = 400;
    constexpr std::size_t numOutputs = 50;
    constexpr std::size_t numRanges = 8;
    constexpr std::size_t numTargets = 4 * numRanges;
    SphericalSamples given(SampleShape{2, numOutputs, {numPts}, 0.0, 0}, 850, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, numRanges);
    std::set<int> outputVars;
    for (int o = 0; o < static_cast<int>(numOutputs); ++o)
        outputVars.insert(o);
    ValueArrays targets(randomValues(2, numTargets, -1.0, 1.0, 851));
    ResultArrays values(numOutputs, numTargets);
    std::vector<double*> none;

    const AllocationWatch watch;
    controller.interpolate(targets.arrays(), outputVars, numTargets, values.arrays(), none);

    // What a range needs for itself, 16 doubles per point for the most part, takes less than half of it.
    constexpr std::size_t gathered = numOutputs * numPts * sizeof(double);
    EXPECT_GE(watch.getNumBytes(), gathered);
    EXPECT_LT(watch.getNumBytes(), 2 * gathered + numRanges * gathered / 2);
}

TEST(AllPtsKrigingControllerTest, ARequestOfOneTargetGathersNothing)
{
    constexpr std::size_t numOutputs = 100;
    SphericalSamples given(SampleShape{2, numOutputs, {60}, 0.0, 0}, 855, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, 1);
    std::set<int> outputVars;
    for (int o = 0; o < static_cast<int>(numOutputs); ++o)
        outputVars.insert(o);
    ValueArrays targets(randomValues(2, 1, -1.0, 1.0, 856));
    ResultArrays values(numOutputs, 1);
    std::vector<double*> none;

    const AllocationWatch watch;
    controller.interpolate(targets.arrays(), outputVars, 1, values.arrays(), none);

    EXPECT_LT(watch.getNumBytes(), 4 * 60 * sizeof(double)); // of which the right-hand side takes one
}

TEST(AllPtsKrigingControllerTest, OverlappingRequestsLeaveAllWorkToThePoolsThreads)
{
    const SampleBlocks samples(SampleShape{1, 1, {5}, 0.0, 0}, 860);
    std::mutex mutex;
    std::set<std::thread::id> evaluators;
    std::atomic<bool> isBuilt{false};
    std::atomic_flag hasBegun = ATOMIC_FLAG_INIT;
    Meeting begun(2);
    Meeting mayEnd(2);
    FunctionSemivariogram semivariogram(
        [&](const std::vector<double>& separation)
        {
            if (isBuilt)
            {
                const std::lock_guard<std::mutex> lock(mutex);
                evaluators.insert(std::this_thread::get_id());
            }
            if (isBuilt && !hasBegun.test_and_set())
            {
                begun.attend();
                mayEnd.attend();
            }
            return oneSidedModel(separation);
        });
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 0, 1);
    isBuilt = true;
    ValueArrays targets(randomValues(1, 2, -1.0, 1.0, 861));
    ResultArrays values(2, 2);
    const auto requestInto = [&](std::size_t k)
    {
        std::vector<double*> value{values.arrays()[k]};
        std::vector<double*> none;
        controller.interpolate(targets.arrays(), {0}, 2, value, none);
    };
    std::thread first([&] { requestInto(0); });
    begun.attend(); // the pool's only thread is at work until this test lets it go on
    std::thread second([&] { requestInto(1); });
    const std::set<std::thread::id> callers{first.get_id(), second.get_id()};

    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the second caller's patience ends
    mayEnd.attend();
    first.join();
    second.join();

    EXPECT_FALSE(evaluators.empty());
    for (const std::thread::id caller : callers)
        EXPECT_EQ(evaluators.count(caller), 0U);
    EXPECT_TRUE(sameBits(values[0], values[1]));
}

TEST(AllPtsKrigingControllerTest, TargetsBeyondTheirNumberAreNotWritten)
{
    SphericalSamples given(SampleShape{}, 800, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, 2);
    ValueArrays targets(2, 12);
    ResultArrays values(1, 12);
    ResultArrays variances(1, 12);

    request(controller, targets, {0}, 11, values, variances);

    EXPECT_EQ(values[0][11], unwritten);
    EXPECT_EQ(variances[0][11], unwritten);
    EXPECT_NE(values[0][10], unwritten);
}

TEST(AllPtsKrigingControllerTest, WithoutOutputVariablesNothingIsWritten)
{
    SphericalSamples given(SampleShape{}, 800, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0, 2);
    ValueArrays targets(2, 12);
    ResultArrays values(1, 12);
    ResultArrays none(0, 12);

    request(controller, targets, {}, 12, values, none);

    EXPECT_EQ(values[0], std::vector<double>(12, unwritten));
}

TEST(AllPtsKrigingControllerTest, WithoutANuggetATargetOnASourcePointGivesItsOutput)
{
    SphericalSamples given(SampleShape{2, 1, {20}, 0.0, 0}, 810, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0);
    ValueArrays targets(given.samples.inputs[0]);
    ResultArrays values(1, 20);
    ResultArrays variances(1, 20);

    request(controller, targets, {0}, 20, values, variances);

    for (std::size_t i = 0; i < 20; ++i)
    {
        EXPECT_NEAR(values[0][i], given.samples.outputs[0][0][i], 1e-12); // rounding of a well-conditioned system
        EXPECT_NEAR(variances[0][i], 0.0, 1e-12);
    }
}

TEST(AllPtsKrigingControllerTest, WithANuggetATargetOnASourcePointDoesNotGiveItsOutput)
{
    SphericalSamples given(SampleShape{2, 1, {20}, 0.0, 0}, 810, 0.2);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 0);
    ValueArrays targets(given.samples.inputs[0]);
    ResultArrays values(1, 20);
    ResultArrays none(0, 20);

    request(controller, targets, {0}, 20, values, none);

    EXPECT_GT(std::fabs(values[0][0] - given.samples.outputs[0][0][0]), 1e-3);
}

TEST(AllPtsKrigingControllerTest, OutputsAndCoordinatesAreReadAtEachRequestAndTheSystemIsNotBuiltAgain)
{
    SphericalSamples given(SampleShape{2, 1, {20}, 0.0, 0}, 820, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 1, 2);
    NaiveLinearSystem factors(
        NaiveKriging(given.samples, given.samples.unblankedPts(), given.naiveSemivariogram, 1).rows());
    factors.factorise();
    ValueArrays targets(randomValues(2, 9, -1.0, 1.0, 821));
    ResultArrays before(1, 9);
    ResultArrays values(1, 9);
    ResultArrays none(0, 9);
    request(controller, targets, {0}, 9, before, none);
    given.samples.outputs[0][0][3] += 1.0;
    given.samples.inputs[0][1][4] += 0.5;

    request(controller, targets, {0}, 9, values, none);

    const NaiveKriging changed(given.samples, given.samples.unblankedPts(), given.naiveSemivariogram, 1);
    const NaiveRequest expected = naiveRequest(
        targets, 9, 1, [&](const std::vector<double>& target) { return changed.evaluate(factors, target, {0.0}); });
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
}

TEST(AllPtsKrigingControllerTest, ACentredOutputIsEstimatedAroundItsMidRange)
{
    SphericalSamples given(SampleShape{2, 2, {30}, 0.0, 0}, 830, 0.0);
    for (double& output : given.samples.outputs[0][1])
        output += 1e6;
    const auto [low, high] =
        std::minmax_element(given.samples.outputs[0][1].begin(), given.samples.outputs[0][1].end());
    CentringController controller(&given.samples.block(), &given.semivariogram, 1, 2);
    controller.centredOutputVars = {1};
    ValueArrays targets(randomValues(2, 25, -1.0, 1.0, 831));
    ResultArrays values(2, 25);
    ResultArrays variances(2, 25);

    controller.setOutputVars({0, 1});
    request(controller, targets, {0, 1}, 25, values, variances);

    const double offset = controller.getOutputNormalizer(1).getOffset();
    EXPECT_NEAR(offset, -(*low + *high) / 2.0, 1e-9);
    const NaiveRequest expected = given.naive(targets, 25, 1, {0.0, offset});
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(values[1], expected.values[1]));
    EXPECT_FALSE(sameBits(values[1], given.naive(targets, 25, 1, {0.0, 0.0}).values[1]));
}

TEST(AllPtsKrigingControllerTest, AnOutputThatIsNotCentredIsThePlainSumHoweverLarge)
{
    SphericalSamples given(SampleShape{2, 1, {30}, 0.0, 0}, 830, 0.0);
    for (double& output : given.samples.outputs[0][0])
        output += 1e6;
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 1, 2);
    ValueArrays targets(randomValues(2, 25, -1.0, 1.0, 831));
    ResultArrays values(1, 25);
    ResultArrays none(0, 25);

    controller.setOutputVars({0});
    request(controller, targets, {0}, 25, values, none);

    EXPECT_TRUE(sameBits(values[0], given.naive(targets, 25, 1, {0.0}).values[0]));
}

TEST(AllPtsKrigingControllerTest, ATargetOfNaNGivesNaNAndDisturbsNoOther)
{
    SphericalSamples given(SampleShape{2, 1, {30}, 0.0, 0}, 840, 0.0);
    AllPtsKrigingController controller(&given.samples.block(), &given.semivariogram, 1, 1);
    ValueArrays targets(randomValues(2, 25, -1.0, 1.0, 841));
    targets[1][11] = std::numeric_limits<double>::quiet_NaN();
    ResultArrays values(1, 25);
    ResultArrays none(0, 25);

    request(controller, targets, {0}, 25, values, none);

    EXPECT_TRUE(std::isnan(values[0][11]));
    EXPECT_TRUE(sameBits(values[0], given.naive(targets, 25, 1, {0.0}).values[0]));
}

TEST(AllPtsKrigingControllerTest, IsDestroyedThroughItsBase)
{
    SphericalSamples given(SampleShape{}, 1, 0.0);
    std::unique_ptr<KrigingControllerAbstract> controller =
        std::make_unique<AllPtsKrigingController>(&given.samples.block(), &given.semivariogram, 0);

    EXPECT_NO_THROW(controller.reset());
}
