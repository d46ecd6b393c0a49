#include "settings/CInit.h"

#include <algorithm>
#include <exception>
#include <QFile>
#include <QLoggingCategory>
#include <QStringList>
#include <QWidget>

#include "platform/Error.h"
#include "platform/ProfileFile.h"
#include "platform/Windows1252.h"
#include "settings/CInitItem.h"
#include "settings/detail/LateBound.h"

// Outside of any namespace, as Qt wants it.
static void RegisterResources() {
    Q_INIT_RESOURCE(settings);
}

namespace {

using namespace Qt::Literals::StringLiterals;
using LateBound::Place;

Q_LOGGING_CATEGORY(settingsLog, "korvala.settings")

constexpr QStringView kForm = u"Me";

/// The text of a built-in default, which is stored in the system code page.
QString DefaultText(const QString& name) {
    RegisterResources();
    QFile resource(u":/INITS/"_s + name);
    if (!resource.open(QIODevice::ReadOnly)) {
        throw platform::Error(platform::ErrorNumber::kResourceNotFound,
                              u"There are no built-in settings of the name '%1'."_s.arg(name));
    }
    return platform::FromWindows1252(resource.readAll());
}

using LeafWork = std::function<void(CInitItem&, const QString& path)>;

void ForEachLeaf(const CInitItems& items, const QString& prefix, const LeafWork& work) {
    for (const auto& item : items) {
        const QString path = prefix + item->Name();
        if (item->IsLeaf()) {
            work(*item, path);
        } else {
            ForEachLeaf(item->Items(), path + u'.', work);
        }
    }
}

/// The controls of a form, in its order. Dialogs that belong to the form are forms of their own.
void CollectControls(const QObject& parent, QStringList& names) {
    for (const QObject* child : parent.children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (widget != nullptr && widget->isWindow() &&
            (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog)) {
            continue;
        }
        if (!child->objectName().isEmpty()) names += child->objectName();
        CollectControls(*child, names);
    }
}

/// Whether the live value is what was left of the stored one when it was put: then nobody has
/// changed it, and the stored one stays.
bool IsCut(const InitValue& stored, const InitValue& live) {
    if (!stored.IsNumber() || !live.IsNumber()) return false;
    constexpr double kSmallest = -32768;
    constexpr double kLargest = 32767;
    const double number = stored.AsNumber();
    return (number < kSmallest || number > kLargest) &&
           live.AsNumber() == std::clamp(number, kSmallest, kLargest);
}

bool IsForm(QStringView segment) {
    return segment.compare(kForm, Qt::CaseInsensitive) == 0;
}

}  // namespace

CInit::CInit() = default;
CInit::~CInit() = default;

void CInit::LoadDefaultInit(const QString& name) {
    const QString text = DefaultText(name);
    section_ = name;
    for (QStringView line : QStringView(text).split(u'\n')) {
        if (line.endsWith(u'\r')) line.chop(1);
        // Section headers have no "=", and a line with a second one is skipped deliberately: its
        // key cannot be told from its value.
        const QList<QStringView> parts = line.split(u'=');
        if (parts.size() != 2 || parts[0].isEmpty()) continue;
        WriteAValueToCInits(parts[0].toString(), InitValue::Parse(parts[1]));
    }
}

void CInit::LoadInits(const QString& file) {
    file_ = file;
    platform::ProfileFile profile(file);
    try {
        ForEachLeaf(items_, {}, [&](CInitItem& leaf, const QString& path) {
            const QString present = leaf.Value().value_or(InitValue()).Format();
            leaf.SetValue(InitValue::Parse(profile.Read(section_, path, present)));
        });
    } catch (const platform::Error& error) {
        // Settings are no reason to keep the user from working. The file is read before the
        // first value is taken, so that no half of it is in force.
        qCWarning(settingsLog).noquote() << error.Description();
    }
}

void CInit::SaveInits(const QString& file) {
    if (!file.isEmpty()) file_ = file;
    RequireFile();
    QList<platform::ProfileEntry> entries;
    ForEachLeaf(items_, {}, [&](const CInitItem& leaf, const QString& path) {
        entries += {path, leaf.Value().value_or(InitValue()).Format()};
    });
    platform::ProfileFile(file_).Write(section_, entries);
}

void CInit::WriteToIni(const QString& key, const InitValue& value) {
    RequireFile();
    platform::ProfileFile(file_).Write(section_, key, value.Format());
}

void CInit::RequireFile() const {
    if (!file_.isEmpty()) return;
    throw platform::Error(platform::ErrorNumber::kPathNotUsable,
                          u"No file has been named for the settings."_s);
}

