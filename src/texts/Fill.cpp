#include "texts/Fill.h"

#include <algorithm>

namespace texts {
namespace {

struct Filled {
    QString text;
    bool hasPlaceholders = false;
    bool isComplete = true;  // no value was empty
};

Filled FillPart(QStringView text, Values values) {
    Filled filled;
    qsizetype at = 0;
    while (at < text.size()) {
        const bool isOption = text[at] == u'[';
        const bool isPlaceholder = text[at] == u'<';
        const qsizetype end =
            isOption || isPlaceholder ? text.indexOf(isOption ? u']' : u'>', at) : -1;
        const QStringView inside = end < 0 ? QStringView() : text.mid(at + 1, end - at - 1);
        if (isPlaceholder && end >= 0) {
            const auto* found = std::find_if(values.begin(), values.end(),
                                             [&](const Value& v) { return v.name == inside; });
            if (found != values.end()) {
                filled.text += found->value;
                filled.hasPlaceholders = true;
                filled.isComplete = filled.isComplete && !found->value.isEmpty();
                at = end + 1;
                continue;
            }
        } else if (isOption && end >= 0) {
            const Filled option = FillPart(inside, values);
            if (option.hasPlaceholders) {
                if (option.isComplete) filled.text += option.text;
                at = end + 1;
                continue;
            }
        }
        filled.text += text[at++];
    }
    return filled;
}

}  // namespace

QString Fill(const QString& text, Values values) {
    return FillPart(text, values).text;
}

}  // namespace texts
