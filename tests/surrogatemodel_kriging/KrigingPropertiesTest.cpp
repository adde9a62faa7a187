// What holds for any sample, whatever the order of the operations.

#include <algorithm>
#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RequestArrays.h"

using namespace fenn::test;

namespace
{

constexpr std::size_t numTargets = 25;

/// Samples in a unit box with a spherical model, asked at random targets by a controller of 0 (all) or some neighbours.
class Request
{
public:
    Request(std::size_t numInputVars, std::uint64_t seed)
        : samples(SampleShape{numInputVars, 2, {50, 40}, 0.1, 0}, seed),
          low(numInputVars, -1.0),
          high(numInputVars, 1.0),
          targets(randomValues(numInputVars, numTargets, -1.0, 1.0, seed + 10))
    {
    }

    void setOutput(std::size_t outputVar, double (*function)(const std::vector<double>&))
    {
        for (std::size_t b = 0; b < samples.inputs.size(); ++b)
        {
            for (std::size_t i = 0; i < samples.isUnblanked[b].size(); ++i)
            {
                std::vector<double> point;
                for (const std::vector<double>& variable : samples.inputs[b])
                    point.push_back(variable[i]);
                samples.outputs[b][outputVar][i] = function(point);
            }
        }
    }

    /// Estimates of the given outputs, one after the other.
    std::vector<double> estimates(int driftOrder, int numNeighbours, const std::set<int>& outputVars,
                                  double nugget = 0.0)
    {
        SphericalSemivariogram semivariogram(low, samples.normalizers, low, high, 0.6, nugget);
        std::unique_ptr<KrigingControllerAbstract> controller;
        if (numNeighbours == 0)
            controller = std::make_unique<AllPtsKrigingController>(&samples.block(), &semivariogram, driftOrder, 2);
        else
            controller =
                std::make_unique<NPtsKrigingController>(&samples.block(), &semivariogram, driftOrder, numNeighbours);
        ResultArrays values(outputVars.size(), numTargets);
        ResultArrays none(0, numTargets);
        controller->interpolate(targets.arrays(), outputVars, static_cast<int>(numTargets), values.arrays(),
                                none.arrays());
        std::vector<double> all;
        for (std::size_t k = 0; k < outputVars.size(); ++k)
        {
            const std::vector<double> estimatesOfOne = values[k];
            all.insert(all.end(), estimatesOfOne.begin(), estimatesOfOne.end());
        }
        return all;
    }

    SampleBlocks samples;
    std::vector<double> low, high;
    ValueArrays targets;
};

double one(const std::vector<double>&)
{
    return 1.0;
}

/// Polynomials with every monomial of their degree, in any number of variables.
double linear(const std::vector<double>& x)
{
    double sum = 0.0;
    for (std::size_t v = 0; v < x.size(); ++v)
        sum += (0.5 + static_cast<double>(v)) * x[v];
    return 2.0 + sum;
}

double quadratic(const std::vector<double>& x)
{
    return linear(x) * linear(x);
}

double cubic(const std::vector<double>& x)
{
    return linear(x) * quadratic(x);
}

double quartic(const std::vector<double>& x)
{
    return quadratic(x) * quadratic(x);
}

constexpr double (*polynomials[])(const std::vector<double>&) = {one, linear, quadratic, cubic, quartic};

} // namespace

TEST(KrigingPropertiesTest, WeightsSumToOne)
{
    for (std::size_t d = 1; d <= 3; ++d)
    {
        Request request(d, 1300 + d);
        request.setOutput(0, one);
        for (const int numNeighbours : {0, 45})
        {
            for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
            {
                for (const double estimate : request.estimates(driftOrder, numNeighbours, {0}, 0.1))
                    EXPECT_NEAR(estimate, 1.0, 1e-9) << d << " variables, order " << driftOrder; // n epsilon condition
            }
        }
    }
}

