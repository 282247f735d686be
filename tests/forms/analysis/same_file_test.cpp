// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QCheckBox>
#include <ostream>
#include <sstream>
#include <streambuf>

#include "apps/cli/run.h"
#include "base/files.h"
#include "tests/forms/analysis/params_fixture.h"

/// \file
/// The form and the command hand the same choices to a run in the same file, byte for byte.
namespace kestrel::test {
namespace {

/// A stream's end that looks at a file whenever something is written.
class WatchingBuffer final : public std::streambuf {
  public:
    explicit WatchingBuffer(std::string path) : m_path(std::move(path)) {}
    std::string seen;

  protected:
    int_type overflow(int_type c) override {
        look();
        return c;
    }
    std::streamsize xsputn(const char*, std::streamsize count) override {
        look();
        return count;
    }

  private:
    void look() {
        if (seen.empty() && base::file_exists(m_path)) seen = base::read_file(m_path);
    }
    std::string m_path;
};

class SameFileTest : public ParamsTest {
  protected:
    SameFileTest() {
        m_request.land_cover = m_world.folder / "cover.tif";
        m_request.zones = m_world.folder / "sheds.shp";
        m_request.field = "NAME";
        m_request.store = m_world.extension / "etc/isprops.xml";
        m_request.set = "Town";
        m_request.output = out("is.shp");
        m_request.overwrite = true;
        m_request.extension_folder = m_world.extension.path();
    }

    std::string file_of_the_command() {
        WatchingBuffer buffer(m_world.extension / "temp/model_params.txt");
        std::ostream err(&buffer);
        std::ostringstream out_stream;
        EXPECT_EQ(cli::run(m_request, out_stream, err, true), 0);
        return buffer.seen;
    }

    std::string file_of_the_form() {
        std::string file;
        m_host.run_progress.act = [&] { file = file.empty() ? parameter_file() : file; };
        type_output(out("is"));
        click("cmdISRun");
        return file;
    }

    cli::RunRequest m_request;
};

TEST_F(SameFileTest, WithAFixedCoefficient) {
    open();
    fill();
    m_request.option = CoefficientOption::medium;
    const std::string file = file_of_the_form();
    EXPECT_THAT(file, testing::StartsWith("VIEW#\r\n"));
    EXPECT_EQ(file, file_of_the_command());
}

TEST_F(SameFileTest, WithDensityAndScenarios) {
    open();
    choose("cboAnalysisUnit", "NAME");
    in_dialog([](QDialog& dialog) {
        QTest::keyClick(dialog.findChild<QComboBox*>("cboPDenTheme"), Qt::Key_Down);
        QTest::keyClick(dialog.findChild<QComboBox*>("cboPDenFld"), Qt::Key_Down);
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtHigh"), "10");
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLow"), "2.50");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    });
    choose_option(3);
    m_form->activateWindow();
    click("cmdDSAdd");
    click("cmdDSAdd");
    choose("cboDSTheme(0)", "plan");
    choose("cboDSToClass(0)", "Roads");
    choose("cboDSTheme(1)", "blocks");
    choose("cboDSToClass(1)", "Grassland");

    m_request.option = CoefficientOption::by_density;
    m_request.density_layer = m_world.folder / "blocks.shp";
    m_request.density_field = "DENSITY";
    m_request.density_high = "10";
    m_request.density_low = "2.50";
    m_request.scenarios = {{m_world.folder / "plan.shp", 7}, {m_world.folder / "blocks.shp", 5}};
    const std::string file = file_of_the_form();
    EXPECT_THAT(file, testing::HasSubstr("POPDENSITYMED#2.50#10\r\n"));
    EXPECT_THAT(file, testing::HasSubstr("DS#2#blocks#Grassland#5\r\n"));
    EXPECT_EQ(file, file_of_the_command());
}

}  // namespace
}  // namespace kestrel::test
