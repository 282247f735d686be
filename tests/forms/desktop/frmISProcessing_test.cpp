// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/frmISProcessing.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTabletEvent>
#include <QTest>
#include <QTimer>
#include <QTouchDevice>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "forms/desktop/qt_interaction.h"

namespace kestrel {
namespace {

/// A window of the host, which notes every input that reaches it.
class HostWindow final : public QWidget {
  public:
    HostWindow() : button(new QPushButton("&Run")), box(new QLineEdit), action(new QAction("Again", this)) {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(button);
        layout->addWidget(box);
        action->setShortcut(QKeySequence("Ctrl+R"));
        action->setShortcutContext(Qt::ApplicationShortcut);
        addAction(action);
        connect(button, &QPushButton::clicked, [this] { ++clicks; });
        connect(action, &QAction::triggered, [this] { ++clicks; });
        setAcceptDrops(true);
        setAttribute(Qt::WA_AcceptTouchEvents);
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == this; }));
        box->setFocus();
    }

    QPushButton* button;
    QLineEdit* box;
    QAction* action;
    int clicks = 0;
    std::vector<QEvent::Type> reached;

  protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonDblClick:
            case QEvent::Wheel:
            case QEvent::KeyPress:
            case QEvent::ContextMenu:
            case QEvent::Close:
            case QEvent::DragEnter:
            case QEvent::Drop:
            case QEvent::TabletPress:
            case QEvent::TouchBegin:
                reached.push_back(event->type());
                break;
            default:
                break;
        }
        return QWidget::event(event);
    }
};

frmISProcessing* waiting_form() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (auto* form = qobject_cast<frmISProcessing*>(widget)) return form;
    }
    return nullptr;
}

/// Posts `act` so that it happens while the next report() processes events.
void during_report(QObject& context, std::function<void()> act) {
    QTimer::singleShot(0, &context, std::move(act));
}

/// An event as the window system sends it.
template <typename Event>
Event& from_outside(Event& event) {
    QSpontaneKeyEvent::setSpontaneous(&event);
    return event;
}

TEST(ProcessingWindow, BelongsToTheActiveWindowAndStandsOverIt) {
    HostWindow host;
    host.setGeometry(100, 100, 700, 500);
    QApplication::processEvents();
    const ProcessingWindow waiting("Please wait...");
    ASSERT_NE(waiting_form(), nullptr);
    EXPECT_EQ(waiting_form()->parentWidget(), &host);
    EXPECT_TRUE(host.frameGeometry().contains(waiting_form()->geometry().center()));
    EXPECT_LT((waiting_form()->geometry().center() - host.geometry().center()).manhattanLength(), 60);
    EXPECT_FALSE(waiting_form()->isModal());
}

TEST(ProcessingWindow, ShowsTextStepAndBar) {
    ProcessingWindow waiting("Please wait...");
    EXPECT_TRUE(waiting.report(0.5, "Reading"));
    EXPECT_EQ(waiting_form()->findChild<QLabel*>("lblMessage")->text(), "Please wait...");
    EXPECT_EQ(waiting_form()->findChild<QLabel*>("lblStep")->text(), "Reading");
    auto& bar = *waiting_form()->findChild<QProgressBar*>("barProgress");
    EXPECT_EQ(bar.value() * 2, bar.maximum());
    EXPECT_TRUE(waiting.report(7, "Beyond"));
    EXPECT_EQ(bar.value(), bar.maximum());
}

TEST(ProcessingWindow, EventsAreProcessedWhileItIsUp) {
    HostWindow host;
    ProcessingWindow waiting("Please wait...");
    bool happened = false;
    during_report(host, [&] { happened = true; });
    EXPECT_TRUE(waiting.report(0.1, ""));
    EXPECT_TRUE(happened);
}

TEST(ProcessingWindow, NeitherMouseNorKeysReachAnotherWindow) {
    HostWindow host;
    ProcessingWindow waiting("Please wait...");
    during_report(host, [&] {
        QTest::mouseClick(host.button, Qt::LeftButton);
        QTest::mouseDClick(&host, Qt::LeftButton);
        QTest::keyClick(host.button, Qt::Key_Space);
        QTest::keyClicks(host.box, "typed");
        QTest::keyClick(&host, Qt::Key_R, Qt::AltModifier);
        QTest::mouseClick(host.windowHandle(), Qt::LeftButton, Qt::NoModifier, host.button->geometry().center());
        QTest::keyClick(host.windowHandle(), Qt::Key_A);
    });
    EXPECT_TRUE(waiting.report(0.1, ""));
    EXPECT_EQ(host.clicks, 0);
    EXPECT_EQ(host.box->text(), "");
    EXPECT_TRUE(host.reached.empty());
}

