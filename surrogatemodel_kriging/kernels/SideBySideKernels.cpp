#include "surrogatemodel_kriging/kernels/SideBySideKernels.h"

#include <algorithm>
#include <limits>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/kernels/HighwayTargets.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/SideBySideKernels.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, numSideBySide>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kSystems = numSideBySide;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());
constexpr std::size_t kVecs = kSystems / kLanes; // that hold one entry of all systems

/// Pivots whose products are subtracted from the columns behind them together.
constexpr std::size_t kPanel = 4;

/// Columns that share the load of a multiplier; more do not fit the registers.
constexpr std::size_t kColumnsAtOnce = kLanes == kSystems ? 2 : 1;

template <class Coordinate>
HWY_INLINE Vec lagSquared(const SphericalModel& model, const Coordinate& difference)
{
    const Tag d;
    Vec sum = hn::Zero(d);
    for (std::size_t v = 0; v < model.numInputVars; ++v)
    {
        const Vec scaled = hn::Mul(difference(v), hn::Set(d, model.scales[v]));
        sum = hn::Add(sum, hn::Mul(scaled, scaled));
    }
    return sum;
}

HWY_INLINE Vec valueAtLag(const SphericalModel& model, Vec h2)
{
    const Tag d;
    const Vec nugget = hn::Set(d, model.nugget);
    const Vec within = hn::Add(hn::Mul(hn::Mul(hn::Sqrt(h2), hn::Set(d, model.shapeCoefficient)),
                                       hn::Sub(hn::Set(d, model.threeRangeSquared), h2)),
                               nugget);
    const auto beyond = hn::Ge(h2, hn::Set(d, model.rangeSquared));
    const auto coincident = hn::Le(h2, hn::Zero(d));
    return hn::IfThenElse(coincident, nugget, hn::IfThenElse(beyond, hn::Set(d, 1.0), within));
}

void evaluateSphericalSideBySide(const SphericalModel& model, const double* points, const double* targets,
                                 std::size_t numPts, double* columns, std::size_t numRows)
{
    const Tag d;
    for (std::size_t lane = 0; lane < kSystems; lane += kLanes)
    {
        const auto at = [=](std::size_t v, std::size_t i)
        {
            return points + (v * numPts + i) * kSystems + lane;
        };
        const auto entry = [=](std::size_t i, std::size_t c)
        {
            return columns + (c * numRows + i) * kSystems + lane;
        };
        for (std::size_t j = 0; j < numPts; ++j)
        {
            for (std::size_t i = 0; i < j; ++i)
            {
                const Vec value =
                    valueAtLag(model, lagSquared(model, [&](std::size_t v) HWY_ATTR
                                                 { return hn::Sub(hn::Load(d, at(v, j)), hn::Load(d, at(v, i))); }));
                hn::Store(value, d, entry(i, j));
                hn::Store(value, d, entry(j, i));
            }
            hn::Store(hn::Zero(d), d, entry(j, j));
            const Vec value = valueAtLag(
                model,
                lagSquared(model, [&](std::size_t v) HWY_ATTR
                           { return hn::Sub(hn::Load(d, at(v, j)), hn::Load(d, targets + v * kSystems + lane)); }));
            hn::Store(value, d, entry(j, numRows));
        }
    }
}

/// Entries of all systems: one vector, or several narrow ones.
struct Entries
{
    // Written out: the compiler's own would not be made for the instruction set of the vectors.
    HWY_INLINE Entries() {} // NOLINT(modernize-use-equals-default)

    Vec vecs[kVecs];
};

HWY_INLINE Entries load(const double* from)
{
    Entries entries;
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
        entries.vecs[v] = hn::Load(Tag(), from + v * kLanes);
    return entries;
}

HWY_INLINE void store(const Entries& entries, double* to)
{
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
        hn::Store(entries.vecs[v], Tag(), to + v * kLanes);
}

HWY_INLINE void subtractProduct(Entries& from, const Entries& a, const Entries& b)
{
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
        from.vecs[v] = hn::Sub(from.vecs[v], hn::Mul(a.vecs[v], b.vecs[v]));
}

/// Bit t: whether the condition holds in lane t.
template <class Condition>
HWY_INLINE unsigned lanesWhere(const double* values, const Condition& condition)
{
    unsigned lanes = 0;
    for (std::size_t t = 0; t < kSystems; ++t)
        lanes |= condition(values[t]) ? 1U << t : 0U;
    return lanes;
}

