#include "report/ProjectReader.h"

#include <algorithm>
#include <QDate>
#include <QFileInfo>
#include <utility>

#include "ado/AdoError.h"
#include "paths/NativePath.h"
#include "projectdb/Text.h"
#include "texts/ReasonText.h"

namespace report {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;
using projectdb::ToUtf8;

namespace {

// More failures than this one after another are not rows, of which a page holds fewer.
constexpr int kMaximumFailures = 256;
// How often the clock is asked.
constexpr int kRowsBetweenLooks = 16;

constexpr QChar kReplacement(u'\uFFFD');

bool IsText(QChar c) {
    return c.unicode() >= 0x20 || c == u'\n' || c == u'\t';
}

/// -1 for a column that is not there.
std::ptrdiff_t PlaceOf(const ado::Recordset& rows, std::string_view column) {
    try {
        return static_cast<std::ptrdiff_t>(rows.FieldIndex(column));
    } catch (const ado::AdoError&) {
        return -1;
    }
}

/// What the user can do about it, and in brackets what only the English description knows.
QString CauseOf(const ado::AdoError& error) {
    QString description = ToQString(error.Description());
    if (error.Reason().cause == reasons::Cause::Unknown) return description;
    return u"%1 (%2)"_s.arg(texts::ReasonText(error.Reason()), description);
}

Cell ReadCell(ado::Recordset& rows, std::ptrdiff_t column) {
    if (column < 0) return {};
    return {rows.Get(static_cast<std::size_t>(column)), false};
}

}  // namespace

const Cell& Row::operator[](std::string_view column) const {
    const auto found =
        std::find_if(columns.begin(), columns.end(),
                     [&](const project::Column& each) { return each.name == column; });
    if (found != columns.end()) {
        return cells[static_cast<std::size_t>(found - columns.begin()) + 1];
    }
    Q_ASSERT(column == project::kKeyColumn);
    return cells.front();
}

Cell& Row::operator[](std::string_view column) {
    return const_cast<Cell&>(std::as_const(*this)[column]);
}

std::optional<int> Integer(const Cell& cell) {
    if (cell.damaged || ado::IsNull(cell.value)) return std::nullopt;
    try {
        return ado::ToLong(cell.value);
    } catch (const ado::AdoError&) {
        return std::nullopt;
    }
}

QString PlainText(const Cell& cell) {
    if (cell.damaged) return {};
    QString text = ToQString(std::u16string_view(ado::ToText(cell.value)));
    // A text without characters may be stored as one character with the code 0.
    text.remove(u'\0');
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool pair =
            c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (pair) {
            ++i;
        } else if (!IsText(c) || c.isSurrogate() || c.unicode() >= 0xFFFE) {
            text[i] = kReplacement;
        }
    }
    return text;
}

ProjectReader::ProjectReader() = default;
ProjectReader::~ProjectReader() = default;

void ProjectReader::Open(const QString& path) {
    path_ = ToQString(paths::ToNative(ToUtf8(path)));
    connection_.OpenSnapshot("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + ToUtf8(path) +
                             ";Mode=Read|Share Deny None;");
    OpenSource(archiveRows_, project::kArchiveTable, project::ArchiveColumns());
    OpenSource(trendRows_, project::kTrendTable, project::TrendColumns());
    try {
        OpenTexts();
        textsReadable_ = true;
    } catch (const ado::AdoError& error) {
        Note({Problem::Kind::Table, ToQString(project::kTextTable), 0, {}, CauseOf(error)});
        stage_ = Stage::Archives;
    }
    rowsTotal_ = archiveRows_.rows.RecordCount() + trendRows_.rows.RecordCount();
    if (textsReadable_) rowsTotal_ += textRows_.rows.RecordCount();
    rowsTotal_ = std::max<std::size_t>(rowsTotal_, 1);
}

void ProjectReader::OpenSource(Source& source, std::string_view table,
                               std::span<const project::Column> columns) {
    source.table = ToQString(table);
    source.rows.Open(table, connection_, ado::CommandType::Table);
    source.columns.push_back(PlaceOf(source.rows, project::kKeyColumn));
    for (const project::Column& column : columns) {
        source.columns.push_back(PlaceOf(source.rows, column.name));
    }
}