TEST(ProcessingWindow, ShortcutsOfTheHostAreDead) {
    HostWindow host;
    ProcessingWindow waiting("Please wait...");
    during_report(host, [&] { QTest::keyClick(waiting_form(), Qt::Key_R, Qt::ControlModifier); });
    EXPECT_TRUE(waiting.report(0.1, ""));
    EXPECT_EQ(host.clicks, 0);
}

TEST(ProcessingWindow, WheelMenusDropsTabletAndTouchAreKeptOut) {
    HostWindow host;
    ProcessingWindow waiting("Please wait...");
    const QPoint at(5, 5);
    QMimeData data;
    QTouchDevice screen;
    during_report(host, [&] {
        QWheelEvent wheel(at, host.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&host, &wheel);
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, at);
        QApplication::sendEvent(&host, &menu);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&host, &enter);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&host, &drop);
        QTabletEvent pen(QEvent::TabletPress, at, host.mapToGlobal(at), QTabletEvent::Stylus, QTabletEvent::Pen, 1, 0,
                         0, 0, 0, 0, Qt::NoModifier, 1, Qt::LeftButton, Qt::LeftButton);
        QApplication::sendEvent(&host, &pen);
        QTouchEvent touch(QEvent::TouchBegin, &screen);
        QApplication::sendEvent(&host, &touch);
    });
    EXPECT_TRUE(waiting.report(0.1, ""));
    EXPECT_EQ(host.reached, std::vector<QEvent::Type>());
}

TEST(ProcessingWindow, TheUserClosesNoOtherWindowButAWindowMayCloseItself) {
    HostWindow host;
    HostWindow other;
    ProcessingWindow waiting("Please wait...");
    during_report(host, [&] {
        QCloseEvent close;
        QApplication::sendEvent(host.windowHandle(), &from_outside(close));
        EXPECT_FALSE(close.isAccepted());
        other.close();
    });
    EXPECT_TRUE(waiting.report(0.1, ""));
    EXPECT_TRUE(host.isVisible());
    EXPECT_FALSE(other.isVisible());
}

TEST(ProcessingWindow, AMenuThatWasOpenIsClosed) {
    HostWindow host;
    QMenu menu;
    menu.addAction("Again");
    menu.popup({10, 10});
    ASSERT_TRUE(QTest::qWaitFor([&] { return menu.isVisible(); }));
    const ProcessingWindow waiting("Please wait...");
    EXPECT_FALSE(menu.isVisible());
}

TEST(ProcessingWindow, CancelEscAndTheCloseButtonStopTheRun) {
    for (const int way : {0, 1, 2}) {
        HostWindow host;
        ProcessingWindow waiting("Please wait...");
        EXPECT_TRUE(waiting.report(0.1, "Reading"));
        during_report(host, [way] {
            if (way == 0) QTest::mouseClick(waiting_form()->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
            if (way == 1) QTest::keyClick(waiting_form(), Qt::Key_Escape);
            if (way == 2) {
                QCloseEvent close;
                QApplication::sendEvent(waiting_form()->windowHandle(), &from_outside(close));
            }
        });
        EXPECT_FALSE(waiting.report(0.2, "Reading")) << way;
        EXPECT_TRUE(waiting.cancelled());
        EXPECT_TRUE(waiting_form()->isVisible()) << "it stays until the run has ended";
        EXPECT_FALSE(waiting_form()->findChild<QPushButton*>("cmdCancel")->isEnabled());
        EXPECT_EQ(waiting_form()->findChild<QLabel*>("lblStep")->text(), "Cancelling...");
        EXPECT_FALSE(waiting.report(0.3, "Writing"));
        EXPECT_EQ(waiting_form()->findChild<QLabel*>("lblStep")->text(), "Cancelling...");
    }
}

TEST(ProcessingWindow, EscIsItsOwnEvenWhereTheHostHasAShortcutOfIt) {
    HostWindow host;
    host.action->setShortcut(Qt::Key_Escape);
    ProcessingWindow waiting("Please wait...");
    during_report(host, [] { QTest::keyClick(waiting_form(), Qt::Key_Escape); });
    EXPECT_FALSE(waiting.report(0.1, ""));
    EXPECT_EQ(host.clicks, 0);
}

TEST(ProcessingWindow, AMessageDuringTheRunCanBeAnswered) {
    HostWindow host;
    QtInteraction user;
    const auto waiting = user.waiting_window("Please wait...");
    int answered = 0;
    during_report(host, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        QTest::mouseClick(host.button, Qt::LeftButton);
        ++answered;
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    EXPECT_EQ(user.message_box({"NODATA"}), reporting::Answer::ok);
    EXPECT_EQ(answered, 1);
    EXPECT_EQ(host.clicks, 0);
    EXPECT_TRUE(waiting->report(0.1, ""));
}

TEST(ProcessingWindow, WorksInsideAModalWindowOfTheHost) {
    HostWindow host;
    QDialog modal(&host);
    auto* button = new QPushButton("Again", &modal);
    int clicks = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });
    bool went_on = true;
    QTimer::singleShot(0, &modal, [&] {
        ProcessingWindow waiting("Please wait...");
        EXPECT_EQ(waiting_form()->parentWidget(), &modal);
        during_report(modal, [&] {
            QTest::mouseClick(button, Qt::LeftButton);
            QTest::mouseClick(waiting_form()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                              waiting_form()->findChild<QPushButton*>("cmdCancel")->geometry().center());
        });
        went_on = waiting.report(0.1, "");
        modal.reject();
    });
    modal.exec();
    EXPECT_EQ(clicks, 0);
    EXPECT_FALSE(went_on) << "its Cancel button is not blocked";
}

