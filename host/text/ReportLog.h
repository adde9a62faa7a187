#ifndef FENN_HOST_TEXT_REPORTLOG_H
#define FENN_HOST_TEXT_REPORTLOG_H

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace krige
{

/// A stream that passes on what is written to it, and keeps it.
class ReportLog
{
public:
    /// shown must outlive this.
    explicit ReportLog(std::ostream& shown) : buffer(shown), stream(&buffer) {}

    std::ostream& getStream()
    {
        return stream;
    }

    /// Of the lines that begin with one of these words and a colon, what stands behind them; each text once.
    std::vector<std::string> linesOf(const std::vector<std::string>& words) const;

private:
    class Buffer : public std::streambuf
    {
    public:
        explicit Buffer(std::ostream& shown_) : shown(shown_) {}

        const std::string& getKept() const
        {
            return kept;
        }

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* characters, std::streamsize count) override;

    private:
        std::ostream& shown;
        std::string kept;
    };

    Buffer buffer;
    std::ostream stream;
};

} // namespace krige

#endif
