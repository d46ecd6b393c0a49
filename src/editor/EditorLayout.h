#pragma once

#include <memory>
#include <optional>
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <utility>

#include "platform/Locale.h"
#include "settings/InitValue.h"

class CInit;
class FontProperties;
class frmtabGrid;
class QWidget;
namespace platform {
class Registry;
}

/// The layout of the editor window and the user's options, as the settings file beside the project
/// keeps them: when they are read, applied, taken back from the window and written.
class EditorLayout {
public:
    /// `window` is borrowed; its controls exist when Apply is called.
    explicit EditorLayout(frmtabGrid& window);
    ~EditorLayout();
    EditorLayout(const EditorLayout&) = delete;
    EditorLayout& operator=(const EditorLayout&) = delete;

    [[nodiscard]] CInit& Settings() noexcept { return *settings_; }

    /// The built-in layout, and width and place of each trend column.
    void LoadDefaults();
    /// The file in the folder of the project (a path in the form with backslashes).
    void LoadFile(const QString& projectPath);
    /// The text language that the settings file names, which the project need not have; nothing
    /// when it names none.
    [[nodiscard]] std::optional<platform::Lcid> StoredLcid() const;
    /// The values that another window of the same project had. What this one does not know is
    /// passed over.
    void Continue(const QList<std::pair<QString, InitValue>>& settings);
    /// Gives grid and window the values that are in force.
    void Apply();
    /// Brings the trend columns into the order that is in force.
    void ApplyColumnOrders();
    /// Takes the order of the trend columns, and which of them are shown, into the settings.
    void TakeColumnOrders();

    /// Takes the layout of the window over; all values that are in force then.
    [[nodiscard]] QList<std::pair<QString, InitValue>> Take(platform::Lcid currentLcid);
    /// Takes the layout of the window over and writes it, or, when the user does not want it
    /// saved, only that choice. `currentLcid` 0: the project has no language, and none is written.
    /// Throws platform::Error.
    void Save(platform::Lcid currentLcid);

    // The window's state (0 normal, 1 minimised, 2 maximised), place and size in twips. While the
    // host lays the window out these are only kept.
    [[nodiscard]] int WindowState() const;
    void SetWindowState(int state);
    [[nodiscard]] QPointF Position() const;
    void SetPosition(QPointF twips);
    [[nodiscard]] QSizeF Size() const;
    void SetSize(QSizeF twips);
    [[nodiscard]] QObject* Font() const;

private:
    void EnterOwnDefaults();
    [[nodiscard]] QList<int> OrderByName() const;

    frmtabGrid& window_;
    std::unique_ptr<CInit> settings_;
    std::unique_ptr<FontProperties> font_;
    QString file_;
    QString defaultOrders_;  // of the built-in layout
    bool embedded_ = false;  // since Apply; stays so when the window is taken out at the end
    int state_ = 2;
    QPointF position_;
    QSizeF size_{6000, 3000};
};
