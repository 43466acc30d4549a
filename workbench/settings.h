#pragma once

#include <QSettings>

#include <memory>

namespace Workbench {

/// Names the application and makes openSettings() and a plain QSettings the same store. To be called once, as soon as
/// there is an application object.
void prepareSettings();

/// What the program remembers from one run to the next.
std::unique_ptr<QSettings> openSettings();

} // namespace Workbench
