#include "patterns/KeptPatterns.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "projectdb/Text.h"

namespace patterns::kept {
namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;
using projectdb::ToUtf16;

std::u16string TextIn(const QJsonObject& object, const QString& key) {
    return ToUtf16(object.value(key).toString());
}

QJsonObject ToJson(const TrendPatterns& patterns) {
    QJsonObject texts;
    for (const auto& [column, text] : patterns.texts) {
        texts.insert(ToQString(column), ToQString(text));
    }
    QJsonArray entries;
    for (const auto& [place, settings] : patterns.entries) {
        entries.append(QJsonObject{{u"list"_s, static_cast<int>(place.first)},
                                   {u"entry"_s, static_cast<int>(place.second)},
                                   {u"unit"_s, ToQString(settings.unit)},
                                   {u"smallest"_s, ToQString(settings.smallest)},
                                   {u"largest"_s, ToQString(settings.largest)},
                                   {u"colour"_s, ToQString(settings.colour)}});
    }
    return {{u"name"_s, ToQString(patterns.name)},
            {u"variable"_s, ToQString(patterns.variable)},
            {u"texts"_s, texts},
            {u"entries"_s, entries}};
}

TrendPatterns FromJson(const QJsonObject& object) {
    TrendPatterns patterns;
    patterns.name = TextIn(object, u"name"_s);
    patterns.variable = TextIn(object, u"variable"_s);
    const QJsonObject texts = object.value(u"texts"_s).toObject();
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        patterns.texts.emplace_back(projectdb::ToUtf8(text.key()),
                                    ToUtf16(text.value().toString()));
    }
    for (const QJsonValue& each : object.value(u"entries"_s).toArray()) {
        const QJsonObject entry = each.toObject();
        const auto number = [&](const QString& key) {
            return static_cast<std::size_t>(std::max(entry.value(key).toInt(), 0));
        };
        patterns.entries[{number(u"list"_s), number(u"entry"_s)}] = {
            TextIn(entry, u"unit"_s), TextIn(entry, u"smallest"_s), TextIn(entry, u"largest"_s),
            TextIn(entry, u"colour"_s)};
    }
    return patterns;
}

}  // namespace

QString FileOf(const QString& project) {
    return project + u"-patterns"_s;
}

QList<TrendPatterns> Load(const QString& file) {
    QFile stored(file);
    if (!stored.open(QIODevice::ReadOnly)) return {};
    QList<TrendPatterns> patterns;
    for (const QJsonValue& each : QJsonDocument::fromJson(stored.readAll()).array()) {
        TrendPatterns one = FromJson(each.toObject());
        if (!one.name.empty() && patterns.size() < kMost) patterns.append(std::move(one));
    }
    return patterns;
}

bool Keep(const QString& file, const TrendPatterns& patterns) {
    QList<TrendPatterns> all = Load(file);
    all.removeIf([&](const TrendPatterns& each) { return each.name == patterns.name; });
    all.prepend(patterns);
    QJsonArray stored;
    for (const TrendPatterns& each : all.mid(0, kMost)) stored.append(ToJson(each));
    QSaveFile save(file);
    const QByteArray bytes = QJsonDocument(stored).toJson();
    return save.open(QIODevice::WriteOnly) && save.write(bytes) == bytes.size() && save.flush() &&
           save.commit();
}

}  // namespace patterns::kept
