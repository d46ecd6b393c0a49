#include "studio/StudioSession.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QHeaderView>
#include <QTableView>
#include <QTest>

#include "platform/ComponentRegistry.h"
#include "studio/AddInLoader.h"
#include "studio/ProjectTree.h"
#include "studio/ProjectTreeModel.h"
#include "support/User.h"

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kArchivesKey = u"ARC0"_s;

void WriteRegistry(const QString& file, int lcid) {
    QFile registry(file);
    ASSERT_TRUE(registry.open(QIODevice::WriteOnly));
    registry.write(
        u"Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n"
        "\"LCID\"=dword:%1\r\n"_s.arg(lcid, 8, 16, QLatin1Char('0'))
            .toUtf8());
}

}  // namespace

StudioSession::StudioSession(const QString& folder, int lcid) {
    const QString registry = folder + u"/machine%1.reg"_s.arg(lcid);
    WriteRegistry(registry, lcid);
    qputenv("KV_REGISTRY", QFile::encodeName(registry));
    qputenv("KV_ADDINS", KV_ADDIN_FOLDER);
    platform::ComponentRegistry components;
    state_ = std::make_unique<QSettings>(folder + u"/kvstudio.ini"_s, QSettings::IniFormat);
    state_->setValue(u"OpenFolder"_s, folder);
    const QList<studio::AddInReport> reports = studio::LoadAddIns(components, addIns_);
    for (const studio::AddInReport& report : reports) {
        EXPECT_EQ(report.failure, QString()) << qUtf8Printable(report.file);
    }
    EXPECT_FALSE(addIns_.IsEmpty());
    window_ = std::make_unique<studio::StudioWindow>(registry_, addIns_, reports, state_.get());
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
}

