#pragma once
// The options dialog. Showing it sets every control from the settings record; OK copies the
// controls back, saves the settings file and refreshes the host's node information; Cancel
// changes nothing.

#include <QDialog>

#include "ui/Ui_ExplortOptions.h"

class QShowEvent;
class UserSettings;

class QOptionsDlg : public QDialog, public Ui_ExplortOptions {
    Q_OBJECT

public:
    // Edits the process-wide record.
    explicit QOptionsDlg(QWidget* parent = nullptr);
    QOptionsDlg(UserSettings& settings, QWidget* parent);

public slots:
    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    UserSettings& settings_;
};
