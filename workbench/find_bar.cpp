#include "find_bar.h"

#include "field_mark.h"
#include "icons.h"
#include "navigation.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <limits>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

FindBar::FindBar(Navigation* navigation, QWidget* parent)
    : QWidget(parent),
      m_navigation(navigation),
      m_search(navigation->model()),
      m_field(new QLineEdit(this)),
      m_details(new QCheckBox(tr("&Descriptions and attributes too"), this)),
      m_count(new QLabel(this)),
      m_note(new QLabel(this))
{
    setObjectName(QStringLiteral("findBar"));
    auto* const label = new QLabel(tr("Find:"), this);
    label->setBuddy(m_field);
    m_field->setAccessibleName(tr("Find items"));
    m_field->setPlaceholderText(tr("Label of an item"));
    m_field->setClearButtonEnabled(true);
    m_field->setMinimumWidth(120);
    m_field->setMaximumWidth(320);
    m_field->installEventFilter(this);

    const auto button = [this](const char* name, const QString& text) {
        auto* const made = new QToolButton(this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAutoRaise(true);
        made->setToolTip(text);
        made->setAccessibleName(text);
        return made;
    };
    QToolButton* const previous = button("findPreviousButton", tr("Previous match (Shift+Return)"));
    previous->setArrowType(Qt::UpArrow);
    QToolButton* const next = button("findNextButton", tr("Next match (Return)"));
    next->setArrowType(Qt::DownArrow);
    QToolButton* const closing = button("closeFindBarButton", tr("Close (Escape)"));
    closing->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    for (QWidget* const widget :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(m_field), static_cast<QWidget*>(previous),
          static_cast<QWidget*>(next), static_cast<QWidget*>(m_count), static_cast<QWidget*>(m_details),
          static_cast<QWidget*>(m_note)})
        layout->addWidget(widget);
    layout->setStretchFactor(m_field, 1);
    layout->addStretch(1);
    layout->addWidget(closing);

    connect(m_field, &QLineEdit::textChanged, this, &FindBar::searchAnew);
    connect(m_details, &QCheckBox::toggled, this, &FindBar::searchAnew);
    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(closing, &QToolButton::clicked, this, &FindBar::close);
    // The ids of one document mean something else in the next.
    connect(navigation->model(), &QAbstractItemModel::modelReset, this, [this] { m_current.reset(); });
    connect(&m_search, &ItemSearch::progressed, this, &FindBar::showCount);
    connect(&m_search, &ItemSearch::finished, this, &FindBar::onFinished);
    hide();
}

QString FindBar::countText() const
{
    return m_count->text();
}

QString FindBar::note() const
{
    return m_note->text();
}

void FindBar::open()
{
    show();
    m_field->setFocus();
    m_field->selectAll();
    m_current.reset();
    if (!m_field->text().isEmpty() && !m_search.isRunning())
        searchAnew();
}

void FindBar::close()
{
    hide();
    m_search.stop();
    m_current.reset();
    m_pending.reset();
    m_navigation->widget()->view()->setFocus();
}

// The selected item, or the first instant of the window.
Match FindBar::anchor() const
{
    constexpr int none = std::numeric_limits<int>::min();
    const QList<int>& selected = m_navigation->widget()->view()->selectedItemIds();
    if (selected.isEmpty())
        return m_current.value_or(Match{m_navigation->window().start, none, none});
    if (m_current && m_current->id == selected.last())
        return *m_current;
    try {
        // A row above all others: the item itself is found when the text fits it.
        return {std::as_const(*m_navigation->model()).item(selected.last())->startTime(), none, none};
    } catch (const QString&) {
        return {m_navigation->window().start, none, none};
    }
}

// Somebody may have selected another match meanwhile, or it was selected before the bar was opened.
void FindBar::goOnFromSelection()
{
    const QList<int>& selected = m_navigation->widget()->view()->selectedItemIds();
    if (selected.isEmpty() || (m_current && m_current->id == selected.last()))
        return;
    const std::vector<Match>& matches = m_search.matches();
    const auto found = std::find_if(matches.begin(), matches.end(),
                                    [&selected](const Match& match) { return match.id == selected.last(); });
    m_current = found == matches.end() ? std::nullopt : std::optional<Match>(*found);
}

