#include "ado/detail/Expression.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "ado/detail/Convert.h"
#include "ado/detail/ExactNumber.h"
#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace ado {
namespace {

using Kind = Expression::Kind;
using Operator = Expression::Operator;

// Deeper nesting is refused: every level is a level of the program's stack.
constexpr int kMaxDepth = 100;

class Parser {
public:
    explicit Parser(Lexer& lexer) : lexer_(lexer) {}

    std::unique_ptr<Expression> ParseOr() {
        if (++depth_ > kMaxDepth) lexer_.Fail("too many nested conditions");
        auto result = ParseList(Kind::Or, "OR", [this] {
            return ParseList(Kind::And, "AND", [this] { return ParseCondition(); });
        });
        --depth_;
        return result;
    }

private:
    template <typename ParsePart>
    std::unique_ptr<Expression> ParseList(Kind kind, std::string_view word, ParsePart parsePart) {
        auto first = parsePart();
        if (!lexer_.IsKeyword(word)) return first;
        auto list = std::make_unique<Expression>();
        list->kind = kind;
        list->parts.push_back(std::move(first));
        while (lexer_.TakeKeyword(word)) list->parts.push_back(parsePart());
        return list;
    }

    std::unique_ptr<Expression> ParseCondition() {
        if (lexer_.TakeKeyword("NOT")) {
            if (++depth_ > kMaxDepth) lexer_.Fail("too many nested conditions");
            auto result = Negate(ParseCondition());
            --depth_;
            return result;
        }
        if (lexer_.TakeSymbol("(")) {
            auto inside = ParseOr();
            lexer_.ExpectSymbol(")");
            return inside;
        }
        return ParseComparison();
    }

    std::unique_ptr<Expression> ParseComparison() {
        auto result = std::make_unique<Expression>();
        result->left = ParseOperand();
        if (lexer_.TakeKeyword("IS")) {
            const bool negated = lexer_.TakeKeyword("NOT");
            lexer_.ExpectKeyword("NULL");
            return NullTest(std::move(result), negated);
        }
        result->op = ParseOperator();
        if (lexer_.TakeKeyword("NULL")) {
            if (result->op != Operator::Equal && result->op != Operator::NotEqual) {
                lexer_.Fail("Null in an order comparison");
            }
            const bool negated = result->op == Operator::NotEqual;
            return NullTest(std::move(result), negated);
        }
        result->right = ParseOperand();
        return result;
    }

    Operator ParseOperator() {
        constexpr std::array<std::pair<std::string_view, Operator>, 6> kOperators = {
            {{"=", Operator::Equal},
             {"<>", Operator::NotEqual},
             {"<", Operator::Less},
             {"<=", Operator::LessOrEqual},
             {">", Operator::Greater},
             {">=", Operator::GreaterOrEqual}}};
        for (const auto& [symbol, op] : kOperators) {
            if (lexer_.TakeSymbol(symbol)) return op;
        }
        if (!lexer_.TakeKeyword("LIKE")) lexer_.Fail("a missing operator");
        return Operator::Like;
    }

    Operand ParseOperand() {
        Operand operand;
        if (lexer_.Current().kind == Token::Kind::Constant) {
            operand.constant = lexer_.Current().value;
            operand.number = jet::ToUtf16(lexer_.Current().text);
            lexer_.Advance();
        } else if (lexer_.TakeKeyword("TRUE")) {
            operand.constant = true;
        } else if (lexer_.TakeKeyword("FALSE")) {
            operand.constant = false;
        } else {
            operand.isColumn = true;
            operand.column.name = lexer_.ExpectName("column or value");
            if (lexer_.TakeSymbol(".")) {
                operand.column.qualifier = std::move(operand.column.name);
                operand.column.name = lexer_.ExpectName("column");
            }
        }
        return operand;
    }

    static std::unique_ptr<Expression> Negate(std::unique_ptr<Expression> inside) {
        auto result = std::make_unique<Expression>();
        result->kind = Kind::Not;
        result->parts.push_back(std::move(inside));
        return result;
    }

    static std::unique_ptr<Expression> NullTest(std::unique_ptr<Expression> test, bool negated) {
        test->kind = Kind::IsNull;
        return negated ? Negate(std::move(test)) : std::move(test);
    }

