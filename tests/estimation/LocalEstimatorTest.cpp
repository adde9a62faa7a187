#include "estimation/LocalEstimator.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;
using fenn::ModelParts;
using fenn::estimation::LocalEstimator;
using fenn::estimation::Results;
using fenn::estimation::Targets;

namespace
{

using Columns = std::vector<std::vector<double>>;

constexpr double unwritten = -99.0;
constexpr std::size_t noPoint = std::numeric_limits<std::size_t>::max();

struct Shape
{
    std::size_t numInputVars = 2;
    std::size_t numPts = 200;
    int driftOrder = 0;
    int numNeighbours = 12;
    double nugget = 0.05;
    double duplicateTolerance = -1.0;
    std::vector<double> scaleFactors{};
};

/// Samples with two outputs, one of them with a large offset, and the parts of a model over them. Where duplicates are
/// merged, a tenth of the samples lies where another one does.
class LocalModel
{
public:
    explicit LocalModel(const Shape& shape_, std::uint64_t seed = 1)
        : LocalModel(shape_, randomValues(shape_.numInputVars, shape_.numPts, -3.0, 9.0, seed))
    {
    }

    LocalModel(const Shape& shape_, const Columns& inputs_)
        : shape(shape_), inputs(inputs_), outputs(randomValues(2, inputs_[0].size(), 0.0, 1.0, 99))
    {
        for (double& value : outputs[1])
            value += 1e6;
        for (std::size_t i = 9; shape.duplicateTolerance >= 0.0 && i < outputs[0].size(); i += 10)
        {
            for (std::size_t v = 0; v < inputs.getNumVars(); ++v)
                inputs[v][i] = inputs[v][i / 2];
        }
        parts =
            std::make_shared<const ModelParts>(inputs.arrays(), outputs.arrays(), static_cast<int>(outputs[0].size()),
                                               shape.duplicateTolerance, shape.scaleFactors, 0.8, shape.nugget);
    }

    LocalEstimator estimator(int numThreads) const
    {
        return {parts, shape.driftOrder, shape.numNeighbours, numThreads};
    }

    /// Both outputs, then the variance, by the single operations over what a sort of all points finds.
    std::vector<double> expected(const std::vector<double>& target, std::size_t leftOut = noPoint) const
    {
        const std::vector<SourcePointRef> nearest = nearestPts(target, leftOut);
        KrigingMatrix matrix(parts->getDataBlock(), shape.numNeighbours, &parts->getSemivariogram(), shape.driftOrder);
        std::vector<double> scratch(target.size());
        std::vector<double> rhs(static_cast<std::size_t>(matrix.getDimension()));
        matrix.assemble(nearest, scratch);
        matrix.luDecompose();
        matrix.buildRightHandSide(rhs.data(), 0, target, nearest, scratch);
        const std::vector<double> rhsCopy = rhs;
        matrix.luSolve(rhs.data());
        return {matrix.estimate(0, nearest, rhs.data()), matrix.estimate(1, nearest, rhs.data()),
                matrix.dotProduct(rhs.data(), rhsCopy.data())};
    }

    std::vector<double> expectedOf(const Columns& targets) const
    {
        std::vector<double> values;
        for (std::size_t t = 0; t < targets[0].size(); ++t)
        {
            std::vector<double> target;
            for (const std::vector<double>& column : targets)
                target.push_back(column[t]);
            const std::vector<double> one = expected(target);
            values.insert(values.end(), one.begin(), one.end());
        }
        return values;
    }

    std::vector<double> coordsOf(std::size_t position) const
    {
        const auto& [b, p] = parts->getPoints()[position];
        std::vector<double> coords;
        for (const double* values : parts->getDataBlock().getInputValueArraysForBlock(b))
            coords.push_back(values[p]);
        return coords;
    }