/// The systems' factorisation with the right-hand side as one more column: what that goes through is the forward
/// substitution. Rows keep their places. Once a row has been a pivot, it is closed: its entries to the right are copied
/// to the upper factor, and what is left of it stays as it is, for its multipliers are zero.
class SideBySideLu
{
public:
    SideBySideLu(double* columns_, std::size_t numRows, double* workspace)
        : columns(columns_),
          n(numRows),
          scales(workspace),
          positions(scales + n * kSystems),
          merits(positions + n * kSystems),
          upper(merits + n * kSystems),
          rowsInOrder(reinterpret_cast<std::size_t*>(upper + n * (n + 1) * kSystems))
    {
    }

    unsigned solve(double* solutions)
    {
        unsigned odd = scaleRows();
        for (std::size_t first = 0; first < n; first += kPanel)
        {
            const std::size_t width = std::min(kPanel, n - first);
            for (std::size_t j = first; j < first + width; ++j)
                eliminate(j, first + width);
            copyPivotRows(first, width);
            if (width == kPanel)
                updateColumns<kPanel>(first);
            else if (width == 1)
                updateColumns<1>(first);
            else if (width == 2)
                updateColumns<2>(first);
            else
                updateColumns<3>(first);
        }
        odd |= lanesWhere(upperAt(0, n), [](double value) { return value == 0.0; });
        return odd | substituteBack(solutions);
    }

private:
    double* entry(std::size_t i, std::size_t c) const
    {
        return columns + (c * n + i) * kSystems;
    }

    /// Of the upper factor and, in column n, of the right-hand side substituted forward; rows in the order of pivots.
    double* upperAt(std::size_t j, std::size_t c) const
    {
        return upper + (c * n + j) * kSystems;
    }

    /// The row of the columns at a position of system t's row table.
    std::size_t& rowAt(std::size_t position, std::size_t t) const
    {
        return rowsInOrder[position * kSystems + t];
    }

    /// By columns, which in a symmetric system are the rows.
    unsigned scaleRows() const
    {
        const Tag d;
        unsigned odd = 0;
        for (std::size_t i = 0; i < n; ++i)
        {
            const double position = static_cast<double>(i);
            for (std::size_t v = 0; v < kVecs; ++v)
            {
                Vec big[2] = {hn::Zero(d), hn::Zero(d)};
                const double* lines = entry(0, i) + v * kLanes;
                for (std::size_t k = 0; k < n; ++k)
                {
                    const Vec magnitude = hn::Abs(hn::Load(d, lines + k * kSystems));
                    big[k % 2] = hn::IfThenElse(hn::Gt(magnitude, big[k % 2]), magnitude, big[k % 2]);
                }
                const Vec greatest = hn::Max(big[0], big[1]);
                hn::Store(greatest, d, merits + v * kLanes);
                hn::Store(hn::Div(hn::Set(d, 1.0), greatest), d, scales + i * kSystems + v * kLanes);
                hn::Store(hn::Set(d, position), d, positions + i * kSystems + v * kLanes);
            }
            odd |= lanesWhere(merits, [](double value) { return value == 0.0; });
            for (std::size_t t = 0; t < kSystems; ++t)
                rowAt(i, t) = i;
        }
        return odd;
    }

    /// Chooses pivot j, makes column j the multipliers and subtracts its products from the columns before endOfPanel.
    void eliminate(std::size_t j, std::size_t endOfPanel) const
    {
        HWY_ALIGN double pivotRows[kSystems];
        choosePivots(j, pivotRows);
        double* pivots = upperAt(j, j);
        for (std::size_t t = 0; t < kSystems; ++t)
        {
            const double value = entry(rowAt(j, t), j)[t];
            pivots[t] = value > -effectivelyZero && value < effectivelyZero ? effectivelyZero : value;
        }
        calcMultipliers(j, pivotRows);
        for (std::size_t c = j + 1; c < endOfPanel; ++c)
        {
            double* factors = upperAt(j, c);
            for (std::size_t t = 0; t < kSystems; ++t)
                factors[t] = entry(rowAt(j, t), c)[t];
            const Entries above = load(factors);
            for (std::size_t i = 0; i < n; ++i)
            {
                Entries values = load(entry(i, c));
                subtractProduct(values, load(entry(i, j)), above);
                store(values, entry(i, c));
            }
        }
    }

