#include "ado/Connection.h"

#include <array>
#include <filesystem>
#include <map>

#include "ado/AdoError.h"
#include "ado/detail/ConnectionRep.h"
#include "ado/detail/ProviderError.h"
#include "ado/Recordset.h"
#include "jet/UnnamedFile.h"
#include "paths/NativePath.h"

namespace ado {
namespace {

constexpr std::string_view kProvider = "microsoft.jet.oledb.4.0";

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

using Properties = std::map<std::string, std::string>;  // lower-case name -> value

/// A value ends at a semicolon only where another known property follows, or at the end: the path
/// stands there without quotes and may hold semicolons itself.
Properties ParseConnectionString(std::string_view text) {
    constexpr std::array<std::string_view, 3> kNames = {"provider", "data source", "mode"};
    const auto knownNameAt = [&](std::size_t begin) -> std::size_t {
        const std::size_t equals = text.find('=', begin);
        if (equals == std::string_view::npos) return 0;
        const std::string name = Lower(Trim(text.substr(begin, equals - begin)));
        for (const std::string_view known : kNames) {
            if (name == known) return equals;
        }
        return 0;
    };
    Properties properties;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t equals = knownNameAt(at);
        if (equals == 0) {
            throw AdoError(ErrorNumber::kInvalidArgument,
                           "The connection string has an unknown "
                           "part: \"" +
                               std::string(text.substr(at)) + "\".");
        }
        std::size_t end = text.find(';', equals);
        while (end != std::string_view::npos && end + 1 < text.size() &&
               knownNameAt(end + 1) == 0) {
            end = text.find(';', end + 1);
        }
        const std::size_t valueEnd = end == std::string_view::npos ? text.size() : end;
        properties[Lower(Trim(text.substr(at, equals - at)))] =
            text.substr(equals + 1, valueEnd - equals - 1);
        at = valueEnd + 1;
    }
    return properties;
}

void RequireOpen(const Connection& connection) {
    if (connection.State() == ObjectState::Closed) {
        throw AdoError(ErrorNumber::kObjectClosed,
                       "The operation is not allowed while the connection is closed.");
    }
}

/// The file that a connection string names, for a connection that is closed.
std::string TakeSource(const Connection& connection, std::string_view connectionString) {
    if (connection.State() == ObjectState::Open) {
        throw AdoError(ErrorNumber::kObjectOpen,
                       "The operation is not allowed while the connection is open.");
    }
    Properties properties = ParseConnectionString(connectionString);
    if (Lower(Trim(properties["provider"])) != kProvider) {
        throw AdoError(ErrorNumber::kProviderNotFound,
                       "The provider \"" + properties["provider"] + "\" cannot be found.");
    }
    const std::string& source = properties["data source"];
    if (source.empty()) {
        throw AdoError(ErrorNumber::kInvalidArgument,
                       "The connection string names no data source.");
    }
    return source;
}

jet::Result<std::unique_ptr<jet::Database>> OpenFile(const std::string& native) {
    auto database = jet::Database::Open(jet::SystemDisk(), native, jet::OpenMode::ReadWrite);
    if (!database.IsOk() && database.GetStatus().Code() == jet::StatusCode::Permission) {
        // What may not be written can still be looked at.
        database = jet::Database::Open(jet::SystemDisk(), native, jet::OpenMode::Read);
    }
    return database;
}

jet::Result<std::unique_ptr<jet::Database>> OpenDatabase(const std::string& native) {
    auto database = OpenFile(native);
    if (!database.IsOk() && database.GetStatus().Code() == jet::StatusCode::NotFound &&
        native.back() == ' ') {
        // Where projects come from, blanks behind a name are no part of it.
        database = OpenFile(native.substr(0, native.find_last_not_of(' ') + 1));
    }
    return database;
}

void RequireOpened(const jet::Status& status, const std::string& source) {
    if (status.IsOk()) return;
    if (status.Code() == jet::StatusCode::NotFound) {
        const std::string native = paths::ToNative(source);
        std::string text = "Could not find file \"" + source + "\"";
        if (native != source) text += " (looked for \"" + native + "\")";
        ThrowNotOpened(status, source, text + ".");
    }
    ThrowNotOpened(status, source, "\"" + source + "\": " + status.Text() + ".");
}

}  // namespace

Connection::Connection() : rep_(std::make_unique<Rep>()) {}

