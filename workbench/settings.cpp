#include "settings.h"

namespace Workbench {

std::unique_ptr<QSettings> openSettings()
{
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("VeskTimeline"),
                                       QStringLiteral("workbench"));
}

} // namespace Workbench