    // DELIBERATE: the last of equally good rows wins, in the order of the row table, also among rows of merit 0, and
    // NaN never wins. The pivot order, and with it the last bits of every result, relies on it.
    // Test: SideBySideKernelsTest.SystemsWithTiesHaveTheBitsOfThePlainLoops
    void choosePivots(std::size_t j, double* pivotRows) const
    {
        const Tag d;
        HWY_ALIGN double best[kSystems];
        HWY_ALIGN double bestPositions[kSystems];
        for (std::size_t v = 0; v < kVecs; ++v)
        {
            // Closed rows have a scale of NaN. NaN merits become -1, below all others.
            const Vec never = hn::Set(d, -1.0);
            const std::size_t offset = v * kLanes;
            Vec greatest[2] = {never, never};
            for (std::size_t i = 0; i < n; ++i)
            {
                const Vec product =
                    hn::Mul(hn::Load(d, scales + i * kSystems + offset), hn::Abs(hn::Load(d, entry(i, j) + offset)));
                const Vec merit = hn::IfThenElse(hn::Ge(product, hn::Zero(d)), product, never);
                greatest[i % 2] = hn::Max(greatest[i % 2], merit);
                hn::Store(merit, d, merits + i * kSystems + offset);
            }
            greatest[0] = hn::Max(greatest[0], greatest[1]);
            Vec last[2] = {never, never};
            for (std::size_t i = 0; i < n; ++i)
            {
                const auto isBest = hn::Eq(hn::Load(d, merits + i * kSystems + offset), greatest[0]);
                const Vec position = hn::Load(d, positions + i * kSystems + offset);
                last[i % 2] = hn::Max(last[i % 2], hn::IfThenElse(isBest, position, never));
            }
            hn::Store(greatest[0], d, best + offset);
            hn::Store(hn::Max(last[0], last[1]), d, bestPositions + offset);
        }
        for (std::size_t t = 0; t < kSystems; ++t)
        {
            const std::size_t position = best[t] < 0.0 ? j : static_cast<std::size_t>(bestPositions[t]);
            std::swap(rowAt(position, t), rowAt(j, t));
            positions[rowAt(position, t) * kSystems + t] = static_cast<double>(position);
            pivotRows[t] = static_cast<double>(rowAt(j, t));
        }
    }

    void calcMultipliers(std::size_t j, const double* pivotRows) const
    {
        const Tag d;
        for (std::size_t v = 0; v < kVecs; ++v)
        {
            const std::size_t offset = v * kLanes;
            const Vec reciprocal = hn::Div(hn::Set(d, 1.0), hn::Load(d, upperAt(j, j) + offset));
            const Vec pivotRow = hn::Load(d, pivotRows + offset);
            const Vec closed = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
            for (std::size_t i = 0; i < n; ++i)
            {
                double* value = entry(i, j) + offset;
                double* scale = scales + i * kSystems + offset;
                const auto isPivot = hn::Eq(pivotRow, hn::Set(d, static_cast<double>(i)));
                const Vec newScale = hn::IfThenElse(isPivot, closed, hn::Load(d, scale));
                hn::Store(newScale, d, scale);
                hn::Store(hn::IfThenElseZero(hn::Eq(newScale, newScale), hn::Mul(hn::Load(d, value), reciprocal)), d,
                          value);
            }
        }
    }

    /// The entries of a panel's pivot rows in the columns behind it go to the upper factor, still without the panel's
    /// own products.
    void copyPivotRows(std::size_t first, std::size_t width) const
    {
        for (std::size_t c = first + width; c <= n; ++c)
        {
            for (std::size_t j = first; j < first + width; ++j)
            {
                double* to = upperAt(j, c);
                for (std::size_t t = 0; t < kSystems; ++t)
                    to[t] = entry(rowAt(j, t), c)[t];
            }
        }
    }

