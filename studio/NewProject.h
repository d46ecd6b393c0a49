#pragma once

#include <optional>
#include <QDialog>
#include <QString>

#include "studio/StudioTexts.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace studio {

/// Asks for a new project's file and the languages of its texts, and makes it. Stays open, after a
/// message, while it cannot be made. A file that is there already is never touched.
class NewProjectDialog final : public QDialog {
    Q_OBJECT
public:
    /// `folder` is where the project is made unless the user names another.
    NewProjectDialog(const StudioTexts& texts, const QString& folder, QWidget* parent = nullptr);

    /// The native, absolute path of the project that has been made.
    [[nodiscard]] QString File() const { return file_; }

private slots:
    void cmdBrowse_Click();
    void cmdOk_Click();
    void UpdateEnabling();

private:
    void FillLanguages();
    /// What the user has typed as a path: in the folder, and with the extension of projects.
    [[nodiscard]] QString PathOf(QString typed) const;
    void Complain(const QString& message, const QString& details = {});

    StudioTexts texts_;
    QString folder_;
    QString file_;
    QLineEdit* txtFile_ = nullptr;
    QListWidget* lstLanguages_ = nullptr;
    QPushButton* cmdOk_ = nullptr;
};

/// Runs the dialog. The native path of the project that is to be opened; nullopt when the user
/// cancelled.
[[nodiscard]] std::optional<QString> NewProject(QWidget& owner, const StudioTexts& texts,
                                                const QString& folder);

}  // namespace studio
