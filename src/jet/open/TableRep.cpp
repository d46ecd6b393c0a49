#include "jet/open/TableRep.h"

#include "jet/catalog/TableDefReader.h"
#include "jet/page/Bytes.h"

namespace jet {

Status Table::Rep::Refresh() {
    const ReadScope scope(file.cache);
    JET_TRY(scope.GetStatus());
    if (def && generation == file.cache.Generation()) return {};
    Result<TableDef> now = ReadTableDef(file.cache, file.format, file.codePage, page);
    if (!now.IsOk()) return Named(now.GetStatus());
    if (def && !SameStructure(*def, *now)) {
        return Named(Status(StatusCode::Conflict,
                            "another program has changed its columns or indexes; open it again"));
    }
    def = std::make_shared<const TableDef>(std::move(*now));
    generation = file.cache.Generation();
    return {};
}

Result<const TableRules*> Table::Rep::Rules() {
    if (!rules || changes != file.cache.Changes()) {
        changes = file.cache.Changes();
        related.clear();
        rules.reset();
        JET_ASSIGN(rules, ReadTableRules(file, *def));
    }
    return &*rules;
}

Result<std::unique_ptr<Table>> OpenTableAt(const FileContext& file, PageNo page, std::string name,
                                           bool isForUsers) {
    auto rep = std::make_unique<Table::Rep>(file, page, std::move(name), isForUsers);
    JET_TRY(rep->Refresh());
    return std::make_unique<Table>(std::move(rep));
}

std::unique_ptr<Table> OpenKnownTable(const FileContext& file, const std::string& name,
                                      std::shared_ptr<const TableDef> def, bool isForUsers) {
    auto rep = std::make_unique<Table::Rep>(file, def->page, name, isForUsers);
    rep->def = std::move(def);
    rep->generation = file.cache.Generation();
    return std::make_unique<Table>(std::move(rep));
}

Result<Table*> RelatedTable(Table& table, PageNo page) {
    Table::Rep& rep = Inside::Of(table);
    if (page == rep.page) return &table;
    JET_TRY(rep.Rules().GetStatusOrOk());
    std::unique_ptr<Table>& related = rep.related[page];
    if (!related) {
        JET_ASSIGN(related, OpenTableAt(rep.file, page, PageText(page)));
        const TableRules* rules = nullptr;
        JET_ASSIGN(rules, Inside::Of(*related).Rules());
        if (!rules->name.empty()) Inside::Of(*related).name = rules->name;
    }
    return related.get();
}

}  // namespace jet
