// The exchange with spreadsheets, as the editor window asks for it.

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "projectdb/NodeKey.h"
#include "texts/MResourceTable.h"
#include "transfer/FImport.h"

using Text = MResourceTable::Exchange;

void frmtabGrid::ShowExport(FExport::Selection selection, QWidget* owner) {
    FExport window(*this, texts_, std::move(selection), owner);
    if (window.exec() != QDialog::Accepted) return;
    Hint(texts_.GetText(Text::Exported, {{u"file", window.File()}}));
}

void frmtabGrid::ExportRows() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!CommitPendingEdit()) return;
    FExport::Selection selected;
    for (const GridRowId row : tdbA->SplitAt(1).SelectedRows()) {
        selected.trends.insert(static_cast<std::int32_t>(row));
    }
    selected.archive = projectdb::NodeId(project_.currentNodeKey);
    ShowExport(std::move(selected), this);
}

void frmtabGrid::ExportTrends(const std::vector<std::int32_t>& trends, QWidget* owner) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    ShowExport({.trends = {trends.begin(), trends.end()}, .isChosen = !trends.empty()}, owner);
}

void frmtabGrid::ImportRows() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore() || !CommitPendingEdit()) return;
    FImport(*this, texts_, this).exec();
}