TEST(KrigingPropertiesTest, ADriftReproducesPolynomialsOfItsDegreeAndBelow)
{
    for (std::size_t d = 1; d <= 3; ++d)
    {
        Request request(d, 1310 + d);
        for (int degree = 0; degree <= 4; ++degree)
        {
            request.setOutput(0, polynomials[degree]);
            for (int driftOrder = degree; driftOrder <= 4; ++driftOrder)
            {
                for (const int numNeighbours : {0, 45})
                {
                    const std::vector<double> estimates = request.estimates(driftOrder, numNeighbours, {0}, 0.1);
                    for (std::size_t t = 0; t < numTargets; ++t)
                    {
                        const double truth = polynomials[degree](targetAt(request.targets, t));
                        // Weights carry n epsilon times the condition of up to 46 + 34 rows, outputs reach 7^4.
                        EXPECT_NEAR(estimates[t], truth, 1e-8 * std::pow(7.0, degree))
                            << d << " variables, degree " << degree << ", order " << driftOrder;
                    }
                }
            }
        }
    }
}

TEST(KrigingPropertiesTest, ADriftDoesNotReproduceAPolynomialAboveItsDegree)
{
    Request request(2, 1320);
    request.setOutput(0, cubic);
    const std::vector<double> estimates = request.estimates(2, 0, {0}, 0.1);

    double worst = 0.0;
    for (std::size_t t = 0; t < numTargets; ++t)
        worst = std::max(worst, std::fabs(estimates[t] - cubic(targetAt(request.targets, t))));
    EXPECT_GT(worst, 1e-3);
}

TEST(KrigingPropertiesTest, ExchangingTwoOutputsExchangesTheirEstimatesToTheBit)
{
    for (const int numNeighbours : {0, 12})
    {
        Request request(2, 1330);
        const std::vector<double> before = request.estimates(1, numNeighbours, {0, 1});
        for (auto& block : request.samples.outputs)
            std::swap_ranges(block[0].begin(), block[0].end(), block[1].begin());

        const std::vector<double> after = request.estimates(1, numNeighbours, {0, 1});

        EXPECT_TRUE(sameBits({after.begin() + numTargets, after.end()}, {before.begin(), before.begin() + numTargets}));
        EXPECT_TRUE(sameBits({after.begin(), after.begin() + numTargets}, {before.begin() + numTargets, before.end()}));
    }
}

TEST(KrigingPropertiesTest, AnOutputAskedForAloneHasTheBitsItHasAmongOthers)
{
    for (const int numNeighbours : {0, 12})
    {
        Request request(2, 1340);
        const std::vector<double> both = request.estimates(1, numNeighbours, {0, 1});

        EXPECT_TRUE(sameBits(request.estimates(1, numNeighbours, {1}), {both.begin() + numTargets, both.end()}));
    }
}

TEST(KrigingPropertiesTest, ATargetHasTheSameBitsWhereverItStandsInARequest)
{
    for (const int numNeighbours : {0, 12})
    {
        Request request(2, 1350);
        const std::vector<double> before = request.estimates(1, numNeighbours, {0});
        for (std::size_t v = 0; v < 2; ++v)
            std::reverse(request.targets[v].begin(), request.targets[v].end());

        const std::vector<double> after = request.estimates(1, numNeighbours, {0});

        EXPECT_TRUE(sameBits({after.rbegin(), after.rend()}, before));
    }
}

TEST(KrigingPropertiesTest, DoublingEveryOutputDoublesTheEstimatesToTheBit)
{
    for (const int numNeighbours : {0, 12})
    {
        Request request(2, 1360);
        std::vector<double> doubled = request.estimates(1, numNeighbours, {0});
        for (double& estimate : doubled)
            estimate *= 2.0;
        for (auto& block : request.samples.outputs)
        {
            for (double& output : block[0])
                output *= 2.0;
        }

        EXPECT_TRUE(sameBits(request.estimates(1, numNeighbours, {0}), doubled));
    }
}

TEST(KrigingPropertiesTest, BlankedSamplesHaveNoInfluence)
{
    for (const int numNeighbours : {0, 12})
    {
        Request request(2, 1370);
        const std::vector<double> before = request.estimates(1, numNeighbours, {0});
        for (std::size_t b = 0; b < 2; ++b)
        {
            for (std::size_t i = 0; i < request.samples.isUnblanked[b].size(); ++i)
            {
                if (!request.samples.isUnblanked[b][i])
                    request.samples.outputs[b][0][i] = request.samples.inputs[b][0][i] = 1e99;
            }
        }

        EXPECT_TRUE(sameBits(request.estimates(1, numNeighbours, {0}), before));
    }
}
