#include "controls/detail/CellValue.h"

#include <QRegularExpression>

namespace cellvalue {

using namespace Qt::Literals::StringLiterals;

QString InputPattern(GridKind kind) {
    switch (kind) {
        case GridKind::Integer:
            return u"[+-]?\\d{0,10}"_s;
        case GridKind::Number:
            // A second separator may be typed and is refused with the number as a whole: without it
            // the digits behind it would go on the first one's.
            return u"[+-]?[\\d.,]*([eE][+-]?\\d{0,3})?"_s;
        case GridKind::Colour:
            return u"#[0-9a-fA-F]{0,6}|\\d{0,8}"_s;
        case GridKind::Text:
            break;
    }
    return {};
}

bool Accepts(const QString& typed, GridKind kind) {
    const QString pattern = InputPattern(kind);
    if (pattern.isEmpty()) return true;
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    return expression.match(typed, 0, QRegularExpression::PartialPreferCompleteMatch).hasMatch();
}

}  // namespace cellvalue
