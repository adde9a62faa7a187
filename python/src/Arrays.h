#ifndef FENN_PYTHON_ARRAYS_H
#define FENN_PYTHON_ARRAYS_H

#include <cstddef>
#include <string>
#include <vector>

#include <pybind11/numpy.h>

namespace krige::python
{

namespace py = pybind11;

using Columns = std::vector<std::vector<double>>;

/// A numpy array of doubles in two dimensions, or one that counts as a single column, wherever its rows and columns lie
/// in memory. Holds a reference to it: reading and writing needs no interpreter.
class Table
{
public:
    /// Doubles are taken in place, other numbers are converted once. Throws ValueError that names the array unless
    /// there are one or two dimensions.
    static Table ofNumbers(const py::object& object, const char* name);

    /// Of results, which are written in place. Throws ValueError that names the array unless it holds numRows rows, and
    /// numColumns columns where these are more than one, of writable doubles.
    static Table ofResults(const py::object& object, const char* name, std::size_t numRows, std::size_t numColumns);

    std::size_t getNumRows() const
    {
        return numRows;
    }

    std::size_t getNumColumns() const
    {
        return numColumns;
    }

    bool isTwoDimensional() const
    {
        return array.ndim() == 2;
    }

    /// Replaces columns by those of rows first to first + count - 1.
    void read(std::size_t first, std::size_t count, Columns& columns) const;

    /// Writes columns, as many as the array has, into rows first and following.
    void write(std::size_t first, const Columns& columns);

private:
    Table(py::array array_, const char* name);

    double* at(std::size_t row, std::size_t column) const;

    py::array array;
    char* data = nullptr;
    std::size_t numRows = 0;
    std::size_t numColumns = 1;
    py::ssize_t rowStride = 0;
    py::ssize_t columnStride = 0;
};

/// A new array of shape (rows, columns).
py::array_t<double> toArray(const Columns& columns);

py::array_t<double> toArray(const std::vector<double>& values);

py::array_t<std::int64_t> toArray(const std::vector<std::size_t>& indices);

} // namespace krige::python

#endif
