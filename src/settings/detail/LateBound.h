#pragma once

#include <optional>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>

#include "settings/InitValue.h"

/// Members of live objects by their names, without regard to case. See the README for the order
/// in which a name is looked for.
namespace LateBound {

/// What a path has reached: an object, or a font that is a property of an object.
class Place {
public:
    Place() = default;
    explicit Place(QObject* object) : object_(object) {}
    Place(QObject* object, const QMetaProperty& font) : object_(object), font_(font) {}

    [[nodiscard]] bool Exists() const { return object_ != nullptr; }
    [[nodiscard]] QObject* Object() const { return object_; }
    /// Valid when the place is a font.
    [[nodiscard]] const QMetaProperty& Font() const { return font_; }

private:
    QPointer<QObject> object_;  // a setter may take objects away
    QMetaProperty font_;
};

/// The object that a segment names: `tdbA`, `Splits(1)`, `Columns("Name")`, `Font`.
[[nodiscard]] Place Member(const Place& place, QStringView segment);

/// False when there is no such property, or it does not take the value.
[[nodiscard]] bool Put(const Place& place, QStringView name, const InitValue& value);

/// nullopt when there is no such property, or it is of a kind that settings do not hold. `present`
/// comes back for what can be put, but not asked for.
[[nodiscard]] std::optional<InitValue> Get(const Place& place, QStringView name,
                                           const InitValue& present);

/// The whole number that is put for a value that is no text.
[[nodiscard]] int PutNumber(const InitValue& value);

}  // namespace LateBound
