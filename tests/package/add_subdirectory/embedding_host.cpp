// Uses both exported classes, and a Normalizer, through their in-tree targets.

#include <cstdio>
#include <utility>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_common/exception/ExceptionBase.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

int main()
{
    std::vector<double> x{0.0, 1.0, 1.0, 3.0};
    std::vector<double> z{5.0, 6.0, 8.0, 9.0};
    const std::vector<double*> inputs{x.data()};
    const std::vector<double*> outputs{z.data()};

    std::vector<double> low(1);
    std::vector<double> high(1);
    findMinMax(x.data(), 4, low[0], high[0]);
    std::vector<Normalizer> normalizers(1);
    normalizers[0].setOffset(-1.5);

    SurrogateModelDataBlock block(4, inputs, outputs, std::vector<bool>(4, true), normalizers, low, high);
    block.removeDuplicatePts(0.0);
    std::vector<std::pair<int, int>> points;
    block.getAllUnblankedPts(points);
    std::printf("%zu points in %d blocks, merged output %g\n", points.size(), block.getNumBlocks(),
                block.getOutputValueArraysForBlock(1)[0][0]);

    try
    {
        const KrigingSurrogateModel model(inputs, outputs, 1, -1.0, {1.0}, 0, 1.0, 0.0, 0);
    }
    catch (const morvel::ExceptionBase& error)
    {
        std::printf("error: %s\n", error.what());
        return 0;
    }
    return 1;
}
