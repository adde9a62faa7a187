#ifndef FENN_SURROGATEMODEL_KRIGING_POINTCOLUMNS_H
#define FENN_SURROGATEMODEL_KRIGING_POINTCOLUMNS_H

#include <array>
#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/SemivariogramInterface.h"

namespace fenn
{

/// Raw coordinates of a list of points, one contiguous column for each input variable.
class PointColumns
{
public:
    void resize(int numInputVars_, int numPts_)
    {
        numInputVars = static_cast<std::size_t>(numInputVars_);
        numPts = static_cast<std::size_t>(numPts_);
        coordinates.resize(numInputVars * numPts);
    }

    std::size_t getNumInputVars() const
    {
        return numInputVars;
    }

    std::size_t getNumPts() const
    {
        return numPts;
    }

    double* getColumn(std::size_t v)
    {
        return coordinates.data() + numPts * v;
    }

    const double* getColumn(std::size_t v) const
    {
        return coordinates.data() + numPts * v;
    }

private:
    std::size_t numInputVars = 0;
    std::size_t numPts = 0;
    std::vector<double> coordinates;
};

/// The pointers that PointArrays refers to, one for each input variable; up to 32 of them without an allocation.
class ColumnPointers
{
public:
    /// Variable v of the first point stands at values[variableStride * v + first], the next points behind it.
    ColumnPointers(const double* values, std::size_t numInputVars_, std::size_t variableStride, std::size_t first)
        : numInputVars(numInputVars_)
    {
        if (numInputVars > few.size())
            many.resize(numInputVars);
        const double** pointers = many.empty() ? few.data() : many.data();
        for (std::size_t v = 0; v < numInputVars; ++v)
            pointers[v] = values + variableStride * v + first;
    }

    ColumnPointers(const PointColumns& columns, std::size_t first)
        : ColumnPointers(columns.getColumn(0), columns.getNumInputVars(), columns.getNumPts(), first)
    {
    }

    /// numPts points, starting with the first. Valid as long as this object.
    PointArrays getArrays(std::size_t numPts) const
    {
        return {many.empty() ? few.data() : many.data(), static_cast<int>(numInputVars), numPts};
    }

private:
    std::size_t numInputVars;
    std::array<const double*, 32> few;
    std::vector<const double*> many;
};

} // namespace fenn

#endif
