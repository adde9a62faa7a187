#ifndef FENN_HOST_PICTURES_GNUPLOT_H
#define FENN_HOST_PICTURES_GNUPLOT_H

#include <string>
#include <string_view>
#include <vector>

namespace krige
{

/// A picture as a gnuplot script with its data inline: panels side by side, in rows.
///
/// Nothing of a file reaches gnuplot as a command: names pass through quoteForGnuplot, data blocks hold numbers only,
/// and gnuplot is started without a shell and without the user's start-up files, with the script as a file.
class Picture
{
public:
    /// panelsPerRow: 0 for a picture about as wide as it is high. Sizes in pixels.
    explicit Picture(std::size_t panelsPerRow_ = 0, int panelWidth_ = 760, int panelHeight_ = 600);

    /// columns: of one length; NaN stands for "no value". Returns the block's name in the script. Where rowLength is
    /// not 0 a blank line follows every so many rows.
    std::string addData(const std::vector<std::vector<double>>& columns);

    /// Commands that draw one panel, ended by a line end each; what they set is reset afterwards.
    void addPanel(std::string commands);

    /// Writes a .png or .svg by gnuplot or, for .gp, the script, which makes a .png of the same name. The file appears
    /// when it is complete. Throws InputError, with gnuplot's message where it failed.
    void save(const std::string& path) const;

    std::size_t getNumPanels() const
    {
        return panels.size();
    }

private:
    std::string buildScript(const std::string& terminalLines) const;
    std::size_t countColumns() const;
    std::size_t countRows() const;

    std::size_t panelsPerRow;
    int panelWidth;
    int panelHeight;
    std::string dataBlocks;
    std::size_t numDataBlocks = 0;
    std::vector<std::string> panels;
};

/// Throws UsageError for another ending than .png, .svg and .gp, InputError where gnuplot is needed and not installed.
/// Meant to be called before the work that the picture shows.
void checkPicturePath(const std::string& path);

/// The text as a gnuplot string: nothing in it is expanded. Control characters and what is not UTF-8 become '?', and
/// a long text is shortened.
std::string quoteForGnuplot(std::string_view text);

/// "[low:high]" around the values, widened where they are all alike; NaN and infinities are ignored.
std::string plotRange(const std::vector<double>& values, double margin);

/// Gnuplot commands for a palette whose lightness rises evenly: it can be read in greyscale and by colour-blind people.
extern const char* const viridisPalette;

} // namespace krige

#endif
