#pragma once

#include <memory>
#include <optional>
#include <QDateTime>
#include <QString>

class QWidget;

namespace studio {

class StudioTexts;
class VariableCatalog;

/// Lets the user choose one process variable of the open project.
class IVariableBrowser {
public:
    virtual ~IVariableBrowser() = default;
    /// As KV4AddIn::IHost::ChooseVariable.
    [[nodiscard]] virtual std::optional<QString> Choose(QWidget* owner, const QString& current) = 0;
};

/// The browser over the variables of the project file. Reads them when it is first used, and again
/// after the file has changed.
class VariableBrowser final : public IVariableBrowser {
public:
    /// `texts` is borrowed; it may change while no browser is open.
    explicit VariableBrowser(const StudioTexts& texts);
    ~VariableBrowser() override;
    VariableBrowser(const VariableBrowser&) = delete;
    VariableBrowser& operator=(const VariableBrowser&) = delete;

    /// Native path of the open project's file; empty: no project, nothing to offer.
    void SetProject(const QString& nativePath);

    [[nodiscard]] std::optional<QString> Choose(QWidget* owner, const QString& current) override;

private:
    void Prepare();

    const StudioTexts& texts_;
    QString project_;
    std::unique_ptr<VariableCatalog> catalog_;  // null until the first use
    QDateTime readAt_;                          // time of the file when it was read
};

}  // namespace studio
