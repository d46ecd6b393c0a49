#include "cells/TabText.h"

namespace TabText {
namespace {

using namespace Qt::Literals::StringLiterals;

QString Cell(QString text) {
    const bool quoted = text.startsWith(u'"') || text.contains(u'\t') || text.contains(u'\n') ||
                        text.contains(u'\r');
    if (!quoted) return text;
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

/// Reads one cell from `at` on, which it leaves at the separator behind it.
QString ReadCell(QStringView text, qsizetype& at) {
    QString cell;
    if (at < text.size() && text[at] == u'"') {
        for (++at; at < text.size(); ++at) {
            if (text[at] == u'"') {
                if (at + 1 >= text.size() || text[at + 1] != u'"') break;
                ++at;
            }
            cell += text[at];
        }
        ++at;
    }
    // Behind a closing quote nothing is expected; what stands there belongs to the cell.
    for (; at < text.size() && text[at] != u'\t' && text[at] != u'\n' && text[at] != u'\r'; ++at) {
        cell += text[at];
    }
    return cell;
}

}  // namespace

QString Format(const QList<QStringList>& rows) {
    QString text;
    for (const QStringList& row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (i > 0) text += u'\t';
            text += Cell(row[i]);
        }
        text += u'\n';
    }
    return text;
}

QList<QStringList> Parse(QStringView text) {
    QList<QStringList> rows;
    qsizetype at = 0;
    while (at < text.size()) {
        QStringList row{ReadCell(text, at)};
        while (at < text.size() && text[at] == u'\t') row.append(ReadCell(text, ++at));
        rows.append(row);
        if (at < text.size() && text[at] == u'\r') ++at;
        if (at < text.size() && text[at] == u'\n') ++at;
    }
    return rows;
}

}  // namespace TabText
