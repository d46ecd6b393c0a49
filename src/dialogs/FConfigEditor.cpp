#include "dialogs/FConfigEditor.h"

#include <algorithm>
#include <initializer_list>
#include <QApplication>
#include <QFontDialog>
#include <QIconEngine>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QShortcut>
#include <QTabBar>
#include <tuple>
#include <utility>

#include "dialogs/AccessKeys.h"
#include "platform/HelpTopics.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;
using namespace Qt::Literals::StringLiterals;

constexpr int kPosition = Qt::UserRole;
constexpr int kNumber = Qt::UserRole + 1;

constexpr double kLargestSample = 24;  // points; a larger font would burst the page

/// An arrow that is drawn anew at any size and scaling.
class ArrowIcon final : public QIconEngine {
public:
    /// `degrees`: clockwise from pointing to the right.
    explicit ArrowIcon(int degrees) : degrees_(degrees) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        constexpr double kUnits = 16;  // the side of the field that the points below lie in
        const double side = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center());
        painter->rotate(degrees_);
        painter->scale(side / kUnits, side / kUnits);
        const QColor ink = mode == QIcon::Disabled ? QApplication::palette().color(
                                                         QPalette::Disabled, QPalette::WindowText)
                                                   : QColor::fromRgb(0x2F7DC4);
        painter->setPen(QPen(ink, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(ink);
        painter->drawPolygon(
            QPolygonF({{-6, -1.8}, {0, -1.8}, {0, -5.5}, {6, 0}, {0, 5.5}, {0, 1.8}, {-6, 1.8}}));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new ArrowIcon(degrees_); }

private:
    int degrees_;
};

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
    tabConfig->setCurrentIndex(0);
    cmdEditorFont->setFocus();
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
    constexpr int kRight = 0;
    constexpr int kDown = 90;
    constexpr int kLeft = 180;
    constexpr int kUp = 270;
    for (const auto& [button, text, direction] :
         std::initializer_list<std::tuple<QAction*, int, int>>{{btnAdd, kTextAddColumn, kRight},
                                                               {btnDel, kTextRemoveColumn, kLeft},
                                                               {btnUp, kTextColumnUp, kUp},
                                                               {btnDn, kTextColumnDown, kDown}}) {
        button->setText(Text(text));
        button->setIcon(QIcon(new ArrowIcon(direction)));  // which takes the engine over
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
    QWidget* first = tabConfig->currentIndex() == 0 ? static_cast<QWidget*>(cmdEditorFont)
                                                    : static_cast<QWidget*>(lstTrendColExist);
    first->setFocus(Qt::TabFocusReason);
}
