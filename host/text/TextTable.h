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

/// A name for a table: blanks and control characters, which would break its columns, become '_'.
std::string nameForTable(const std::string& name);

/// Six significant digits, for tables. Files use formatNumber, which loses nothing.
std::string formatFigure(double value);

} // namespace krige

#endif