void FindBar::searchAnew()
{
    // One looks on from where one is, also while the text becomes longer and shorter again.
    m_origin = anchor();
    m_note->clear();
    m_pending = 0;
    m_search.start(m_field->text(), m_details->isChecked());
    showCount();
}

void FindBar::findNext()
{
    find(1);
}

void FindBar::findPrevious()
{
    find(-1);
}

void FindBar::find(int direction)
{
    if (!isVisible() || m_field->text().isEmpty()) {
        const bool canGoOn = !m_field->text().isEmpty();
        open();
        if (!canGoOn)
            return;
    }
    if (m_search.matches().empty()) {
        if (m_search.isRunning())
            m_pending = direction;
        return;
    }
    m_pending.reset();
    goOnFromSelection();
    const std::vector<Match>& matches = m_search.matches();
    const Match from = anchor();
    // Without a match to go on from, one that begins right there is the next.
    const auto next = m_current ? std::upper_bound(matches.begin(), matches.end(), from)
                                : std::lower_bound(matches.begin(), matches.end(), from);
    const auto previous = std::lower_bound(matches.begin(), matches.end(), from);
    const bool wraps = direction > 0 ? next == matches.end() : previous == matches.begin();
    m_note->clear();
    if (wraps)
        m_note->setText(direction > 0 ? tr("Went on from the start") : tr("Went on from the end"));
    if (direction > 0)
        goTo(wraps ? 0 : static_cast<std::size_t>(next - matches.begin()));
    else
        goTo(wraps ? matches.size() - 1 : static_cast<std::size_t>(previous - matches.begin()) - 1);
}

void FindBar::goTo(std::size_t index)
{
    m_current = m_search.matches()[index];
    m_navigation->goToItem(m_current->id);
    showCount();
}

void FindBar::onFinished()
{
    const std::vector<Match>& matches = m_search.matches();
    // What was gone to may have been moved in time since.
    if (m_current) {
        const auto same = std::find_if(matches.begin(), matches.end(),
                                       [this](const Match& match) { return match.id == m_current->id; });
        if (same != matches.end())
            m_current = *same;
    }
    const std::optional<int> pending = std::exchange(m_pending, std::nullopt);
    if (pending && !matches.empty()) {
        if (*pending != 0) {
            find(*pending);
        } else {
            const auto found = std::lower_bound(matches.begin(), matches.end(), m_origin);
            if (found == matches.end())
                m_note->setText(tr("Went on from the start"));
            goTo(found == matches.end() ? 0 : static_cast<std::size_t>(found - matches.begin()));
        }
    }
    showCount();
}

std::optional<std::size_t> FindBar::currentIndex() const
{
    if (!m_current)
        return std::nullopt;
    const std::vector<Match>& matches = m_search.matches();
    const auto found = std::lower_bound(matches.begin(), matches.end(), *m_current);
    if (found == matches.end() || found->id != m_current->id)
        return std::nullopt;
    return static_cast<std::size_t>(found - matches.begin());
}

void FindBar::showCount()
{
    const qsizetype count = static_cast<qsizetype>(m_search.matches().size());
    const bool isSearching = m_search.isRunning() && count == 0;
    const bool isEmpty = m_field->text().isEmpty();
    const auto index = currentIndex();
    QString text;
    if (!isEmpty && count == 0)
        text = isSearching ? tr("Searching…") : tr("No match");
    else if (index)
        text = tr("%L1 of %L2").arg(*index + 1).arg(count);
    else if (count > 0)
        text = count == 1 ? tr("1 match") : tr("%L1 matches").arg(count);
    m_count->setText(text);
    setMarkedBad(m_field, !isEmpty && count == 0 && !isSearching);
}

bool FindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_field || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* const key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    find(key->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
    return true;
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace Workbench
