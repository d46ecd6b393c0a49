#include "guard/Guard.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <QApplication>
#include <QScopeGuard>
#include <QWidget>

#include "ado/FileCheck.h"
#include "projectdb/Text.h"
#include "texts/Fill.h"
#include "texts/Language.h"
#include "texts/MResourceTable.h"

namespace guard {

using namespace Qt::Literals::StringLiterals;
using MResourceTable::Check;
using projectdb::Failure;
using projectdb::ToQString;

namespace {

// Procedures whose names users and their support know as titles.
const QString kTitles[] = {u"ConnectToDataBase"_s, u"Connect: InitTreeView"_s,
                           u"MKVSGlobalEditors: ReadCurrentProject"_s};

/// Another failure bears the title of the window that it has happened in.
QString TitleOf(const QString& procedure) {
    if (std::find(std::begin(kTitles), std::end(kTitles), procedure) != std::end(kTitles)) {
        return procedure;
    }
    const QWidget* window = QApplication::activeWindow();
    return window != nullptr ? window->windowTitle() : QString();
}

QString TextOf(Check text) {
    return texts::InterfaceText(static_cast<int>(text));
}

/// Checks the file as a whole and shows what is wrong with it.
void ShowCheck(const std::string& file, QWidget* owner) noexcept {
    try {
        messages::SetScreenPointer(messages::Pointer::Hourglass);
        const auto done =
            qScopeGuard([] { messages::SetScreenPointer(messages::Pointer::Default); });
        const ado::FileCheck found = ado::CheckFile(file);
        const bool isSound = found.errors.empty();
        messages::Message message;
        message.text =
            texts::Fill(TextOf(isSound ? Check::Sound : Check::Faults),
                        {{u"file", ToQString(file)}, {u"n", QString::number(found.errors.size())}});
        message.title = TextOf(Check::Title);
        for (const std::string& error : found.errors) message.details += ToQString(error) + u'\n';
        if (isSound) message.kind = messages::MessageKind::Information;
        messages::ShowMessage(message, owner);
    } catch (...) {
        ShowFailure(u"CheckFile"_s, owner);
    }
}

}  // namespace

messages::Message ToMessage(const Failure& failure, const QString& procedure) {
    messages::Message message{failure.Text(), messages::MessageButtons::Ok, TitleOf(procedure),
                              procedure + u'\n' + failure.Details()};
    if (failure.reason.cause == reasons::Cause::FileDamaged && !failure.reason.file.empty()) {
        message.actionCaption = TextOf(Check::Caption);
        message.action = [file = failure.reason.file](QWidget* owner) { ShowCheck(file, owner); };
    }
    return message;
}

messages::Message ToMessage(const projectdb::RowFailures& failures, const QString& rows,
                            const QString& procedure) {
    messages::Message message = ToMessage(failures.First(), procedure);
    message.text += u"\n\n"_s + texts::Fill(rows, {{u"n", QString::number(failures.Count())}});
    return message;
}

void ShowFailure(const QString& procedure, QWidget* owner) noexcept {
    try {
        messages::ShowMessage(ToMessage(Failure::Current(), procedure), owner);
    } catch (...) {
        std::fputs("A failure could not be shown.\n", stderr);
    }
}

}  // namespace guard
