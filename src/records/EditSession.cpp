#include "records/EditSession.h"

#include "ado/AdoError.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "project/Rows.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace EditSession {
namespace {

/// The failure with the numbered sentence in front of its cause.
messages::Message Message(const PropertyDialog& dialog, const projectdb::Failure& failure,
                          const QString& sentence, const QString& cause) {
    messages::Message message = guard::ToMessage(failure, dialog.objectName());
    message.text = sentence + QStringLiteral("\n\n") + cause;
    message.title = dialog.windowTitle();
    return message;
}

}  // namespace

std::vector<ado::Value> ShownRows::ValuesOf(const ado::Recordset& rows) {
    std::vector<ado::Value> values;
    for (std::size_t i = 0; i < rows.Fields().size(); ++i) values.push_back(rows.Get(i));
    return values;
}

ShownRows::ShownRows(std::initializer_list<ado::Recordset*> rows) {
    for (ado::Recordset* row : rows) {
        if (!row->IsBOF() && !row->IsEOF()) shown_.push_back({row, ValuesOf(*row)});
    }
}

ShownRows::Joined ShownRows::Join(const std::function<void()>& assign,
                                  const DialogServices& services, QWidget* owner) {
    std::vector<Row> now;
    for (const Row& row : shown_) now.push_back({row.rows, ValuesOf(*row.rows)});
    assign();
    struct Place {
        std::size_t row;
        std::size_t field;
    };
    std::vector<Place> places;
    std::vector<project::Conflict> conflicts;
    for (std::size_t r = 0; r < shown_.size(); ++r) {
        const ado::Recordset& rows = *shown_[r].rows;
        for (std::size_t i = 0; i < rows.Fields().size(); ++i) {
            const ado::Value& was = shown_[r].values.at(i);
            const ado::Value& theirs = now[r].values.at(i);
            const ado::Value mine = rows.Get(i);
            if (theirs == was || mine == theirs) continue;
            project::Conflict conflict;
            conflict.table = rows.Fields()[i].baseTable;
            conflict.column = rows.Fields()[i].baseColumn;
            conflict.name = project::NameOf(rows);
            conflict.was = was;
            conflict.theirs = theirs;
            conflict.mine = mine;
            conflicts.push_back(std::move(conflict));
            places.push_back({r, i});
        }
    }
    if (conflicts.empty()) return Joined::Yes;
    const auto mine = services.settle ? services.settle(conflicts, owner) : std::nullopt;
    if (!mine) {
        for (const Row& row : shown_) row.rows->CancelUpdate();
        return services.settle ? Joined::GivenUp : Joined::Open;
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        if ((*mine)[i]) continue;
        const Row& row = now[places[i].row];
        row.rows->Set(places[i].field, row.values[places[i].field]);
    }
    return Joined::Yes;
}

bool Storing::Run(const char* procedure, QWidget* owner) {
    std::optional<projectdb::Failure> failure;
    if (!unsettled_) {
        failure = Try(procedure, [&] {
            steps_.assign();
            steps_.save();
        });
        if (!failure) return true;
    }
    // The rows as they are now: another OK stores into them what has been typed.
    bool gone = !steps_.readAgain();
    if (!gone && (unsettled_ || failure->number == ado::ErrorNumber::kRowNotLocated)) {
        auto joined = ShownRows::Joined::Open;
        const auto again = Try(procedure, [&] {
            joined = shown_.Join(steps_.assign, services_, owner);
            if (joined == ShownRows::Joined::Yes) steps_.save();
        });
        unsettled_ = joined == ShownRows::Joined::GivenUp;
        if (!again && joined != ShownRows::Joined::Open) return !unsettled_;
        if (again) {
            failure = again;
            gone = !steps_.readAgain();
        }
    }
    steps_.tell(*failure, gone);
    return false;
}

void TellNotStored(PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, bool gone) {
    reasons::Reason reason = failure.reason;
    // The user knows the field, not the column.
    const QString label = dialog.LabelOf(QString::fromStdString(reason.name));
    if (!label.isEmpty()) reason.name = label.toStdString();
    QString cause = texts::ReasonText(reason);
    if (failure.number == ado::ErrorNumber::kRowNotLocated) {
        cause = texts.GetText(gone ? MResourceTable::kTextRecordGone
                                   : MResourceTable::kTextRecordChanged);
    }
    messages::ShowMessage(Message(dialog, failure, texts.GetText(text), cause), &dialog);
}

void TellNotLoaded(const PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, QWidget* owner) {
    messages::ShowMessage(Message(dialog, failure, texts.GetText(text), failure.Text()), owner);
}

}  // namespace EditSession
