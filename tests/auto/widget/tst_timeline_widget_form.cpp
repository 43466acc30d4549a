#include "auto/widget/icon_folder.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>

using namespace VeskTimeline;

namespace {

QStringList namesOf(const QObjectList& objects)
{
    QStringList names;
    for (const QObject* object : objects)
        names.append(object->objectName());
    return names;
}

/// The layout's contents in order; a spacer item by its class, as it has no name.
QStringList namesOf(const QLayout& layout)
{
    QStringList names;
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* const item = layout.itemAt(i);
        if (item->widget())
            names.append(item->widget()->objectName());
        else if (item->layout())
            names.append(item->layout()->objectName());
        else
            names.append(QStringLiteral("spacer"));
    }
    return names;
}

} // namespace

class TestTimelineWidgetForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_widget = std::make_unique<TimelineWidget>();
    }
    void cleanup() { m_widget.reset(); }

    void formIsNamedTimeline();
    void topLevelObjectsComeInTheirOrder();
    void debugPanelsObjectsComeInTheirOrder();
    void widgetsLieInTheirCells_data();
    void widgetsLieInTheirCells();
    void labelsAndButtonsHaveTheirTexts_data();
    void labelsAndButtonsHaveTheirTexts();
    void zoomControlsHaveNoTexts();
    void linesAreVertical();
    void spacersExpandHorizontally();
    void spinBoxesGoToSixtySecondsInStepsOfAHundred();
    void sliderIsSetUp();
    void zoomButtonsAndBoxAreBounded();
    void debugPanelAndPlaceholderAreHidden();
    void zoomControlsCarryTheConstProperty();

private:
    template <typename Widget>
    Widget* child(const char* name) const
    {
        return m_widget->findChild<Widget*>(QLatin1String(name));
    }

    const IconFolder m_icons;
    std::unique_ptr<TimelineWidget> m_widget;
};

void TestTimelineWidgetForm::formIsNamedTimeline()
{
    QCOMPARE(m_widget->objectName(), QStringLiteral("Timeline"));
}

void TestTimelineWidgetForm::topLevelObjectsComeInTheirOrder()
{
    QCOMPARE(namesOf(m_widget->children()), (QStringList{"gridLayout", "wPlaceholder", "debugWidget", "slider",
                                                         "pbZoomOut", "view", "pbZoomIn", "cbZoom"}));
    QVERIFY(child<QGridLayout>("gridLayout"));
    QVERIFY(child<QScrollBar>("slider"));
    QVERIFY(child<QPushButton>("pbZoomOut"));
    QVERIFY(child<TimelineView>("view"));
    QVERIFY(child<QPushButton>("pbZoomIn"));
    QVERIFY(child<QComboBox>("cbZoom"));
    QCOMPARE(m_widget->view(), child<TimelineView>("view"));
    QCOMPARE(m_widget->slider(), child<QScrollBar>("slider"));
}

void TestTimelineWidgetForm::debugPanelsObjectsComeInTheirOrder()
{
    const QWidget* const panel = child<QWidget>("debugWidget");
    const auto* const rows = child<QVBoxLayout>("verticalLayout_2");
    QCOMPARE(panel->layout(), rows);
    QCOMPARE(namesOf(*rows), (QStringList{"horizontalLayout", "horizontalLayout_2"}));
    QCOMPARE(namesOf(*child<QHBoxLayout>("horizontalLayout")),
             (QStringList{
                 "lbxDebugStart",     "lblDebugStart",     "line",   "lbxDebugEnd",      "lblDebugEnd",      "line_2",
                 "lbxDebugCurrent",   "lblDebugCurrent",   "line_3", "lbxDebugDuration", "lblDebugDuration", "line_4",
                 "lbxDebugSlider",    "lblDebugSlider",    "line_5", "lbxDebugZoom",     "lblDebugZoom",     "line_6",
                 "lbxDebugSelection", "lblDebugSelection", "spacer"}));
    QCOMPARE(
        namesOf(*child<QHBoxLayout>("horizontalLayout_2")),
        (QStringList{"pbDebugUpdate", "pbDebugTriggerSnap", "lbxDebugSnapStep", "sbDebugSnapStep", "lbxDebugSnapTol",
                     "sbDebugSnapTol", "pbDebugTriggerIndicator", "pbDebugTriggerHover", "spacer"}));
}

void TestTimelineWidgetForm::widgetsLieInTheirCells_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("cell");
    const auto add = [](const char* name, int row, int column, int rowSpan, int columnSpan) {
        QTest::newRow(name) << QString::fromLatin1(name) << QRect(column, row, columnSpan, rowSpan);
    };
    add("debugWidget", 0, 0, 1, 7);
    add("view", 1, 0, 1, 7);
    add("pbZoomIn", 3, 1, 1, 1);
    add("pbZoomOut", 3, 2, 1, 1);
    add("cbZoom", 3, 3, 1, 1);
    add("wPlaceholder", 4, 4, 1, 1);
    add("slider", 3, 6, 1, 1);
}

void TestTimelineWidgetForm::widgetsLieInTheirCells()
{
    QFETCH(QString, name);
    QFETCH(QRect, cell);
    QGridLayout* const grid = child<QGridLayout>("gridLayout");
    QCOMPARE(grid->count(), 7);
    const int index = grid->indexOf(m_widget->findChild<QWidget*>(name));
    QVERIFY(index >= 0);
    int row = -1;
    int column = -1;
    int rowSpan = -1;
    int columnSpan = -1;
    grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(QRect(column, row, columnSpan, rowSpan), cell);
}

