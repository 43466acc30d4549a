#include "csv_options_form.h"

#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimeZone>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// The data of the entry "Other…" of the delimiters, which is no character.
constexpr int otherDelimiter = -1;

// The first entry, without data, leaves it to the kit.
template <typename Value>
std::optional<Value> said(const QComboBox* box)
{
    const QVariant data = box->currentData();
    if (!data.isValid())
        return {};
    return static_cast<Value>(data.toInt());
}

std::optional<QChar> saidCharacter(const QComboBox* box)
{
    const auto code = said<char16_t>(box);
    return code ? std::optional(QChar(*code)) : std::nullopt;
}

template <typename Value>
void select(QComboBox* box, const std::optional<Value>& value)
{
    box->setCurrentIndex(value ? std::max(0, box->findData(static_cast<int>(*value))) : 0);
}

void selectCharacter(QComboBox* box, std::optional<QChar> character)
{
    select(box, character ? std::optional<int>(character->unicode()) : std::nullopt);
}

template <typename Value>
QString textOf(const QComboBox* box, const std::optional<Value>& value)
{
    return value ? box->itemText(box->findData(static_cast<int>(*value))) : QString();
}

// "Comma", or the character itself where it has no name.
QString textOfCharacter(const QComboBox* box, std::optional<QChar> character)
{
    if (!character)
        return {};
    const int index = box->findData(static_cast<int>(character->unicode()));
    return index > 0 ? box->itemText(index) : QString(*character);
}

void setDetectedText(QComboBox* box, const QString& text)
{
    const QString entry = text.isEmpty() ? CsvOptionsForm::tr("Detect") : CsvOptionsForm::tr("Detected: %1").arg(text);
    box->setItemText(0, entry);
    if (box->isEditable())
        box->lineEdit()->setPlaceholderText(entry);
}

QString patternHelp()
{
    return CsvOptionsForm::tr("Letters of a date pattern: d or dd day, M or MM month (MMM, MMMM its name), yy or yyyy "
                              "year, H or HH hour (h with AP for am and pm), mm minute, ss second, z or zzz fraction "
                              "of a second, t zone. Everything else stands for itself, 'text' between apostrophes too. "
                              "Example: dd.MM.yyyy HH:mm reads 24.12.2026 18:30.");
}

} // namespace

CsvOptionsForm::CsvOptionsForm(QWidget* parent) : QWidget(parent)
{
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(5, 1);
    grid->setColumnMinimumWidth(3, 12);

    createDelimiter();
    m_decimalPoint = addBox("decimalPoint", tr("Decimal &point:"), 1, 0);
    m_decimalPoint->addItem(tr("Point: 1.5"), int{u'.'});
    m_decimalPoint->addItem(tr("Comma: 1,5"), int{u','});
    m_encoding = addBox("encoding", tr("&Encoding:"), 2, 0);
    m_encoding->addItem(QStringLiteral("UTF-8"), static_cast<int>(CsvEncoding::Utf8));
    m_encoding->addItem(QStringLiteral("UTF-16"), static_cast<int>(CsvEncoding::Utf16));
    m_encoding->addItem(QStringLiteral("Windows-1252"), static_cast<int>(CsvEncoding::Windows1252));
    m_encoding->addItem(QStringLiteral("Latin-1 (ISO 8859-1)"), static_cast<int>(CsvEncoding::Latin1));
    m_timeUnit = addBox("timeUnit", tr("&Unit of plain numbers:"), 0, 4);
    m_timeUnit->addItem(tr("Seconds"), static_cast<int>(CsvTimeUnit::Seconds));
    m_timeUnit->addItem(tr("Milliseconds"), static_cast<int>(CsvTimeUnit::Milliseconds));
    m_timeUnit->addItem(tr("Microseconds"), static_cast<int>(CsvTimeUnit::Microseconds));
    m_timeUnit->addItem(tr("Nanoseconds"), static_cast<int>(CsvTimeUnit::Nanoseconds));
    createPattern();
    createZone();
    setDetected({});
}

