#include "controls/TDBGrid.h"

#include <algorithm>
#include <cmath>
#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

#include "controls/detail/GridView.h"
#include "controls/FontProperties.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kTwipsPerInch = 1440;
constexpr double kMostOfGrid = 0.4;  // that split 0 takes by itself

}  // namespace

TDBGrid::TDBGrid(QWidget* parent) : QWidget(parent) {
    splitter_ = new QSplitter(this);
    splitter_->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter_);

    font_ = new FontProperties(font(), this);
    headFont_ = new FontProperties(font(), this);
    for (int i = 0; i < kSplitCount; ++i) {
        auto* view = new GridView(splitter_);
        auto* split = new GridSplit(*view, this);
        splits_[static_cast<std::size_t>(i)] = split;
        connect(view, &GridView::PageRequested, this, &TDBGrid::PageRequested);
        connect(view, &GridView::OtherSplitRequested, this,
                [this, i] { SetSplit((i + 1) % kSplitCount); });
        connect(view, &GridView::GotKeyboard, this, [this, i] {
            if (std::exchange(split_, i) != i) emit SplitChange(i);
        });
    }
    // Columns are laid out after the window; the user's own width is left alone.
    connect(splits_[0], &GridSplit::LayoutChanged, this, [this] {
        if (splitWidth_ <= 0) PlaceBar();
    });
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    connect(splitter_, &QSplitter::splitterMoved, this,
            [this] { splitWidth_ = splitter_->sizes().front() * kTwipsPerInch / logicalDpiX(); });
    setFocusProxy(splits_[1]->View());

    connect(font_, &FontProperties::Changed, this, [this](const QFont& font) {
        if (!ownHeadFont_) {
            const QSignalBlocker blocker(headFont_);
            headFont_->SetFont(font);
        }
        ApplyFonts();
    });
    connect(headFont_, &FontProperties::Changed, this, [this] {
        ownHeadFont_ = true;
        ApplyFonts();
    });
    connect(this, &QObject::objectNameChanged, this, &TDBGrid::NameViews);
    ApplyFonts();
    NameViews();
}

// The splits let go of their views, which the splitter deletes.
TDBGrid::~TDBGrid() {
    for (GridSplit* split : splits_) delete split;
}

QObject* TDBGrid::Splits(int split) const {
    return split >= 0 && split < kSplitCount ? splits_[static_cast<std::size_t>(split)] : nullptr;
}

GridSplit& TDBGrid::SplitAt(int split) const {
    return *splits_.at(static_cast<std::size_t>(split));
}

void TDBGrid::SetTexts(const std::function<QString(GridText)>& texts) {
    for (GridSplit* split : splits_) split->SetTexts(texts);
}

QObject* TDBGrid::Font() const {
    return font_;
}

QObject* TDBGrid::HeadFont() const {
    return headFont_;
}

bool TDBGrid::RecordSelectors() const {
    return splits_[1]->RecordSelectors();
}

void TDBGrid::SetRecordSelectors(bool show) {
    for (GridSplit* split : splits_) split->SetRecordSelectors(show);
}

void TDBGrid::SetSplit(int split) {
    if (split < 0 || split >= kSplitCount) return;
    splits_[static_cast<std::size_t>(split)]->View()->setFocus(Qt::OtherFocusReason);
}

void TDBGrid::SetSplitWidth(double twips) {
    if (!(twips > 0)) return;
    splitWidth_ = twips;
    PlaceBar();
}

void TDBGrid::PlaceBar() {
    const int all = splitter_->width() - splitter_->handleWidth();
    const int first =
        splitWidth_ > 0 ? static_cast<int>(std::lround(splitWidth_ * logicalDpiX() / kTwipsPerInch))
                        : std::min(NeededWidth(), static_cast<int>(all * kMostOfGrid));
    if (all > 0) splitter_->setSizes({first, std::max(all - first, 1)});
}

/// Of split 0, to show all its columns.
int TDBGrid::NeededWidth() const {
    const QTableView& view = *splits_[0]->View();
    const int columns = view.horizontalHeader()->length();
    return columns + view.verticalHeader()->width() + view.verticalScrollBar()->sizeHint().width() +
           2 * view.frameWidth();
}

void TDBGrid::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceBar();
}

void TDBGrid::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    PlaceBar();
}

bool TDBGrid::CommitPendingEdit() {
    bool done = true;
    for (GridSplit* split : splits_) done = split->CommitPendingEdit() && done;
    return done;
}

void TDBGrid::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // A style brings its own metrics along.
    if (event->type() == QEvent::StyleChange && splits_[1] != nullptr) ApplyFonts();
}

void TDBGrid::ApplyFonts() {
    for (const GridSplit* split : splits_) {
        static_cast<GridView*>(split->View())->SetRowHeightFor(font_->Font(), headFont_->Font());
    }
}

void TDBGrid::NameViews() {
    const QString name = objectName();
    for (int i = 0; i < kSplitCount; ++i) {
        splits_[static_cast<std::size_t>(i)]->View()->setObjectName(name + u".Splits(%1)"_s.arg(i));
    }
}
