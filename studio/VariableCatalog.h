#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <QSet>
#include <QString>
#include <unordered_map>
#include <vector>

namespace studio {

/// One process variable of a project.
struct Variable {
    QString name;  // full, as trends and archives name it: "Brewhouse.Kettle.Level"
    QString type;
    QString unit;
    QString comment;
};

/// A structure with its variables, in the project's order.
struct Structure {
    std::int32_t id = 0;
    QString name;
    QString comment;
    std::vector<Variable> variables;
};

/// The structures and variables of one project file, read portion by portion so that nobody waits
/// for a large one. What has been read stays where it is: structures and variables are only ever
/// added behind the others. Opens the file for reading and lets go of it when everything has been
/// read. For the user-interface thread.
class VariableCatalog {
public:
    VariableCatalog();
    ~VariableCatalog();
    VariableCatalog(const VariableCatalog&) = delete;
    VariableCatalog& operator=(const VariableCatalog&) = delete;

    /// Opens a project file (native path) and reads its structures. Throws nothing: what goes
    /// wrong, here and later, is in Failure().
    void Open(const QString& nativePath);

    /// Reads variables for about `budget`. False when there are no more.
    bool ReadSome(std::chrono::milliseconds budget);
    [[nodiscard]] bool IsComplete() const noexcept { return source_ == nullptr; }

    /// The last one may hold the variables that belong to no structure; its name is empty then.
    [[nodiscard]] const std::vector<Structure>& Structures() const noexcept { return structures_; }
    [[nodiscard]] std::size_t VariableCount() const noexcept { return count_; }
    /// Why reading came to an early end; empty when it did not.
    [[nodiscard]] const QString& Failure() const noexcept { return failure_; }
    /// Rows that could not be read; the others have been.
    [[nodiscard]] int UnreadableRows() const noexcept { return unreadable_; }

private:
    struct Source;

    void ReadStructures();
    void ReadVariable();
    bool Step(const std::function<void()>& move);
    std::size_t StructureOf(std::int32_t id);
    [[nodiscard]] QString Shared(const QString& text);
    void Stop(const QString& failure);

    std::unique_ptr<Source> source_;  // null before Open and when everything has been read
    std::vector<Structure> structures_;
    std::unordered_map<std::int32_t, std::size_t> byId_;
    QSet<QString> words_;  // types and units, of which there are few
    std::size_t count_ = 0;
    int unreadable_ = 0;
    QString failure_;
};

}  // namespace studio