/// The languages of the project in their order, as far as they have a text column.
void ProjectReader::OpenTexts() {
    ado::Recordset languages;
    std::vector<int> wanted;
    try {
        languages.Open(project::kLanguageTable, connection_, ado::CommandType::Table);
        for (; !languages.IsEOF(); languages.MoveNext()) {
            wanted.push_back(ado::ToLong(languages.Get("LCID")));
        }
    } catch (const ado::AdoError& error) {
        Note({Problem::Kind::Table, ToQString(project::kLanguageTable), 0, {}, CauseOf(error)});
    }
    OpenSource(textRows_, project::kTextTable, {});
    if (textRows_.columns.front() < 0) {
        throw ado::AdoError(ado::ErrorNumber::kItemNotFound, "The table TidxTexts has no ID.",
                            {reasons::Cause::ColumnMissing, {}, "ID"});
    }
    for (const int lcid : wanted) {
        const std::ptrdiff_t column = PlaceOf(textRows_.rows, project::LanguageColumn(lcid));
        if (column < 0) continue;  // a language without a text column has no texts to show
        textRows_.columns.push_back(column);
        lcids_.push_back(lcid);
    }
}

QString ProjectReader::Name() const {
    return QFileInfo(path_).completeBaseName();
}

void ProjectReader::Check(const std::function<bool()>& goOn) {
    CheckedProject found;
    try {
        const auto settings =
            project::CheckSettings::Load(project::CheckSettings::FileOf(ToUtf8(path_)));
        const project::CheckResult result =
            project::CheckProject(connection_, settings.Severities(), goOn);
        found.judgement =
            settings.Judge(result.findings, ToUtf8(QDate::currentDate().toString(Qt::ISODate)));
        std::stable_sort(found.judgement.open.begin(), found.judgement.open.end(),
                         [](const project::Finding& a, const project::Finding& b) {
                             return a.severity > b.severity;
                         });
    } catch (const project::CheckStopped&) {
        return;
    } catch (...) {
        found.failure = projectdb::Failure::Current();
    }
    findings_ = std::move(found);
}

void ProjectReader::CompareWith(const QString& file, const std::function<bool()>& goOn) {
    ado::Connection other;
    other.OpenSnapshot("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + ToUtf8(file) +
                       ";Mode=Read|Share Deny None;");
    try {
        differences_ = std::make_unique<const project::Differences>(
            project::Compare(other, connection_, [&](std::size_t) { return goOn(); }));
    } catch (const project::CompareStopped&) {
        return;
    }
    comparedWith_ = QFileInfo(file).completeBaseName();
}

bool ProjectReader::Collect(std::chrono::milliseconds budget) {
    const auto end = std::chrono::steady_clock::now() + budget;
    while (stage_ != Stage::Done) {
        for (int i = 0; i < kRowsBetweenLooks && stage_ != Stage::Done; ++i) {
            switch (stage_) {
                case Stage::Texts:
                    CollectText();
                    break;
                case Stage::Archives:
                    CollectArchive();
                    break;
                case Stage::Trends:
                    CollectTrend();
                    break;
                case Stage::Done:
                    break;
            }
        }
        if (std::chrono::steady_clock::now() >= end) break;
    }
    return stage_ == Stage::Done;
}

/// To the next row that can be read; false behind the last. A step that fails leaves the recordset
/// where it is, and the same step then leads behind the row that it has failed for.
bool ProjectReader::NextRow(Source& source) {
    for (int failures = 0; failures < kMaximumFailures; ++failures) {
        try {
            ++source.place;
            if (source.begun) {
                source.rows.MoveNext();
            } else if (!(source.rows.IsBOF() && source.rows.IsEOF())) {
                source.rows.MoveFirst();
            }
            source.begun = true;
            if (source.rows.IsEOF()) return false;
            ++rowsDone_;
            return true;
        } catch (const ado::AdoError& error) {
            Note({Problem::Kind::Row, source.table, source.place, {}, CauseOf(error)});
        }
    }
    return false;
}

void ProjectReader::CollectText() {
    if (!NextRow(textRows_)) {
        std::sort(textIds_.begin(), textIds_.end());
        stage_ = Stage::Archives;
        return;
    }
    Cell id;
    try {
        for (const std::ptrdiff_t column : textRows_.columns) {
            const Cell cell = ReadCell(textRows_.rows, column);
            if (column == textRows_.columns.front()) id = cell;
        }
    } catch (const ado::AdoError& error) {
        Note({Problem::Kind::Row, textRows_.table, textRows_.place, {}, CauseOf(error)});
    }
    if (const std::optional<int> number = Integer(id)) textIds_.push_back(*number);
}

