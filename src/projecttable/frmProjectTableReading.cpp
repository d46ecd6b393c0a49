// The rows of the table over a project: read in a thread, and anew when the file is another.

#include <optional>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QThread>
#include <utility>

#include "ado/AdoError.h"
#include "controls/TDBGrid.h"
#include "guard/Guard.h"
#include "projectdb/Failure.h"
#include "projecttable/frmProjectTable.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using guard::Guard;

namespace {

constexpr std::size_t kFirstRows = 400;  // that fill the largest screen

/// The first rows, where there are more; null else.
std::shared_ptr<TrendTable> FirstRows(ado::Connection& connection) {
    try {
        auto first = std::make_shared<TrendTable>(TrendTable::Read(connection, kFirstRows));
        return first->RowCount() == kFirstRows ? first : nullptr;
    } catch (const ado::AdoError&) {
        return nullptr;  // a damaged row among them is left out when all are read
    }
}

}  // namespace

/// What the thread brings that reads the rows.
struct frmProjectTable::Read {
    std::optional<TrendTable> table;
    QString failure{};  // why there is none
};

QWidget* frmProjectTable::BuildNotAll() {
    auto* line = new QFrame(this);
    line->setObjectName(u"fraNotAll"_s);
    line->setFrameShape(QFrame::StyledPanel);
    lblNotAll = new QLabel(line);
    lblNotAll->setObjectName(u"lblNotAll"_s);
    lblNotAll->setWordWrap(true);
    cmdReadAgain = new QPushButton(texts_.GetText(MResourceTable::kTextTableReadAgain), line);
    cmdReadAgain->setObjectName(u"cmdReadAgain"_s);
    connect(cmdReadAgain, &QPushButton::clicked, this,
            [this] { Guard(u"frmProjectTable"_s, [this] { ReadRows(); }); });
    auto* layout = new QHBoxLayout(line);
    layout->addWidget(lblNotAll, 1);
    layout->addWidget(cmdReadAgain);
    line->hide();
    return line;
}

/// Empty: all have been read.
void frmProjectTable::ShowNotAll(const QString& cause) {
    const QString shown = trends_->HasTable()
                              ? QLocale().toString(static_cast<qulonglong>(trends_->TrendCount()))
                              : QString();
    lblNotAll->setText(
        texts_.GetText(MResourceTable::kTextTableNotAll, {{u"n", shown}, {u"cause", cause}}));
    lblNotAll->parentWidget()->setVisible(!cause.isEmpty());
}

void frmProjectTable::ReadRows() {
    if (IsReading()) return;
    if (!tdbTable->CommitPendingEdit()) return;
    read_ = std::make_shared<Read>();
    const std::string source =
        "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + work_.Connection().DataSource() +
        ";Mode=Read|Share Deny None;";
    lblCount->setText(texts_.GetText(MResourceTable::kTextTableReading));
    const bool isFirst = !trends_->HasTable();
    reader_ = QThread::create([this, isFirst, source, read = read_] {
        try {
            ado::Connection connection;
            connection.Open(source);
            if (const auto first = isFirst ? FirstRows(connection) : nullptr) {
                QMetaObject::invokeMethod(this, [this, first] { FirstRowsRead(*first); });
            }
            read->table = TrendTable::Read(connection);
        } catch (...) {
            read->failure = projectdb::Failure::Current().Text();
        }
    });
    connect(reader_, &QThread::finished, this, &frmProjectTable::RowsRead);
    reader_->start();
}

/// To be looked at, until the others are there.
void frmProjectTable::FirstRowsRead(TrendTable table) {
    if (trends_->HasTable()) return;
    tdbTable->SplitAt(1).SetLocked(true);
    trends_->SetTable(std::move(table));
    SetUpColumns();
    lblCount->setText(texts_.GetText(MResourceTable::kTextTableReading));
}

void frmProjectTable::RowsRead() {
    reader_->wait();
    delete std::exchange(reader_, nullptr);
    if (!read_->table) {
        ShowCounts();
        // What has been read whole stays; what has not is no basis for changes.
        if (isWhole_) return ShowError(read_->failure, {});
        tdbTable->SplitAt(1).SetEmptyText({});
        return ShowNotAll(read_->failure);
    }
    isWhole_ = true;
    ShowNotAll({});
    trends_->SetTable(std::move(*read_->table));
    read_.reset();
    if (!columnsSetUp_) SetUpColumns();
    tdbTable->SplitAt(1).SetEmptyText(texts_.GetText(MResourceTable::kTextTableNoHit));
    ShowArchives();
    FillViews(cmbView->currentText());
    // Read only projects are looked at.
    tdbTable->SplitAt(1).SetLocked(!work_.Connection().IsWritable());
}

void frmProjectTable::ReadAnewIfChanged() {
    if (!isWhole_ || IsReading()) return;
    if (trends_->Table().ContentNumber() == work_.Connection().ContentNumber()) return;
    ReadRows();
}
