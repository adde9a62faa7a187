#ifndef FENN_ESTIMATION_SYSTEMINVERSE_H
#define FENN_ESTIMATION_SYSTEMINVERSE_H

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

class Matrix;

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

class ParallelRanges;

/// Reciprocal condition below which points cannot be told apart: a hundred spacings of doubles at 1, so that no digit
/// of an estimate can be relied upon.
constexpr double smallestReciprocalCondition = 1e-14;

/// The inverse of the Kriging system K of all points of a model, in semivariogram form as KrigingMatrix has it, as far
/// as it belongs to the points of ModelParts::getPoints: for what is computed from the system itself and not from
/// targets. K is factorised once, in the form that the implementation knows.
///
/// Results depend on the model alone, to the bit, not on the number of threads. Requests must not overlap.
class SystemInverse
{
public:
    SystemInverse(const SystemInverse& other) = delete;
    SystemInverse& operator=(const SystemInverse& other) = delete;
    virtual ~SystemInverse();

    std::size_t getNumPoints() const;

    /// The points' part of K^-1 (values, 0): one value per point, zeros for the other rows. Throws Error as
    /// Matrix::luSolve.
    virtual std::vector<double> solve(const std::vector<double>& values) const = 0;

    /// Per drift term, the constant last, the entries of its row of K^-1 that belong to points. Costs a solve each.
    /// Throws Error as Matrix::luSolve.
    virtual std::vector<std::vector<double>> calcDriftRows() const = 0;

    /// Natural logarithm of the magnitude of K's determinant, which is that of C times that of F^T C^-1 F.
    virtual double calcLogDeterminant() const = 0;

    /// Estimate of 1 / (|K| |K^-1|) in the form that was factorised, the norms being largest column sums of magnitudes;
    /// 0 where solutions mean nothing. Costs n^2 semivariogram values and a dozen solves.
    virtual double calcReciprocalCondition() const = 0;

    /// Whether the reciprocal condition is at least smallestReciprocalCondition; cheaper where that is known without.
    virtual bool isWellConditioned() const = 0;

    /// The diagonal elements that belong to points. afterSome: called on the calling thread, as the work proceeds, with
    /// the number of elements that are known; what it throws is passed on. Throws Error as Matrix::luSolve.
    /// driftProducts, where asked for: sum over the drift terms k, the constant last, of f_k(i) (K^-1)_ki for each
    /// point i.
    std::vector<double> calcDiagonal(const std::function<void(std::size_t numDone)>& afterSome,
                                     std::vector<double>* driftProducts = nullptr) const;

    /// Takes the block of K^-1 in the rows and columns of a group's points, in their order.
    using UseBlock = std::function<void(std::size_t group, Matrix& block)>;

    /// Calls use for each group, none of them empty, on several threads at once. What use throws is passed on, of
    /// several the exception of the first group. Throws Error as Matrix::luSolve, and std::bad_alloc.
    void calcBlocks(const std::vector<std::vector<std::size_t>>& groups, const UseBlock& use) const;

protected:
    /// numThreads: 0 for the cores that this process may use.
    SystemInverse(std::size_t numPoints_, int numThreads);

    ParallelRanges& getThreads() const;

private:
    /// Entries first to end - 1 of the diagonal, in an order of the implementation's; where they go is its matter too.
    /// Called on several threads at once. driftProducts: null where they are not wanted.
    virtual void calcDiagonalPart(std::size_t first, std::size_t end, double* diagonal,
                                  double* driftProducts) const = 0;

    /// block has the dimension of points. Called on several threads at once.
    virtual void calcBlock(const std::vector<std::size_t>& points, Matrix& block) const = 0;

    const std::size_t numPoints;
    std::unique_ptr<ParallelRanges> threads;
};

} // namespace fenn::estimation

#endif
