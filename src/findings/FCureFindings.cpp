#include "findings/FCureFindings.h"

#include <algorithm>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "findings/FindingTexts.h"
#include "messages/PlainTexts.h"
#include "platform/Locale.h"
#include "project/FieldText.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace findings {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace MResourceTable;
using projectdb::ToQString;
using Kind = project::CureStep::Kind;

enum Column { kWhat, kField, kOld, kNew, kColumnCount };

constexpr int kWidth = 110;  // average characters
constexpr int kLines = 24;
constexpr int kWidestColumn = 44;  // average characters

}  // namespace

FCureFindings::FCureFindings(const MResources::TextTable& texts,
                             std::span<const project::Finding> findings,
                             std::span<const project::PlannedCure> cures, QWidget* owner)
    : QDialog(owner), texts_(texts), tblCures_(new QTableWidget(this)) {
    setObjectName(u"FCureFindings"_s);
    setWindowTitle(texts.GetText(kTextCureTitle));
    messages::KeepTextsPlain(*this);
    auto* lblIntro = new QLabel(texts.GetText(kTextCureIntro), this);
    lblIntro->setWordWrap(true);
    tblCures_->setObjectName(u"tblCures"_s);
    tblCures_->setAccessibleName(lblIntro->text());
    tblCures_->setColumnCount(kColumnCount);
    tblCures_->setHorizontalHeaderLabels(
        {texts.GetText(kTextFindingMessage), texts.GetText(kTextFindingField),
         texts.GetText(kTextCureOld), texts.GetText(kTextCureNew)});
    tblCures_->verticalHeader()->hide();
    tblCures_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblCures_->setTabKeyNavigation(false);
    for (const project::PlannedCure& cure : cures) {
        rows_.push_back(tblCures_->rowCount());
        AddSteps(findings[cure.finding], cure);
    }
    tblCures_->resizeColumnsToContents();
    const int letter = fontMetrics().averageCharWidth();
    for (int column = 0; column < kColumnCount; ++column) {
        const int width = column == kWhat ? 2 * kWidestColumn : kWidestColumn;
        tblCures_->setColumnWidth(column, std::min(tblCures_->columnWidth(column), width * letter));
    }
    tblCures_->horizontalHeader()->setStretchLastSection(true);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* cmdOk =
        buttons->addButton(texts.GetText(kTextCureDo), QDialogButtonBox::AcceptRole);
    cmdOk->setObjectName(u"cmdOk"_s);
    cmdOk->setDefault(true);
    buttons->addButton(texts.GetText(kTextCancel), QDialogButtonBox::RejectRole)
        ->setObjectName(u"cmdCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblIntro);
    layout->addWidget(tblCures_, 1);
    layout->addWidget(buttons);
    resize(kWidth * letter, kLines * fontMetrics().height());
    tblCures_->setCurrentCell(0, kWhat);
    tblCures_->setFocus();
}

void FCureFindings::AddSteps(const project::Finding& finding, const project::PlannedCure& cure) {
    bool isFirst = true;
    for (const project::CureStep& step : cure.steps) {
        const int row = tblCures_->rowCount();
        tblCures_->insertRow(row);
        const QString what =
            isFirst ? ToQString(project::MessageOf(finding, WordsOf(texts_))) : QString();
        const QStringList cells{what, CaptionOf(step.table, step.column, texts_),
                                step.kind == Kind::Set ? ValueOf(step, step.was) : QString(),
                                NewOf(step)};
        for (int column = 0; column < kColumnCount; ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            item->setToolTip(cells[column].toHtmlEscaped());
            Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
            if (column == kWhat && isFirst) {
                flags |= Qt::ItemIsUserCheckable;
                item->setCheckState(Qt::Checked);
            }
            item->setFlags(flags);
            tblCures_->setItem(row, column, item);
        }
        isFirst = false;
    }
}

/// As the grid shows it.
QString FCureFindings::ValueOf(const project::CureStep& step, const ado::Value& value) const {
    const bool isTrend = step.table == project::kTrendTable;
    const project::Column* column =
        isTrend ? project::FindTrendColumn(step.column) : project::FindArchiveColumn(step.column);
    if (const auto* number = std::get_if<std::int32_t>(&value); number != nullptr && column) {
        for (const project::Code& code : column->codes) {
            if (code.code == *number) return texts_.GetText(code.text);
        }
    }
    const QLocale locale = platform::NumberLocale(QLocale(texts_.Language().locale));
    return ToQString(project::ValueText(value, platform::DecimalSeparator(locale).unicode()));
}

QString FCureFindings::NewOf(const project::CureStep& step) const {
    switch (step.kind) {
        case Kind::Set:
            return ValueOf(step, step.is);
        case Kind::AddText:
            return texts_.GetText(kTextCureAddText);
        case Kind::CopyText:
            return texts_.GetText(kTextCureCopyText);
        case Kind::AddGroup:
            return texts_.GetText(kTextCureAddGroup);
        case Kind::Remove:
            return texts_.GetText(kTextCureRemove);
    }
    return {};
}

std::vector<std::size_t> FCureFindings::Chosen() const {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (tblCures_->item(rows_[i], kWhat)->checkState() == Qt::Checked) chosen.push_back(i);
    }
    return chosen;
}

}  // namespace findings
