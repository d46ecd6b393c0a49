#include "editor/EditorHistory.h"

#include <algorithm>
#include <vector>

#include "commands/StepName.h"
#include "dialogs/FConflict.h"
#include "editor/ConflictTexts.h"
#include "messages/MessageBox.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using Kind = project::Conflict::Kind;

}  // namespace

QString EditorHistory::EndStep() {
    if (!project_.environment) return {};
    project::ChangeSet changes = project_.environment->Recorder().Take();
    if (changes.IsEmpty()) return {};
    QString name = StepName(changes, texts_);
    project_.history.Add(projectdb::ToUtf16(name), std::move(changes));
    return name;
}

QStringList EditorHistory::Names(Direction direction, int most) const {
    const project::History& history = project_.history;
    const auto& steps = direction == Direction::Back ? history.Done() : history.Undone();
    QStringList names;
    for (auto step = steps.rbegin(); step != steps.rend() && names.size() < most; ++step) {
        names += projectdb::ToQString(step->name);
    }
    return names;
}

std::optional<EditorHistory::Moved> EditorHistory::Move(Direction direction) {
    project::History& history = project_.history;
    const bool back = direction == Direction::Back;
    const project::History::Step& step = (back ? history.Done() : history.Undone()).back();
    const QString name = projectdb::ToQString(step.name);
    if (!step.changes.IsWhole()) {
        Tell(texts_.GetText(MResourceTable::kTextStepUnreadable, {{u"step", name}}));
        return std::nullopt;
    }
    ADOArchiv& environment = project_.Environment();
    std::vector<project::Settlement> settled;
    for (;;) {
        auto outcome =
            back ? history.Undo(environment.Connection(), environment.Recorder(), settled)
                 : history.Redo(environment.Connection(), environment.Recorder(), settled);
        if (outcome.taken.open.empty()) return Moved{name, std::move(outcome.changes)};
        // What stands there may be another thing again when the user has answered.
        if (!Settle(outcome.taken.open, settled, name)) return std::nullopt;
    }
}

bool EditorHistory::Settle(const std::vector<project::Conflict>& conflicts,
                           std::vector<project::Settlement>& settled, const QString& step) {
    for (const project::Conflict& conflict : conflicts) {
        if (conflict.kind != Kind::RowInUse) continue;
        Tell(texts_.GetText(MResourceTable::kTextConflictInUse,
                            {{u"step", step}, {u"name", projectdb::ToQString(conflict.name)}}));
        return false;
    }
    const auto mine = Ask(conflicts, step, &window_);
    if (!mine) return false;
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        // Without a number of its own a row cannot come back.
        if (conflicts[i].kind == Kind::NumberTaken && !(*mine)[i]) return false;
        settled.push_back({conflicts[i], (*mine)[i]});
    }
    return true;
}

std::optional<std::vector<bool>> EditorHistory::Ask(const std::vector<project::Conflict>& conflicts,
                                                    const QString& about, QWidget* owner) const {
    FConflict dialog(texts_, ConflictTexts::RowsOf(conflicts, texts_), owner);
    QString title = texts_.GetText(MResourceTable::kTextEditorTitle);
    if (!about.isEmpty()) title += QStringLiteral(": ") + about;
    dialog.setWindowTitle(title);
    const auto sides = dialog.Ask();
    if (!sides) return std::nullopt;
    std::vector<bool> mine;
    for (const FConflict::Side side : *sides) mine.push_back(side == FConflict::Side::Mine);
    return mine;
}

void EditorHistory::Tell(const QString& text) {
    messages::ShowMessage(text, messages::MessageButtons::Ok,
                          texts_.GetText(MResourceTable::kTextEditorTitle), &window_);
}
