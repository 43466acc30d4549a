#include "portal_look.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFileInfo>

namespace Workbench {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString group = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");

// Merely looking for a bus that nobody has started can start one.
bool hasBus()
{
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR") &&
            QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus")));
}

} // namespace

void PortalLook::ask()
{
    if (!hasBus())
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    question << group << schemeKey;
    auto* const call = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, &PortalLook::onAnswer);
}

void PortalLook::onAnswer(QDBusPendingCallWatcher* call)
{
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> answer = *call;
    if (answer.isValid())
        Q_EMIT reported(preferenceOf(answer.value().variant()));
}

void PortalLook::onSettingChanged(const QString& changedGroup, const QString& key, const QDBusVariant& value)
{
    if (changedGroup == group && key == schemeKey)
        Q_EMIT reported(preferenceOf(value.variant()));
}

SystemLook::Preference PortalLook::preferenceOf(const QVariant& value)
{
    if (value.canConvert<QDBusVariant>())
        return preferenceOf(value.value<QDBusVariant>().variant());
    bool isNumber = false;
    const uint number = value.toUInt(&isNumber);
    if (!isNumber || number > Light)
        return None;
    return static_cast<Preference>(number);
}

} // namespace Workbench
