#include "surrogatemodel_kriging/NPtsKrigingController.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/NaiveSearch.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Shows what the base keeps, so that a test can have variables centred. The base is virtual: made here.
class CentringController : public NPtsKrigingController
{
public:
    CentringController(const SurrogateModelDataBlock* block, SemivariogramInterface* semivariogram, int driftOrder,
                       int numNeighbours_)
        : KrigingControllerAbstract(block), NPtsKrigingController(block, semivariogram, driftOrder, numNeighbours_)
    {
    }

    using KrigingControllerAbstract::centredOutputVars;
};

void request(KrigingControllerAbstract& controller, ValueArrays& targets, const std::set<int>& outputVars,
             std::size_t numTargets, ResultArrays& values, ResultArrays& variances)
{
    controller.interpolate(targets.arrays(), outputVars, static_cast<int>(numTargets), values.arrays(),
                           variances.arrays());
}

/// Per target the nearest points by a full sort, those of the target before where it finds fewer, and a system anew.
NaiveRequest naiveLocalRequest(const SampleBlocks& samples, const NaiveSemivariogram& semivariogram, int driftOrder,
                               int numNeighbours, const ValueArrays& targets, std::size_t numTargets,
                               const std::vector<double>& references)
{
    std::vector<SourcePointRef> neighbours(static_cast<std::size_t>(numNeighbours), SourcePointRef(0, 0));
    return naiveRequest(
        targets, numTargets, references.size(),
        [&](const std::vector<double>& target)
        {
            const auto found = naiveNearestPts(samples, target, numNeighbours);
            std::copy(found.begin(), found.end(), neighbours.begin());
            return NaiveKriging(samples, neighbours, semivariogram, driftOrder).evaluate(target, references);
        });
}

/// Thirty points on a line, of which 10 and 20 coincide: merging them blanks both and appends a block of one point.
SampleBlock lineWithAPairToMerge()
{
    SampleBlock line;
    line.inputs.resize(1);
    line.outputs = randomValues(1, 30, -1.0, 1.0, 3);
    for (int i = 0; i < 30; ++i)
        line.inputs[0].push_back(i == 20 ? 10.0 : i);
    line.isUnblanked.assign(30, true);
    line.numPts = 30;
    return line;
}

/// Without points 10 and 20 and without what they are merged to.
NaiveRequest lineRequestWithoutThePair(int numNeighbours, const ValueArrays& targets, std::size_t numTargets)
{
    const SampleBlock line = lineWithAPairToMerge();
    std::vector<bool> isUnblanked(30, true);
    isUnblanked[10] = isUnblanked[20] = false;
    const SampleBlocks samples({line.inputs}, {line.outputs}, {isUnblanked}, {Normalizer()});
    return naiveLocalRequest(samples, oneSidedModel, 0, numNeighbours, targets, numTargets, {0.0});
}

std::string textOfConstruction(std::size_t numInputVars, int driftOrder, int numNeighbours)
{
    const SampleBlocks samples(SampleShape{numInputVars, 1, {40}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    return textOfError(
        [&] { const NPtsKrigingController controller(&samples.block(), &semivariogram, driftOrder, numNeighbours); });
}

} // namespace

TEST(NPtsKrigingControllerTest, TooFewNeighboursForKrigingAreRejected)
{
    EXPECT_EQ(textOfConstruction(2, 0, 2), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(2, 2, 1), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(1, 0, -3), "Not enough source points for kriging.");
}

TEST(NPtsKrigingControllerTest, TooFewNeighboursForTheDriftAreRejected)
{
    EXPECT_EQ(textOfConstruction(2, 2, 4), "Not enough source points to calculate drift.");
    EXPECT_EQ(textOfConstruction(2, 2, 5), "no Error");
}

TEST(NPtsKrigingControllerTest, ConstructionEvaluatesNothing)
{
    const SampleBlocks samples(SampleShape{}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    const NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 5);

    EXPECT_EQ(semivariogram.getNumEvaluations(), 0);
}

TEST(NPtsKrigingControllerTest, EachTargetEvaluatesItsPairsOnce)
{
    const SampleBlocks samples(SampleShape{2, 1, {30}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 7);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 2));
    ResultArrays values(1, 10);
    ResultArrays variances(1, 10);

    request(controller, targets, {0}, 10, values, variances);

    EXPECT_EQ(semivariogram.getNumEvaluations(), 10 * (7 * 6 / 2 + 7));
}

