#include "host/targets/Predictor.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "analysis/NormalDistribution.h"
#include "host/model/SampleModel.h"

using krige::AnsweredTargets;
using krige::choosePredictionColumns;
using krige::Predictor;
using krige::SampleModel;
using krige::SampleTable;

namespace
{

using Columns = std::vector<std::vector<double>>;

/// Two outputs over four samples on a line, and some targets between them.
class PredictorTest : public testing::Test
{
protected:
    Columns predict(const krige::PredictionRequest& request)
    {
        Predictor predictor(model, choosePredictionColumns(samples.outputNames, request), {4.0, 9.0}, request.coverage);
        Columns values;
        predictor.predict(targets, values);
        return values;
    }

    SampleTable samples{"s.csv", {"x"}, {"a", "b"}, {{0, 1, 3, 4}}, {{1, 2, 0, 5}, {10, 30, 20, 0}}};
    SampleModel model{samples, {}};
    Columns targets{{0.5, 2.0, 7.0}};
};

TEST_F(PredictorTest, EachOutputTakesItsOwnSill)
{
    const Columns values = predict({true, 0.0});

    ASSERT_EQ(values.size(), 5u);
    for (std::size_t t = 0; t < 3; ++t)
    {
        EXPECT_GT(values[2][t], 0.0);
        EXPECT_EQ(values[3][t], std::sqrt(4.0 * values[2][t]));
        EXPECT_EQ(values[4][t], std::sqrt(9.0 * values[2][t]));
    }
}

TEST_F(PredictorTest, AnIntervalLiesAroundTheEstimate)
{
    const Columns errors = predict({true, 0.0});
    const Columns values = predict({false, 90.0});

    ASSERT_EQ(values.size(), 6u);
    const double factor = fenn::analysis::intervalFactor(0.9);
    for (std::size_t t = 0; t < 3; ++t)
    {
        EXPECT_EQ(values[2][t], values[0][t] - factor * errors[3][t]);
        EXPECT_EQ(values[3][t], values[0][t] + factor * errors[3][t]);
        EXPECT_EQ(values[5][t], values[1][t] + factor * errors[4][t]);
    }
}

TEST_F(PredictorTest, AMissingCoordinateIsNotARejectedVariance)
{
    targets[0][1] = std::numeric_limits<double>::quiet_NaN();
    Predictor predictor(model, choosePredictionColumns({"a", "b"}, {true, 95.0}), {4.0, 9.0}, 95.0);
    Columns values;
    predictor.predict(targets, values);

    for (const std::vector<double>& column : values)
        EXPECT_TRUE(std::isnan(column[1]));
    EXPECT_EQ(predictor.getNumWithoutEstimate(), 1u);
    EXPECT_EQ(predictor.getNumWithoutVariance(), 0u);
}

TEST_F(PredictorTest, AMaskTakesAllColumnsOfATarget)
{
    Predictor predictor(model, choosePredictionColumns({"a", "b"}, {true, 95.0}), {4.0, 9.0}, 95.0);
    predictor.addMask(
        [](const Columns& at, const AnsweredTargets& answers, std::vector<bool>& isMasked)
        {
            for (std::size_t t = 0; t < isMasked.size(); ++t)
                isMasked[t] = isMasked[t] || (at[0][t] > 5.0 && answers.standardErrors[0][t] > 0.0);
        });
    Columns values;
    predictor.predict(targets, values);

    for (const std::vector<double>& column : values)
    {
        EXPECT_FALSE(std::isnan(column[1]));
        EXPECT_TRUE(std::isnan(column[2]));
    }
    EXPECT_EQ(predictor.getNumMasked(), 1u);
}

TEST_F(PredictorTest, ALaterBlockMayBeShorter)
{
    Predictor predictor(model, choosePredictionColumns({"a", "b"}, {true, 95.0}), {4.0, 9.0}, 95.0);
    Columns values;
    predictor.predict(targets, values);
    predictor.predict({{0.5}}, values);

    for (const std::vector<double>& column : values)
        EXPECT_EQ(column.size(), 1u);
}

TEST_F(PredictorTest, TargetsThatAreLeftOutGetNanAndTheOthersKeepTheirBits)
{
    const Columns expected = predict({true, 0.0});
    Predictor predictor(model, choosePredictionColumns({"a", "b"}, {true, 0.0}), {4.0, 9.0}, 0.0);
    std::size_t numSeenByMask = 0;
    predictor.addMask([&](const Columns& at, const AnsweredTargets&, std::vector<bool>&)
                      { numSeenByMask += at[0].size(); });
    predictor.setChoice([](const Columns& at, std::vector<bool>& isLeftOut) { isLeftOut[1] = at[0][1] == 2.0; });
    Columns values;
    predictor.predict(targets, values);

    for (std::size_t c = 0; c < values.size(); ++c)
    {
        EXPECT_EQ(values[c][0], expected[c][0]);
        EXPECT_TRUE(std::isnan(values[c][1]));
        EXPECT_EQ(values[c][2], expected[c][2]);
    }
    EXPECT_EQ(numSeenByMask, 2u);
    EXPECT_EQ(predictor.getNumLeftOut(), 1u);
    EXPECT_EQ(predictor.getNumWithoutEstimate(), 0u);
}

TEST_F(PredictorTest, AllTargetsMayBeLeftOut)
{
    Predictor predictor(model, choosePredictionColumns({"a", "b"}, {}), {}, 0.0);
    predictor.setChoice([](const Columns&, std::vector<bool>& isLeftOut) { isLeftOut.assign(isLeftOut.size(), true); });
    Columns values;
    predictor.predict(targets, values);

    ASSERT_EQ(values.size(), 2u);
    for (const std::vector<double>& column : values)
    {
        EXPECT_EQ(column.size(), 3u);
        EXPECT_TRUE(std::isnan(column[0]));
    }
    EXPECT_EQ(predictor.getNumLeftOut(), 3u);
}

} // namespace
