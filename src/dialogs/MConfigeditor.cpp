#include "dialogs/MConfigeditor.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <optional>
#include <utility>

#include "controls/FontProperties.h"
#include "controls/TDBGrid.h"
#include "dialogs/FConfigEditor.h"
#include "messages/MessageBox.h"
#include "platform/Error.h"
#include "settings/CInit.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace MConfigeditor {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kGrid = u"tdbA"_s;
const QString kSaveOnExit = u"SaveOnExit"_s;
const QString kRequestOnDelete = u"RequestOnDelete"_s;
const QString kStatusBarVisible = u"sb.Visible"_s;

constexpr int kTrends = 1;  // the split

GridSplit& Trends(const Session& session) {
    return session.grid.SplitAt(kTrends);
}

FontProperties& GridFont(const Session& session) {
    return *qobject_cast<FontProperties*>(session.grid.Font());
}

QString CaptionOf(const GridSplit& trends, int column) {
    const QString& caption = trends.ColumnAt(column)->Caption();
    if (!caption.isEmpty()) return caption;
    return trends.Source()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
}

bool IsOn(const CInit& settings, const QString& option) {
    return settings.ReadAValueFromCInits(option, true).AsBoolean(true);
}

/// Whether the user may choose the column. The name of the trends has no such key: it is always
/// shown.
bool CanBeChosen(const CInit& settings, const GridSplit& trends, int column) {
    QString name = trends.ColumnAt(column)->DataField();
    if (name.isEmpty()) name = CaptionOf(trends, column);
    return settings.ParamExist(u"tdbA.splits(1).Columns(\"%1\").AllowSizing"_s.arg(name));
}

void SettingsToDialog(const Session& session, FConfigEditor& dialog) {
    const GridSplit& trends = Trends(session);
    // A grid that has lost its rows has no layout that could be stored afterwards.
    if (trends.Source() == nullptr || trends.ColumnCount() == 0) {
        throw platform::Error(platform::ErrorNumber::kInvalidArgument,
                              u"The grid has no trend columns."_s);
    }
    dialog.chkSaveOnExit->setChecked(IsOn(session.settings, kSaveOnExit));
    dialog.chkDelQuestion->setChecked(IsOn(session.settings, kRequestOnDelete));
    // Not isVisible(): the window may be hidden itself.
    dialog.chkShowStatusBar->setChecked(!session.statusBar.isHidden());
    dialog.SetEditorFont(GridFont(session).Font());
    for (int i = 0; i < trends.ColumnCount(); ++i) {
        if (!CanBeChosen(session.settings, trends, i)) continue;
        const GridColumn& column = *trends.ColumnAt(i);
        const FConfigEditor::Column entry{i, CaptionOf(trends, i), column.Order()};
        if (column.Visible()) {
            dialog.AddShown(entry);
        } else {
            dialog.AddHidden(entry);
        }
    }
    dialog.SelectFirst();
}

/// The order of all columns once `chosen` are shown. Those of them that are shown already take
/// their places among themselves from first to last, each other one stands behind the chosen one
/// before it, where the user has put it. All other columns stay where they are.
QList<int> OrderWith(const QList<int>& chosen, const GridSplit& trends) {
    const auto isShown = [&](int column) { return trends.ColumnAt(column)->Visible(); };
    QList<int> known;
    std::copy_if(chosen.begin(), chosen.end(), std::back_inserter(known), isShown);
    QList<int> order;
    auto next = known.begin();
    for (const int column : trends.ColumnOrders()) {
        if (!chosen.contains(column)) {
            order += column;
        } else if (isShown(column)) {
            order += *next++;
        }
    }
    const int first = trends.ColumnIndex(u"Name");
    for (qsizetype i = 0; i < chosen.size(); ++i) {
        if (isShown(chosen[i])) continue;
        const int before = i == 0 ? first : chosen[i - 1];
        order.insert(order.indexOf(before) + 1, chosen[i]);
    }
    return order;
}

void ShowColumns(GridSplit& trends, const QList<int>& chosen, const QList<int>& hidden) {
    const QList<int> order = OrderWith(chosen, trends);
    for (const int number : chosen + hidden) {
        GridColumn* column = trends.ColumnAt(number);
        if (column == nullptr) continue;
        const bool show = chosen.contains(number);
        column->SetVisible(show);
        column->SetAllowSizing(show);
    }
    trends.SetColumnOrders(order);
}

void DialogToSettings(const FConfigEditor& dialog, const Session& session) {
    CInit& settings = session.settings;
    ShowColumns(Trends(session), dialog.ShownColumns(), dialog.HiddenColumns());
    GridFont(session).SetFont(dialog.EditorFont());
    session.statusBar.setVisible(dialog.chkShowStatusBar->isChecked());

    settings.GetInitFromControl(kGrid);
    settings.WriteAValueToCInits(kStatusBarVisible, dialog.chkShowStatusBar->isChecked());
    settings.WriteAValueToCInits(kSaveOnExit, dialog.chkSaveOnExit->isChecked());
    settings.WriteAValueToCInits(kRequestOnDelete, dialog.chkDelQuestion->isChecked());
    if (session.takeColumnOrders) session.takeColumnOrders();
}

/// What stands below the sentence on a step that has failed.
struct Cause {
    QString text;
    QString details;
};

/// Runs the step; empty when it went through. The cause goes to the log too.
template <typename Step>
std::optional<Cause> Try(Step&& step) {
    Cause cause{texts::ReasonText({}), u"EditOptions"_s};
    try {
        std::forward<Step>(step)();
        return std::nullopt;
    } catch (const platform::Error& error) {
        cause.text = texts::ReasonText(error.Reason());
        cause.details += u"\n%1   %2"_s.arg(error.Number()).arg(error.Description());
    } catch (const std::exception& error) {
        cause.details += u'\n' + QString::fromUtf8(error.what());
    } catch (...) {
        cause.details += u"\nUnspecified error."_s;
    }
    qWarning("%s", qUtf8Printable(cause.details));
    return cause;
}

}  // namespace

bool EditOptions(const Session& session, QWidget* owner) {
    FConfigEditor dialog(session.texts, session.showHelp, owner);
    const auto tell = [&](int text, const Cause& cause) {
        messages::ShowMessage({session.texts.GetText(text) + u"\n\n"_s + cause.text,
                               messages::MessageButtons::Ok, dialog.windowTitle(), cause.details},
                              owner);
    };
    if (const auto cause = Try([&] { SettingsToDialog(session, dialog); })) {
        tell(MResourceTable::kTextOptionsInitFailed, *cause);
        return false;
    }
    dialog.exec();
    if (dialog.Cancelled()) return false;
    const auto cause = Try([&] { DialogToSettings(dialog, session); });
    if (cause) tell(MResourceTable::kTextOptionsWriteBackFailed, *cause);
    return !cause;
}

}  // namespace MConfigeditor
