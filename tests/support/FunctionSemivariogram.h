#ifndef FENN_TESTS_SUPPORT_FUNCTIONSEMIVARIOGRAM_H
#define FENN_TESTS_SUPPORT_FUNCTIONSEMIVARIOGRAM_H

#include <atomic>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "surrogatemodel_kriging/SemivariogramInterface.h"

namespace fenn::test
{

/// A model of a test's own that counts its evaluations; bulk ones are left to the base. The function may throw.
class FunctionSemivariogram : public SemivariogramInterface
{
public:
    explicit FunctionSemivariogram(std::function<double(const std::vector<double>&)> function_)
        : function(std::move(function_))
    {
    }

    double evaluate(const std::vector<double>& separation) const override
    {
        ++numEvaluations;
        return function(separation);
    }

    int getNumEvaluations() const
    {
        return numEvaluations;
    }

private:
    std::function<double(const std::vector<double>&)> function;
    mutable std::atomic<int> numEvaluations{0};
};

/// A nugget of 0.05 and a rise without end that is not the same in both directions: tells a separation from its
/// opposite.
inline double oneSidedModel(const std::vector<double>& separation)
{
    double sum = 0.0;
    double lagSquared = 0.0;
    for (const double difference : separation)
    {
        sum += difference;
        lagSquared += difference * difference;
    }
    return std::sqrt(lagSquared) * (sum < 0.0 ? 0.75 : 0.5) + 0.05;
}

} // namespace fenn::test

#endif
