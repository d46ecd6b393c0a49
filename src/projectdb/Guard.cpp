#include "projectdb/Guard.h"

#include <cstdio>
#include <exception>
#include <new>

#include "ado/AdoError.h"
#include "platform/Error.h"
#include "platform/MessageBox.h"
#include "projectdb/Text.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;

Failure Failure::Current() {
    try {
        throw;
    } catch (const ado::AdoError& error) {
        return {error.Number(), ToQString(error.Description())};
    } catch (const platform::Error& error) {
        return {error.Number(), error.Description()};
    } catch (const std::bad_alloc&) {
        return {ado::ErrorNumber::kOutOfMemory, u"Out of memory."_s};
    } catch (const std::exception& error) {
        return {ado::ErrorNumber::kUnspecified, QString::fromUtf8(error.what())};
    } catch (...) {
        return {ado::ErrorNumber::kUnspecified, u"Unspecified error."_s};
    }
}

void ShowFailure(const QString& procedure, QWidget* owner) noexcept {
    try {
        const Failure failure = Failure::Current();
        platform::ShowMessage(QString::number(failure.number) + u"   "_s + failure.description,
                              platform::MessageButtons::Ok, procedure, owner);
    } catch (...) {
        std::fputs("A failure could not be shown.\n", stderr);
    }
}

}  // namespace projectdb
