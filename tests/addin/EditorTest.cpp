#include "addin/EditorTest.h"

#include <QDialog>
#include <QLineEdit>
#include <QLocale>
#include <QTimer>

#include "project/Transaction.h"
#include "projectdb/Text.h"

using namespace Qt::Literals::StringLiterals;

EditorTest::~EditorTest() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
}

void EditorTest::Open(const QString& archive, bool english) {
    QLocale::setDefault(english ? QLocale(QLocale::English, QLocale::UnitedKingdom)
                                : QLocale(QLocale::German, QLocale::Germany));
    WriteRegistry(
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n\"LCID\"=dword:%1"_s.arg(
            english ? u"00000409"_s : u"00000407"_s));
    if (project_.isEmpty()) project_ = Brewery();
    Initialize(project_);
    Click(u"ARC0"_s);
    Click(archive);
    TurnTo();
}

void EditorTest::TurnTo(int split) {
    host_.container.show();
    Editor()->setGeometry(host_.container.rect());
    QApplication::setActiveWindow(&host_.container);
    Split(split)->setFocus();
    QApplication::processEvents();
}

void EditorTest::TurnAway() {
    host_.tree.show();
    QApplication::setActiveWindow(&host_.tree);
    host_.tree.setFocus();
    QApplication::processEvents();
}

QObject* EditorTest::Grid() {
    return Editor()->findChild<QObject*>(u"tdbA"_s);
}

QObject* EditorTest::SplitObject(int split) {
    QObject* object = nullptr;
    QMetaObject::invokeMethod(Grid(), "Splits", Q_RETURN_ARG(QObject*, object), Q_ARG(int, split));
    return object;
}

QObject* EditorTest::Column(int split, const QString& field) {
    QObject* object = nullptr;
    QMetaObject::invokeMethod(SplitObject(split), "Columns", Q_RETURN_ARG(QObject*, object),
                              Q_ARG(QVariant, field));
    return object;
}

int EditorTest::ColumnNumber(int split, const QString& field) {
    for (int i = 0; i < Split(split)->model()->columnCount(); ++i) {
        QObject* object = nullptr;
        QMetaObject::invokeMethod(SplitObject(split), "Columns", Q_RETURN_ARG(QObject*, object),
                                  Q_ARG(QVariant, i));
        if (object != nullptr && object->property("DataField").toString() == field) return i;
    }
    ADD_FAILURE() << "no column " << field.toStdString();
    return 0;
}

QStringList EditorTest::ShownFields(int split) {
    const QHeaderView* header = Split(split)->horizontalHeader();
    QStringList fields;
    for (int visual = 0; visual < header->count(); ++visual) {
        const int column = header->logicalIndex(visual);
        if (header->isSectionHidden(column)) continue;
        QObject* object = nullptr;
        QMetaObject::invokeMethod(SplitObject(split), "Columns", Q_RETURN_ARG(QObject*, object),
                                  Q_ARG(QVariant, column));
        fields += object->property("DataField").toString();
    }
    return fields;
}

QString EditorTest::Text(int row, const QString& field, int split) {
    if (row < 0 || row >= RowCount(split)) return u"(no row)"_s;
    return Split(split)->model()->index(row, ColumnNumber(split, field)).data().toString();
}

QStringList EditorTest::Names(int split) {
    QStringList names;
    for (int row = 0; row < RowCount(split); ++row) names += Text(row, u"Name"_s, split);
    return names;
}

QString EditorTest::CurrentName(int split) {
    return Text(CurrentRow(split), u"Name"_s, split);
}

void EditorTest::ClickCell(int row, const QString& field, int split, Qt::KeyboardModifiers held) {
    Column(split, field)->setProperty("Visible", true);
    const QModelIndex cell = Split(split)->model()->index(row, ColumnNumber(split, field));
    Split(split)->scrollTo(cell);
    const QPoint at = Split(split)->visualRect(cell).center();
    QTest::mouseClick(Split(split)->viewport(), Qt::LeftButton, held, at);
    QApplication::processEvents();
}

void EditorTest::SelectRow(int row, Qt::KeyboardModifiers held, int split) {
    QTableView* view = Split(split);
    view->scrollTo(
        view->model()->index(row, CurrentRow(split) < 0 ? 0 : view->currentIndex().column()));
    QHeaderView* header = view->verticalHeader();
    const int y = header->sectionViewportPosition(row) + header->sectionSize(row) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, held, {header->width() / 2, y});
}

QList<int> EditorTest::SelectedRows(int split) {
    QList<int> rows;
    for (const QModelIndex& row : Split(split)->selectionModel()->selectedRows()) {
        rows += row.row();
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

QWidget* EditorTest::Keyboard() {
    QWidget* focus = QApplication::focusWidget();
    return focus != nullptr ? focus : Split(1);
}

void EditorTest::Key(Qt::Key key, Qt::KeyboardModifiers held) {
    QTest::keyClick(Keyboard(), key, held);
    QApplication::processEvents();
}

QString EditorTest::DialogOf(const std::function<void()>& body,
                             const std::function<void(QDialog&)>& look) {
    QString name;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !name.isEmpty()) return;
        name = dialog->objectName();
        if (look) look(*dialog);
        dialog->reject();
    });
    timer.start(1);
    body();
    QApplication::setActiveWindow(&host_.container);
    QApplication::processEvents();
    return name;
}

void EditorTest::AnswerDialog(const std::function<void()>& act,
                              const std::function<void(QDialog&)>& look) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        timer.stop();
        look(*dialog);
    });
    timer.start(1);
    act();
    QApplication::setActiveWindow(&host_.container);
    QApplication::processEvents();
}

void EditorTest::Type(const QString& text) {
    // The first letter may open an editor, which takes the others.
    for (const QChar letter : text) QTest::keyClicks(Keyboard(), letter);
}

QWidget* EditorTest::CellEditor() {
    return Editor()->findChild<QWidget*>(u"CellEditor"_s);
}

QString EditorTest::TypedText() {
    const auto* line = qobject_cast<QLineEdit*>(CellEditor());
    return line != nullptr ? line->text() : u"(no editor)"_s;
}

QAction* EditorTest::Action(const QString& name) {
    auto* action = Editor()->findChild<QAction*>(name);
    if (action == nullptr) qFatal("no action %s", qPrintable(name));
    return action;
}

void EditorTest::Elsewhere(const std::function<void(projectdb::ProjectRows&)>& change) {
    ADOArchiv other;
    other.OpenConnection(project_);
    projectdb::ProjectRows rows(other);
    project::Transaction transaction(other.Connection());
    change(rows);
    transaction.Commit();
}

QString EditorTest::Stored(const QString& trend, const std::string& field) {
    QString text = u"(no row)"_s;
    Elsewhere([&](projectdb::ProjectRows& rows) {
        std::ignore = rows.SeekTrendsOf(1);
        for (ado::Recordset& trends = rows.Trends(); !trends.IsEOF(); trends.MoveNext()) {
            if (projectdb::ToQString(ado::ToText(trends.Get("Name"))) != trend) continue;
            const ado::Value value = trends.Get(field);
            text = ado::IsNull(value) ? u"(Null)"_s : projectdb::ToQString(ado::ToText(value));
        }
    });
    return text;
}

QStringList EditorTest::MessageTexts() const {
    QStringList texts;
    for (const messages::Message& message : messages_) texts += message.text;
    return texts;
}
