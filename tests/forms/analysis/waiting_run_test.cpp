// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QTimer>

#include "base/files.h"
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"
#include "tests/support/desktop_host.h"

/// \file
/// Runs of the form under the waiting window of a desktop.
namespace kestrel::test {
namespace {

using testing::Contains;
using testing::Not;
using testing::SizeIs;

QWidget* waiting_form() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == "frmISProcessing") return widget;
    }
    return nullptr;
}

class WaitingRunTest : public ParamsTest {
  protected:
    void SetUp() override {
        m_form->Application(&m_desktop);
        open();
        fill();
        type_output(out("is"));
        tab();
    }

    QtInteraction m_user;
    reporting::ScopedInteraction m_scope{m_user};
    DesktopHost m_desktop{m_world.application, m_user};
};

TEST_F(WaitingRunTest, TheWindowBelongsToTheFormAndGoesAtTheEnd) {
    bool seen = false;
    QTimer::singleShot(0, m_form.get(), [&] {
        ASSERT_NE(waiting_form(), nullptr);
        seen = true;
        EXPECT_EQ(waiting_form()->parentWidget(), m_form.get());
        EXPECT_EQ(waiting_form()->findChild<QLabel*>("lblMessage")->text(),
                  "Performing Impervious Surface Analysis.  Please wait...");
        EXPECT_TRUE(waiting_form()->isEnabled());
        click("cmdISRun");
        click("cmdISQuit");
    });
    click("cmdISRun");
    EXPECT_TRUE(seen);
    EXPECT_EQ(waiting_form(), nullptr);
    EXPECT_TRUE(m_form->isVisible());
    ASSERT_THAT(m_desktop.results, SizeIs(1));
    EXPECT_TRUE(m_desktop.results[0].finished);
}

TEST_F(WaitingRunTest, CancelEndsTheRunWithinASecondAndLeavesNothing) {
    QElapsedTimer since;
    QTimer::singleShot(0, m_form.get(), [&] {
        ASSERT_NE(waiting_form(), nullptr);
        since.start();
        QTest::mouseClick(waiting_form()->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    });
    click("cmdISRun");
    ASSERT_TRUE(since.isValid());
    EXPECT_LT(since.elapsed(), 1000);
    ASSERT_THAT(m_desktop.results, SizeIs(1));
    EXPECT_TRUE(m_desktop.results[0].cancelled);
    EXPECT_THAT(layers(), Not(Contains("is")));
    EXPECT_TRUE(names_in(m_world.output.path()).empty());
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(waiting_form(), nullptr);
}

TEST_F(WaitingRunTest, AMessageOfTheRunCanBeAnswered) {
    choose("cboLCType", "Valley");  // lacks classes of the land cover
    int answered = 0;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            ++answered;
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
    });
    answer.start(10);
    click("cmdISRun");
    EXPECT_EQ(answered, 1);
    ASSERT_THAT(m_desktop.results, SizeIs(1));
    EXPECT_FALSE(m_desktop.results[0].finished);
}

TEST_F(WaitingRunTest, AFormThatGoesStopsTheRun) {
    QObject context;
    QTimer::singleShot(0, &context, [&] { m_form.reset(); });
    control<QPushButton>("cmdISRun").click();
    EXPECT_EQ(m_form, nullptr);
    ASSERT_LE(m_desktop.results.size(), 1U) << "it may go before there is a run";
    EXPECT_TRUE(m_desktop.results.empty() || m_desktop.results[0].cancelled);
    EXPECT_THAT(layers(), Not(Contains("is")));
    EXPECT_NO_THROW(base::FolderLock(m_world.extension.path()));
}

}  // namespace
}  // namespace kestrel::test
