#ifndef FENN_TESTS_SUPPORT_NAIVEKRIGING_H
#define FENN_TESTS_SUPPORT_NAIVEKRIGING_H

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/NaiveLinearSystem.h"
#include "tests/support/NaiveSpherical.h"
#include "tests/support/SampleBlocks.h"

namespace fenn::test
{

/// A failure's text, or an estimate per output variable and the variance.
struct NaiveResult
{
    std::string failure;
    std::vector<double> estimates;
    double variance = 0.0;
};

/// The written formulas of the Kriging system over one list of points, as plain loops over copies of their values.
class NaiveKriging
{
public:
    NaiveKriging(const SampleBlocks& samples, const std::vector<SourcePointRef>& points,
                 NaiveSemivariogram semivariogram_, int driftOrder_)
        : normalizers(samples.normalizers), semivariogram(std::move(semivariogram_)), driftOrder(driftOrder_)
    {
        for (const auto& [b, i] : points)
        {
            inputs.push_back(valuesAt(samples.inputs[static_cast<std::size_t>(b)], i));
            outputs.push_back(valuesAt(samples.outputs[static_cast<std::size_t>(b)], i));
        }
    }

    std::vector<double> driftTerms(const std::vector<double>& target) const
    {
        std::vector<double> u;
        for (std::size_t v = 0; v < target.size(); ++v)
            u.push_back((target[v] + normalizers[v].getOffset()) * normalizers[v].getScale());
        std::vector<double> terms;
        for (std::size_t v = 0; driftOrder >= 1 && v < u.size(); ++v)
        {
            terms.push_back(u[v]);
            for (std::size_t w = 0; driftOrder >= 2 && w <= v; ++w)
            {
                terms.push_back(u[v] * u[w]);
                for (std::size_t y = 0; driftOrder >= 3 && y <= w; ++y)
                {
                    terms.push_back(u[v] * u[w] * u[y]);
                    for (std::size_t z = 0; driftOrder >= 4 && z <= y; ++z)
                        terms.push_back(u[v] * u[w] * u[y] * u[z]);
                }
            }
        }
        return terms;
    }

    std::vector<double> rightHandSide(const std::vector<double>& target) const
    {
        std::vector<double> rhs;
        for (const std::vector<double>& source : inputs)
            rhs.push_back(semivariogram(difference(source, target)));
        const std::vector<double> terms = driftTerms(target);
        rhs.insert(rhs.end(), terms.begin(), terms.end());
        rhs.push_back(1.0);
        return rhs;
    }

    NaiveLinearSystem::Rows rows() const
    {
        const std::size_t n = inputs.size();
        const std::size_t dimension = n + driftTerms(inputs[0]).size() + 1;
        NaiveLinearSystem::Rows system(dimension, std::vector<double>(dimension, 0.0));
        for (std::size_t i = 0; i < n; ++i)
        {
            for (std::size_t j = i + 1; j < n; ++j)
                system[i][j] = system[j][i] = semivariogram(difference(inputs[j], inputs[i]));
            const std::vector<double> terms = driftTerms(inputs[i]);
            for (std::size_t t = 0; t < terms.size(); ++t)
                system[i][n + t] = system[n + t][i] = terms[t];
            system[i][dimension - 1] = system[dimension - 1][i] = 1.0;
        }
        return system;
    }

    /// references: one per output variable; an estimate is centred by those beyond the square root of 2^23.
    NaiveResult evaluate(const NaiveLinearSystem& factors, const std::vector<double>& target,
                         const std::vector<double>& references) const
    {
        NaiveResult result;
        const std::vector<double> rhs = rightHandSide(target);
        std::vector<double> weights = rhs;
        result.failure = factors.solve(weights);
        if (!result.failure.empty())
            return result;
        for (std::size_t o = 0; o < references.size(); ++o)
            result.estimates.push_back(estimate(o, references[o], weights));
        result.variance = weights[0] * rhs[0];
        for (std::size_t j = 1; j < rhs.size(); ++j)
            result.variance += weights[j] * rhs[j];
        return result;
    }

    /// The whole of it, from assembly on.
    NaiveResult evaluate(const std::vector<double>& target, const std::vector<double>& references) const
    {
        NaiveLinearSystem system(rows());
        const std::string failure = system.factorise();
        return failure.empty() ? evaluate(system, target, references) : NaiveResult{failure, {}, 0.0};
    }

    double estimate(std::size_t outputVar, double reference, const std::vector<double>& weights) const
    {
        const double threshold = std::sqrt(8388608.0);
        const bool isCentred = reference < -threshold || reference > threshold;
        double sum = isCentred ? 0.0 : weights[0] * outputs[0][outputVar];
        for (std::size_t j = isCentred ? 0 : 1; j < outputs.size(); ++j)
            sum += isCentred ? (outputs[j][outputVar] - reference) * weights[j] : weights[j] * outputs[j][outputVar];
        return isCentred ? sum + reference : sum;
    }

private:
    static std::vector<double> valuesAt(const std::vector<std::vector<double>>& variables, int point)
    {
        std::vector<double> values;
        for (const std::vector<double>& variable : variables)
            values.push_back(variable[static_cast<std::size_t>(point)]);
        return values;
    }

    static std::vector<double> difference(std::vector<double> a, const std::vector<double>& b)
    {
        for (std::size_t v = 0; v < a.size(); ++v)
            a[v] -= b[v];
        return a;
    }

    std::vector<std::vector<double>> inputs, outputs; // per point
    std::vector<Normalizer> normalizers;
    NaiveSemivariogram semivariogram;
    int driftOrder;
};

} // namespace fenn::test

#endif
