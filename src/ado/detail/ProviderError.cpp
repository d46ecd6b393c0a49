#include "ado/detail/ProviderError.h"

namespace ado {

void ThrowStatus(const jet::Status& status, const std::string& file) {
    std::int32_t number = ErrorNumber::kUnspecified;
    switch (status.Code()) {
        case jet::StatusCode::BadArgument:
            number = ErrorNumber::kWrongType;
            break;
        case jet::StatusCode::TooLong:
            number = ErrorNumber::kDoesNotFit;
            break;
        case jet::StatusCode::Duplicate:
        case jet::StatusCode::Required:
        case jet::StatusCode::Related:
            number = ErrorNumber::kIntegrity;
            break;
        case jet::StatusCode::NotFound:
            number = ErrorNumber::kRowNotLocated;
            break;
        case jet::StatusCode::Unsupported:
            number = ErrorNumber::kFeatureNotAvailable;
            break;
        default:
            break;
    }
    throw AdoError(number, "\"" + file + "\": " + status.Text() + ".");
}

void ThrowNoCurrentRecord() {
    throw AdoError(ErrorNumber::kNoCurrentRecord,
                   "Either BOF or EOF is true, or the current row has been deleted. The operation "
                   "needs a current row.");
}

void ThrowSyntax(const std::string& text, const std::string& what) {
    throw AdoError(ErrorNumber::kSyntax, "Syntax error: " + what + " in \"" + text + "\".");
}

}  // namespace ado
