// What was being edited when the program ended without having been asked to.

#include <QTimer>

#include "controls/TDBGrid.h"
#include "drafts/DraftKeeper.h"
#include "editor/frmtabGrid.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "platform/StateFolder.h"
#include "projectdb/NodeKey.h"
#include "projectdb/ProjectRows.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// More would not fit a message box.
constexpr qsizetype kMostFields = 12;
constexpr qsizetype kMostLetters = 80;

QString ListOf(const QList<drafts::Field>& fields) {
    QStringList lines;
    for (const drafts::Field& field : fields.first(std::min(fields.size(), kMostFields))) {
        const bool whole = field.shown.size() <= kMostLetters;
        lines.append(field.label + u": "_s +
                     (whole ? field.shown : field.shown.left(kMostLetters) + u" ..."_s));
    }
    if (fields.size() > kMostFields) lines.append(u"..."_s);
    return lines.join(u'\n');
}

QString Folder() {
    return platform::StateFolder() + u"/drafts"_s;
}

}  // namespace

bool frmtabGrid::HasDrafts(const QString& projectPath) {
    return drafts::DraftKeeper::HasFiles(Folder(), projectPath);
}

void frmtabGrid::KeepDrafts() {
    drafts_ = std::make_unique<drafts::DraftKeeper>(Folder(), project_.projectPath, this);
    connect(drafts_.get(), &drafts::DraftKeeper::Failed, this, [this](const QString& cause) {
        Hint(texts_.GetText(MResourceTable::kTextDraftNotKept, {{u"cause", cause}}));
    });
    const GridSplit* trends = &tdbA->SplitAt(1);
    connect(trends, &GridSplit::EditBegun, drafts_.get(), [this] { WatchCell(); });
    connect(trends, &GridSplit::EditEnded, drafts_.get(), [this] { drafts_->Forget(); });
    // Queued: the window is not shown yet.
    QMetaObject::invokeMethod(
        this, [this] { guard::Guard(u"frmtabGrid: OfferDrafts"_s, [this] { OfferDrafts(); }); },
        Qt::QueuedConnection);
}

void frmtabGrid::WatchCell() {
    const GridSplit& trends = tdbA->SplitAt(1);
    const GridRowId row = trends.CurrentRow();
    drafts_->SetPlace({drafts::Place::Kind::Cell, projectdb::NodeId(project_.currentNodeKey),
                       static_cast<std::int32_t>(row),
                       trends.CellText(row, trends.ColumnIndex(u"Name"))});
    drafts_->Watch([&trends]() -> QList<drafts::Field> {
        const auto edit = trends.PendingEdit();
        if (!edit) return {};
        const GridColumn& column = *trends.ColumnAt(edit->column);
        return {{column.DataField(), column.Caption(), edit->text, edit->text}};
    });
}

/// Each is gone when it has been answered, unless the user goes on with it.
void frmtabGrid::OfferDrafts() {
    if (!CanWrite()) return;
    while (const auto draft = drafts_->TakeAbandoned()) {
        const bool isArchive = draft->place.kind == drafts::Place::Kind::Archive;
        const int place =
            isArchive ? MResourceTable::kTextConflictArchive : MResourceTable::kTextConflictTrend;
        const QString question = texts_.GetText(
            MResourceTable::kTextDraftFound,
            {{u"place", texts_.GetText(place, {{u"name", draft->place.name}, {u"column", {}}})},
             {u"fields", ListOf(draft->fields)}});
        const auto answer =
            messages::ShowMessage(question, messages::MessageButtons::YesNo,
                                  texts_.GetText(MResourceTable::kTextEditorTitle), this);
        if (answer == messages::MessageResult::Yes) return Resume(*draft);
        drafts_->Forget();
    }
}

void frmtabGrid::Resume(const drafts::Draft& draft) {
    const drafts::Place& place = draft.place;
    const auto gone = [&] {
        drafts_->Forget();
        Tell(texts_.GetText(MResourceTable::kTextEditDiscarded, {{u"text", ListOf(draft.fields)}}));
    };
    if (!projectdb::ProjectRows(project_.Environment()).SeekArchive(place.archive)) return gone();
    addIn_.SelectArchive(projectdb::ArchiveNodeKey(place.archive));
    drafts_->SetPlace(place);
    if (place.kind == drafts::Place::Kind::Archive) {
        drafts_->SetResumed(draft.fields);
        return Run(commandset::Id::EditArchive);
    }
    GridSplit& trends = tdbA->SplitAt(1);
    if (!trends.SetCurrentCell(place.trend)) return gone();
    tdbA->SetSplit(1);
    if (place.kind == drafts::Place::Kind::Trend) {
        drafts_->SetResumed(draft.fields);
        return Run(commandset::Id::EditTrend);
    }
    const drafts::Field& cell = draft.fields.front();
    if (!trends.ResumeEdit({place.trend, trends.ColumnIndex(cell.name), cell.shown})) gone();
}