void ProjectReader::CollectArchive() {
    if (!NextRow(archiveRows_)) {
        for (std::size_t i = 0; i < archives_.size(); ++i) {
            archiveById_.emplace_back(archives_[i].id, i);
        }
        std::sort(archiveById_.begin(), archiveById_.end());
        stage_ = Stage::Trends;
        return;
    }
    ArchiveRow row;
    ReadCells(archiveRows_, row, true);
    const Cell& id = row["ID"];
    const QString name = PlainText(row["Name"]);
    archives_.push_back({Integer(id).value_or(0), name, archiveRows_.rows.GetBookmark(), {}});
    CheckText(archiveRows_.table, id, name, row["TextID"]);
}

void ProjectReader::CollectTrend() {
    if (!NextRow(trendRows_)) {
        stage_ = Stage::Done;
        return;
    }
    TrendRow row;
    ReadCells(trendRows_, row, true);
    const Cell& id = row["ID"];
    const QString name = PlainText(row["Name"]);
    const std::optional<int> archive = Integer(row["ArchiveID"]);
    const auto found =
        std::lower_bound(archiveById_.begin(), archiveById_.end(),
                         std::pair<std::int32_t, std::size_t>(archive.value_or(0), 0));
    const bool known = archive && found != archiveById_.end() && found->first == *archive;
    Archive& owner = known ? archives_[found->second] : withoutArchive_;
    if (!known) {
        Note({Problem::Kind::MissingArchive, trendRows_.table, Integer(id).value_or(0), name,
              archive ? QString::number(*archive) : u"?"_s});
    }
    owner.trends.push_back(trendRows_.rows.GetBookmark());
    ++trendCount_;
    CheckText(trendRows_.table, id, name, row["TextID"]);
}

void ProjectReader::ReadCells(Source& source, Row& row, bool note) {
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        try {
            row.cells[i] = ReadCell(source.rows, source.columns[i]);
        } catch (const ado::AdoError&) {
            row.cells[i] = {{}, true};
            if (!note) continue;
            const ado::Field& field =
                source.rows.Fields()[static_cast<std::size_t>(source.columns[i])];
            Note({Problem::Kind::Value, source.table, Integer(row.cells[0]).value_or(0),
                  PlainText(row.cells[1]), ToQString(field.name)});
        }
    }
}

void ProjectReader::CheckText(const QString& table, const Cell& id, const QString& name,
                              const Cell& textId) {
    const std::optional<int> text = Integer(textId);
    if (!textsReadable_ || !text || TextExists(*text)) return;
    Note(
        {Problem::Kind::MissingText, table, Integer(id).value_or(0), name, QString::number(*text)});
}

bool ProjectReader::TextExists(std::int32_t id) const {
    return std::binary_search(textIds_.begin(), textIds_.end(), id);
}

void ProjectReader::Note(Problem problem) {
    ++problemCount_;
    if (problems_.size() < kMaximumProblems) problems_.push_back(std::move(problem));
}

ArchiveRow ProjectReader::ReadArchive(const Archive& archive) {
    ArchiveRow row;
    try {
        archiveRows_.rows.SetBookmark(archive.row);
        ReadCells(archiveRows_, row, false);
        ReadTexts(row, row["TextID"]);
    } catch (const ado::AdoError& error) {
        row.failure = ToQString(error.Description());
    }
    return row;
}

TrendRow ProjectReader::ReadTrend(ado::Bookmark place) {
    TrendRow row;
    try {
        trendRows_.rows.SetBookmark(place);
        ReadCells(trendRows_, row, false);
        ReadTexts(row, row["TextID"]);
    } catch (const ado::AdoError& error) {
        row.failure = ToQString(error.Description());
    }
    return row;
}

void ProjectReader::ReadTexts(Row& row, const Cell& textId) {
    const std::optional<int> id = Integer(textId);
    if (!textsReadable_ || !id) return;
    if (!TextExists(*id)) {
        row.textMissing = true;
        return;
    }
    try {
        textRows_.rows.SetFilter("ID = " + std::to_string(*id));
        row.textMissing = textRows_.rows.IsEOF();
        for (std::size_t i = 0; !row.textMissing && i < lcids_.size(); ++i) {
            const QString text = PlainText(ReadCell(textRows_.rows, textRows_.columns[i + 1]));
            if (!text.isEmpty()) row.texts += LanguageText{lcids_[i], text};
        }
    } catch (const ado::AdoError&) {
        // Listed among the problems when the texts were collected.
        row.textMissing = true;
    }
}

}  // namespace report
