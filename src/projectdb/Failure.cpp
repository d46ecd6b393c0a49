#include "projectdb/Failure.h"

#include <exception>
#include <new>

#include "ado/AdoError.h"
#include "platform/Error.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/Language.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::int32_t kOutOfMemory = -2147024882;  // 0x8007000E

/// Whether the reason is about what a field was to hold, and names its column.
bool NamesField(reasons::Cause cause) {
    using reasons::Cause;
    return cause == Cause::TextTooLong || cause == Cause::NumberTooLarge ||
           cause == Cause::WrongType;
}

/// What the table or the dialog calls the column; empty for one that the user does not know.
QString FieldOf(const std::string& column) {
    const project::Column* known = project::FindTrendColumn(column);
    if (known == nullptr || known->caption == 0) known = project::FindArchiveColumn(column);
    int caption = known != nullptr ? known->caption : 0;
    if (project::IsLanguageColumn(column)) caption = MResourceTable::kTextArchiveDisplayText;
    return caption == 0 ? QString() : texts::InterfaceText(caption).remove(u'&');
}

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
    if (!told.isEmpty()) return told;
    const QString field = NamesField(reason.cause) ? FieldOf(reason.name) : QString();
    if (field.isEmpty()) return texts::ReasonText(reason);
    reasons::Reason named = reason;
    named.name = ToUtf8(field);
    return texts::ReasonText(named);
}

QString Failure::Details() const {
    return QString::number(number) + u"   "_s + description;
}

}  // namespace projectdb
