#include "projectdb/Guard.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <new>
#include <QApplication>
#include <QScopeGuard>
#include <QWidget>

#include "ado/AdoError.h"
#include "ado/FileCheck.h"
#include "platform/Error.h"
#include "projectdb/Text.h"
#include "texts/Fill.h"
#include "texts/Language.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;
using MResourceTable::Check;

namespace {

constexpr std::int32_t kOutOfMemory = -2147024882;  // 0x8007000E

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
        platform::SetScreenPointer(platform::Pointer::Hourglass);
        const auto done =
            qScopeGuard([] { platform::SetScreenPointer(platform::Pointer::Default); });
        const ado::FileCheck found = ado::CheckFile(file);
        const bool isSound = found.errors.empty();
        platform::Message message;
        message.text =
            texts::Fill(TextOf(isSound ? Check::Sound : Check::Faults),
                        {{u"file", ToQString(file)}, {u"n", QString::number(found.errors.size())}});
        message.title = TextOf(Check::Title);
        for (const std::string& error : found.errors) message.details += ToQString(error) + u'\n';
        if (isSound) message.kind = platform::MessageKind::Information;
        platform::ShowMessage(message, owner);
    } catch (...) {
        ShowFailure(u"CheckFile"_s, owner);
    }
}

}  // namespace

Failure Failure::Current() {
    try {
        throw;
    } catch (const HalfDone& failure) {
        return failure.Told();
    } catch (const ado::AdoError& error) {
        return {error.Number(), ToQString(error.Description()), error.Reason()};
    } catch (const platform::Error& error) {
        return {error.Number(), error.Description(), error.Reason()};
    } catch (const std::bad_alloc&) {
        return {kOutOfMemory, u"Out of memory."_s, {reasons::Cause::OutOfMemory}};
    } catch (const std::exception& error) {
        return {ado::ErrorNumber::kUnspecified, QString::fromUtf8(error.what()), {}};
    } catch (...) {
        return {ado::ErrorNumber::kUnspecified, u"Unspecified error."_s, {}};
    }
}

QString Failure::Text() const {
    return told.isEmpty() ? texts::ReasonText(reason) : told;
}

QString Failure::Details() const {
    return QString::number(number) + u"   "_s + description;
}

platform::Message Failure::ToMessage(const QString& procedure) const {
    platform::Message message{Text(), platform::MessageButtons::Ok, TitleOf(procedure),
                              procedure + u'\n' + Details()};
    if (reason.cause == reasons::Cause::FileDamaged && !reason.file.empty()) {
        message.actionCaption = TextOf(Check::Caption);
        message.action = [file = reason.file](QWidget* owner) { ShowCheck(file, owner); };
    }
    return message;
}

void ShowFailure(const QString& procedure, QWidget* owner) noexcept {
    try {
        platform::ShowMessage(Failure::Current().ToMessage(procedure), owner);
    } catch (...) {
        std::fputs("A failure could not be shown.\n", stderr);
    }
}

}  // namespace projectdb
