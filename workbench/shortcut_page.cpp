#include "shortcut_page.h"

#include <QAction>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Workbench {

namespace {

QString plainText(QString text)
{
    return text.remove(u'&');
}

void collect(const QMenu& menu, QList<ShortcutGroup::Entry>* entries)
{
    for (const QAction* const action : menu.actions()) {
        if (action->menu())
            collect(*action->menu(), entries);
        QStringList keys;
        for (const QKeySequence& shortcut : action->shortcuts())
            keys.append(shortcut.toString(QKeySequence::NativeText));
        if (!keys.isEmpty())
            entries->append({keys.join(QStringLiteral(", ")), plainText(action->text())});
    }
}

ShortcutGroup itemGestures()
{
    const auto tr = [](const char* text) { return ShortcutPage::tr(text); };
    return {tr("Items"),
            {{tr("Click"), tr("Select the item alone; the only selected one is unselected")},
             {tr("Ctrl+Click"), tr("Add the item to the selection, or take it out")},
             {tr("Drag from an empty place"), tr("Select the items within the rectangle")},
             {tr("Double click"), tr("Select the item alone and edit its label")},
             {tr("Double click on an empty place"), tr("Add an item there")},
             {tr("Right click, Menu key"), tr("What can be done with the items or the track")},
             {tr("Drag"), tr("Move the selected items; onto another row, move them to that track")},
             {tr("Drag an edge"), tr("Change start or end")},
             {tr("Shift while dragging"), tr("Do not snap")},
             {tr("Left, Right"), tr("Move the selected items by ten snap steps")},
             {tr("Ctrl+Left, Ctrl+Right"), tr("Move the selected items by one snap step")},
             {tr("Escape"), tr("Give up a move, and select nothing")}}};
}

ShortcutGroup viewGestures()
{
    const auto tr = [](const char* text) { return ShortcutPage::tr(text); };
    return {tr("View and ruler"),
            {{tr("Wheel"), tr("Scroll the tracks; over the ruler, scroll the time")},
             {tr("Ctrl+Wheel"), tr("Zoom")},
             {tr("Click on the ruler"), tr("Put the indicator there")},
             {tr("Drag the indicator"), tr("Move it")},
             {tr("Right click on the ruler"), tr("Next format of the ruler")},
             {tr("Drag the border of the track column"), tr("Change its width")}}};
}

ShortcutGroup trackGestures()
{
    const auto tr = [](const char* text) { return ShortcutPage::tr(text); };
    return {tr("Tracks"),
            {{tr("Click on +"), tr("Insert a track below")},
             {tr("Click on −"), tr("Remove the track, after a question")},
             {tr("Click on the arrow"), tr("Expand or collapse the track")},
             {tr("Double click on the name"), tr("Rename the track")}}};
}

ShortcutGroup overviewGestures()
{
    const auto tr = [](const char* text) { return ShortcutPage::tr(text); };
    return {tr("Overview strip"),
            {{tr("Click on the strip"), tr("Bring the window there")},
             {tr("Drag the frame"), tr("Move the window")},
             {tr("Drag an edge of the frame"), tr("Zoom")},
             {tr("Double click on the strip"), tr("Show the start at the widest zoom")},
             {tr("Wheel over the strip"), tr("Scroll by half a window; with Ctrl, zoom")},
             {tr("Left, Right in the strip"), tr("Scroll by a bit")},
             {tr("PgUp, PgDown in the strip"), tr("Scroll by a window")},
             {tr("Home, End in the strip"), tr("Go to the ends of the document")},
             {tr("+, − in the strip"), tr("Zoom")},
             {tr("Escape in the strip"), tr("Take a drag back")}}};
}

ShortcutGroup findGestures()
{
    const auto tr = [](const char* text) { return ShortcutPage::tr(text); };
    return {tr("Find bar"),
            {{tr("Return"), tr("Go to the next match")},
             {tr("Shift+Return"), tr("Go to the previous match")},
             {tr("Escape in the bar"), tr("Close the bar")}}};
}

} // namespace

QList<ShortcutGroup> menuShortcuts(const QMainWindow& window)
{
    QList<ShortcutGroup> groups;
    const auto* const bar = window.findChild<QMenuBar*>();
    if (!bar)
        return groups;
    for (const QAction* const action : bar->actions()) {
        if (!action->menu())
            continue;
        ShortcutGroup group{plainText(action->text()), {}};
        collect(*action->menu(), &group.entries);
        if (!group.entries.isEmpty())
            groups.append(group);
    }
    return groups;
}

QList<ShortcutGroup> timelineGestures()
{
    return {itemGestures(), viewGestures(), trackGestures(), overviewGestures(), findGestures()};
}

ShortcutPage::ShortcutPage(const QMainWindow& window, QWidget* parent)
    : QDialog(parent),
      m_groups(menuShortcuts(window) + timelineGestures()),
      m_search(new QLineEdit(this)),
      m_list(new QTreeWidget(this))
{
    setWindowTitle(tr("Shortcuts and gestures"));
    m_search->setPlaceholderText(tr("Search"));
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, &ShortcutPage::showOnly);
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({tr("Input"), tr("Effect")});
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    fill();

    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* const copy = buttons->addButton(tr("&Copy as text"), QDialogButtonBox::ActionRole);
    copy->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(text()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    constexpr QSize startSize(640, 560);
    resize(startSize);
}

void ShortcutPage::fill()
{
    for (const ShortcutGroup& group : std::as_const(m_groups)) {
        auto* const title = new QTreeWidgetItem(m_list, {group.title});
        QFont bold = m_list->font();
        bold.setBold(true);
        title->setFont(0, bold);
        title->setFirstColumnSpanned(true);
        for (const ShortcutGroup::Entry& entry : group.entries)
            new QTreeWidgetItem(title, {entry.input, entry.effect});
    }
    m_list->expandAll();
    m_list->resizeColumnToContents(0);
}

void ShortcutPage::showOnly(const QString& searched)
{
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const title = m_list->topLevelItem(i);
        bool isAnyShown = false;
        for (int row = 0; row < title->childCount(); ++row) {
            QTreeWidgetItem* const entry = title->child(row);
            const bool isShown = entry->text(0).contains(searched, Qt::CaseInsensitive) ||
                                 entry->text(1).contains(searched, Qt::CaseInsensitive);
            entry->setHidden(!isShown);
            isAnyShown = isAnyShown || isShown;
        }
        title->setHidden(!isAnyShown);
    }
}

QString ShortcutPage::text() const
{
    qsizetype width = 0;
    for (const ShortcutGroup& group : m_groups) {
        for (const ShortcutGroup::Entry& entry : group.entries)
            width = std::max(width, entry.input.size());
    }
    QString lines;
    for (const ShortcutGroup& group : m_groups) {
        lines += group.title + u'\n';
        for (const ShortcutGroup::Entry& entry : group.entries)
            lines += QStringLiteral("  %1  %2\n").arg(entry.input.leftJustified(width), entry.effect);
        lines += u'\n';
    }
    return lines;
}

} // namespace Workbench
