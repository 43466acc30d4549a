#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <memory>

using VeskWidgets::Behaviour;
using VeskWidgets::Button;
using VeskWidgets::Buttons;
using VeskWidgets::VeskMessageDialogNew;

Q_DECLARE_METATYPE(Buttons)
Q_DECLARE_METATYPE(Behaviour)

namespace {

const Buttons s_yesNo = Button::Yes | Button::No;
const Buttons s_okCancel = Button::Ok | Button::Cancel;

// Through the window, as the platform delivers it, so that modality and focus count.
void click(QWidget* widget)
{
    const QPoint center = widget->mapTo(widget->window(), widget->rect().center());
    QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier, center);
}

void press(QWidget* window, Qt::Key key)
{
    QTest::keyClick(window->windowHandle(), key);
}

// What the close button in the title bar comes to.
void closeByTitleBar(QWidget* window)
{
    window->windowHandle()->close();
}

/// A dialog that is open over a parent window, and what it has answered.
struct OpenDialog
{
    explicit OpenDialog(Buttons buttons = s_yesNo, const QHash<Button, QString>& customTexts = {})
    {
        parent = std::make_unique<QWidget>();
        parent->resize(400, 300);
        parent->show();
        dialog = new VeskMessageDialogNew(parent.get(), QString(), "Really?", Behaviour::Question, buttons, customTexts,
                                          true);
        QObject::connect(dialog, &VeskMessageDialogNew::yes, dialog, [this] { answers.append("yes"); });
        QObject::connect(dialog, &VeskMessageDialogNew::no, dialog, [this] { answers.append("no"); });
    }

    bool isActive() const { return QTest::qWaitForWindowActive(dialog); }

    std::unique_ptr<QWidget> parent;
    QPointer<VeskMessageDialogNew> dialog;
    QStringList answers;
};

} // namespace

class TestVeskMessageDialogNew : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void valuesAreTheSettledOnes();
    void carriesTheButtonsOfItsFlags_data();
    void carriesTheButtonsOfItsFlags();
    void noFlagGivesOk();
    void behaviourChoosesTheIcon_data();
    void behaviourChoosesTheIcon();
    void titleAndTextAreTaken();
    void customTextsReplaceButtonTexts();
    void customTextsOfMissingButtonsAreIgnored();

    void opensItselfWithoutBlocking();
    void staysClosedUntilOpened();
    void blocksTheWindowOfItsParent();

    void clickedButtonAnswers_data();
    void clickedButtonAnswers();
    void keyAnswers_data();
    void keyAnswers();
    void closingByTheTitleBarAnswersNo_data();
    void closingByTheTitleBarAnswersNo();
    void escapePressesTheCarefulButton_data();
    void escapePressesTheCarefulButton();
    void defaultButtonIsTheCarefulOne_data();
    void defaultButtonIsTheCarefulOne();
    void returnOnTheYesButtonAnswersYes();
    void acceptedFromCodeAnswersYes();
    void rejectedFromCodeAnswersNo();
    void otherKeysDoNotAnswer();
    void closedBeforeItWasOpenItDoesNotAnswer();
    void destroyedWhileOpenItDoesNotAnswer();

    void deletesItselfWhenClosed_data();
    void deletesItselfWhenClosed();
    void answerMayDestroyTheParent();
};

void TestVeskMessageDialogNew::init()
{
    // The offscreen platform says this of every window of a fixed size.
    QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints\\(\\)$)"));
}

void TestVeskMessageDialogNew::valuesAreTheSettledOnes()
{
    QCOMPARE(static_cast<int>(Behaviour::Information), 0);
    QCOMPARE(static_cast<int>(Behaviour::Question), 1);
    QCOMPARE(static_cast<int>(Button::None), 0);
    QCOMPARE(static_cast<int>(Button::Ok), 1);
    QCOMPARE(static_cast<int>(Button::Yes), 2);
    QCOMPARE(static_cast<int>(Button::Cancel), 4);
    QCOMPARE(static_cast<int>(Button::No), 8);
}

