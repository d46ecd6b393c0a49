#pragma once

#include <map>
#include <QList>
#include <QString>
#include <string>

#include "support/ProjectInOrder.h"

/// What a project must hold after the work that has been done so far; kept beside the work, apart
/// from everything that does it.
struct DayPlan {
    struct Texts {
        QString german;
        QString english;
    };
    using Fields = std::map<std::string, std::string>;  // as Content has them

    struct Trend {
        QString name;
        Texts texts;
        Fields fields{};
        QString nameOfText{};  // empty: the one that goes with the name
    };
    struct Archive {
        QString name;
        Texts texts;
        Fields fields;
        QList<Trend> trends;

        [[nodiscard]] Trend& TrendOf(const QString& trend);
        [[nodiscard]] QStringList TrendNames() const;
    };

    [[nodiscard]] Archive& Of(const QString& archive);
    [[nodiscard]] QStringList ArchiveNames() const;
    [[nodiscard]] int TrendCount() const;
    void Remove(const QString& archive);

    /// Compares with what another program finds in the file.
    void ExpectIn(const Content& content) const;

    QList<Archive> archives;
};
