#include <gmock/gmock.h>

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Export and import from the editor window.
class EditorExchangeTest : public EditorTest {
protected:
    void InDialog(Qt::Key key, const std::function<void(QDialog&)>& work) {
        AnswerDialog([=, this] { Key(key, Qt::ControlModifier | Qt::ShiftModifier); }, work);
    }
};

TEST_F(EditorExchangeTest, SelectedTrendsGoOutAndComeBackInOneStep) {
    Open();
    const QString file = project_ + u".csv"_s;
    Key(Qt::Key_Space, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    ASSERT_EQ(SelectedRows().size(), 2);
    InDialog(Qt::Key_E, [&](QDialog& dialog) {
        ASSERT_EQ(dialog.objectName(), u"FExport"_s);
        EXPECT_TRUE(dialog.findChild<QRadioButton*>(u"optSelected"_s)->isChecked());
        dialog.findChild<QRadioButton*>(u"optCsv"_s)->click();
        dialog.findChild<QLineEdit*>(u"txtFile"_s)->setText(file);
        dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
    });
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadWrite));
    QByteArray content = written.readAll();
    EXPECT_EQ(content.count('\n'), 3) << content.toStdString();
    ASSERT_TRUE(content.contains("Maischbottich Temperatur"));
    content.replace("Maischbottich Temperatur", "Mash temperature");
    written.resize(0);
    written.seek(0);
    written.write(content);
    written.close();
    InDialog(Qt::Key_I, [&](QDialog& dialog) {
        ASSERT_EQ(dialog.objectName(), u"FImport"_s);
        auto* line = dialog.findChild<QLineEdit*>(u"txtFile"_s);
        line->setText(file);
        QTest::keyClick(line, Qt::Key_Return);
        auto* import = dialog.findChild<QPushButton*>(u"cmdImport"_s);
        EXPECT_EQ(import->text(), u"Take o&ver 1 change"_s);
        import->click();
        dialog.reject();
    });
    EXPECT_EQ(messages_.size(), 0);
    EXPECT_NE(Stored(u"Mash temperature"_s, "ID"), u"(no row)"_s);
    EXPECT_EQ(Names(1).filter(u"Mash temperature"_s).size(), 1);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Names(1).filter(u"Mash temperature"_s).size(), 0);
    EXPECT_EQ(Stored(u"Mash temperature"_s, "ID"), u"(no row)"_s);
}

}  // namespace