void TestVeskMessageDialogNew::carriesTheButtonsOfItsFlags_data()
{
    QTest::addColumn<Buttons>("flags");
    QTest::addColumn<int>("standardButtons");
    QTest::newRow("yes and no") << s_yesNo << int(QMessageBox::Yes | QMessageBox::No);
    QTest::newRow("ok and cancel") << s_okCancel << int(QMessageBox::Ok | QMessageBox::Cancel);
    QTest::newRow("ok") << Buttons(Button::Ok) << int(QMessageBox::Ok);
    QTest::newRow("all") << (s_yesNo | s_okCancel)
                         << int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Ok | QMessageBox::Cancel);
}

void TestVeskMessageDialogNew::carriesTheButtonsOfItsFlags()
{
    QFETCH(Buttons, flags);
    const OpenDialog open(flags);
    QTEST(int(open.dialog->standardButtons()), "standardButtons");
    QCOMPARE(open.dialog->buttons().size(), qPopulationCount(uint(int(flags))));
}

void TestVeskMessageDialogNew::noFlagGivesOk()
{
    const OpenDialog open((Buttons()));
    QCOMPARE(open.dialog->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
}

void TestVeskMessageDialogNew::behaviourChoosesTheIcon_data()
{
    QTest::addColumn<Behaviour>("behaviour");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::newRow("information") << Behaviour::Information << QMessageBox::Information;
    QTest::newRow("question") << Behaviour::Question << QMessageBox::Question;
}

void TestVeskMessageDialogNew::behaviourChoosesTheIcon()
{
    QFETCH(Behaviour, behaviour);
    const VeskMessageDialogNew dialog(nullptr, QString(), "text", behaviour, s_yesNo, {}, false);
    QTEST(dialog.icon(), "icon");
}

void TestVeskMessageDialogNew::titleAndTextAreTaken()
{
    QWidget parent;
    const auto* dialog =
        new VeskMessageDialogNew(&parent, "The title", "The text", Behaviour::Question, s_yesNo, {}, false);
    QCOMPARE(dialog->windowTitle(), QString("The title"));
    QCOMPARE(dialog->text(), QString("The text"));
    QCOMPARE(dialog->parentWidget(), &parent);
}

void TestVeskMessageDialogNew::customTextsReplaceButtonTexts()
{
    const OpenDialog plain;
    const OpenDialog open(s_yesNo, {{Button::Yes, "Remove"}});
    QCOMPARE(open.dialog->button(QMessageBox::Yes)->text(), QString("Remove"));
    QCOMPARE(open.dialog->button(QMessageBox::No)->text(), plain.dialog->button(QMessageBox::No)->text());
}

void TestVeskMessageDialogNew::customTextsOfMissingButtonsAreIgnored()
{
    const OpenDialog open(s_yesNo, {{Button::Cancel, "Stop"}, {Button::None, "Nothing"}});
    QCOMPARE(open.dialog->standardButtons(), QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(open.dialog->buttons().size(), 2);
}

void TestVeskMessageDialogNew::opensItselfWithoutBlocking()
{
    const OpenDialog open;
    QVERIFY(open.dialog->isVisible());
    QCOMPARE(open.dialog->windowModality(), Qt::WindowModal);
    QCOMPARE(open.answers, QStringList());
}

void TestVeskMessageDialogNew::staysClosedUntilOpened()
{
    QWidget parent;
    parent.show();
    auto* dialog = new VeskMessageDialogNew(&parent, QString(), "text", Behaviour::Question, s_yesNo, {}, false);
    QVERIFY(!dialog->isVisible());
    dialog->open();
    QVERIFY(dialog->isVisible());
}

void TestVeskMessageDialogNew::blocksTheWindowOfItsParent()
{
    QWidget window;
    window.resize(400, 300);
    auto* button = new QPushButton("Press me", &window);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy clicked(button, &QPushButton::clicked);
    click(button);
    QCOMPARE(clicked.size(), 1);

    QPointer<VeskMessageDialogNew> dialog =
        new VeskMessageDialogNew(&window, QString(), "text", Behaviour::Question, s_yesNo, {}, true);
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    click(button);
    QCOMPARE(clicked.size(), 1);

    press(dialog, Qt::Key_Escape);
    QTRY_VERIFY(dialog.isNull());
    click(button);
    QCOMPARE(clicked.size(), 2);
}

void TestVeskMessageDialogNew::clickedButtonAnswers_data()
{
    QTest::addColumn<Buttons>("flags");
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<QString>("answer");
    QTest::newRow("yes of yes and no") << s_yesNo << QMessageBox::Yes << "yes";
    QTest::newRow("no of yes and no") << s_yesNo << QMessageBox::No << "no";
    QTest::newRow("ok of ok and cancel") << s_okCancel << QMessageBox::Ok << "yes";
    QTest::newRow("cancel of ok and cancel") << s_okCancel << QMessageBox::Cancel << "no";
    QTest::newRow("ok alone") << Buttons(Button::Ok) << QMessageBox::Ok << "yes";
    QTest::newRow("yes alone") << Buttons(Button::Yes) << QMessageBox::Yes << "yes";
    QTest::newRow("no alone") << Buttons(Button::No) << QMessageBox::No << "no";
    QTest::newRow("cancel of three") << (s_yesNo | Button::Cancel) << QMessageBox::Cancel << "no";
}

void TestVeskMessageDialogNew::clickedButtonAnswers()
{
    QFETCH(Buttons, flags);
    QFETCH(QMessageBox::StandardButton, button);
    QFETCH(QString, answer);
    const OpenDialog open(flags);
    QVERIFY(open.isActive());
    click(open.dialog->button(button));
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList(answer));
}

void TestVeskMessageDialogNew::keyAnswers_data()
{
    QTest::addColumn<Buttons>("flags");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("answer");
    QTest::newRow("escape") << s_yesNo << Qt::Key_Escape << "no";
    QTest::newRow("return") << s_yesNo << Qt::Key_Return << "no";
    QTest::newRow("enter") << s_yesNo << Qt::Key_Enter << "no";
    QTest::newRow("space, the focus being on no") << s_yesNo << Qt::Key_Space << "no";
    QTest::newRow("escape with cancel only") << s_okCancel << Qt::Key_Escape << "no";
    QTest::newRow("return with cancel only") << s_okCancel << Qt::Key_Return << "no";
    QTest::newRow("escape on ok alone") << Buttons(Button::Ok) << Qt::Key_Escape << "no";
    QTest::newRow("return on ok alone") << Buttons(Button::Ok) << Qt::Key_Return << "yes";
    QTest::newRow("escape on ok and yes") << (Button::Ok | Button::Yes) << Qt::Key_Escape << "no";
    QTest::newRow("return on ok and yes") << (Button::Ok | Button::Yes) << Qt::Key_Return << "yes";
    QTest::newRow("escape on yes alone") << Buttons(Button::Yes) << Qt::Key_Escape << "no";
    QTest::newRow("return on yes alone") << Buttons(Button::Yes) << Qt::Key_Return << "yes";
}

void TestVeskMessageDialogNew::keyAnswers()
{
    QFETCH(Buttons, flags);
    QFETCH(Qt::Key, key);
    QFETCH(QString, answer);
    const OpenDialog open(flags);
    QVERIFY(open.isActive());
    press(open.dialog, key);
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList(answer));
}

