#include "settings/CInitItems.h"

#include <algorithm>

#include "platform/Fold.h"
#include "settings/CInitItem.h"

namespace {

using namespace Qt::Literals::StringLiterals;

QString KeyOf(QStringView name) {
    QString key = platform::FoldName(name);
    const qsizetype open = key.indexOf(u"(\"");
    if (open >= 0 && key.endsWith(u"\")") && key.size() - open >= 4) {
        key.remove(key.size() - 2, 1).remove(open + 1, 1);
    }
    return key;
}

}  // namespace

CInitItems::CInitItems() = default;
CInitItems::~CInitItems() = default;

CInitItem* CInitItems::Item(QStringView name) const {
    return byName_.value(KeyOf(name));
}

CInitItem& CInitItems::Add(QStringView name) {
    CInitItem*& item = byName_[KeyOf(name)];
    if (item == nullptr) {
        items_.push_back(std::make_unique<CInitItem>(name.toString()));
        item = items_.back().get();
    }
    return *item;
}

void CInitItems::Remove(QStringView name) {
    const CInitItem* item = byName_.take(KeyOf(name));
    std::erase_if(items_, [item](const auto& other) { return other.get() == item; });
}

void CInitItems::Clear() {
    byName_.clear();
    items_.clear();
}
