#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// The text of a file, with what it takes to write it back in the form in which it was. Decoding
/// and encoding again gives the same bytes, whatever they are: lone surrogates, half characters
/// and invalid UTF-8 included.
struct FileText {
    enum class Encoding { Ansi, Utf8, Utf16 };  // Ansi: Windows-1252
    /// What bytes without a byte order mark are taken for.
    enum class WithoutMark { Ansi, Utf8OrAnsi };

    QString text;
    Encoding encoding = Encoding::Ansi;
    WithoutMark withoutMark = WithoutMark::Utf8OrAnsi;
    QByteArray mark;  // the byte order mark; empty without one
    QByteArray tail;  // the odd byte at the end of UTF-16

    /// Text without a mark that is all ASCII counts as Ansi.
    [[nodiscard]] static FileText Decode(const QByteArray& bytes, WithoutMark withoutMark);
    /// A character that Ansi has no place for, or bytes that would be taken for UTF-8 the next
    /// time, make the file UTF-16 with a mark, which every program that reads such files knows.
    [[nodiscard]] QByteArray Encode() const;
};

}  // namespace platform