    template <std::size_t kWidth>
    void updateColumns(std::size_t first) const
    {
        HWY_ALIGN double multipliers[kWidth][kWidth][kSystems]; // of the panel's own pivot rows
        for (std::size_t j = 1; j < kWidth; ++j)
        {
            for (std::size_t k = 0; k < j; ++k)
            {
                for (std::size_t t = 0; t < kSystems; ++t)
                    multipliers[j][k][t] = entry(rowAt(first + j, t), first + k)[t];
            }
        }
        std::size_t c = first + kWidth;
        for (; c + kColumnsAtOnce <= n + 1; c += kColumnsAtOnce)
            updateSomeColumns<kWidth, kColumnsAtOnce>(first, c, multipliers);
        for (; c <= n; ++c)
            updateSomeColumns<kWidth, 1>(first, c, multipliers);
    }

    template <std::size_t kWidth, std::size_t kColumns>
    HWY_INLINE void updateSomeColumns(std::size_t first, std::size_t c,
                                      const double (&multipliers)[kWidth][kWidth][kSystems]) const
    {
        Entries above[kColumns][kWidth];
        FENN_UNROLL
        for (std::size_t q = 0; q < kColumns; ++q)
        {
            FENN_UNROLL
            for (std::size_t j = 0; j < kWidth; ++j)
            {
                above[q][j] = load(upperAt(first + j, c + q));
                FENN_UNROLL
                for (std::size_t k = 0; k < j; ++k)
                    subtractProduct(above[q][j], load(multipliers[j][k]), above[q][k]);
                store(above[q][j], upperAt(first + j, c + q));
            }
        }
        for (std::size_t i = 0; i < n; ++i)
        {
            Entries values[kColumns];
            FENN_UNROLL
            for (std::size_t q = 0; q < kColumns; ++q)
                values[q] = load(entry(i, c + q));
            FENN_UNROLL
            for (std::size_t j = 0; j < kWidth; ++j)
            {
                const Entries factor = load(entry(i, first + j));
                FENN_UNROLL
                for (std::size_t q = 0; q < kColumns; ++q)
                    subtractProduct(values[q], factor, above[q][j]);
            }
            FENN_UNROLL
            for (std::size_t q = 0; q < kColumns; ++q)
                store(values[q], entry(i, c + q));
        }
    }

    unsigned substituteBack(double* solutions) const
    {
        unsigned odd = 0;
        for (std::size_t i = n; i-- > 0;)
        {
            Entries sum = load(upperAt(i, n));
            for (std::size_t k = i + 1; k < n; ++k)
                subtractProduct(sum, load(upperAt(i, k)), load(solutions + k * kSystems));
            const Entries diagonal = load(upperAt(i, i));
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
                sum.vecs[v] = hn::Div(sum.vecs[v], diagonal.vecs[v]);
            store(sum, solutions + i * kSystems);
            odd |= lanesWhere(solutions + i * kSystems,
                              [](double x) { return x > effectivelyInfinite || x < -effectivelyInfinite; });
        }
        return odd;
    }

    double* columns;
    std::size_t n;
    double* scales;    // NaN for closed rows
    double* positions; // of open rows, in the row table
    double* merits;
    double* upper;
    std::size_t* rowsInOrder;
};

unsigned solveSideBySide(double* columns, std::size_t numRows, double* solutions, double* workspace)
{
    return SideBySideLu(columns, numRows, workspace).solve(solutions);
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(evaluateSphericalSideBySide);
HWY_EXPORT(solveSideBySide);

std::size_t sideBySideColumnsSize(std::size_t numRows)
{
    return numRows * (numRows + 1) * numSideBySide;
}

std::size_t sideBySideWorkspaceSize(std::size_t numRows)
{
    // Scales, positions, merits and the row tables, then the upper factor.
    static_assert(sizeof(std::size_t) <= sizeof(double));
    return 4 * numRows * numSideBySide + sideBySideColumnsSize(numRows);
}

void evaluateSphericalSideBySide(const SphericalModel& model, const double* points, const double* targets,
                                 std::size_t numPts, double* columns, std::size_t numRows)
{
    HWY_DYNAMIC_DISPATCH(evaluateSphericalSideBySide)(model, points, targets, numPts, columns, numRows);
}

unsigned solveSideBySide(double* columns, std::size_t numRows, double* solutions, double* workspace)
{
    return HWY_DYNAMIC_DISPATCH(solveSideBySide)(columns, numRows, solutions, workspace);
}

} // namespace fenn::kernels
#endif
