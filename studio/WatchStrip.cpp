#include "studio/WatchStrip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "studio/StudioTexts.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

WatchStrip::WatchStrip(QWidget* parent) : QFrame(parent) {
    setObjectName(u"fraWatch"_s);
    setFrameStyle(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    lblWatch_ = new QLabel;
    lblWatch_->setObjectName(u"lblWatch"_s);
    lblWatch_->setTextFormat(Qt::PlainText);
    lblWatch_->setWordWrap(true);
    lblWatch_->setForegroundRole(QPalette::ToolTipText);
    cmdReload_ = new QPushButton;
    cmdReload_->setObjectName(u"cmdReload"_s);
    cmdHide_ = new QPushButton;
    cmdHide_->setObjectName(u"cmdHide"_s);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->addWidget(lblWatch_, 1);
    row->addWidget(cmdReload_);
    row->addWidget(cmdHide_);
    connect(cmdReload_, &QPushButton::clicked, this, &WatchStrip::ReloadRequested);
    connect(cmdHide_, &QPushButton::clicked, this, &QWidget::hide);
    hide();
}

void WatchStrip::Show(FileWatch::State state, const QString& file, const StudioTexts& texts) {
    const Text text = state == FileWatch::State::Replaced ? Text::WatchReplaced
                      : state == FileWatch::State::Gone   ? Text::WatchGone
                                                          : Text::WatchThere;
    lblWatch_->setText(texts(text, {{u"file", file}}));
    cmdReload_->setText(texts(Text::WatchReload));
    cmdReload_->setVisible(state == FileWatch::State::Replaced);
    cmdHide_->setText(texts(Text::WatchHide));
    show();
}

}  // namespace studio
