// Factorisations and solves of matrices that are not Kriging systems: every size of tile and tail, ties between pivots,
// zeros of both signs, and values at the ends of the number range.

#include <functional>
#include <limits>

#include "DigestCases.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/Matrix.h"
#include "tests/support/Samples.h"

namespace fenn::test
{
namespace
{

using ElementOf = std::function<double(int i, int j)>;

void fill(Matrix& matrix, int n, const ElementOf& elementOf)
{
    matrix.allocate(n);
    for (int i = 0; i < n; ++i)
    {
        for (int j = 0; j < n; ++j)
            matrix.getRow(i)[j] = elementOf(i, j);
    }
}

void addSolution(Digest& digest, const Matrix& matrix, std::vector<double> b)
{
    try
    {
        matrix.luSolve(b.data());
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        digest.add(error.what());
    }
    digest.add(b);
}

void addSolutions(Digest& digest, const Matrix& matrix, RandomNumbers& numbers)
{
    const auto n = static_cast<std::size_t>(matrix.getDimension());
    std::vector<double> b(n);
    for (double& value : b)
        value = numbers.next(-1.0, 1.0);
    addSolution(digest, matrix, b);
    for (std::size_t i = 0; i < n / 3; ++i)
        b[i] = i % 2 == 0 ? 0.0 : -0.0;
    addSolution(digest, matrix, b);
    for (std::size_t i = 0; i + 1 < n; ++i)
        b[i] = 0.0;
    addSolution(digest, matrix, b);
    b.back() = -0.0;
    addSolution(digest, matrix, b);
}

void addSystem(Digest& digest, int n, const ElementOf& elementOf, RandomNumbers& numbers)
{
    Matrix matrix;
    fill(matrix, n, elementOf);
    digest.add(n);
    try
    {
        matrix.luDecompose();
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        digest.add(error.what());
        return;
    }
    for (int i = 0; i < n; ++i)
    {
        digest.add(matrix.getRow(i), static_cast<std::size_t>(n));
        digest.add(matrix.getPivot(i));
    }
    addSolutions(digest, matrix, numbers);
}

void randomMatrices(Digest& digest)
{
    RandomNumbers numbers(1);
    const auto uniform = [&](int /*i*/, int /*j*/)
    {
        return numbers.next(-1.0, 1.0);
    };
    for (int n = 1; n <= 70; ++n)
        addSystem(digest, n, uniform, numbers);
    for (const int n : {95, 96, 97, 127, 128, 129, 130, 191, 193, 200, 255, 256, 257, 300, 385, 511, 513})
        addSystem(digest, n, uniform, numbers);
}

void aLargeMatrix(Digest& digest)
{
    RandomNumbers numbers(2);
    addSystem(
        digest, 777, [&](int /*i*/, int /*j*/) { return numbers.next(-1.0, 1.0); }, numbers);
}

void tiesBetweenPivots(Digest& digest)
{
    RandomNumbers numbers(3);
    const auto small = [&](int /*i*/, int /*j*/)
    {
        return static_cast<double>(static_cast<int>(numbers.next(-3.0, 3.0)));
    };
    const auto signs = [&](int /*i*/, int /*j*/)
    {
        return numbers.next() < 0.5 ? -1.0 : 1.0;
    };
    for (const int n : {2, 3, 4, 7, 8, 9, 16, 17, 31, 33, 64, 65, 100, 131})
    {
        addSystem(digest, n, small, numbers);
        addSystem(digest, n, signs, numbers);
    }
}

/// Rows come in equal pairs, as those of coincident points do: pivots are exactly zero.
void equalRows(Digest& digest)
{
    RandomNumbers numbers(4);
    for (const int n : {2, 5, 16, 33, 67, 130})
    {
        std::vector<double> row(static_cast<std::size_t>(n));
        addSystem(
            digest, n,
            [&](int i, int j)
            {
                double& element = row[static_cast<std::size_t>(j)];
                if (i % 2 == 0)
                    element = numbers.next(-1.0, 1.0);
                return element;
            },
            numbers);
    }
}

void zerosOfBothSigns(Digest& digest)
{
    RandomNumbers numbers(5);
    const auto sparse = [&](int i, int j)
    {
        const double choice = numbers.next();
        if (i == j || choice < 0.3)
            return numbers.next(-1.0, 1.0);
        return choice < 0.65 ? 0.0 : -0.0;
    };
    for (const int n : {3, 8, 17, 40, 65, 99, 140})
        addSystem(digest, n, sparse, numbers);
}

void extremeMagnitudes(Digest& digest)
{
    RandomNumbers numbers(6);
    const double magnitudes[] = {0x1p-1070, 0x1p-1022, 0x1p-600, 0x1p-499, 0x1p-100, 1.0, 0x1p100, 0x1p499, 0x1p1000};
    const auto scattered = [&](int /*i*/, int /*j*/)
    {
        return numbers.next(-1.0, 1.0) * magnitudes[static_cast<std::size_t>(numbers.next(0.0, 9.0))];
    };
    const auto rowwise = [&](int i, int /*j*/)
    {
        return numbers.next(-1.0, 1.0) * magnitudes[i % 9];
    };
    for (const int n : {2, 4, 9, 17, 36, 70})
    {
        addSystem(digest, n, scattered, numbers);
        addSystem(digest, n, rowwise, numbers);
    }
}

void infinitiesAndNaN(Digest& digest)
{
    RandomNumbers numbers(7);
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double special : {infinity, -infinity, nan})
    {
        for (const int n : {1, 2, 5, 16, 33, 66})
        {
            // In one place late in the matrix: what comes before it stays finite.
            addSystem(
                digest, n,
                [&](int i, int j)
                {
                    const double value = numbers.next(-1.0, 1.0);
                    return i == n - 1 && j == n / 2 ? special : value;
                },
                numbers);
            addSystem(
                digest, n,
                [&](int i, int j)
                {
                    const double value = numbers.next(-1.0, 1.0);
                    return i == n / 3 && j == n - 1 ? special : value;
                },
                numbers);
        }
    }
}

} // namespace

std::vector<DigestCase> linearSystemCases()
{
    return {{"random-matrices", randomMatrices},        {"large-matrix", aLargeMatrix},
            {"ties-between-pivots", tiesBetweenPivots}, {"equal-rows", equalRows},
            {"zeros-of-both-signs", zerosOfBothSigns},  {"extreme-magnitudes", extremeMagnitudes},
            {"infinities-and-nan", infinitiesAndNaN}};
}

} // namespace fenn::test
