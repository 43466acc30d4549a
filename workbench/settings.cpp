#include "settings.h"

#include <QCoreApplication>

namespace Workbench {

namespace {

QString organization()
{
    return QStringLiteral("VeskTimeline");
}

QString program()
{
    return QStringLiteral("vesk-timeline-workbench");
}

} // namespace

void prepareSettings()
{
    QCoreApplication::setOrganizationName(organization());
    QCoreApplication::setApplicationName(program());
    QSettings::setDefaultFormat(QSettings::IniFormat);
}

std::unique_ptr<QSettings> openSettings()
{
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, organization(), program());
}

} // namespace Workbench
