#include <algorithm>
#include <array>
#include <functional>
#include <variant>

#include "ado/AdoError.h"
#include "csv/Reader.h"
#include "tools/Commands.h"
#include "tools/InputFile.h"
#include "tools/KeyedRows.h"
#include "tools/System.h"
#include "tools/TableChange.h"
#include "tools/ValueParser.h"

namespace tools {
namespace {

/// Shows how far it is, on a terminal and only there. Others wait for the end of the change, so it
/// must not wait for a terminal that somebody has stopped: what that does not take is left out.
class Progress {
public:
    explicit Progress(std::FILE* stream) : stream_(stream), isShown_(IsTerminal(stream)) {}
    ~Progress() {
        if (isShown_ && count_ >= kEvery) Show("\r\033[K");
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step() {
        if (++count_ % kEvery == 0 && isShown_) Show("\r" + std::to_string(count_) + " rows");
    }
    [[nodiscard]] std::size_t Count() const { return count_; }

private:
    static constexpr std::size_t kEvery = 1000;

    void Show(const std::string& text) const {
        if (TakesText(stream_)) std::fputs(text.c_str(), stream_);
    }

    std::FILE* stream_;
    bool isShown_;
    std::size_t count_ = 0;
};

void Require(const jet::Status& status) {
    if (!status.IsOk()) FailInput(status.Text() + ".");
}

void RequireNoError(const csv::Reader& reader) {
    if (!reader.Error().empty()) FailInput(reader.Error() + ".");
}

/// The fields that the heading row names.
std::vector<std::size_t> ReadHeading(csv::Reader& reader, const ado::Recordset& rows) {
    std::vector<csv::Field> names;
    if (!reader.Next(names)) {
        RequireNoError(reader);
        FailInput(reader.Place() + ": there is no heading row.");
    }
    std::vector<std::size_t> fields;
    for (const csv::Field& name : names) {
        fields.push_back(rows.FieldIndex(name.value_or("")));
        if (std::find(fields.begin(), fields.end() - 1, fields.back()) != fields.end() - 1) {
            FailInput(reader.Place() + ": the heading row names the column \"" + *name +
                      "\" twice.");
        }
    }
    return fields;
}

/// The key has to stand in the file, or no row could be found by it.
void RequireNamed(const csv::Reader& reader, const ado::Recordset& rows,
                  const std::vector<std::size_t>& fields, const std::string& key) {
    if (std::find(fields.begin(), fields.end(), rows.FieldIndex(key)) == fields.end()) {
        FailInput(reader.Place() + ": the heading row does not name the column \"" + key + "\".");
    }
}

/// Mixes a value into a number for a row.
std::size_t Mix(std::size_t hash, const ado::Value& value) {
    const auto text = [&]() -> std::u16string {
        if (const auto* bytes = std::get_if<ado::Binary>(&value)) {
            std::u16string wide;
            for (const std::byte b : *bytes) wide += static_cast<char16_t>(b);
            return wide;
        }
        return ado::ToText(value);
    }();
    constexpr std::size_t kSpread = 0x9E3779B97F4A7C15;
    const std::size_t one = std::hash<std::u16string>()(text) + value.index();
    return (hash ^ one) * kSpread + (hash >> 29);
}

/// The rows that a table holds before others are loaded, as far as the columns of those go. Where
/// the CSV file names no key, nothing but this tells that it is loaded a second time.
class HeldRows {
public:
    HeldRows(ado::Recordset& rows, const std::vector<std::size_t>& fields) : fields_(fields) {
        const bool isNumbered = std::any_of(fields.begin(), fields.end(), [&](std::size_t field) {
            return rows.Fields()[field].autoNumber;
        });
        if (isNumbered) return;  // a second time would be refused
        // What cannot be read is like no other row, and no reason not to load.
        try {
            for (; !rows.IsEOF(); rows.MoveNext()) Remember(rows);
        } catch (const ado::AdoError&) {
        }
        std::sort(marks_.begin(), marks_.end());
    }

    /// The current row, also while it is only pending.
    [[nodiscard]] bool Has(const ado::Recordset& row) const {
        return !marks_.empty() && std::binary_search(marks_.begin(), marks_.end(), MarkOf(row));
    }

private:
    void Remember(const ado::Recordset& row) {
        try {
            marks_.push_back(MarkOf(row));
        } catch (const ado::AdoError&) {
        }
    }

    [[nodiscard]] std::size_t MarkOf(const ado::Recordset& row) const {
        std::size_t mark = 0;
        for (const std::size_t field : fields_) mark = Mix(mark, row.Get(field));
        return mark;
    }

    const std::vector<std::size_t>& fields_;
    std::vector<std::size_t> marks_;  // ascending
};

/// Adds the rows of a CSV file to a table.
class Loading {
public:
    Loading(ado::Recordset& rows, csv::Reader& reader, const std::vector<std::size_t>& fields,
            Mode mode, std::FILE* err, KeyedRows* keyed = nullptr)
        : rows_(rows),
          reader_(reader),
          fields_(fields),
          mode_(mode),
          progress_(err),
          keyed_(keyed) {}

    Done Run() {
        std::optional<HeldRows> held;
        if (keyed_ == nullptr) held.emplace(rows_, fields_);
        std::vector<csv::Field> record;
        while (reader_.Next(record)) {
            try {
                RequireWidth(record);
                if (held) {
                    Add(record, *held);
                } else {
                    UpdateOrAdd(record);
                }
            } catch (const ado::AdoError& error) {
                rows_.CancelUpdate();
                const std::string what = reader_.Place() + ": " + error.Description();
                if (mode_ == Mode::Change || !IsOfTheRow(error)) {
                    throw ado::AdoError(error.Number(), what);
                }
                Refuse(what);
            }
            progress_.Step();
        }
        RequireNoError(reader_);
        return Tell();
    }

private:
    static constexpr std::size_t kMostRefusals = 100;  // that are told one by one

