#include "studio/VariableDialog.h"

#include <algorithm>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::chrono::milliseconds kReadBudget(12);
constexpr std::chrono::milliseconds kTypingPause(60);
constexpr std::size_t kExpandUpTo = 400;  // shown variables

QString Number(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

bool MovesThroughTree(const QKeyEvent& key) {
    switch (key.key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            return true;
        default:
            return false;
    }
}

bool IsText(const QKeyEvent& key) {
    return !key.text().isEmpty() && key.text().at(0).isPrint() &&
           (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
}

}  // namespace

VariableDialog::VariableDialog(VariableCatalog& catalog, const StudioTexts& texts, QString current,
                               QWidget* owner)
    : QDialog(owner),
      catalog_(catalog),
      texts_(texts),
      current_(std::move(current)),
      model_(catalog, texts) {
    setObjectName(u"frmVariables"_s);
    setWindowTitle(texts(Text::VariablesTitle));
    Build();
    connect(&reading_, &QTimer::timeout, this, &VariableDialog::ReadOn);
    filtering_.setSingleShot(true);
    connect(&filtering_, &QTimer::timeout, this, &VariableDialog::ApplyFilter);
    GoToCurrent(catalog_.IsComplete() ? Qt::CaseInsensitive : Qt::CaseSensitive);
    if (!catalog_.IsComplete()) reading_.start(0);
    ShowState();
}

void VariableDialog::Build() {
    txtSearch_ = new QLineEdit;
    txtSearch_->setObjectName(u"txtSearch"_s);
    txtSearch_->setPlaceholderText(texts_(Text::VariablesSearchHint));
    txtSearch_->setClearButtonEnabled(true);
    txtSearch_->installEventFilter(this);
    auto* lblSearch = new QLabel(texts_(Text::VariablesSearch));
    lblSearch->setBuddy(txtSearch_);
    trvVariables_ = new QTreeView;
    trvVariables_->setObjectName(u"trvVariables"_s);
    trvVariables_->setAccessibleName(texts_(Text::VariablesTree));
    trvVariables_->setUniformRowHeights(true);
    trvVariables_->setAllColumnsShowFocus(true);
    trvVariables_->setModel(&model_);
    trvVariables_->installEventFilter(this);
    const int letter = fontMetrics().averageCharWidth();
    trvVariables_->setColumnWidth(VariableModel::kName, 44 * letter);
    trvVariables_->setColumnWidth(VariableModel::kType, 10 * letter);
    trvVariables_->setColumnWidth(VariableModel::kUnit, 10 * letter);
    lblChosen_ = new QLabel;
    lblChosen_->setObjectName(u"lblChosen"_s);
    lblChosen_->setTextFormat(Qt::PlainText);
    lblChosen_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblState_ = new QLabel;
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setTextFormat(Qt::PlainText);
    lblState_->setWordWrap(true);
    cmdOk_ = new QPushButton(texts_(Text::Ok));
    cmdOk_->setObjectName(u"cmdOk"_s);
    cmdOk_->setDefault(true);
    auto* cmdCancel = new QPushButton(texts_(Text::Cancel));
    cmdCancel->setObjectName(u"cmdCancel"_s);
    cmdCancel->setAutoDefault(false);

    auto* search = new QHBoxLayout;
    search->addWidget(lblSearch);
    search->addWidget(txtSearch_);
    buttons_ = new QHBoxLayout;
    buttons_->addWidget(lblState_, 1);
    buttons_->addWidget(cmdOk_);
    buttons_->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(search);
    layout->addWidget(trvVariables_);
    layout->addWidget(lblChosen_);
    layout->addLayout(buttons_);
    resize(112 * letter, 32 * fontMetrics().lineSpacing());

    connect(cmdOk_, &QPushButton::clicked, this, &VariableDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &VariableDialog::reject);
    connect(txtSearch_, &QLineEdit::textEdited, this, [this] {
        current_.clear();
        filtering_.start(kTypingPause);
    });
    // Clearing by the button is no editing.
    connect(txtSearch_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (text.isEmpty()) filtering_.start(0);
    });
    connect(trvVariables_, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (!model_.VariableName(index).isEmpty()) accept();
    });
    connect(trvVariables_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &VariableDialog::ShowState);
    connect(trvVariables_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &VariableDialog::ShowState);
    txtSearch_->setFocus();
}

QString VariableDialog::Chosen() const {
    return model_.VariableName(trvVariables_->currentIndex());
}