TEST(ProcessingWindow, GoesWithItsOwnerAndStopsTheRun) {
    auto host = std::make_unique<HostWindow>();
    ProcessingWindow waiting("Please wait...");
    QObject context;
    during_report(context, [&] { host.reset(); });
    EXPECT_FALSE(waiting.report(0.1, ""));
    EXPECT_EQ(waiting_form(), nullptr);
    EXPECT_TRUE(waiting.cancelled());
    EXPECT_FALSE(waiting.report(0.2, ""));
}

TEST(ProcessingWindow, InputIsFreeAgainWhenItHasClosed) {
    HostWindow host;
    static_cast<void>(ProcessingWindow("Please wait..."));
    QTest::mouseClick(host.button, Qt::LeftButton);
    EXPECT_EQ(host.clicks, 1);
}

TEST(ProcessingWindow, ItsCursorIsTheArrowOverAWaitingOwner) {
    HostWindow host;
    host.setCursor(Qt::WaitCursor);
    const ProcessingWindow waiting("Please wait...");
    EXPECT_EQ(waiting_form()->cursor().shape(), Qt::ArrowCursor);
}

/// The waiting window in fonts of the desktop.
class ProcessingWindowFonts : public testing::Test {
  protected:
    ~ProcessingWindowFonts() override {
        qApp->setStyleSheet({});
        QApplication::setFont(m_font);
    }
    void use_font(int points) {
        QFont font = m_font;
        font.setPointSize(points);
        QApplication::setFont(font);
    }
    /// As desktops do it that let their user choose a font.
    static void use_sheet(int points) { qApp->setStyleSheet(QString("* { font-size: %1pt }").arg(points)); }
    static QLabel& label(const char* name) { return *waiting_form()->findChild<QLabel*>(name); }
    /// The text's height in the width that its label has.
    static int text_height(const QLabel& shown) {
        return shown.fontMetrics().boundingRect(shown.rect(), Qt::TextWordWrap, shown.text()).height();
    }
    static void expect_room() {
        QApplication::processEvents();
        for (const char* name : {"lblMessage", "lblStep"}) {
            const QLabel& shown = label(name);
            EXPECT_LT(text_height(shown), 2 * shown.fontMetrics().height()) << name << " is wrapped";
            EXPECT_GE(shown.height(), text_height(shown)) << name;
        }
        expect_nothing_cut();
    }
    static void expect_nothing_cut() {
        EXPECT_GE(label("lblStep").height(), 2 * label("lblStep").fontMetrics().lineSpacing());
        for (const QWidget* part : waiting_form()->findChildren<QWidget*>()) {
            EXPECT_GE(part->width(), part->minimumSizeHint().width()) << part->objectName().toStdString();
            EXPECT_GE(part->height(), part->minimumSizeHint().height()) << part->objectName().toStdString();
            EXPECT_TRUE(waiting_form()->rect().contains(part->geometry())) << part->objectName().toStdString();
        }
    }
    /// Width of the window with the text of a run, in which nothing is wrapped or cut.
    static int width_with_room() {
        ProcessingWindow waiting("Performing Impervious Surface Analysis.  Please wait...");
        EXPECT_TRUE(waiting.report(0.4, "Applying the development scenarios"));
        expect_room();
        return waiting_form()->width();
    }

