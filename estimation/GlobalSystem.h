#ifndef FENN_ESTIMATION_GLOBALSYSTEM_H
#define FENN_ESTIMATION_GLOBALSYSTEM_H

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

class AllPtsKrigingController;

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// The Kriging system K of all points of a model, factorised as the plug-in does, for what is computed from the system
/// itself and not from targets. Rows 0 to n - 1 belong to the n points of ModelParts::getPoints, the others to the
/// drift terms and the constraint; see KrigingMatrix.
///
/// Refers to the parts, which must outlive it. Any number of threads may use one object at once.
class GlobalSystem
{
public:
    /// numThreads: of the factorisation; 0 for the cores that this process may use. Throws the library's Error about
    /// too few points, or "Singular matrix", and std::bad_alloc.
    GlobalSystem(const ModelParts& parts, int driftOrder, int numThreads = 0);
    GlobalSystem(const GlobalSystem& other) = delete;
    GlobalSystem& operator=(const GlobalSystem& other) = delete;
    ~GlobalSystem();

    std::size_t getNumPoints() const;

    /// K^-1 (values, 0): one value per point, zeros for the other rows. Throws Error as Matrix::luSolve.
    std::vector<double> solve(const std::vector<double>& values) const;

    /// The diagonal elements of K^-1 that belong to points, by one solve each. afterEach: called with the number of
    /// solves done; what it throws is passed on. Throws Error as Matrix::luSolve.
    std::vector<double> calcInverseDiagonal(const std::function<void(std::size_t numDone)>& afterEach) const;

private:
    std::unique_ptr<AllPtsKrigingController> controller; // for its system
    std::size_t numPoints;
};

} // namespace fenn::estimation

#endif
