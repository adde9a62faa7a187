#ifndef FENN_HOST_TEXT_TEXTTABLE_H
#define FENN_HOST_TEXT_TEXTTABLE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace krige
{

/// Prints rows of equal length in columns as wide as their longest entry, two blanks apart: the first column to the
/// left, the others to the right.
void printTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows);

/// Blanks and control characters would spoil the columns of a table: each becomes '_'.
std::string nameForTable(const std::string& name);

/// Six significant digits: for people. Files get formatNumber's.
std::string formatFigure(double value);

} // namespace krige

#endif