void TestVeskMessageDialogNew::closingByTheTitleBarAnswersNo_data()
{
    QTest::addColumn<Buttons>("flags");
    QTest::newRow("yes and no") << s_yesNo;
    QTest::newRow("ok and cancel") << s_okCancel;
    QTest::newRow("ok alone") << Buttons(Button::Ok);
    QTest::newRow("ok and yes") << (Button::Ok | Button::Yes);
}

void TestVeskMessageDialogNew::closingByTheTitleBarAnswersNo()
{
    QFETCH(Buttons, flags);
    const OpenDialog open(flags);
    QVERIFY(open.isActive());
    closeByTitleBar(open.dialog);
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList("no"));
}

void TestVeskMessageDialogNew::escapePressesTheCarefulButton_data()
{
    QTest::addColumn<Buttons>("flags");
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::newRow("no") << s_yesNo << QMessageBox::No;
    QTest::newRow("no before cancel") << (s_yesNo | s_okCancel) << QMessageBox::No;
    QTest::newRow("cancel without no") << s_okCancel << QMessageBox::Cancel;
}

void TestVeskMessageDialogNew::escapePressesTheCarefulButton()
{
    QFETCH(Buttons, flags);
    QFETCH(QMessageBox::StandardButton, button);
    const OpenDialog open(flags);
    QVERIFY(open.isActive());
    QSignalSpy finished(open.dialog, &QDialog::finished);
    press(open.dialog, Qt::Key_Escape);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished[0][0].toInt(), int(button));
}

