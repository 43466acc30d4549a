#pragma once

#include "system_look.h"

#include <QObject>
#include <QPalette>

#include <optional>

namespace Workbench {

/// Light or dark look of the whole application. Needs a QApplication; one at a time.
///
/// A chosen look has a palette of its own, drawn by the Fusion style; the system's look is what the platform gives, and
/// follows it while the program runs. Where the desktop is dark and the platform's palette has not been told, the
/// system's look is the dark one. In any look the buttons at the end of dialogs have texts only.
class Theme : public QObject
{
    Q_OBJECT

public:
    enum Scheme { System, Light, Dark };
    Q_ENUM(Scheme)

    explicit Theme(QObject* parent = nullptr);
    /// Gives the application its style and palette back.
    ~Theme() override;

    Scheme scheme() const { return m_scheme; }
    /// Emits changed() when the scheme is another.
    void setScheme(Scheme scheme);

    /// Listens from now on to what the desktop says of itself, for the system's look; takes the place of the one
    /// before. @param source becomes a child
    void listenTo(SystemLook* source);

    /// Whether the application's palette is dark at this moment.
    static bool isDark();
    /// Of Light and Dark; for System the default palette.
    static QPalette palette(Scheme scheme);

    /// "system", "light" or "dark", as on the command line and in settings.
    static QString name(Scheme scheme);
    /// Nothing for any other text.
    static std::optional<Scheme> schemeOf(const QString& name);

Q_SIGNALS:
    /// The look is another, by choice or since the system's has changed.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static void leaveOutButtonIcon(QObject* object);
    void apply();
    void applyQuietly();
    void showReported(SystemLook::Preference preference);

    Scheme m_scheme = System;
    SystemLook::Preference m_reported = SystemLook::None;
    SystemLook* m_source = nullptr;
    bool m_isApplying = false;
    const QString m_systemStyle;
};

} // namespace Workbench
