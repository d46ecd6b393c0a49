#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <QFile>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"

/// A row by its columns' names.
using Row = std::map<std::string, ado::Value>;

/// A writable copy of a database in a folder of its own, open.
class DatabaseCopy {
public:
    explicit DatabaseCopy(const std::string& source)
        : file_(folder_.filePath(QStringLiteral("copy.kvs"))) {
        const QString from = QString::fromStdString(source);
        EXPECT_TRUE(QFile::copy(from, file_)) << source;
        QFile::setPermissions(file_, QFile::ReadOwner | QFile::WriteOwner);
        Connect(connection);
    }

    /// Another connection to the same file, as another program has it.
    void Connect(ado::Connection& other) const {
        other.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file_.toStdString() +
                   ";Mode=Read|Write|Share Deny None;");
    }

    [[nodiscard]] std::vector<Row> Rows(const std::string& table) {
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        std::vector<Row> all;
        for (; !rows.IsEOF(); rows.MoveNext()) {
            Row& row = all.emplace_back();
            for (const ado::Field& field : rows.Fields()) row[field.name] = rows.Get(field.name);
        }
        return all;
    }

private:
    QTemporaryDir folder_;
    QString file_;

public:
    ado::Connection connection;
};
