#include "editor/EditorLayout.h"

#include <QWidget>

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

QString ColumnKey(const QString& column, QStringView property) {
    return u"tdbA.Splits(1).Columns(\"%1\").%2"_s.arg(column, property);
}

}  // namespace

EditorLayout::EditorLayout(frmtabGrid& window)
    : window_(window),
      settings_(std::make_unique<CInit>()),
      font_(std::make_unique<FontProperties>(window.font())) {
    settings_->SetMotherobject(&window);
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
        settings_->WriteAValueToCInits(ColumnKey(column.DataField(), u"Width"), kColumnWidth);
        settings_->WriteAValueToCInits(ColumnKey(column.DataField(), u"Order"), column.Order());
    }
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

void EditorLayout::Apply() {
    embedded_ = window_.parentWidget() != nullptr;
    settings_->SetInitToMotherObject();
    settings_->SetInitToControl(u"Me"_s);
}

void EditorLayout::ApplyColumnOrders() {
    GridSplit& trends = window_.tdbA->SplitAt(1);
    const QString orders = settings_->ReadAValueFromCInits(kColumnOrders).AsText();
    QList<int> columns = GridColumns::ParseOrders(orders, trends.ColumnCount());
    const int name = trends.ColumnIndex(u"Name");
    // Nobody has moved a column yet: the name comes first.
    if (orders == defaultOrders_) {
        columns.removeAll(name);
        columns.prepend(name);
    }
    trends.SetColumnOrders(columns);
    if (GridColumn* column = trends.Column(u"Name")) column->SetVisible(true);
}

void EditorLayout::TakeColumnOrders() {
    const GridSplit& trends = window_.tdbA->SplitAt(1);
    settings_->WriteAValueToCInits(kColumnOrders, GridColumns::FormatOrders(trends.ColumnOrders()));
}

void EditorLayout::Save(platform::Lcid currentLcid) {
    if (!settings_->ReadAValueFromCInits(kSaveOnExit, true).AsBoolean(true)) {
        settings_->WriteToIni(kSaveOnExit, false);
        return;
    }
    settings_->GetInitFromControl(u"tdbA"_s);
    settings_->GetInitFromControl(u"Me"_s);
    if (currentLcid != kNoLcid) {
        settings_->WriteAValueToCInits(kCurrentLcid, currentLcid);
    } else {
        settings_->DeleteAValueInCInits(kCurrentLcid);  // what the file has stays
    }
    TakeColumnOrders();
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
