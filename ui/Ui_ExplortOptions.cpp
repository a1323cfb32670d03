#include "ui/Ui_ExplortOptions.h"

#include <QFormLayout>
#include <QVBoxLayout>

#include "exporter/UserSettings.h"

namespace {

QGroupBox* addGroup(QDialog* dialog, QVBoxLayout* layout, const char* name) {
    auto* group = new QGroupBox(dialog);
    group->setObjectName(name);
    layout->addWidget(group);
    return group;
}

template <class Widget>
Widget* make(QWidget* parent, const char* name) {
    auto* widget = new Widget(parent);
    widget->setObjectName(name);
    return widget;
}

// A combo box named after its field, holding the labels of that field's choices in order.
QComboBox* makeCombo(QWidget* parent, const char* name) {
    auto* combo = make<QComboBox>(parent, name);
    if (const SettingInfo* info = UserSettings::findOption(name)) {
        for (const SettingChoice& choice : info->choices) {
            combo->addItem(
                QString::fromUtf8(choice.label.data(), static_cast<qsizetype>(choice.label.size())));
        }
    }
    return combo;
}

}  // namespace

void Ui_ExplortOptions::setupUi(QDialog* dialog) {
    if (dialog->objectName().isEmpty()) {
        dialog->setObjectName("ExplortOptions");
    }
    auto* layout = new QVBoxLayout(dialog);

    groupGeneral = addGroup(dialog, layout, "groupGeneral");
    auto* general = new QFormLayout(groupGeneral);
    exportVersionLabel = make<QLabel>(groupGeneral, "exportVersionLabel");
    exportVersion = makeCombo(groupGeneral, "exportVersion");
    general->addRow(exportVersionLabel, exportVersion);

    groupNormals = addGroup(dialog, layout, "groupNormals");
    auto* normals = new QFormLayout(groupNormals);
    smoothNormalsLabel = make<QLabel>(groupNormals, "smoothNormalsLabel");
    smoothNormals = makeCombo(groupNormals, "smoothNormals");
    normals->addRow(smoothNormalsLabel, smoothNormals);

    groupMisc = addGroup(dialog, layout, "groupMisc");
    auto* misc = new QFormLayout(groupMisc);
    exportHiddenObjects = make<QCheckBox>(groupMisc, "exportHiddenObjects");
    errorOnInvalidUserDefs = make<QCheckBox>(groupMisc, "errorOnInvalidUserDefs");
    modelScaleLabel = make<QLabel>(groupMisc, "modelScaleLabel");
    modelScale = makeCombo(groupMisc, "modelScale");
    misc->addRow(exportHiddenObjects);
    misc->addRow(errorOnInvalidUserDefs);
    misc->addRow(modelScaleLabel, modelScale);

    groupView = addGroup(dialog, layout, "groupView");
    auto* view = new QVBoxLayout(groupView);
    showNodeInfo = make<QCheckBox>(groupView, "showNodeInfo");
    showExportStat = make<QCheckBox>(groupView, "showExportStat");
    view->addWidget(showNodeInfo);
    view->addWidget(showExportStat);

    groupExternalViewer = addGroup(dialog, layout, "groupExternalViewer");
    auto* viewer = new QFormLayout(groupExternalViewer);
    runViewerAfterExport = make<QCheckBox>(groupExternalViewer, "runViewerAfterExport");
    viewerPathLabel = make<QLabel>(groupExternalViewer, "viewerPathLabel");
    viewerPath = make<QLineEdit>(groupExternalViewer, "viewerPath");
    viewerArgsLabel = make<QLabel>(groupExternalViewer, "viewerArgsLabel");
    viewerArgs = make<QLineEdit>(groupExternalViewer, "viewerArgs");
    viewerWorkDirLabel = make<QLabel>(groupExternalViewer, "viewerWorkDirLabel");
    viewerWorkDir = make<QLineEdit>(groupExternalViewer, "viewerWorkDir");
    viewer->addRow(runViewerAfterExport);
    viewer->addRow(viewerPathLabel, viewerPath);
    viewer->addRow(viewerArgsLabel, viewerArgs);
    viewer->addRow(viewerWorkDirLabel, viewerWorkDir);

    buttonBox = make<QDialogButtonBox>(dialog, "buttonBox");
    buttonBox->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttonBox);

    retranslateUi(dialog);
    QObject::connect(buttonBox, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttonBox, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
}

void Ui_ExplortOptions::retranslateUi(QDialog* dialog) {
    dialog->setWindowTitle("Dialog");
    groupGeneral->setTitle("General");
    exportVersionLabel->setText("Format version to export:");
    groupNormals->setTitle("Normals");
    smoothNormalsLabel->setText("Smooth normals:");
    groupMisc->setTitle("Misc");
    exportHiddenObjects->setText("Export hidden objects");
    errorOnInvalidUserDefs->setText("Error on invalid user defines");
    modelScaleLabel->setText("Model scale:");
    groupView->setTitle("View");
    showNodeInfo->setText("Show node info.");
    showExportStat->setText("Show export stat.");
    groupExternalViewer->setTitle("External viewer");
    runViewerAfterExport->setText("Run external viewer after export");
    viewerPathLabel->setText("Executable (abs. path):");
    viewerArgsLabel->setText("Arguments:");
    viewerWorkDirLabel->setText("Work directory:");
}
