#include "csv_forget_imports.h"

#include "csv_import_assistant.h"
#include "file_dialogs.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>

namespace Workbench {

namespace {

void askToForget(CsvImportAssistant* assistant)
{
    const int count = assistant->memory().count();
    const QString question =
        count == 1 ? CsvImportAssistant::tr("Forget how CSV files with one kind of header are imported?")
                   : CsvImportAssistant::tr("Forget how CSV files with %1 kinds of headers are imported?").arg(count);
    const QString details = CsvImportAssistant::tr("Such files are detected anew and asked about again. Documents that "
                                                   "are open stay as they are.");
    QMessageBox* const box = openMessage(assistant->window(), {"forgetImports", question, details}, QMessageBox::Cancel,
                                         QMessageBox::Cancel);
    auto* const forget = box->addButton(CsvImportAssistant::tr("&Forget"), QMessageBox::DestructiveRole);
    forget->setObjectName(QStringLiteral("forget"));
    QObject::connect(forget, &QPushButton::clicked, assistant, [assistant] { assistant->memory().forgetAll(); });
}

} // namespace

QAction* addForgetImportsAction(QMenu* menu, CsvImportAssistant* assistant)
{
    auto* const action = new QAction(CsvImportAssistant::tr("Forget CSV i&mports…"), assistant);
    action->setObjectName(QStringLiteral("forgetImports"));
    action->setMenuRole(QAction::NoRole);
    action->setStatusTip(CsvImportAssistant::tr("Forget what was chosen for files of comma-separated values"));
    const auto update = [assistant, action] { action->setEnabled(assistant->memory().count() > 0); };
    update();
    // Imports are remembered meanwhile, by other windows, too.
    QObject::connect(menu, &QMenu::aboutToShow, action, update);
    QObject::connect(action, &QAction::triggered, assistant, [assistant] { askToForget(assistant); });
    menu->addAction(action);
    return action;
}

} // namespace Workbench
