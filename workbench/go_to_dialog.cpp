#include "go_to_dialog.h"

#include "field_mark.h"
#include "navigation.h"
#include "ruler_time.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QCalendarWidget>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace Workbench {

using VeskTimeline::Kit::TimeSpan;

namespace {

qint64 middleOf(const TimeSpan& span)
{
    return span.start + (span.end - span.start) / 2;
}

} // namespace

GoToDialog::GoToDialog(Navigation* navigation, QWidget* parent)
    : QDialog(parent),
      m_navigation(navigation),
      m_here(middleOf(navigation->window())),
      m_field(new QLineEdit(this)),
      m_explanation(new QLabel(this)),
      m_calendar(new QCalendarWidget(this))
{
    setWindowTitle(tr("Go to date and time"));
    auto* const label = new QLabel(tr("&Date and time:"), this);
    label->setBuddy(m_field);
    m_field->setPlaceholderText(tr("1972-12-07 05:33, 7 Dec 1972, 14:30, now, first, last, +3d, -2h"));
    m_explanation->setWordWrap(true);
    m_explanation->setTextFormat(Qt::PlainText);
    // Room for two lines, so that nothing jumps about while somebody types.
    m_explanation->setMinimumHeight(2 * fontMetrics().lineSpacing());
    m_explanation->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_calendar->setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(tr("&Go"), QDialogButtonBox::AcceptRole)->setDefault(true);

    auto* const layout = new QVBoxLayout(this);
    for (QWidget* const widget :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(m_field), static_cast<QWidget*>(m_explanation),
          static_cast<QWidget*>(m_calendar), static_cast<QWidget*>(buttons)})
        layout->addWidget(widget);

    connect(m_field, &QLineEdit::textChanged, this, &GoToDialog::explain);
    connect(m_calendar, &QCalendarWidget::clicked, this, &GoToDialog::take);
    connect(m_calendar, &QCalendarWidget::activated, this, [this](const QDate& date) {
        take(date);
        accept();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &GoToDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &GoToDialog::reject);
    // To the minute, as one would type it.
    m_field->setText(rulerDateTime(m_here).toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    m_field->selectAll();
    m_field->setFocus();
}

QString GoToDialog::explanation() const
{
    return m_explanation->text();
}

TimeEntryContext GoToDialog::context() const
{
    return {QDateTime::currentMSecsSinceEpoch(), m_here, m_navigation->documentSpan(), rulerOffsetHours()};
}

void GoToDialog::explain()
{
    const TimeEntry entry = parseTimeEntry(m_field->text(), context());
    setMarkedBad(m_field, !entry.isOk() && !m_field->text().trimmed().isEmpty());
    if (!entry.isOk()) {
        m_explanation->setText(entry.error);
        return;
    }
    const QDateTime shown = rulerDateTime(entry.time);
    m_explanation->setText(tr("%1, %2").arg(locale().dayName(shown.date().dayOfWeek()), rulerTimeText(entry.time)));
    const QSignalBlocker blocker(m_calendar);
    m_calendar->setSelectedDate(shown.date());
}

// A time of day that was typed stays.
void GoToDialog::take(const QDate& date)
{
    static const QRegularExpression clock(QStringLiteral("\\d{1,2}:\\d{1,2}.*$"));
    const QString timeOfDay = clock.match(m_field->text()).captured();
    m_field->setText((date.toString(QStringLiteral("yyyy-MM-dd")) + u' ' + timeOfDay).trimmed());
}

void GoToDialog::accept()
{
    const TimeEntry entry = parseTimeEntry(m_field->text(), context());
    if (!entry.isOk()) {
        setMarkedBad(m_field, true);
        m_explanation->setText(entry.error);
        m_field->setFocus();
        m_field->selectAll();
        return;
    }
    // Of a day one wants to see what comes in it, of a time what is around it.
    if (entry.isWholeDay)
        m_navigation->goToTime(entry.time);
    else
        m_navigation->centreOn(entry.time);
    if (auto* const header = m_navigation->widget()->header(); header && !header->indicatorLocked())
        header->setIndicatorTime(entry.time);
    QDialog::accept();
}

} // namespace Workbench