CInitItem* CInit::Find(QStringView key) const {
    const CInitItems* items = &items_;
    CInitItem* item = nullptr;
    for (const QStringView segment : key.split(u'.')) {
        item = items->Item(segment);
        if (item == nullptr) return nullptr;
        items = &item->Items();
    }
    return item;
}

void CInit::WriteAValueToCInits(const QString& key, const InitValue& value) {
    if (!platform::ProfileFile::IsKey(key)) {
        Report(key, "cannot be a key of the settings");
        return;
    }
    CInitItems* items = &items_;
    CInitItem* item = nullptr;
    for (const QStringView segment : QStringView(key).split(u'.')) {
        item = &items->Add(segment);
        items = &item->Items();
    }
    item->SetValue(value);
}

InitValue CInit::ReadAValueFromCInits(QStringView key, const InitValue& fallback) const {
    const CInitItem* item = Find(key);
    return item == nullptr ? fallback : item->Value().value_or(fallback);
}

void CInit::DeleteAValueInCInits(QStringView key) {
    const CInitItem* leaf = Find(key);
    if (leaf == nullptr || !leaf->IsLeaf()) return;
    // A node left without children would turn into a leaf, and into a line of the file.
    while (true) {
        const qsizetype dot = key.lastIndexOf(u'.');
        CInitItem* parent = dot < 0 ? nullptr : Find(key.first(dot));
        CInitItems& level = parent == nullptr ? items_ : parent->Items();
        level.Remove(key.sliced(dot + 1));
        if (parent == nullptr || !parent->IsLeaf() || parent->Value()) return;
        key = key.first(dot);
    }
}

bool CInit::ParamExist(QStringView key) const {
    return Find(key) != nullptr;
}

QList<std::pair<QString, InitValue>> CInit::Values() const {
    QList<std::pair<QString, InitValue>> values;
    ForEachLeaf(items_, {}, [&](const CInitItem& leaf, const QString& path) {
        values.append({path, leaf.Value().value_or(InitValue())});
    });
    return values;
}

void CInit::GetInitFromControl(const QString& name) {
    VisitLeaves(name, [this](const Place& place, CInitItem& leaf, const QString& path) {
        const InitValue present = leaf.Value().value_or(InitValue());
        if (const auto value = LateBound::Get(place, leaf.Name(), present)) {
            if (!IsCut(present, *value)) leaf.SetValue(*value);
        } else {
            Report(path, "cannot be read");
        }
    });
}

void CInit::SetInitToControl(const QString& name) {
    VisitLeaves(name, [this](const Place& place, CInitItem& leaf, const QString& path) {
        if (leaf.Value() && !LateBound::Put(place, leaf.Name(), *leaf.Value())) {
            Report(path, "cannot be set");
        }
    });
}

void CInit::SetInitToMotherObject() {
    if (motherobject_ == nullptr) return;
    QStringList names;
    CollectControls(*motherobject_, names);
    for (const QString& name : names) {
        if (items_.Item(name) != nullptr) SetInitToControl(name);
    }
}

void CInit::VisitLeaves(const QString& name, const Visitor& visit) {
    CInitItem* node = Find(name);
    if (node == nullptr || node->IsLeaf() || motherobject_ == nullptr) return;
    Place place(motherobject_);
    bool first = true;
    for (const QStringView segment : QStringView(name).split(u'.')) {
        if (!first || !IsForm(segment)) place = LateBound::Member(place, segment);
        first = false;
    }
    if (place.Exists()) {
        VisitLeaves(*node, place, name, visit);
    } else {
        Report(name, "names nothing");
    }
}

void CInit::VisitLeaves(CInitItem& node, const Place& place, const QString& path,
                        const Visitor& visit) {
    // By position: what is set may make the window write values of its own.
    for (std::size_t i = 0; i < node.Items().Count(); ++i) {
        CInitItem& item = node.Items().At(i);
        const QString itemPath = path + u'.' + item.Name();
        try {
            if (item.IsLeaf()) {
                visit(place, item, itemPath);
            } else if (const Place member = LateBound::Member(place, item.Name());
                       member.Exists()) {
                VisitLeaves(item, member, itemPath, visit);
            } else {
                Report(itemPath, "names nothing");
            }
        } catch (const std::exception& error) {
            Report(itemPath, error.what());
        }
    }
}

void CInit::Report(const QString& path, const char* what) {
    if (reported_.contains(path)) return;
    reported_.insert(path);
    qCWarning(settingsLog).noquote() << u"Setting '%1' %2."_s.arg(path, QString::fromUtf8(what));
}
