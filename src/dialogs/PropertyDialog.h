#pragma once

#include <array>
#include <functional>
#include <optional>
#include <QDialog>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>
#include <span>

#include "dialogs/DialogServices.h"
#include "dialogs/TextDialog.h"
#include "drafts/Draft.h"
#include "project/FieldText.h"
#include "project/Schema.h"

class ManyRecords;
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
    /// Whether the control holds something else than when the record had been loaded. What does not
    /// is not written back.
    [[nodiscard]] bool Touched(const QWidget& control) const;

    /// The dialog stands for so many records. Returns what the controls that show them are then
    /// added to; they alone are asked for by Touched.
    /// `field`, `fields`: numbers of the texts that the button of OK then bears.
    ManyRecords& ShowMany(int records, int field, int fields);

    /// Stores the record; run by OK. Where it gives false, having told the user why, the dialog
    /// stays open with all that was typed.
    void SetStore(std::function<bool()> store) { store_ = std::move(store); }

    /// Selects the entry that stands for a stored code. One that the list does not offer is shown
    /// in grey, with its number and what it means, and selects nothing; so does Null.
    void ShowCode(QComboBox& list, std::optional<int> code,
                  std::span<const project::Code> codes = {});
    /// The field shows this column of the record.
    void SetColumn(QLineEdit& field, const QString& column) { columns_.insert(column, &field); }
    /// What the user knows the column as; empty when no field shows it.
    [[nodiscard]] QString LabelOf(const QString& column) const;

    /// What is stored there cannot be typed.
    void SetReadOnly(QLineEdit& field);
    /// The field stands for a number in this range. Where its text is none as a whole, or does not
    /// fit, the field is marked and shows what would be stored; OK refuses what does not fit.
    void ExpectNumber(QLineEdit& field, const project::NumberRange& range);

    /// `ParamNames` of the index text, carried through; nothing: Null.
    [[nodiscard]] const std::optional<QString>& IndexTextParamNames() const noexcept {
        return indexTextParamNames_;
    }
    void SetIndexTextParamNames(std::optional<QString> names);

    /// The record's text in the project's other languages, edited beside the one shown; `language`
    /// names that one's.
    void SetOtherTexts(const QString& language, QList<LanguageText> others) {
        textLanguage_ = language;
        otherTexts_ = std::move(others);
    }
    [[nodiscard]] const QList<LanguageText>& OtherTexts() const noexcept { return otherTexts_; }

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
    /// Why OK cannot store the record as it is, and the field to put that right.
    struct Objection {
        QLineEdit* field;
        QString text;
    };
    /// Asked by OK; nothing when all that the record needs is there.
    [[nodiscard]] virtual std::optional<Objection> WhatIsMissing() const { return std::nullopt; }
    /// Context number of the help on a page.
    [[nodiscard]] virtual int HelpTopic(int page) const = 0;

    [[nodiscard]] const DialogServices& Services() const noexcept { return services_; }
    [[nodiscard]] QString Text(int id) const;
    /// See ShowMany.
    [[nodiscard]] bool IsOfMany() const noexcept { return many_ != nullptr; }
    /// True once SetOpenedName has been called.
    [[nodiscard]] bool Loaded() const noexcept { return loaded_; }

    /// Usable or not. Fields and drop-downs that are not stay visible on the colour of a button's
    /// face; usable ones have that of a window.
    void SetUsable(QWidget* control, bool usable);
    /// Fills a list with the codes that dialogs offer, in their own order; none is selected.
    void FillWithCodes(QComboBox& list, std::span<const project::Code> codes);

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
    void ConnectTextEditor(QPushButton* button, QLineEdit* field);
    /// The same for the record's text, which has other languages beside it.
    void ConnectTextsEditor(QPushButton* button, QLineEdit* field);

    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void done(int result) override;

private slots:
    void cmdOk_Click();
    void cmdHelp_Click();

private:
    struct Picker {
        QPushButton* button;
        QWidget* field;
        int toolTip;  // number of its text
    };

    /// What the user has changed, to be kept in case the program ends; Type does the same again.
    [[nodiscard]] QList<drafts::Field> Typed() const;
    void Type(const QList<drafts::Field>& fields);
    /// Tells the user where the field cannot hold what has been chosen.
    bool Fits(const QString& chosen, const QLineEdit& field);
    void AddPicker(QPushButton* button, QWidget* field, int toolTip);
    void MarkNumber(QLineEdit& field);
    [[nodiscard]] std::optional<Objection> NumberThatDoesNotFit() const;
    [[nodiscard]] QString NumberText(const QLineEdit& field, int text) const;
    void Refuse(const Objection& objection);
    void ShowNextPage(int step);
    void PaintField(QWidget* field, bool usable);

    const DialogServices& services_;
    const QStringView nameGroup_;
    Frame frame_{};
    QList<QWidget*> fields_;  // whose background follows their being usable
    QList<Picker> pickers_;
    QHash<const QWidget*, QVariant> loadedContents_;
    QHash<const QLineEdit*, project::NumberRange> numbers_;
    QHash<QString, const QLineEdit*> columns_;
    std::function<bool()> store_;
    ManyRecords* many_ = nullptr;  // null: the dialog is that of one record
    QString openedName_;
    std::optional<QString> indexTextParamNames_;
    QString textLanguage_;
    QList<LanguageText> otherTexts_;
    bool cancelled_ = true;
    bool loaded_ = false;
    bool painting_ = false;
};
