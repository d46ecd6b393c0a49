// The windows over the project that the editor window opens: find and replace, patterns, compare,
// report.

#include "controls/TDBGrid.h"
#include "differences/FCompare.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "patterns/FArchivePatterns.h"
#include "patterns/FPatterns.h"
#include "platform/ComponentRegistry.h"
#include "project/Schema.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "replace/FReplace.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

FReplace& frmtabGrid::ReplaceWindow() {
    if (replace_ == nullptr) replace_ = new FReplace(*this, texts_, this);
    return *replace_;
}

void frmtabGrid::FindInProject(bool replacing) {
    if (!CommitPendingEdit()) return;
    ReplaceWindow().Open(replacing);
}

/// Where the variable of the current cell is used.
void frmtabGrid::ShowUsesOfCell() {
    if (!CommitPendingEdit()) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const int place = trends_->RowOf(trends.CurrentRow());
    const GridColumn* shown = trends.ColumnAt(trends.CurrentColumn());
    if (place < 0 || shown == nullptr) return Hint(MResourceTable::kTextHintNoVariable);
    const std::string field = projectdb::ToUtf8(shown->DataField());
    const project::Column* column = project::FindTrendColumn(field);
    const std::u16string text = ado::ToText(trends_->ValueAt(place, trends_->ColumnOf(field)));
    if (column == nullptr || !project::NamesVariable(*column, text)) {
        return Hint(MResourceTable::kTextHintNoVariable);
    }
    ReplaceWindow().ShowUses(projectdb::ToQString(text));
}

void frmtabGrid::ShowUsesOver(QWidget* owner, const QString& variable) {
    guard::Guard(QStringLiteral("frmtabGrid: mnuWhereUsed_Click"), [&] {
        FReplace uses(*this, texts_, owner);
        uses.LookAtUses(variable);
    });
}

void frmtabGrid::ShowReport() {
    const platform::ComponentRegistry components;
    if (!report_) {
        report_ = components.Load(u"KVProjectReport.Connect"_s).root;
        // Late bound, as the call is: another report may not tell of rows.
        const bool tells = report_ && report_->metaObject()->indexOfSignal(
                                          "RowChosen(QString,QString,int,QString)") >= 0;
        if (tells) {
            connect(report_, SIGNAL(RowChosen(QString, QString, int, QString)), this,
                    SLOT(ShowReportedRow(QString, QString, int, QString)));
        }
    }
    const bool shown =
        report_ && QMetaObject::invokeMethod(report_, "Show", Q_ARG(qulonglong, effectiveWinId()),
                                             Q_ARG(QString, project_.projectPath),
                                             Q_ARG(QString, u"KVTrend"_s));
    if (shown) return;
    messages::Message message{texts_.GetText(MResourceTable::kTextNoReport),
                              messages::MessageButtons::Ok,
                              texts_.GetText(MResourceTable::kTextEditorTitle)};
    message.kind = messages::MessageKind::Information;
    messages::ShowMessage(message, this);
}

/// The report tells all editors, those of other projects too.
void frmtabGrid::ShowReportedRow(const QString& projectPath, const QString& table, int id,
                                 const QString& column) {
    if (projectPath != project_.projectPath) return;
    guard::Guard(u"frmtabGrid: ShowReportedRow"_s, [&] {
        const projectdb::Place place{projectdb::ToUtf8(table), id, projectdb::ToUtf8(column)};
        if (!ShowPlace(place)) Hint(texts_.GetText(MResourceTable::Replace::PlaceGone));
    });
}

void frmtabGrid::CompareWith(const QString& file, const QString& name) {
    if (!CommitPendingEdit()) return;
    if (compare_ == nullptr) compare_ = new FCompare(*this, texts_, this);
    compare_->Open(file, name);
}

void frmtabGrid::MakeTrendsByPattern() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore() || !CommitPendingEdit() || !IsThere(project_.currentNodeKey)) return;
    FPatterns patterns(*this, texts_, projectdb::NodeId(project_.currentNodeKey), this);
    if (patterns.exec() == QDialog::Accepted) ShowTrends(patterns.Made());
}

/// The archive that is selected in the tree, or the one that is open.
void frmtabGrid::DuplicateArchiveByPattern() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore() || !CommitPendingEdit()) return;
    const QString selected = addIn_.SelectedNodeKey();
    const QString key = selected.isEmpty() ? project_.currentNodeKey : selected;
    const std::int32_t archive = projectdb::NodeId(key);
    auto original = patterns::ReadOriginal(Connection(), archive);
    if (!original) return Hint(MResourceTable::kTextHintNoArchive);
    FArchivePatterns patterns(*this, texts_, archive, ArchiveName(archive), std::move(*original),
                              this);
    if (patterns.exec() != QDialog::Accepted) return;
    addIn_.SelectArchive(projectdb::ArchiveNodeKey(patterns.Made().front()));
}
