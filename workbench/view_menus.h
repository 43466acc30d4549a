#pragma once

class QMenu;

namespace Workbench {

class Theme;
class ViewSettings;

/// Entries that show and set the settings; they follow when these are changed elsewhere.
/// The entry "snap", then the steps and the tolerances.
void addSnapEntries(QMenu* menu, ViewSettings* settings);
/// "live" and "follow_live".
void addLiveEntries(QMenu* menu, ViewSettings* settings);
/// Format and zone of the ruler, each a menu of its own, and what is shown beside the ticks.
void addRulerEntries(QMenu* menu, ViewSettings* settings);
/// A menu with the look of the application.
void addThemeEntries(QMenu* menu, Theme* theme);

} // namespace Workbench
