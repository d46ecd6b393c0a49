#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>

namespace platform {

/// One class that can be created by name: a Qt plugin whose metadata holds the string "ProgID".
struct Component {
    QString progId;
    QString file;
    QJsonObject metaData;
};

/// The classes that this station can create by their ProgID, found in the add-in folders.
///
/// A library is looked at without running any of its code until it is loaded. Loaded libraries
/// stay in the process. ProgIDs compare without case; where two libraries have the same one the
/// folder named first wins, and in a folder the file name. For one thread.
class ComponentRegistry {
public:
    /// A library that is no component although it lies in an add-in folder.
    struct Problem {
        enum class Kind { NoLibrary, NoName, NameTaken };
        Kind kind = Kind::NoLibrary;
        QString file;
        QString reason;  // English
    };
    /// A created component. `root` belongs to its library; null when it failed, with the reason.
    struct Instance {
        QPointer<QObject> root;
        QString reason;
    };

    explicit ComponentRegistry(QStringList folders = DefaultFolders());

    /// The folders that the environment variable KV_ADDINS names (separated by ':'), the folder
    /// `addins` beside the program, and where an installation has them, in this order.
    [[nodiscard]] static QStringList DefaultFolders();

    /// Looks through the folders again.
    void Refresh();
    [[nodiscard]] const QList<Component>& Components() const noexcept { return components_; }
    [[nodiscard]] const QList<Problem>& Problems() const noexcept { return problems_; }
    /// nullptr when no library has this ProgID.
    [[nodiscard]] const Component* Find(const QString& progId) const;

    /// The root object of the library; the same one at every call while it is loaded.
    [[nodiscard]] Instance Load(const QString& progId) const;

private:
    void Examine(const QString& file);

    QStringList folders_;
    QList<Component> components_;
    QList<Problem> problems_;
};

}  // namespace platform
