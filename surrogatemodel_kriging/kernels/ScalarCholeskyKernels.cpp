#include "surrogatemodel_kriging/kernels/ScalarCholeskyKernels.h"

#include <algorithm>
#include <cmath>

namespace fenn::kernels::scalar
{

namespace
{

/// Calls operation(lane) for every lane of a group, entry i of which stands at lane[stripWidth * i].
template <class Operation>
void forEachLane(const StripGroup& group, const Operation& operation)
{
    for (std::size_t lane = 0; lane < group.numStrips * stripWidth; ++lane)
        operation(group.strips + lane / stripWidth * group.stride + lane % stripWidth);
}

} // namespace

bool factoriseCholesky(const PackedTriangle& triangle, double* workspace)
{
    const std::size_t numRows = triangle.numRows;
    const std::size_t numPositive = triangle.numPositive;
    for (std::size_t j = 0; j < numRows; ++j)
    {
        for (std::size_t i = j; i < numRows; ++i)
        {
            double& element = triangle.at(i, j);
            for (std::size_t k = 0; k < std::min(j, numPositive); ++k)
                element -= triangle.at(i, k) * triangle.at(j, k);
            if (j < numPositive)
                continue;
            element = -element;
            for (std::size_t k = numPositive; k < j; ++k)
                element -= triangle.at(i, k) * triangle.at(j, k);
        }
        double& diagonal = triangle.at(j, j);
        if (!(diagonal > 0.0))
            return false;
        diagonal = std::sqrt(diagonal);
        workspace[j] = 1.0 / diagonal;
        for (std::size_t i = j + 1; i < numRows; ++i)
            triangle.at(i, j) *= workspace[j];
        for (std::size_t i = j / triangleTileRows * triangleTileRows; i < j; ++i)
            triangle.at(i, j) = 0.0;
    }
    return true;
}

void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group,
                     std::size_t firstTile)
{
    const std::size_t firstRow = triangleTileRows * firstTile;
    forEachLane(group,
                [&](double* b)
                {
                    for (std::size_t i = firstRow; i < triangle.numRows; ++i)
                    {
                        for (std::size_t k = firstRow; k < i; ++k)
                            b[stripWidth * i] -= triangle.at(i, k) * b[stripWidth * k];
                        b[stripWidth * i] *= reciprocals[i];
                    }
                });
}

void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group)
{
    forEachLane(group,
                [&](double* b)
                {
                    for (std::size_t i = triangle.numRows; i-- > 0;)
                    {
                        for (std::size_t k = triangle.numRows - 1; k > i; --k)
                            b[stripWidth * i] -= triangle.at(k, i) * b[stripWidth * k];
                        b[stripWidth * i] *= reciprocals[i];
                    }
                });
}

void subtractColumnProducts(const StripGroup& a, const StripGroup& b, std::size_t begin, std::size_t end, double* block,
                            std::size_t rowLength)
{
    std::size_t i = 0;
    forEachLane(a,
                [&](const double* columnOfA)
                {
                    std::size_t j = 0;
                    forEachLane(b,
                                [&](const double* columnOfB)
                                {
                                    double& sum = block[rowLength * i + j++];
                                    for (std::size_t k = begin; k < end; ++k)
                                        sum -= columnOfA[stripWidth * k] * columnOfB[stripWidth * k];
                                });
                    ++i;
                });
}

} // namespace fenn::kernels::scalar
