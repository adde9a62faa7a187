#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "analysis/Calibration.h"
#include "analysis/CrossValidation.h"
#include "analysis/Folds.h"
#include "analysis/LeaveOneOut.h"
#include "analysis/Sill.h"
#include "estimation/Estimator.h"
#include "estimation/StandardError.h"
#include "estimation/chooseEstimator.h"
#include "tests/analysis/SimulatedField.h"

// Whether intervals hold what they promise where the model is true: fields of known sill, range, nugget and drift,
// whose sills are estimated as krige does.

namespace
{

using fenn::analysis::Calibration;
using fenn::estimation::Estimator;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::estimation::standardErrorOf;

constexpr double trueSill = 9.0;
constexpr std::size_t numFields = 80;
constexpr std::size_t numSamples = 120;

/// The mean of (n - q) / chi squared of n - q degrees of freedom is (n - q) / (n - q - 2): 1.02 for some 100 samples.
/// And the box of fewer samples is smaller, and with it the range.
constexpr double slackOfOthersSill = 0.025;

struct Errors
{
    std::vector<double> truths;
    std::vector<double> estimates;
    std::vector<double> standardErrors;
};

void append(Errors& all, double truth, double estimate, double variance, double sill)
{
    all.truths.push_back(truth);
    all.estimates.push_back(estimate);
    all.standardErrors.push_back(standardErrorOf(variance, sill));
}

/// Coverages of single fields vary more than those of independent errors would, for neighbours err together: the
/// deviation of their mean is taken from the fields themselves.
class Coverages
{
public:
    void add(const Errors& errors)
    {
        const Calibration calibration =
            fenn::analysis::calcCalibration(errors.truths, errors.estimates, errors.standardErrors);
        EXPECT_EQ(calibration.numUsed, errors.truths.size());
        std::vector<double> figures;
        for (const auto& coverage : calibration.coverages)
            figures.push_back(coverage.actual);
        figures.push_back(calibration.meanSquaredStandardisedError);
        ofFields.push_back(figures);
    }

    /// slack: of a share of 1, for what is known to be off.
    void expectPromised(double slack) const
    {
        const std::vector<double> promised{0.5, 0.9, 0.95, 1.0};
        for (std::size_t k = 0; k < promised.size(); ++k)
        {
            double sum = 0.0;
            double sumSquared = 0.0;
            for (const std::vector<double>& figures : ofFields)
            {
                sum += figures[k];
                sumSquared += figures[k] * figures[k];
            }
            const auto count = static_cast<double>(ofFields.size());
            const double mean = sum / count;
            const double deviation = std::sqrt((sumSquared / count - mean * mean) / (count - 1.0));
            EXPECT_NEAR(mean, promised[k], 3.5 * deviation + slack) << "figure " << k;
            EXPECT_LT(deviation, 0.07) << "figure " << k; // or the test would see nothing
        }
    }

private:
    std::vector<std::vector<double>> ofFields;
};

SampleSet field(const ModelSettings& settings, std::size_t k)
{
    return fenn::test::simulatedField(fenn::test::randomValues(2, numSamples, 0.0, 10.0, 500 + k), settings, trueSill,
                                      -50.0, 900 + k);
}

/// Short and long ranges, no nugget and hardly anything else, a drift, a local model.
std::vector<ModelSettings> models()
{
    return {{-1.0, {}, 0, 0.3, 0.0, 0},
            {-1.0, {}, 0, 0.6, 0.3, 0},
            {-1.0, {}, 1, 0.3, 0.1, 0},
            {-1.0, {}, 0, 0.2, 0.9, 0},
            {-1.0, {}, 0, 0.4, 0.2, 16}};
}

class CoverageTest : public testing::TestWithParam<std::size_t>
{
protected:
    const ModelSettings settings = models()[GetParam()];
};

TEST_P(CoverageTest, NewObservationsLieInIntervalsOfTheEstimatedSill)
{
    Coverages coverages;
    for (std::size_t k = 0; k < numFields; ++k)
    {
        const SampleSet all = field(settings, k);
        std::vector<std::size_t> known(numSamples - 20);
        std::iota(known.begin(), known.end(), 20U);
        std::vector<std::size_t> unknown(20);
        std::iota(unknown.begin(), unknown.end(), 0U);
        const SampleSet samples = all.subset(known);
        const SampleSet targets = all.subset(unknown);
        const auto estimator = fenn::estimation::chooseEstimator(samples, settings);
        const double sill = fenn::analysis::estimateSills(*estimator, settings, 1)[0].value;
        const fenn::estimation::Estimates estimates = estimateAt(*estimator, targets);
        Errors errors;
        for (std::size_t t = 0; t < unknown.size(); ++t)
            append(errors, targets.getOutput(0)[t], estimates.values[0][t], estimates.variances[t], sill);
        coverages.add(errors);
    }
    coverages.expectPromised(slackOfOthersSill);
}

TEST_P(CoverageTest, PointsLeftOutLieInIntervalsOfTheEstimatedSill)
{
    Coverages coverages;
    for (std::size_t k = 0; k < numFields; ++k)
    {
        const fenn::analysis::LeaveOneOutResult left = fenn::analysis::leaveOneOut(field(settings, k), settings);
        Errors errors;
        for (std::size_t i = 0; i < numSamples; ++i)
            append(errors, left.truths[0][i], left.estimates.values[0][i], left.estimates.variances[i],
                   left.sills[0].value);
        coverages.add(errors);
    }
    coverages.expectPromised(0.005); // a sill that is too small by chance goes with errors that are, too
}

TEST_P(CoverageTest, SamplesOfAFoldLieInIntervalsOfTheirTrainingSamplesSill)
{
    constexpr std::size_t numFolds = 6;
    Coverages coverages;
    for (std::size_t k = 0; k < numFields; ++k)
    {
        const SampleSet samples = field(settings, k);
        std::vector<double> sills;
        const fenn::estimation::Estimates estimates = fenn::analysis::crossValidate(
            samples, settings, numFolds, k, {}, {},
            [&](std::size_t, const Estimator& estimator)
            { sills.push_back(fenn::analysis::estimateSills(estimator, settings, 1)[0].value); });
        const std::vector<std::size_t> folds = fenn::analysis::assignFolds(numSamples, numFolds, k);
        Errors errors;
        for (std::size_t i = 0; i < numSamples; ++i)
            append(errors, samples.getOutput(0)[i], estimates.values[0][i], estimates.variances[i], sills[folds[i]]);
        coverages.add(errors);
    }
    coverages.expectPromised(slackOfOthersSill);
}

INSTANTIATE_TEST_SUITE_P(Models, CoverageTest, testing::Range<std::size_t>(0, models().size()));

TEST(SampleVarianceTest, AsASillItCoversTooLittleWhereTheRangeIsLong)
{
    // A field of a long range shows only part of its sill within its box.
    const ModelSettings settings{-1.0, {}, 0, 2.0, 0.0, 0};
    double covered = 0.0;
    for (std::size_t k = 0; k < numFields; ++k)
    {
        const fenn::analysis::LeaveOneOutResult left = fenn::analysis::leaveOneOut(field(settings, k), settings);
        Errors errors;
        for (std::size_t i = 0; i < numSamples; ++i)
            append(errors, left.truths[0][i], left.estimates.values[0][i], left.estimates.variances[i],
                   left.sills[0].sampleVariance);
        covered +=
            fenn::analysis::calcCalibration(errors.truths, errors.estimates, errors.standardErrors).coverages[2].actual;
    }
    EXPECT_LT(covered / numFields, 0.85);
}

} // namespace
