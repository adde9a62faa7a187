#ifndef FENN_ANALYSIS_SEARCHSPACE_H
#define FENN_ANALYSIS_SEARCHSPACE_H

#include <cstddef>
#include <vector>

#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

/// The settings that tune may choose. Empty lists, equal bounds and factors of 1 keep the setting of the start. A plain
/// value.
struct SearchSpace
{
    std::vector<int> driftOrders{0, 1, 2};
    std::vector<int> numNearestPoints{0}; // 0: global
    double minRangeFraction = 0.05;
    double maxRangeFraction = 4.0;
    double minNugget = 0.0;
    double maxNugget = 0.99;    // of a nugget of 1 alone a model says nothing
    double maxAnisotropy = 8.0; // largest factor between a variable's normalised range and the first one's
    // Of an Anisotropy, which takes the place of scale factors: with more than 1, for two input variables, ratio and
    // angle are searched, and maxAnisotropy must be 1.
    double maxRatio = 1.0;
};

/// Up to 1000 samples global models and local ones of 16 and 32 nearest points; for more samples local ones only,
/// because a global trial costs the cube of their number. Drift orders that need more than a quarter of the points of a
/// system are left out. Range fractions from twice the spacing of samples on (calcSpacing): a shorter range cannot be
/// told from a nugget.
SearchSpace defaultSearchSpace(const SampleSet& samples);

/// Median over samples of the distance to the nearest other one, coincident ones aside, as a fraction of the diagonal
/// of the box, each input normalised to its range. Of more than 500 samples a choice of 500 that depends on their
/// number alone. 0 where all coincide.
double calcSpacing(const SampleSet& samples);

/// Throws std::invalid_argument for bounds that are reversed or outside what checkSettings takes.
void checkSearchSpace(const SearchSpace& space);

/// To 3 significant digits, in every locale, so that people can read settings and tell them apart.
double roundedToThreeDigits(double value);

/// The settings that a search varies smoothly, as coordinates of even scale: log2 of the range fraction, the square
/// root of the nugget (small nuggets matter most) and, unless maxAnisotropy is 1, per input variable after the first
/// log2 of its normalised range over that of the first.
class SettingsCoordinates
{
public:
    /// samples: their ranges normalise the scale factors; not kept.
    SettingsCoordinates(const SampleSet& samples, const SearchSpace& space_);

    std::size_t getNumCoordinates() const;

    std::vector<double> toCoordinates(const ModelSettings& settings) const;

    /// The base with its smooth settings replaced by the coordinates, which are brought into the bounds first. Settings
    /// are rounded to 3 significant digits, so that people can read them and tell them apart. Scale factors become
    /// positive ones, relative to the first variable's 1, where any of their coordinates differs from the base's.
    ModelSettings toSettings(const std::vector<double>& coordinates, const ModelSettings& base) const;

    /// The same for range fraction and nugget alone: the first two coordinates.
    ModelSettings withRangeAndNugget(const std::vector<double>& coordinates, const ModelSettings& base) const;

    /// The base with scale factors of 1: distances as in the raw units, for inputs that share one. False where no scale
    /// is varied.
    bool withRawScales(const ModelSettings& base, ModelSettings& settings) const;

    /// How many ratios of scales the settings choose. None by scales that suggest themselves: equal ones where the
    /// ranges of the inputs are within a factor of 10, as those of inputs of one unit mostly are, automatic and equal
    /// ones where they are not. Otherwise one per input variable after the first.
    std::size_t countChosenScales(const ModelSettings& settings) const;

    /// Whether there are coordinates beyond range fraction and nugget.
    bool variesScales() const;

private:
    SearchSpace space;
    std::vector<double> ranges; // per input variable, raw; 1 for one that does not vary
    bool areAlike = false;      // these ranges, within a factor of 10
};

} // namespace fenn::analysis

#endif