    void RequireWidth(const std::vector<csv::Field>& record) const {
        if (record.size() != fields_.size()) {
            FailInput(std::to_string(record.size()) + " values instead of " +
                      std::to_string(fields_.size()) + ".");
        }
    }

    [[nodiscard]] ado::Value ValueOf(const std::vector<csv::Field>& record, std::size_t i) const {
        if (!record[i]) return ado::Null();
        return ParseValue(rows_.Fields()[fields_[i]], *record[i]);
    }

    void Add(const std::vector<csv::Field>& record, const HeldRows& held) {
        rows_.AddNew();
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (record[i]) rows_.Set(fields_[i], ValueOf(record, i));
        }
        const bool isDouble = held.Has(rows_);
        rows_.Update();
        if (isDouble) ++doubles_;
    }

    /// The key is taken as the column holds it, whatever its form in the file.
    void UpdateOrAdd(const std::vector<csv::Field>& record) {
        rows_.AddNew();
        const auto key = std::find(fields_.begin(), fields_.end(), keyed_->Field());
        rows_.Set(*key, ValueOf(record, static_cast<std::size_t>(key - fields_.begin())));
        const auto place = keyed_->Take(rows_.Get(*key));
        if (place) {
            rows_.CancelUpdate();
            rows_.SetBookmark(*place);
        }
        bool differs = false;
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (fields_[i] == *key || (!place && !record[i])) continue;
            const ado::Value before = rows_.Get(fields_[i]);
            rows_.Set(fields_[i], ValueOf(record, i));
            differs = differs || rows_.Get(fields_[i]) != before;
        }
        if (place && !differs) return rows_.CancelUpdate();
        rows_.Update();
        ++(place ? changed_ : added_);
    }

    /// Whether the next row may do better.
    static bool IsOfTheRow(const ado::AdoError& error) {
        using namespace ado::ErrorNumber;
        constexpr std::array kNumbers = {kInvalidArgument, kTypeMismatch, kWrongType, kDoesNotFit,
                                         kIntegrity};
        return std::find(kNumbers.begin(), kNumbers.end(), error.Number()) != kNumbers.end();
    }

    void Refuse(const std::string& what) {
        if (++refused_ <= kMostRefusals) warnings_.push_back(what);
    }

    Done Tell() {
        const std::size_t count = progress_.Count();
        const bool isDry = mode_ == Mode::DryRun;
        if (doubles_ > 0) {
            const std::string all = count == 1 ? "the row" : "all " + RowCount(count);
            const std::string some = std::to_string(doubles_) + " of " + RowCount(count);
            warnings_.push_back("the table held " + (doubles_ == count ? all : some) +
                                " already, as far as the loaded columns go; such rows " +
                                (isDry ? "would be there once more" : "are there once more now"));
        }
        if (refused_ > kMostRefusals) {
            warnings_.push_back(RowCount(refused_ - kMostRefusals) + " more would be refused");
        }
        Done done{RowCount(count), std::move(warnings_), refused_ > 0};
        if (keyed_ != nullptr) {
            const std::size_t same = count - changed_ - added_ - refused_;
            done.text = RowCount(added_) + (isDry ? " would be added, " : " added, ") +
                        std::to_string(changed_) + (isDry ? " would change, " : " changed, ") +
                        std::to_string(same) + " as they are";
        } else if (isDry) {
            done.text += " would be added";
        }
        if (refused_ > 0) {
            done.text = std::to_string(refused_) + " of " + RowCount(count) +
                        " would be refused, so that nothing would be " +
                        (keyed_ != nullptr ? "changed" : "added");
        }
        return done;
    }

    ado::Recordset& rows_;
    csv::Reader& reader_;
    const std::vector<std::size_t>& fields_;
    Mode mode_;
    Progress progress_;
    KeyedRows* keyed_;
    std::size_t added_ = 0;
    std::size_t changed_ = 0;
    std::size_t doubles_ = 0;
    std::size_t refused_ = 0;
    std::vector<std::string> warnings_;
};

}  // namespace

ExitStatus Load(const std::string& file, const std::string& table, const std::string& input,
                const LoadWish& wish, Mode mode, std::FILE* out, std::FILE* err) {
    InputFile in;
    if (const jet::Status status = in.Open(input); !status.IsOk()) {
        std::fprintf(err, "kvs: %s\n", status.Text().c_str());
        return kFailure;
    }
    csv::Reader reader(in, {wish.encoding, wish.separator});
    std::vector<std::size_t> fields;
    const auto prepare = [&](ado::Recordset& rows) {
        Require(in.Collect());
        fields = ReadHeading(reader, rows);
        if (!wish.key.empty()) RequireNamed(reader, rows, fields, wish.key);
    };
    const auto run = [&](ado::Connection&, ado::Recordset& rows) {
        if (wish.key.empty()) return Loading(rows, reader, fields, mode, err).Run();
        KeyedRows keyed(rows, rows.FieldIndex(wish.key));
        return Loading(rows, reader, fields, mode, err, &keyed).Run();
    };
    return Edit(file, table, mode, out, err, {prepare, run});
}

}  // namespace tools