void TestTimelineWidgetForm::labelsAndButtonsHaveTheirTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    const QList<QPair<const char*, const char*>> texts{
        {"lbxDebugStart", "start:"},
        {"lblDebugStart", "[START]"},
        {"lbxDebugEnd", "end:"},
        {"lblDebugEnd", "[END]"},
        {"lbxDebugCurrent", "current:"},
        {"lblDebugCurrent", "[CURRENT]"},
        {"lbxDebugDuration", "duration:"},
        {"lblDebugDuration", "[DURATION]"},
        {"lbxDebugSlider", "slider:"},
        {"lblDebugSlider", "[SLIDER]"},
        {"lbxDebugZoom", "zoom:"},
        {"lblDebugZoom", "[ZOOM]"},
        {"lbxDebugSelection", "selection:"},
        {"lblDebugSelection", "[SELECTION]"},
        {"pbDebugUpdate", "Update"},
        {"pbDebugTriggerSnap", "Enable Snap"},
        {"lbxDebugSnapStep", "Snap Step:"},
        {"lbxDebugSnapTol", "Snap Tol:"},
        {"pbDebugTriggerIndicator", "Disable Indicator"},
        {"pbDebugTriggerHover", "Disable Hover"},
    };
    for (const auto& [name, text] : texts)
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(text);
}

void TestTimelineWidgetForm::labelsAndButtonsHaveTheirTexts()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    const QWidget* const widget = m_widget->findChild<QWidget*>(name);
    QVERIFY(widget);
    const bool isLabel = name.startsWith(QLatin1String("lb"));
    QVERIFY(isLabel ? qobject_cast<const QLabel*>(widget) != nullptr
                    : qobject_cast<const QPushButton*>(widget) != nullptr);
    QCOMPARE(widget->property("text").toString(), text);
}

void TestTimelineWidgetForm::zoomControlsHaveNoTexts()
{
    QCOMPARE(child<QPushButton>("pbZoomIn")->text(), QString());
    QCOMPARE(child<QPushButton>("pbZoomOut")->text(), QString());
}

void TestTimelineWidgetForm::linesAreVertical()
{
    for (const char* name : {"line", "line_2", "line_3", "line_4", "line_5", "line_6"}) {
        const QFrame* const line = child<QFrame>(name);
        QVERIFY2(line, name);
        QCOMPARE(line->frameShape(), QFrame::VLine);
    }
}

void TestTimelineWidgetForm::spacersExpandHorizontally()
{
    for (const char* name : {"horizontalLayout", "horizontalLayout_2"}) {
        const QHBoxLayout* const layout = child<QHBoxLayout>(name);
        const QSpacerItem* const spacer = layout->itemAt(layout->count() - 1)->spacerItem();
        QVERIFY2(spacer, name);
        QCOMPARE(spacer->sizeHint(), QSize(40, 20));
        QCOMPARE(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    }
}

void TestTimelineWidgetForm::spinBoxesGoToSixtySecondsInStepsOfAHundred()
{
    for (const char* name : {"sbDebugSnapStep", "sbDebugSnapTol"}) {
        const QSpinBox* const box = child<QSpinBox>(name);
        QVERIFY2(box, name);
        QCOMPARE(box->minimum(), 0);
        QCOMPARE(box->maximum(), 60000);
        QCOMPARE(box->singleStep(), 100);
    }
}

void TestTimelineWidgetForm::sliderIsSetUp()
{
    const QScrollBar* const slider = child<QScrollBar>("slider");
    QCOMPARE(slider->minimumHeight(), 20);
    QCOMPARE(slider->focusPolicy(), Qt::NoFocus);
    QCOMPARE(slider->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QVERIFY(!slider->invertedAppearance());
    QVERIFY(slider->invertedControls());
    m_widget->setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(slider->layoutDirection(), Qt::LeftToRight);
}

void TestTimelineWidgetForm::zoomButtonsAndBoxAreBounded()
{
    for (const char* name : {"pbZoomIn", "pbZoomOut"}) {
        QCOMPARE(child<QPushButton>(name)->minimumSize(), QSize(30, 0));
        QCOMPARE(child<QPushButton>(name)->maximumSize(), QSize(25, QWIDGETSIZE_MAX));
    }
    QCOMPARE(child<QComboBox>("cbZoom")->minimumSize(), QSize(20, 0));
    QCOMPARE(child<QComboBox>("cbZoom")->maximumSize(), QSize(125, QWIDGETSIZE_MAX));
    QCOMPARE(child<QComboBox>("cbZoom")->baseSize(), QSize(0, 0));
}

void TestTimelineWidgetForm::debugPanelAndPlaceholderAreHidden()
{
    QVERIFY(child<QWidget>("debugWidget")->isHidden());
    QVERIFY(child<QWidget>("wPlaceholder")->isHidden());
    for (const char* name : {"view", "slider", "pbZoomIn", "pbZoomOut", "cbZoom"})
        QVERIFY2(!child<QWidget>(name)->isHidden(), name);
}

void TestTimelineWidgetForm::zoomControlsCarryTheConstProperty()
{
    for (const QWidget* widget : m_widget->findChildren<QWidget*>()) {
        const bool isZoomControl = QStringList{"pbZoomIn", "pbZoomOut", "cbZoom"}.contains(widget->objectName());
        QCOMPARE(widget->property("const"), isZoomControl ? QVariant(true) : QVariant());
    }
}

QTEST_MAIN(TestTimelineWidgetForm)
#include "tst_timeline_widget_form.moc"
