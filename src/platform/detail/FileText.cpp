#include "platform/detail/FileText.h"

#include <algorithm>
#include <optional>
#include <QStringDecoder>
#include <QtEndian>

#include "platform/Windows1252.h"

namespace platform {
namespace {

const QByteArray kLittleEndianMark = QByteArrayLiteral("\xFF\xFE");
const QByteArray kBigEndianMark = QByteArrayLiteral("\xFE\xFF");
const QByteArray kUtf8Mark = QByteArrayLiteral("\xEF\xBB\xBF");

/// Unit by unit, since Qt's decoder replaces lone surrogates.
QString DecodeUtf16(QByteArrayView bytes, bool bigEndian) {
    QString text(bytes.size() / 2, Qt::Uninitialized);
    const char* from = bytes.data();
    for (QChar& c : text) {
        c = bigEndian ? QChar(qFromBigEndian<char16_t>(from))
                      : QChar(qFromLittleEndian<char16_t>(from));
        from += 2;
    }
    return text;
}

QByteArray EncodeUtf16(QStringView text, bool bigEndian) {
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    char* to = bytes.data();
    for (const QChar c : text) {
        if (bigEndian) {
            qToBigEndian(c.unicode(), to);
        } else {
            qToLittleEndian(c.unicode(), to);
        }
        to += 2;
    }
    return bytes;
}

/// UTF-8 that is not plain ASCII.
bool IsUtf8(QByteArrayView bytes) {
    return bytes.isValidUtf8() && !std::all_of(bytes.begin(), bytes.end(), [](char c) {
               return static_cast<unsigned char>(c) < 0x80;
           });
}

}  // namespace

FileText FileText::Decode(const QByteArray& bytes, WithoutMark withoutMark) {
    FileText file;
    for (const QByteArray& mark : {kLittleEndianMark, kBigEndianMark, kUtf8Mark}) {
        if (bytes.startsWith(mark)) file.mark = mark;
    }
    const QByteArrayView content = QByteArrayView(bytes).sliced(file.mark.size());
    if (file.mark.size() == 2) {
        file.encoding = Encoding::Utf16;
        file.text = DecodeUtf16(content, file.mark == kBigEndianMark);
        if (content.size() % 2 != 0) file.tail = content.last(1).toByteArray();
        return file;
    }
    file.withoutMark = withoutMark;
    if (IsUtf8(content) && (!file.mark.isEmpty() || withoutMark == WithoutMark::Utf8OrAnsi)) {
        // The decoder would take a second mark away.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        file.text = decoder(content);
        file.encoding = Encoding::Utf8;
        return file;
    }
    file.encoding = Encoding::Ansi;
    file.text = FromWindows1252(content);
    return file;
}

QByteArray FileText::Encode() const {
    if (encoding == Encoding::Utf8) return mark + text.toUtf8();
    if (encoding == Encoding::Ansi) {
        const std::optional<QByteArray> bytes = ToWindows1252(text);
        const bool misread =
            bytes && mark.isEmpty() && withoutMark == WithoutMark::Utf8OrAnsi && IsUtf8(*bytes);
        if (bytes && !misread) return mark + *bytes;
        return kLittleEndianMark + EncodeUtf16(text, false);
    }
    return mark + EncodeUtf16(text, mark == kBigEndianMark) + tail;
}

}  // namespace platform
