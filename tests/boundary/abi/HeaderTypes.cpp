// Normalizer lies wholly in its header, so no library describes it. This one, which script/abi builds, does.

#include "surrogatemodel_kriging/Normalizer.h"

void useNormalizer(const Normalizer& normalizer);

__attribute__((visibility("default"))) void useNormalizer(const Normalizer& /*normalizer*/) {}
