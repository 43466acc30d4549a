#include "edit_field.h"

#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVBoxLayout>

#include <utility>

namespace Workbench {

namespace {

constexpr int visibleLines = 4;

// Red on any ground: of the palette's two ends the one that is farther from it.
QColor errorColor(const QPalette& palette)
{
    constexpr int middle = 128;
    return palette.color(QPalette::Window).lightness() < middle ? QColor(0xFF, 0x8A, 0x80) : QColor(0xB0, 0x00, 0x20);
}

} // namespace

EditField::EditField(const QString& name, Lines lines, Commit commit, QWidget* parent)
    : QWidget(parent), m_commit(std::move(commit)), m_error(new QLabel(this))
{
    setObjectName(name);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    QWidget* edit = nullptr;
    if (lines == OneLine) {
        m_line = new QLineEdit(this);
        edit = m_line;
    } else {
        m_lines = new QPlainTextEdit(this);
        m_lines->setTabChangesFocus(true);
        m_lines->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        m_lines->setFixedHeight(visibleLines * fontMetrics().lineSpacing() + 2 * m_lines->frameWidth() + 8);
        edit = m_lines;
    }
    edit->installEventFilter(this);
    setFocusProxy(edit);
    layout->addWidget(edit);
    m_error->setObjectName(name + QStringLiteral("Error"));
    m_error->setWordWrap(true);
    m_error->hide();
    layout->addWidget(m_error);
}

void EditField::showValue(const QString& text, bool isMixed)
{
    if (isPending())
        return;
    const QString placeholder = isMixed ? tr("(mixed)") : QString();
    if (m_line)
        m_line->setPlaceholderText(placeholder);
    else
        m_lines->setPlaceholderText(placeholder);
    m_shown = isMixed ? QString() : text;
    if (this->text() != m_shown)
        setText(m_shown);
}

QString EditField::text() const
{
    return m_line ? m_line->text() : m_lines->toPlainText();
}

void EditField::setText(const QString& text)
{
    if (m_line)
        m_line->setText(text);
    else
        m_lines->setPlainText(text);
    if (m_line)
        m_line->setCursorPosition(0);
}

bool EditField::isPending() const
{
    return m_line ? m_line->isModified() : m_lines->document()->isModified();
}

void EditField::setPending(bool isPending)
{
    if (m_line)
        m_line->setModified(isPending);
    else
        m_lines->document()->setModified(isPending);
}

QString EditField::error() const
{
    return m_error->isHidden() ? QString() : m_error->text();
}

void EditField::clearError()
{
    m_error->hide();
}

void EditField::startEditing()
{
    if (m_line) {
        m_line->setFocus();
        m_line->selectAll();
    } else {
        m_lines->setFocus();
        m_lines->selectAll();
    }
}

void EditField::reset()
{
    setText(m_shown);
    setPending(false);
}

void EditField::leave()
{
    commit(true);
}

void EditField::commit(bool isLeaving)
{
    if (!isPending())
        return;
    // Before the commit: what it changes is shown by showValue(), which leaves pending text alone.
    const QString typed = text();
    setPending(false);
    const QString refusal = m_commit(typed);
    if (refusal.isEmpty()) {
        m_error->hide();
        m_shown = typed;
        return;
    }
    QPalette palette = m_error->palette();
    palette.setColor(QPalette::WindowText, errorColor(palette));
    m_error->setPalette(palette);
    m_error->setText(refusal);
    m_error->show();
    if (isLeaving)
        reset();
    else
        setPending(true);
}

bool EditField::filterKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (isReturn && (m_line || modifiers.testFlag(Qt::ControlModifier))) {
        commit(false);
        return true;
    }
    if (key != Qt::Key_Escape || (!isPending() && m_error->isHidden()))
        return false;
    reset();
    m_error->hide();
    return true;
}

bool EditField::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* const press = static_cast<QKeyEvent*>(event);
        if (filterKey(press->key(), press->modifiers()))
            return true;
    } else if (event->type() == QEvent::FocusOut) {
        // A menu over the field is still part of editing it.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            commit(true);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Workbench
