#include "report/Section.h"

#include <algorithm>
#include <QStringList>

#include "projectdb/Text.h"

namespace report {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;

namespace {

constexpr auto kAddressPrefix = "section:"_L1;
constexpr auto kRowPrefix = "row:"_L1;

}  // namespace

QString Section::Address() const {
    return kAddressPrefix + Anchor().mid(1);
}

QString Section::Anchor() const {
    return u"s%1-%2-%3"_s.arg(static_cast<int>(kind)).arg(archive).arg(first);
}

Section Section::FromAddress(const QString& address) {
    if (!address.startsWith(kAddressPrefix)) return {};
    const QStringList parts = address.mid(kAddressPrefix.size()).split(u'-');
    if (parts.size() != 3) return {};
    const int kind = std::clamp(parts[0].toInt(), 0, static_cast<int>(Kind::Differences));
    return {static_cast<Kind>(kind), parts[1].toULong(), parts[2].toULong()};
}

QString RowAddress(std::string_view table, std::int32_t id, std::string_view column) {
    return kRowPrefix + ToQString(table) + u'/' + QString::number(id) + u'/' + ToQString(column);
}

std::optional<RowPlace> RowPlaceOf(const QString& address) {
    if (!address.startsWith(kRowPrefix)) return std::nullopt;
    const QStringList parts = address.mid(kRowPrefix.size()).split(u'/');
    if (parts.size() != 3) return std::nullopt;
    return RowPlace{parts[0], parts[1].toInt(), parts[2]};
}

}  // namespace report