QStringList VariableDialog::AllChosen() const {
    QModelIndexList rows = trvVariables_->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) {
        return std::pair(a.parent().row(), a.row()) < std::pair(b.parent().row(), b.row());
    });
    QStringList names;
    for (const QModelIndex& row : rows) {
        const QString name = model_.VariableName(row);
        if (!name.isEmpty()) names += name;
    }
    return names;
}

void VariableDialog::OfferSeveral() {
    trvVariables_->setSelectionMode(QAbstractItemView::ExtendedSelection);
}

void VariableDialog::OfferUses(ShowUses showUses) {
    cmdUses_ = new QPushButton(texts_(Text::VariablesUses), this);
    cmdUses_->setObjectName(u"cmdUses"_s);
    cmdUses_->setAutoDefault(false);
    buttons_->insertWidget(1, cmdUses_);
    connect(cmdUses_, &QPushButton::clicked, this,
            [this, showUses = std::move(showUses)] { showUses(this, Chosen()); });
    ShowState();
}

void VariableDialog::accept() {
    if (!AllChosen().isEmpty()) QDialog::accept();
}

void VariableDialog::ReadOn() {
    const bool more = catalog_.ReadSome(kReadBudget);
    model_.TakeNew();
    if (!more) reading_.stop();
    GoToCurrent(more ? Qt::CaseSensitive : Qt::CaseInsensitive);
    ShowState();
}

void VariableDialog::GoToCurrent(Qt::CaseSensitivity sensitivity) {
    if (current_.isEmpty()) return;
    QModelIndex found = model_.Find(current_, Qt::CaseSensitive);
    if (!found.isValid() && sensitivity == Qt::CaseInsensitive) {
        found = model_.Find(current_, Qt::CaseInsensitive);
    }
    if (!found.isValid()) return;
    Mark(found);
    current_.clear();
}

void VariableDialog::Mark(const QModelIndex& index) {
    trvVariables_->setCurrentIndex(index);
    trvVariables_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void VariableDialog::ApplyFilter() {
    filtering_.stop();
    const QString marked = Chosen();
    model_.SetFilter(txtSearch_->text());
    if (model_.IsFiltered() && model_.ShownCount() <= kExpandUpTo) trvVariables_->expandAll();
    QModelIndex next = model_.Find(marked, Qt::CaseSensitive);
    if (!next.isValid() && model_.IsFiltered()) next = model_.FirstVariable();
    if (next.isValid()) Mark(next);
    ShowState();
}

void VariableDialog::ShowState() {
    const QString chosen = Chosen();
    const QStringList all = AllChosen();
    cmdOk_->setEnabled(!all.isEmpty());
    if (cmdUses_ != nullptr) cmdUses_->setEnabled(!chosen.isEmpty());
    lblChosen_->setText(all.size() < 2
                            ? chosen
                            : texts_(Text::VariablesCount, {{u"n", QString::number(all.size())}}));

    const QString count = Number(catalog_.VariableCount());
    QString state;
    if (!catalog_.Failure().isEmpty()) {
        state = texts_(Text::VariablesFailed, {{u"cause", catalog_.Failure()}});
    } else if (!catalog_.IsComplete()) {
        state = texts_(Text::VariablesReading, {{u"n", count}});
    } else if (catalog_.VariableCount() == 0) {
        state = texts_(Text::VariablesNone);
    } else if (model_.IsFiltered()) {
        state =
            texts_(Text::VariablesFound, {{u"n", Number(model_.ShownCount())}, {u"all", count}});
    } else {
        state = texts_(Text::VariablesCount, {{u"n", count}});
    }
    if (catalog_.UnreadableRows() > 0) {
        state += u'\n' + texts_(Text::VariablesUnreadable,
                                {{u"n", QString::number(catalog_.UnreadableRows())}});
    }
    lblState_->setText(state);
}

bool VariableDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (watched == txtSearch_ && MovesThroughTree(key)) {
        current_.clear();
        if (filtering_.isActive()) ApplyFilter();
        QApplication::sendEvent(trvVariables_, event);
        return true;
    }
    if (watched == txtSearch_ && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter)) {
        // May come before the filter that was typed last; OK presses itself then or does not.
        if (filtering_.isActive()) ApplyFilter();
        return false;
    }
    if (watched == trvVariables_ && IsText(key)) {
        if (txtSearch_->hasFocus()) return false;  // comes back from there
        txtSearch_->setFocus();
        txtSearch_->setCursorPosition(static_cast<int>(txtSearch_->text().size()));
        QApplication::sendEvent(txtSearch_, event);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace studio
