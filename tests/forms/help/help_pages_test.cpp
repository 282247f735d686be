// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDir>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QSet>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextFragment>

#include "base/files.h"
#include "extension/clsCommands.h"
#include "forms/analysis/frmISPDensity.h"
#include "forms/analysis/frmISParams.h"
#include "forms/coefficients/frmAddLCType.h"
#include "forms/coefficients/frmISModelProps.h"
#include "forms/records/frmISTParams.h"
#include "hosting/headless_application.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

/// \file
/// The help pages: what they point at exists, and they speak of what the windows show.
namespace kestrel {
namespace {

using testing::IsEmpty;

const QString kHelp = QStringLiteral(KESTREL_SOURCE_DIR "/help/");

QStringList pages() {
    return QDir(kHelp).entryList({"*.html"}, QDir::Files, QDir::Name);
}

/// A page as the help window shows it.
class Page {
  public:
    explicit Page(const QString& name) : m_name(name) { m_browser.setSource(QUrl::fromLocalFile(kHelp + name)); }

    QString text() const { return m_browser.toPlainText(); }
    QString title() const { return m_browser.documentTitle(); }
    /// Targets of all links, and sources of all images.
    QStringList links() const {
        return attributes([](const QTextCharFormat& format) { return format.anchorHref(); });
    }
    QStringList images() const {
        return attributes([](const QTextCharFormat& format) {
            return format.isImageFormat() ? format.toImageFormat().name() : QString();
        });
    }

  private:
    template <typename Read>
    QStringList attributes(Read read) const {
        QStringList values;
        for (QTextBlock block = m_browser.document()->begin(); block.isValid(); block = block.next()) {
            for (auto part = block.begin(); !part.atEnd(); ++part) {
                const QString value = read(part.fragment().charFormat());
                if (!value.isEmpty()) values.append(value);
            }
        }
        return values;
    }

