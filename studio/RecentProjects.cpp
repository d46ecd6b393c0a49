#include "studio/RecentProjects.h"

#include <QSettings>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kKey = u"RecentProjects"_s;

}  // namespace

RecentProjects::RecentProjects(QSettings* store) : store_(store) {
    if (store_ == nullptr) return;
    items_ = store_->value(kKey).toStringList();
    items_.removeAll(QString());
    items_ = items_.mid(0, kMost);
}

void RecentProjects::Add(const QString& project) {
    items_.removeAll(project);
    items_.prepend(project);
    items_ = items_.mid(0, kMost);
    Store();
}

void RecentProjects::Clear() {
    items_.clear();
    Store();
}

void RecentProjects::Store() {
    if (store_ == nullptr) return;
    store_->setValue(kKey, items_);
    store_->sync();
}

}  // namespace studio
