#pragma once

#include <QList>
#include <QString>

namespace platform {
class ComponentRegistry;
}

namespace studio {

class AddInSet;

/// What became of one library of the add-in folders.
struct AddInReport {
    enum class State { Loaded, NoLibrary, NoName, NameTaken, Failed };
    QString name;  // the ProgID, or the file's name when it has none
    QString file;
    State state = State::Loaded;
    QString failure = {};  // why it is not loaded, in English
};

/// Loads every component that implements KV4AddIn::CKV4Extensibility into `addIns`, and tells what
/// became of each. Components for other purposes are left alone. The root objects belong to their
/// libraries, which stay loaded to the end of the process.
[[nodiscard]] QList<AddInReport> LoadAddIns(platform::ComponentRegistry& components,
                                            AddInSet& addIns);

}  // namespace studio
