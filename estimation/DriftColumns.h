#ifndef FENN_ESTIMATION_DRIFTCOLUMNS_H
#define FENN_ESTIMATION_DRIFTCOLUMNS_H

#include <vector>

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// F of a model's system with the constant: a column per drift term, in KrigingMatrix's order, and one of ones; an
/// entry per point of ModelParts::getPoints.
std::vector<std::vector<double>> calcDriftColumns(const ModelParts& parts, int driftOrder);

} // namespace fenn::estimation

#endif