  private:
    QFont m_font = QApplication::font();
};

TEST_F(ProcessingWindowFonts, NothingIsCutOffOrWrappedAndTheWindowGrowsWithTheFont) {
    use_font(10);
    const int small = width_with_room();
    use_font(16);
    EXPECT_GT(width_with_room(), small * 3 / 2);
}

TEST_F(ProcessingWindowFonts, NothingIsCutOffOrWrappedInTheFontOfAStyleSheet) {
    use_sheet(10);
    const int small = width_with_room();
    use_sheet(16);
    EXPECT_GT(width_with_room(), small * 3 / 2);
}

TEST_F(ProcessingWindowFonts, NothingIsCutOffOrWrappedWhenTheFontGrowsWhileItIsUp) {
    use_font(10);
    ProcessingWindow waiting("Performing Impervious Surface Analysis.  Please wait...");
    use_font(16);
    EXPECT_TRUE(waiting.report(0.4, "Counting land cover"));
    expect_room();
    use_sheet(20);
    EXPECT_TRUE(waiting.report(0.5, "Counting land cover"));
    expect_room();
}

TEST_F(ProcessingWindowFonts, NothingIsCutOffOfALongTextOrStep) {
    for (const int points : {10, 16}) {
        use_font(points);
        QString text = "Performing Impervious Surface Analysis of";
        for (int i = 0; i < 40; ++i)
            text += " several layers";
        ProcessingWindow waiting(text);
        EXPECT_TRUE(waiting.report(0.4,
                                   "Writing what the analysis of the watersheds of the upper valley has found, one by "
                                   "one, into a shapefile with a name of its own"));
        QApplication::processEvents();
        for (const char* name : {"lblMessage", "lblStep"}) {
            EXPECT_GE(label(name).height(), text_height(label(name))) << name;
        }
        expect_nothing_cut();
        EXPECT_LE(waiting_form()->width(), 100 * waiting_form()->fontMetrics().averageCharWidth());
    }
}

/// Notes what it hears, and when it goes.
class NotedProgress final : public base::Progress {
  public:
    explicit NotedProgress(std::vector<std::string>& notes) : m_notes(notes) {}
    ~NotedProgress() override { m_notes.emplace_back(waiting_form() != nullptr ? "gone first" : "gone last"); }
    NotedProgress(const NotedProgress&) = delete;
    NotedProgress& operator=(const NotedProgress&) = delete;

    bool report(double, std::string_view text) override {
        m_notes.emplace_back(text);
        return false;
    }
    bool cancelled() const override { return true; }

  private:
    std::vector<std::string>& m_notes;
};

TEST(QtProgress, IsShownBesideTheWaitingWindowWhereTheHostHasAPlaceForIt) {
    std::vector<std::string> notes;
    QtInteraction user({.beside_waiting_window = [&] { return std::make_unique<NotedProgress>(notes); }});
    {
        const auto waiting = user.waiting_window("Please wait...");
        EXPECT_TRUE(user.progress().report(0.1, "Reading")) << "only the window stops the run";
        EXPECT_FALSE(user.progress().cancelled());
        EXPECT_EQ(notes, std::vector<std::string>{"Reading"});
    }
    EXPECT_EQ(notes, (std::vector<std::string>{"Reading", "gone first"}));
    EXPECT_TRUE(user.progress().report(0.2, "Writing"));
    EXPECT_EQ(notes.size(), 2U);
}

TEST(QtProgress, IsThatOfTheWaitingWindowOrOneThatNeverStops) {
    QtInteraction user;
    EXPECT_TRUE(user.progress().report(0.5, "nobody watches"));
    EXPECT_FALSE(user.progress().cancelled());
    {
        const auto outer = user.waiting_window("Outer");
        EXPECT_EQ(&user.progress(), outer.get());
        {
            const auto inner = user.waiting_window("Inner");
            EXPECT_EQ(&user.progress(), inner.get());
        }
        EXPECT_EQ(&user.progress(), outer.get());
        waiting_form()->reject();
        EXPECT_TRUE(user.progress().cancelled());
    }
    EXPECT_FALSE(user.progress().cancelled());
    EXPECT_TRUE(user.progress().report(0.5, ""));
}

}  // namespace
}  // namespace kestrel
