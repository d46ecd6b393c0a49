#include "transfer/FImport.h"

#include <algorithm>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeView>

#include "ado/AdoError.h"
#include "exchange/Apply.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "messages/MessageBox.h"
#include "platform/HelpTopics.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/ColumnChoices.h"
#include "transfer/KeptForm.h"
#include "transfer/PlanTexts.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using exchange::SheetKind;
using guard::Guard;
using Text = MResourceTable::Exchange;

constexpr int kTicksWithin = 150;        // milliseconds that make one plan of several ticks
constexpr int kShowProgressAfter = 500;  // milliseconds
constexpr std::size_t kRowsEach = 50;    // between two looks at Cancel
constexpr std::size_t kReadEach = 500;   // likewise, while nothing is written
constexpr int kMostOpen = 300;           // rows whose fields are shown at once

/// Shows how far the reading has come; `all` is 0 where nobody knows.
exchange::GoOn ProgressOf(RowProgress& progress, std::size_t all) {
    return [show = progress.Function(), all](std::size_t rows) {
        if (rows % kReadEach != 0) return true;
        return show(static_cast<int>(all == 0 ? 0 : std::min(rows, all)), static_cast<int>(all));
    };
}

}  // namespace

FImport::FImport(projectdb::IProjectWork& work, const MResources::TextTable& texts, QWidget* owner)
    : QDialog(owner), work_(work), texts_(texts), model_(new transfer::PlanModel(texts, this)) {
    Build();
    planning_.setSingleShot(true);
    planning_.setInterval(kTicksWithin);
    connect(&planning_, &QTimer::timeout, this, &FImport::Plan);
    connect(model_, &transfer::PlanModel::Ticked, this, &FImport::TakeTicks);
    ShowSheets();
    ShowState();
}

bool FImport::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && !file_.sheets.empty()) {
        Guard(u"FImport.event"_s, [&] {
            if (work_.Connection().ContentNumber() == planned_) return;
            told_ = texts_.GetText(Text::PlannedAnew);
            Plan();
        });
    }
    return QDialog::event(event);
}

bool FImport::eventFilter(QObject* watched, QEvent* event) {
    const bool isSpace =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
    if (watched != treePlan_ || !isSpace) return QDialog::eventFilter(watched, event);
    TickSelected();
    return true;
}

void FImport::keyPressEvent(QKeyEvent* event) {
    if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpExchange, this);
    }
    QDialog::keyPressEvent(event);
}

void FImport::cmdBrowse_Click() {
    const QString start =
        txtFile_->text().isEmpty() ? transfer::LoadKeptForm().importFolder : txtFile_->text();
    const QString file = QFileDialog::getOpenFileName(this, windowTitle(), start,
                                                      texts_.GetText(Text::ImportFilter));
    Open(file);
}

void FImport::Open(const QString& file) {
    if (file.isEmpty()) return;
    txtFile_->setText(file);
    transfer::KeptForm kept = transfer::LoadKeptForm();
    kept.importFolder = QFileInfo(file).absolutePath();
    transfer::Keep(kept);
    ReadFile();
}

void FImport::ReadFile() {
    if (txtFile_->text().isEmpty()) return;
    file_ = {};
    ticks_ = {};
    told_.clear();
    const QString name = txtFile_->text();
    const bool isUtf8 = cmbEncoding_->currentIndex() == 0;
    try {
        RowProgress progress(texts_, static_cast<int>(Text::Reading), this);
        file_ = transfer::ReadImportFile(work_.Connection(), name,
                                         isUtf8 ? csv::Encoding::Utf8 : csv::Encoding::Windows1252,
                                         ProgressOf(progress, 0));
    } catch (const exchange::GivenUp&) {
        told_ = texts_.GetText(Text::PlanGivenUp);
    } catch (const transfer::BadEncoding& bad) {
        Refuse(texts_.GetText(Text::BadByte, {{u"file", name},
                                              {u"encoding", cmbEncoding_->currentText()},
                                              {u"line", QString::number(bad.place.line)},
                                              {u"column", QString::number(bad.place.column)},
                                              {u"at", QString::number(bad.place.character)}}),
               {});
    } catch (const ado::AdoError& error) {
        Refuse(texts_.GetText(Text::FileRefused, {{u"file", name}}),
               QString::fromStdString(error.Description()));
    }
    ShowSheets();
    Plan();
}

