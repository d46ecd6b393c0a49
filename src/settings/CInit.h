#pragma once

#include <functional>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <utility>

#include "settings/CInitItems.h"
#include "settings/InitValue.h"

namespace LateBound {
class Place;
}

/// The settings of one editor window: a tree of values whose paths are the property paths of the
/// window and its controls, such as `tdbA.Splits(1).Columns("TrendVar").Width`. A path whose
/// first segment is "Me" means the window itself. Each "." parts two levels, so that an argument
/// that contains one cannot be addressed.
///
/// A built-in default says which keys there are: a key of the file that it lacks is neither read
/// nor written. Values are put into live objects and read back by the names of their properties;
/// how names find objects is told in the README of this folder. A path that names nothing is
/// logged once and passed over.
///
/// For the user-interface thread.
class CInit {
public:
    CInit();
    ~CInit();
    CInit(const CInit&) = delete;
    CInit& operator=(const CInit&) = delete;

    /// The window whose properties and controls the paths name; may be null. Borrowed.
    [[nodiscard]] QObject* Motherobject() const { return motherobject_; }
    void SetMotherobject(QObject* window) { motherobject_ = window; }

    /// Takes the built-in default of that name into the tree. The name is also that of the
    /// section in the settings file. Throws platform::Error when there is no such default.
    void LoadDefaultInit(const QString& name);
    /// Gives every leaf the value of the file. What is missing there keeps its value; a file that
    /// is missing, or cannot be read, leaves everything as it is.
    void LoadInits(const QString& file);
    /// Writes every leaf, into the file used last when none is named. Throws platform::Error.
    void SaveInits(const QString& file = {});

    /// Gives every leaf below the node the value of the live property.
    void GetInitFromControl(const QString& name);
    /// Puts the values into all controls of the window that have a node, in the window's order.
    void SetInitToMotherObject();
    /// Puts the value of every leaf below the node into the live property: texts as they are,
    /// all else rounded to a 16-bit number, deliberately (8.25 is put as 8, True as -1).
    void SetInitToControl(const QString& name);

    /// Stores a value; nodes that are missing are made. A key that could not stand in the file is
    /// logged and ignored.
    void WriteAValueToCInits(const QString& key, const InitValue& value);
    [[nodiscard]] InitValue ReadAValueFromCInits(QStringView key,
                                                 const InitValue& fallback = {}) const;
    /// Takes a leaf away, and the nodes above that have nothing else.
    void DeleteAValueInCInits(QStringView key);
    /// Whether the whole path is there, as a leaf or an inner node.
    [[nodiscard]] bool ParamExist(QStringView key) const;
    /// Writes one value into the file used last, at once. Throws platform::Error.
    void WriteToIni(const QString& key, const InitValue& value);

    /// Every leaf's value by its path, in the tree's order.
    [[nodiscard]] QList<std::pair<QString, InitValue>> Values() const;

    [[nodiscard]] CInitItems& Items() noexcept { return items_; }

private:
    using Visitor = std::function<void(const LateBound::Place&, CInitItem&, const QString& path)>;

    [[nodiscard]] CInitItem* Find(QStringView key) const;
    void VisitLeaves(const QString& name, const Visitor& visit);
    void VisitLeaves(CInitItem& node, const LateBound::Place& place, const QString& path,
                     const Visitor& visit);
    void Report(const QString& path, const char* what);
    void RequireFile() const;

    QString section_;
    QString file_;
    CInitItems items_;
    QPointer<QObject> motherobject_;
    QSet<QString> reported_;  // paths that were logged
};
