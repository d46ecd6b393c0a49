#pragma once

#include <memory>
#include <optional>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include "KV4AddIn/KV4AddIn.h"

class QWidget;

namespace studio {

class StudioTexts;
class VariableCatalog;

/// Lets the user choose process variables of the open project.
class IVariableBrowser {
public:
    virtual ~IVariableBrowser() = default;
    /// As KV4AddIn::IVariableHost::ChooseVariables.
    [[nodiscard]] virtual std::optional<QStringList> Choose(
        QWidget* owner, const KV4AddIn::VariableChoice& choice) = 0;
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

    [[nodiscard]] std::optional<QStringList> Choose(
        QWidget* owner, const KV4AddIn::VariableChoice& choice) override;

private:
    void Prepare();

    const StudioTexts& texts_;
    QString project_;
    std::unique_ptr<VariableCatalog> catalog_;  // null until the first use
    QDateTime readAt_;                          // time of the file when it was read
};

}  // namespace studio