    const Shape shape;
    ValueArrays inputs;
    ValueArrays outputs;
    std::shared_ptr<const ModelParts> parts;

private:
    std::vector<SourcePointRef> nearestPts(const std::vector<double>& target, std::size_t leftOut) const
    {
        std::vector<std::pair<double, SourcePointRef>> byDistance;
        for (std::size_t i = 0; i < parts->getPoints().size(); ++i)
        {
            const std::vector<double> coords = coordsOf(i);
            double sum = 0.0;
            for (std::size_t v = 0; v < target.size(); ++v)
            {
                const Normalizer& normalizer = parts->getNormalizers()[v];
                const double difference = normalizer.normalize(target[v]) - normalizer.normalize(coords[v]);
                sum += difference * difference;
            }
            if (i != leftOut)
                byDistance.emplace_back(sum, parts->getPoints()[i]);
        }
        std::sort(byDistance.begin(), byDistance.end());
        std::vector<SourcePointRef> nearest;
        for (std::size_t i = 0; i < static_cast<std::size_t>(shape.numNeighbours); ++i)
            nearest.push_back(byDistance[i].second);
        return nearest;
    }
};

/// Both outputs and, where wanted, the variance of every target, target by target.
std::vector<double> estimatesOf(const LocalEstimator& estimator, const Columns& targets, bool wantsVariances = true)
{
    const std::size_t count = targets[0].size();
    Columns results(3, std::vector<double>(count, unwritten));
    Targets where;
    for (const std::vector<double>& column : targets)
        where.coords.push_back(column.data());
    where.count = count;
    estimator.estimate(where, {{results[0].data(), results[1].data()}, wantsVariances ? results[2].data() : nullptr});
    std::vector<double> values;
    for (std::size_t t = 0; t < count; ++t)
    {
        for (std::size_t k = 0; k < (wantsVariances ? 3U : 2U); ++k)
            values.push_back(results[k][t]);
    }
    return values;
}

Columns firstOf(const Columns& targets, std::size_t count)
{
    Columns first;
    for (const std::vector<double>& column : targets)
        first.emplace_back(column.begin(), column.begin() + static_cast<std::ptrdiff_t>(count));
    return first;
}

} // namespace

TEST(LocalEstimatorTest, HasTheBitsOfTheSingleOperationsOverTheNearestPoints)
{
    const Shape shapes[] = {{1, 50, 0, 2, 0.0},
                            {1, 80, 4, 9, 0.1},
                            {2, 200, 0, 12, 0.0},
                            {2, 200, 1, 16, 0.05},
                            {2, 300, 2, 33, 0.0},
                            {3, 300, 0, 24, 0.0},
                            {3, 150, 1, 5, 0.2},
                            {4, 200, 2, 40, 0.05},
                            {2, 200, 1, 20, 0.0, 1e-9},
                            {2, 200, 0, 10, 0.0, -1.0, {1.0, 20.0}},
                            {3, 200, 0, 10, 0.0, -1.0, {-1.0, -4.0, -0.5}}};
    for (const Shape& shape : shapes)
    {
        SCOPED_TRACE(testing::Message() << shape.numInputVars << " variables, drift " << shape.driftOrder << ", "
                                        << shape.numNeighbours << " neighbours");
        const LocalModel model(shape);
        Columns targets = randomValues(shape.numInputVars, 70, -4.0, 10.0, 2);
        for (std::size_t v = 0; v < targets.size(); ++v)
            targets[v][11] = model.inputs[v][5]; // on a sample

        EXPECT_TRUE(sameBits(estimatesOf(model.estimator(1), targets), model.expectedOf(targets)));
    }
}

TEST(LocalEstimatorTest, SystemsOfManyPointsHaveTheSameBits)
{
    for (const int numNeighbours : {126, 127, 128, 129, 180})
    {
        const LocalModel model({2, 400, 0, numNeighbours});
        const Columns targets = randomValues(2, 9, -4.0, 10.0, 3);

        EXPECT_TRUE(sameBits(estimatesOf(model.estimator(2), targets), model.expectedOf(targets)));
    }
}

