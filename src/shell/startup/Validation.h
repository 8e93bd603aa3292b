// Whether a folder holds a simulator of the wanted generation.
#pragma once

#include "platform/Files.h"

#include <QString>

namespace vt {

struct Validation
{
    bool hasFolder = false;
    bool hasExecutable = false;
    bool passed = false; ///< every test of the generation; the executable is not among them
    int code = 0;        ///< of the last failing test; 0 also for tests without a code

    [[nodiscard]] bool valid() const { return hasExecutable && passed; }
};

/// Runs every test; a later failure's code replaces an earlier one's.
[[nodiscard]] Validation
validateSimulator(const Files& files, const QString& folder, int generation);

/// The cause as the end of a sentence: "the folder does not exist", "'fsx.exe' is missing".
[[nodiscard]] QString validationCause(const Validation& validation, int generation);

} // namespace vt
