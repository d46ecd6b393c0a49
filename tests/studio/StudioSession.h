#pragma once

#include <memory>
#include <QSettings>
#include <QStringList>
#include <QWidget>
#include <type_traits>

#include "studio/AddInSet.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

class QTableView;

/// The studio as its program makes it, with the add-ins of the build, from its start to its end.
/// The editor and its grid are seen from outside only: by object names and properties.
class StudioSession {
public:
    /// `folder` holds the station's registry and the window's state from one session to the next.
    StudioSession(const QString& folder, int lcid);
    ~StudioSession();  // closes the window as the user does

    [[nodiscard]] studio::StudioWindow& Window() { return *window_; }
    /// Null before the first use.
    [[nodiscard]] QWidget* Editor() const;
    /// Of the project in front.
    template <typename Widget>
    [[nodiscard]] Widget* Find(const QString& name) const {
        const QList<Widget*> all = window_->findChildren<Widget*>(name);
        if constexpr (std::is_base_of_v<QWidget, Widget>) {
            for (Widget* one : all) {
                if (one->isVisibleTo(window_.get())) return one;
            }
        }
        return all.value(0);
    }

    // --- the project's tree
    [[nodiscard]] QStringList ArchiveNodes() const;
    [[nodiscard]] QString KeyOf(const QString& archive) const;
    /// Clicks the node of an archive, or that of all archives for an empty name, and leaves the
    /// keyboard there.
    void ClickNode(const QString& archive = {});
    /// Where the node is in the tree's viewport.
    [[nodiscard]] QPoint NodePoint(const QString& archive) const;

private:
    std::unique_ptr<QSettings> state_;
    studio::StudioRegistry registry_;
    studio::AddInSet addIns_;
    std::unique_ptr<studio::StudioWindow> window_;
};

/// One split of the editor's grid.
class GridPart {
public:
    GridPart(const StudioSession& session, int split);

    [[nodiscard]] QTableView& View() const { return *view_; }
    /// A column by its field, with the properties Width, Visible, Order and Caption.
    [[nodiscard]] QObject* Column(const QString& field) const;
    [[nodiscard]] QStringList ShownFields() const;  // from left to right
    [[nodiscard]] int RowCount() const;
    /// -1 when there is none.
    [[nodiscard]] int RowOf(const QString& name) const;
    [[nodiscard]] QString Cell(int row, const QString& field) const;
    [[nodiscard]] QStringList Names() const;
    [[nodiscard]] QString CurrentName() const;
    [[nodiscard]] int SelectedCount() const;

    void ClickCell(int row, const QString& field, Qt::KeyboardModifiers held = {}) const;
    void ClickRecord(int row, Qt::KeyboardModifiers held = {}) const;
    /// Types a text over a cell, with Enter at its end.
    void Overwrite(int row, const QString& field, const QString& text) const;
    /// Drags the right edge of a heading.
    void Widen(const QString& field, int pixels) const;
    /// Drags a heading in front of another.
    void MoveBefore(const QString& field, const QString& other) const;

private:
    [[nodiscard]] int IndexOf(const QString& field) const;

    QTableView* view_;
    QObject* split_ = nullptr;
};
