#include "settings/detail/LateBound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <QColor>
#include <QMetaMethod>
#include <QWidget>

#include "platform/Fold.h"
#include "settings/detail/StandardProperties.h"

namespace LateBound {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSingleDigits = 7;  // of a single-precision number

bool SameName(const char* one, QStringView other) {
    return QLatin1StringView(one).compare(other, Qt::CaseInsensitive) == 0;
}

/// The last declared one counts: a class may declare anew what a class below it has.
QMetaProperty PropertyOf(const QMetaObject& type, QStringView name, int from = 0) {
    for (int i = type.propertyCount() - 1; i >= from; --i) {
        if (SameName(type.property(i).name(), name)) return type.property(i);
    }
    return {};
}

/// A property that stands for one which other toolkits call "Caption".
QMetaProperty CaptionOf(const QObject& object) {
    const auto* widget = qobject_cast<const QWidget*>(&object);
    const bool window = widget != nullptr && widget->isWindow();
    const auto names = window ? std::array{u"windowTitle"_s, u"title"_s, u"text"_s}
                              : std::array{u"text"_s, u"title"_s, u"windowTitle"_s};
    for (const QString& name : names) {
        if (const QMetaProperty found = PropertyOf(*object.metaObject(), name); found.isValid()) {
            return found;
        }
    }
    return {};
}

/// The widget whose standard property is meant; null when the object has one of its own.
QWidget* StandardOwner(QObject* object, QStringView name) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr || !IsStandard(name)) return nullptr;
    const int own = QWidget::staticMetaObject.propertyCount();
    return PropertyOf(*object->metaObject(), name, own).isValid() ? nullptr : widget;
}

QMetaProperty FindProperty(const QObject& object, QStringView name) {
    QMetaProperty found = PropertyOf(*object.metaObject(), name);
    if (!found.isValid() && platform::SameName(name, u"Caption")) found = CaptionOf(object);
    return found;
}

QObject* FindChild(const QObject& object, QStringView name) {
    for (QObject* child : object.children()) {
        if (platform::SameName(child->objectName(), name)) return child;
    }
    for (const QObject* child : object.children()) {
        if (QObject* found = FindChild(*child, name)) return found;
    }
    return nullptr;
}

bool ReturnsObject(const QMetaMethod& method) {
    return method.access() == QMetaMethod::Public &&
           method.returnMetaType().flags().testFlag(QMetaType::PointerToQObject);
}

QObject* Invoke(QObject* object, const QMetaMethod& method, QGenericArgument argument = {}) {
    QVariant result(method.returnMetaType());
    const QGenericReturnArgument target(method.typeName(), result.data());
    if (!method.invoke(object, Qt::DirectConnection, target, argument)) return nullptr;
    return result.value<QObject*>();
}

/// How well a parameter takes an argument; 0: not at all.
int Fitness(QMetaType parameter, bool number) {
    switch (parameter.id()) {
        case QMetaType::QVariant:
            return 2;
        case QMetaType::QString:
            return number ? 1 : 3;
        case QMetaType::Int:
            return number ? 4 : 0;
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
            return number ? 3 : 0;
        default:
            return 0;
    }
}

QObject* CallWith(QObject* object, QStringView name, QVariant argument) {
    const bool number = argument.metaType().id() == QMetaType::Int;
    const QMetaObject& type = *object->metaObject();
    QMetaMethod best;
    int bestFitness = 0;
    for (int i = type.methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = type.method(i);
        if (method.parameterCount() != 1 || !ReturnsObject(method)) continue;
        if (!SameName(method.name().constData(), name)) continue;
        const int fitness = Fitness(method.parameterMetaType(0), number);
        if (fitness <= bestFitness) continue;
        best = method;
        bestFitness = fitness;
    }
    if (bestFitness == 0) return nullptr;
    const QMetaType wanted = best.parameterMetaType(0);
    if (wanted.id() == QMetaType::QVariant) {
        return Invoke(object, best, QGenericArgument("QVariant", &argument));
    }
    if (!argument.convert(wanted)) return nullptr;
    return Invoke(object, best, QGenericArgument(wanted.name(), argument.constData()));
}

QObject* CallWithout(QObject* object, QStringView name) {
    const QMetaObject& type = *object->metaObject();
    for (int i = type.methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = type.method(i);
        if (method.parameterCount() != 0 || !ReturnsObject(method)) continue;
        if (SameName(method.name().constData(), name)) return Invoke(object, method);
    }
    return nullptr;
}

/// The argument between the parentheses: a number, or a name with or without its quotes.
QVariant ArgumentOf(QStringView text) {
    const InitValue value = InitValue::Parse(text);
    if (value.IsNumber()) {
        const double number = std::clamp(std::nearbyint(value.AsNumber()), 0.0,
                                         double{std::numeric_limits<int>::max()});
        return static_cast<int>(number);
    }
    QStringView name = text.trimmed();
    if (name.size() >= 2 && name.front() == u'"' && name.back() == u'"') {
        name = name.sliced(1, name.size() - 2);
    }
    return name.toString();
}

