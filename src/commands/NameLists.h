#pragma once

#include <functional>
#include <QHash>
#include <QString>
#include <string>

#include "ado/Recordset.h"
#include "projectdb/ADOArchiv.h"
#include "projectdb/RowWalk.h"

/// The names in use, a list for each group: projectdb::kArchiveNames for the archives of the
/// project, projectdb::kTrendNames for the trends of the open archive. Names that the file's text
/// indexes take for the same are one name here: case and trailing blanks do not count, and
/// "Straße" is "strasse".
///
/// A file made by others may hold a name twice; it is in use until both have gone.
class NameLists final {
public:
    /// Builds the list of a group anew from the column Name of all rows, and goes back to the first
    /// one. Rows that cannot be read are left out: their names are not known. They are returned, as
    /// a recordset tells of such a row only the first time that it comes by.
    projectdb::RowFailures NamesInGroup(QStringView group, ado::Recordset& rows);
    /// The same from the group's own recordset, which is opened for it when it is closed.
    projectdb::RowFailures NamesInGroup(QStringView group, ADOArchiv& environment);

    /// Tells of names whether the group has them; for as long as the lists live.
    [[nodiscard]] std::function<bool(const std::u16string& name)> UseIn(QStringView group);

    void AddNameInGroup(QStringView group, const QString& name);
    void DeleteNameInGroup(QStringView group, const QString& name);

    [[nodiscard]] bool TestNameInGroup(QStringView group, const QString& name);
    /// Two names are one where their keys are equal.
    [[nodiscard]] static QString KeyOf(const QString& name);
    [[nodiscard]] bool IsSameName(const QString& a, const QString& b) const;
    /// Does nothing when the names are equal. Whether the new one is free is for the caller to test
    /// before: a name may be changed to itself in another case.
    void ChangeNameInGroup(QStringView group, const QString& oldName, const QString& newName);

private:
    using Names = QHash<QString, int>;  // by key, how often in use

    QHash<QString, Names> groups_;
};
