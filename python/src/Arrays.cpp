#include "python/src/Arrays.h"

#include <cstring>
#include <utility>

namespace krige::python
{

Table::Table(py::array array_, const char* name) : array(std::move(array_))
{
    if (array.ndim() < 1 || array.ndim() > 2)
        throw py::value_error(std::string(name) + " must have two dimensions, not " + std::to_string(array.ndim()));
    data = static_cast<char*>(const_cast<void*>(array.data()));
    numRows = static_cast<std::size_t>(array.shape(0));
    rowStride = array.strides(0);
    if (array.ndim() == 2)
    {
        numColumns = static_cast<std::size_t>(array.shape(1));
        columnStride = array.strides(1);
    }
}

Table Table::ofNumbers(const py::object& object, const char* name)
{
    if (py::isinstance<py::array_t<double>>(object))
        return {py::reinterpret_borrow<py::array>(object), name};
    py::array converted = py::array_t<double, py::array::forcecast>::ensure(object);
    if (!converted)
    {
        PyErr_Clear();
        throw py::value_error(std::string(name) + " must hold numbers");
    }
    return {std::move(converted), name};
}

Table Table::ofResults(const py::object& object, const char* name, std::size_t numRows, std::size_t numColumns)
{
    const std::string shape = numColumns == 1 ? "(" + std::to_string(numRows) + ",)"
                                              : "(" + std::to_string(numRows) + ", " + std::to_string(numColumns) + ")";
    if (!py::isinstance<py::array_t<double>>(object))
        throw py::value_error(std::string(name) + " must be an array of float64 of shape " + shape);
    Table table(py::reinterpret_borrow<py::array>(object), name);
    if (table.numRows != numRows || table.numColumns != numColumns)
        throw py::value_error(std::string(name) + " must have shape " + shape);
    if (!table.array.writeable())
        throw py::value_error(std::string(name) + " is read-only");
    return table;
}

double* Table::at(std::size_t row, std::size_t column) const
{
    return reinterpret_cast<double*>(data + static_cast<py::ssize_t>(row) * rowStride +
                                     static_cast<py::ssize_t>(column) * columnStride);
}

void Table::read(std::size_t first, std::size_t count, Columns& columns) const
{
    columns.resize(numColumns);
    for (std::size_t c = 0; c < numColumns; ++c)
    {
        columns[c].resize(count);
        for (std::size_t i = 0; i < count; ++i) // a view of records need not be aligned
            std::memcpy(&columns[c][i], at(first + i, c), sizeof(double));
    }
}

void Table::write(std::size_t first, const Columns& columns)
{
    for (std::size_t c = 0; c < numColumns; ++c)
    {
        for (std::size_t i = 0; i < columns[c].size(); ++i)
            std::memcpy(at(first + i, c), &columns[c][i], sizeof(double));
    }
}

py::array_t<double> toArray(const Columns& columns)
{
    const std::size_t numRows = columns.empty() ? 0 : columns.front().size();
    py::array_t<double> array({numRows, columns.size()});
    auto values = array.mutable_unchecked<2>();
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
        for (std::size_t i = 0; i < numRows; ++i)
            values(static_cast<py::ssize_t>(i), static_cast<py::ssize_t>(c)) = columns[c][i];
    }
    return array;
}

py::array_t<double> toArray(const std::vector<double>& values)
{
    return py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data());
}

py::array_t<std::int64_t> toArray(const std::vector<std::size_t>& indices)
{
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(indices.size()));
    auto values = array.mutable_unchecked<1>();
    for (std::size_t i = 0; i < indices.size(); ++i)
        values(static_cast<py::ssize_t>(i)) = static_cast<std::int64_t>(indices[i]);
    return array;
}

} // namespace krige::python
