#include "studio/DayPlan.h"

#include <algorithm>

namespace {

template <typename Items>
auto& Named(Items& items, const QString& name) {
    for (auto& item : items) {
        if (item.name == name) return item;
    }
    qFatal("the plan has no %s", qUtf8Printable(name));
}

template <typename Items>
QStringList NamesOf(const Items& items) {
    QStringList names;
    for (const auto& item : items) names += item.name;
    return names;
}

void ExpectText(const FieldsOfRow& row, const DayPlan::Texts& texts) {
    EXPECT_EQ(FieldOf(row, "L1031"), texts.german.toStdString());
    EXPECT_EQ(FieldOf(row, "L1033"), texts.english.toStdString());
}

void ExpectFields(const FieldsOfRow& row, const DayPlan::Fields& fields) {
    for (const auto& [field, value] : fields) EXPECT_EQ(FieldOf(row, field), value) << field;
}

std::vector<std::string> Sorted(const QStringList& names) {
    std::vector<std::string> sorted;
    for (const QString& name : names) sorted.push_back(name.toStdString());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

}  // namespace

DayPlan::Trend& DayPlan::Archive::TrendOf(const QString& trend) {
    return Named(trends, trend);
}

QStringList DayPlan::Archive::TrendNames() const {
    return NamesOf(trends);
}

DayPlan::Archive& DayPlan::Of(const QString& archive) {
    return Named(archives, archive);
}

QStringList DayPlan::ArchiveNames() const {
    return NamesOf(archives);
}

int DayPlan::TrendCount() const {
    qsizetype count = 0;
    for (const Archive& archive : archives) count += archive.trends.size();
    return static_cast<int>(count);
}

void DayPlan::Remove(const QString& archive) {
    archives.removeIf([&](const Archive& a) { return a.name == archive; });
}

void DayPlan::ExpectIn(const Content& content) const {
    const auto texts = RowsOf(content, "TidxTexts");
    const auto groups = RowsOf(content, "TidxGroups");
    std::map<std::string, const Archive*> known;  // by ID
    std::map<std::string, QStringList> trendNames;
    QStringList archiveNames;
    for (const auto& [id, row] : RowsOf(content, "TchrArchives")) {
        archiveNames += QString::fromStdString(FieldOf(row, "Name"));
        const auto archive = std::find_if(archives.begin(), archives.end(), [&](const Archive& a) {
            return a.name == archiveNames.back();
        });
        if (archive == archives.end()) continue;
        SCOPED_TRACE(archive->name.toStdString());
        known[std::to_string(id)] = &*archive;
        ExpectFields(row, archive->fields);
        ExpectText(texts.at(std::stoi(FieldOf(row, "TextID"))), archive->texts);
    }
    EXPECT_EQ(Sorted(archiveNames), Sorted(ArchiveNames()));

    KeptTextNames kept;
    for (const auto& [id, row] : RowsOf(content, "TchrTrends")) {
        const std::string owner = FieldOf(row, "ArchiveID");
        const QString name = QString::fromStdString(FieldOf(row, "Name"));
        trendNames[owner] += name;
        if (!known.contains(owner) || !known[owner]->TrendNames().contains(name)) continue;
        const Trend& trend = Named(known[owner]->trends, name);
        SCOPED_TRACE((known[owner]->name + u'/' + name).toStdString());
        ExpectFields(row, trend.fields);
        ExpectText(texts.at(std::stoi(FieldOf(row, "TextID"))), trend.texts);
        if (!trend.nameOfText.isEmpty()) kept[id] = trend.nameOfText.toStdString();
    }
    for (const auto& [id, archive] : known) {
        EXPECT_EQ(Sorted(trendNames[id]), Sorted(archive->TrendNames()))
            << archive->name.toStdString();
    }
    ExpectInOrder(content, kept);
}
