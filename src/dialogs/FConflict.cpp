#include "dialogs/FConflict.h"

#include <algorithm>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

#include "messages/PlainTexts.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kTheirsColumn = 2;
constexpr int kMineColumn = 3;
constexpr int kWidestColumn = 320;  // pixels
constexpr int kHighest = 480;       // pixels

int ColumnOf(FConflict::Side side) {
    return side == FConflict::Side::Theirs ? kTheirsColumn : kMineColumn;
}

}  // namespace

FConflict::FConflict(const MResources::TextTable& texts, const QList<Row>& rows, QWidget* owner)
    : QDialog(owner),
      texts_(texts),
      tblConflicts_(new QTableWidget(this)),
      cmdOk_(new QPushButton(texts.GetText(MResourceTable::kTextOk), this)) {
    setObjectName(u"FConflict"_s);
    messages::KeepTextsPlain(*this);
    auto* intro = new QLabel(texts.GetText(MResourceTable::kTextConflictIntro), this);
    intro->setObjectName(u"lblIntro"_s);
    intro->setWordWrap(true);
    tblConflicts_->setObjectName(u"tblConflicts"_s);
    tblConflicts_->setAccessibleName(texts.GetText(MResourceTable::kTextConflictIntro));
    Fill(rows);
    connect(tblConflicts_, &QTableWidget::itemChanged, this, &FConflict::tblConflicts_ItemChanged);

    const auto button = [&](const QString& name, int text, auto clicked) {
        auto* made = new QPushButton(texts.GetText(text), this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, clicked);
        return made;
    };
    cmdOk_->setObjectName(u"cmdOk"_s);
    cmdOk_->setDefault(true);
    connect(cmdOk_, &QPushButton::clicked, this, &QDialog::accept);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(button(u"cmdAllTheirs"_s, MResourceTable::kTextConflictAllTheirs,
                             [this] { ChooseAll(Side::Theirs); }));
    bottom->addWidget(button(u"cmdAllMine"_s, MResourceTable::kTextConflictAllMine,
                             [this] { ChooseAll(Side::Mine); }));
    bottom->addStretch(1);
    bottom->addWidget(cmdOk_);
    bottom->addWidget(button(u"cmdCancel"_s, MResourceTable::kTextCancel, [this] { reject(); }));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addWidget(tblConflicts_, 1);
    layout->addLayout(bottom);
    UpdateOk();
    tblConflicts_->setFocus();
}

void FConflict::Fill(const QList<Row>& rows) {
    using namespace MResourceTable;
    const QStringList headings{texts_.GetText(kTextConflictWhat), texts_.GetText(kTextConflictWas),
                               texts_.GetText(kTextConflictTheirs),
                               texts_.GetText(kTextConflictMine)};
    tblConflicts_->setColumnCount(static_cast<int>(headings.size()));
    tblConflicts_->setHorizontalHeaderLabels(headings);
    tblConflicts_->setRowCount(static_cast<int>(rows.size()));
    tblConflicts_->verticalHeader()->hide();
    tblConflicts_->setSelectionMode(QAbstractItemView::SingleSelection);
    for (int row = 0; row < rows.size(); ++row) {
        const QStringList cells{rows[row].what, rows[row].was, rows[row].theirs, rows[row].mine};
        for (int column = 0; column < cells.size(); ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            item->setToolTip(cells[column].toHtmlEscaped());
            Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
            if (column >= kTheirsColumn) {
                flags |= Qt::ItemIsUserCheckable;
                item->setCheckState(Qt::Unchecked);
            }
            item->setFlags(flags);
            tblConflicts_->setItem(row, column, item);
        }
    }
    tblConflicts_->resizeColumnsToContents();
    int width =
        2 * tblConflicts_->frameWidth() + tblConflicts_->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < headings.size(); ++column) {
        tblConflicts_->setColumnWidth(column,
                                      std::min(tblConflicts_->columnWidth(column), kWidestColumn));
        width += tblConflicts_->columnWidth(column);
    }
    tblConflicts_->horizontalHeader()->setStretchLastSection(true);
    tblConflicts_->setMinimumWidth(width);
    resize(sizeHint().width(), std::min(sizeHint().height(), kHighest));
    tblConflicts_->setCurrentCell(0, kTheirsColumn);
}

std::optional<FConflict::Side> FConflict::Chosen(int row) const {
    for (const Side side : {Side::Theirs, Side::Mine}) {
        if (tblConflicts_->item(row, ColumnOf(side))->checkState() == Qt::Checked) return side;
    }
    return std::nullopt;
}

void FConflict::tblConflicts_ItemChanged(QTableWidgetItem* item) {
    if (item->column() < kTheirsColumn) return;
    if (item->checkState() == Qt::Checked) {
        const QSignalBlocker blocker(tblConflicts_);
        const int other = kTheirsColumn + kMineColumn - item->column();
        tblConflicts_->item(item->row(), other)->setCheckState(Qt::Unchecked);
    }
    UpdateOk();
}

void FConflict::ChooseAll(Side side) {
    for (int row = 0; row < tblConflicts_->rowCount(); ++row) {
        tblConflicts_->item(row, ColumnOf(side))->setCheckState(Qt::Checked);
    }
    cmdOk_->setFocus();
}

void FConflict::UpdateOk() {
    bool all = true;
    for (int row = 0; row < tblConflicts_->rowCount(); ++row) all = all && Chosen(row);
    cmdOk_->setEnabled(all);
}

std::optional<QList<FConflict::Side>> FConflict::Ask() {
    if (exec() != QDialog::Accepted) return std::nullopt;
    QList<Side> sides;
    for (int row = 0; row < tblConflicts_->rowCount(); ++row) sides += *Chosen(row);
    return sides;
}
