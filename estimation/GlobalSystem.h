#ifndef FENN_ESTIMATION_GLOBALSYSTEM_H
#define FENN_ESTIMATION_GLOBALSYSTEM_H

#include <cstddef>
#include <memory>
#include <vector>

#include "estimation/SystemInverse.h"

class AllPtsKrigingController;

namespace fenn::estimation
{

/// From K itself, factorised as the plug-in does: rows 0 to n - 1 belong to the n points of ModelParts::getPoints, the
/// others to the drift terms and the constraint; see KrigingMatrix. A column of the inverse takes 2 n^2 operations.
///
/// Refers to the parts, which must outlive it.
class GlobalSystem final : public SystemInverse
{
public:
    /// numThreads: 0 for the cores that this process may use. Throws the library's Error about too few points, or
    /// "Singular matrix", and std::bad_alloc.
    GlobalSystem(const ModelParts& parts_, int driftOrder, int numThreads = 0);
    ~GlobalSystem() override;

    std::vector<double> solve(const std::vector<double>& values) const override;
    std::vector<std::vector<double>> calcDriftRows() const override;
    double calcLogDeterminant() const override;
    double calcReciprocalCondition() const override;
    bool isWellConditioned() const override;

private:
    class Columns;

    void calcDiagonalPart(std::size_t first, std::size_t end, double* diagonal, double* driftProducts) const override;
    void calcBlock(const std::vector<std::size_t>& points, Matrix& block) const override;
    void writeDriftTerms(std::size_t point, std::vector<double>& rightHandSide) const;

    const ModelParts& parts;
    std::unique_ptr<AllPtsKrigingController> controller; // for its system
    std::vector<std::size_t> placeOfRow;                 // where its row order puts each row
};

} // namespace fenn::estimation

#endif