TEST(NPtsKrigingControllerTest, EstimatesAndVariancesHaveTheBitsOfTheNaiveLoops)
{
    for (std::size_t d = 1; d <= 4; ++d)
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            const int fewest = std::max(static_cast<int>(d) + 1, numDriftTerms(driftOrder, static_cast<int>(d)));
            for (const int numNeighbours : {fewest, fewest + 3, fewest + 13})
            {
                SCOPED_TRACE(testing::Message()
                             << d << " variables, order " << driftOrder << ", " << numNeighbours << " neighbours");
                const SampleBlocks samples(SampleShape{d, 3, {60, 0, 50}, 0.1, 0}, 1000 + d);
                const std::vector<double> low(d, -1.0), high(d, 1.0);
                SphericalSemivariogram semivariogram(low, samples.normalizers, low, high, 0.7, 0.02);
                const auto naive = naiveSpherical(scalesOf(samples.normalizers), low, high, 0.7, 0.02);
                NPtsKrigingController controller(&samples.block(), &semivariogram, driftOrder, numNeighbours);
                ValueArrays targets(randomValues(d, 9, -1.2, 1.2, 1001));
                ResultArrays values(2, 9);
                ResultArrays variances(2, 9);

                const std::string failure = textOfError(
                    [&] {
                        request(controller, targets, {0, 2}, 9, values, variances);
                    });

                const NaiveRequest expected =
                    naiveLocalRequest(samples, naive, driftOrder, numNeighbours, targets, 9, {0.0, 0.0, 0.0});
                // As many points as drift terms leave the system one constraint too many: then both overflow.
                EXPECT_EQ(failure, expected.failure.empty() ? "no Error" : expected.failure);
                EXPECT_TRUE(sameBits(values[0], expected.values[0]));
                EXPECT_TRUE(sameBits(values[1], expected.values[2]));
                EXPECT_TRUE(sameBits(variances[0], expected.variances));
                EXPECT_TRUE(sameBits(variances[1], expected.variances));
            }
        }
    }
}

TEST(NPtsKrigingControllerTest, EveryNumberOfNeighboursHasTheBitsOfTheNaiveLoopsWhereDistancesTie)
{
    const SampleBlocks samples(SampleShape{2, 1, {60, 50}, 0.1, 8}, 1100);
    FunctionSemivariogram semivariogram(oneSidedModel);
    for (int numNeighbours = 3; numNeighbours <= 70; ++numNeighbours)
    {
        SCOPED_TRACE(numNeighbours);
        NPtsKrigingController controller(&samples.block(), &semivariogram, 1, numNeighbours);
        ValueArrays targets({{3.5, 0.0, 4.0, 7.0}, {3.5, 0.0, 2.5, 1.0}});
        ResultArrays values(1, 4);
        ResultArrays variances(1, 4);

        const std::string failure = textOfError([&] { request(controller, targets, {0}, 4, values, variances); });

        // Coincident neighbours may well overflow: then both do, at the same target.
        const NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 1, numNeighbours, targets, 4, {0.0});
        EXPECT_EQ(failure, expected.failure.empty() ? "no Error" : expected.failure);
        EXPECT_TRUE(sameBits(values[0], expected.values[0]));
        EXPECT_TRUE(sameBits(variances[0], expected.variances));
    }
}

TEST(NPtsKrigingControllerTest, WithoutVariancesTheEstimatesAreTheSame)
{
    const SampleBlocks samples(SampleShape{2, 1, {30}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 7);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 2));
    ResultArrays values(1, 10);
    ResultArrays none(0, 10);

    request(controller, targets, {0}, 10, values, none);

    EXPECT_TRUE(sameBits(values[0], naiveLocalRequest(samples, oneSidedModel, 1, 7, targets, 10, {0.0}).values[0]));
}

