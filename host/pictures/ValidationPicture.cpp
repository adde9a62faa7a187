#include "host/pictures/ValidationPicture.h"

#include "host/pictures/Gnuplot.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

void drawValidation(const std::string& path, const ValidationResult& result,
                    const std::vector<fenn::analysis::ErrorStatistics>& statistics)
{
    Picture picture;
    for (std::size_t w = 0; w < statistics.size(); ++w)
    {
        const std::string data = picture.addData({result.truths[w], result.estimates[w]});
        std::vector<double> both = result.truths[w];
        both.insert(both.end(), result.estimates[w].begin(), result.estimates[w].end());
        const std::string range = plotRange(both, 0.05);
        const std::string caption = "RMSE " + formatFigure(statistics[w].rmse) + ", R2 " +
                                    formatFigure(statistics[w].r2) + ", " + countOf(statistics[w].numCompared, "point");
        const double size = statistics[w].numCompared > 2000 ? 0.4 : 0.8;
        picture.addPanel("set size square\nset key top left reverse Left samplen 2\nset grid lc rgb '#dddddd'\n"
                         "set title " +
                         quoteForGnuplot(caption) + "\nset xrange " + range + "\nset yrange " + range +
                         "\nset xlabel " + quoteForGnuplot("measured " + result.outputNames[w]) + "\nset ylabel " +
                         quoteForGnuplot("estimated " + result.outputNames[w]) +
                         "\nplot x with lines lc rgb '#666666' dt 2 lw 1.5 title 'estimate = measured', " + data +
                         " using 1:2 with points pt 7 ps " + formatNumber(size) + " lc rgb '#cc21918c' notitle, " +
                         data + " using 1:2 with points pt 6 ps " + formatNumber(size) + " lc rgb '#21918c' notitle\n");
    }
    picture.save(path);
}

} // namespace krige
