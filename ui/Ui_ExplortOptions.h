#pragma once
// The form of the options dialog, "ExplortOptions": five groups of controls over the fields of
// UserSettings, each control named after its field, and OK and Cancel at the foot.

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

class Ui_ExplortOptions {
public:
    QGroupBox* groupGeneral;
    QLabel* exportVersionLabel;
    QComboBox* exportVersion;

    QGroupBox* groupNormals;
    QLabel* smoothNormalsLabel;
    QComboBox* smoothNormals;

    QGroupBox* groupMisc;
    QCheckBox* exportHiddenObjects;
    QCheckBox* errorOnInvalidUserDefs;
    QLabel* modelScaleLabel;
    QComboBox* modelScale;

    QGroupBox* groupView;
    QCheckBox* showNodeInfo;
    QCheckBox* showExportStat;

    QGroupBox* groupExternalViewer;
    QCheckBox* runViewerAfterExport;
    QLabel* viewerPathLabel;
    QLineEdit* viewerPath;
    QLabel* viewerArgsLabel;
    QLineEdit* viewerArgs;
    QLabel* viewerWorkDirLabel;
    QLineEdit* viewerWorkDir;

    QDialogButtonBox* buttonBox;

    // Builds the controls on dialog, fills the combo boxes with the choices of their fields and
    // connects OK to accept and Cancel to reject.
    void setupUi(QDialog* dialog);
    void retranslateUi(QDialog* dialog);
};
