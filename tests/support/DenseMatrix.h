#ifndef FENN_TESTS_SUPPORT_DENSEMATRIX_H
#define FENN_TESTS_SUPPORT_DENSEMATRIX_H

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace fenn::test
{

/// A small dense matrix in long double; what follows from its elements is computed by plain elimination.
class DenseMatrix
{
public:
    DenseMatrix(std::size_t numRows_, std::size_t numColumns_)
        : numRows(numRows_), numColumns(numColumns_), elements(numRows_ * numColumns_, 0.0L)
    {
    }

    std::size_t getNumRows() const
    {
        return numRows;
    }
    std::size_t getNumColumns() const
    {
        return numColumns;
    }

    long double& operator()(std::size_t i, std::size_t j)
    {
        return elements[i * numColumns + j];
    }
    long double operator()(std::size_t i, std::size_t j) const
    {
        return elements[i * numColumns + j];
    }

    DenseMatrix transposed() const
    {
        DenseMatrix result(numColumns, numRows);
        for (std::size_t i = 0; i < numRows; ++i)
        {
            for (std::size_t j = 0; j < numColumns; ++j)
                result(j, i) = (*this)(i, j);
        }
        return result;
    }

    DenseMatrix operator*(const DenseMatrix& other) const
    {
        DenseMatrix result(numRows, other.numColumns);
        for (std::size_t i = 0; i < numRows; ++i)
        {
            for (std::size_t k = 0; k < numColumns; ++k)
            {
                for (std::size_t j = 0; j < other.numColumns; ++j)
                    result(i, j) += (*this)(i, k) * other(k, j);
            }
        }
        return result;
    }

    /// The solution for each column of rightHandSides; logDeterminant: ln |determinant|, where it is asked for.
    DenseMatrix solve(DenseMatrix rightHandSides, long double* logDeterminant = nullptr) const
    {
        DenseMatrix a = *this;
        long double sumOfLogs = 0.0L;
        for (std::size_t j = 0; j < numRows; ++j)
        {
            std::size_t pivot = j;
            for (std::size_t i = j + 1; i < numRows; ++i)
            {
                if (std::fabs(a(i, j)) > std::fabs(a(pivot, j)))
                    pivot = i;
            }
            a.exchangeRows(pivot, j);
            rightHandSides.exchangeRows(pivot, j);
            sumOfLogs += std::log(std::fabs(a(j, j)));
            for (std::size_t i = 0; i < numRows; ++i)
            {
                if (i == j)
                    continue;
                const long double factor = a(i, j) / a(j, j);
                for (std::size_t k = j; k < numRows; ++k)
                    a(i, k) -= factor * a(j, k);
                for (std::size_t k = 0; k < rightHandSides.numColumns; ++k)
                    rightHandSides(i, k) -= factor * rightHandSides(j, k);
            }
        }
        for (std::size_t i = 0; i < numRows; ++i)
        {
            for (std::size_t k = 0; k < rightHandSides.numColumns; ++k)
                rightHandSides(i, k) /= a(i, i);
        }
        if (logDeterminant != nullptr)
            *logDeterminant = sumOfLogs;
        return rightHandSides;
    }

    DenseMatrix inverse() const
    {
        DenseMatrix identity(numRows, numRows);
        for (std::size_t i = 0; i < numRows; ++i)
            identity(i, i) = 1.0L;
        return solve(identity);
    }

    long double logDeterminant() const
    {
        long double result = 0.0L;
        solve(DenseMatrix(numRows, 0), &result);
        return result;
    }

    /// Largest column sum of magnitudes.
    long double norm() const
    {
        long double largest = 0.0L;
        for (std::size_t j = 0; j < numColumns; ++j)
        {
            long double sum = 0.0L;
            for (std::size_t i = 0; i < numRows; ++i)
                sum += std::fabs((*this)(i, j));
            largest = std::fmax(largest, sum);
        }
        return largest;
    }

private:
    void exchangeRows(std::size_t i, std::size_t j)
    {
        for (std::size_t k = 0; k < numColumns; ++k)
            std::swap((*this)(i, k), (*this)(j, k));
    }

    std::size_t numRows;
    std::size_t numColumns;
    std::vector<long double> elements;
};

/// One column of values.
inline DenseMatrix columnOf(const std::vector<double>& values)
{
    DenseMatrix column(values.size(), 1);
    for (std::size_t i = 0; i < values.size(); ++i)
        column(i, 0) = values[i];
    return column;
}

} // namespace fenn::test

#endif
