#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QTest>

using namespace VeskTimeline;

/// Drives each entry of the workbench's menus with the mouse, in a real window.
class TestX11Menus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void undoAndRedo()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(!f.entry("undo")->isEnabled());
        f.model()->removeItem(f.items().first());
        CHOOSE(f, "undo");
        QTRY_COMPARE(f.items().size(), 3);
        CHOOSE(f, "redo");
        QTRY_COMPARE(f.items().size(), 2);
    }

    void zoomInOutAndFit()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const Zoom::Factor widest = f.view()->zoomFactor();
        CHOOSE(f, "pnx_zoom_in");
        QTRY_VERIFY(f.view()->zoomFactor() < widest);
        const Zoom::Factor closer = f.view()->zoomFactor();
        CHOOSE(f, "pnx_zoom_in");
        QTRY_VERIFY(f.view()->zoomFactor() < closer);
        CHOOSE(f, "pnx_zoom_out");
        QTRY_COMPARE(f.view()->zoomFactor(), closer);
        CHOOSE(f, "fit");
        QTRY_COMPARE(f.view()->zoomFactor(), widest);
    }

    void snap()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.model()->isSnapEnabled());
        CHOOSE(f, "snap");
        QTRY_VERIFY(!f.model()->isSnapEnabled());
        CHOOSE(f, "snap");
        QTRY_VERIFY(f.model()->isSnapEnabled());
    }
};

QTEST_MAIN(TestX11Menus)
#include "tst_x11_menus.moc"