    Lexer& lexer_;
    int depth_ = 0;
};

/// The pattern's `*` (or `%`) stands for any text, at its beginning, its end, or in between.
bool MatchesPattern(std::u16string_view text, std::u16string_view pattern) {
    // Greedy with one point of return: enough, since a later star makes an earlier one final.
    std::size_t t = 0;
    std::size_t p = 0;
    std::optional<std::size_t> starAt;
    std::size_t starText = 0;
    while (t < text.size()) {
        const bool isStar = p < pattern.size() && (pattern[p] == u'*' || pattern[p] == u'%');
        if (isStar) {
            starAt = p++;
            starText = t;
        } else if (p < pattern.size() && jet::SameUnit(text[t], pattern[p])) {
            ++t;
            ++p;
        } else if (starAt) {
            p = *starAt + 1;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && (pattern[p] == u'*' || pattern[p] == u'%')) ++p;
    return p == pattern.size();
}

/// Keys speak of 255 units at most, so longer texts are compared piece by piece.
int CompareTexts(std::u16string_view a, std::u16string_view b) {
    constexpr std::size_t kPiece = 255;
    for (;;) {
        std::string keyA;
        std::string keyB;
        jet::AppendTextKey(a.substr(0, kPiece), true, keyA);
        jet::AppendTextKey(b.substr(0, kPiece), true, keyB);
        if (const int order = keyA.compare(keyB); order != 0) return order < 0 ? -1 : 1;
        if (a.size() <= kPiece && b.size() <= kPiece) return 0;
        a.remove_prefix(std::min(kPiece, a.size()));
        b.remove_prefix(std::min(kPiece, b.size()));
    }
}

template <typename T>
int Order(const T& a, const T& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

/// What is no number comes before all numbers and equals itself, so that there is an order.
int OrderOfNumbers(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return Order(!std::isnan(a), !std::isnan(b));
    return Order(a, b);
}

bool IsExact(const Value& value) {
    return std::holds_alternative<Currency>(value) || std::holds_alternative<Decimal>(value);
}

/// Numbers of which one is exact. The digits decide where doubles may deceive.
int OrderOfExact(const Value& a, const Value& b, double numberA, double numberB) {
    constexpr double kNear = 1e-12;
    const double size = std::max(std::abs(numberA), std::abs(numberB));
    const bool isNear = std::abs(numberA - numberB) <= kNear * size;
    const std::optional<int> exact = isNear ? OrderOfDigits(a, b) : std::nullopt;
    return exact ? *exact : OrderOfNumbers(numberA, numberB);
}

/// True, false, or nothing when Null takes part.
std::optional<bool> Evaluate(const Expression& expression, const ColumnReader& read);

std::optional<bool> EvaluateComparison(const Expression& expression, const ColumnReader& read) {
    const auto valueOf = [&](const Operand& operand) {
        return operand.isColumn ? read(operand.column) : operand.constant;
    };
    Value left = valueOf(expression.left);
    Value right = valueOf(expression.right);
    if (IsNull(left) || IsNull(right)) return std::nullopt;
    if (expression.op == Operator::Like) return MatchesPattern(ToText(left), ToText(right));
    if (IsExact(left) && !expression.right.number.empty()) right = expression.right.number;
    if (IsExact(right) && !expression.left.number.empty()) left = expression.left.number;
    const int order = CompareValues(left, right);
    switch (expression.op) {
        case Operator::Equal:
            return order == 0;
        case Operator::NotEqual:
            return order != 0;
        case Operator::Less:
            return order < 0;
        case Operator::LessOrEqual:
            return order <= 0;
        case Operator::Greater:
            return order > 0;
        default:
            return order >= 0;
    }
}

std::optional<bool> Evaluate(const Expression& expression, const ColumnReader& read) {
    switch (expression.kind) {
        case Kind::And:
        case Kind::Or: {
            const bool decides = expression.kind == Kind::Or;
            bool unknown = false;
            for (const auto& part : expression.parts) {
                const std::optional<bool> value = Evaluate(*part, read);
                if (value == decides) return decides;
                unknown = unknown || !value;
            }
            return unknown ? std::nullopt : std::optional(!decides);
        }
        case Kind::Not: {
            const std::optional<bool> value = Evaluate(*expression.parts.front(), read);
            return value ? std::optional(!*value) : std::nullopt;
        }
        case Kind::IsNull:
            return expression.left.isColumn ? IsNull(read(expression.left.column))
                                            : IsNull(expression.left.constant);
        case Kind::Compare:
            break;
    }
    return EvaluateComparison(expression, read);
}

}  // namespace

std::unique_ptr<Expression> ParseExpression(Lexer& lexer) {
    return Parser(lexer).ParseOr();
}

std::unique_ptr<Expression> ParseCriteria(std::string_view text) {
    Lexer lexer(text);
    auto expression = ParseExpression(lexer);
    if (lexer.Current().kind != Token::Kind::End) lexer.Fail("something behind the condition");
    return expression;
}

std::vector<const Expression*> Conjuncts(const Expression& expression) {
    std::vector<const Expression*> result;
    if (expression.kind == Kind::Compare || expression.kind == Kind::IsNull) {
        result.push_back(&expression);
    } else if (expression.kind == Kind::And) {
        for (const auto& part : expression.parts) {
            const auto inner = Conjuncts(*part);
            result.insert(result.end(), inner.begin(), inner.end());
        }
    }
    return result;
}

void ForEachColumn(Expression& expression, const std::function<void(Operand&)>& visit) {
    for (const auto& part : expression.parts) ForEachColumn(*part, visit);
    if (expression.kind != Kind::Compare && expression.kind != Kind::IsNull) return;
    for (Operand* operand : {&expression.left, &expression.right}) {
        if (operand->isColumn) visit(*operand);
    }
}

bool Holds(const Expression& expression, const ColumnReader& read) {
    return Evaluate(expression, read) == true;
}

int CompareValues(const Value& a, const Value& b) {
    if (IsNull(a) || IsNull(b)) return Order(!IsNull(a), !IsNull(b));
    const auto* textA = std::get_if<std::u16string>(&a);
    const auto* textB = std::get_if<std::u16string>(&b);
    if (const auto* amount = std::get_if<Currency>(&a)) {
        if (const auto* other = std::get_if<Currency>(&b)) return Order(*amount, *other);
    }
    if (textA == nullptr || textB == nullptr) {
        const std::optional<double> numberA = AsNumber(a);
        const std::optional<double> numberB = AsNumber(b);
        if (numberA && numberB && (IsExact(a) || IsExact(b))) {
            return OrderOfExact(a, b, *numberA, *numberB);
        }
        if (numberA && numberB) return OrderOfNumbers(*numberA, *numberB);
        if (a.index() == b.index()) {
            if (const auto* bytes = std::get_if<Binary>(&a)) {
                return Order(*bytes, std::get<Binary>(b));
            }
            if (const auto* guid = std::get_if<Guid>(&a)) return Order(*guid, std::get<Guid>(b));
        }
    }
    return CompareTexts(ToText(a), ToText(b));
}

}  // namespace ado
