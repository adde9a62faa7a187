#ifndef FENN_TESTS_ACCURACY_ACCURACYTABLES_H
#define FENN_TESTS_ACCURACY_ACCURACYTABLES_H

#include <string>
#include <vector>

#include "tests/accuracy/HardSystems.h"
#include "tests/accuracy/ModelFigures.h"
#include "tests/accuracy/SystemFigures.h"

namespace fenn::test
{

/// A system and all that was measured of it.
struct MeasuredSystem
{
    HardSystem system;
    SystemFigures figures;
    bool hasModels = false; // none where the factorisation throws
    ModelFigures global;
    bool hasLocal = false;
    ModelFigures local;
};

/// The whole gallery.
std::vector<MeasuredSystem> measureHardSystems();

/// The table of docs/accuracy.md: one line per family, with the worst figures of its systems.
std::string familyTable(const std::vector<MeasuredSystem>& systems);

/// One line per system.
std::string systemTable(const std::vector<MeasuredSystem>& systems);

} // namespace fenn::test

#endif
