#include "task_progress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace Workbench {

TaskProgress::TaskProgress(QWidget* parent)
    : QWidget(parent), m_label(new QLabel(this)), m_bar(new QProgressBar(this)), m_cancelButton(new QToolButton(this))
{
    constexpr int thousandths = 1000;
    constexpr int barWidth = 160;
    constexpr int delay = 200; // milliseconds
    m_label->setObjectName(QStringLiteral("taskText"));
    // Names of files may look like mark-up.
    m_label->setTextFormat(Qt::PlainText);
    m_bar->setObjectName(QStringLiteral("taskBar"));
    m_bar->setRange(0, thousandths);
    m_bar->setFixedWidth(barWidth);
    m_cancelButton->setObjectName(QStringLiteral("taskCancel"));
    m_cancelButton->setText(tr("Cancel"));
    connect(m_cancelButton, &QToolButton::clicked, this, &TaskProgress::cancelRequested);

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancelButton);
    m_delay.setSingleShot(true);
    m_delay.setInterval(delay);
    connect(&m_delay, &QTimer::timeout, this, &QWidget::show);
    hide();
}

void TaskProgress::start(const QString& text)
{
    setText(text);
    setShare(0.0);
    m_delay.start();
}

void TaskProgress::setShare(double share)
{
    m_bar->setValue(static_cast<int>(share * m_bar->maximum()));
}

void TaskProgress::setText(const QString& text)
{
    m_label->setText(text);
}

void TaskProgress::stop()
{
    m_delay.stop();
    hide();
}

} // namespace Workbench
