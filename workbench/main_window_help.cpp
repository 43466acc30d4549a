#include "main_window.h"
#include "shortcut_page.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

namespace Workbench {

namespace {

QString aboutText()
{
    return MainWindow::
        tr("<h3>VeskTimeline Workbench %1</h3><p>Shows and edits timelines.</p>"
           "<p>Made with these libraries:</p><ul>"
           "<li>Qt %2 (LGPL 3 or GPL 2)</li><li>libical (LGPL 2.1 or MPL 2.0)</li><li>libcsv (LGPL 2.1 or later)</li>"
           "<li>simdjson (Apache 2.0)</li><li>zlib (zlib licence)</li></ul>")
            .arg(QStringLiteral(VESKTIMELINE_VERSION), QString::fromLatin1(qVersion()));
}

} // namespace

void MainWindow::createHelpMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Help"));
    menu->setObjectName(QStringLiteral("helpMenu"));
    connect(addMenuAction(menu, "help", tr("&Shortcuts and gestures"), QKeySequence::HelpContents), &QAction::triggered,
            this, [this] {
                auto* const page = new ShortcutPage(*this, this);
                page->setAttribute(Qt::WA_DeleteOnClose);
                page->show();
            });
    connect(addMenuAction(menu, "about", tr("&About")), &QAction::triggered, this, [this] {
        auto* const box = new QMessageBox(QMessageBox::NoIcon, tr("About VeskTimeline Workbench"), aboutText(),
                                          QMessageBox::Close, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setIconPixmap(windowIcon().pixmap(64));
        box->open();
    });
}

} // namespace Workbench
