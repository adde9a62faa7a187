#include "surrogatemodel_kriging/kernels/ScalarSolveKernels.h"

namespace fenn::kernels::scalar
{

namespace
{

/// Calls operation(start of a lane, index of the lane) for every lane of a group; entries are stripWidth apart.
template <class Operation>
void forEachLane(const StripGroup& group, const Operation& operation)
{
    for (std::size_t lane = 0; lane < group.numStrips * stripWidth; ++lane)
        operation(group.strips + lane / stripWidth * group.stride + lane % stripWidth, lane);
}

} // namespace

void substituteForward(const double* const* rows, std::size_t n, const StripGroup& forward)
{
    forEachLane(forward,
                [&](double* b, std::size_t)
                {
                    for (std::size_t i = 0; i < n; ++i)
                    {
                        for (std::size_t k = 0; k < i; ++k)
                            b[stripWidth * i] -= rows[i][k] * b[stripWidth * k];
                    }
                });
}

bool substituteBack(const double* const* rows, std::size_t n, const StripGroup& back, double limit)
{
    bool isBeyond = false;
    forEachLane(back,
                [&](double* b, std::size_t)
                {
                    for (std::size_t i = n; i-- > 0;)
                    {
                        for (std::size_t k = i + 1; k < n; ++k)
                            b[stripWidth * i] -= rows[i][k] * b[stripWidth * k];
                        b[stripWidth * i] /= rows[i][i];
                        isBeyond = isBeyond || b[stripWidth * i] > limit || b[stripWidth * i] < -limit;
                    }
                });
    return isBeyond;
}

void permuteRows(const int* order, std::size_t n, const StripGroup& from, const StripGroup& to)
{
    forEachLane(to,
                [&](double* target, std::size_t lane)
                {
                    const double* source = from.strips + lane / stripWidth * from.stride + lane % stripWidth;
                    for (std::size_t i = 0; i < n; ++i)
                        target[stripWidth * i] = source[stripWidth * static_cast<std::size_t>(order[i])];
                });
}

void sumWeighted(const StripGroup& weights, std::size_t count, const double* const* values, const bool* startsAtZero,
                 std::size_t numSums, double* sums)
{
    for (std::size_t o = 0; o < numSums; ++o)
    {
        forEachLane(weights,
                    [&](const double* weight, std::size_t lane)
                    {
                        double sum = weight[0] * values[o][0];
                        if (startsAtZero[o])
                            sum = 0.0 + sum;
                        for (std::size_t j = 1; j < count; ++j)
                            sum += weight[stripWidth * j] * values[o][j];
                        sums[o * weights.numStrips * stripWidth + lane] = sum;
                    });
    }
}

void sumProducts(const StripGroup& a, const StripGroup& b, std::size_t count, double* sums)
{
    forEachLane(a,
                [&](const double* left, std::size_t lane)
                {
                    const double* right = b.strips + lane / stripWidth * b.stride + lane % stripWidth;
                    double sum = left[0] * right[0];
                    for (std::size_t j = 1; j < count; ++j)
                        sum += left[stripWidth * j] * right[stripWidth * j];
                    sums[lane] = sum;
                });
}

} // namespace fenn::kernels::scalar
