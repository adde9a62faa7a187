#ifndef FENN_HOST_PICTURES_PICTURE_H
#define FENN_HOST_PICTURES_PICTURE_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/pictures/Panel.h"

namespace krige
{

/// Size in pixels of a whole picture; 0 by 0: as large as its panels need.
struct PictureSize
{
    int width = 0;
    int height = 0;
};

/// Reads `WxH`, each 200 to 10000. Throws UsageError that begins with option.
PictureSize parsePictureSize(const std::string& option, const std::string& text);

/// `ps ...`: the size of marks, alike in every kind of file.
std::string pointSize(double size);

/// A picture as a gnuplot script with its data inline: panels side by side, in rows.
///
/// Nothing of a file reaches gnuplot as a command: names pass through quoteForGnuplot, data blocks hold numbers only,
/// and gnuplot is started without a shell and without the user's start-up files, with the script as a file.
///
/// Panels may use variables of the script that hold what differs between kinds of files: the fonts smallFont and
/// largeFont, dot (see pointSize), and @largeCells, behind `with image` of so few cells that each of them is seen.
///
/// Everything is laid out for a text of one size; a picture of another size is that one enlarged, text and lines alike.
class Picture
{
public:
    /// panelsPerRow: 0 for a picture about as wide as it is high. title: over all panels; may be empty.
    explicit Picture(std::size_t panelsPerRow_ = 0, std::string title_ = {}, PictureSize size_ = {});

    /// columns: of one length; NaN stands for "no value", a row of nothing else for a gap in a line. Returns the
    /// block's name in the script.
    std::string addData(const std::vector<std::vector<double>>& columns);

    /// Rows of so many values each, for `matrix`. Nine digits: colours ask for no more.
    std::string addMatrix(const std::vector<double>& values, std::size_t rowLength);

    void addPanel(Panel panel);

    /// Writes a .png, .svg or .pdf by gnuplot or, for .gp, the script, which makes a .png of the same name. The file
    /// appears when it is complete. Throws InputError, with gnuplot's message where it failed.
    void save(const std::string& path) const;

    std::size_t getNumPanels() const
    {
        return panels.size();
    }

private:
    /// Width and height of the whole in pixels, and how much larger than laid out it is drawn.
    struct Canvas
    {
        double width = 0.0;
        double height = 0.0;
        double scale = 1.0;
    };

    std::string buildScript(const std::string& path, const std::string& ending) const;
    std::string buildPanels(Canvas& canvas) const;
    static std::string terminalLine(const std::string& ending, const Canvas& canvas);
    std::size_t countColumns() const;
    std::size_t countRows() const;

    std::size_t panelsPerRow;
    std::string title;
    PictureSize size;
    std::string dataBlocks;
    std::size_t numDataBlocks = 0;
    std::vector<Panel> panels;
};

} // namespace krige

#endif
