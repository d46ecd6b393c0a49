#include "help/HelpWindow.h"

#include <QAction>
#include <QDateTime>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>

#include "help/detail/HtmlText.h"
#include "help/HelpPage.h"
#include "icons/Icons.h"
#include "messages/PlainTexts.h"
#include "platform/HelpTopics.h"
#include "texts/MResourceTable.h"

namespace help {

using namespace Qt::Literals::StringLiterals;
using Text = MResourceTable::Help;

namespace {

constexpr int kPageRole = Qt::UserRole;

/// Tells a file that has been replaced from the one that was read.
QString Stamp(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile()) return {};
    return u"%1 %2 %3"_s.arg(path, file.lastModified().toString(Qt::ISODateWithMs))
        .arg(file.size());
}

}  // namespace

HelpWindow::HelpWindow(const MResources::TextTable& texts)
    : texts_(texts), language_(texts_.Language().help), builtIn_(language_) {
    setObjectName(u"frmHelp"_s);
    messages::KeepTextsPlain(*this);
    // The program ends with its own windows; this one goes with them.
    setAttribute(Qt::WA_QuitOnClose, false);
    resize(980, 680);
    BuildToolBar();
    BuildBody();
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    statusBar()->addWidget(lblState_, 1);
    Use(builtIn_);
}

HelpWindow::~HelpWindow() = default;

QAction* HelpWindow::AddAction(const char* name, const QString& text, const QString& icon,
                               const QKeySequence& key) {
    auto* action = new QAction(text, this);
    action->setObjectName(QLatin1StringView(name));
    action->setIconText(icon);
    action->setShortcut(key);
    action->setToolTip(
        key.isEmpty() ? text : text + u" ("_s + key.toString(QKeySequence::NativeText) + u')');
    addAction(action);
    return action;
}