TEST(NPtsKrigingControllerTest, TheKthArrayBelongsToTheKthSmallestOutputVariable)
{
    const SampleBlocks samples(SampleShape{2, 4, {30}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 7);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 2));
    ResultArrays values(2, 10);
    ResultArrays none(0, 10);

    request(controller, targets, {3, 1}, 10, values, none);

    const NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 1, 7, targets, 10, {0.0, 0.0, 0.0, 0.0});
    EXPECT_TRUE(sameBits(values[0], expected.values[1]));
    EXPECT_TRUE(sameBits(values[1], expected.values[3]));
}

TEST(NPtsKrigingControllerTest, NoTargetsWriteNothing)
{
    const SampleBlocks samples(SampleShape{}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 5);
    ValueArrays targets(2, 2);
    ResultArrays values(1, 2);
    ResultArrays variances(1, 2);

    request(controller, targets, {0}, 0, values, variances);

    EXPECT_EQ(values[0], std::vector<double>(2, unwritten));
    EXPECT_EQ(variances[0], std::vector<double>(2, unwritten));
}

TEST(NPtsKrigingControllerTest, ATargetOnASourcePointGivesItsOutputWithoutANugget)
{
    const SampleBlocks samples(SampleShape{2, 1, {30}, 0.0, 0}, 1);
    const std::vector<double> low(2, -1.0), high(2, 1.0);
    SphericalSemivariogram semivariogram(low, samples.normalizers, low, high, 1.0, 0.0);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 0, 6);
    ValueArrays targets(samples.inputs[0]);
    ResultArrays values(1, 30);
    ResultArrays variances(1, 30);

    request(controller, targets, {0}, 30, values, variances);

    for (std::size_t i = 0; i < 30; ++i)
    {
        EXPECT_NEAR(values[0][i], samples.outputs[0][0][i], 1e-12); // rounding of a well-conditioned system
        EXPECT_NEAR(variances[0][i], 0.0, 1e-12);
    }
}

TEST(NPtsKrigingControllerTest, ACentredOutputIsEstimatedAroundItsMidRange)
{
    SampleBlocks samples(SampleShape{2, 2, {30}, 0.0, 0}, 830);
    for (double& output : samples.outputs[0][1])
        output += 1e6;
    FunctionSemivariogram semivariogram(oneSidedModel);
    CentringController controller(&samples.block(), &semivariogram, 0, 9);
    controller.centredOutputVars = {1};
    ValueArrays targets(randomValues(2, 25, -1.0, 1.0, 831));
    ResultArrays values(2, 25);
    ResultArrays variances(2, 25);

    controller.setOutputVars({0, 1});
    request(controller, targets, {0, 1}, 25, values, variances);

    const double offset = controller.getOutputNormalizer(1).getOffset();
    EXPECT_NEAR(offset, -1e6, 1.0);
    const NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 0, 9, targets, 25, {0.0, offset});
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(values[1], expected.values[1]));
    EXPECT_FALSE(
        sameBits(values[1], naiveLocalRequest(samples, oneSidedModel, 0, 9, targets, 25, {0.0, 0.0}).values[1]));
}

TEST(NPtsKrigingControllerTest, ATargetThatFindsNoPointsUsesThoseOfTheTargetBefore)
{
    const SampleBlocks samples(SampleShape{1, 1, {20}, 0.0, 0}, 1200);
    SphericalSemivariogram semivariogram(samples.normalizers, samples.normalizers, {-1.0}, {1.0}, 1.0, 0.1);
    const auto naive = naiveSpherical(scalesOf(samples.normalizers), {-1.0}, {1.0}, 1.0, 0.1);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 0, 4);
    ValueArrays targets(std::vector<std::vector<double>>{{-0.9, 1e200, 0.9, 1e200, 0.0}});
    ResultArrays values(1, 5);
    ResultArrays variances(1, 5);

    request(controller, targets, {0}, 5, values, variances);

    const NaiveRequest expected = naiveLocalRequest(samples, naive, 0, 4, targets, 5, {0.0});
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(variances[0], expected.variances));
    EXPECT_NE(values[0][1], values[0][3]);
}

