#include "view_menus.h"

#include "icons.h"
#include "theme.h"
#include "view_settings.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QInputDialog>
#include <QMenu>

namespace Workbench {

using namespace VeskTimeline;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(ViewMenus)
};

constexpr int second = 1000;
constexpr int minute = 60 * second;
constexpr int hour = 60 * minute;
constexpr int day = 24 * hour;

QString durationText(int msecs)
{
    if (msecs == 0)
        return Tr::tr("Off");
    if (msecs % day == 0)
        return Tr::tr("%1 d").arg(msecs / day);
    if (msecs % hour == 0)
        return Tr::tr("%1 h").arg(msecs / hour);
    if (msecs % minute == 0)
        return Tr::tr("%1 min").arg(msecs / minute);
    if (msecs % second == 0)
        return Tr::tr("%1 s").arg(msecs / second);
    return Tr::tr("%1 ms").arg(msecs);
}

template <typename Get, typename Set>
QAction* addToggle(QMenu* menu, ViewSettings* settings, const char* name, const QString& text, Get get, Set set)
{
    const QString objectName = QLatin1String(name);
    QAction* const action = menu->addAction(text);
    action->setObjectName(objectName);
    if (hasIcon(objectName))
        action->setIcon(icon(objectName));
    action->setCheckable(true);
    action->setChecked((settings->*get)());
    QObject::connect(action, &QAction::toggled, settings, set);
    QObject::connect(settings, &ViewSettings::changed, action,
                     [action, settings, get] { action->setChecked((settings->*get)()); });
    return action;
}

/// An entry that is one of several; it is checked whenever isChosen() says so.
template <typename Source, typename IsChosen, typename Choose>
void addChoice(QActionGroup* group, QMenu* menu, const Source* source, const QString& text, IsChosen isChosen,
               Choose choose)
{
    QAction* const action = menu->addAction(text);
    action->setCheckable(true);
    group->addAction(action);
    action->setChecked(isChosen());
    QObject::connect(action, &QAction::triggered, group, choose);
    QObject::connect(source, &Source::changed, action, [action, isChosen] { action->setChecked(isChosen()); });
}

/// Lengths to choose from, and one that is asked for.
template <typename Get, typename Set>
void addLengths(QMenu* menu, ViewSettings* settings, const QList<int>& lengths, Get get, Set set)
{
    auto* const group = new QActionGroup(menu);
    for (const int length : lengths) {
        addChoice(
            group, menu, settings, durationText(length),
            [settings, get, length] { return (settings->*get)() == length; },
            [settings, set, length] { (settings->*set)(length); });
    }
    QAction* const custom = menu->addAction(QString());
    custom->setObjectName(menu->objectName() + QStringLiteral("Custom"));
    custom->setCheckable(true);
    group->addAction(custom);
    const auto update = [custom, settings, get, lengths] {
        const int length = (settings->*get)();
        custom->setChecked(!lengths.contains(length));
        custom->setText(lengths.contains(length) ? Tr::tr("Custom…")
                                                 : Tr::tr("Custom (%1)…").arg(durationText(length)));
    };
    update();
    QObject::connect(settings, &ViewSettings::changed, custom, update);
    QObject::connect(custom, &QAction::triggered, menu, [menu, settings, get, set] {
        bool isAccepted = false;
        const double seconds =
            QInputDialog::getDouble(menu->parentWidget(), menu->title().remove(u'&'), Tr::tr("Seconds:"),
                                    (settings->*get)() / double(second), 0, double(day) / second, 3, &isAccepted);
        if (isAccepted)
            (settings->*set)(qRound(seconds * second));
        // The click has moved the mark, whether a length was given or not.
        Q_EMIT settings->changed();
    });
}

QMenu* addSubmenu(QMenu* menu, const char* name, const QString& title)
{
    QMenu* const submenu = menu->addMenu(title);
    submenu->setObjectName(QLatin1String(name));
    return submenu;
}

} // namespace

