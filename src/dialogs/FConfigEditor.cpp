#include "dialogs/FConfigEditor.h"

#include <algorithm>
#include <initializer_list>
#include <QApplication>
#include <QFontDialog>
#include <QKeyEvent>
#include <QLocale>
#include <QShortcut>
#include <QTabBar>
#include <utility>

#include "dialogs/AccessKeys.h"
#include "icons/Icons.h"
#include "messages/LabelEdges.h"
#include "platform/HelpTopics.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;
using namespace Qt::Literals::StringLiterals;

constexpr int kPosition = Qt::UserRole;
constexpr int kNumber = Qt::UserRole + 1;

constexpr double kLargestSample = 24;  // points; a larger font would burst the page

QListWidgetItem* MakeItem(const FConfigEditor::Column& column) {
    auto* item = new QListWidgetItem(column.caption);
    item->setData(kPosition, column.position);
    item->setData(kNumber, column.number);
    // An entry is dropped between others. On another one, it would take that one's place.
    item->setFlags(item->flags() & ~Qt::ItemIsDropEnabled);
    return item;
}

/// The row of the selected entry; -1 when there is none.
int SelectedRow(const QListWidget& list) {
    const QModelIndexList rows = list.selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

/// Moves the selected entry to the end of another list and selects it there.
void MoveSelected(QListWidget& from, QListWidget& to) {
    const int row = SelectedRow(from);
    if (row < 0) return;
    QListWidgetItem* item = from.takeItem(row);
    // Also where Qt has kept the row or chosen the one above.
    from.setCurrentRow(std::min(row, from.count() - 1), QItemSelectionModel::ClearAndSelect);
    to.addItem(item);
    to.setCurrentItem(item, QItemSelectionModel::ClearAndSelect);
}

QList<int> Numbers(const QListWidget& list) {
    QList<int> numbers;
    for (int row = 0; row < list.count(); ++row) numbers += list.item(row)->data(kNumber).toInt();
    return numbers;
}

double PointSize(const QFont& font) {
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

/// `font` with what the user has chosen, as far as the settings can keep it. `offered` is the font
/// with which the chooser opened: a family that this station lacks is left alone unless another
/// one is picked. A style's name, which choosers add, would outdo weight and slant.
QFont WithChoice(QFont font, const QFont& offered, const QFont& chosen) {
    font.setStyleName({});
    if (chosen.family() != offered.family()) font.setFamily(chosen.family());
    if (chosen.pointSizeF() > 0) font.setPointSizeF(chosen.pointSizeF());
    font.setWeight(chosen.weight());
    font.setItalic(chosen.italic());
    font.setUnderline(chosen.underline());
    font.setStrikeOut(chosen.strikeOut());
    return font;
}

}  // namespace

FConfigEditor::FConfigEditor(const MResources::TextTable& texts, ShowHelp showHelp, QWidget* owner)
    : QDialog(owner), texts_(texts), showHelp_(std::move(showHelp)) {
    setupUi(this);
    setModal(true);
    SetCaptions();
    SetUpToolBar();
    SetUpLists();
    ConnectControls();
    SetEditorFont(font());
    AssignAccessKeys(*tabConfig, {cmdOk, cmdCancel, cmdHelp});
    messages::AlignLabels(*this);
    tabConfig->setCurrentIndex(0);
    chkDelQuestion->setFocus();  // Enter is OK there
    UpdateButtons();
}

void FConfigEditor::SetCaptions() {
    setWindowTitle(Text(kTextOptionsTitle));
    tabConfig->setTabText(0, Text(kTextOptionsPageCommon));
    tabConfig->setTabText(1, Text(kTextOptionsPageTrendTable));
    lblEditorFont->setText(Text(kTextOptionsEditorFont));
    cmdEditorFont->setText(Text(kTextPicker));
    cmdEditorFont->setToolTip(Text(kTextChooseFont));
    chkDelQuestion->setText(Text(kTextOptionsRequestOnDelete));
    chkShowStatusBar->setText(Text(kTextOptionsShowStatusBar));
    chkSaveOnExit->setText(Text(kTextOptionsSaveOnExit));
    lblTrendColExist->setText(Text(kTextOptionsColumnsExisting));
    lblTrendColChoosed->setText(Text(kTextOptionsColumnsChosen));
    cmdOk->setText(Text(kTextOptionsOk));
    cmdCancel->setText(Text(kTextOptionsCancel));
    cmdHelp->setText(Text(kTextOptionsHelp));

    txtEditorFont->setAccessibleName(lblEditorFont->text());
    cmdEditorFont->setAccessibleName(
        u"%1: %2"_s.arg(lblEditorFont->text(), cmdEditorFont->toolTip()));
    lstTrendColExist->setAccessibleName(lblTrendColExist->text());
    lstTrendColChoosed->setAccessibleName(lblTrendColChoosed->text());
    tbrTrendCol->setAccessibleName(Text(kTextOptionsTableColumns));
}

void FConfigEditor::SetUpToolBar() {
    struct Button {
        QAction* action;
        int text;
        QStringView icon;
    };
    for (const auto& [button, text, icon] :
         std::initializer_list<Button>{{btnAdd, kTextAddColumn, u"arrow-right"},
                                       {btnDel, kTextRemoveColumn, u"arrow-left"},
                                       {btnUp, kTextColumnUp, u"arrow-up"},
                                       {btnDn, kTextColumnDown, u"arrow-down"}}) {
        button->setText(Text(text));
        button->setIcon(icons::Icon(icon));
    }
}

void FConfigEditor::SetUpLists() {
    for (QListWidget* list : {lstTrendColExist, lstTrendColChoosed}) {
        list->installEventFilter(this);
        connect(list, &QListWidget::itemSelectionChanged, this, &FConfigEditor::UpdateButtons);
    }
    const QAbstractItemModel* chosen = lstTrendColChoosed->model();
    for (const auto moved : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(chosen, moved, this, &FConfigEditor::UpdateButtons);
    }
    connect(chosen, &QAbstractItemModel::rowsMoved, this, &FConfigEditor::UpdateButtons);
}

void FConfigEditor::ConnectControls() {
    connect(btnAdd, &QAction::triggered, this, &FConfigEditor::btnAdd_Click);
    connect(btnDel, &QAction::triggered, this, &FConfigEditor::btnDel_Click);
    connect(btnUp, &QAction::triggered, this, &FConfigEditor::btnUp_Click);
    connect(btnDn, &QAction::triggered, this, &FConfigEditor::btnDn_Click);
    connect(lstTrendColExist, &QListWidget::itemDoubleClicked, this, &FConfigEditor::btnAdd_Click);
    connect(lstTrendColChoosed, &QListWidget::itemDoubleClicked, this,
            &FConfigEditor::btnDel_Click);
    connect(cmdEditorFont, &QPushButton::clicked, this, &FConfigEditor::cmdEditorFont_Click);
    connect(cmdOk, &QPushButton::clicked, this, &FConfigEditor::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &FConfigEditor::reject);
    connect(cmdHelp, &QPushButton::clicked, this, &FConfigEditor::cmdHelp_Click);

    const auto* forward = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab), this);
    connect(forward, &QShortcut::activated, this, [this] { ShowNextPage(1); });
    const auto* backward =
        new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab), this);
    connect(backward, &QShortcut::activated, this, [this] { ShowNextPage(-1); });
}