Connection::~Connection() {
    if (State() == ObjectState::Open) Close();
}

void Connection::Open(std::string_view connectionString, std::string_view /*userId*/,
                      std::string_view /*password*/, int /*options*/) {
    const std::string source = TakeSource(*this, connectionString);
    auto database = OpenDatabase(paths::ToNative(source));
    RequireOpened(database.GetStatusOrOk(), source);
    TakeDatabase(std::move(*database), source);
}

void Connection::OpenSnapshot(std::string_view connectionString) {
    const std::string source = TakeSource(*this, connectionString);
    auto database = jet::Database::Open(paths::ToNative(source));
    RequireOpened(database.GetStatusOrOk(), source);
    std::unique_ptr<jet::File> copy;
    const jet::Status copied = (*database)->WhileQuiet([&](const jet::File& file) -> jet::Status {
        JET_ASSIGN(copy, jet::CopyToUnnamedFile(file));
        return {};
    });
    if (copied.Code() == jet::StatusCode::Full) {
        std::error_code ignored;
        const std::string folder = std::filesystem::temp_directory_path(ignored).string();
        throw AdoError(ErrorNumber::kUnspecified,
                       "\"" + source + "\" cannot be copied to \"" + folder +
                           "\", the folder of temporary files: " + copied.Text() + ".",
                       {reasons::Cause::DiskFull, folder});
    }
    RequireOpened(copied, source);
    database = jet::Database::Open(std::move(copy));
    RequireOpened(database.GetStatusOrOk(), source);
    TakeDatabase(std::move(*database), source);
}

void Connection::TakeDatabase(std::unique_ptr<jet::Database> database, const std::string& source) {
    if (database->HasPassword()) {
        throw AdoError(ErrorNumber::kNotAuthorised,
                       "\"" + source +
                           "\": not a valid password. Remove the file's password where "
                           "it was given.",
                       {reasons::Cause::Password, source});
    }
    rep_->Borrow(*database, source);
    rep_->own = std::move(database);
}

void Connection::Close() {
    RequireOpen(*this);
    while (!rep_->recordsets.empty()) {
        rep_->recordsets.back()->CancelUpdate();
        rep_->recordsets.back()->Close();
    }
    rep_->database = nullptr;
    rep_->own.reset();
    rep_->source.clear();
}

void Connection::BeginTrans() {
    RequireOpen(*this);
    Check(rep_->database->Begin(), rep_->source);
}

void Connection::CommitTrans() {
    RequireOpen(*this);
    Check(rep_->database->Commit(), rep_->source);
    rep_->TellChanges();
}

void Connection::RollbackTrans() {
    RequireOpen(*this);
    Check(rep_->database->Rollback(), rep_->source);
}

void Connection::SetChangeListener(ChangeListener listener) {
    rep_->listener = std::move(listener);
    rep_->Observe();
}

ObjectState Connection::State() const noexcept {
    return rep_->database != nullptr ? ObjectState::Open : ObjectState::Closed;
}

bool Connection::IsWritable() const {
    RequireOpen(*this);
    return rep_->database->IsWritable();
}

std::uint64_t Connection::ContentNumber() {
    RequireOpen(*this);
    return Check(rep_->database->ContentNumber(), rep_->source);
}

bool Connection::IsWriterWaiting() const {
    RequireOpen(*this);
    return rep_->database->IsWriterWaiting();
}

const std::string& Connection::DataSource() const noexcept {
    return rep_->source;
}

std::vector<std::string> Connection::TakeNotices() {
    RequireOpen(*this);
    return rep_->database->TakeNotices();
}

std::vector<std::string> Connection::TableNames() const {
    RequireOpen(*this);
    std::vector<std::string> names;
    for (const jet::CatalogEntry& entry : Check(rep_->database->Tables(), rep_->source)) {
        if (entry.isUserTable) names.push_back(entry.name);
    }
    return names;
}

std::vector<Recordset*> Connection::OpenRecordsets() const {
    return rep_->recordsets;
}

struct OneState::Rep {
    jet::ReadScope scope;
};

OneState::OneState(const Connection& connection) {
    RequireOpen(connection);
    rep_.reset(new Rep{connection.rep_->database->Hold()});
    Check(rep_->scope.GetStatus(), connection.rep_->source);
}

OneState::~OneState() = default;

}  // namespace ado
