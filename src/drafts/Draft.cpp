#include "drafts/Draft.h"

#include <array>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace drafts {
namespace {

using namespace Qt::Literals::StringLiterals;

// By Place::Kind.
constexpr std::array<QStringView, 3> kKinds{u"cell", u"trend", u"archive"};

}  // namespace

QByteArray ToFile(const Draft& draft) {
    QJsonArray fields;
    for (const Field& field : draft.fields) {
        fields.append(QJsonObject{{u"name"_s, field.name},
                                  {u"label"_s, field.label},
                                  {u"shown"_s, field.shown},
                                  {u"content"_s, QJsonValue::fromVariant(field.content)}});
    }
    const Place& place = draft.place;
    const QJsonObject file{{u"kind"_s, kKinds.at(static_cast<std::size_t>(place.kind)).toString()},
                           {u"archive"_s, place.archive},
                           {u"trend"_s, place.trend},
                           {u"of"_s, place.name},
                           {u"fields"_s, fields}};
    return QJsonDocument(file).toJson();
}

std::optional<Draft> FromFile(const QByteArray& content) {
    const QJsonObject file = QJsonDocument::fromJson(content).object();
    Draft draft;
    const QString kindName = file[u"kind"].toString();
    const auto kind = std::find(kKinds.begin(), kKinds.end(), kindName);
    if (kind == kKinds.end()) return std::nullopt;
    draft.place = {static_cast<Place::Kind>(kind - kKinds.begin()), file[u"archive"].toInt(),
                   file[u"trend"].toInt(), file[u"of"].toString()};
    for (const QJsonValue& each : file[u"fields"].toArray()) {
        const QJsonObject field = each.toObject();
        draft.fields.append({field[u"name"].toString(), field[u"label"].toString(),
                             field[u"shown"].toString(), field[u"content"].toVariant()});
    }
    return draft.fields.isEmpty() ? std::nullopt : std::optional(draft);
}

}  // namespace drafts
