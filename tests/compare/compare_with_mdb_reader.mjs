// Compares what `kvs dump` prints with what the package mdb-reader reads, table by table.
//
//     node compare_with_mdb_reader.mjs KVS FILE...
//
// Rows are compared without their order. The package is looked for where node looks for it from this
// folder, in the folder KV_NODE_MODULES, and among the packages that are installed for all users.
// Exit status: 0 all equal, 1 differences, 77 the package is not here.
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const SHOWN = 5; // rows per table in a report


async function loadReader() {
    const places = ["mdb-reader"];
    const folders = [process.env.KV_NODE_MODULES];
    try {
        folders.push(execFileSync("npm", ["root", "--global"], { stdio: "pipe" }).toString().trim());
    } catch {
        // Without npm there are no packages for all users.
    }
    for (const folder of folders.filter(Boolean)) {
        places.push(pathToFileURL(join(folder, "mdb-reader", "lib", "node", "index.js")).href);
    }
    for (const place of places) {
        try {
            return (await import(place)).default;
        } catch {
            // The next place may have it.
        }
    }
    console.log("SKIPPED: the package mdb-reader is not here");
    process.exit(77);
}

// A number in the digits that both have; mdb-reader widens a single to a double.
function numberText(value, type) {
    const number = Number(value);
    return type === "float" ? String(Math.fround(number)) : String(number);
}

// Dates have no zone; mdb-reader gives them as if they were UTC, with milliseconds.
function dateText(value) {
    const date = value instanceof Date ? value : new Date(value + "Z");
    return new Date(Math.round(date.getTime() / 1000) * 1000).toISOString();
}

function common(value, type) {
    if (value === null || value === undefined) return null;
    if (type === "boolean") return Boolean(value);
    if (type === "datetime") return dateText(value);
    if (Buffer.isBuffer(value) || value instanceof Uint8Array) {
        return Buffer.from(value).toString("hex");
    }
    if (type === "repid") return String(value).replace(/[{}]/g, "").toLowerCase();
    if (["text", "memo", "binary", "ole"].includes(type)) return String(value);
    return numberText(value, type);
}

function rowTexts(rows, columns) {
    return rows.map((row) => JSON.stringify(columns.map((c) => common(row[c.name], c.type)))).sort();
}

function missingFrom(rows, others) {
    const counts = new Map();
    for (const row of others) counts.set(row, (counts.get(row) ?? 0) + 1);
    return rows.filter((row) => {
        const count = counts.get(row) ?? 0;
        counts.set(row, count - 1);
        return count <= 0;
    });
}

function compareTable(kvs, file, table) {
    const columns = table.getColumns();
    const dump = execFileSync(kvs, ["dump", "--format", "json", file, table.name], {
        maxBuffer: 1 << 30,
    });
    const ours = rowTexts(JSON.parse(dump.toString()), columns);
    const theirs = rowTexts(table.getData(), columns);
    const lines = [];
    for (const [who, rows] of [
        ["mdb-reader", missingFrom(theirs, ours)],
        ["kvs", missingFrom(ours, theirs)],
    ]) {
        for (const row of rows.slice(0, SHOWN)) lines.push(`  only ${who}: ${row.slice(0, 300)}`);
        if (rows.length > SHOWN) lines.push(`  only ${who}: ${rows.length - SHOWN} more rows`);
    }
    if (lines.length > 0) console.log([`${file}, ${table.name}:`, ...lines].join("\n"));
    return { rows: ours.length, same: lines.length === 0 };
}

const MDBReader = await loadReader();
const [kvs, ...files] = process.argv.slice(2);
let differing = 0;
let tables = 0;
let rows = 0;
for (const file of files) {
    const reader = new MDBReader(readFileSync(file));
    for (const name of reader.getTableNames()) {
        const result = compareTable(kvs, file, reader.getTable(name));
        tables += 1;
        rows += result.rows;
        differing += result.same ? 0 : 1;
    }
}
console.log(`${files.length} files, ${tables} tables, ${rows} rows: ${differing} tables differ`);
process.exit(differing === 0 ? 0 : 1);