void FImport::Refuse(const QString& text, const QString& details) {
    messages::ShowMessage({text, messages::MessageButtons::Ok, windowTitle(), details}, this);
}

exchange::InputRows* FImport::Shown() {
    const auto shown = static_cast<std::size_t>(std::max(cmbSheet_->currentIndex(), 0));
    return shown < file_.sheets.size() ? &file_.sheets[shown] : nullptr;
}

/// Of several sheets it is known what they are; what a single one is can be chosen.
void FImport::ShowSheets() {
    const QSignalBlocker blocker(cmbSheet_);
    cmbSheet_->clear();
    for (const exchange::InputRows& sheet : file_.sheets) {
        cmbSheet_->addItem(projectdb::ToQString(sheet.SheetName()));
    }
    // The one with more to choose from.
    cmbSheet_->setCurrentIndex(cmbSheet_->count() - 1);
    const bool isSeveral = file_.sheets.size() > 1;
    for (QWidget* widget : {static_cast<QWidget*>(lblSheet_), static_cast<QWidget*>(cmbSheet_)}) {
        widget->setVisible(isSeveral);
    }
    for (QWidget* widget : {static_cast<QWidget*>(lblKind_), static_cast<QWidget*>(cmbKind_)}) {
        widget->setVisible(file_.sheets.size() == 1);
    }
    tblColumns_->setVisible(!file_.sheets.empty());
    ShowColumns();
}

void FImport::ShowColumns() {
    const exchange::InputRows* shown = Shown();
    tblColumns_->Show(shown);
    if (shown == nullptr) return;
    cmbKind_->setCurrentIndex(shown->Columns().Kind() == SheetKind::Trends ? 0 : 1);
}

void FImport::TakeKind() {
    Guard(u"FImport.TakeKind"_s, [&] {
        exchange::InputRows* shown = Shown();
        if (shown == nullptr) return;
        shown->SetKind(work_.Connection(),
                       cmbKind_->currentIndex() == 0 ? SheetKind::Trends : SheetKind::Archives);
        ticks_ = {};
        ShowColumns();
    });
    Plan();
}

exchange::PlanOptions FImport::Options() const {
    exchange::PlanOptions options = ticks_;
    constexpr exchange::MatchBy kMatches[] = {exchange::MatchBy::Both, exchange::MatchBy::Id,
                                              exchange::MatchBy::Name};
    options.matchBy = kMatches[std::max(cmbMatch_->currentIndex(), 0)];
    options.deleteMissing = chkDelete_->isChecked();
    return options;
}

/// None where the user gives it up.
std::vector<exchange::Plan> FImport::MakePlans() {
    const QString givenUp = texts_.GetText(Text::PlanGivenUp);
    if (told_ == givenUp) told_.clear();
    std::size_t rows = 0;
    for (const exchange::InputRows& sheet : file_.sheets) rows += sheet.Count();
    try {
        RowProgress progress(texts_, static_cast<int>(Text::Planning), this);
        return exchange::MakePlans(work_.Connection(), file_.sheets, Options(),
                                   ProgressOf(progress, rows));
    } catch (const exchange::GivenUp&) {
        told_ = givenUp;
        return {};
    }
}

/// REQUIRES: they are of what the project holds now, or there are none.
void FImport::ShowPlans(std::vector<exchange::Plan> plans) {
    ado::Connection& connection = work_.Connection();
    planned_ = connection.ContentNumber();
    const int before = model_->rowCount();
    model_->Take(connection, std::move(plans));
    if (model_->rowCount() != before && model_->rowCount() <= kMostOpen) treePlan_->expandAll();
}

void FImport::Plan() {
    planning_.stop();
    const bool hasKeys = std::all_of(file_.sheets.begin(), file_.sheets.end(),
                                     [](const auto& sheet) { return sheet.HasKey(); });
    Guard(u"FImport.Plan"_s, [&] {
        std::vector<exchange::Plan> plans;
        try {
            if (hasKeys && !file_.sheets.empty()) plans = MakePlans();
        } catch (...) {
            ShowPlans({});  // nothing old is shown
            throw;
        }
        ShowPlans(std::move(plans));
    });
    ShowState();
}