void addSnapEntries(QMenu* menu, ViewSettings* settings)
{
    QAction* const snap =
        addToggle(menu, settings, "snap", Tr::tr("&Snap"), &ViewSettings::isSnapEnabled, &ViewSettings::setSnapEnabled);
    snap->setToolTip(Tr::tr("Items snap to whole steps and to each other's edges"));
    addLengths(addSubmenu(menu, "snapStep", Tr::tr("Snap s&tep")), settings,
               {0, 500, second, 5 * second, 10 * second, 30 * second, minute, 5 * minute, 10 * minute, 15 * minute,
                30 * minute, hour, 6 * hour, day},
               &ViewSettings::snapStep, &ViewSettings::setSnapStep);
    addLengths(addSubmenu(menu, "snapTolerance", Tr::tr("Snap to&lerance")), settings,
               {0, second, 5 * second, 10 * second, 30 * second, minute, 5 * minute, 15 * minute, hour},
               &ViewSettings::snapTolerance, &ViewSettings::setSnapTolerance);
}

void addLiveEntries(QMenu* menu, ViewSettings* settings)
{
    addToggle(menu, settings, "live", Tr::tr("Li&ve"), &ViewSettings::isLive, &ViewSettings::setLive)
        ->setToolTip(Tr::tr("A line shows the present time"));
    addToggle(menu, settings, "follow_live", Tr::tr("Follow the prese&nt"), &ViewSettings::followsLive,
              &ViewSettings::setFollowsLive);
}

void addRulerEntries(QMenu* menu, ViewSettings* settings)
{
    QMenu* const formats = addSubmenu(menu, "rulerFormat", Tr::tr("&Ruler format"));
    auto* const formatGroup = new QActionGroup(formats);
    using Format = std::optional<DateTime::Format>;
    const QList<std::pair<QString, Format>> choices{{Tr::tr("Automatic by zoom"), std::nullopt},
                                                    {Tr::tr("Date-time group"), DateTime::DTG},
                                                    {Tr::tr("Hours, minutes, seconds"), DateTime::DTGShort},
                                                    {Tr::tr("Hours, minutes"), DateTime::DTGVeryShort},
                                                    {Tr::tr("ISO 8601, local time"), DateTime::ISODate},
                                                    {Tr::tr("Date and time, local time"), DateTime::Standard}};
    for (const auto& choice : choices) {
        const Format format = choice.second;
        addChoice(
            formatGroup, formats, settings, choice.first,
            [settings, format] { return settings->rulerFormat() == format; },
            [settings, format] { settings->setRulerFormat(format); });
    }
    QMenu* const zones = addSubmenu(menu, "zone", Tr::tr("Time &zone"));
    auto* const zoneGroup = new QActionGroup(zones);
    for (const QChar letter : ViewSettings::zones()) {
        const char zone = letter.toLatin1();
        addChoice(
            zoneGroup, zones, settings, ViewSettings::zoneText(zone),
            [settings, zone] { return settings->zone() == zone; }, [settings, zone] { settings->setZone(zone); });
    }
    addToggle(menu, settings, "show_limits", Tr::tr("Show li&mits"), &ViewSettings::areLimitsVisible,
              &ViewSettings::setLimitsVisible);
    addToggle(menu, settings, "show_indicator", Tr::tr("Show in&dicator"), &ViewSettings::isIndicatorVisible,
              &ViewSettings::setIndicatorVisible);
    addToggle(menu, settings, "show_hover", Tr::tr("Show time under the &pointer"), &ViewSettings::isHoverVisible,
              &ViewSettings::setHoverVisible);
}

void addThemeEntries(QMenu* menu, Theme* theme)
{
    QMenu* const looks = addSubmenu(menu, "theme", Tr::tr("Loo&k"));
    auto* const group = new QActionGroup(looks);
    const QList<std::pair<QString, Theme::Scheme>> choices{
        {Tr::tr("As the &system"), Theme::System}, {Tr::tr("&Light"), Theme::Light}, {Tr::tr("&Dark"), Theme::Dark}};
    for (const auto& choice : choices) {
        const Theme::Scheme scheme = choice.second;
        addChoice(
            group, looks, theme, choice.first, [theme, scheme] { return theme->scheme() == scheme; },
            [theme, scheme] { theme->setScheme(scheme); });
    }
}

} // namespace Workbench
