#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

#include "ado/Connection.h"

class QWidget;

namespace projectdb {

/// A field of a row of the project.
struct Place {
    std::string table;  // of the schema
    std::int32_t id = 0;
    std::string column;  // empty: the row as a whole
};

/// What windows over the whole project ask of the editor window, which outlives them. All of it may
/// throw ado::AdoError.
class IProjectWork {
public:
    virtual ~IProjectWork() = default;

    /// The project's open connection. It is another one after the project has been opened anew:
    /// not to be kept.
    [[nodiscard]] virtual ado::Connection& Connection() = 0;
    /// False for a project that can only be looked at; the status bar says why.
    [[nodiscard]] virtual bool MayStore() = 0;
    /// Runs what changes the project; all of it is one step that the user can take back. What is
    /// being edited in the editor window is stored first. Afterwards, also when `change` throws,
    /// tree, lists and rows show what the file has. False: not run, and the user knows why.
    virtual bool RunStep(const std::function<void()>& change) = 0;
    /// Takes the user's last step back, or does again what has been taken back last.
    virtual void GoStep(bool back) = 0;
    /// Opens the archive of a row and makes its cell the current one; of a text, the row that names
    /// it. The keyboard goes to the editor window. False when the row is not there, or an edit
    /// that is pending is refused.
    virtual bool ShowPlace(const Place& place) = 0;
    /// The host's variable browser, modal over `owner`; see IHost::ChooseVariable.
    [[nodiscard]] virtual std::optional<QString> ChooseVariable(QWidget* owner,
                                                                const QString& current) = 0;
    /// The same for several variables, where the host offers that.
    [[nodiscard]] virtual std::optional<QStringList> ChooseVariables(QWidget* owner,
                                                                     const QString& current) = 0;
    /// Asks into which file the trends with these IDs go, and writes it.
    virtual void ExportTrends(const std::vector<std::int32_t>& trends, QWidget* owner) = 0;
    /// Shows a topic of the help by its context number.
    virtual void ShowHelpTopic(int topic, QWidget* owner) = 0;
};

}  // namespace projectdb
