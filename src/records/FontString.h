#pragma once

#include <QString>
#include <QStringView>

/// What a project stores of a font: text fields of fixed width, one behind the other. Positions
/// count from 1.
///
///   1-32   name, blanks at its end do not count
///   32-35  size in points; begins at the last position of the name, which is therefore blank
///   36-39  bold         44-47  italic           52-55  underline
///   40-43  charset      48-51  strikethrough    56-59  weight, 100 to 900
///
/// Flags are numbers, set when they are not 0.
struct FontString {
    QString name;
    double size = 0;
    bool bold = false;
    double charset = 0;
    bool italic = false;
    bool strikethrough = false;
    bool underline = false;
    double weight = 0;
};

/// Any text is a font: fields that are missing or hold no number are 0, whatever stands behind the
/// last one is ignored. Numbers come as they stand there, however odd; the reader of a size or
/// weight judges it.
[[nodiscard]] FontString ParseFontString(QStringView text);
