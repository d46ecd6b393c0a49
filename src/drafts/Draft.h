#pragma once

#include <cstdint>
#include <optional>
#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

namespace drafts {

/// A control or cell in which something has been typed or chosen.
struct Field {
    QString name;   // objectName of the control; the field of a cell
    QString label;  // what the user knows it as
    QString shown;  // its content as he has seen it
    /// A text, a whole number, true or false; invalid: nothing.
    QVariant content;
};

/// Where in a project something is being edited.
struct Place {
    enum class Kind { Cell, Trend, Archive };
    Kind kind = Kind::Cell;
    std::int32_t archive = 0;
    std::int32_t trend = 0;  // 0 for an archive
    QString name;            // of the trend or archive
};

struct Draft {
    Place place;
    QList<Field> fields;
};

/// The content of a draft's file, in UTF-8.
[[nodiscard]] QByteArray ToFile(const Draft& draft);
/// Nothing for what is no draft.
[[nodiscard]] std::optional<Draft> FromFile(const QByteArray& content);

}  // namespace drafts
