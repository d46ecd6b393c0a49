#include "commands/DuplicateName.h"

#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;

QString Joined(QString begin, const QString& original, qsizetype limit) {
    // The English text ends without one.
    if (!begin.endsWith(u' ')) begin += u' ';
    qsizetype length = qMax(qsizetype{0}, limit - begin.size());
    if (length < original.size() && length > 0 && original[length - 1].isHighSurrogate()) --length;
    return (begin + original.left(length)).left(limit);
}

}  // namespace

QString DuplicateName(const QString& original, qsizetype limit, const MResources::TextTable& texts,
                      const std::function<bool(const QString& name)>& isInUse) {
    QString name = Joined(texts.GetText(kTextCopyOf), original, limit);
    for (int n = 2; isInUse(name); ++n) {
        name = Joined(
            texts.GetText(kTextCopyNumber) + QString::number(n) + texts.GetText(kTextCopyNumberOf),
            original, limit);
    }
    return name;
}
