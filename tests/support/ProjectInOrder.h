#pragma once

#include "projectdb/ProjectTesting.h"

/// One row of Content by field; fields that are Null are not there.
using FieldsOfRow = std::map<std::string, std::string>;
/// The rows of a table by ID.
[[nodiscard]] std::map<std::int32_t, FieldsOfRow> RowsOf(const Content& content,
                                                         const std::string& table);
/// A field, or nothing where it is Null or holds the one character that stands for an empty text.
[[nodiscard]] std::string FieldOf(const FieldsOfRow& row, const std::string& field);

/// By ID of a trend: the name that its text has kept since before the trend was renamed.
using KeptTextNames = std::map<std::int32_t, std::string>;

/// What every program on a project relies on, and no database looks after: each archive has its
/// group, each archive and trend its text in that group, under a name of its own, and there are no
/// groups and texts of nobody.
void ExpectInOrder(const Content& content, const KeptTextNames& kept = {});

/// The tables of archives, trends, texts and groups hold the same for mdbtools, whose reader is
/// not ours. Passes where they are not installed.
void ExpectSameForMdbTools(const std::string& path, const Content& content);
