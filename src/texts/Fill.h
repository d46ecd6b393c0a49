#pragma once

#include <initializer_list>
#include <QString>
#include <QStringView>

namespace texts {

/// What stands for a placeholder: <name>.
struct Value {
    QStringView name;  // without the brackets
    QString value;
};
using Values = std::initializer_list<Value>;

/// The text with values for its placeholders. What is in square brackets with a placeholder is left
/// out as a whole, brackets and all, where one of its values is empty, and stands without brackets
/// otherwise. A placeholder without a value stays, and a value that looks like one is none.
[[nodiscard]] QString Fill(const QString& text, Values values);

}  // namespace texts