QString FConfigEditor::Text(int id) const {
    return texts_.GetText(id);
}

void FConfigEditor::SetEditorFont(const QFont& font) {
    editorFont_ = font;
    QFont sample = font;
    sample.setPointSizeF(std::min(PointSize(font), kLargestSample));
    txtEditorFont->setFont(sample);
    txtEditorFont->setText(
        u"%1, %2"_s.arg(font.family(), QLocale().toString(PointSize(font), 'g', 4)));
    txtEditorFont->setCursorPosition(0);
    cmdEditorFont->setAccessibleDescription(txtEditorFont->text());
}

void FConfigEditor::AddHidden(const Column& column) {
    lstTrendColExist->addItem(MakeItem(column));
}

void FConfigEditor::AddShown(const Column& column) {
    int row = 0;
    while (row < lstTrendColChoosed->count() &&
           lstTrendColChoosed->item(row)->data(kPosition).toInt() <= column.position) {
        ++row;
    }
    lstTrendColChoosed->insertItem(row, MakeItem(column));
}

void FConfigEditor::SelectFirst() {
    for (QListWidget* list : {lstTrendColExist, lstTrendColChoosed}) {
        list->setCurrentRow(list->count() > 0 ? 0 : -1);
    }
}

QList<int> FConfigEditor::HiddenColumns() const {
    return Numbers(*lstTrendColExist);
}

