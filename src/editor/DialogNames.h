#pragma once

#include "commands/NameLists.h"
#include "dialogs/DialogServices.h"

/// The names in use as the dialogs ask for them, which know no commands.
class DialogNames final : public INameRegistry {
public:
    /// Borrowed; outlives the object.
    explicit DialogNames(NameLists& names) : names_(names) {}

    [[nodiscard]] bool TestNameInGroup(QStringView group, const QString& name) override {
        return names_.TestNameInGroup(group, name);
    }
    [[nodiscard]] bool IsSameName(const QString& a, const QString& b) const override {
        return names_.IsSameName(a, b);
    }
    void ChangeNameInGroup(QStringView group, const QString& oldName,
                           const QString& newName) override {
        names_.ChangeNameInGroup(group, oldName, newName);
    }

private:
    NameLists& names_;
};
