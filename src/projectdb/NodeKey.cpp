#include "projectdb/NodeKey.h"

#include <limits>

namespace projectdb {
namespace {

constexpr qsizetype kKindLength = 4;

}  // namespace

QStringView NodeKind(QStringView key) {
    return key.left(kKindLength);
}

std::int32_t NodeId(QStringView key) {
    QStringView rest = key.mid(kKindLength).trimmed();
    const bool negative = rest.startsWith(u'-');
    if (negative) rest = rest.mid(1);
    std::int64_t id = 0;
    for (const QChar c : rest) {
        if (c < u'0' || c > u'9') break;
        id = id * 10 + (c.unicode() - u'0');
        if (id > std::numeric_limits<std::int32_t>::max()) return 0;
    }
    return static_cast<std::int32_t>(negative ? -id : id);
}

bool IsOwnNode(QStringView key) {
    const QStringView kind = NodeKind(key);
    return kind == kRootKind || kind == kArchiveKind;
}

QString ArchiveNodeKey(std::int32_t archiveId) {
    return kArchiveKind.toString() + QString::number(archiveId);
}

}  // namespace projectdb
