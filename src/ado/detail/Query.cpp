#include "ado/detail/Query.h"

namespace ado {
namespace {

Query::Item ParseItem(Lexer& lexer) {
    Query::Item item;
    if (lexer.TakeSymbol("*")) {
        item.isAll = true;
        return item;
    }
    item.column.name = lexer.ExpectName("column");
    if (lexer.TakeSymbol(".")) {
        item.column.qualifier = std::move(item.column.name);
        item.column.name.clear();
        item.isAll = lexer.TakeSymbol("*");
        if (!item.isAll) item.column.name = lexer.ExpectName("column");
    }
    if (!item.isAll && lexer.TakeKeyword("AS")) item.alias = lexer.ExpectName("name behind AS");
    return item;
}

Query::Source ParseSource(Lexer& lexer) {
    Query::Source source;
    source.table = lexer.ExpectName("table");
    source.alias = lexer.TakeKeyword("AS") ? lexer.ExpectName("name behind AS") : source.table;
    return source;
}

}  // namespace

Query ParseQuery(std::string_view text) {
    Lexer lexer(text);
    Query query;
    lexer.ExpectKeyword("SELECT");
    do {
        query.items.push_back(ParseItem(lexer));
    } while (lexer.TakeSymbol(","));
    lexer.ExpectKeyword("FROM");
    do {
        query.sources.push_back(ParseSource(lexer));
    } while (lexer.TakeSymbol(","));
    if (lexer.TakeKeyword("WHERE")) query.where = ParseExpression(lexer);
    if (lexer.Current().kind != Token::Kind::End) lexer.Fail("something behind the statement");
    return query;
}

}  // namespace ado
