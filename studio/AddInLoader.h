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
    QString name;  // the ProgID, or the file's name when it has none
    QString file;
    QString failure;  // empty: loaded
};

/// Loads every component that implements KV4AddIn::CKV4Extensibility into `addIns`, and tells what
/// became of each. Components for other purposes are left alone. The root objects belong to their
/// libraries, which stay loaded to the end of the process.
[[nodiscard]] QList<AddInReport> LoadAddIns(platform::ComponentRegistry& components,
                                            AddInSet& addIns);

}  // namespace studio
