#include "estimation/Estimator.h"

#include <utility>

namespace fenn::estimation
{

Estimator::Estimator(std::shared_ptr<const ModelParts> parts_) : parts(std::move(parts_)) {}

Estimator::~Estimator() = default;

const ModelParts& Estimator::getParts() const
{
    return *parts;
}

const std::shared_ptr<const ModelParts>& Estimator::shareParts() const
{
    return parts;
}

double Estimator::calcReciprocalCondition() const
{
    if (!reciprocalCondition)
        reciprocalCondition = findReciprocalCondition();
    return *reciprocalCondition;
}

} // namespace fenn::estimation