/// Colours are stored as 0x00BBGGRR.
QColor ColourOf(const InitValue& value) {
    if (value.IsText()) return QColor(value.AsText().trimmed());
    const double number = value.AsNumber();
    if (!(number >= 0) || number > 0xFFFFFF) return {};
    const auto bits = static_cast<QRgb>(number);
    return QColor(qBlue(bits), qGreen(bits), qRed(bits));
}

int NumberOfColour(const QColor& colour) {
    return static_cast<int>(qRgba(colour.blue(), colour.green(), colour.red(), 0));
}

/// The value as the property wants it; invalid when it has no such meaning.
QVariant ForProperty(const QMetaProperty& property, const InitValue& value) {
    const InitValue put = value.IsText() ? value : InitValue(PutNumber(value));
    const int type = property.isEnumType() ? int{QMetaType::Int} : property.metaType().id();
    switch (type) {
        case QMetaType::QString:
            return put.AsText();
        case QMetaType::QVariant:
            return put.IsText() ? QVariant(put.AsText()) : QVariant(PutNumber(value));
        case QMetaType::QColor:
            // Colours need more than 16 bits; they are the one number that is put whole.
            if (const QColor colour = ColourOf(value); colour.isValid()) return colour;
            return {};
        case QMetaType::Bool:
            if (put.AsBoolean(false) != put.AsBoolean(true)) return {};
            return put.AsBoolean();
        default:
            break;
    }
    const double number = put.AsNumber(std::nan(""));
    if (std::isnan(number)) return {};
    if (type == QMetaType::Double || type == QMetaType::Float) return number;
    if (std::abs(number) > std::numeric_limits<int>::max()) return {};
    return static_cast<int>(std::nearbyint(number));
}

std::optional<InitValue> FromProperty(const QVariant& value) {
    switch (value.metaType().id()) {
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::QString:
            return value.toString();
        case QMetaType::QColor:
            return NumberOfColour(value.value<QColor>());
        case QMetaType::Float:
            // The digits that the number has; as a double it would show what it has not.
            return QString::number(value.toFloat(), 'g', kSingleDigits).toDouble();
        default:
            break;
    }
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok || !std::isfinite(number)) return std::nullopt;
    return number;
}

}  // namespace

Place Member(const Place& place, QStringView segment) {
    QObject* object = place.Object();
    if (object == nullptr || segment.isEmpty() || place.Font().isValid()) return {};
    const qsizetype open = segment.indexOf(u'(');
    if (open >= 0) {
        const QStringView argument = segment.sliced(open + 1, segment.size() - open - 1)
                                         .chopped(open + 1 < segment.size() ? 1 : 0);
        if (QObject* found = CallWith(object, segment.first(open), ArgumentOf(argument))) {
            return Place(found);
        }
        return Place(FindChild(*object, segment));
    }
    if (const QMetaProperty property = FindProperty(*object, segment); property.isValid()) {
        if (property.metaType().id() == QMetaType::QFont) return Place(object, property);
        if (auto* found = property.read(object).value<QObject*>()) return Place(found);
    }
    if (QObject* found = FindChild(*object, segment)) return Place(found);
    return Place(CallWithout(object, segment));
}

bool Put(const Place& place, QStringView name, const InitValue& value) {
    QObject* object = place.Object();
    if (object == nullptr) return false;
    const InitValue put = value.IsText() ? value : InitValue(PutNumber(value));
    if (place.Font().isValid()) {
        auto font = place.Font().read(object).value<QFont>();
        const QFont before = font;
        if (!PutFont(font, name, put)) return false;
        // A form hands its font on to every control, which is dear.
        return font == before || place.Font().write(object, font);
    }
    if (QWidget* widget = StandardOwner(object, name)) return PutStandard(*widget, name, put);
    const QMetaProperty property = FindProperty(*object, name);
    if (!property.isValid() || !property.isWritable()) return false;
    if (property.metaType().id() == QMetaType::QFont) {
        return Put(Place(object, property), u"Name", value);
    }
    const QVariant converted = ForProperty(property, value);
    return converted.isValid() && property.write(object, converted);
}

std::optional<InitValue> Get(const Place& place, QStringView name, const InitValue& present) {
    QObject* object = place.Object();
    if (object == nullptr) return std::nullopt;
    if (place.Font().isValid()) {
        return GetFont(place.Font().read(object).value<QFont>(), name, present);
    }
    if (const QWidget* widget = StandardOwner(object, name)) return GetStandard(*widget, name);
    const QMetaProperty property = FindProperty(*object, name);
    if (!property.isValid()) return std::nullopt;
    const QVariant value = property.read(object);
    if (property.metaType().id() == QMetaType::QFont) {
        return GetFont(value.value<QFont>(), u"Name", present);
    }
    return FromProperty(property.isEnumType() ? QVariant(value.toInt()) : value);
}

int PutNumber(const InitValue& value) {
    // nearbyint rounds halves to the even number, as the number conversion of such calls does.
    return static_cast<int>(std::clamp(std::nearbyint(value.AsNumber()), -32768.0, 32767.0));
}

}  // namespace LateBound
