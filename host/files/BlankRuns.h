#ifndef FENN_HOST_FILES_BLANKRUNS_H
#define FENN_HOST_FILES_BLANKRUNS_H

#include <string>
#include <string_view>

namespace krige
{

/// Rewrites text whose fields are separated by runs of spaces and tabs so that a single space separates them and none
/// stands at either end of a line. What stands in quotes is left alone.
///
/// The text comes in pieces: a run, and a field in quotes, may go on in the next one.
class BlankRuns
{
public:
    /// Appends the piece, rewritten.
    void append(std::string& out, std::string_view piece);

private:
    bool isQuoted = false;
    bool isAtLineBegin = true;
    bool isInRun = false; // whose space has not been written: the line may end behind it
};

} // namespace krige

#endif
