#include "projectdb/Failure.h"

#include <exception>
#include <new>

#include "ado/AdoError.h"
#include "platform/Error.h"
#include "projectdb/Text.h"
#include "texts/ReasonText.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::int32_t kOutOfMemory = -2147024882;  // 0x8007000E

}  // namespace

Failure Failure::Current() {
    try {
        throw;
    } catch (const HalfDone& failure) {
        return failure.Told();
    } catch (const ado::AdoError& error) {
        return {error.Number(), ToQString(error.Description()), error.Reason()};
    } catch (const platform::Error& error) {
        return {error.Number(), error.Description(), error.Reason()};
    } catch (const std::bad_alloc&) {
        return {kOutOfMemory, u"Out of memory."_s, {reasons::Cause::OutOfMemory}};
    } catch (const std::exception& error) {
        return {ado::ErrorNumber::kUnspecified, QString::fromUtf8(error.what()), {}};
    } catch (...) {
        return {ado::ErrorNumber::kUnspecified, u"Unspecified error."_s, {}};
    }
}

QString Failure::Text() const {
    return told.isEmpty() ? texts::ReasonText(reason) : told;
}

QString Failure::Details() const {
    return QString::number(number) + u"   "_s + description;
}

}  // namespace projectdb