void HelpWindow::BuildToolBar() {
    txtPage_ = new HelpPage(this);
    auto* bar = addToolBar(texts_.GetText(Text::Home));
    bar->setObjectName(u"tbrHelp"_s);
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    QAction* back = AddAction("actBack", texts_.GetText(Text::Back), {}, QKeySequence::Back);
    QAction* forward =
        AddAction("actForward", texts_.GetText(Text::Forward), {}, QKeySequence::Forward);
    back->setIcon(icons::Icon(u"arrow-left"));
    forward->setIcon(icons::Icon(u"arrow-right"));
    const QString homeText = texts_.GetText(Text::Home);
    QAction* home = AddAction("actHome", homeText, homeText, Qt::ALT | Qt::Key_Home);
    QAction* smaller =
        AddAction("actSmaller", texts_.GetText(Text::Smaller), u"A−"_s, QKeySequence::ZoomOut);
    QAction* larger =
        AddAction("actLarger", texts_.GetText(Text::Larger), u"A+"_s, QKeySequence::ZoomIn);
    bar->addActions({back, forward, home});
    bar->addSeparator();
    bar->addActions({smaller, larger});
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QAction::triggered, txtPage_, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, txtPage_, &QTextBrowser::forward);
    connect(txtPage_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(txtPage_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(home, &QAction::triggered, this, [this] { txtPage_->ShowPage(source_->HomePage()); });
    connect(smaller, &QAction::triggered, this, [this] { txtPage_->zoomOut(1); });
    connect(larger, &QAction::triggered, this, [this] { txtPage_->zoomIn(1); });
    QAction* find = AddAction("actFind", texts_.GetText(Text::Search), {}, QKeySequence::Find);
    connect(find, &QAction::triggered, this, [this] {
        txtSearch_->setFocus();
        txtSearch_->selectAll();
    });
}

void HelpWindow::BuildBody() {
    auto* left = new QWidget(this);
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(4, 4, 0, 4);
    txtSearch_ = new QLineEdit(left);
    txtSearch_->setObjectName(u"txtSearch"_s);
    txtSearch_->setPlaceholderText(texts_.GetText(Text::Search));
    txtSearch_->setToolTip(texts_.GetText(Text::SearchTip));
    txtSearch_->setAccessibleName(texts_.GetText(Text::Search));
    txtSearch_->setClearButtonEnabled(true);
    tvwContents_ = new QTreeWidget(left);
    tvwContents_->setObjectName(u"tvwContents"_s);
    tvwContents_->setAccessibleName(texts_.GetText(Text::Contents));
    tvwContents_->setHeaderHidden(true);
    tvwContents_->setUniformRowHeights(true);
    lstMatches_ = new QListWidget(left);
    lstMatches_->setObjectName(u"lstMatches"_s);
    lstMatches_->setAccessibleName(texts_.GetText(Text::Matches));
    stkLeft_ = new QStackedWidget(left);
    stkLeft_->addWidget(tvwContents_);
    stkLeft_->addWidget(lstMatches_);
    column->addWidget(txtSearch_);
    column->addWidget(stkLeft_);
    txtPage_->setObjectName(u"txtPage"_s);
    txtPage_->setAccessibleName(texts_.GetText(Text::Page));

    auto* splitter = new QSplitter(this);
    splitter->setObjectName(u"splHelp"_s);
    splitter->addWidget(left);
    splitter->addWidget(txtPage_);
    splitter->setSizes({260, 720});
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    connect(txtSearch_, &QLineEdit::textChanged, this, &HelpWindow::Search);
    txtSearch_->installEventFilter(this);
    connect(txtSearch_, &QLineEdit::returnPressed, this, [this] {
        if (lstMatches_->currentRow() < 0) lstMatches_->setCurrentRow(0);
    });
    connect(tvwContents_, &QTreeWidget::currentItemChanged, this, &HelpWindow::OpenItem);
    connect(lstMatches_, &QListWidget::currentItemChanged, this, &HelpWindow::OpenMatch);
    connect(txtPage_, &QTextBrowser::sourceChanged, this, &HelpWindow::SelectPage);
}

void HelpWindow::OpenItem(QTreeWidgetItem* item) {
    if (item == nullptr) return;
    const QString page = item->data(0, kPageRole).toString();
    if (!page.isEmpty()) txtPage_->ShowPage(page);
}

void HelpWindow::OpenMatch() {
    const QListWidgetItem* item = lstMatches_->currentItem();
    if (item == nullptr) return;
    const QString page = item->data(kPageRole).toString();
    txtPage_->ShowPage(page);
    // A place in the page is what was looked for; else the first of the words is.
    if (page.contains(u'#')) return;
    const QString wanted = txtSearch_->text().simplified();
    if (!txtPage_->find(wanted)) txtPage_->find(wanted.section(u' ', 0, 0));
}

bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
    // The arrow keys go through what has been found while one goes on typing.
    if (watched == txtSearch_ && event->type() == QEvent::KeyPress && lstMatches_->count() > 0) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Up) {
            const int row = lstMatches_->currentRow() + (key == Qt::Key_Down ? 1 : -1);
            lstMatches_->setCurrentRow(qBound(0, row, lstMatches_->count() - 1));
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void HelpWindow::Use(const IHelpSource& source) {
    if (source_ == &source) return;
    source_ = &source;
    txtSearch_->clear();
    search_.SetSource(source_);
    txtPage_->SetSource(source_);
    setWindowTitle(texts_.GetText(Text::WindowTitle, {{u"title", source_->Title()}}));
    const QSignalBlocker quiet(tvwContents_);
    tvwContents_->clear();
    QList<QTreeWidgetItem*> parents;
    for (const ContentsEntry& entry : source_->Contents()) {
        const qsizetype level = qMin<qsizetype>(entry.level, parents.size());
        parents.resize(level);
        auto* item = parents.isEmpty() ? new QTreeWidgetItem(tvwContents_)
                                       : new QTreeWidgetItem(parents.back());
        item->setText(0, entry.title);
        item->setData(0, kPageRole, entry.page);
        parents += item;
    }
    tvwContents_->expandAll();
}

void HelpWindow::ShowTopic(const QString& helpFile, int topic) {
    pendingTopic_ = topic;
    const QString stamp = Stamp(helpFile);
    if (stamp != chmStamp_) {
        chmStamp_ = stamp;
        chmFile_ = helpFile;
        reader_.reset();
        Use(builtIn_);
        chm_.reset();
        lblState_->clear();
        if (!stamp.isEmpty()) {
            lblState_->setText(texts_.GetText(Text::Loading));
            reader_ = std::make_unique<ChmReader>(
                helpFile, [this](std::unique_ptr<ChmHelp> chm) { Loaded(std::move(chm)); });
        }
    }
    if (!reader_) ShowPending();
}

void HelpWindow::Loaded(std::unique_ptr<ChmHelp> chm) {
    // It is still on the stack.
    reader_.release()->deleteLater();
    chm_ = std::move(chm);
    const bool usable = chm_ && !chm_->HomePage().isEmpty();
    if (!usable) chm_.reset();
    lblState_->setText(usable ? QString()
                              : texts_.GetText(Text::FileDamaged, {{u"file", chmFile_}}));
    ShowPending();
}

void HelpWindow::ShowPending() {
    QString page = chm_ ? chm_->TopicPage(pendingTopic_) : QString();
    if (!page.isEmpty()) {
        Use(*chm_);
    } else {
        page = builtIn_.TopicPage(pendingTopic_);
        // A number that nobody knows is the file's own business.
        const bool unknown = page.isEmpty();
        if (unknown && chm_) {
            Use(*chm_);
        } else {
            Use(builtIn_);
        }
        if (unknown) page = source_->HomePage();
    }
    txtSearch_->clear();
    txtPage_->ShowPage(page);
    emit TopicShown(page);
}

void HelpWindow::SelectPage(const QUrl& address) {
    const QString shown = HelpPage::PageOf(address);
    const QSignalBlocker quiet(tvwContents_);
    for (QTreeWidgetItemIterator item(tvwContents_); *item != nullptr; ++item) {
        const QString page = (*item)->data(0, kPageRole).toString().section(u'#', 0, 0);
        if (page.compare(shown, Qt::CaseInsensitive) == 0) {
            tvwContents_->setCurrentItem(*item);
            return;
        }
    }
}

void HelpWindow::Search(const QString& words) {
    const QString wanted = words.simplified();
    lstMatches_->clear();
    stkLeft_->setCurrentIndex(wanted.isEmpty() ? 0 : 1);
    lblState_->clear();
    if (wanted.isEmpty()) return;
    for (const PageSearch::Match& match : search_.Find(wanted)) {
        auto* item = new QListWidgetItem(match.title, lstMatches_);
        item->setData(kPageRole, match.page);
    }
    if (lstMatches_->count() == 0)
        lblState_->setText(texts_.GetText(Text::NoMatches, {{u"text", wanted}}));
}

void HelpWindow::BringUp(QWidget* owner) {
    show();
    QWindow* above = owner != nullptr ? owner->window()->windowHandle() : nullptr;
    // A dialog that is modal blocks every window but those above it.
    if (windowHandle() != nullptr && above != windowHandle()) {
        windowHandle()->setTransientParent(above);
    }
    if (isMinimized()) showNormal();
    raise();
    activateWindow();
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QMainWindow::keyPressEvent(event);
    } else if (!txtSearch_->text().isEmpty()) {
        txtSearch_->clear();
    } else {
        close();
    }
}

}  // namespace help
