#include "studio/StudioDesk.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QTableView>

using namespace Qt::Literals::StringLiterals;

void StudioDesk::Start(int lcid) {
    studio_ = std::make_unique<StudioSession>(folder_.path(), lcid);
}

void StudioDesk::StartWithProject(int lcid) {
    Start(lcid);
    ASSERT_TRUE(studio_->Window().OpenProject(file_));
    studio_->ClickNode();
    ASSERT_NE(studio_->Editor(), nullptr);
}

QString StudioDesk::Panel(int number) const {
    return studio_->Find<QLabel>(u"sb.Panels(%1)"_s.arg(number))->text();
}

void StudioDesk::OpenArchive(const QString& name) {
    studio_->ClickNode(name);
    QWidget* trends = Trends().View().viewport();
    User::ClickAt(*trends, trends->rect().bottomRight() - QPoint(3, 3));
    ASSERT_TRUE(Trends().View().hasFocus());
    ASSERT_EQ(Trends().Names(), plan_.Of(name).TrendNames());
}

void StudioDesk::EditInDialog(const QString& dialog, const User::Step& step) {
    user_.InDialog(
        dialog,
        [&](QWidget& shown) {
            step(shown);
            if (shown.isVisible()) User::Press(Qt::Key_Return);
            // What could not be stored stays in the dialog.
            if (shown.isVisible()) User::Press(Qt::Key_Escape);
        },
        [] { User::Press(Qt::Key_F9); });
}

void StudioDesk::ChooseTextLanguage(int entry) {
    auto* list = studio_->Find<QComboBox>(u"cmbLanguage"_s);
    list->setFocus(Qt::TabFocusReason);
    User::Press(entry == 0 ? Qt::Key_Home : Qt::Key_End);
    ASSERT_EQ(list->currentIndex(), entry);
}

void StudioDesk::ChooseExtra(int entry) {
    User::ChooseFromMenu(studio_->Window(), u"mnuExtras"_s, u"mnuExtra(%1)"_s.arg(entry));
}

void StudioDesk::Paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    User::Press(Qt::Key_V, Qt::ControlModifier);
}

std::int32_t StudioDesk::AddRow(ado::Connection& connection, const char* table,
                                const std::vector<std::pair<const char*, ado::Value>>& fields) {
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    rows.AddNew();
    for (const auto& [field, value] : fields) rows.Set(field, value);
    rows.Update();
    return ado::ToLong(rows.Get("ID"));
}

void StudioDesk::Connect(ado::Connection& connection) const {
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file_.toStdString());
}

void StudioDesk::ExpectFileAsPlanned() const {
    const Content content = ReadContent(file_.toStdString());
    plan_.ExpectIn(content);
    for (const auto& [table, rows] : content) {
        const bool isOurs = table.starts_with("Tchr") || table.starts_with("Tidx");
        EXPECT_TRUE(isOurs || rows == others_.at(table)) << table;
    }
}

void StudioDesk::NoteLayout() {
    shown_ = Trends().ShownFields();
    widths_.clear();
    for (const QString& field : shown_) {
        widths_[field] = Trends().Column(field)->property("Width").toDouble();
    }
}

void StudioDesk::ExpectLayoutAsLeft() const {
    EXPECT_EQ(Trends().ShownFields(), shown_);
    for (const auto& [field, width] : widths_) {
        EXPECT_EQ(Trends().Column(field)->property("Width").toDouble(), width)
            << field.toStdString();
    }
}
