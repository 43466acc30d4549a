#include "csv_import_assistant.h"

#include "csv_import_dialog.h"

#include <QWidget>

#include <utility>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// What is said for this file, and the remembered where nothing is said.
CsvOptions together(const CsvOptions& said, const CsvOptions& remembered)
{
    CsvOptions options = remembered;
    for (auto names = said.columns.begin(); names != said.columns.end(); ++names)
        options.columns.insert(names.key(), names.value());
    const auto take = [](auto& option, const auto& value) {
        if (value)
            option = value;
    };
    take(options.delimiter, said.delimiter);
    take(options.decimalPoint, said.decimalPoint);
    take(options.encoding, said.encoding);
    take(options.timeUnit, said.timeUnit);
    if (!said.dateFormat.isEmpty())
        options.dateFormat = said.dateFormat;
    if (!said.timeZone.isEmpty())
        options.timeZone = said.timeZone;
    return options;
}

} // namespace

CsvImportAssistant::CsvImportAssistant(QWidget* window, QSettings& settings, CsvPreviewFunction preview)
    : QObject(window), m_window(window), m_memory(settings), m_preview(std::move(preview))
{
}

CsvImportAssistant::~CsvImportAssistant()
{
    delete m_dialog;
}

void CsvImportAssistant::ask(const QString& fileName, const CsvOptions& start, Done done)
{
    m_questions.push_back({fileName, start, std::move(done)});
    askNext();
}

void CsvImportAssistant::askNext()
{
    if (m_isAsking || m_questions.empty())
        return;
    m_isAsking = true;
    const Question& question = m_questions.front();
    m_loader = new CsvPreviewLoader(question.fileName, m_preview, this);
    connect(m_loader, &CsvPreviewLoader::loaded, this,
            [this](const CsvOptions&, const CsvPreviewLoader::Answer& answer) { decide(answer); });
    m_loader->request(question.start);
}

void CsvImportAssistant::decide(const CsvPreviewLoader::Answer& preview)
{
    m_loader->deleteLater();
    const CsvOptions start = m_questions.front().start;
    const bool isPlain = preview && preview.value().guesses.isEmpty() && preview.value().problem.isEmpty();
    if (!preview || isPlain) {
        answerSoon(start);
        return;
    }
    const QStringList header = preview.value().header;
    const auto known = m_memory.find(header);
    if (!known || !known->isSilent) {
        showDialog(header, known);
        return;
    }
    m_memory.touch(header);
    answerSoon(together(start, known->options));
}

void CsvImportAssistant::showDialog(const QStringList& header, const std::optional<CsvImportMemory::Entry>& known)
{
    const Question& question = m_questions.front();
    const CsvOptions options = known ? together(question.start, known->options) : question.start;
    auto* const dialog = new CsvImportDialog(question.fileName, options, m_preview, m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setRemembered(known.has_value(), false);
    connect(dialog, &CsvImportDialog::forgetRequested, this, [this, header, dialog, start = question.start] {
        m_memory.forget(header);
        dialog->setOptions(start);
    });
    connect(dialog, &QDialog::accepted, this, [this, header, dialog] { takeAnswer(header, *dialog); });
    connect(dialog, &QDialog::rejected, this, [this] { answerSoon(std::nullopt); });
    m_dialog = dialog;
    dialog->open();
}

void CsvImportAssistant::takeAnswer(const QStringList& header, const CsvImportDialog& dialog)
{
    const CsvImportMemory::Entry entry{dialog.options(), dialog.isSilentFromNowOn()};
    // Nothing said and still to be asked: there is nothing to remember.
    if (entry.options == CsvOptions() && !entry.isSilent)
        m_memory.forget(header);
    else
        m_memory.remember(header, entry);
    answerSoon(entry.options);
}

void CsvImportAssistant::answerSoon(const std::optional<CsvOptions>& options)
{
    // Whoever gets the answer may delete the window and all that belongs to it: not from within an event of one of
    // its own objects.
    QMetaObject::invokeMethod(
        this, [this, options] { answer(options); }, Qt::QueuedConnection);
}

void CsvImportAssistant::answer(const std::optional<CsvOptions>& options)
{
    const Done done = std::move(m_questions.front().done);
    m_questions.pop_front();
    m_isAsking = false;
    const QPointer<CsvImportAssistant> guard(this);
    done(options);
    if (guard)
        askNext();
}

} // namespace Workbench