    QString m_name;
    QTextBrowser m_browser;
};

/// All pages, white space made one blank.
const QString& whole_text() {
    static const QString text = [] {
        QString all;
        for (const QString& name : pages())
            all += Page(name).text() + "\n";
        return all.simplified();
    }();
    return text;
}

TEST(HelpPages, ThereAreManyAndTheFirstIsTheIndex) {
    EXPECT_GT(pages().size(), 8);
    EXPECT_TRUE(pages().contains("is_index.html"));
}

TEST(HelpPages, EveryLinkLeadsToAPage) {
    for (const QString& name : pages()) {
        const QStringList links = Page(name).links();
        EXPECT_FALSE(links.isEmpty()) << name.toStdString();
        for (const QString& link : links) {
            EXPECT_TRUE(pages().contains(link)) << name.toStdString() << " links to " << link.toStdString();
        }
    }
}

TEST(HelpPages, EveryImageIsThere) {
    int images = 0;
    for (const QString& name : pages()) {
        for (const QString& image : Page(name).images()) {
            EXPECT_FALSE(QImage(kHelp + image).isNull()) << name.toStdString() << " shows " << image.toStdString();
            ++images;
        }
    }
    EXPECT_GT(images, 0);
}

TEST(HelpPages, EveryPageIsReachedFromTheIndexAndLeadsBack) {
    QSet<QString> reached;
    QStringList ahead{"is_index.html"};
    while (!ahead.isEmpty()) {
        const QString name = ahead.takeFirst();
        if (reached.contains(name)) continue;
        reached.insert(name);
        ahead += Page(name).links();
    }
    for (const QString& name : pages()) {
        EXPECT_TRUE(reached.contains(name)) << name.toStdString();
        if (name != "is_index.html") {
            EXPECT_TRUE(Page(name).links().contains("is_index.html")) << name.toStdString();
        }
    }
}

TEST(HelpPages, EveryPageHasATitleOfItsOwnAndTheSharedStyle) {
    QSet<QString> titles;
    for (const QString& name : pages()) {
        EXPECT_FALSE(Page(name).title().isEmpty()) << name.toStdString();
        titles.insert(Page(name).title());
        EXPECT_NE(base::read_file((kHelp + name).toStdString())
                      .find("<link rel=\"stylesheet\" type=\"text/css\" href=\"kestrel.css\">"),
                  std::string::npos)
            << name.toStdString();
    }
    EXPECT_EQ(titles.size(), pages().size());
}

/// A caption as it is read: without the mark of its key.
QString plain(QString caption) {
    return caption.remove('&').simplified();
}

/// Captions of a window that no page mentions.
std::vector<std::string> unexplained(const QWidget& window) {
    QStringList captions;
    for (const auto* label : window.findChildren<QLabel*>())
        captions.append(label->text());
    for (const auto* button : window.findChildren<QAbstractButton*>())
        captions.append(button->text());
    for (const auto* frame : window.findChildren<QGroupBox*>())
        captions.append(frame->title());
    for (const auto* action : window.findChildren<QAction*>())
        captions.append(action->text());
    std::vector<std::string> missing;
    for (const QString& caption : captions) {
        if (!whole_text().contains(plain(caption))) missing.push_back(plain(caption).toStdString());
    }
    return missing;
}

TEST(HelpPages, ExplainEveryControlOfTheCoefficientEditor) {
    test::ScriptedInteraction said;
    frmISModelProps editor(CoefficientStore::at(KESTREL_SOURCE_DIR "/etc/isprops.xml"));
    editor.show();
    EXPECT_THAT(unexplained(editor), IsEmpty());
    const clsISModelProperties sets;
    frmAddLCType dialog(sets, *editor.findChild<QComboBox*>("cboLCType"), *editor.findChild<CoefficientGrid*>());
    EXPECT_THAT(unexplained(dialog), IsEmpty());
}

TEST(HelpPages, ExplainEveryControlOfTheViewer) {
    EXPECT_THAT(unexplained(frmISTParams()), IsEmpty());
}

TEST(HelpPages, ExplainEveryControlOfTheAnalysisWindows) {
    test::ScriptedInteraction said;
    test::TemporaryFolder folder;
    base::create_folder(folder / "etc");
    base::copy_file(KESTREL_SOURCE_DIR "/etc/isprops.xml", folder / "etc/isprops.xml");
    base::NoProgress progress;
    hosting::HeadlessApplication application(progress);
    frmISParams form(folder.path());
    form.Application(&application);
    form.show();
    form.findChild<QPushButton*>("cmdDSAdd")->click();
    EXPECT_THAT(unexplained(form), IsEmpty());
    EXPECT_TRUE(whole_text().contains("Meters or Feet"));
    EXPECT_THAT(unexplained(frmISPDensity()), IsEmpty());
    EXPECT_TRUE(whole_text().contains(frmISPDensity().windowTitle()));
}

TEST(HelpPages, NameEveryCommand) {
    for (int sub_type = 1; sub_type <= 6; ++sub_type) {
        clsCommands command;
        command.ICommandSubType_SetSubType(sub_type);
        EXPECT_TRUE(whole_text().contains(QString::fromStdString(command.ICommand_Caption())));
    }
}

TEST(HelpPages, ExplainEveryFieldAndFileOfAResult) {
    for (const char* name : {"TotHects", "TotAcres", "TotISHec", "TotISAcr", "pctIS", "Complete", ".shp", ".dbf",
                             ".qml", ".lyr", ".prm", ".met", "< 10%", "10% - 25%", "> 25%"}) {
        EXPECT_TRUE(whole_text().contains(name)) << name;
    }
}

TEST(HelpPages, QuoteTheMessagesOfARunAsTheyStand) {
    for (const char* message :
         {"Spatial Analyst Extension required to run Impervious Surface Analysis.",
          "No coefficients defined in the selected Coefficient Set for the land cover class",
          "An error occurred while calculating land area and impervious surface area.",
          "Error calculting the Population Density:",  // sic
          "Would you like to continue with the analysis without this scenario?",
          "are not in the same projection.",
          "do not overlap.",
          "Spatial Analyst extension is required.",
          "Error occurred while adjusting area calculations for selected 'Development Scenarios'.",
          "Some of the (selected) polygons in the Analysis Layer overlapped NODATA cells in the Land Cover Layer.",
          "No Analysis theme selected, please select from dropdown list.",
          "No Land Cover theme selected, please select from dropdown list.",
          "Land Cover units not defined, please select from dropdown list.",
          "Land Cover Type not defined, please select from dropdown list.",
          "Analysis unit not defined, please select from dropdown list.",
          "Population Density option not defined, please select option.",
          "No Populaiton Density field selected, please select from dropdown list.",  // sic
          "Numeric value must be entered in field.",
          "Please specify an output name.",
          "Please enter a shapefile name.",
          "Folder does not exist:",
          "defined in ArcView project does not exist.",
          "Missing: Model_Params File",
          "Changes to the coefficient set have not been saved.",
          "There are no layers with an associated \"Parameters\" file.",
          "There are no layers with an associated \"Metadata\" file.",
          "Record Call Stack Sequence"}) {
        EXPECT_TRUE(whole_text().contains(message)) << message;
    }
}

TEST(HelpPages, GiveTheShippedCoefficientsAsTheStoreHasThem) {
    test::ScriptedInteraction said;
    frmISModelProps editor(CoefficientStore::at(KESTREL_SOURCE_DIR "/etc/isprops.xml"));
    editor.show();
    const QString text = Page("coefficients.html").text().simplified();
    for (const auto& set : editor.properties().ISLCDefs) {
        for (const auto& one : set->LCClasses) {
            if (one->LCHigh == 0 || one->ID == 141 || one->ID == 142) continue;  // told in groups
            const QString row = QStringLiteral("%1 %2 %3 %4 %5")
                                    .arg(one->ID)
                                    .arg(QString::fromStdString(one->LCName))
                                    .arg(double(one->LCHigh))
                                    .arg(double(one->LCMed))
                                    .arg(double(one->LCLow));
            EXPECT_TRUE(text.contains(row)) << row.toStdString();
        }
    }
}

}  // namespace
}  // namespace kestrel
