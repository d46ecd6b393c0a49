#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ado/detail/Lexer.h"
#include "ado/Value.h"

namespace ado {

/// A column that an expression names, and where it was found.
struct ColumnRef {
    std::string qualifier;  // name of its table; may be empty
    std::string name;
    std::size_t table = 0;   // set by binding: position of the table
    std::size_t column = 0;  // position in the table's definition
};

/// One side of a comparison: a column or a constant.
struct Operand {
    bool isColumn = false;
    ColumnRef column;
    Value constant;
    std::u16string number;  // the constant as it is written, when it is a number
};

/// A condition on rows: a comparison, or conditions joined by And, Or and Not.
struct Expression {
    enum class Kind { And, Or, Not, Compare, IsNull };
    enum class Operator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, Like };
    Kind kind = Kind::Compare;
    Operator op = Operator::Equal;                   // Compare
    Operand left;                                    // Compare, IsNull
    Operand right;                                   // Compare
    std::vector<std::unique_ptr<Expression>> parts;  // And, Or, Not
};

/// Reads one condition; the same grammar for Filter, Find and WHERE. A comparison with the word
/// Null asks for Null.
[[nodiscard]] std::unique_ptr<Expression> ParseExpression(Lexer& lexer);

/// Reads a condition that is the whole of `text`.
[[nodiscard]] std::unique_ptr<Expression> ParseCriteria(std::string_view text);

/// The comparisons that all hold when the expression does: the parts of nested Ands.
[[nodiscard]] std::vector<const Expression*> Conjuncts(const Expression& expression);

/// Calls `visit` for every operand that names a column.
void ForEachColumn(Expression& expression, const std::function<void(Operand&)>& visit);

/// Gives the value of a column of the row in question.
using ColumnReader = std::function<Value(const ColumnRef&)>;

/// True when the row meets the condition. A comparison with Null is never true.
[[nodiscard]] bool Holds(const Expression& expression, const ColumnReader& read);

/// -1, 0 or 1. Texts compare in the order of the file's text indexes, without case; a text and a
/// number as numbers when the text is one. Null comes before everything.
[[nodiscard]] int CompareValues(const Value& a, const Value& b);

}  // namespace ado
