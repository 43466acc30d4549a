#pragma once

#include <QIcon>
#include <QString>

namespace Workbench {

/// Makes the icons known under the search path "icon:", where also the library looks for its own. To be called before
/// the first widget is made; further calls do nothing.
void registerIcons();

/// The icon "icon:NAME.svg", its lines in the palette's colour whenever it is painted, see ThemedIconEngine.
QIcon icon(const QString& name);

/// Whether there is a drawing of that name.
bool hasIcon(const QString& name);

} // namespace Workbench