StudioSession::~StudioSession() {
    window_->close();
    window_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QWidget* StudioSession::Editor() const {
    return Find<QWidget>(u"frmtabGrid"_s);
}

QStringList StudioSession::ArchiveNodes() const {
    auto& model = static_cast<studio::ProjectTreeModel&>(*window_->Tree().model());
    QStringList names;
    for (const QString& key : model.ChildKeys(kArchivesKey).value_or(QStringList())) {
        names += model.IndexOf(key).data().toString();
    }
    return names;
}

QString StudioSession::KeyOf(const QString& archive) const {
    if (archive.isEmpty()) return kArchivesKey;
    auto& model = static_cast<studio::ProjectTreeModel&>(*window_->Tree().model());
    for (const QString& key : model.ChildKeys(kArchivesKey).value_or(QStringList())) {
        if (model.IndexOf(key).data().toString() == archive) return key;
    }
    ADD_FAILURE() << "the tree has no node " << qUtf8Printable(archive);
    return {};
}

QPoint StudioSession::NodePoint(const QString& archive) const {
    studio::ProjectTree& tree = window_->Tree();
    const auto& model = static_cast<const studio::ProjectTreeModel&>(*tree.model());
    const QModelIndex index = model.IndexOf(KeyOf(archive));
    tree.scrollTo(index);
    return tree.visualRect(index).center();
}

void StudioSession::ClickNode(const QString& archive) {
    window_->activateWindow();  // a report of another project may be in front
    User::ClickAt(*window_->Tree().viewport(), NodePoint(archive));
    EXPECT_TRUE(QTest::qWaitFor([this] { return window_->Tree().hasFocus(); }));
}

GridPart::GridPart(const StudioSession& session, int split)
    : view_(session.Find<QTableView>(u"tdbA.Splits(%1)"_s.arg(split))) {
    auto* grid = session.Find<QWidget>(u"tdbA"_s);
    QMetaObject::invokeMethod(grid, "Splits", Q_RETURN_ARG(QObject*, split_), Q_ARG(int, split));
}

QObject* GridPart::Column(const QString& field) const {
    QObject* column = nullptr;
    QMetaObject::invokeMethod(split_, "Columns", Q_RETURN_ARG(QObject*, column),
                              Q_ARG(QVariant, field));
    if (column == nullptr) qFatal("the grid has no column %s", qUtf8Printable(field));
    return column;
}

int GridPart::IndexOf(const QString& field) const {
    for (int i = 0; i < view_->model()->columnCount(); ++i) {
        QObject* column = nullptr;
        QMetaObject::invokeMethod(split_, "Columns", Q_RETURN_ARG(QObject*, column),
                                  Q_ARG(QVariant, i));
        if (column->property("DataField").toString() == field) return i;
    }
    ADD_FAILURE() << "no column " << qUtf8Printable(field);
    return 0;
}

QStringList GridPart::ShownFields() const {
    QStringList fields;
    const QHeaderView* header = view_->horizontalHeader();
    for (int place = 0; place < header->count(); ++place) {
        const int index = header->logicalIndex(place);
        if (header->isSectionHidden(index)) continue;
        QObject* column = nullptr;
        QMetaObject::invokeMethod(split_, "Columns", Q_RETURN_ARG(QObject*, column),
                                  Q_ARG(QVariant, index));
        fields += column->property("DataField").toString();
    }
    return fields;
}

int GridPart::RowCount() const {
    QAbstractItemModel* model = view_->model();
    while (model->canFetchMore({})) model->fetchMore({});
    return model->rowCount();
}

int GridPart::RowOf(const QString& name) const {
    return static_cast<int>(Names().indexOf(name));
}

QString GridPart::Cell(int row, const QString& field) const {
    return view_->model()->index(row, IndexOf(field)).data().toString();
}

QStringList GridPart::Names() const {
    QStringList names;
    const int column = IndexOf(u"Name"_s);
    const int count = RowCount();
    for (int row = 0; row < count; ++row) {
        names += view_->model()->index(row, column).data().toString();
    }
    return names;
}

QString GridPart::CurrentName() const {
    return Names().value(view_->currentIndex().row());
}

int GridPart::SelectedCount() const {
    return static_cast<int>(view_->selectionModel()->selectedRows().size());
}

void GridPart::ClickCell(int row, const QString& field, Qt::KeyboardModifiers held) const {
    ASSERT_GE(row, 0);
    const QModelIndex cell = view_->model()->index(row, IndexOf(field));
    view_->scrollTo(cell);
    // Beside the chooser button of the cell.
    const QRect rect = view_->visualRect(cell);
    User::ClickAt(*view_->viewport(), {rect.left() + 4, rect.center().y()}, held);
}

void GridPart::ClickRecord(int row, Qt::KeyboardModifiers held) const {
    ASSERT_GE(row, 0);
    view_->scrollTo(view_->model()->index(row, IndexOf(u"Name"_s)));
    QWidget* header = view_->verticalHeader()->viewport();
    const int y = view_->rowViewportPosition(row) + view_->rowHeight(row) / 2;
    User::ClickAt(*header, {header->width() / 2, y}, held);
}

void GridPart::Overwrite(int row, const QString& field, const QString& text) const {
    ClickCell(row, field);
    User::Type(text);
    User::Press(Qt::Key_Return);
    EXPECT_EQ(Cell(row, field), text);
}

void GridPart::Widen(const QString& field, int pixels) const {
    QHeaderView* header = view_->horizontalHeader();
    const int index = IndexOf(field);
    view_->scrollTo(view_->model()->index(0, index));
    const QPoint edge(header->sectionViewportPosition(index) + header->sectionSize(index) - 1,
                      header->height() / 2);
    User::Drag(*header->viewport(), edge, edge + QPoint(pixels, 0));
}

void GridPart::MoveBefore(const QString& field, const QString& other) const {
    QHeaderView* header = view_->horizontalHeader();
    const int from = IndexOf(field);
    const int to = IndexOf(other);
    const int y = header->height() / 2;
    User::Drag(*header->viewport(),
               {header->sectionViewportPosition(from) + header->sectionSize(from) / 2, y},
               {header->sectionViewportPosition(to) + 3, y});
}
