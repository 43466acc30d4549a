#pragma once

class QAction;
class QMenu;

namespace Workbench {

class CsvImportAssistant;

/// Adds "Forget CSV imports…" to a menu. It asks, without blocking, and then forgets what the user chose for files of
/// comma-separated values, so that they are asked about again. Out of reach when there is nothing to forget.
/// @param assistant may go first: the action goes with it
/// @return the action; it belongs to the assistant
QAction* addForgetImportsAction(QMenu* menu, CsvImportAssistant* assistant);

} // namespace Workbench
