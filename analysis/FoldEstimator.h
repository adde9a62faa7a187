#ifndef FENN_ANALYSIS_FOLDESTIMATOR_H
#define FENN_ANALYSIS_FOLDESTIMATOR_H

#include <cstddef>
#include <memory>
#include <vector>

#include "estimation/Estimates.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{
class SystemInverse;
}

namespace fenn::analysis
{

using estimation::Estimates;
using estimation::EstimatorOptions;
using estimation::ModelSettings;
using estimation::SampleSet;
using estimation::WantedBeside;

/// K-fold cross-validation of a global model from one factorisation, whatever the number of folds and however often
/// samples are divided into them: each sample estimated from those outside its fold, with the normalisers, the range
/// and the merged points of all samples.
///
/// K is the system of all points (KrigingMatrix), z an output followed by zeros for the drift terms and the constraint.
/// Then, for the points I of a fold,
///
///     truths - estimates = ((K^-1)_II)^-1 (K^-1 z)_I        variances = diagonal of -((K^-1)_II)^-1
///     mu^T f = diagonal of -F_I (K^-1)_DI ((K^-1)_II)^-1
///
/// for the rows D of the drift terms, the constant's among them, whose values at the points are F: the inverse of K
/// divided into I and the rest J gives -(K^-1)_JI ((K^-1)_II)^-1 as the solutions of the system J with the columns of
/// I.
///
/// Source: O. Dubrule, "Cross validation of kriging in a unique neighborhood", Mathematical Geology 15 (1983); D.
/// Ginsbourger and C. Schaerer, "Fast calculation of Gaussian process multiple-fold cross-validation residuals and
/// their covariances" (2021). There the system holds covariances; with semivariograms the inverse changes its sign
/// between points, and the errors do not. With folds of a single point this is what leaveOneOut computes.
///
/// crossValidate builds a model per fold instead, with normalisers, range and merged points of the remaining samples.
class FoldEstimator
{
public:
    /// settings: of a model that uses all points for every estimate (estimation::usesAllPoints). samples must outlive
    /// this. Throws std::invalid_argument for the settings, the library's Error, and std::bad_alloc.
    FoldEstimator(const SampleSet& samples_, const ModelSettings& settings_, const EstimatorOptions& options = {});
    FoldEstimator(const FoldEstimator& other) = delete;
    FoldEstimator& operator=(const FoldEstimator& other) = delete;
    ~FoldEstimator();

    /// folds: one number below numFolds per sample (assignFolds). Merged samples are left out together, with the fold
    /// of the first of them, and all get the estimate at their average. The estimates stand in the order of the
    /// samples; what is not wanted beside them is empty, which saves its solves.
    ///
    /// Throws the library's Error as the models of the remaining points would about too few of them, "Singular matrix"
    /// and "Value overflow", and std::bad_alloc.
    Estimates estimate(const std::vector<std::size_t>& folds, std::size_t numFolds, const WantedBeside& wanted) const;

    /// Whether points can be told apart: SystemInverse.
    bool isWellConditioned() const;

    /// Per output variable the sill of restrictedSills, without another solve; the sample variance where points cannot
    /// be told apart.
    std::vector<double> calcSills() const;

private:
    std::vector<std::vector<std::size_t>> pointsOfFolds(const std::vector<std::size_t>& folds,
                                                        std::size_t numFolds) const;

    const SampleSet& samples;
    const int driftOrder;
    std::shared_ptr<const ModelParts> parts;
    std::vector<std::vector<std::size_t>> members; // of each point: its samples, ascending
    std::vector<std::vector<double>> truths;       // per output variable: the values at the points
    std::unique_ptr<estimation::SystemInverse> inverse;
    std::vector<std::vector<double>> solutions; // per output variable: K^-1 z at the points
};

} // namespace fenn::analysis

#endif
