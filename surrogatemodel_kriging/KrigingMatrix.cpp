#include "surrogatemodel_kriging/KrigingMatrix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/DriftTerms.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace
{

constexpr int maxDriftOrder = 4;

constexpr std::size_t stripWidth = fenn::kernels::stripWidth;

/// Rows assembled before their elements are copied across the diagonal: a few pages' worth of rows to read, runs of
/// whole cache lines to write.
constexpr int assemblyBlock = 32;

constexpr int copySquare = 8;

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// Beyond this magnitude of the reference an estimate is centred: sqrt(2^23).
double centringThreshold()
{
    static const double threshold = std::sqrt(8388608.0);
    return threshold;
}

int systemDimension(const SurrogateModelDataBlock& block, int numPts, int driftOrder)
{
    const int numInputVars = block.getNumInputVars();
    if (numPts <= numInputVars)
        throw SurrogateModelInterface::Error("Not enough source points for kriging.");
    const int numTerms = numDriftTerms(driftOrder, numInputVars);
    // DELIBERATE: as many points as drift terms are enough here, although the system has one constraint more.
    // Test: KrigingMatrixTest.AsManyPointsAsDriftTermsAreAccepted
    if (numPts < numTerms)
        throw SurrogateModelInterface::Error("Not enough source points to calculate drift.");
    const std::int64_t dimension = std::int64_t{numPts} + 1 + numTerms;
    if (dimension > std::numeric_limits<int>::max())
        throw std::length_error("Kriging system of too many rows");
    return static_cast<int>(dimension);
}

} // namespace

int numDriftTerms(int driftOrder, int d)
{
    // Monomials of degree k in d variables: C(d + k - 1, k), each from the one before by an exact division.
    constexpr std::int64_t limit = std::numeric_limits<int>::max();
    std::int64_t ofDegree = 1;
    std::int64_t total = 0;
    for (int degree = 1; degree <= driftOrder && degree <= maxDriftOrder && total < limit; ++degree)
    {
        ofDegree = ofDegree * (std::int64_t{d} + degree - 1) / degree;
        total += ofDegree;
    }
    return static_cast<int>(total < limit ? total : limit);
}

KrigingMatrix::KrigingMatrix(const SurrogateModelDataBlock& block, int numPts_,
                             const SemivariogramInterface* semivariogram_, int driftOrder_)
    : dataBlock(&block),
      numPts(numPts_),
      semivariogram(semivariogram_),
      driftOrder(driftOrder_),
      numInputVars(block.getNumInputVars())
{
    allocate(systemDimension(block, numPts, driftOrder));
    assembledPts.resize(numInputVars, numPts);
    pointCoordinates.resize(toIndex(numInputVars));
}

KrigingMatrix::~KrigingMatrix() = default;

int KrigingMatrix::getNumPts() const
{
    return numPts;
}

void KrigingMatrix::assemble(const std::vector<SourcePointRef>& points, std::vector<double>& scratch)
{
    const int numRows = getDimension();
    gatherCoordinates(points, assembledPts);
    for (int begin = 0; begin < numPts; begin += assemblyBlock)
    {
        const int end = std::min(begin + assemblyBlock, numPts);
        for (int i = begin; i < end; ++i)
            assembleRow(i, scratch);
        copyAcrossDiagonal(begin, end);
    }
    for (int r = numPts; r < numRows; ++r)
    {
        for (int c = numPts; c < numRows; ++c)
            getRow(r)[c] = 0.0;
    }
}

void KrigingMatrix::copyAcrossDiagonal(int begin, int end)
{
    const int numRows = getDimension();
    const auto copyOneByOne = [&](int firstColumn, int lastColumn, int firstRow, int lastRow)
    {
        for (int j = firstRow; j < lastRow; ++j)
        {
            for (int i = firstColumn; i < std::min(lastColumn, j); ++i)
                getRow(j)[i] = getRow(i)[j];
        }
    };
    copyOneByOne(begin, end, begin + 1, end);
    // Square by square: elements that are read from rows far apart are then written in runs of whole cache lines.
    int j = end;
    for (; j + copySquare <= numRows; j += copySquare)
    {
        int i = begin;
        for (; i + copySquare <= end; i += copySquare)
            copySquareAcross(i, j);
        copyOneByOne(i, end, j, j + copySquare);
    }
    copyOneByOne(begin, end, j, numRows);
}

void KrigingMatrix::copySquareAcross(int i, int j)
{
    double square[copySquare][copySquare];
    for (int p = 0; p < copySquare; ++p)
    {
        const double* row = getRow(i + p) + j;
        for (int q = 0; q < copySquare; ++q)
            square[q][p] = row[q];
    }
    for (int q = 0; q < copySquare; ++q)
        std::copy_n(square[q], copySquare, getRow(j + q) + i);
}

void KrigingMatrix::assembleRow(int i, std::vector<double>& scratch)
{
    double* row = getRow(i);
    row[i] = 0.0; // never evaluated: the model gives its nugget at a zero separation
    const std::size_t point = toIndex(i);
    const fenn::ColumnPointers self(assembledPts, point);
    const fenn::ColumnPointers following(assembledPts, point + 1);
    semivariogram->evaluatePairs(following.getArrays(toIndex(numPts) - point - 1), self.getArrays(1), row + i + 1, 1);
    for (std::size_t v = 0; v < toIndex(numInputVars); ++v)
        pointCoordinates[v] = assembledPts.getColumn(v)[i];
    writeConstraints(row + numPts, pointCoordinates.data(), scratch);
}