void FImport::TakeTicks(const std::vector<transfer::PlanModel::Row>& rows, bool isWanted) {
    const auto set = [&](auto& left, const auto& key) {
        isWanted ? static_cast<void>(left.erase(key)) : static_cast<void>(left.insert(key));
    };
    for (const transfer::PlanModel::Row& row : rows) {
        if (row.line == 0) {
            set(ticks_.kept, std::pair(row.kind, row.id));
        } else {
            set(ticks_.leftOut, std::pair(row.kind, row.line));
        }
    }
    told_.clear();
    cmdImport_->setEnabled(false);
    planning_.start();
}

/// As the current row becomes.
void FImport::TickSelected() {
    const auto rowOf = [](const QModelIndex& index) {
        return index.parent().isValid() ? index.parent().row() : index.row();
    };
    const QModelIndex current = treePlan_->currentIndex();
    if (!current.isValid()) return;
    std::vector<int> rows;
    for (const QModelIndex& index : treePlan_->selectionModel()->selectedRows()) {
        rows.push_back(rowOf(index));
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    model_->Tick(rows, !model_->IsTicked(rowOf(current)));
}

/// What is to be known of the file beside its rows.
QString FImport::Hints() const {
    QStringList hints;
    for (const QString& sheet : file_.passedOver) {
        hints += texts_.GetText(Text::PassedOver, {{u"sheet", sheet}});
    }
    for (const exchange::InputRows& sheet : file_.sheets) {
        if (!sheet.HasKey()) {
            hints +=
                texts_.GetText(sheet.Columns().Kind() == SheetKind::Trends ? Text::NoKeyTrends
                                                                           : Text::NoKeyArchives);
        }
        QStringList left;
        for (std::size_t i = 0; i < sheet.Headings().size(); ++i) {
            const QString heading = projectdb::ToQString(sheet.Headings()[i]);
            if (!sheet.ColumnOf(i) && !heading.trimmed().isEmpty()) left += heading;
        }
        if (left.isEmpty()) continue;
        const auto kind = NameOf(sheet.Columns().Kind(), transfer::FileLanguage(texts_));
        hints += texts_.GetText(Text::ColumnsLeftOut, {{u"sheet", projectdb::ToQString(kind)},
                                                       {u"headings", left.join(u", "_s)}});
    }
    return hints.join(u'\n');
}

void FImport::ShowState() {
    const std::size_t count = model_->Count();
    cmdImport_->setText(
        count == 0 ? texts_.GetText(Text::ImportNone)
        : count == 1
            ? texts_.GetText(Text::ImportOne)
            : texts_.GetText(Text::ImportMany,
                             {{u"n", QLocale().toString(static_cast<qulonglong>(count))}}));
    ado::Connection& connection = work_.Connection();
    cmdImport_->setEnabled(count > 0 && connection.State() == ado::ObjectState::Open &&
                           connection.IsWritable());
    const QSignalBlocker blocker(chkAll_);
    chkAll_->setEnabled(model_->HasTicks());
    chkAll_->setCheckState(model_->AllTicked());
    QStringList lines;
    if (!told_.isEmpty()) lines += told_;
    if (file_.sheets.empty()) lines += texts_.GetText(Text::NoFile);
    if (const QString hints = Hints(); !hints.isEmpty()) lines += hints;
    if (const QString summary = transfer::SummaryOf(model_->Plans(), texts_); !summary.isEmpty()) {
        lines += summary;
    }
    lblState_->setText(lines.join(u'\n'));
}

void FImport::cmdImport_Click() {
    Guard(u"FImport.cmdImport_Click"_s, [&] {
        QProgressDialog progress(texts_.GetText(Text::Importing),
                                 texts_.GetText(MResourceTable::kTextCancel), 0,
                                 static_cast<int>(model_->Count()), this);
        progress.setObjectName(u"dlgProgress"_s);
        progress.setWindowTitle(windowTitle());
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(kShowProgressAfter);
        progress.setAutoClose(false);
        progress.setAutoReset(false);
        auto outcome = exchange::Outcome::GivenUp;
        work_.RunStep([&] {
            outcome = exchange::Apply(work_.Connection(), model_->Plans(), [&](std::size_t rows) {
                if (rows % kRowsEach == 0) progress.setValue(static_cast<int>(rows));
                return !progress.wasCanceled();
            });
        });
        const Text text = outcome == exchange::Outcome::Done    ? Text::Imported
                          : outcome == exchange::Outcome::Stale ? Text::PlannedAnew
                                                                : Text::NothingImported;
        if (outcome == exchange::Outcome::Done) ticks_ = {};
        told_ = texts_.GetText(text);
    });
    Plan();
}
