#pragma once

#include <ostream>
#include <QString>
#include <QStringList>

// GoogleTest would show texts as numbers.

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << '[' << texts.join(QStringLiteral(", ")).toStdString() << ']';
}