void TestVeskMessageDialogNew::defaultButtonIsTheCarefulOne_data()
{
    escapePressesTheCarefulButton_data();
    QTest::newRow("ok without no and cancel") << (Button::Ok | Button::Yes) << QMessageBox::Ok;
    QTest::newRow("yes alone") << Buttons(Button::Yes) << QMessageBox::Yes;
}

void TestVeskMessageDialogNew::defaultButtonIsTheCarefulOne()
{
    QFETCH(Buttons, flags);
    QFETCH(QMessageBox::StandardButton, button);
    const OpenDialog open(flags);
    QVERIFY(open.dialog->defaultButton());
    QCOMPARE(open.dialog->defaultButton(), open.dialog->button(button));
}

void TestVeskMessageDialogNew::returnOnTheYesButtonAnswersYes()
{
    const OpenDialog open;
    QVERIFY(open.isActive());
    press(open.dialog, Qt::Key_Tab);
    QVERIFY(open.dialog->button(QMessageBox::Yes)->hasFocus());
    press(open.dialog, Qt::Key_Return);
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList("yes"));
}

void TestVeskMessageDialogNew::acceptedFromCodeAnswersYes()
{
    const OpenDialog open;
    open.dialog->accept();
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList("yes"));
}

void TestVeskMessageDialogNew::rejectedFromCodeAnswersNo()
{
    const OpenDialog open;
    open.dialog->reject();
    QTRY_VERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList("no"));
}

void TestVeskMessageDialogNew::otherKeysDoNotAnswer()
{
    const OpenDialog open;
    QVERIFY(open.isActive());
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Tab, Qt::Key_Left, Qt::Key_A})
        press(open.dialog, key);
    QVERIFY(open.dialog->isVisible());
    QCOMPARE(open.answers, QStringList());
}

void TestVeskMessageDialogNew::closedBeforeItWasOpenItDoesNotAnswer()
{
    QPointer<VeskMessageDialogNew> dialog =
        new VeskMessageDialogNew(nullptr, QString(), "text", Behaviour::Question, s_yesNo, {}, false);
    QSignalSpy yes(dialog, &VeskMessageDialogNew::yes);
    QSignalSpy no(dialog, &VeskMessageDialogNew::no);
    dialog->close();
    QTRY_VERIFY(dialog.isNull());
    QCOMPARE(yes.size(), 0);
    QCOMPARE(no.size(), 0);
}

void TestVeskMessageDialogNew::destroyedWhileOpenItDoesNotAnswer()
{
    OpenDialog open;
    QVERIFY(open.dialog->isVisible());
    open.parent.reset();
    QVERIFY(open.dialog.isNull());
    QCOMPARE(open.answers, QStringList());
}

void TestVeskMessageDialogNew::deletesItselfWhenClosed_data()
{
    QTest::addColumn<bool>("hasParent");
    QTest::newRow("with a parent") << true;
    QTest::newRow("without") << false;
}

void TestVeskMessageDialogNew::deletesItselfWhenClosed()
{
    QFETCH(bool, hasParent);
    QWidget parent;
    parent.show();
    QPointer<VeskMessageDialogNew> dialog = new VeskMessageDialogNew(hasParent ? &parent : nullptr, QString(), "text",
                                                                     Behaviour::Information, Button::Ok, {}, true);
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    click(dialog->button(QMessageBox::Ok));
    QTRY_VERIFY(dialog.isNull());
}

void TestVeskMessageDialogNew::answerMayDestroyTheParent()
{
    for (const bool byKey : {false, true}) {
        OpenDialog open;
        QVERIFY(open.isActive());
        QObject::connect(open.dialog, &VeskMessageDialogNew::no, this, [&open] { open.parent.reset(); });
        if (byKey)
            press(open.dialog, Qt::Key_Escape);
        else
            click(open.dialog->button(QMessageBox::No));
        QVERIFY(open.dialog.isNull());
        QCOMPARE(open.answers, QStringList("no"));
    }
}

QTEST_MAIN(TestVeskMessageDialogNew)
#include "tst_vesk_message_dialog_new.moc"
