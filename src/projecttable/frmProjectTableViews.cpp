// Views of the table over a project: what narrows and orders it, kept under a name.

#include <QComboBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QScopedValueRollback>

#include "controls/TDBGrid.h"
#include "project/Colour.h"
#include "projectdb/Text.h"
#include "projecttable/frmProjectTable.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kMostChoices = 60;  // that a menu offers
constexpr int kSwatch = 14;       // pixels

QIcon Swatch(const QString& text) {
    const auto colour = project::ReadColour(projectdb::ToUtf16(text));
    if (!colour || !project::IsColour(*colour)) return {};
    const project::ColourParts parts = project::PartsOf(*colour);
    QPixmap picture(kSwatch, kSwatch);
    picture.fill(QColor(parts.red, parts.green, parts.blue));
    return picture;
}

}  // namespace

/// The views that every project has come first: all trends, texts that are missing in a language,
/// variables that are not there.
void frmProjectTable::FillViews(const QString& current) {
    cmbView->clear();
    cmbView->addItem(texts_.GetText(MResourceTable::kTextTableViewAll), QVariant::fromValue(0));
    const auto add = [this](const TableView& view) {
        cmbView->addItem(view.name, QVariant::fromValue(view));
    };
    if (trends_->HasTable()) {
        for (const TrendTable::Column& column : trends_->Table().Columns()) {
            if (column.field.baseTable != project::kTextTable) continue;
            const QString field = projectdb::ToQString(column.field.name);
            TableView view;
            view.name = texts_.GetText(MResourceTable::kTextTableViewMissing,
                                       {{u"text", TextCaption(field)}});
            view.filters[field] = u"="_s;
            add(view);
        }
        TableView unknown;
        unknown.name = texts_.GetText(MResourceTable::kTextTableViewUnknown);
        unknown.anywhere = u"?"_s;
        if (trends_->Table().HasVariables()) add(unknown);
    }
    if (!views_->All().isEmpty()) cmbView->insertSeparator(cmbView->count());
    for (const TableView& view : views_->All()) add(view);
    const int index = cmbView->findText(current);
    cmbView->setCurrentIndex(index < 0 ? 0 : index);
}

void frmProjectTable::ApplyView(int index) {
    if (!tdbTable->CommitPendingEdit()) return;
    const auto view = cmbView->itemData(index).value<TableView>();
    GridSplit& trends = tdbTable->SplitAt(1);
    {
        const QScopedValueRollback narrowing(narrowing_, true);
        txtFind->setText(view.anywhere);
        for (int column = 0; column < trends.ColumnCount(); ++column) {
            GridColumn& shown = *trends.ColumnAt(column);
            const auto filter = view.filters.find(shown.DataField());
            trends.SetColumnFilter(column,
                                   filter == view.filters.end() ? QString() : filter->second);
            shown.SetVisible(!view.hidden.contains(shown.DataField()));
        }
        QList<GridRowId> picked;
        for (const TrendTableModel::Archive& archive : trends_->Archives()) {
            if (view.archives.contains(archive.name)) picked.append(archive.id);
        }
        tdbTable->SplitAt(0).SetCurrentCell(picked.isEmpty() ? ArchiveGroups::kAll
                                                             : picked.front());
        tdbTable->SplitAt(0).SelectRows(picked);
    }
    trends_->SetSortKeys(view.order);
    Narrow();
}

TableView frmProjectTable::CurrentView() const {
    const GridSplit& trends = tdbTable->SplitAt(1);
    TableView view;
    view.anywhere = txtFind->text();
    for (int column = 0; column < trends.ColumnCount(); ++column) {
        const QString& field = trends.ColumnAt(column)->DataField();
        if (const QString filter = trends.ColumnFilter(column); !filter.isEmpty()) {
            view.filters[field] = filter;
        }
        if (!trends.ColumnAt(column)->Visible()) view.hidden.insert(field);
    }
    view.order = trends_->SortKeys();
    const GridSplit& archives = tdbTable->SplitAt(0);
    QList<GridRowId> picked = archives.SelectedRows();
    if (picked.isEmpty() && archives.CurrentRow() != kNoGridRow) {
        picked.append(archives.CurrentRow());
    }
    for (const GridRowId id : picked) {
        if (id != ArchiveGroups::kAll) view.archives.insert(archives.CellText(id, 0));
    }
    return view;
}

void frmProjectTable::KeepView() {
    bool isGiven = false;
    const bool isOwn = cmbView->currentData().canConvert<TableView>() &&
                       cmbView->findText(cmbView->currentText()) >= 0;
    const QString name =
        QInputDialog::getText(this, windowTitle(),
                              texts_.GetText(MResourceTable::kTextTableViewName), QLineEdit::Normal,
                              isOwn ? cmbView->currentText() : QString(), &isGiven)
            .trimmed();
    if (!isGiven || name.isEmpty()) return;
    TableView view = CurrentView();
    view.name = name;
    const QString failure = views_->Keep(view);
    if (!failure.isEmpty()) {
        return ShowError(
            texts_.GetText(MResourceTable::kTextTableViewsFailed, {{u"cause", failure}}), {});
    }
    FillViews(name);
}

void frmProjectTable::RemoveView() {
    const QString name = cmbView->currentText();
    const auto& all = views_->All();
    const bool isOwn = std::any_of(all.begin(), all.end(),
                                   [&](const TableView& view) { return view.name == name; });
    if (!isOwn) return Hint(texts_.GetText(MResourceTable::kTextTableViewNotOwn));
    const QString failure = views_->Remove(name);
    if (!failure.isEmpty()) {
        return ShowError(
            texts_.GetText(MResourceTable::kTextTableViewsFailed, {{u"cause", failure}}), {});
    }
    FillViews({});
}

/// The values that a column has, to be ticked.
void frmProjectTable::ChooseFilter(int column, const QPoint& position) {
    GridSplit& trends = tdbTable->SplitAt(1);
    const QStringList picked = RowFilter::ValuesOf(trends.ColumnFilter(column));
    QMenu menu(this);
    menu.setObjectName(u"mnuFilter"_s);
    for (const QString& value : trends_->ValuesOf(column).mid(0, kMostChoices)) {
        QString text = value.isEmpty() ? texts_.GetText(MResourceTable::kTextTableNothing) : value;
        QAction* action = menu.addAction(text.replace(u'&', u"&&"_s));
        action->setObjectName(u"mnuFilter(%1)"_s.arg(value));
        action->setCheckable(true);
        action->setChecked(picked.contains(value));
        action->setData(value);
        if (trends.ColumnAt(column)->Kind() == GridKind::Colour) action->setIcon(Swatch(value));
    }
    const QAction* chosen = menu.exec(position);
    if (chosen == nullptr) return;
    QStringList values;
    for (const QAction* action : menu.actions()) {
        if (action->isChecked()) values.append(action->data().toString());
    }
    trends.SetColumnFilter(column, RowFilter::OneOf(values));
}
