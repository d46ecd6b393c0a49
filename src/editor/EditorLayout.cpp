#include "editor/EditorLayout.h"

#include <algorithm>
#include <numeric>
#include <QApplication>
#include <QFontInfo>
#include <QMenu>
#include <QWidget>
#include <tuple>

#include "controls/FontProperties.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/GridColumns.h"
#include "settings/CInit.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kSection = u"FKVARCHIVDBSERVER"_s;
const QString kFileName = u"KVEditors.ini"_s;
const QString kColumnOrders = u"TDBAColOrders"_s;
const QString kSaveOnExit = u"SaveOnExit"_s;
const QString kCurrentLcid = u"CurrentLCID"_s;

constexpr double kColumnWidth = 3000;  // twips
constexpr int kNoLcid = 0;
constexpr double kLargestLcid = 0xFFFFF;
constexpr double kTwipsPerPixel = 15;  // at 96 dpi, which Qt's pixels are

QString ColumnKey(int split, const QString& column, QStringView property) {
    return u"tdbA.Splits(%1).Columns(\"%2\").%3"_s.arg(QString::number(split), column, property);
}

}  // namespace

EditorLayout::EditorLayout(frmtabGrid& window)
    : window_(window),
      settings_(std::make_unique<CInit>()),
      font_(std::make_unique<FontProperties>(window.font())) {
    settings_->SetMotherobject(&window);
    QObject::connect(font_.get(), &FontProperties::Changed, &window, [&window](const QFont& font) {
        window.setFont(font);
        // Menus are windows of their own, to which no font is handed on.
        for (QMenu* menu : window.findChildren<QMenu*>()) menu->setFont(font);
    });
}

EditorLayout::~EditorLayout() = default;

void EditorLayout::LoadDefaults() {
    settings_->LoadDefaultInit(kSection);
}

void EditorLayout::LoadFile(const QString& projectPath) {
    const GridSplit& trends = window_.tdbA->SplitAt(1);
    for (int i = 0; i < trends.ColumnCount(); ++i) {
        const GridColumn& column = *trends.ColumnAt(i);
        if (column.DataField().contains(u'.')) continue;  // no path can name it
        settings_->WriteAValueToCInits(ColumnKey(1, column.DataField(), u"Width"), kColumnWidth);
        settings_->WriteAValueToCInits(ColumnKey(1, column.DataField(), u"Order"), column.Order());
    }
    EnterOwnDefaults();
    file_ = projectPath.left(projectPath.lastIndexOf(u'\\') + 1) + kFileName;
    defaultOrders_ = settings_->ReadAValueFromCInits(kColumnOrders).AsText();
    // What the built-in layout says has not been stored by anybody.
    settings_->WriteAValueToCInits(kCurrentLcid, kNoLcid);
    settings_->LoadInits(file_);
}

std::optional<platform::Lcid> EditorLayout::StoredLcid() const {
    const double lcid = settings_->ReadAValueFromCInits(kCurrentLcid, kNoLcid).AsNumber(kNoLcid);
    if (!(lcid > kNoLcid) || lcid > kLargestLcid) return std::nullopt;
    return static_cast<platform::Lcid>(lcid);
}

/// What the built-in layout knows nothing of, and the user can change all the same.
void EditorLayout::EnterOwnDefaults() {
    for (int split = 0; split < TDBGrid::kSplitCount; ++split) {
        const GridSplit& columns = window_.tdbA->SplitAt(split);
        for (int i = 0; i < columns.ColumnCount(); ++i) {
            const GridColumn& column = *columns.ColumnAt(i);
            const QString visible = ColumnKey(split, column.DataField(), u"Visible");
            if (!GridColumns::IsForUser(column) || settings_->ParamExist(visible)) continue;
            settings_->WriteAValueToCInits(visible, column.Visible());
            if (split == 0) {
                settings_->WriteAValueToCInits(ColumnKey(split, column.DataField(), u"Width"),
                                               column.Width());
            }
        }
    }
    settings_->WriteAValueToCInits(u"tdbA.SplitWidth"_s, window_.tdbA->SplitWidth());
    // Letters are no smaller than the desktop's until the user wants that.
    const double desktop = QFontInfo(QApplication::font()).pointSizeF();
    for (const QString& size : {u"Me.Font.Size"_s, u"tdbA.Font.Size"_s}) {
        if (settings_->ReadAValueFromCInits(size, desktop).AsNumber(desktop) < desktop) {
            settings_->WriteAValueToCInits(size, desktop);
        }
    }
    settings_->WriteAValueToCInits(u"tdbA.Splits(1).FrozenColumn"_s, u"Name"_s);
    settings_->WriteAValueToCInits(u"ArchiveTemplate"_s, u"="_s);
    settings_->WriteAValueToCInits(u"TrendTemplate"_s, u"="_s);
}

