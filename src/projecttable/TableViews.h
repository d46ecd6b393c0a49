#pragma once

#include <map>
#include <QList>
#include <QString>
#include <set>

#include "projecttable/TrendTableModel.h"

/// What a user looks at in the table over a project, under a name of his.
struct TableView {
    QString name;
    std::map<QString, QString> filters;  // by field
    QString anywhere;
    std::set<QString> hidden;  // fields
    QList<TrendTableModel::SortKey> order;
    std::set<QString> archives;  // names; empty: all
};

Q_DECLARE_METATYPE(TableView)

/// The views that are kept for a project: a JSON file beside it, with its name and "-views" behind,
/// which goes with the project and can be joined by version control.
class TableViews {
public:
    /// `project` is the native path of its file. What cannot be read is as good as not there, and
    /// then not written over: see IsReadable.
    explicit TableViews(const QString& project);

    [[nodiscard]] const QList<TableView>& All() const { return views_; }
    /// False: there is a file, and it is none of views.
    [[nodiscard]] bool IsReadable() const { return isReadable_; }
    /// Puts a view in the place of that of its name, or behind the others. Empty when it has been
    /// written, else why not.
    [[nodiscard]] QString Keep(const TableView& view);
    [[nodiscard]] QString Remove(const QString& name);

private:
    void Read();
    [[nodiscard]] QString Write(QList<TableView> views);

    QString file_;
    QList<TableView> views_;
    bool isReadable_ = true;
};
