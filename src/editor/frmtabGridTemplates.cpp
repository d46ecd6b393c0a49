// Settings that are kept for new archives and trends.

#include <QInputDialog>
#include <QScopedValueRollback>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "messages/MessageBox.h"
#include "paths/NativePath.h"
#include "platform/HelpTopics.h"
#include "project/Schema.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "settings/CInit.h"
#include "templates/FTemplates.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using templates::Kind;
using templates::TemplateFile;
using Text = MResourceTable::Templates;

/// Where the settings of the window name the one that is chosen.
QString ChosenKey(Kind kind) {
    return kind == Kind::Archive ? u"ArchiveTemplate"_s : u"TrendTemplate"_s;
}

/// Stands before the name in the settings file: "16 bar" alone would be read as a number there.
constexpr QChar kMark = u'=';

QString ChosenIn(const CInit& settings, Kind kind) {
    const QString value = settings.ReadAValueFromCInits(ChosenKey(kind)).AsText();
    return value.startsWith(kMark) ? value.mid(1) : QString();
}

std::string_view TableOf(Kind kind) {
    return kind == Kind::Archive ? project::kArchiveTable : project::kTrendTable;
}

}  // namespace

TemplateFile frmtabGrid::TemplatesOfProject() {
    return TemplateFile(QString::fromStdString(paths::ToNative(Connection().DataSource())));
}

templates::Kind frmtabGrid::TemplateKind() const {
    return active_ && tdbA->Split() == 1 ? Kind::Trend : Kind::Archive;
}

/// The archive that is selected in the tree or open, or the current trend.
void frmtabGrid::KeepTemplate() {
    if (!CommitPendingEdit()) return;
    const Kind kind = TemplateKind();
    const GridSplit& trends = tdbA->SplitAt(1);
    const QString selected = addIn_.SelectedNodeKey();
    const QString key = selected.isEmpty() ? project_.currentNodeKey : selected;
    const GridRowId trend = trends.CurrentRow();
    if (kind == Kind::Trend && trend == kNoGridRow) return Hint(MResourceTable::kTextHintNoTrend);
    const std::int32_t id =
        kind == Kind::Trend ? static_cast<std::int32_t>(trend) : projectdb::NodeId(key);
    const QString rowName =
        kind == Kind::Trend ? trends.CellText(trend, trends.ColumnIndex(u"Name")) : ArchiveName(id);
    const QString title = texts_.GetText(kind == Kind::Archive ? Text::OfArchives : Text::OfTrends);
    bool isGiven = false;
    const QString name = QInputDialog::getText(this, title, texts_.GetText(Text::Name),
                                               QLineEdit::Normal, rowName, &isGiven)
                             .trimmed();
    if (!isGiven || name.isEmpty()) return;
    TemplateFile file = TemplatesOfProject();
    if (file.Find(kind, name) &&
        messages::ShowMessage(texts_.GetText(Text::Replace, {{u"name", name}}),
                              messages::MessageButtons::OkCancelDefaultCancel, title,
                              this) != messages::MessageResult::Ok) {
        return;
    }
    const QString failure =
        file.Keep(kind, {name, project::SettingsOf(Connection(), TableOf(kind), id)});
    if (!failure.isEmpty()) {
        return Tell(texts_.GetText(file.IsReadable() ? Text::NotWritten : Text::NotReadable,
                                   {{u"cause", failure}}));
    }
    Hint(texts_.GetText(
        Text::Kept,
        {{u"name", name}, {u"key", commandset::KeyText(commandset::Id::Templates, texts_)}}));
}

void frmtabGrid::ChooseTemplate() {
    if (!CommitPendingEdit()) return;
    const Kind kind = TemplateKind();
    TemplateFile file = TemplatesOfProject();
    if (!file.IsReadable()) {
        return Tell(texts_.GetText(Text::NotReadable, {{u"cause", file.Path()}}));
    }
    FTemplates dialog(
        texts_, file, kind, ChosenIn(Settings(), kind),
        [this, &dialog] { ShowHelpTopic(platform::kHelpPatterns, &dialog); }, this);
    dialog.exec();
    Settings().WriteAValueToCInits(ChosenKey(kind), kMark + dialog.Chosen());
}

/// What a new archive or trend is made with; nothing where none is chosen, or it is not there any
/// more.
std::optional<templates::Template> frmtabGrid::ChosenTemplate(Kind kind) {
    const QString name = ChosenIn(Settings(), kind);
    if (name.isEmpty()) return std::nullopt;
    return TemplatesOfProject().Find(kind, name);
}

/// Behind all that the command shows yet, which clears the status bar.
void frmtabGrid::TellOfTemplate(const QString& name, const project::Template& used) {
    QStringList fields;
    for (const std::string& column : used.leftOut) fields.append(projectdb::ToQString(column));
    const QString text =
        fields.isEmpty()
            ? texts_.GetText(Text::NewWith, {{u"name", name}})
            : texts_.GetText(Text::LeftOut, {{u"name", name}, {u"fields", fields.join(u", ")}});
    QMetaObject::invokeMethod(
        this, [this, text] { Hint(text); }, Qt::QueuedConnection);
}