TEST(NPtsKrigingControllerTest, AFirstTargetThatFindsNoPointsUsesTheFirstPointThroughout)
{
    const SampleBlocks samples({{0.0, 1.0, 2.0, 3.0}}, {{7.0, 1.0, 2.0, 3.0}});
    SphericalSemivariogram semivariogram(samples.normalizers, samples.normalizers, {0.0}, {3.0}, 1.0, 0.1);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 0, 3);
    ValueArrays targets(std::vector<std::vector<double>>{{1e200, 1.5}});
    ResultArrays values(1, 2);
    ResultArrays none(0, 2);

    request(controller, targets, {0}, 2, values, none);

    EXPECT_NEAR(values[0][0], 7.0, 1e-12); // three times the point (0, 0), weights of 1/3 up to rounding
}

TEST(NPtsKrigingControllerTest, NeighboursAreNotKeptFromOneRequestToTheNext)
{
    const SampleBlocks samples({{0.0, 1.0, 2.0, 3.0}}, {{7.0, 1.0, 2.0, 3.0}});
    SphericalSemivariogram semivariogram(samples.normalizers, samples.normalizers, {0.0}, {3.0}, 1.0, 0.1);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 0, 3);
    ValueArrays near(std::vector<std::vector<double>>{{3.0}});
    ValueArrays far(std::vector<std::vector<double>>{{1e200}});
    ResultArrays first(1, 1);
    ResultArrays second(1, 1);
    ResultArrays none(0, 1);
    request(controller, near, {0}, 1, first, none);

    request(controller, far, {0}, 1, second, none);

    EXPECT_NEAR(second[0][0], 7.0, 1e-12); // weights of 1/3 up to rounding
}

TEST(NPtsKrigingControllerTest, ATargetOfNaNGivesNaNAndDisturbsNoOther)
{
    const SampleBlocks samples(SampleShape{2, 1, {30}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 7);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 2));
    targets[0][4] = notANumber;
    ResultArrays values(1, 10);
    ResultArrays none(0, 10);

    request(controller, targets, {0}, 10, values, none);

    EXPECT_TRUE(std::isnan(values[0][4]));
    EXPECT_TRUE(sameBits(values[0], naiveLocalRequest(samples, oneSidedModel, 1, 7, targets, 10, {0.0}).values[0]));
}

TEST(NPtsKrigingControllerTest, OutputsAndCoordinatesAreReadAtEachRequest)
{
    SampleBlocks samples(SampleShape{2, 1, {30}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 7);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 2));
    ResultArrays before(1, 10);
    ResultArrays values(1, 10);
    ResultArrays none(0, 10);
    request(controller, targets, {0}, 10, before, none);
    for (std::size_t i = 0; i < 30; i += 2)
    {
        samples.outputs[0][0][i] += 1.0;
        samples.inputs[0][1][i] += 0.5;
    }

    request(controller, targets, {0}, 10, values, none);

    EXPECT_TRUE(sameBits(values[0], naiveLocalRequest(samples, oneSidedModel, 1, 7, targets, 10, {0.0}).values[0]));
}

TEST(NPtsKrigingControllerTest, BlocksAppendedAfterConstructionAreNotSearchedHoweverManyTargetsThereAre)
{
    FunctionSemivariogram semivariogram(oneSidedModel);
    for (const std::size_t numTargets : {1u, 31u, 32u, 200u})
    {
        SCOPED_TRACE(numTargets);
        BlockSet blocks({lineWithAPairToMerge()}, {0.0}, {29.0});
        NPtsKrigingController controller(&*blocks, &semivariogram, 0, 5);
        blocks->removeDuplicatePts(0.0);
        ValueArrays targets(randomValues(1, numTargets, 8.0, 12.0, 4));
        ResultArrays values(1, numTargets);
        ResultArrays none(0, numTargets);

        request(controller, targets, {0}, numTargets, values, none);

        EXPECT_TRUE(sameBits(values[0], lineRequestWithoutThePair(5, targets, numTargets).values[0]));
    }
}