TEST(LocalEstimatorTest, EveryInstructionSetGivesTheSameBits)
{
    const LocalModel model({3, 300, 1, 17});
    const Columns targets = randomValues(3, 40, -4.0, 10.0, 4);
    const std::vector<double> expected = model.expectedOf(targets);
    forEachRunnableTarget([&](const char* name)
                          { EXPECT_TRUE(sameBits(estimatesOf(model.estimator(1), targets), expected)) << name; });
}

TEST(LocalEstimatorTest, TheNumberOfTargetsAndOfThreadsChangesNoBit)
{
    const LocalModel model({2, 500, 1, 14});
    const Columns targets = randomValues(2, 333, -4.0, 10.0, 5);
    const std::vector<double> expected = estimatesOf(model.estimator(1), targets);
    for (const int numThreads : {1, 2, 3, 8})
    {
        const LocalEstimator estimator = model.estimator(numThreads);
        for (const std::size_t count : {1U, 2U, 3U, 7U, 8U, 9U, 63U, 64U, 65U, 333U})
            EXPECT_TRUE(sameBits(estimatesOf(estimator, firstOf(targets, count)),
                                 {expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(3 * count)}))
                << numThreads << " threads, " << count << " targets";
    }
}

TEST(LocalEstimatorTest, AskingForVariancesChangesNoEstimate)
{
    const LocalModel model({2, 200, 0, 12});
    const Columns targets = randomValues(2, 30, -4.0, 10.0, 6);
    std::vector<double> expected = estimatesOf(model.estimator(1), targets);
    for (std::size_t t = 30; t-- > 0;)
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(3 * t) + 2);

    EXPECT_TRUE(sameBits(estimatesOf(model.estimator(1), targets, false), expected));
}

TEST(LocalEstimatorTest, NearnessIsThatOfNormalisedInputs)
{
    // The second input spans a thousand times the first one's range. In raw units the points that are near in it would
    // be the neighbours: the first two.
    const Columns inputs{{1.0, 1.0, 0.0, 0.1, 0.5}, {0.0, 1.0, 500.0, 600.0, 1000.0}};
    Shape shape;
    shape.numNeighbours = 3;
    const LocalModel model(shape, inputs);
    const Columns targets{{0.0}, {10.0}};

    EXPECT_EQ(model.parts->getNormalizers()[0].getScale(), 1000.0 * model.parts->getNormalizers()[1].getScale());
    EXPECT_TRUE(sameBits(estimatesOf(model.estimator(1), targets), model.expectedOf(targets)));
}

TEST(LocalEstimatorTest, LeavesEachPointOutOfItsOwnEstimate)
{
    for (const double duplicateTolerance : {-1.0, 1e-9})
    {
        Shape shape;
        shape.duplicateTolerance = duplicateTolerance;
        const LocalModel model(shape);
        const std::size_t numPts = model.parts->getPoints().size();
        Columns results(3, std::vector<double>(numPts, unwritten));
        const Results where{{results[0].data(), results[1].data()}, results[2].data()};
        model.estimator(3).estimateWithoutEach(0, 101, where);
        model.estimator(2).estimateWithoutEach(101, numPts - 101, where);

        for (std::size_t i = 0; i < numPts; ++i)
            ASSERT_TRUE(sameBits({results[0][i], results[1][i], results[2][i]}, model.expected(model.coordsOf(i), i)))
                << "point " << i;
    }
}

TEST(LocalEstimatorTest, AmongCoincidentPointsOnlyTheOneOfThePositionIsLeftOut)
{
    // Five points on one place: four others are its neighbours, whichever comes first.
    Columns inputs = randomValues(2, 30, -3.0, 9.0, 7);
    for (const std::size_t i : {3U, 8U, 14U, 21U, 29U})
    {
        inputs[0][i] = 1.0;
        inputs[1][i] = 2.0;
    }
    Shape shape;
    shape.numNeighbours = 3;
    shape.nugget = 0.2;
    const LocalModel model(shape, inputs);
    Columns results(3, std::vector<double>(30, unwritten));
    const LocalEstimator estimator = model.estimator(1);
    const std::string text = textOfError(
        [&] {
            estimator.estimateWithoutEach(0, 30, {{results[0].data(), results[1].data()}, results[2].data()});
        });

    ASSERT_EQ(text, "no Error");
    for (const std::size_t i : {3U, 14U, 29U})
        EXPECT_TRUE(sameBits({results[0][i], results[1][i], results[2][i]}, model.expected(model.coordsOf(i), i)));
}

