#include "commandset/CommandSet.h"

#include <algorithm>
#include <array>

#include "commandset/OwnKeys.h"
#include "texts/MResourceTable.h"

namespace commandset {
namespace {

using namespace MResourceTable;
using enum Id;

constexpr int kNone = 0;

constexpr Key kNewArchiveKeys[] = {{Place::Tree, Qt::Key_F8}, {Place::Archives, Qt::Key_F8}};
constexpr Key kEditArchiveKeys[] = {{Place::Tree, Qt::Key_F9}, {Place::Archives, Qt::Key_F9}};
constexpr Key kDeleteArchiveKeys[] = {{Place::Tree, Qt::CTRL | Qt::Key_Delete},
                                      {Place::Archives, Qt::CTRL | Qt::Key_Delete}};
constexpr Key kShowEditorKeys[] = {{Place::Tree, Qt::ALT | Qt::Key_F6}};
constexpr Key kNewTrendKeys[] = {{Place::Trends, Qt::Key_F8},
                                 {Place::Trends, Qt::Key_Insert},
                                 {Place::Archives, Qt::Key_Insert}};
constexpr Key kEditTrendKeys[] = {{Place::Trends, Qt::Key_F9}};
constexpr Key kDeleteTrendKeys[] = {{Place::Trends, Qt::CTRL | Qt::Key_Delete}};
constexpr Key kUndoKeys[] = {{Place::Trends, Qt::CTRL | Qt::Key_Z},
                             {Place::Archives, Qt::CTRL | Qt::Key_Z},
                             {Place::Tree, Qt::CTRL | Qt::Key_Z}};
constexpr Key kRedoKeys[] = {
    {Place::Trends, Qt::CTRL | Qt::Key_Y},   {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
    {Place::Archives, Qt::CTRL | Qt::Key_Y}, {Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
    {Place::Tree, Qt::CTRL | Qt::Key_Y},     {Place::Tree, Qt::CTRL | Qt::SHIFT | Qt::Key_Z}};
constexpr Key kCopyKeys[] = {{Place::Archives, Qt::CTRL | Qt::Key_C},
                             {Place::Trends, Qt::CTRL | Qt::Key_C}};
constexpr Key kPasteKeys[] = {{Place::Archives, Qt::CTRL | Qt::Key_V, false},
                              {Place::Trends, Qt::CTRL | Qt::Key_V}};
constexpr Key kDuplicateKeys[] = {{Place::Archives, Qt::CTRL | Qt::Key_D},
                                  {Place::Trends, Qt::CTRL | Qt::Key_D}};
constexpr Key kEditTrendsKeys[] = {{Place::Trends, Qt::CTRL | Qt::Key_F9}};
constexpr Key kEditArchivesKeys[] = {{Place::Archives, Qt::CTRL | Qt::Key_F9}};
constexpr Key kFillKeys[] = {{Place::Cells, Qt::CTRL | Qt::Key_D}};
constexpr Key kFillCountingKeys[] = {{Place::Cells, Qt::CTRL | Qt::SHIFT | Qt::Key_D},
                                     {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_D, false}};
// The grid knows these itself.
constexpr Key kClearKeys[] = {{Place::Trends, Qt::Key_Delete}};
constexpr Key kSelectAllKeys[] = {{Place::Trends, Qt::CTRL | Qt::Key_A}};
constexpr Key kFindKeys[] = {{Place::Tree, Qt::CTRL | Qt::Key_F},
                             {Place::Archives, Qt::CTRL | Qt::Key_F},
                             {Place::Trends, Qt::CTRL | Qt::Key_F}};
constexpr Key kProjectTableKeys[] = {{Place::Tree, Qt::CTRL | Qt::SHIFT | Qt::Key_T},
                                     {Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_T},
                                     {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_T}};
constexpr Key kFindInProjectKeys[] = {{Place::Tree, Qt::CTRL | Qt::SHIFT | Qt::Key_F},
                                      {Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_F},
                                      {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_F}};
constexpr Key kReplaceInProjectKeys[] = {{Place::Tree, Qt::CTRL | Qt::Key_H},
                                         {Place::Archives, Qt::CTRL | Qt::Key_H},
                                         {Place::Trends, Qt::CTRL | Qt::Key_H}};
constexpr Key kWhereUsedKeys[] = {{Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_U}};
constexpr Key kTrendsByPatternKeys[] = {{Place::Trends, Qt::CTRL | Qt::Key_F8}};
constexpr Key kFindingsKeys[] = {
    {Place::Tree, Qt::Key_F4}, {Place::Archives, Qt::Key_F4}, {Place::Trends, Qt::Key_F4}};
constexpr Key kDuplicateByPatternKeys[] = {{Place::Tree, Qt::CTRL | Qt::Key_F8},
                                           {Place::Archives, Qt::CTRL | Qt::Key_F8}};
constexpr Key kExportKeys[] = {{Place::Tree, Qt::CTRL | Qt::SHIFT | Qt::Key_E},
                               {Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_E},
                               {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_E}};
constexpr Key kImportKeys[] = {{Place::Tree, Qt::CTRL | Qt::SHIFT | Qt::Key_I},
                               {Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_I},
                               {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_I}};
constexpr Key kKeepTemplateKeys[] = {{Place::Archives, Qt::CTRL | Qt::SHIFT | Qt::Key_F8},
                                     {Place::Trends, Qt::CTRL | Qt::SHIFT | Qt::Key_F8}};
constexpr Key kTemplatesKeys[] = {{Place::Archives, Qt::SHIFT | Qt::Key_F8},
                                  {Place::Trends, Qt::SHIFT | Qt::Key_F8}};
constexpr Key kHelpKeys[] = {
    {Place::Tree, Qt::Key_F1}, {Place::Archives, Qt::Key_F1}, {Place::Trends, Qt::Key_F1}};

constexpr Command kCommands[] = {
    {NewArchive, u"mnuArchiv(0)", kTextNewArchive, kTextMenuArchive, kTextKeyNewArchive,
     u"archive-new", kPlaceForArchives | kWriting, kNewArchiveKeys},
    {EditArchive, u"mnuArchiv(1)", kTextEditArchive, kTextMenuArchive, kTextKeyEditArchive,
     u"archive-edit", kArchive, kEditArchiveKeys},
    {DeleteArchive, u"mnuArchiv(2)", kTextDeleteArchive, kTextMenuArchive, kTextKeyDeleteArchive,
     u"archive-delete", kArchive | kWriting, kDeleteArchiveKeys},
    {ShowEditor, u"mnuArchiv(4)", kTextShowEditor, kNone, kTextKeyShowEditor, u"", 0,
     kShowEditorKeys},
    {NewTrend, u"mnuTrend(0)", kTextNewTrend, kTextMenuTrends, kTextKeyNewTrend, u"trend-new",
     kArchive | kWriting, kNewTrendKeys},
    {EditTrend, u"mnuTrend(1)", kTextEditTrend, kTextMenuTrends, kTextKeyEditTrend, u"trend-edit",
     kArchive | kTrend, kEditTrendKeys},
    {DeleteTrend, u"mnuTrend(2)", kTextDeleteTrend, kTextMenuTrends, kTextKeyDeleteTrend,
     u"trend-delete", kArchive | kSelection | kWriting, kDeleteTrendKeys},
    {Statistic, u"mnuExtra(0)", kTextStatistics, kNone, kNone, u"", 0, {}},
    {Report, u"mnuExtra(1)", kTextReport, kTextMenuExtras, kNone, u"report", 0, {}},
    {Refresh, u"mnuExtra(2)", kTextActualizeConnection, kTextMenuExtras, kNone, u"refresh", 0, {}},
    {Options, u"mnuExtra(4)", kTextOptions, kTextMenuExtras, kNone, u"options", 0, {}},
    {ProjectTable, u"mnuExtra(6)", kTextProjectTable, kNone, kTextKeyProjectTable, u"", 0,
     kProjectTableKeys},
    {Undo, u"mnuUndo", kTextUndo, kNone, kTextKeyUndo, u"undo", kDone | kWriting, kUndoKeys},
    {Redo, u"mnuRedo", kTextRedo, kNone, kTextKeyRedo, u"redo", kUndone | kWriting, kRedoKeys},
    {Copy, u"mnuCopy", kTextCopy, kNone, kTextKeyCopy, u"copy", 0, kCopyKeys},
    {Paste, u"mnuPaste", kTextPaste, kNone, kTextKeyPaste, u"paste", kArchive | kWriting,
     kPasteKeys},
    {Duplicate, u"mnuDuplicate", kTextDuplicate, kNone, kTextKeyDuplicate, u"duplicate",
     kArchive | kWriting, kDuplicateKeys},
    {EditTrends, u"mnuEditTrends", kTextEditTrends, kNone, kTextKeyEditTrends, u"",
     kArchive | kCells | kWriting, kEditTrendsKeys},
    {EditArchives, u"mnuEditArchives", kTextEditArchives, kNone, kTextKeyEditArchives, u"",
     kArchives | kWriting, kEditArchivesKeys},
    {Fill, u"mnuFill", kTextFill, kNone, kTextKeyFill, u"", kArchive | kCells | kWriting,
     kFillKeys},
    {FillCounting, u"mnuFillCounting", kTextFillCounting, kNone, kTextKeyFillCounting, u"",
     kArchive | kCells | kWriting, kFillCountingKeys},
    {Clear, u"mnuClear", kTextClear, kNone, kNone, u"", kArchive | kTrend | kWriting, kClearKeys},
    {SelectAll, u"mnuSelectAll", kTextSelectAll, kNone, kNone, u"", kArchive, kSelectAllKeys},
    {FreezeName, u"mnuFreeze", kTextFreezeName, kNone, kNone, u"", 0, {}},
    {Find, u"mnuFind", kTextFind, kNone, kTextKeyFind, u"", 0, kFindKeys},
    {FindInProject, u"mnuFindInProject", kTextFindInProject, kNone, kTextKeyFindInProject, u"", 0,
     kFindInProjectKeys},
    {ReplaceInProject, u"mnuReplaceInProject", kTextReplaceInProject, kNone,
     kTextKeyReplaceInProject, u"", 0, kReplaceInProjectKeys},
    {WhereUsed, u"mnuWhereUsed", kTextWhereUsed, kNone, kTextKeyWhereUsed, u"", kArchive | kTrend,
     kWhereUsedKeys},
    {TrendsByPattern, u"mnuTrend(3)", kTextTrendsByPattern, kTextMenuTrends,
     kTextKeyTrendsByPattern, u"", kArchive | kWriting, kTrendsByPatternKeys},
    {Findings, u"mnuExtra(7)", kTextFindings, kTextMenuExtras, kTextKeyFindings, u"findings", 0,
     kFindingsKeys},
    {DuplicateByPattern, u"mnuDuplicateByPattern", kTextDuplicateByPattern, kNone,
     kTextKeyDuplicateByPattern, u"", kArchive | kWriting, kDuplicateByPatternKeys},
    {Export, u"mnuExtra(9)", kTextExport, kNone, kTextKeyExport, u"", 0, kExportKeys},
    {Import, u"mnuExtra(10)", kTextImport, kNone, kTextKeyImport, u"", kWriting, kImportKeys},
    {KeepTemplate, u"mnuKeepTemplate", kTextKeepTemplate, kNone, kTextKeyKeepTemplate, u"",
     kArchive, kKeepTemplateKeys},
    {Templates, u"mnuTemplates", kTextTemplates, kNone, kTextKeyTemplates, u"", 0, kTemplatesKeys},
    {Help, u"mnuHelp", kNone, kNone, kTextKeyHelp, u"", 0, kHelpKeys},
};
static_assert(std::size(kCommands) == static_cast<std::size_t>(Separator));

constexpr Id kArchiveMenu[] = {NewArchive, EditArchive, DeleteArchive, Separator, ShowEditor};
constexpr Id kTrendMenu[] = {NewTrend, EditTrend, DeleteTrend, TrendsByPattern};
constexpr Id kEditMenu[] = {Undo,         Redo,          Separator,          Copy,
                            Paste,        Duplicate,     DuplicateByPattern, KeepTemplate,
                            Templates,    EditTrends,    EditArchives,       Fill,
                            FillCounting, Clear,         Separator,          SelectAll,
                            Find,         FindInProject, ReplaceInProject};
constexpr Id kExtrasMenu[] = {Statistic,    Report,   Refresh,   Separator, Options, Separator,
                              ProjectTable, Findings, Separator, Export,    Import};
constexpr Menu kMenus[] = {
    {u"mnuArchive", kTextMenuArchive, u"mnuArchiv", kArchiveMenu},
    {u"mnuTrends", kTextMenuTrends, u"mnuTrend", kTrendMenu},
    {u"mnuEdit", kTextMenuEdit, u"", kEditMenu},
    {u"mnuExtras", kTextMenuExtras, u"mnuExtra", kExtrasMenu},
};

constexpr Id kToolBar[] = {NewArchive, EditArchive, DeleteArchive, Separator, NewTrend,
                           EditTrend,  DeleteTrend, Separator,     Undo,      Redo,
                           Separator,  Copy,        Paste,         Duplicate, Separator,
                           Findings,   Report,      Refresh,       Options};
constexpr Id kArchiveContext[] = {
    NewArchive, EditArchive, EditArchives,       DeleteArchive, Separator, Undo, Redo,  Separator,
    Copy,       Duplicate,   DuplicateByPattern, KeepTemplate,  Templates, Find, Export};
constexpr Id kTrendContext[] = {
    NewTrend,  EditTrend, EditTrends, DeleteTrend,  Separator, Undo,      Redo,         Separator,
    Copy,      Paste,     Duplicate,  KeepTemplate, Templates, Fill,      FillCounting, Clear,
    Separator, SelectAll, Find,       WhereUsed,    Export,    Separator, FreezeName};

/// The key stands in given texts behind many blanks; menus show it in a column of its own. -1 where
/// a text brings none.
qsizetype GivenKeyAt(const QString& text) {
    return text.indexOf(u"  ");
}

QString WithoutAccessKey(QString text) {
    return text.remove(u'&');
}

}  // namespace

std::span<const Command> Commands() {
    return kCommands;
}

const Command& CommandOf(Id id) {
    return kCommands[static_cast<std::size_t>(id)];
}

const Command* CommandOf(Place place, QKeyCombination keys) {
    const OwnKeys own = CurrentOwnKeys();
    for (const Command& command : kCommands) {
        for (const Key& key : KeysOf(command, own)) {
            if (key.place == place && key.keys == keys) return &command;
        }
    }
    return place == Place::Cells ? CommandOf(Place::Trends, keys) : nullptr;
}

std::span<const Menu> Menus() {
    return kMenus;
}

std::span<const Id> ToolBar() {
    return kToolBar;
}

std::span<const Id> ContextMenu(Place place) {
    return place == Place::Archives ? std::span<const Id>(kArchiveContext) : kTrendContext;
}

int Obstacle(const Command& command, const Situation& situation) {
    const auto lacks = [&](Need need, bool isThere) {
        return (command.needs & need) != 0 && !isThere;
    };
    if (lacks(kWriting, situation.canWrite)) return kTextHintReadOnly;
    if (lacks(kPlaceForArchives, situation.isRoot || situation.isInArchives)) {
        return kTextHintNewArchive;
    }
    if (lacks(kDone, situation.hasDone)) return kTextHintNothingToUndo;
    if (lacks(kUndone, situation.hasUndone)) return kTextHintNothingToRedo;
    if (lacks(kArchive, situation.isArchive)) return kTextHintNoArchive;
    if (lacks(kTrend, situation.hasTrend)) return kTextHintNoTrend;
    if (lacks(kCells, situation.hasCells)) return kTextHintNoCells;
    if (lacks(kArchives, situation.hasArchives)) return kTextHintNoArchives;
    if (lacks(kSelection, situation.hasSelection)) {
        return situation.hasTrend ? kTextHintNoSelection : kTextHintNoTrend;
    }
    return 0;
}

std::optional<QKeyCombination> FirstKey(const Command& command) {
    const QList<Key> keys = KeysOf(command, CurrentOwnKeys());
    if (keys.isEmpty()) return std::nullopt;
    return keys.front().keys;
}

QString KeyText(Id id, const MResources::TextTable& texts) {
    const std::optional<QKeyCombination> key = FirstKey(CommandOf(id));
    return key ? KeyText(*key, texts) : QString();
}

QString HintText(int obstacle, const MResources::TextTable& texts) {
    const Id helping = obstacle == kTextHintNewArchive ? NewArchive : NewTrend;
    return texts.GetText(obstacle, {{u"key", KeyText(helping, texts)}});
}

QString KeyText(QKeyCombination keys, const MResources::TextTable& texts) {
    QString text;
    if (keys.keyboardModifiers().testFlag(Qt::ControlModifier)) text += texts.GetText(kTextCtrl);
    if (keys.keyboardModifiers().testFlag(Qt::ShiftModifier)) text += texts.GetText(kTextShift);
    if (keys.keyboardModifiers().testFlag(Qt::AltModifier)) text += texts.GetText(kTextAlt);
    const Qt::Key key = keys.key();
    if (key == Qt::Key_Delete) return text + texts.GetText(kTextKeyDel);
    if (key == Qt::Key_Insert) return text + texts.GetText(kTextKeyIns);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) {
        return text + u'F' + QString::number(key - Qt::Key_F1 + 1);
    }
    return text + QChar(key);
}

QString MenuText(const Command& command, const MResources::TextTable& texts, const QString& step) {
    QString name = step;
    name.replace(u'&', QStringLiteral("&&"));  // no access key
    const QString text = texts.GetText(command.text, {{u"step", name}});
    const bool bringsKey = command.text <= kLastGivenNumber && !command.keys.empty();
    const QString caption = bringsKey ? text.left(GivenKeyAt(text)) : text;
    const QString key = KeyText(command.id, texts);
    return key.isEmpty() ? caption : caption + u'\t' + key;
}

QString ToolTip(const Command& command, const MResources::TextTable& texts, const QString& step) {
    const QString text =
        texts::Fill(WithoutAccessKey(texts.GetText(command.text)), {{u"step", step}});
    QString tip = text.left(GivenKeyAt(text)).trimmed();
    if (command.menu != 0) {
        tip = WithoutAccessKey(texts.GetText(command.menu)) + QStringLiteral(": ") + tip;
    }
    const QString key = KeyText(command.id, texts);
    return key.isEmpty() ? tip : tip + QStringLiteral(" (") + key + u')';
}

QList<KeyLine> KeyLines(Place place, const MResources::TextTable& texts) {
    QList<KeyLine> lines;
    for (const Command& command : kCommands) {
        QStringList keys;
        for (const Key& key : command.keys) {
            if (key.place == place && key.isListed) keys += KeyText(key.keys, texts);
        }
        if (command.description == 0 || keys.isEmpty()) continue;
        lines += KeyLine{keys.join(QStringLiteral(", ")), texts.GetText(command.description)};
    }
    return lines;
}

}  // namespace commandset
