// What a host sees of the plug-in across the libraries' edges.

#include "ModelFactory.h"

#include <exception>
#include <set>
#include <typeinfo>

#include <gtest/gtest.h>

namespace
{

class PluginBoundaryTest : public testing::Test
{
protected:
    std::vector<double> x{0.0, 1.0, 1.0, 2.0, 3.0}; // two samples coincide: far targets overflow with a linear drift
    std::vector<double> z{1.0, 2.0, 3.0, 4.0, 5.0};
    const std::vector<double*> inputs{x.data()};
    const std::vector<double*> outputs{z.data()};
    std::vector<double> near{0.0, 3.0};
    std::vector<double> far{1e100, 1e100};
    std::vector<double> estimates{-1.0, -1.0};
    std::vector<double*> results{estimates.data()};
};

const std::set<int> firstOutput{0};

} // namespace

TEST_F(PluginBoundaryTest, AModelAnswersThroughTheInterface)
{
    const auto model = makeModel(inputs, outputs, 5, 0, 0);

    model->activateDependentVariables(firstOutput);
    model->interpolateDependentValues({near.data()}, firstOutput, results, near.size());

    EXPECT_NEAR(estimates[0], 1.0, 1e-12); // without a nugget a sample is met up to rounding
    EXPECT_NEAR(estimates[1], 5.0, 1e-12);
    EXPECT_FALSE(model->qualityMetricInformationAvailable());
    EXPECT_EQ(model->surfaceCoefficientInformation(0), "");
}

TEST_F(PluginBoundaryTest, AConstructorsErrorIsCaughtByItsType)
{
    try
    {
        makeModel(inputs, outputs, 1, 0, 0);
        FAIL() << "nothing was thrown";
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        EXPECT_STREQ(error.what(), "Not enough source points for kriging.");
    }
}

TEST_F(PluginBoundaryTest, AConstructorsErrorIsCaughtAsExceptionBase)
{
    try
    {
        makeModel(inputs, outputs, 1, 0, 0);
        FAIL() << "nothing was thrown";
    }
    catch (const morvel::ExceptionBase& error)
    {
        EXPECT_STREQ(error.what(), "Not enough source points for kriging.");
        EXPECT_EQ(typeid(error), typeid(SurrogateModelInterface::Error));
    }
}

TEST_F(PluginBoundaryTest, AConstructorsErrorIsCaughtAsStandardException)
{
    try
    {
        makeModel(inputs, outputs, 1, 0, 0);
        FAIL() << "nothing was thrown";
    }
    catch (const std::exception& error)
    {
        EXPECT_STREQ(error.what(), "Not enough source points for kriging.");
    }
}

TEST_F(PluginBoundaryTest, AnErrorOfAPoolThreadIsCaughtByItsTypeOnTheCallersThread)
{
    const auto model = makeModel(inputs, outputs, 5, 1, 0);
    try
    {
        model->interpolateDependentValues({far.data()}, firstOutput, results, far.size());
        FAIL() << "nothing was thrown";
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        EXPECT_STREQ(error.what(), "Value overflow");
    }
}

TEST_F(PluginBoundaryTest, AnErrorOfALocalModelIsCaughtByItsType)
{
    const auto model = makeModel(inputs, outputs, 5, 1, 4);
    try
    {
        model->interpolateDependentValues({far.data()}, firstOutput, results, far.size());
        FAIL() << "nothing was thrown";
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        EXPECT_STREQ(error.what(), "Value overflow");
    }
}

TEST_F(PluginBoundaryTest, ACopyOfAnErrorOutlivesTheModel)
{
    auto model = makeModel(inputs, outputs, 5, 1, 0);
    std::exception_ptr kept;
    try
    {
        model->interpolateDependentValues({far.data()}, firstOutput, results, far.size());
    }
    catch (const SurrogateModelInterface::Error&)
    {
        kept = std::current_exception();
    }
    model.reset();

    ASSERT_TRUE(kept);
    EXPECT_THROW(std::rethrow_exception(kept), SurrogateModelInterface::Error);
}
