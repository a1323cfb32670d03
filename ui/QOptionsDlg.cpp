#include "ui/QOptionsDlg.h"

#include "exporter/UserSettings.h"
#include "host/HostServices.h"

namespace {

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QOptionsDlg::QOptionsDlg(QWidget* parent) : QOptionsDlg(userSettings(), parent) {}

QOptionsDlg::QOptionsDlg(UserSettings& settings, QWidget* parent) : QDialog(parent), settings_(settings) {
    setupUi(this);
}

// Each control is found by the name of its field; fields without a control are left alone.
void QOptionsDlg::showEvent(QShowEvent* event) {
    for (const SettingInfo& info : UserSettings::options()) {
        QWidget* control = findChild<QWidget*>(toQString(info.name));
        const bool* flag = settingField<bool>(settings_, info);
        const std::wstring* text = settingField<std::wstring>(settings_, info);
        if (auto* box = qobject_cast<QCheckBox*>(control); box && flag) {
            box->setChecked(*flag);
        } else if (auto* edit = qobject_cast<QLineEdit*>(control); edit && text) {
            edit->setText(QString::fromStdWString(*text));
        } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
            // A value that is not in the list (a version this dialog does not offer) leaves the
            // combo box where it stands.
            if (auto index = choiceIndex(info, settingNumber(settings_, info).value_or(0))) {
                combo->setCurrentIndex(static_cast<int>(*index));
            }
        }
    }
    QDialog::showEvent(event);
}

void QOptionsDlg::accept() {
    QDialog::accept();
    for (const SettingInfo& info : UserSettings::options()) {
        QWidget* control = findChild<QWidget*>(toQString(info.name));
        bool* flag = settingField<bool>(settings_, info);
        std::wstring* text = settingField<std::wstring>(settings_, info);
        if (auto* box = qobject_cast<QCheckBox*>(control); box && flag) {
            *flag = box->isChecked();
        } else if (auto* edit = qobject_cast<QLineEdit*>(control); edit && text) {
            *text = edit->text().toStdWString();
        } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
            auto index = static_cast<std::size_t>(combo->currentIndex());
            if (index < info.choices.size()) {
                setSettingNumber(settings_, info, info.choices[index].value);
            }
        }
    }
    settings_.save();
    host::refreshNodeInfo();
}
