#include "report/Connect.h"

#include <QCoreApplication>
#include <QWidget>
#include <utility>

#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "report/ReportTexts.h"
#include "report/ReportWindow.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr auto kTrendReport = "KVTrend"_L1;
}

Connect::Connect(QObject* parent) : QObject(parent) {
    // A window without an owner must not outlive the application.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        for (const QPointer<ReportWindow>& window : std::exchange(windows_, {})) {
            delete window.data();
        }
    });
}

Connect::~Connect() = default;

ReportWindow* Connect::Window() const {
    return window_;
}

void Connect::Show(qulonglong windowHandle, const QString& projectPath, const QString& report) {
    QWidget* owner = QWidget::find(static_cast<WId>(windowHandle));
    guard::Guard(u"KVProjectReport: Show"_s, [&] { ShowReport(owner, projectPath, report); });
}

void Connect::ShowReport(QWidget* owner, const QString& projectPath, const QString& report) {
    if (report.compare(kTrendReport, Qt::CaseInsensitive) != 0) {
        const ReportTexts texts(registry_);
        messages::ShowMessage(texts(Text::UnknownReport, {{u"name", report}}),
                              messages::MessageButtons::Ok, texts(Text::ReportTitle), owner);
        return;
    }
    windows_.removeIf(
        [](QHash<QString, QPointer<ReportWindow>>::iterator it) { return !it.value(); });
    QPointer<ReportWindow> window = windows_.value(projectPath);
    if (window && window->parentWidget() != owner) delete window.data();
    const bool isNew = !window;
    if (isNew) {
        window = new ReportWindow(registry_, projectPath, owner);
        windows_.insert(projectPath, window);
        connect(window, &ReportWindow::RowChosen, this,
                [this, projectPath](const QString& table, int id, const QString& column) {
                    emit RowChosen(projectPath, table, id, column);
                });
    }
    window_ = window;
    if (!window->Read()) {
        if (isNew) delete window.data();
        return;
    }
    window->show();
    window->raise();
    window->activateWindow();
}

}  // namespace report
