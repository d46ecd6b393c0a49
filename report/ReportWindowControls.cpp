// Building of the report's window.

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

#include "guard/Guard.h"
#include "icons/Icons.h"
#include "report/ReportDocument.h"
#include "report/ReportWindow.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

QAction* ReportWindow::AddAction(const char* name, Text text, Text tip, const QKeySequence& key,
                                 void (ReportWindow::*slot)()) {
    auto* action = new QAction(texts_(text), this);
    action->setObjectName(QLatin1StringView(name));
    action->setShortcut(key);
    QString help = texts_(tip).remove(u'&');
    if (!key.isEmpty()) help += u" ("_s + key.toString(QKeySequence::NativeText) + u')';
    action->setToolTip(help);
    connect(action, &QAction::triggered, this,
            [this, action, slot] { guard::Guard(action->objectName(), [&] { (this->*slot)(); }); });
    addAction(action);
    actions_ += action;
    return action;
}

QMenu* ReportWindow::AddMenu(const char* name, Text text) {
    QMenu* menu = menuBar()->addMenu(texts_(text));
    menu->setObjectName(QLatin1StringView(name));
    return menu;
}

void ReportWindow::BuildActions() {
    menuBar()->setObjectName(u"mnuMain"_s);
    auto* bar = addToolBar(texts_(Text::ReportTitle));
    bar->setObjectName(u"tbrReport"_s);
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    // What the toolbar offers is in the menus too, where keys show and lead to it.
    QMenu* report = AddMenu("mnuReport", Text::MenuReport);
    const auto add = [&](const char* name, Text text, Text tip, const QKeySequence& key,
                         void (ReportWindow::*slot)()) {
        QAction* action = AddAction(name, text, tip, key, slot);
        bar->addAction(action);
        report->addAction(action);
    };
    add("actPrint", Text::Print, Text::PrintTip, QKeySequence::Print,
        &ReportWindow::actPrint_Triggered);
    add("actPdf", Text::Pdf, Text::PdfTip, QKeySequence::Save, &ReportWindow::actPdf_Triggered);
    add("actHtml", Text::Html, Text::HtmlTip, Qt::CTRL | Qt::SHIFT | Qt::Key_S,
        &ReportWindow::actHtml_Triggered);
    report->addSeparator();
    add("actDifferences", Text::Differences, Text::DifferencesTip, Qt::CTRL | Qt::Key_D,
        &ReportWindow::actDifferences_Triggered);
    add("actRefresh", Text::Refresh, Text::RefreshTip, Qt::Key_F5,
        &ReportWindow::actRefresh_Triggered);
    bar->addSeparator();

    auto* label = new QLabel(texts_(Text::FindLabel), bar);
    label->setObjectName(u"lblFind"_s);
    label->setContentsMargins(8, 0, 4, 0);
    txtFind_ = new QLineEdit(bar);
    txtFind_->setObjectName(u"txtFind"_s);
    txtFind_->setClearButtonEnabled(true);
    txtFind_->setMaximumWidth(260);
    label->setBuddy(txtFind_);
    bar->addWidget(label);
    bar->addWidget(txtFind_);
    QAction* next = AddAction("actFindNext", Text::FindNext, Text::FindNext, Qt::Key_F3,
                              &ReportWindow::FindNext);
    QAction* previous = AddAction("actFindPrevious", Text::FindPrevious, Text::FindPrevious,
                                  Qt::SHIFT | Qt::Key_F3, &ReportWindow::FindPrevious);
    next->setIcon(icons::Icon(u"arrow-down"));
    previous->setIcon(icons::Icon(u"arrow-up"));
    bar->addAction(previous);
    bar->addAction(next);
    QMenu* find = AddMenu("mnuFind", Text::MenuFind);
    find->addAction(next);
    find->addAction(previous);
    connect(txtFind_, &QLineEdit::returnPressed, next, &QAction::trigger);

    bar->addSeparator();
    QAction* help =
        AddAction("actHelp", Text::Help, Text::Help, Qt::Key_F1, &ReportWindow::actHelp_Triggered);
    bar->addAction(help);
    AddMenu("mnuHelp", Text::Help)->addAction(help);

    auto* focusFind = new QAction(this);
    focusFind->setObjectName(u"actFind"_s);
    focusFind->setShortcut(QKeySequence::Find);
    connect(focusFind, &QAction::triggered, this, [this] {
        txtFind_->setFocus();
        txtFind_->selectAll();
    });
    addAction(focusFind);
    auto* close = new QAction(texts_(Text::Close), this);
    report->addSeparator();
    report->addAction(close);
    close->setObjectName(u"actClose"_s);
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
}

void ReportWindow::BuildBody() {
    auto* left = new QWidget(this);
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(4, 4, 0, 4);
    txtFilter_ = new QLineEdit(left);
    txtFilter_->setObjectName(u"txtFilter"_s);
    txtFilter_->setPlaceholderText(texts_(Text::FilterArchives));
    txtFilter_->setAccessibleName(texts_(Text::FilterArchives));
    txtFilter_->setClearButtonEnabled(true);
    lstArchives_ = new QListWidget(left);
    lstArchives_->setObjectName(u"lstArchives"_s);
    lstArchives_->setAccessibleName(texts_(Text::Contents));
    lstArchives_->setUniformItemSizes(true);
    column->addWidget(txtFilter_);
    column->addWidget(lstArchives_);

    txtReport_ = new QTextBrowser(this);
    txtReport_->setObjectName(u"txtReport"_s);
    txtReport_->setAccessibleName(texts_(Text::ReportTitle));
    auto* document = new ReportDocument(txtReport_);
    document->setDocumentMargin(12);
    txtReport_->setDocument(document);
    txtReport_->setOpenLinks(false);
    // A column is as wide as its longest word.
    txtReport_->setWordWrapMode(QTextOption::WordWrap);

    auto* splitter = new QSplitter(this);
    splitter->setObjectName(u"splReport"_s);
    splitter->addWidget(left);
    splitter->addWidget(txtReport_);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({230, 950});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    connect(txtFilter_, &QLineEdit::textChanged, this, &ReportWindow::FilterArchives);
    connect(lstArchives_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item == nullptr || !ready_) return;
        const Section section = Section::FromAddress(item->data(kSectionRole).toString());
        if (section.kind != shown_.kind || section.archive != shown_.archive) Show(section);
    });
    connect(txtReport_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
        if (!ready_) return;
        const std::optional<RowPlace> row = RowPlaceOf(link.toString());
        if (row) {
            emit RowChosen(row->table, row->id, row->column);
        } else {
            Show(Section::FromAddress(link.toString()));
        }
    });
}

void ReportWindow::BuildStatusBar() {
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    prgState_ = new QProgressBar(this);
    prgState_->setObjectName(u"prgState"_s);
    prgState_->setRange(0, 1000);
    prgState_->setMaximumWidth(240);
    cmdCancel_ = new QPushButton(texts_(Text::Cancel), this);
    cmdCancel_->setObjectName(u"cmdCancel"_s);
    statusBar()->setObjectName(u"sb"_s);
    statusBar()->addWidget(lblState_, 1);
    statusBar()->addPermanentWidget(prgState_);
    statusBar()->addPermanentWidget(cmdCancel_);
    connect(cmdCancel_, &QPushButton::clicked, &runner_, &PortionRunner::Cancel);
}

}  // namespace report
