#include "tests/accuracy/HighPrecisionSystem.h"

#include <limits>

namespace fenn::test
{

namespace
{

/// Against the norm of the matrix: well above the rounding of 256 bits, and below the pivots of every system that is
/// singular to double precision only.
constexpr double zeroPivot = 0x1p-200;

} // namespace

HighVector toHighPrecision(const std::vector<double>& values)
{
    return {values.begin(), values.end()};
}

HighRows toHighPrecision(const NaiveLinearSystem::Rows& rows)
{
    HighRows high;
    for (const std::vector<double>& row : rows)
        high.push_back(toHighPrecision(row));
    return high;
}

HighPrecision oneNorm(const HighVector& values)
{
    HighPrecision sum;
    for (const HighPrecision& value : values)
        sum.addMagnitude(value);
    return sum;
}

HighPrecision oneNorm(const HighRows& rows)
{
    HighPrecision largest;
    for (std::size_t k = 0; k < rows.size(); ++k)
    {
        HighPrecision sum;
        for (const HighVector& row : rows)
            sum.addMagnitude(row[k]);
        if (largest.isSmallerInMagnitudeThan(sum))
            largest = sum;
    }
    return largest;
}

HighPrecisionSystem::HighPrecisionSystem(const NaiveLinearSystem::Rows& rows)
    : factors(toHighPrecision(rows)), pivots(rows.size()), norm(oneNorm(factors))
{
    factorise();
}

void HighPrecisionSystem::factorise()
{
    const std::size_t n = factors.size();
    HighPrecision threshold = norm;
    threshold *= zeroPivot;
    for (std::size_t j = 0; j < n; ++j)
    {
        std::size_t p = j;
        for (std::size_t i = j + 1; i < n; ++i)
        {
            if (factors[p][j].isSmallerInMagnitudeThan(factors[i][j]))
                p = i;
        }
        pivots[j] = p;
        factors[p].swap(factors[j]);
        if (factors[j][j].isSmallerInMagnitudeThan(threshold))
        {
            singular = true;
            return;
        }
        for (std::size_t i = j + 1; i < n; ++i)
        {
            if (factors[i][j].isZero())
                continue;
            factors[i][j] /= factors[j][j];
            HighPrecision factor = factors[i][j];
            factor.negate();
            for (std::size_t k = j + 1; k < n; ++k)
                factors[i][k].addProduct(factor, factors[j][k]);
        }
    }
}

HighVector HighPrecisionSystem::solve(HighVector b) const
{
    const std::size_t n = factors.size();
    for (std::size_t i = 0; i < n; ++i)
        b[i].swap(b[pivots[i]]);
    std::size_t first = 0;
    for (std::size_t i = 0; i < n; ++i)
    {
        HighPrecision sum;
        for (std::size_t k = first; k < i; ++k)
            sum.addProduct(factors[i][k], b[k]);
        b[i] -= sum;
        if (first == i && b[i].isZero())
            ++first; // most of a unit vector, for the inverse
    }
    for (std::size_t i = n; i-- > 0;)
    {
        HighPrecision sum;
        for (std::size_t k = i + 1; k < n; ++k)
            sum.addProduct(factors[i][k], b[k]);
        b[i] -= sum;
        b[i] /= factors[i][i];
    }
    return b;
}

double HighPrecisionSystem::calcCondition() const
{
    if (singular)
        return std::numeric_limits<double>::infinity();
    const std::size_t n = factors.size();
    HighPrecision largest;
    for (std::size_t j = 0; j < n; ++j)
    {
        HighVector unit(n);
        unit[j] = 1.0;
        const HighPrecision sum = oneNorm(solve(unit));
        if (largest.isSmallerInMagnitudeThan(sum))
            largest = sum;
    }
    largest *= norm;
    return largest.toDouble();
}

} // namespace fenn::test