TEST(LocalEstimatorTest, TheFirstTargetThatFailsDecidesTheError)
{
    // Around the middle of the range, where a linear drift is zero, all points coincide: no system over three of them
    // has a solution. Far out, distances overflow; in the other corner nothing is wrong.
    Columns inputs{{-8.0, 8.0, 7.0, 6.5, 7.5, 0.0, 0.0, 0.0, 0.0}, {-8.0, 8.0, 7.5, 7.0, 6.0, 0.0, 0.0, 0.0, 0.0}};
    Shape shape;
    shape.driftOrder = 1;
    shape.numNeighbours = 3;
    shape.nugget = 0.1;
    const LocalModel model(shape, inputs);
    for (const int numThreads : {1, 4})
    {
        const LocalEstimator estimator = model.estimator(numThreads);
        for (const std::size_t firstSingular : {std::size_t{3}, std::size_t{90}, std::size_t{200}})
        {
            Columns targets = randomValues(2, 250, 6.0, 8.0, 8);
            for (const std::size_t t : {firstSingular, firstSingular + 20})
                targets[0][t] = targets[1][t] = 0.1;
            EXPECT_EQ(textOfError([&] { estimatesOf(estimator, targets); }), "Singular matrix");

            for (std::size_t t = firstSingular + 1; t < 250; t += 7)
                targets[0][t] = 1e200;
            EXPECT_EQ(textOfError([&] { estimatesOf(estimator, targets); }), "Singular matrix");

            targets[1][firstSingular - 1] = -1e200;
            EXPECT_EQ(textOfError([&] { estimatesOf(estimator, targets); }), "Value overflow");
        }
    }
}

TEST(LocalEstimatorTest, ATargetWithoutNeighboursIsAnErrorWhateverStoodInItsLane)
{
    // Its distances overflow. The eight targets before it have neighbours.
    const LocalModel model({2, 200, 0, 12});
    Columns targets = randomValues(2, 12, -4.0, 10.0, 9);
    targets[0][9] = 1e200;
    for (const std::size_t count : {10U, 12U})
        EXPECT_EQ(textOfError([&] { estimatesOf(model.estimator(1), firstOf(targets, count)); }), "Value overflow");
}

TEST(LocalEstimatorTest, TooFewNeighboursForASystemAreRefused)
{
    const LocalModel model({2, 50, 0, 12});
    EXPECT_EQ(textOfError([&] { LocalEstimator(model.parts, 0, 2, 1); }), "Not enough source points for kriging.");
    EXPECT_EQ(textOfError([&] { LocalEstimator(model.parts, 2, 4, 1); }),
              "Not enough source points to calculate drift.");
}

TEST(LocalEstimatorTest, NoTargetsNeedNoAnswer)
{
    const LocalModel model({2, 50, 0, 12});
    EXPECT_TRUE(estimatesOf(model.estimator(2), {{}, {}}).empty());
}

TEST(LocalEstimatorTest, SaysWhatItIs)
{
    const LocalModel model({2, 50, 0, 12});
    const LocalEstimator estimator = model.estimator(1);
    EXPECT_EQ(estimator.getReport().engine, "local");
    EXPECT_NE(estimator.getReport().sentence.find("12 nearest points in normalised inputs"), std::string::npos);
    EXPECT_FALSE(estimator.getReport().isExact);
    EXPECT_FALSE(estimator.isGlobal());
    EXPECT_EQ(&estimator.getParts(), model.parts.get());
}