QList<int> FConfigEditor::ShownColumns() const {
    return Numbers(*lstTrendColChoosed);
}

void FConfigEditor::UpdateButtons() {
    const int chosen = SelectedRow(*lstTrendColChoosed);
    btnAdd->setEnabled(SelectedRow(*lstTrendColExist) >= 0);
    btnDel->setEnabled(chosen >= 0);
    btnUp->setEnabled(chosen > 0);
    btnDn->setEnabled(chosen >= 0 && chosen < lstTrendColChoosed->count() - 1);
}

void FConfigEditor::btnAdd_Click() {
    MoveSelected(*lstTrendColExist, *lstTrendColChoosed);
}

void FConfigEditor::btnDel_Click() {
    MoveSelected(*lstTrendColChoosed, *lstTrendColExist);
}

void FConfigEditor::btnUp_Click() {
    MoveChosen(-1);
}

void FConfigEditor::btnDn_Click() {
    MoveChosen(1);
}

void FConfigEditor::MoveChosen(int step) {
    const int row = SelectedRow(*lstTrendColChoosed);
    const int target = row + step;
    if (row < 0 || target < 0 || target >= lstTrendColChoosed->count()) return;
    QListWidgetItem* item = lstTrendColChoosed->takeItem(row);
    lstTrendColChoosed->insertItem(target, item);
    lstTrendColChoosed->setCurrentItem(item, QItemSelectionModel::ClearAndSelect);
}

void FConfigEditor::cmdOk_Click() {
    cancelled_ = false;
    accept();
}

void FConfigEditor::cmdHelp_Click() {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QApplication::sendEvent(this, &key);
}

void FConfigEditor::cmdEditorFont_Click() {
    QFontDialog chooser(editorFont_, this);
    chooser.setObjectName(u"dlgEditorFont"_s);
    chooser.setWindowTitle(Text(kTextChooseFont));
    const QFont offered = chooser.currentFont();
    if (chooser.exec() == QDialog::Accepted) {
        SetEditorFont(WithChoice(editorFont_, offered, chooser.selectedFont()));
    }
}

bool FConfigEditor::eventFilter(QObject* watched, QEvent* event) {
    const bool exist = watched == lstTrendColExist;
    if (event->type() != QEvent::KeyPress || !(exist || watched == lstTrendColChoosed)) {
        return QDialog::eventFilter(watched, event);
    }
    const auto& key = static_cast<const QKeyEvent&>(*event);
    QAction* action = nullptr;
    const bool control = (key.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
    switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            action = exist ? btnAdd : btnDel;
            break;
        case Qt::Key_Delete:
            if (!exist) action = btnDel;
            break;
        case Qt::Key_Up:
            if (!exist && control) action = btnUp;
            break;
        case Qt::Key_Down:
            if (!exist && control) action = btnDn;
            break;
        default:
            break;
    }
    if (action == nullptr) return QDialog::eventFilter(watched, event);
    // Nothing to move: the key is swallowed all the same, or one Enter too many would be OK.
    action->trigger();
    return true;
}

void FConfigEditor::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_F1) {
        QDialog::keyPressEvent(event);
        return;
    }
    if (showHelp_) showHelp_(platform::kHelpOptionsCommon + tabConfig->currentIndex(), this);
}

void FConfigEditor::ShowNextPage(int step) {
    const bool onTabs = tabConfig->tabBar()->hasFocus();
    tabConfig->setCurrentIndex((tabConfig->currentIndex() + step + tabConfig->count()) %
                               tabConfig->count());
    if (onTabs) return;
    QWidget* first = tabConfig->currentIndex() == 0 ? static_cast<QWidget*>(chkDelQuestion)
                                                    : static_cast<QWidget*>(lstTrendColExist);
    setAttribute(Qt::WA_KeyboardFocusChange);  // or some styles show no focus
    first->setFocus(Qt::TabFocusReason);
}
