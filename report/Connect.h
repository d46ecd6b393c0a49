#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

#include "platform/Registry.h"

namespace report {

class ReportWindow;

/// The report add-in as others call it: by its name "KVProjectReport.Connect" and late bound.
class Connect : public QObject {
    Q_OBJECT
public:
    explicit Connect(QObject* parent = nullptr);
    ~Connect() override;

    /// Shows the report of a project in a window of its own. `windowHandle` is the window that
    /// asks (0: none); the report stays above it and goes with it. `projectPath` is the project
    /// file, with backslashes or native. `report` names the report: "KVTrend" is the only one. Each
    /// project has a window of its own; one that is there already is read again and brought to the
    /// front.
    /// Throws nothing; what goes wrong is shown to the user.
    Q_INVOKABLE void Show(qulonglong windowHandle, const QString& projectPath,
                          const QString& report);

signals:
    /// The user wants to see a row of a project, named as it was for Show: table, ID, column
    /// (empty: none). Whoever has called Show may be able to show it.
    void RowChosen(const QString& projectPath, const QString& table, int id, const QString& column);

public:
    /// The window shown last, while it is there.
    [[nodiscard]] ReportWindow* Window() const;

private:
    void ShowReport(QWidget* owner, const QString& projectPath, const QString& report);

    platform::Registry registry_;
    QHash<QString, QPointer<ReportWindow>> windows_;  // by project
    QPointer<ReportWindow> window_;                   // shown last
};

}  // namespace report
