#include "projecttable/TableViews.h"

#include <algorithm>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 kLargestFile = 4 << 20;

QJsonArray ArrayOf(const std::set<QString>& texts) {
    QJsonArray array;
    for (const QString& text : texts) array.append(text);
    return array;
}

std::set<QString> SetOf(const QJsonValue& value) {
    std::set<QString> texts;
    for (const QJsonValue& text : value.toArray()) texts.insert(text.toString());
    return texts;
}

QJsonObject ObjectOf(const TableView& view) {
    QJsonObject filters;
    for (const auto& [field, text] : view.filters) filters[field] = text;
    QJsonArray order;
    for (const TrendTableModel::SortKey& key : view.order) {
        order.append(QJsonObject{{u"field"_s, key.field},
                                 {u"descending"_s, key.order == Qt::DescendingOrder}});
    }
    return {{u"name"_s, view.name},
            {u"filters"_s, filters},
            {u"anywhere"_s, view.anywhere},
            {u"hidden"_s, ArrayOf(view.hidden)},
            {u"order"_s, order},
            {u"archives"_s, ArrayOf(view.archives)}};
}

TableView ViewOf(const QJsonObject& object) {
    TableView view;
    view.name = object[u"name"].toString();
    const QJsonObject filters = object[u"filters"].toObject();
    for (auto filter = filters.begin(); filter != filters.end(); ++filter) {
        view.filters[filter.key()] = filter->toString();
    }
    view.anywhere = object[u"anywhere"].toString();
    view.hidden = SetOf(object[u"hidden"]);
    for (const QJsonValue& key : object[u"order"].toArray()) {
        view.order.append({key[u"field"].toString(),
                           key[u"descending"].toBool() ? Qt::DescendingOrder : Qt::AscendingOrder});
    }
    view.archives = SetOf(object[u"archives"]);
    return view;
}

}  // namespace

TableViews::TableViews(const QString& project) {
    const QFileInfo link(project);
    const QString file = link.canonicalFilePath();
    file_ = (file.isEmpty() ? project : file) + u"-views"_s;
    Read();
}

void TableViews::Read() {
    views_.clear();
    isReadable_ = true;
    QFile file(file_);
    if (!file.exists()) return;
    isReadable_ = file.size() <= kLargestFile && file.open(QIODevice::ReadOnly);
    if (!isReadable_) return;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    isReadable_ = document.isArray();
    for (const QJsonValue& view : document.array()) {
        TableView read = ViewOf(view.toObject());
        if (!read.name.isEmpty()) views_.append(std::move(read));
    }
}

QString TableViews::Keep(const TableView& view) {
    Read();  // another studio may have kept one meanwhile
    QList<TableView> views = views_;
    const auto same = std::find_if(views.begin(), views.end(),
                                   [&](const TableView& each) { return each.name == view.name; });
    if (same != views.end()) {
        *same = view;
    } else {
        views.append(view);
    }
    return Write(std::move(views));
}

QString TableViews::Remove(const QString& name) {
    Read();
    QList<TableView> views = views_;
    views.removeIf([&](const TableView& view) { return view.name == name; });
    return Write(std::move(views));
}

QString TableViews::Write(QList<TableView> views) {
    if (!isReadable_) return file_;
    QJsonArray array;
    for (const TableView& view : views) array.append(ObjectOf(view));
    QSaveFile file(file_);
    const QByteArray bytes = QJsonDocument(array).toJson();
    // Without flush() the last bytes, which find no room, would be missing and nobody told.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        !file.commit()) {
        return file_ + u": "_s + file.errorString();
    }
    views_ = std::move(views);
    return {};
}
