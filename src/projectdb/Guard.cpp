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

namespace {

constexpr std::int32_t kOutOfMemory = -2147024882;  // 0x8007000E

}  // namespace

Failure Failure::Current() {
    try {
        throw;
    } catch (const ado::AdoError& error) {
        return {error.Number(), ToQString(error.Description())};
    } catch (const platform::Error& error) {
        return {error.Number(), error.Description()};
    } catch (const std::bad_alloc&) {
        return {kOutOfMemory, u"Out of memory."_s};
    } catch (const std::exception& error) {
        return {ado::ErrorNumber::kUnspecified, QString::fromUtf8(error.what())};
    } catch (...) {
        return {ado::ErrorNumber::kUnspecified, u"Unspecified error."_s};
    }
}

QString Failure::Text() const {
    return QString::number(number) + u"   "_s + description;
}

void ShowFailure(const QString& procedure, QWidget* owner) noexcept {
    try {
        platform::ShowMessage(Failure::Current().Text(), platform::MessageButtons::Ok, procedure,
                              owner);
    } catch (...) {
        std::fputs("A failure could not be shown.\n", stderr);
    }
}

}  // namespace projectdb
