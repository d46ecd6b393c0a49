#include "commands/NameLists.h"

#include <tuple>

#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"

using namespace Qt::Literals::StringLiterals;

QString NameLists::KeyOf(const QString& name) {
    QString key = name.normalized(QString::NormalizationForm_C).toCaseFolded();
    key.replace(u'ß', u"ss"_s);
    while (key.endsWith(u' ')) key.chop(1);
    return key;
}

projectdb::RowFailures NameLists::NamesInGroup(QStringView group, ado::Recordset& rows) {
    Names& names = groups_[group.toString()];
    names.clear();
    const std::size_t field = rows.FieldIndex("Name");
    projectdb::RowFailures unreadable;
    projectdb::RowWalk walk(rows, unreadable);
    for (bool found = walk.First(); found; found = walk.Next()) {
        walk.Read([&] {
            const ado::Value name = rows.Get(field);
            if (!ado::IsNull(name)) ++names[KeyOf(projectdb::ToQString(ado::ToText(name)))];
        });
    }
    std::ignore = walk.First();
    return unreadable;
}

projectdb::RowFailures NameLists::NamesInGroup(QStringView group, ADOArchiv& environment) {
    const bool isArchives = group == projectdb::kArchiveNames;
    const auto command = isArchives ? ADOArchiv::Command::Archives : ADOArchiv::Command::tabTrends;
    ado::Recordset& rows = environment.Recordset(command);
    const bool opens = rows.State() == ado::ObjectState::Closed;
    if (opens && isArchives) environment.Open(command);
    if (opens && !isArchives) environment.Open(command, {u"0"});
    const projectdb::RowFailures unreadable = NamesInGroup(group, rows);
    if (opens) environment.CloseRecordset(command);
    return unreadable;
}

std::function<bool(const std::u16string& name)> NameLists::UseIn(QStringView group) {
    return [this, key = group.toString()](const std::u16string& name) {
        return TestNameInGroup(key, projectdb::ToQString(name));
    };
}

void NameLists::AddNameInGroup(QStringView group, const QString& name) {
    ++groups_[group.toString()][KeyOf(name)];
}

void NameLists::DeleteNameInGroup(QStringView group, const QString& name) {
    Names& names = groups_[group.toString()];
    const auto entry = names.find(KeyOf(name));
    if (entry != names.end() && --*entry == 0) names.erase(entry);
}

bool NameLists::TestNameInGroup(QStringView group, const QString& name) {
    return groups_.value(group.toString()).contains(KeyOf(name));
}

void NameLists::ChangeNameInGroup(QStringView group, const QString& oldName,
                                  const QString& newName) {
    if (oldName == newName) return;
    AddNameInGroup(group, newName);
    DeleteNameInGroup(group, oldName);
}

bool NameLists::IsSameName(const QString& a, const QString& b) const {
    return KeyOf(a) == KeyOf(b);
}
