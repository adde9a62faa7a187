#ifndef FENN_HOST_TEXT_NUMBERTEXT_H
#define FENN_HOST_TEXT_NUMBERTEXT_H

#include <string>
#include <string_view>

namespace krige
{

enum class NumberStatus
{
    Ok,
    Missing,   // blank, or an infinity or NaN in any of their spellings
    Malformed, // anything else that is not one decimal number
    TooLarge,  // beyond the largest double
    TooSmall   // not zero, yet it would become zero; denormals are fine
};

/// Reads one decimal number, whatever the locale. Blanks (spaces and tabs) around it and one leading `+` are allowed.
/// value is set when the answer is Ok, and correctly rounded; otherwise it is left alone.
NumberStatus parseNumber(std::string_view text, double& value);

/// The same where hasDecimalComma is false; otherwise a comma stands before the decimals, and a number with a point is
/// malformed: it may be meant to separate thousands.
NumberStatus parseNumber(std::string_view text, double& value, bool hasDecimalComma);

/// What is wrong with a text, as the end of a sentence: "'1e999' is too large for a double".
std::string describeNumberFault(std::string_view text, NumberStatus status);

/// Appends the shortest digits that read back to the same bits; "nan" for every NaN.
void appendNumber(std::string& out, double value);

std::string formatNumber(double value);

/// The text without the spaces and tabs around it.
std::string_view trimBlanks(std::string_view text);

/// Text of a file or a command line for a message: in single quotes, shortened when very long, control characters
/// replaced by '?', so that no file can drive the terminal.
std::string quoteForMessage(std::string_view text);

/// "1 sample", "2 samples".
std::string countOf(unsigned long long count, const std::string& noun);

} // namespace krige

#endif
