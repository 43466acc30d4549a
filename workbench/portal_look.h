#pragma once

#include "system_look.h"

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace Workbench {

/// Asks the desktop portal of the session's bus. Without a bus or a portal there is no answer.
class PortalLook : public SystemLook
{
    Q_OBJECT

public:
    using SystemLook::SystemLook;

    void ask() override;

    /// The portal's color-scheme, which may be wrapped in any number of variants. Nothing that makes sense: None.
    static Preference preferenceOf(const QVariant& value);

private Q_SLOTS:
    void onAnswer(QDBusPendingCallWatcher* call);
    void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

} // namespace Workbench
