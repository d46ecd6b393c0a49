#pragma once

#include <memory>
#include <QAbstractItemModel>
#include <QCollator>
#include <QHash>
#include <QIcon>
#include <vector>

#include "KV4AddIn/KV4AddIn.h"

namespace studio {

/// The nodes of the project tree, found by their keys. One column.
///
/// The children of a node are sorted by text in natural order ("Tank 2" before "Tank 10"), unless
/// the node is flagged as ordered; then, and on the top level, they stay as they were added and a
/// given position counts. The studio's own top-level nodes come before all that add-ins add, so
/// position 0 is the place right behind them.
class ProjectTreeModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    static constexpr int kKeyRole = Qt::UserRole;

    explicit ProjectTreeModel(QObject* parent = nullptr);
    ~ProjectTreeModel() override;

    void RegisterIcon(const QString& iconKey, const QIcon& picture);
    /// Adds a node of the studio itself to the top level; add-ins cannot remove it.
    bool AddOwn(const QString& text, const QString& key, const QString& iconKey);
    /// The operations of KV4AddIn::IHost.
    bool Add(const QString& parentKey, const QString& text, const QString& key,
             const QString& position, const QString& iconKey, const KV4AddIn::NodeFlags& flags);
    bool Remove(const QString& key);
    bool Refresh(const QString& key, const std::optional<QString>& text,
                 const std::optional<QString>& iconKey);
    /// An empty `key` asks for the top level.
    [[nodiscard]] std::optional<QStringList> ChildKeys(const QString& key) const;
    /// Removes all nodes and icons.
    void Clear();

    /// An invalid index for an unknown key.
    [[nodiscard]] QModelIndex IndexOf(const QString& key) const;
    [[nodiscard]] std::optional<KV4AddIn::Node> NodeAt(const QModelIndex& index) const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// The user's new text of an editable node; refused when it is blank.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    struct Item;
    using Items = std::vector<std::unique_ptr<Item>>;

    [[nodiscard]] Item* Find(const QString& key) const;
    [[nodiscard]] Item* ItemOf(const QModelIndex& index) const;
    [[nodiscard]] int RowOf(const Item& item) const;
    [[nodiscard]] QModelIndex IndexOf(const Item& item) const;
    [[nodiscard]] int PlaceFor(const Item& parent, const QString& text,
                               const QString& position) const;
    void Insert(Item& parent, int row, std::unique_ptr<Item> item);
    void SetText(Item& item, const QString& text);
    void SortChildren(Item& item);
    void Forget(const Item& item);

    QCollator collator_;
    std::unique_ptr<Item> root_;
    QHash<QString, Item*> byKey_;  // every item but the root
    QHash<QString, QIcon> icons_;
};

}  // namespace studio
