#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QToolTip>

#include "messages/PlainTexts.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kMarkup = u"<img src=x> <b>Kessel</b>"_s;

/// The format of the tool tip that is shown over `widget`.
Qt::TextFormat FormatOfTip(QWidget& widget) {
    QToolTip::showText(widget.mapToGlobal(QPoint(1, 1)), kMarkup, &widget);
    Qt::TextFormat format = Qt::AutoText;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        auto* tip = qobject_cast<QLabel*>(top);
        if (tip == nullptr || tip->windowType() != Qt::ToolTip) continue;
        format = tip->textFormat();
        delete tip;  // what Qt itself does a little later
    }
    return format;
}

TEST(PlainTextsTest, WhatAProjectCallsAThingIsNoMarkup) {
    QWidget window;
    messages::KeepTextsPlain(window);
    QWidget other;
    for (QWidget* top : {&window, &other}) {
        SCOPED_TRACE(top == &window ? "own window" : "somebody else's");
        const bool isOwn = top == &window;
        QLabel inside(kMarkup, top);
        QDialog dialog(top);
        QLabel inDialog(kMarkup, &dialog);
        QLabel meant(kMarkup, top);
        meant.setTextFormat(Qt::RichText);
        top->show();
        dialog.show();
        const Qt::TextFormat expected = isOwn ? Qt::PlainText : Qt::AutoText;
        EXPECT_EQ(inside.textFormat(), expected);
        EXPECT_EQ(inDialog.textFormat(), expected);
        EXPECT_EQ(meant.textFormat(), Qt::RichText);
        EXPECT_EQ(FormatOfTip(inside), expected);
        // As much room as the text needs, and not what the markup would.
        QLabel plain(kMarkup);
        plain.setTextFormat(Qt::PlainText);
        EXPECT_EQ(inside.sizeHint() == plain.sizeHint(), isOwn);
    }
}

TEST(PlainTextsTest, ASentenceIsATipOfSeveralLines) {
    const QString sentence =
        u"This field takes these keys only: 0-9 and <Ctrl>, and what else there may be on it."_s;
    const QString tip = messages::TipLines(sentence);
    EXPECT_EQ(QString(tip).replace(u'\n', u' '), sentence) << "as it stands";
    EXPECT_EQ(tip.count(u'\n'), 1);
    for (const QString& line : tip.split(u'\n')) EXPECT_LE(line.size(), 60);
    EXPECT_EQ(messages::TipLines(u"short"_s), u"short"_s);
    const QString path(80, u'x');
    EXPECT_EQ(messages::TipLines(path), path) << "one word has no place to break it";
}

}  // namespace
