#include "report/Connect.h"

#include <QCoreApplication>
#include <QWidget>

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
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { delete window_.data(); });
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
    if (window_ && (window_->ProjectPath() != projectPath || window_->parentWidget() != owner)) {
        delete window_.data();
    }
    const bool isNew = !window_;
    if (isNew) {
        window_ = new ReportWindow(registry_, projectPath, owner);
        connect(window_, &ReportWindow::RowChosen, this, &Connect::RowChosen);
    }
    if (!window_->Read()) {
        if (isNew) delete window_.data();
        return;
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

}  // namespace report
