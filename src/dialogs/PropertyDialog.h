#pragma once

#include <array>
#include <optional>
#include <QDialog>
#include <QList>
#include <QPointer>
#include <QString>

#include "dialogs/DialogServices.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

/// What the property dialogs of archives and trends share: the name check of OK, the cancelled
/// flag, usable and greyed fields, Ctrl+Tab, F1, pickers, access keys and accessible names.
///
/// A dialog is made for one edit and shown once; a module of records fills it and reads it back.
/// The dialog itself knows no recordset. For the user-interface thread.
///
/// A derived constructor builds its controls and lists, then calls SetUpFrame and at its end
/// NameControls.
class PropertyDialog : public QDialog {
    Q_OBJECT

public:
    /// True until OK has accepted the name.
    [[nodiscard]] bool Cancelled() const noexcept { return cancelled_; }

    /// The name under which the record was loaded; the name check lets it pass. Called once, when
    /// the controls have been filled: from then on the dialog answers to the user.
    void SetOpenedName(const QString& name);
    [[nodiscard]] const QString& OpenedName() const noexcept { return openedName_; }
    /// Gives the record its old name back among the names in use. For a record that could not be
    /// stored after OK, which has entered the new one there.
    void TakeBackName();

    /// `ParamNames` of the index text, carried through; nothing: Null.
    [[nodiscard]] const std::optional<QString>& IndexTextParamNames() const noexcept {
        return indexTextParamNames_;
    }
    void SetIndexTextParamNames(std::optional<QString> names);

protected:
    /// The controls that every property dialog has. They belong to the derived dialog.
    struct Frame {
        QTabWidget* tabs;
        QPushButton* cmdOk;
        QPushButton* cmdCancel;
        QPushButton* cmdHelp;
        QLineEdit* txtName;
    };

    /// `services` is borrowed. `nameGroup` is the group of names that OK checks; it must be a
    /// literal.
    PropertyDialog(const DialogServices& services, QStringView nameGroup, QWidget* owner);

    void SetUpFrame(const Frame& frame);
    /// Gives every field the text of its label as accessible name, and every label, option and
    /// check box without an access key one that is free on its page.
    void NameControls();
    /// Context number of the help on a page.
    [[nodiscard]] virtual int HelpTopic(int page) const = 0;

    [[nodiscard]] const DialogServices& Services() const noexcept { return services_; }
    [[nodiscard]] QString Text(int id) const;
    /// True once SetOpenedName has been called.
    [[nodiscard]] bool Loaded() const noexcept { return loaded_; }

    /// Usable or not. Fields and drop-downs that are not stay visible on the colour of a button's
    /// face; usable ones have that of a window.
    void SetUsable(QWidget* control, bool usable);

    /// Names the members of a control array `name(0)`, `name(1)`, ...
    template <typename Control, std::size_t N>
    static void NameArray(QStringView name, const std::array<Control*, N>& members) {
        for (std::size_t i = 0; i < N; ++i) {
            members[i]->setObjectName(
                QStringLiteral("%1(%2)").arg(name, QString::number(static_cast<int>(i))));
        }
    }

    // Make a button the picker of the field beside it: caption, tool tip, accessible name, click.
    void ConnectVariablePicker(QPushButton* button, QLineEdit* field);
    /// `title`: number of the text that names what is chosen.
    void ConnectFolderPicker(QPushButton* button, QComboBox* field, int title);
    /// `keyFilter`: what may be typed, as for MResources::RestrictInput; -1: everything.
    void ConnectTextEditor(QPushButton* button, QLineEdit* field, int keyFilter = -1);

    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void cmdOk_Click();
    void cmdHelp_Click();

private:
    struct Picker {
        QPushButton* button;
        QWidget* field;
        int toolTip;  // number of its text
    };

    /// Tells the user where the field cannot hold what has been chosen.
    bool Fits(const QString& chosen, const QLineEdit& field);
    void AddPicker(QPushButton* button, QWidget* field, int toolTip);
    void ShowNextPage(int step);
    void PaintField(QWidget* field, bool usable);

    const DialogServices& services_;
    const QStringView nameGroup_;
    Frame frame_{};
    QList<QWidget*> fields_;  // whose background follows their being usable
    QList<Picker> pickers_;
    QString openedName_;
    std::optional<QString> indexTextParamNames_;
    bool cancelled_ = true;
    bool loaded_ = false;
    bool painting_ = false;
};
