#ifndef FENN_HOST_TARGETS_PREDICTOR_H
#define FENN_HOST_TARGETS_PREDICTOR_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "analysis/OutputTransform.h"
#include "host/targets/PredictionColumns.h"

namespace krige
{

class SampleModel;

/// What the model answers for one block of targets, before columns are made of it. One value per target everywhere.
struct AnsweredTargets
{
    std::vector<std::vector<double>> estimates; // one column per output, as the model has it
    // Empty unless sills are given:
    std::vector<double> variances;                   // for a sill of 1, accepted: 0 or above, or NaN
    std::vector<double> driftProducts;               // the drift's share of them; of logarithms only
    std::vector<std::vector<double>> standardErrors; // one column per output, of a new observation
};

/// Marks targets whose predictions are to be nan: sets isMasked[t], which is false for all of them at first or true
/// where another mask has set it. targets: one column per input.
using TargetMask = std::function<void(const std::vector<std::vector<double>>& targets, const AnsweredTargets& answers,
                                      std::vector<bool>& isMasked)>;

/// Marks targets that nothing is to be estimated at: sets isLeftOut[t], which is false for all of them at first.
using TargetChoice = std::function<void(const std::vector<std::vector<double>>& targets, std::vector<bool>& isLeftOut)>;

/// Makes the columns of predictions, block by block. To add a column: a Quantity, its place in choosePredictionColumns,
/// its formula in valueOf.
class Predictor
{
public:
    /// Refers to the model, which must outlive it. sills: one per output, of which standard errors are made; none where
    /// neither a column nor a mask needs variances and the model is not one of logarithms. coverage: of intervals, in
    /// percent. units: in which estimates, medians and intervals come out.
    Predictor(const SampleModel& model_, std::vector<PredictionColumn> columns_, std::vector<double> sills_,
              double coverage, const fenn::analysis::OutputUnits& units_ = {});

    /// To be called before the first block. Every mask sees the answers as the model gave them.
    void addMask(TargetMask mask);

    /// To be called before the first block: targets that it leaves out get nan without being estimated, and no mask
    /// sees them.
    void setChoice(TargetChoice choice_);

    /// Replaces values by one column per prediction column. targets: one column per input. Throws as
    /// SampleModel::estimate.
    void predict(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values);

    /// Targets so far that lack a coordinate.
    std::uint64_t getNumWithoutEstimate() const
    {
        return numWithoutEstimate;
    }

    /// Targets so far whose variance was not accepted, though they have an estimate.
    std::uint64_t getNumWithoutVariance() const
    {
        return numWithoutVariance;
    }

    /// Targets so far that a mask took the predictions of.
    std::uint64_t getNumMasked() const
    {
        return numMasked;
    }

    /// Targets so far that the choice left out.
    std::uint64_t getNumLeftOut() const
    {
        return numLeftOut;
    }

    double getLibrarySeconds() const
    {
        return seconds;
    }

private:
    void predictAll(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values);
    void predictChosen(const std::vector<std::vector<double>>& targets, const std::vector<bool>& isLeftOut,
                       std::vector<std::vector<double>>& values);
    void deriveUncertainty();
    double valueOf(const PredictionColumn& column, std::size_t t) const;
    void applyMasks(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values);

    const SampleModel& model;
    std::vector<PredictionColumn> columns;
    std::vector<TargetMask> masks;
    TargetChoice choice;
    std::vector<double> sills; // per output; empty: no variances
    double intervalFactor;     // half an interval in standard errors
    fenn::analysis::OutputUnits units;
    AnsweredTargets answers; // kept: it grows to a block's size once
    std::uint64_t numWithoutEstimate = 0;
    std::uint64_t numWithoutVariance = 0;
    std::uint64_t numMasked = 0;
    std::uint64_t numLeftOut = 0;
    double seconds = 0.0;
};

} // namespace krige

#endif