void EditorLayout::Continue(const QList<std::pair<QString, InitValue>>& settings) {
    for (const auto& [path, value] : settings) {
        if (settings_->ParamExist(path)) settings_->WriteAValueToCInits(path, value);
    }
}

void EditorLayout::Apply() {
    embedded_ = window_.parentWidget() != nullptr;
    settings_->SetInitToMotherObject();
    settings_->SetInitToControl(u"Me"_s);
}

void EditorLayout::ApplyColumnOrders() {
    GridSplit& trends = window_.tdbA->SplitAt(1);
    const QString orders = settings_->ReadAValueFromCInits(kColumnOrders).AsText();
    QList<int> columns = GridColumns::ParseOrders(orders, trends.ColumnCount());
    const bool fits =
        orders.count(u',') == trends.ColumnCount() && columns.size() == trends.ColumnCount();
    if (!fits) columns = OrderByName();
    // Nobody has moved a column yet: the name comes first. What the built-in list has behind it,
    // it has at the places of a project with two languages.
    if (orders == defaultOrders_) {
        const QStringList first =
            fits ? QStringList{u"Name"_s} : QStringList{u"Comment"_s, u"TrendVar"_s, u"Name"_s};
        for (const QString& field : first) {
            const int column = trends.ColumnIndex(field);
            columns.removeAll(column);
            columns.prepend(column);
        }
    }
    trends.SetColumnOrders(columns);
    if (GridColumn* column = trends.Column(u"Name")) column->SetVisible(true);
}

/// A list of positions of a project with more or fewer languages means other columns here; the
/// places that stand beside the columns' names keep their sequence in any project.
QList<int> EditorLayout::OrderByName() const {
    const GridSplit& trends = window_.tdbA->SplitAt(1);
    QList<int> columns(trends.ColumnCount());
    std::iota(columns.begin(), columns.end(), 0);
    const auto place = [&](int column) {
        const QString& field = trends.ColumnAt(column)->DataField();
        return settings_->ReadAValueFromCInits(ColumnKey(1, field, u"Order"), column)
            .AsNumber(column);
    };
    std::stable_sort(columns.begin(), columns.end(),
                     [&](int a, int b) { return place(a) < place(b); });
    return columns;
}

void EditorLayout::TakeColumnOrders() {
    const GridSplit& trends = window_.tdbA->SplitAt(1);
    settings_->WriteAValueToCInits(kColumnOrders, GridColumns::FormatOrders(trends.ColumnOrders()));
}

QList<std::pair<QString, InitValue>> EditorLayout::Take(platform::Lcid currentLcid) {
    settings_->GetInitFromControl(u"tdbA"_s);
    settings_->GetInitFromControl(u"Me"_s);
    if (currentLcid != kNoLcid) {
        settings_->WriteAValueToCInits(kCurrentLcid, currentLcid);
    } else {
        settings_->DeleteAValueInCInits(kCurrentLcid);  // what the file has stays
    }
    TakeColumnOrders();
    return settings_->Values();
}

void EditorLayout::Save(platform::Lcid currentLcid) {
    if (!settings_->ReadAValueFromCInits(kSaveOnExit, true).AsBoolean(true)) {
        settings_->WriteToIni(kSaveOnExit, false);
        return;
    }
    std::ignore = Take(currentLcid);
    settings_->SaveInits(file_);
}

int EditorLayout::WindowState() const {
    if (embedded_) return state_;
    return window_.isMinimized() ? 1 : window_.isMaximized() ? 2 : 0;
}

void EditorLayout::SetWindowState(int state) {
    state_ = state;
    if (embedded_) return;
    window_.setWindowState(state == 1   ? Qt::WindowMinimized
                           : state == 2 ? Qt::WindowMaximized
                                        : Qt::WindowNoState);
}

QPointF EditorLayout::Position() const {
    return embedded_ ? position_ : QPointF(window_.pos()) * kTwipsPerPixel;
}

void EditorLayout::SetPosition(QPointF twips) {
    position_ = twips;
    if (!embedded_) window_.move((twips / kTwipsPerPixel).toPoint());
}

QSizeF EditorLayout::Size() const {
    return embedded_ ? size_ : QSizeF(window_.size()) * kTwipsPerPixel;
}

void EditorLayout::SetSize(QSizeF twips) {
    size_ = twips;
    if (!embedded_) window_.resize((twips / kTwipsPerPixel).toSize());
}

QObject* EditorLayout::Font() const {
    return font_.get();
}
