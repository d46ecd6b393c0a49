#pragma once

#include <QString>

namespace projectdb {

/// The three panels of the editor window's status bar.
class IStatusPanels {
public:
    virtual ~IStatusPanels() = default;

    // Panels count from 1.
    [[nodiscard]] virtual QString PanelText(int panel) const = 0;
    virtual void SetPanelText(int panel, const QString& text) = 0;
};

/// How many archives and trends the function that ran last has handled. Every change is shown in
/// the status bar, in the same words whatever the interface language is: "Func: Delete",
/// "Archive:1", "Trends:12". The first panel is written only when its text changes.
class FunctionCounters {
public:
    /// `status` is borrowed.
    explicit FunctionCounters(IStatusPanels& status) : status_(status) {}

    void Add(const QString& function, int archives, int trends);
    void Reset(const QString& function) { Set(function, 0, 0); }
    void Set(const QString& function, int archives, int trends);

    [[nodiscard]] int Archives() const noexcept { return archives_; }
    [[nodiscard]] int Trends() const noexcept { return trends_; }

private:
    IStatusPanels& status_;
    int archives_ = 0;
    int trends_ = 0;
};

}  // namespace projectdb
