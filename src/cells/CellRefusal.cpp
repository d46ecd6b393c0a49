#include "cells/CellRefusal.h"

#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

int CauseText(project::CellRefusal::Cause cause) {
    using Cause = project::CellRefusal::Cause;
    switch (cause) {
        case Cause::RowGone:
            return MResourceTable::kTextCellRowGone;
        case Cause::Changed:
            return MResourceTable::kTextCellChanged;
        case Cause::DoesNotFit:
            return MResourceTable::kTextCellDoesNotFit;
        case Cause::NameEmpty:
            return MResourceTable::kTextNameRequired;
        case Cause::NameDouble:
            return MResourceTable::kTextNameInUse;
        case Cause::NoField:
        case Cause::WrongType:
            break;
    }
    return MResourceTable::kTextCellWrongType;
}

}  // namespace

QString CellRefusalText(const project::CellRefusal& refusal, const QString& name,
                        const MResources::TextTable& texts) {
    const QString stands = projectdb::ToQString(ado::ToText(refusal.stands));
    const QString cause = texts.GetText(CauseText(refusal.cause), {{u"value", stands}});
    return texts.GetText(MResourceTable::kTextCellRefused, {{u"name", name}, {u"cause", cause}});
}
