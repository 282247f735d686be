// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/forms/coefficients/editor_fixture.h"

#include <QApplication>
#include <QTimer>

#include "base/files.h"
#include "coefficients/basUtil.h"
#include "tests/coefficients/sets.h"

namespace kestrel::test {

EditorTest::EditorTest() {
    base::create_folder(m_folder / "etc");
    clsISModelProperties props;
    add_default_set(props);
    add_set(props, "Town",
            {land_class(1, "Roof", 90, 80, 70), land_class(2, "Park", 10, 5, 1), land_class(3, "Pond", 0, 0, 0)});
    const CoefficientStore store = CoefficientStore::in_extension_folder(m_folder.path());
    EXPECT_TRUE(basUtil::PutISModelProperties(props, store));
    m_form = std::make_unique<frmISModelProps>(store);
}

void EditorTest::open() {
    m_form->show();
    ASSERT_TRUE(m_form->isVisible());
    activate();
}

void EditorTest::activate() {
    m_form->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == m_form.get(); }));
}

std::string EditorTest::store_text() const {
    return base::read_file(store_path());
}

std::vector<std::string> EditorTest::stored() const {
    clsISModelProperties props;
    EXPECT_TRUE(basUtil::GetISModelProperties(props, store_path()));
    return outline(props);
}

std::vector<std::string> EditorTest::list_entries() {
    std::vector<std::string> entries;
    for (int i = 0; i < list().count(); ++i)
        entries.push_back(list().itemText(i).toStdString());
    return entries;
}

std::string EditorTest::row(int number) {
    std::string texts = cell(number, 1);
    for (int column = 2; column <= 5; ++column)
        texts += "," + cell(number, column);
    return texts;
}

QColor EditorTest::colour(int row, int column) {
    const QRect place = grid().place_of({row, column});
    return QColor(grid().viewport()->grab().toImage().pixel(place.topLeft() + QPoint(1, 1)));
}

void EditorTest::click(const char* name) {
    QTest::mouseClick(&button(name), Qt::LeftButton);
}

void EditorTest::click_cell(int row, int column, Qt::MouseButton button) {
    const QPoint place = grid().place_of({row, column}).center();
    ASSERT_TRUE(grid().viewport()->rect().contains(place));
    QTest::mouseClick(grid().viewport(), button, Qt::NoModifier, place);
}

void EditorTest::double_click_cell(int row, int column) {
    click_cell(row, column);
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, grid().place_of({row, column}).center());
}

void EditorTest::edit(int row, int column) {
    double_click_cell(row, column);
    ASSERT_TRUE(editing());
    ASSERT_EQ(QApplication::focusWidget(), &overlay());
}

void EditorTest::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void EditorTest::type(const char* text) {
    for (const QChar character : QString::fromUtf8(text)) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), character.toLatin1());
    }
}

void EditorTest::select_set(int position) {
    list().setFocus();
    while (list().currentIndex() != position) {
        const int before = list().currentIndex();
        QTest::keyClick(&list(), before < position ? Qt::Key_Down : Qt::Key_Up);
        if (list().currentIndex() == before) return;
    }
}

void EditorTest::in_dialog(std::function<void(QDialog&)> act) {
    QTimer::singleShot(0, m_form.get(), [act = std::move(act)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr) << "no dialog opened";
        dialog->activateWindow();
        // To Qt a window whose parent is active counts as active, too.
        EXPECT_TRUE(QTest::qWaitFor([dialog] { return QApplication::activeWindow() == dialog; }));
        act(*dialog);
        // Whatever went wrong, the test must come back.
        dialog->reject();
    });
}

}  // namespace kestrel::test
