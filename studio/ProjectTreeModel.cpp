#include "studio/ProjectTreeModel.h"

#include <algorithm>

namespace studio {

using KV4AddIn::Node;
using KV4AddIn::NodeFlags;

struct ProjectTreeModel::Item {
    Item(Item* itemParent, QString itemKey, QString itemText, const QCollatorSortKey& itemSortKey)
        : parent(itemParent),
          key(std::move(itemKey)),
          text(std::move(itemText)),
          sortKey(itemSortKey) {}

    Item* parent;
    QString key;
    QString text;
    QCollatorSortKey sortKey;
    QString iconKey;
    NodeFlags flags;
    bool own = false;         // the studio's
    mutable int rowHint = 0;  // the row when last asked; RowOf verifies it
    Items children;
};

ProjectTreeModel::ProjectTreeModel(QObject* parent)
    : QAbstractItemModel(parent), collator_(QLocale(QLocale::German)) {
    collator_.setNumericMode(true);
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
    root_ = std::make_unique<Item>(nullptr, QString(), QString(), collator_.sortKey(QString()));
    root_->flags.ordered = true;
}

ProjectTreeModel::~ProjectTreeModel() = default;

void ProjectTreeModel::RegisterIcon(const QString& iconKey, const QIcon& picture) {
    const bool replaces = icons_.contains(iconKey);
    icons_.insert(iconKey, picture);
    if (!replaces) return;
    for (const Item* item : std::as_const(byKey_)) {
        if (item->iconKey != iconKey) continue;
        const QModelIndex shown = IndexOf(*item);
        emit dataChanged(shown, shown, {Qt::DecorationRole});
    }
}

bool ProjectTreeModel::AddOwn(const QString& text, const QString& key, const QString& iconKey) {
    if (key.isEmpty() || byKey_.contains(key)) return false;
    auto item = std::make_unique<Item>(root_.get(), key, text, collator_.sortKey(text));
    item->iconKey = iconKey;
    item->flags.permanent = true;
    item->own = true;
    Insert(*root_, PlaceFor(*root_, text, QStringLiteral("0")), std::move(item));
    return true;
}

bool ProjectTreeModel::Add(const QString& parentKey, const QString& text, const QString& key,
                           const QString& position, const QString& iconKey,
                           const NodeFlags& flags) {
    Item* parent = parentKey.isEmpty() ? root_.get() : Find(parentKey);
    if (parent == nullptr || key.isEmpty() || byKey_.contains(key)) return false;
    auto item = std::make_unique<Item>(parent, key, text, collator_.sortKey(text));
    item->iconKey = iconKey;
    item->flags = flags;
    Insert(*parent, PlaceFor(*parent, text, position), std::move(item));
    return true;
}

bool ProjectTreeModel::Remove(const QString& key) {
    Item* item = Find(key);
    if (item == nullptr || item->own) return false;
    Item& parent = *item->parent;
    const int row = RowOf(*item);
    beginRemoveRows(IndexOf(parent), row, row);
    Forget(*item);
    parent.children.erase(parent.children.begin() + row);
    endRemoveRows();
    return true;
}

bool ProjectTreeModel::Refresh(const QString& key, const std::optional<QString>& text,
                               const std::optional<QString>& iconKey) {
    Item* item = Find(key);
    if (item == nullptr) return false;
    if (iconKey) item->iconKey = *iconKey;
    if (text) SetText(*item, *text);
    if (!text && !iconKey) SortChildren(*item);
    const QModelIndex shown = IndexOf(*item);
    emit dataChanged(shown, shown);
    return true;
}

std::optional<QStringList> ProjectTreeModel::ChildKeys(const QString& key) const {
    const Item* item = key.isEmpty() ? root_.get() : Find(key);
    if (item == nullptr || item->children.empty()) return std::nullopt;
    QStringList keys;
    keys.reserve(static_cast<qsizetype>(item->children.size()));
    for (const auto& child : item->children) keys.append(child->key);
    return keys;
}

void ProjectTreeModel::Clear() {
    beginResetModel();
    root_->children.clear();
    byKey_.clear();
    icons_.clear();
    endResetModel();
}

QModelIndex ProjectTreeModel::IndexOf(const QString& key) const {
    const Item* item = Find(key);
    return item != nullptr ? IndexOf(*item) : QModelIndex();
}

std::optional<Node> ProjectTreeModel::NodeAt(const QModelIndex& index) const {
    if (!index.isValid()) return std::nullopt;
    const Item& item = *ItemOf(index);
    return Node{item.parent->key, item.key, item.text};
}

QModelIndex ProjectTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, ItemOf(parent)->children[static_cast<std::size_t>(row)].get());
}

