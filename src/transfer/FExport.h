#pragma once

#include <cstdint>
#include <QDialog>
#include <unordered_set>
#include <vector>

#include "exchange/CsvSheet.h"
#include "exchange/Export.h"
#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"
#include "transfer/ExportJob.h"
#include "transfer/KeptForm.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

/// Asks what of the project goes into which file, in which form, and writes it: a workbook, or CSV
/// with a preview of its first lines. What has been chosen is there again the next time.
class FExport final : public QDialog {
    Q_OBJECT
public:
    /// What is selected where the export is asked for.
    struct Selection {
        std::unordered_set<std::int32_t> trends{};
        std::int32_t archive = 0;  // that is open; 0: none
        bool isChosen = false;     // it is asked for these trends, be it a single one
    };

    /// All are borrowed and outlive the window.
    FExport(projectdb::IProjectWork& work, const MResources::TextTable& texts, Selection selection,
            QWidget* owner);

    /// What has been written, when the window was accepted.
    [[nodiscard]] QString File() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    QLayout* BuildScope();
    QLayout* BuildForm();
    void BuildCsv();
    QLayout* BuildFile();
    QLayout* BuildButtons();
    QRadioButton* Option(const QString& name, const QString& text, QButtonGroup* group);
    QComboBox* Combo(const QString& name, int label, const QStringList& items, QGridLayout* into);
    void FillArchives();

    void ShowForm(const exchange::CsvForm& form);
    /// What is exported is another: the rows of the preview are read anew.
    void TakeScope();
    void ReadPreview();
    void ShowPreview();
    void ShowState();
    /// File name and form go together, whichever has been changed.
    void FollowFile();
    void FollowForm();
    void cmdBrowse_Click();
    void cmdOk_Click();
    [[nodiscard]] bool MayReplace();
    void Write();
    void ShowProgress(transfer::ExportJob& job);
    void Tell(const QString& text, const QString& details);
    [[nodiscard]] exchange::Selection Chosen() const;
    [[nodiscard]] exchange::SheetKind Kind() const;
    [[nodiscard]] exchange::CsvForm Form() const;

    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    Selection selection_;
    transfer::KeptForm kept_;
    std::optional<exchange::Sheet> sheet_;           // of the preview
    std::vector<std::vector<exchange::Cell>> rows_;  // likewise
    QString replaced_;                               // a file of which the user has agreed to it

    QRadioButton* optSelected_ = nullptr;
    QRadioButton* optArchives_ = nullptr;
    QRadioButton* optProject_ = nullptr;
    QListWidget* lstArchives_ = nullptr;
    QRadioButton* optXlsx_ = nullptr;
    QRadioButton* optCsv_ = nullptr;
    QWidget* fraCsv_ = nullptr;
    QComboBox* cmbSheet_ = nullptr;
    QComboBox* cmbSeparator_ = nullptr;
    QComboBox* cmbDecimal_ = nullptr;
    QComboBox* cmbEncoding_ = nullptr;
    QCheckBox* chkMark_ = nullptr;
    QPushButton* cmdLocale_ = nullptr;
    QPlainTextEdit* txtPreview_ = nullptr;
    QLabel* lblNote_ = nullptr;
    QLineEdit* txtFile_ = nullptr;
    QPushButton* cmdOk_ = nullptr;
};
