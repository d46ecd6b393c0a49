#include "editor/GridColumns.h"

#include <initializer_list>

#include "languages/MResourceTable.h"

namespace GridColumns {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kFirstCaption = 101;
/// Their captions follow each other.
constexpr QStringView kTrendFields[] = {
    u"Name",         u"TrendVar",    u"Maximum",     u"Minimum",        u"SurrogateMax",
    u"SurrogateMin", u"ErrorValue",  u"Hysteresis",  u"HysteresisMode", u"Factor",
    u"Offset",       u"Filter",      u"FilterDepth", u"Unit",           u"VMax",
    u"VMin",         u"VUpper",      u"VLower",      u"VLineColor",     u"VLineWidth",
    u"VLineStyle",   u"VUpperColor", u"VLowerColor", u"VConfig",        u"VDrawMode",
    u"VMaxSamples",  u"VUnitID",     u"Comment"};
constexpr int kCommentCaption = kFirstCaption + 27;

/// Columns whose stored numbers stand for texts: code 0, 1, 2 ... is text `first`, first + 1 ...
struct ValueList {
    QStringView field;
    int first;
    int count;
};
constexpr ValueList kValueLists[] = {
    {u"HysteresisMode", 130, 4}, {u"Filter", 134, 5},    {u"VLineStyle", 140, 3},
    {u"VConfig", 144, 3},        {u"VDrawMode", 151, 5},
};

constexpr QStringView kChoosers[] = {u"TrendVar", u"VLineColor", u"VUpperColor", u"VLowerColor"};

constexpr double kArchiveWidth = 3000;  // twips

}  // namespace

std::vector<RecordsetModel::Column> OfArchives() {
    return {{"ID"}, {"Name"}, {"Comment"}};
}

void SetUpArchives(GridSplit& archives, const MResources::TextTable& texts) {
    archives.SetLocked(true);
    archives.SetDoubleClickEdits(false);
    archives.SetCaption(texts.GetText(MResourceTable::kTextArchivesNode));
    // The key keeps its place in front of the name, where the layouts of old have it.
    if (GridColumn* key = archives.Column(u"ID")) key->SetVisible(false);
    if (GridColumn* name = archives.Column(u"Name")) {
        name->SetCaption(texts.GetText(kFirstCaption));
        name->SetWidth(kArchiveWidth);
    }
    if (GridColumn* comment = archives.Column(u"Comment")) {
        comment->SetCaption(texts.GetText(kCommentCaption));
        comment->SetWidth(kArchiveWidth);
    }
}

void SetUpTrends(GridSplit& trends, const MResources::TextTable& texts) {
    trends.SetDoubleClickEdits(false);
    for (int i = 0; i < trends.ColumnCount(); ++i) {
        GridColumn* column = trends.ColumnAt(i);
        if (!TrendFields().contains(column->DataField())) column->SetVisible(false);
        if (column->Kind() == GridKind::Number || column->Kind() == GridKind::Integer) {
            column->SetNumberFormat(u"General Number"_s);
        }
    }
    int caption = kFirstCaption;
    for (const QStringView field : kTrendFields) {
        if (GridColumn* column = trends.Column(field)) column->SetCaption(texts.GetText(caption));
        ++caption;
    }
    for (const ValueList& list : kValueLists) {
        GridColumn* column = trends.Column(list.field);
        if (column == nullptr) continue;
        GridValueItems items;
        for (int code = 0; code < list.count; ++code) {
            items.append({code, texts.GetText(list.first + code)});
        }
        column->SetValueItems(items);
    }
    for (const QStringView field : kChoosers) {
        if (GridColumn* column = trends.Column(field)) column->SetButton(true);
    }
}

QList<QString> TrendFields() {
    static const QList<QString> fields = [] {
        QList<QString> names;
        for (const QStringView field : kTrendFields) names.append(field.toString());
        return names;
    }();
    return fields;
}

QString FormatOrders(const QList<int>& columns) {
    QString text;
    for (const int column : columns) text += u',' + QString::number(column);
    return text;
}

QList<int> ParseOrders(QStringView text, int count) {
    QList<int> columns;
    for (const QStringView part : text.split(u',', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const int column = part.trimmed().toInt(&isNumber);
        if (isNumber && column >= 0 && column < count && !columns.contains(column)) {
            columns.append(column);
        }
    }
    return columns;
}

}  // namespace GridColumns
