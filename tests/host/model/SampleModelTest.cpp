#include "host/model/SampleModel.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/Sill.h"
#include "host/model/AnalysisInput.h"

using fenn::estimation::ModelSettings;
using krige::SampleModel;
using krige::SampleTable;

namespace
{

/// Seven samples: three at (0, 0), two at (1, 1), one each at (0, 1) and (1, 0).
SampleTable samplesWithDuplicates()
{
    return {"s.csv", {"x", "y"}, {"z"}, {{0, 0, 0, 1, 1, 0, 1}, {0, 0, 0, 1, 1, 1, 0}}, {{1, 2, 3, 4, 5, 6, 7}}};
}

ModelSettings merging()
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;
    return settings;
}

} // namespace

TEST(SampleModelTest, MergedSamplesAndAveragedPointsAreCounted)
{
    const SampleTable samples = samplesWithDuplicates();
    const SampleModel model(samples, merging());

    EXPECT_EQ(model.getNumMergedSamples(), 5);
    EXPECT_EQ(model.getNumAveragedPoints(), 2);
    EXPECT_EQ(model.getNumPoints(), 4);
}

TEST(SampleModelTest, NothingIsMergedWithoutATolerance)
{
    const SampleTable samples = samplesWithDuplicates();
    ModelSettings settings;
    settings.nugget = 0.1; // keeps coincident samples apart
    const SampleModel model(samples, settings);

    EXPECT_EQ(model.getNumMergedSamples(), 0);
    EXPECT_EQ(model.getNumAveragedPoints(), 0);
    EXPECT_EQ(model.getNumPoints(), 7);
}

TEST(SampleModelTest, AsManyNearestAsPointsLeftAfterMergingIsGlobal)
{
    const SampleTable samples = samplesWithDuplicates();
    ModelSettings settings = merging();
    settings.numNearestPoints = 4;

    EXPECT_TRUE(SampleModel(samples, settings).isGlobal());
}

TEST(SampleModelTest, FewerNearestThanPointsIsLocal)
{
    const SampleTable samples = samplesWithDuplicates();
    ModelSettings settings = merging();
    settings.numNearestPoints = 3;

    EXPECT_FALSE(SampleModel(samples, settings).isGlobal());
}

TEST(SampleModelTest, NoTargetsGiveNoEstimates)
{
    const SampleTable samples = samplesWithDuplicates();
    const SampleModel model(samples, merging());
    std::vector<std::vector<double>> results;

    model.estimate({{}, {}}, results);

    EXPECT_EQ(results, (std::vector<std::vector<double>>{{}}));
}

TEST(SampleModelTest, TargetsThatAreNotFiniteGetNaNAndChangeNoOthers)
{
    const SampleTable samples = samplesWithDuplicates();
    const SampleModel model(samples, merging());
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> some;
    std::vector<std::vector<double>> all;
    std::vector<double> variancesOfSome;
    std::vector<double> variancesOfAll;

    EXPECT_EQ(model.estimate({{0.25, 0.5}, {0.5, 0.75}}, some, &variancesOfSome), 0u);
    EXPECT_EQ(model.estimate({{nan, 0.25, 0.5, 0.5, 0.5}, {0.5, 0.5, nan, -infinity, 0.75}}, all, &variancesOfAll), 3u);

    EXPECT_EQ(all[0][1], some[0][0]);
    EXPECT_EQ(all[0][4], some[0][1]);
    EXPECT_EQ(variancesOfAll[1], variancesOfSome[0]);
    EXPECT_EQ(variancesOfAll[4], variancesOfSome[1]);
    for (const std::size_t t : {0u, 2u, 3u})
    {
        EXPECT_TRUE(std::isnan(all[0][t]));
        EXPECT_TRUE(std::isnan(variancesOfAll[t]));
    }
}

TEST(SampleModelTest, AnExactModelReportsThatItIsOne)
{
    const SampleTable samples = samplesWithDuplicates();
    fenn::estimation::EstimatorOptions options;
    options.isExact = true;
    ModelSettings settings = merging();
    settings.numNearestPoints = 3;

    EXPECT_TRUE(SampleModel(samples, settings, options).getEngineReport().isExact);
    EXPECT_EQ(SampleModel(samples, settings).getEngineReport().engine, "local");
}

TEST(SampleModelTest, TheSampleVarianceIsThatOfThePointsLeftAfterMerging)
{
    const SampleTable samples = samplesWithDuplicates();
    const SampleModel model(samples, merging());

    // 2, 4.5, 6 and 7: mean 4.875, squared deviations 8.265625 + 0.140625 + 1.265625 + 4.515625
    const krige::OutputSill sill = model.calcSills({{krige::SillChoice::Rule::Sample, 0.0}})[0];
    EXPECT_DOUBLE_EQ(sill.value, 14.1875 / 3.0);
    EXPECT_EQ(sill.sampleVariance, sill.value);
}

TEST(SampleModelTest, SillsAreThoseOfTheModelThatIsBuilt)
{
    const SampleTable samples = samplesWithDuplicates();
    const SampleModel model(samples, merging());

    const krige::OutputSill sill = model.calcSills({})[0];

    EXPECT_EQ(sill.value, fenn::analysis::estimateSills(krige::toSampleSet(samples), merging())[0].value);
    EXPECT_EQ(sill.method, fenn::analysis::SillMethod::RestrictedLikelihood);
    EXPECT_EQ(sill.numUsed, 4u);
}
