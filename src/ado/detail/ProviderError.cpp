#include "ado/detail/ProviderError.h"

namespace ado {

void ThrowStatus(const jet::Status& status, const std::string& file) {
    throw AdoError(ErrorNumber::kUnspecified, "\"" + file + "\": " + status.Text() + ".");
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
