#include "theme.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>
#include <QStyle>

namespace Workbench {

namespace {

struct Colors
{
    QRgb window, base, alternateBase, button, text, disabledText, highlight, highlightedText, link, visitedLink;
    QRgb toolTip, light, midlight, mid, dark, shadow;
};

constexpr Colors lightColors{0xffefefef, 0xffffffff, 0xfff5f5f5, 0xffe8e8e8, 0xff1b1b1b, 0xff8c8c8c,
                             0xff2a6da8, 0xffffffff, 0xff0b5cad, 0xff6a3d9a, 0xffffffe1, 0xffffffff,
                             0xfff7f7f7, 0xffc4c4c4, 0xffa0a0a0, 0xff767676};
constexpr Colors darkColors{0xff2b2d30, 0xff1e1f22, 0xff26282b, 0xff393c40, 0xffe6e6e6, 0xff808388,
                            0xff2f6ea5, 0xffffffff, 0xff6cb4ee, 0xffb79ce0, 0xff3c3f43, 0xff55595e,
                            0xff45494e, 0xff2a2c2f, 0xff1a1b1d, 0xff0c0c0d};

QPalette paletteOf(const Colors& colors)
{
    QPalette palette;
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText, QPalette::BrightText}) {
        palette.setColor(role, QColor(colors.text));
        palette.setColor(QPalette::Disabled, role, QColor(colors.disabledText));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(colors.disabledText));
    palette.setColor(QPalette::Window, QColor(colors.window));
    palette.setColor(QPalette::Base, QColor(colors.base));
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(colors.window));
    palette.setColor(QPalette::AlternateBase, QColor(colors.alternateBase));
    palette.setColor(QPalette::ToolTipBase, QColor(colors.toolTip));
    palette.setColor(QPalette::Button, QColor(colors.button));
    palette.setColor(QPalette::Highlight, QColor(colors.highlight));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colors.mid));
    palette.setColor(QPalette::HighlightedText, QColor(colors.highlightedText));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(colors.disabledText));
    palette.setColor(QPalette::Link, QColor(colors.link));
    palette.setColor(QPalette::LinkVisited, QColor(colors.visitedLink));
    palette.setColor(QPalette::Light, QColor(colors.light));
    palette.setColor(QPalette::Midlight, QColor(colors.midlight));
    palette.setColor(QPalette::Mid, QColor(colors.mid));
    palette.setColor(QPalette::Dark, QColor(colors.dark));
    palette.setColor(QPalette::Shadow, QColor(colors.shadow));
    return palette;
}

} // namespace

Theme::Theme(QObject* parent) : QObject(parent), m_systemStyle(QApplication::style()->name())
{
    qApp->installEventFilter(this);
}

Theme::~Theme()
{
    qApp->removeEventFilter(this);
    m_reported = SystemLook::None;
    m_scheme = System;
    apply();
}

void Theme::listenTo(SystemLook* source)
{
    delete m_source;
    m_source = source;
    source->setParent(this);
    connect(source, &SystemLook::reported, this, &Theme::showReported);
    source->ask();
}

void Theme::showReported(SystemLook::Preference preference)
{
    if (preference == m_reported)
        return;
    m_reported = preference;
    if (m_scheme != System)
        return;
    const QPalette before = QApplication::palette();
    applyQuietly();
    if (QApplication::palette() != before)
        Q_EMIT changed();
}

void Theme::setScheme(Scheme scheme)
{
    if (scheme == m_scheme)
        return;
    m_scheme = scheme;
    applyQuietly();
    Q_EMIT changed();
}

// The application announces the new palette as it does one of the system's.
void Theme::applyQuietly()
{
    m_isApplying = true;
    apply();
    m_isApplying = false;
}

void Theme::apply()
{
    const auto show = [](const QString& style, const QPalette& palette) {
        if (QApplication::style()->name() != style)
            QApplication::setStyle(style);
        QApplication::setPalette(palette);
    };
    const QString ownStyle = QStringLiteral("fusion");
    if (m_scheme != System) {
        show(ownStyle, palette(m_scheme));
        return;
    }
    show(m_systemStyle, palette(System));
    if (m_reported == SystemLook::Dark && !isDark())
        show(ownStyle, palette(Dark));
}

bool Theme::isDark()
{
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QPalette Theme::palette(Scheme scheme)
{
    if (scheme == System)
        return QPalette();
    return paletteOf(scheme == Dark ? darkColors : lightColors);
}

QString Theme::name(Scheme scheme)
{
    switch (scheme) {
    case Light:
        return QStringLiteral("light");
    case Dark:
        return QStringLiteral("dark");
    case System:
        break;
    }
    return QStringLiteral("system");
}

std::optional<Theme::Scheme> Theme::schemeOf(const QString& name)
{
    for (const Scheme scheme : {System, Light, Dark}) {
        if (name == Theme::name(scheme))
            return scheme;
    }
    return std::nullopt;
}

// Some styles mark the harmless answer of a dialog red and the other one green.
void Theme::leaveOutButtonIcon(QObject* object)
{
    auto* const button = qobject_cast<QPushButton*>(object);
    if (!button || !qobject_cast<QDialogButtonBox*>(button->parent()))
        return;
    button->setIcon({});
    // A dialog that is open gets new ones from another style, perhaps only after this event.
    QMetaObject::invokeMethod(
        button, [button] { button->setIcon({}); }, Qt::QueuedConnection);
}

bool Theme::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && m_scheme == System && !m_isApplying)
        Q_EMIT changed();
    if (event->type() == QEvent::Polish || event->type() == QEvent::Show || event->type() == QEvent::StyleChange)
        leaveOutButtonIcon(watched);
    return QObject::eventFilter(watched, event);
}

} // namespace Workbench