QModelIndex ProjectTreeModel::parent(const QModelIndex& child) const {
    return child.isValid() ? IndexOf(*ItemOf(child)->parent) : QModelIndex();
}

int ProjectTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    return static_cast<int>(ItemOf(parent)->children.size());
}

int ProjectTreeModel::columnCount(const QModelIndex& /*parent*/) const {
    return 1;
}

bool ProjectTreeModel::hasChildren(const QModelIndex& parent) const {
    const Item& item = *ItemOf(parent);
    return !item.children.empty() || item.flags.expandable;
}

QVariant ProjectTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Item& item = *ItemOf(index);
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return item.text;
        case Qt::DecorationRole:
            return icons_.value(item.iconKey);
        case kKeyRole:
            return item.key;
        default:
            return {};
    }
}

Qt::ItemFlags ProjectTreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (ItemOf(index)->flags.editable) result |= Qt::ItemIsEditable;
    return result;
}

bool ProjectTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const QString text = value.toString().trimmed();
    if (!index.isValid() || role != Qt::EditRole || text.isEmpty()) return false;
    SetText(*ItemOf(index), text);
    return true;
}

ProjectTreeModel::Item* ProjectTreeModel::Find(const QString& key) const {
    return byKey_.value(key, nullptr);
}

ProjectTreeModel::Item* ProjectTreeModel::ItemOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Item*>(index.internalPointer()) : root_.get();
}

int ProjectTreeModel::RowOf(const Item& item) const {
    const Items& siblings = item.parent->children;
    const auto hint = static_cast<std::size_t>(item.rowHint);
    if (hint >= siblings.size() || siblings[hint].get() != &item) {
        // One pass sets the hints of all siblings right, so that asking for each of a thousand
        // after a change costs one pass and not a thousand.
        for (std::size_t row = 0; row < siblings.size(); ++row) {
            siblings[row]->rowHint = static_cast<int>(row);
        }
    }
    return item.rowHint;
}

QModelIndex ProjectTreeModel::IndexOf(const Item& item) const {
    if (&item == root_.get()) return {};
    return createIndex(RowOf(item), 0, const_cast<Item*>(&item));
}

int ProjectTreeModel::PlaceFor(const Item& parent, const QString& text,
                               const QString& position) const {
    const Items& siblings = parent.children;
    if (!parent.flags.ordered) {
        const QCollatorSortKey sortKey = collator_.sortKey(text);
        const auto place = std::upper_bound(
            siblings.begin(), siblings.end(), sortKey,
            [](const QCollatorSortKey& key, const auto& item) { return key < item->sortKey; });
        return static_cast<int>(place - siblings.begin());
    }
    const auto count = static_cast<int>(siblings.size());
    bool isNumber = false;
    const int wanted = position.trimmed().toInt(&isNumber);
    if (!isNumber || wanted < 0) return count;
    const auto own = static_cast<int>(std::count_if(siblings.begin(), siblings.end(),
                                                    [](const auto& item) { return item->own; }));
    return wanted < count - own ? own + wanted : count;
}

void ProjectTreeModel::Insert(Item& parent, int row, std::unique_ptr<Item> item) {
    item->rowHint = row;
    beginInsertRows(IndexOf(parent), row, row);
    byKey_.insert(item->key, item.get());
    parent.children.insert(parent.children.begin() + row, std::move(item));
    endInsertRows();
}

void ProjectTreeModel::SetText(Item& item, const QString& text) {
    item.text = text;
    item.sortKey = collator_.sortKey(text);
    if (!item.parent->flags.ordered) SortChildren(*item.parent);
    const QModelIndex shown = IndexOf(item);
    emit dataChanged(shown, shown);
}

void ProjectTreeModel::SortChildren(Item& item) {
    const auto less = [](const auto& a, const auto& b) { return a->sortKey < b->sortKey; };
    Items& children = item.children;
    if (item.flags.ordered || std::is_sorted(children.begin(), children.end(), less)) return;
    const QList<QPersistentModelIndex> parents{QPersistentModelIndex(IndexOf(item))};
    emit layoutAboutToBeChanged(parents, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::stable_sort(children.begin(), children.end(), less);
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) after.append(IndexOf(*ItemOf(index)));
    changePersistentIndexList(before, after);
    emit layoutChanged(parents, QAbstractItemModel::VerticalSortHint);
}

void ProjectTreeModel::Forget(const Item& item) {
    byKey_.remove(item.key);
    for (const auto& child : item.children) Forget(*child);
}

}  // namespace studio
