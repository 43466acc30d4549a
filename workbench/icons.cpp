#include "icons.h"

#include "themed_icon_engine.h"

#include <QDir>
#include <QFile>

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

bool hasIcon(const QString& name)
{
    return QFile::exists(QStringLiteral("icon:%1.svg").arg(name));
}

QIcon icon(const QString& name)
{
    registerIcons();
    return QIcon(new ThemedIconEngine(QStringLiteral("icon:%1.svg").arg(name)));
}

} // namespace Workbench
