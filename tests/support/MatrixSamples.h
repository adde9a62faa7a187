#ifndef FENN_TESTS_SUPPORT_MATRIXSAMPLES_H
#define FENN_TESTS_SUPPORT_MATRIXSAMPLES_H

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "surrogatemodel_kriging/Matrix.h"
#include "tests/support/NaiveLinearSystem.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

enum class MatrixKind
{
    uniform,
    smallIntegers, // ties of scaled magnitude, exact zeros, exactly singular ones
    repeatedRows,  // pivots that come out as exactly zero
    scaledRows,    // scaled magnitudes that only scaling makes comparable
    tinyPivots,    // elements inside the bounds of a zero pivot
    zerosOfTwoSigns,
    specialValues // NaN, infinities, denormals
};

constexpr MatrixKind allMatrixKinds[] = {
    MatrixKind::uniform,    MatrixKind::smallIntegers,   MatrixKind::repeatedRows, MatrixKind::scaledRows,
    MatrixKind::tinyPivots, MatrixKind::zerosOfTwoSigns, MatrixKind::specialValues};

inline double randomInteger(RandomNumbers& numbers, int low, int high)
{
    return std::floor(numbers.next(low, high + 1.0));
}

inline double randomSpecialValue(RandomNumbers& numbers)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double specials[] = {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 0.0, -0.0, 5e-324, 1e308};
    return specials[static_cast<std::size_t>(numbers.next(0.0, 7.0))];
}

inline NaiveLinearSystem::Rows randomRows(MatrixKind kind, std::size_t n, RandomNumbers& numbers)
{
    NaiveLinearSystem::Rows rows(n, std::vector<double>(n));
    for (std::size_t i = 0; i < n; ++i)
    {
        const double rowScale = std::ldexp(1.0, static_cast<int>(randomInteger(numbers, -300, 300)));
        for (double& element : rows[i])
        {
            element = numbers.next(-1.0, 1.0);
            if (kind == MatrixKind::smallIntegers || kind == MatrixKind::zerosOfTwoSigns)
                element = randomInteger(numbers, -2, 2);
            if (kind == MatrixKind::scaledRows)
                element *= rowScale;
            if (kind == MatrixKind::tinyPivots && numbers.next() < 0.3)
                element *= 1e-160;
            if (kind == MatrixKind::zerosOfTwoSigns && numbers.next() < 0.5)
                element = numbers.next() < 0.5 ? 0.0 : -0.0;
            if (kind == MatrixKind::specialValues && numbers.next() < 3.0 / static_cast<double>(n * n))
                element = randomSpecialValue(numbers);
        }
        if (kind == MatrixKind::repeatedRows && i > 0 && numbers.next() < 0.3)
            rows[i] = rows[static_cast<std::size_t>(numbers.next(0.0, static_cast<double>(i)))];
    }
    return rows;
}

inline void fillMatrix(Matrix& matrix, const NaiveLinearSystem::Rows& rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        for (std::size_t k = 0; k < rows.size(); ++k)
            matrix.getRow(static_cast<int>(i))[k] = rows[i][k];
    }
}

inline void allocateAndFill(Matrix& matrix, const NaiveLinearSystem::Rows& rows)
{
    matrix.allocate(static_cast<int>(rows.size()));
    fillMatrix(matrix, rows);
}

/// Logical rows one after the other.
inline std::vector<double> elementsOf(const Matrix& matrix)
{
    std::vector<double> elements;
    for (int i = 0; i < matrix.getDimension(); ++i)
        elements.insert(elements.end(), matrix.getRow(i), matrix.getRow(i) + matrix.getDimension());
    return elements;
}

inline std::vector<double> elementsOf(const NaiveLinearSystem::Rows& rows)
{
    std::vector<double> elements;
    for (const std::vector<double>& row : rows)
        elements.insert(elements.end(), row.begin(), row.end());
    return elements;
}

inline std::vector<int> pivotsOf(const Matrix& matrix)
{
    std::vector<int> pivots;
    for (int j = 0; j < matrix.getDimension(); ++j)
        pivots.push_back(matrix.getPivot(j));
    return pivots;
}

/// A copy of the logical rows.
inline NaiveLinearSystem::Rows rowsOf(const Matrix& matrix)
{
    const int n = matrix.getDimension();
    NaiveLinearSystem::Rows rows;
    for (int i = 0; i < n; ++i)
        rows.emplace_back(matrix.getRow(i), matrix.getRow(i) + n);
    return rows;
}

/// A naive copy of a factorised matrix, whatever was written to its factors since.
inline NaiveLinearSystem factorsOf(const Matrix& matrix)
{
    NaiveLinearSystem factors(rowsOf(matrix));
    factors.pivots = pivotsOf(matrix);
    return factors;
}

} // namespace fenn::test

#endif
