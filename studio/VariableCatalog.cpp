#include "studio/VariableCatalog.h"

#include <array>
#include <exception>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/FieldText.h"
#include "project/Schema.h"
#include "texts/ReasonText.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRowsBetweenLooksAtTheClock = 64;
// Every row of a badly damaged file costs an error; give up before that takes long.
constexpr int kMostUnreadableRows = 1000;
constexpr std::int32_t kNoStructure = 0;

QString TextOf(const ado::Value& value) {
    return QString::fromStdU16String(project::ValueText(value));
}

QString Explanation(const std::exception& error) {
    const auto* failure = dynamic_cast<const ado::AdoError*>(&error);
    if (failure == nullptr || failure->Reason().cause == reasons::Cause::Unknown) {
        return QString::fromUtf8(error.what());
    }
    return texts::ReasonText(failure->Reason());
}

}  // namespace

struct VariableCatalog::Source {
    ado::Connection connection;
    // Behind the connection, which must outlive it.
    ado::Recordset variables;
    std::array<std::size_t, 5> columns{};  // structure, name, type, unit, comment
};

VariableCatalog::VariableCatalog() = default;
VariableCatalog::~VariableCatalog() = default;

void VariableCatalog::Open(const QString& nativePath) {
    source_ = std::make_unique<Source>();
    try {
        source_->connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                                 nativePath.toStdString() + ";Mode=Read|Share Deny None;");
        ReadStructures();
        ado::Recordset& rows = source_->variables;
        rows.Open(project::kVariableTable, source_->connection, ado::CommandType::Table);
        source_->columns = {rows.FieldIndex("StructID"), rows.FieldIndex("Name"),
                            rows.FieldIndex("DataType"), rows.FieldIndex("Unit"),
                            rows.FieldIndex("Comment")};
        if (rows.IsEOF()) Stop({});
    } catch (const std::exception& error) {
        Stop(Explanation(error));
    }
}

void VariableCatalog::ReadStructures() {
    ado::Recordset rows;
    rows.Open(project::kStructTable, source_->connection, ado::CommandType::Table);
    while (!rows.IsEOF()) {
        try {
            const std::int32_t id = ado::ToLong(rows.Get("ID"));
            byId_.emplace(id, structures_.size());
            structures_.push_back({id, TextOf(rows.Get("Name")), TextOf(rows.Get("Comment")), {}});
        } catch (const ado::AdoError&) {
            ++unreadable_;
        }
        if (!Step([&] { rows.MoveNext(); })) return;
    }
}

bool VariableCatalog::ReadSome(std::chrono::milliseconds budget) {
    if (source_ == nullptr) return false;
    const auto end = std::chrono::steady_clock::now() + budget;
    try {
        ado::Recordset& rows = source_->variables;
        do {
            for (int i = 0; i < kRowsBetweenLooksAtTheClock; ++i) {
                try {
                    ReadVariable();
                } catch (const ado::AdoError&) {
                    ++unreadable_;
                }
                if (!Step([&] { rows.MoveNext(); }) || rows.IsEOF()) {
                    Stop(failure_);
                    return false;
                }
            }
        } while (std::chrono::steady_clock::now() < end);
    } catch (const std::exception& error) {
        Stop(Explanation(error));
        return false;
    }
    return true;
}

void VariableCatalog::ReadVariable() {
    const ado::Recordset& rows = source_->variables;
    const auto& [structure, name, type, unit, comment] = source_->columns;
    Variable variable{TextOf(rows.Get(name)), Shared(TextOf(rows.Get(type))),
                      Shared(TextOf(rows.Get(unit))), TextOf(rows.Get(comment))};
    if (variable.name.isEmpty()) return;  // nothing that could be chosen
    structures_[StructureOf(ado::ToLong(rows.Get(structure)))].variables.push_back(
        std::move(variable));
    ++count_;
}

/// Goes on to the next row that can be reached; false when there are too many that cannot.
bool VariableCatalog::Step(const std::function<void()>& move) {
    for (;;) {
        try {
            move();
            return true;
        } catch (const ado::AdoError& error) {
            if (++unreadable_ < kMostUnreadableRows) continue;
            failure_ = Explanation(error);
            return false;
        }
    }
}

std::size_t VariableCatalog::StructureOf(std::int32_t id) {
    const auto found = byId_.find(id);
    if (found != byId_.end()) return found->second;
    const auto [rest, isNew] = byId_.emplace(kNoStructure, structures_.size());
    if (isNew) structures_.push_back({kNoStructure, {}, {}, {}});
    return rest->second;
}

QString VariableCatalog::Shared(const QString& text) {
    return *words_.insert(text);
}

void VariableCatalog::Stop(const QString& failure) {
    failure_ = failure;
    source_.reset();
}

}  // namespace studio
