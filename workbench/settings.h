#pragma once

#include <QSettings>

#include <memory>

namespace Workbench {

/// What the program remembers from one run to the next.
std::unique_ptr<QSettings> openSettings();

} // namespace Workbench