TEST(NPtsKrigingControllerTest, PointsBlankedDuringARequestAreMissedByItsNextTarget)
{
    BlockSet blocks({lineWithAPairToMerge()}, {0.0}, {29.0});
    bool hasMerged = false;
    FunctionSemivariogram semivariogram(
        [&](const std::vector<double>& separation)
        {
            if (!hasMerged)
                blocks->removeDuplicatePts(0.0);
            hasMerged = true;
            return oneSidedModel(separation);
        });
    NPtsKrigingController controller(&*blocks, &semivariogram, 0, 5);
    ValueArrays targets(randomValues(1, 40, 8.0, 12.0, 4));
    targets[0][0] = 0.5; // far from the pair, which the first target's search still finds
    ResultArrays values(1, 40);
    ResultArrays none(0, 40);

    request(controller, targets, {0}, 40, values, none);

    EXPECT_TRUE(sameBits(values[0], lineRequestWithoutThePair(5, targets, 40).values[0]));
}

TEST(NPtsKrigingControllerTest, ASingularSystemStopsAtItsTarget)
{
    // Around 0 both neighbours lie at 0, and with them the whole row of the linear drift term.
    const SampleBlocks samples({{0.0, 0.0, 5.0, 6.0}}, {{1.0, 2.0, 3.0, 4.0}});
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 2);
    ValueArrays targets(std::vector<std::vector<double>>{{5.5, 5.25, 0.1, 5.5}});
    ResultArrays values(1, 4);
    ResultArrays variances(1, 4);

    EXPECT_EQ(textOfError([&] { request(controller, targets, {0}, 4, values, variances); }), "Singular matrix");

    const NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 1, 2, targets, 4, {0.0});
    EXPECT_EQ(expected.values[0][2], unwritten);
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(variances[0], expected.variances));
}

TEST(NPtsKrigingControllerTest, AnOverflowStopsAtItsTarget)
{
    const SampleBlocks samples(SampleShape{1, 1, {20}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, 5);
    ValueArrays targets(std::vector<std::vector<double>>{{0.5, 0.25, 0.75, 1e153, 0.1}});
    ResultArrays values(1, 5);
    ResultArrays variances(1, 5);

    EXPECT_EQ(textOfError([&] { request(controller, targets, {0}, 5, values, variances); }), "Value overflow");

    const NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 1, 5, targets, 5, {0.0});
    EXPECT_EQ(expected.values[0][3], unwritten);
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(variances[0], expected.variances));
}

TEST(NPtsKrigingControllerTest, AnExceptionOfTheModelStopsAtItsTargetAndTheNextRequestIsWhole)
{
    const SampleBlocks samples(SampleShape{1, 1, {20}, 0.0, 0}, 1);
    FunctionSemivariogram semivariogram(
        [](const std::vector<double>& separation)
        {
            if (std::fabs(separation[0]) > 50.0)
                throw std::runtime_error("too far away");
            return oneSidedModel(separation);
        });
    NPtsKrigingController controller(&samples.block(), &semivariogram, 0, 5);
    ValueArrays sound(std::vector<std::vector<double>>{{0.5, 0.25, 0.75}});
    ValueArrays targets(std::vector<std::vector<double>>{{0.5, 100.0, 0.75}});
    ResultArrays values(1, 3);
    ResultArrays none(0, 3);
    NaiveRequest expected = naiveLocalRequest(samples, oneSidedModel, 0, 5, sound, 3, {0.0});

    EXPECT_THROW(request(controller, targets, {0}, 3, values, none), std::runtime_error);
    EXPECT_TRUE(sameBits(values[0], {expected.values[0][0], unwritten, unwritten}));

    request(controller, sound, {0}, 3, values, none);
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
}

TEST(NPtsKrigingControllerTest, IsDestroyedThroughItsVirtualBase)
{
    const SampleBlocks samples(SampleShape{}, 1);
    FunctionSemivariogram semivariogram(oneSidedModel);
    std::unique_ptr<KrigingControllerAbstract> controller =
        std::make_unique<NPtsKrigingController>(&samples.block(), &semivariogram, 0, 5);

    EXPECT_NO_THROW(controller.reset());
}
