#pragma once

#include <QObject>

namespace Workbench {

/// Where to learn whether the desktop is dark, apart from the palette that Qt gets from it.
class SystemLook : public QObject
{
    Q_OBJECT

public:
    enum Preference { None, Dark, Light };
    Q_ENUM(Preference)

    using QObject::QObject;

    /// Answers by reported(), at some time or never, and again with each change. Never waits.
    virtual void ask() = 0;

Q_SIGNALS:
    void reported(Workbench::SystemLook::Preference preference);
};

} // namespace Workbench
