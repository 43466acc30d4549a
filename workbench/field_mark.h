#pragma once

class QLineEdit;

namespace Workbench {

/// Gives a field a ground that says that its text is not good, readable on light and on dark palettes, or takes it
/// back.
void setMarkedBad(QLineEdit* field, bool isBad);

} // namespace Workbench
