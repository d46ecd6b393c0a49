#include "transfer/ColumnChoices.h"

#include <algorithm>
#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>

#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/PlanTexts.h"

namespace transfer {
namespace {

using namespace Qt::Literals::StringLiterals;
using Text = MResourceTable::Exchange;

constexpr int kSamples = 3;   // rows
constexpr int kLongest = 60;  // characters of a sample
constexpr int kWidth = 24;    // average characters

}  // namespace

ColumnChoices::ColumnChoices(const MResources::TextTable& texts, QWidget* parent)
    : QTableWidget(parent), texts_(texts) {
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);  // the choices have the keyboard
    setTabKeyNavigation(false);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    horizontalHeader()->setHighlightSections(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ColumnChoices::sizeHint() const {
    int height = horizontalHeader()->sizeHint().height() + 2 * frameWidth() +
                 horizontalScrollBar()->sizeHint().height();
    for (int row = 0; row < rowCount(); ++row) height += rowHeight(row);
    return {QTableWidget::sizeHint().width(), height};
}

void ColumnChoices::Show(const exchange::InputRows* rows) {
    qDeleteAll(findChildren<QComboBox*>());  // at once: the keyboard may be in one
    clear();
    const auto headings = rows != nullptr ? rows->Headings() : std::span<const std::u16string>();
    const auto samples =
        rows != nullptr ? static_cast<int>(std::min<std::size_t>(rows->Count(), kSamples)) : 0;
    setColumnCount(static_cast<int>(headings.size()));
    setRowCount(headings.empty() ? 0 : 1 + samples);
    QWidget* before = nullptr;
    for (std::size_t i = 0; i < headings.size(); ++i) {
        const int column = static_cast<int>(i);
        setHorizontalHeaderItem(column, new QTableWidgetItem(projectdb::ToQString(headings[i])));
        QComboBox* choice = NewChoice(*rows, i);
        setCellWidget(0, column, choice);
        // Of a list assistive tools take the name from its label, which stands beside it.
        auto* label = new QLabel(choice->accessibleName(), choice->parentWidget());
        label->setBuddy(choice);
        label->hide();
        connect(choice, &QObject::destroyed, label, &QObject::deleteLater);
        if (before != nullptr) setTabOrder(before, choice);
        before = choice;
        setColumnWidth(column, kWidth * fontMetrics().averageCharWidth());
        for (int row = 0; row < samples; ++row) {
            const std::u16string_view text = rows->At(static_cast<std::size_t>(row), i).text;
            setItem(row + 1, column,
                    new QTableWidgetItem(projectdb::ToQString(text.substr(0, kLongest))));
        }
    }
    if (!headings.empty()) {
        setRowHeight(0, cellWidget(0, 0)->sizeHint().height());
        ShowChoices(*rows);
    }
    updateGeometry();
}

void ColumnChoices::ShowChoices(const exchange::InputRows& rows) {
    for (int heading = 0; heading < columnCount(); ++heading) {
        const auto column = rows.ColumnOf(static_cast<std::size_t>(heading));
        auto* choice = static_cast<QComboBox*>(cellWidget(0, heading));
        choice->setCurrentIndex(column ? static_cast<int>(*column) + 1 : 0);
    }
}

QComboBox* ColumnChoices::NewChoice(const exchange::InputRows& rows, std::size_t heading) {
    auto* choice = new QComboBox(this);
    choice->setObjectName(u"cmbColumn%1"_s.arg(heading));
    choice->setAccessibleName(texts_.GetText(
        Text::ColumnChoice, {{u"heading", projectdb::ToQString(rows.Headings()[heading])}}));
    choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    choice->setFocusPolicy(Qt::StrongFocus);
    choice->installEventFilter(this);
    choice->addItem(texts_.GetText(Text::NotTaken));
    const exchange::Sheet& sheet = rows.Columns();
    for (std::size_t i = 0; i < sheet.Columns().size(); ++i) {
        choice->addItem(projectdb::ToQString(sheet.Heading(i, FileLanguage(texts_))));
    }
    connect(choice, &QComboBox::activated, this, [this, heading](int index) {
        emit Assigned(
            heading, index > 0 ? std::optional(static_cast<std::size_t>(index) - 1) : std::nullopt);
    });
    return choice;
}

bool ColumnChoices::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        for (int column = 0; column < columnCount(); ++column) {
            if (cellWidget(0, column) == watched) scrollTo(model()->index(0, column));
        }
    }
    if (event->type() != QEvent::Wheel) return QTableWidget::eventFilter(watched, event);
    // The wheel scrolls the table: it would change by chance what is under the pointer.
    event->ignore();
    return true;
}

}  // namespace transfer
