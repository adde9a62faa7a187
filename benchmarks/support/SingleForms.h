#ifndef FENN_BENCHMARKS_SUPPORT_SINGLEFORMS_H
#define FENN_BENCHMARKS_SUPPORT_SINGLEFORMS_H

#include <cstddef>
#include <cstring>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::benchmarks
{

/// Local estimates of output 0 without drift by the single forms, which define the bits.
class SingleForms
{
public:
    SingleForms(const SurrogateModelDataBlock& block, int numNearest, const SemivariogramInterface& semivariogram)
        : matrix(block, numNearest, &semivariogram, 0),
          scratch(static_cast<std::size_t>(block.getNumInputVars())),
          rightHandSide(static_cast<std::size_t>(matrix.getDimension()))
    {
    }

    /// Whether these are the estimate and the variance at a target from its nearest points.
    bool give(double estimate, double variance, const std::vector<double>& target,
              const std::vector<SourcePointRef>& nearest)
    {
        matrix.assemble(nearest, scratch);
        matrix.luDecompose();
        matrix.buildRightHandSide(rightHandSide.data(), 0, target, nearest, scratch);
        const std::vector<double> copy = rightHandSide;
        matrix.luSolve(rightHandSide.data());
        const double expected[] = {matrix.estimate(0, nearest, rightHandSide.data()),
                                   matrix.dotProduct(rightHandSide.data(), copy.data())};
        return std::memcmp(&expected[0], &estimate, sizeof(double)) == 0 &&
               std::memcmp(&expected[1], &variance, sizeof(double)) == 0;
    }

private:
    KrigingMatrix matrix;
    std::vector<double> scratch;
    std::vector<double> rightHandSide;
};

} // namespace fenn::benchmarks

#endif
