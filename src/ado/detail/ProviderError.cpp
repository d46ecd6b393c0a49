#include "ado/detail/ProviderError.h"

#include "jet/CauseOf.h"

namespace ado {
namespace {

std::int32_t NumberOf(jet::StatusCode code) {
    switch (code) {
        case jet::StatusCode::BadArgument:
            return ErrorNumber::kWrongType;
        case jet::StatusCode::TooLong:
            return ErrorNumber::kDoesNotFit;
        case jet::StatusCode::Duplicate:
        case jet::StatusCode::Required:
        case jet::StatusCode::Related:
            return ErrorNumber::kIntegrity;
        case jet::StatusCode::NotFound:
            return ErrorNumber::kRowNotLocated;
        case jet::StatusCode::Unsupported:
            return ErrorNumber::kFeatureNotAvailable;
        default:
            return ErrorNumber::kUnspecified;
    }
}

}  // namespace

void ThrowStatus(const jet::Status& status, const std::string& file) {
    throw AdoError(NumberOf(status.Code()), "\"" + file + "\": " + status.Text() + ".",
                   {jet::CauseOf(status.Code()), file});
}

void ThrowNotOpened(const jet::Status& status, const std::string& file,
                    const std::string& description) {
    throw AdoError(ErrorNumber::kUnspecified, description,
                   {jet::CauseOfOpening(status.Code()), file});
}

void ThrowNotMade(const jet::Status& status, const std::string& file) {
    throw AdoError(ErrorNumber::kUnspecified, "\"" + file + "\": " + status.Text() + ".",
                   {jet::CauseOfMaking(status.Code()), file});
}

void ThrowNoCurrentRecord() {
    throw AdoError(ErrorNumber::kNoCurrentRecord,
                   "Either BOF or EOF is true, or the current row has been deleted. The operation "
                   "needs a current row.",
                   {reasons::Cause::RowGone});
}

void ThrowSyntax(const std::string& text, const std::string& what) {
    throw AdoError(ErrorNumber::kSyntax, "Syntax error: " + what + " in \"" + text + "\".");
}

}  // namespace ado