QComboBox* CsvOptionsForm::addBox(const char* name, const QString& label, int row, int column)
{
    auto* const grid = static_cast<QGridLayout*>(layout());
    auto* const box = new QComboBox(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setAccessibleName(QString(label).remove(u'&').remove(u':'));
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(20);
    box->addItem(QString());
    auto* const buddy = new QLabel(label, this);
    buddy->setBuddy(box);
    grid->addWidget(buddy, row, column);
    grid->addWidget(box, row, column + 1);
    connect(box, &QComboBox::currentIndexChanged, this, &CsvOptionsForm::changed);
    return box;
}

QComboBox* CsvOptionsForm::addEditableBox(const char* name, const QString& label, int row, int column)
{
    QComboBox* const box = addBox(name, label, row, column);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->lineEdit()->setClearButtonEnabled(true);
    // Detected is what is empty: typing begins at once, and taking everything away goes back to it.
    box->setCurrentIndex(-1);
    connect(box, &QComboBox::activated, box, [box](int index) {
        if (index != 0)
            return;
        box->setCurrentIndex(-1);
        box->clearEditText();
    });
    connect(box, &QComboBox::editTextChanged, this, &CsvOptionsForm::changed);
    return box;
}

void CsvOptionsForm::createDelimiter()
{
    m_delimiter = addBox("delimiter", tr("&Delimiter:"), 0, 0);
    m_delimiter->addItem(tr("Comma"), int{u','});
    m_delimiter->addItem(tr("Semicolon"), int{u';'});
    m_delimiter->addItem(tr("Tab"), int{u'\t'});
    m_delimiter->addItem(tr("Bar"), int{u'|'});
    m_delimiter->addItem(tr("Other…"), otherDelimiter);
    m_otherDelimiter = new QLineEdit(this);
    m_otherDelimiter->setObjectName(QStringLiteral("otherDelimiter"));
    m_otherDelimiter->setAccessibleName(tr("Other delimiter"));
    m_otherDelimiter->setToolTip(tr("The one character that stands between two fields"));
    m_otherDelimiter->setMaxLength(1);
    m_otherDelimiter->setFixedWidth(fontMetrics().averageCharWidth() * 5);
    static_cast<QGridLayout*>(layout())->addWidget(m_otherDelimiter, 0, 2);
    connect(m_delimiter, &QComboBox::currentIndexChanged, this, &CsvOptionsForm::updateOther);
    connect(m_delimiter, &QComboBox::activated, m_otherDelimiter, [this] {
        if (!m_otherDelimiter->isHidden())
            m_otherDelimiter->setFocus();
    });
    connect(m_otherDelimiter, &QLineEdit::textChanged, this, &CsvOptionsForm::changed);
    updateOther();
}

void CsvOptionsForm::createPattern()
{
    m_dateFormat = addEditableBox("dateFormat", tr("Date p&attern:"), 1, 4);
    // Completion takes MM for mm, and would not let "dd" stand for itself.
    m_dateFormat->setCompleter(nullptr);
    for (const char* const pattern :
         {"yyyy-MM-dd", "yyyy-MM-dd HH:mm", "yyyy-MM-dd HH:mm:ss", "dd.MM.yyyy", "dd.MM.yyyy HH:mm",
          "dd.MM.yyyy HH:mm:ss", "dd/MM/yyyy", "dd/MM/yyyy HH:mm", "dd/MM/yyyy HH:mm:ss", "MM/dd/yyyy",
          "MM/dd/yyyy HH:mm", "M/d/yyyy h:mm AP", "yyyyMMdd", "yyyyMMddHHmmss"})
        m_dateFormat->addItem(QString::fromLatin1(pattern), QString::fromLatin1(pattern));
    m_dateFormat->setToolTip(QStringLiteral("<span>%1</span>").arg(patternHelp()));
    m_dateFormat->setAccessibleDescription(patternHelp());
    auto* const help = new QLabel(patternHelp(), this);
    help->setObjectName(QStringLiteral("dateFormatHelp"));
    help->setWordWrap(true);
    help->setTextFormat(Qt::PlainText);
    static_cast<QGridLayout*>(layout())->addWidget(help, 3, 0, 1, 6);
}

void CsvOptionsForm::createZone()
{
    m_timeZone = addEditableBox("timeZone", tr("&Zone of times without one:"), 2, 4);
    m_timeZone->addItem(QStringLiteral("UTC"));
    for (const QByteArray& id : QTimeZone::availableTimeZoneIds()) {
        if (id != "UTC")
            m_timeZone->addItem(QString::fromLatin1(id));
    }
    // "berlin" finds "Europe/Berlin".
    m_timeZone->completer()->setFilterMode(Qt::MatchContains);
    m_timeZone->completer()->setCaseSensitivity(Qt::CaseInsensitive);
    m_timeZone->completer()->setCompletionMode(QCompleter::PopupCompletion);
}

void CsvOptionsForm::updateOther()
{
    m_otherDelimiter->setVisible(m_delimiter->currentData() == otherDelimiter);
}

void CsvOptionsForm::setOptions(const CsvOptions& options)
{
    {
        const QSignalBlocker blocker(this);
        selectCharacter(m_delimiter, options.delimiter);
        const bool isOther = options.delimiter && m_delimiter->currentIndex() == 0;
        if (isOther)
            m_delimiter->setCurrentIndex(m_delimiter->findData(otherDelimiter));
        m_otherDelimiter->setText(isOther ? QString(*options.delimiter) : QString());
        selectCharacter(m_decimalPoint, options.decimalPoint);
        select(m_encoding, options.encoding);
        select(m_timeUnit, options.timeUnit);
        m_dateFormat->setEditText(options.dateFormat);
        m_timeZone->setEditText(QString::fromLatin1(options.timeZone));
    }
    updateOther();
}

CsvOptions CsvOptionsForm::options() const
{
    CsvOptions options;
    if (m_delimiter->currentData() != otherDelimiter)
        options.delimiter = saidCharacter(m_delimiter);
    else if (!m_otherDelimiter->text().isEmpty())
        options.delimiter = m_otherDelimiter->text().front();
    options.decimalPoint = saidCharacter(m_decimalPoint);
    options.encoding = said<CsvEncoding>(m_encoding);
    options.timeUnit = said<CsvTimeUnit>(m_timeUnit);
    options.dateFormat = m_dateFormat->currentText();
    const QByteArray zone = m_timeZone->currentText().trimmed().toLatin1();
    if (QTimeZone::isTimeZoneIdAvailable(zone))
        options.timeZone = zone;
    return options;
}

void CsvOptionsForm::setDetected(const CsvOptions& detected)
{
    setDetectedText(m_delimiter, textOfCharacter(m_delimiter, detected.delimiter));
    setDetectedText(m_decimalPoint, textOfCharacter(m_decimalPoint, detected.decimalPoint));
    setDetectedText(m_encoding, textOf(m_encoding, detected.encoding));
    setDetectedText(m_timeUnit, textOf(m_timeUnit, detected.timeUnit));
    setDetectedText(m_dateFormat, detected.dateFormat.isEmpty() ? tr("ISO 8601") : detected.dateFormat);
    setDetectedText(m_timeZone,
                    detected.timeZone.isEmpty() ? QStringLiteral("UTC") : QString::fromLatin1(detected.timeZone));
}

QString CsvOptionsForm::problem() const
{
    if (m_delimiter->currentData() == otherDelimiter && m_otherDelimiter->text().isEmpty())
        return tr("Type the character that stands between two fields.");
    const QString zone = m_timeZone->currentText().trimmed();
    if (!zone.isEmpty() && !QTimeZone::isTimeZoneIdAvailable(zone.toLatin1()))
        return tr("There is no time zone “%1”.").arg(zone);
    return {};
}

} // namespace Workbench
