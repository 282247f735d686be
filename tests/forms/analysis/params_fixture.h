// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "forms/analysis/frmISParams.h"
#include "tests/support/small_world.h"
#include "tests/support/user_actions.h"

namespace kestrel::test {

/// Progress that does something whenever it is reported to.
class ActingProgress final : public base::Progress {
  public:
    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override { return stopped; }

    std::function<void()> act;
    bool stopped = false;
    int reports = 0;
};

/// A host on the map of a small world, with progress of its own.
class ActingHost final : public contracts::Application {
  public:
    explicit ActingHost(SmallWorld& world) : m_world(world) {}

    contracts::Document& document() override { return m_world.application.document(); }
    contracts::IExtensionConfig* find_extension(std::string_view class_id) override {
        return m_world.application.find_extension(class_id);
    }
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string& path,
                                                                const std::string& name) override {
        return m_world.application.make_feature_layer(path, name);
    }
    reporting::Interaction& interaction() override { return m_world.said; }
    base::Progress& progress() override { return run_progress; }
    void run_ended(contracts::RunResult result) override { results.push_back(std::move(result)); }

    ActingProgress run_progress;
    std::vector<contracts::RunResult> results;

  private:
    SmallWorld& m_world;
};

/// The parameter form on a small world, driven by real keys and mouse buttons. The map holds, from the top, the raster
/// "cover" and the polygon layers "sheds" (fields NAME, ID, RATE), "blocks" (ID, DENSITY, KIND) and "plan" (ID).
class ParamsTest : public testing::Test {
  protected:
    ParamsTest();
    ~ParamsTest() override;

    /// Shows the form and waits until it is the active window.
    void open();
    void activate();

    template <typename Control>
    Control& control(const char* name) {
        return control_in<Control>(*m_form, name);
    }
    QComboBox& list(const char* name) { return control<QComboBox>(name); }
    QLineEdit& output() { return control<QLineEdit>("txtOutputTheme"); }
    QLineEdit& layer_name() { return control<QLineEdit>("txtThemeName"); }
    QRadioButton& option(int index);
    bool has(const char* name) { return m_form->findChild<QWidget*>(name) != nullptr; }
    std::vector<std::string> entries(const char* name);
    std::string chosen(const char* name) { return list(name).currentText().toStdString(); }
    /// Object name of the control that has the focus.
    std::string focused();

    // What the user does.
    void click(const char* button);
    /// Chooses an entry by its text, with the keyboard.
    void choose(const char* name, const std::string& text);
    void choose_option(int index);
    /// Puts the focus into the output box as by mouse, and types.
    void type_output(const std::string& text);
    /// Leaves the box that has the focus with the Tab key.
    void tab();
    /// Chooses everything that a run needs, but the output's name.
    void fill();
    /// The scenario row `row`: "1. layer -> class", in brackets when it is not applied.
    std::string row(int row);
    /// Runs `act` on the density dialog that opens next.
    void in_dialog(std::function<void(QDialog&)> act);

    std::string parameter_file() const;
    std::string out(const std::string& name) const { return m_world.output / name; }
    std::vector<std::string> layers() { return m_world.layer_names(); }
    std::vector<reporting::MessageBox>& boxes() { return m_world.said.boxes; }
    hosting::HeadlessMap& map() { return m_world.application.map(); }

    SmallWorld m_world;
    ActingHost m_host{m_world};
    std::unique_ptr<frmISParams> m_form;
};

inline reporting::MessageBox warning(const std::string& text) {
    return {text, "", reporting::Icon::exclamation};
}

}  // namespace kestrel::test
