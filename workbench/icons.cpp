#include "icons.h"

#include <QDir>

// The macro declares a function of the global namespace.
static void initResources()
{
    Q_INIT_RESOURCE(workbench);
}

namespace Workbench {

void registerIcons()
{
    initResources();
    const QString prefix = QStringLiteral("icon");
    if (QDir::searchPaths(prefix).isEmpty())
        QDir::addSearchPath(prefix, QStringLiteral(":/icons"));
}

QIcon icon(const QString& name)
{
    return QIcon(QStringLiteral("icon:%1.svg").arg(name));
}

} // namespace Workbench