void KrigingMatrix::writeConstraints(double* out, const double* target, std::vector<double>& scratch) const
{
    double* next = out;
    if (driftOrder > 0)
        next = fenn::writeDriftTerms<1>(next, driftOrder, target, dataBlock->getInputVarNormalizers(), numInputVars,
                                        scratch.data());
    *next = 1.0;
}

const fenn::PointColumns& KrigingMatrix::getAssembledPts() const
{
    return assembledPts;
}

void KrigingMatrix::gatherCoordinates(const std::vector<SourcePointRef>& points, fenn::PointColumns& columns) const
{
    columns.resize(numInputVars, numPts);
    for (std::size_t j = 0; j < toIndex(numPts); ++j)
    {
        const std::vector<double*>& inputs = dataBlock->getInputValueArraysForBlock(points[j].first);
        for (std::size_t v = 0; v < toIndex(numInputVars); ++v)
            columns.getColumn(v)[j] = inputs[v][points[j].second];
    }
}

void KrigingMatrix::gatherOutputs(int outputVar, double reference, const std::vector<SourcePointRef>& points,
                                  double* outputs) const
{
    const bool isLessReference = isCentred(reference);
    for (std::size_t j = 0; j < toIndex(numPts); ++j)
    {
        const double output = outputValue(outputVar, points[j]);
        outputs[j] = isLessReference ? output - reference : output;
    }
}

bool KrigingMatrix::isCentred(double reference)
{
    return reference < -centringThreshold() || reference > centringThreshold();
}

void KrigingMatrix::buildRightHandSide(double* out, const double* target, const fenn::PointColumns& points,
                                       std::vector<double>& scratch) const
{
    const fenn::ColumnPointers sources(points, 0);
    const fenn::ColumnPointers self(target, toIndex(numInputVars), 1, 0);
    semivariogram->evaluatePairs(sources.getArrays(points.getNumPts()), self.getArrays(1), out, 1);
    writeConstraints(out + points.getNumPts(), target, scratch);
}

void KrigingMatrix::buildRightHandSides(double* strip, const double* targets, const fenn::PointColumns& points,
                                        std::vector<double>& scratch) const
{
    const fenn::ColumnPointers sources(points, 0);
    const fenn::ColumnPointers lanes(targets, toIndex(numInputVars), stripWidth, 0);
    semivariogram->evaluatePairs(sources.getArrays(points.getNumPts()), lanes.getArrays(stripWidth), strip, stripWidth);
    double* next = strip + points.getNumPts() * stripWidth;
    if (driftOrder > 0)
        next = fenn::writeDriftTerms<stripWidth>(next, driftOrder, targets, dataBlock->getInputVarNormalizers(),
                                                 numInputVars, scratch.data());
    std::fill_n(next, stripWidth, 1.0);
}

bool KrigingMatrix::evaluatesInBulk() const
{
    return semivariogram->neverThrows();
}

void KrigingMatrix::buildRightHandSide(double* out, int first, const std::vector<double>& target,
                                       const std::vector<SourcePointRef>& points, std::vector<double>& scratch) const
{
    for (int j = first; j < numPts; ++j)
    {
        const SourcePointRef& point = points[toIndex(j)];
        const std::vector<double*>& inputs = dataBlock->getInputValueArraysForBlock(point.first);
        for (std::size_t v = 0; v < toIndex(numInputVars); ++v)
            scratch[v] = inputs[v][point.second] - target[v];
        out[j] = semivariogram->evaluate(scratch);
    }
    writeConstraints(out + (first < numPts ? numPts : first), target.data(), scratch);
}

double KrigingMatrix::outputValue(int outputVar, const SourcePointRef& point) const
{
    return dataBlock->getOutputValueArraysForBlock(point.first)[toIndex(outputVar)][point.second];
}

double KrigingMatrix::estimate(int outputVar, const std::vector<SourcePointRef>& points, const double* weights) const
{
    double sum = weights[0] * outputValue(outputVar, points[0]);
    for (std::size_t j = 1; j < toIndex(numPts); ++j)
        sum += weights[j] * outputValue(outputVar, points[j]);
    return sum;
}

double KrigingMatrix::estimateCentered(int outputVar, double reference, const std::vector<SourcePointRef>& points,
                                       const double* weights) const
{
    if (!isCentred(reference))
        return estimate(outputVar, points, weights);
    double sum = 0.0;
    for (std::size_t j = 0; j < toIndex(numPts); ++j)
        sum += (outputValue(outputVar, points[j]) - reference) * weights[j];
    return sum + reference;
}

double KrigingMatrix::calcDriftProduct(const double* solution, const double* rightHandSide) const
{
    const std::size_t numRows = toIndex(getDimension());
    std::size_t j = toIndex(numPts);
    double sum = solution[j] * rightHandSide[j];
    for (++j; j < numRows; ++j)
        sum += solution[j] * rightHandSide[j];
    return sum;
}
