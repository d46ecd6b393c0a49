#include "studio/AddInsDialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace studio {

using namespace Qt::Literals::StringLiterals;

Text TextOf(AddInReport::State state) {
    switch (state) {
        case AddInReport::State::NoLibrary:
            return Text::AddInNoLibrary;
        case AddInReport::State::NoName:
            return Text::AddInNoName;
        case AddInReport::State::NameTaken:
            return Text::AddInNameTaken;
        case AddInReport::State::Failed:
            return Text::AddInFailed;
        case AddInReport::State::Loaded:
            break;
    }
    return Text::AddInLoaded;
}

AddInsDialog::AddInsDialog(const QList<AddInReport>& reports, const StudioTexts& texts,
                           QWidget* parent)
    : QDialog(parent) {
    setObjectName(u"frmAddIns"_s);
    setWindowTitle(texts(Text::AddInColumn) + u's');
    auto* list = new QTreeWidget;
    list->setObjectName(u"lstAddIns"_s);
    list->setAccessibleName(windowTitle());
    list->setRootIsDecorated(false);
    list->setHeaderLabels(
        {texts(Text::AddInColumn), texts(Text::AddInStateColumn), texts(Text::AddInFileColumn)});
    for (const AddInReport& report : reports) {
        const QString state = texts(TextOf(report.state));
        auto* row = new QTreeWidgetItem(list, {report.name, state, report.file});
        for (int column = 0; column < list->columnCount(); ++column) {
            row->setToolTip(column, row->text(column));
        }
        if (!report.failure.isEmpty()) row->setToolTip(1, state + u'\n' + report.failure);
    }
    list->resizeColumnToContents(0);
    list->setColumnWidth(1, 240);

    auto* buttons = new QDialogButtonBox;
    auto* cmdClose = buttons->addButton(texts(Text::Close), QDialogButtonBox::RejectRole);
    cmdClose->setObjectName(u"cmdClose"_s);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list);
    layout->addWidget(buttons);
    resize(720, 320);
}

}  // namespace studio
