#include "templates/TemplateFile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "projectdb/Text.h"

namespace templates {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kLargestFile = 4 << 20;
const std::array kKeys = {u"archives"_s, u"trends"_s};

QJsonValue ToJson(const ado::Value& value) {
    return std::visit(
        [](const auto& held) -> QJsonValue {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::u16string>) {
                return projectdb::ToQString(held);
            } else if constexpr (std::is_same_v<Held, bool>) {
                return held;
            } else if constexpr (std::is_arithmetic_v<Held>) {
                return static_cast<double>(held);
            } else {
                return {};
            }
        },
        value);
}

/// The column decides what a number is there.
ado::Value FromJson(const QJsonValue& value) {
    if (value.isString()) return projectdb::ToUtf16(value.toString());
    if (value.isBool()) return value.toBool();
    if (!value.isDouble()) return ado::Null();
    const double number = value.toDouble();
    using Long = std::numeric_limits<std::int32_t>;
    const bool isLong =
        std::nearbyint(number) == number && number >= Long::min() && number <= Long::max();
    if (isLong) return static_cast<std::int32_t>(number);
    return number;
}

QJsonObject ToJson(const Template& kept) {
    QJsonObject settings;
    for (const auto& [column, value] : kept.settings) {
        const QJsonValue stored = ToJson(value);
        if (!stored.isNull()) settings[QString::fromStdString(column)] = stored;
    }
    return {{u"name"_s, kept.name}, {u"settings"_s, settings}};
}

Template FromJson(const QJsonObject& object) {
    Template read{object[u"name"].toString(), {}};
    const QJsonObject settings = object[u"settings"].toObject();
    for (auto setting = settings.begin(); setting != settings.end(); ++setting) {
        read.settings.emplace_back(projectdb::ToUtf8(setting.key()), FromJson(*setting));
    }
    return read;
}

}  // namespace

TemplateFile::TemplateFile(const QString& project) {
    const QString file = QFileInfo(project).canonicalFilePath();
    file_ = (file.isEmpty() ? project : file) + u"-templates"_s;
    Read();
}

void TemplateFile::Read() {
    all_ = {};
    isReadable_ = true;
    QFile file(file_);
    if (!file.exists()) return;
    isReadable_ = file.size() <= kLargestFile && file.open(QIODevice::ReadOnly);
    if (!isReadable_) return;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    isReadable_ = document.isObject();
    for (std::size_t kind = 0; kind < all_.size(); ++kind) {
        for (const QJsonValue& each : document.object()[kKeys[kind]].toArray()) {
            Template read = FromJson(each.toObject());
            if (!read.name.isEmpty()) all_[kind].append(std::move(read));
        }
    }
}

QStringList TemplateFile::Names(Kind kind) const {
    QStringList names;
    for (const Template& each : all_[kind == Kind::Archive ? 0 : 1]) names.append(each.name);
    return names;
}

std::optional<Template> TemplateFile::Find(Kind kind, const QString& name) const {
    for (const Template& each : all_[kind == Kind::Archive ? 0 : 1]) {
        if (each.name == name) return each;
    }
    return std::nullopt;
}

QString TemplateFile::Keep(Kind kind, const Template& kept) {
    Read();
    Templates all = all_;
    QList<Template>& of = Of(all, kind);
    const auto same = std::find_if(of.begin(), of.end(),
                                   [&](const Template& each) { return each.name == kept.name; });
    if (same != of.end()) {
        *same = kept;
    } else {
        of.append(kept);
    }
    return Write(std::move(all));
}

QString TemplateFile::Rename(Kind kind, const QString& name, const QString& newName) {
    Read();
    if (name == newName) return {};
    Templates all = all_;
    QList<Template>& of = Of(all, kind);
    // Another studio may have taken it away: then none makes room for it.
    const bool isThere =
        std::any_of(of.begin(), of.end(), [&](const Template& each) { return each.name == name; });
    if (!isThere) return Write(std::move(all));
    of.removeIf([&](const Template& each) { return each.name == newName; });
    for (Template& each : of) {
        if (each.name == name) each.name = newName;
    }
    return Write(std::move(all));
}

QString TemplateFile::Remove(Kind kind, const QString& name) {
    Read();
    Templates all = all_;
    Of(all, kind).removeIf([&](const Template& each) { return each.name == name; });
    return Write(std::move(all));
}

QString TemplateFile::Write(Templates all) {
    if (!isReadable_) return file_;
    QJsonObject object;
    for (std::size_t kind = 0; kind < all.size(); ++kind) {
        QJsonArray array;
        for (const Template& each : all[kind]) array.append(ToJson(each));
        object[kKeys[kind]] = array;
    }
    QSaveFile file(file_);
    const QByteArray bytes = QJsonDocument(object).toJson();
    // Without flush() the last bytes, which find no room, would be missing and nobody told.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        !file.commit()) {
        return file_ + u": "_s + file.errorString();
    }
    all_ = std::move(all);
    return {};
}

}  // namespace templates
