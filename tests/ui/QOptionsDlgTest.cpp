#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <tuple>

#include "exporter/ScratchConfigDir.h"
#include "exporter/UserSettings.h"
#include "host/HostServices.h"
#include "ui/QOptionsDlg.h"

namespace fs = std::filesystem;

namespace {

// Clicks the box's indicator: the middle of a wide check box is beyond its text and takes no clicks.
void toggle(QCheckBox* box) {
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
}

QStringList items(const QComboBox* combo) {
    QStringList list;
    for (int i = 0; i < combo->count(); ++i) {
        list << combo->itemText(i);
    }
    return list;
}

// Each test edits its own record, saved to its own configuration directory.
class OptionsDialog : public ::testing::Test {
protected:
    void SetUp() override {
        previousRefresh_ = host::setRefreshNodeInfoFunction([this] { ++refreshes_; });
    }
    void TearDown() override { host::setRefreshNodeInfoFunction(previousRefresh_); }

    void click(QDialogButtonBox::StandardButton which) {
        QTest::mouseClick(dialog_.buttonBox->button(which), Qt::LeftButton);
    }

    ScratchConfigDir dir_;
    host::RefreshFunction previousRefresh_;
    int refreshes_ = 0;
    UserSettings settings_;
    QOptionsDlg dialog_{settings_, nullptr};
};

TEST_F(OptionsDialog, FormHasTheNamedControlsAndTexts) {
    EXPECT_EQ(dialog_.objectName(), "ExplortOptions");
    EXPECT_EQ(dialog_.windowTitle(), "Dialog");
    // Each control is found in its group by the name of its field; its text is its own for a
    // check box and that of the label beside it otherwise.
    const std::tuple<QGroupBox*, QString, QString, QLabel*> controls[] = {
        {dialog_.groupGeneral, "exportVersion", "Format version to export:", dialog_.exportVersionLabel},
        {dialog_.groupNormals, "smoothNormals", "Smooth normals:", dialog_.smoothNormalsLabel},
        {dialog_.groupMisc, "exportHiddenObjects", "Export hidden objects", nullptr},
        {dialog_.groupMisc, "errorOnInvalidUserDefs", "Error on invalid user defines", nullptr},
        {dialog_.groupMisc, "modelScale", "Model scale:", dialog_.modelScaleLabel},
        {dialog_.groupView, "showNodeInfo", "Show node info.", nullptr},
        {dialog_.groupView, "showExportStat", "Show export stat.", nullptr},
        {dialog_.groupExternalViewer, "runViewerAfterExport", "Run external viewer after export", nullptr},
        {dialog_.groupExternalViewer, "viewerPath", "Executable (abs. path):", dialog_.viewerPathLabel},
        {dialog_.groupExternalViewer, "viewerArgs", "Arguments:", dialog_.viewerArgsLabel},
        {dialog_.groupExternalViewer, "viewerWorkDir", "Work directory:", dialog_.viewerWorkDirLabel},
    };
    for (const auto& [group, name, text, label] : controls) {
        QWidget* control = group->findChild<QWidget*>(name);
        ASSERT_NE(control, nullptr) << name.toStdString();
        EXPECT_EQ(label ? label->text() : qobject_cast<QCheckBox*>(control)->text(), text);
    }
    EXPECT_EQ(
        QStringList({dialog_.groupGeneral->title(), dialog_.groupNormals->title(), dialog_.groupMisc->title(),
                     dialog_.groupView->title(), dialog_.groupExternalViewer->title()}),
        QStringList({"General", "Normals", "Misc", "View", "External viewer"}));
    EXPECT_EQ(items(dialog_.exportVersion), QStringList({"10 (recomended)", "11 (devs only)"}));
    EXPECT_EQ(items(dialog_.smoothNormals),
              QStringList({"Off", "On", "Marked, def. Off", "Marked, def. On"}));
    EXPECT_EQ(items(dialog_.modelScale), QStringList({"100:1", "50:1", "25:1", "20:1", "10:1", "1:1", "1:10",
                                                      "1:20", "1:25", "1:50", "1:100"}));
    EXPECT_EQ(dialog_.buttonBox->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
}

TEST_F(OptionsDialog, ShowFillsTheControlsAndOkSavesWhatWasChanged) {
    settings_.setLegacyFlag(false);
    settings_.setSmoothNormals(3);
    settings_.setModelScale(8);
    settings_.setExportHiddenObjects(true);
    settings_.setViewerPath(L"/opt/vi\u00EBwer");
    settings_.setViewerArgs(L"-old");
    settings_.setShowExportStat(false);
    settings_.setExportVersion(11);
    dialog_.show();

    EXPECT_EQ(dialog_.exportVersion->currentIndex(), 1);
    EXPECT_EQ(dialog_.smoothNormals->currentIndex(), 3);
    EXPECT_EQ(dialog_.modelScale->currentText(), "1:25");
    EXPECT_TRUE(dialog_.exportHiddenObjects->isChecked());
    EXPECT_FALSE(dialog_.errorOnInvalidUserDefs->isChecked());
    EXPECT_FALSE(dialog_.showExportStat->isChecked());
    EXPECT_FALSE(dialog_.showNodeInfo->isChecked());
    EXPECT_EQ(dialog_.viewerPath->text(), QString::fromUtf8("/opt/vi\xC3\xABwer"));

    toggle(dialog_.showNodeInfo);
    toggle(dialog_.exportHiddenObjects);
    dialog_.smoothNormals->setCurrentIndex(1);
    dialog_.modelScale->setCurrentIndex(0);
    dialog_.exportVersion->setCurrentIndex(0);
    dialog_.viewerArgs->clear();
    QTest::keyClicks(dialog_.viewerArgs, "-f $FILE$");
    click(QDialogButtonBox::Ok);

    EXPECT_FALSE(dialog_.isVisible());
    EXPECT_EQ(dialog_.result(), QDialog::Accepted);
    EXPECT_EQ(dir_.read(),
              "11\n0\n1\n0\n/opt/vi\xC3\xABwer\n-f $FILE$\n\n1\n1\n100:1\n0\n0\n1\n0\n1\n0\n10\n");
    EXPECT_TRUE(settings_.showNodeInfo());
    EXPECT_EQ(settings_.viewerArgs(), L"-f $FILE$");
    EXPECT_EQ(refreshes_, 1);
}

TEST_F(OptionsDialog, CancelChangesNothing) {
    settings_.setViewerPath(L"/kept");
    dialog_.show();
    toggle(dialog_.runViewerAfterExport);
    QTest::keyClicks(dialog_.viewerPath, "/more");
    dialog_.modelScale->setCurrentIndex(10);
    click(QDialogButtonBox::Cancel);

    EXPECT_FALSE(dialog_.isVisible());
    EXPECT_EQ(dialog_.result(), QDialog::Rejected);
    EXPECT_FALSE(fs::exists(dir_.file()));
    EXPECT_FALSE(settings_.runViewerAfterExport());
    EXPECT_EQ(settings_.viewerPath(), L"/kept");
    EXPECT_EQ(settings_.modelScale(), 5u);
    EXPECT_EQ(refreshes_, 0);
}

TEST_F(OptionsDialog, VersionComboIsSetOnlyForVersionsItOffers) {
    settings_.setExportVersion(11);
    dialog_.show();
    EXPECT_EQ(dialog_.exportVersion->currentIndex(), 1);
    click(QDialogButtonBox::Cancel);

    // An unknown version leaves the combo box where it stood.
    settings_.setExportVersion(12);
    dialog_.show();
    EXPECT_EQ(dialog_.exportVersion->currentIndex(), 1);
    click(QDialogButtonBox::Cancel);

    // A fresh dialog stands at its first item, and OK then writes version 10.
    QOptionsDlg fresh(settings_, nullptr);
    fresh.show();
    EXPECT_EQ(fresh.exportVersion->currentIndex(), 0);
    QTest::mouseClick(fresh.buttonBox->button(QDialogButtonBox::Ok), Qt::LeftButton);
    EXPECT_EQ(settings_.exportVersion(), 10);
    EXPECT_TRUE(dir_.read().ends_with("\n10\n"));
}

}  // namespace
