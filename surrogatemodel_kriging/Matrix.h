#ifndef FENN_SURROGATEMODEL_KRIGING_MATRIX_H
#define FENN_SURROGATEMODEL_KRIGING_MATRIX_H

#include <functional>
#include <vector>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

/// Dense square matrix with an LU factorisation in place, for indefinite systems.
///
/// Rows lie contiguously in one store and are reached through a table of row pointers. Factorising permutes that table
/// and never moves an element, so the table is always a permutation of the row starts: read and write rows only
/// through getRow, after a factorisation too. A matrix may then be refilled without being reset.
///
/// Crout's method with implicitly scaled partial pivoting; see W. H. Press et al., Numerical Recipes, section 2.3, and
/// G. H. Golub and C. F. Van Loan, Matrix Computations, chapter 3. Every element's products are subtracted in ascending
/// order of the summation index, each product and each difference rounded once: results depend on nothing else.
///
/// Between factorisation and refilling the matrix is only read: any number of threads may solve at once.
class Matrix
{
public:
    Matrix() = default;
    Matrix(const Matrix& other) = delete;
    Matrix& operator=(const Matrix& other) = delete;
    virtual ~Matrix();

    /// Makes room for n rows of n elements, which stay undefined until written. Called once.
    void allocate(int n);

    int getDimension() const
    {
        return dimension;
    }

    /// Logical row i: of the matrix as filled, or, after luDecompose, of its factors.
    double* getRow(int i)
    {
        return rowTable[i];
    }
    const double* getRow(int i) const
    {
        return rowTable[i];
    }

    /// The logical row that was exchanged with row j when column j was eliminated. Only after luDecompose.
    int getPivot(int j) const;

    /// Sum of a[i] * b[i] over the dimension, ascending, starting with the first product.
    double dotProduct(const double* a, const double* b) const;

    /// Replaces the matrix by its factors: L below the diagonal (its unit diagonal is not stored), U on and above it.
    /// Throws Error "Singular matrix" when a row has no element of non-zero magnitude; the matrix is then unchanged.
    void luDecompose();

    /// Calls piece() on this thread and concurrently on up to numPieces - 1 others; returns after every call has
    /// returned.
    using Executor = std::function<void(const std::function<void()>& piece)>;

    /// The same, to the bit, in up to numPieces pieces. A call of piece() takes the work that is left: a single call
    /// does all of it, a late one nothing. Small matrices are factorised without the executor. What it throws is passed
    /// on; the matrix is then undefined.
    void luDecompose(int numPieces, const Executor& execute);

    /// Replaces the right-hand side b, dimension entries, by the solution. Only after luDecompose.
    /// Throws Error "Singular matrix" when a diagonal factor lies inside +-1e-150 and "Value overflow" when a component
    /// lies beyond +-1e150; b is then partly transformed and the failing component keeps its old value.
    void luSolve(double* b) const;

    // luSolve for many right-hand sides at once: permute each by the row order, then substitute forward, then back. The
    // bits are those of luSolve, but nothing is thrown and leading zeros are not skipped. So use luSolve when the
    // diagonal is tiny, when a component beyond +-1e150 is reported, or when a permuted right-hand side begins with 0.

    /// order[i]: the row of the matrix as filled, and the entry of a right-hand side, that stands at i after all
    /// exchanges of rows.
    void calcRowOrder(std::vector<int>& order) const;

    /// Whether luSolve would throw "Singular matrix". A factorisation leaves no such diagonal.
    bool hasTinyDiagonal() const;

    /// Back substitution of one group and forward substitution of another, either of which may have no strips. Returns
    /// whether a component of the first, lanes without a target included, lies beyond +-1e150.
    bool substituteGroups(const fenn::kernels::StripGroup& back, const fenn::kernels::StripGroup& forward) const;

private:
    int dimension = 0;
    double** rowTable = nullptr;
    int* pivotTable = nullptr; // null until the first factorisation
    std::vector<int> pivotStore;
    fenn::ElementStore elementStore; // row i at element i * dimension
    std::vector<double*> rowPointerStore;
    fenn::ElementStore factorisationStore; // workspace, kept: many small systems are factorised one after the other
};

#endif
