#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <QTemporaryDir>

#include "ado/Recordset.h"
#include "messages/MessageBox.h"
#include "studio/DayPlan.h"
#include "studio/StudioSession.h"
#include "support/User.h"

/// An engineer before the studio with the add-ins of the build, and what an engineer does all the
/// time. Message boxes are answered and kept. What has to be in the file stands in the plan.
class StudioDesk : public testing::Test {
protected:
    static constexpr int kGerman = 1031;
    static constexpr int kEnglish = 1033;
    // Entries of the menu Extras
    static constexpr int kStatistic = 0;
    static constexpr int kReport = 1;
    static constexpr int kRefresh = 2;
    static constexpr int kOptions = 4;

    void Start(int lcid);
    /// Starts the studio and opens the project up to the editor.
    void StartWithProject(int lcid);

    [[nodiscard]] GridPart Archives() const { return {*studio_, 0}; }
    [[nodiscard]] GridPart Trends() const { return {*studio_, 1}; }
    [[nodiscard]] QString Panel(int number) const;

    /// Opens an archive from the tree and brings the keyboard into its trends.
    void OpenArchive(const QString& name);
    /// F9: `step` works in the dialog, which is closed by Enter if it is still open then.
    void EditInDialog(const QString& dialog, const User::Step& step);
    /// The language of the project's texts that are edited, by its place in the list.
    void ChooseTextLanguage(int entry);
    void ChooseExtra(int entry);
    /// Pastes a text that comes from another program.
    void Paste(const QString& text);
    [[nodiscard]] QStringList TakeMessages() { return std::exchange(messages_, {}); }

    /// Adds a row as another program does.
    static std::int32_t AddRow(ado::Connection& connection, const char* table,
                               const std::vector<std::pair<const char*, ado::Value>>& fields);
    /// Opens the file as another program does.
    void Connect(ado::Connection& connection) const;

    /// The file holds what is planned, and the tables of other tools what they held.
    void ExpectFileAsPlanned() const;
    void NoteLayout();
    void ExpectLayoutAsLeft() const;

    QTemporaryDir folder_;
    QString file_ = folder_.filePath(QStringLiteral("Anlage.kvs"));
    User user_;
    QStringList messages_;
    messages::MessageResult answerTo_ = messages::MessageResult::Ok;
    messages::MessageAnswer answer_{[this](const messages::Message& message) {
        messages_ += message.text;
        return answerTo_;
    }};
    std::unique_ptr<StudioSession> studio_;
    DayPlan plan_;
    Content others_;                    // the tables of other tools
    QStringList shown_;                 // columns of the trends, from left to right
    std::map<QString, double> widths_;  // twips, of these columns
};
