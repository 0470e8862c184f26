// Files, tables, schemas and transactions of the table store.
#include "store_test_support.h"

#include <fstream>
#include <set>

namespace celestark::store {
namespace {

using testing::add_row;
using testing::ScratchDir;

const std::vector<FieldDef> every_type = {
    {"name", FieldType::text, 30},    {"notes", FieldType::memo, 0},
    {"flag", FieldType::boolean, 0},  {"small", FieldType::byte, 0},
    {"count", FieldType::integer, 0}, {"big", FieldType::long_integer, 0},
    {"lon", FieldType::single, 0},    {"jd", FieldType::double_precision, 0},
    {"when", FieldType::date, 0},
};

void write_bytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

// A store file with one table of `rows` rows, closed again.
void make_store(const std::filesystem::path& file, int rows) {
    TableStore store;
    ASSERT_EQ(store.create(file), Outcome::ok);
    const std::vector<FieldDef> fields = {{"n", FieldType::long_integer, 0},
                                          {"text", FieldType::memo, 0}};
    ASSERT_EQ(store.create_table("t", fields), Outcome::ok);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    Transaction bulk = store.begin_transaction();
    for (int i = 0; i < rows; ++i)
        ASSERT_EQ(add_row(rs, {{"n", i}, {"text", std::string(200, 'x')}}), Outcome::ok);
    ASSERT_EQ(bulk.commit(), Outcome::ok);
}

TEST(StoreFile, OpenAndCreateOutcomes) {
    ScratchDir dir;
    auto good = dir.file("good.mdb");
    make_store(good, 1);
    auto text = dir.file("text.mdb");
    write_bytes(text, "Plain text\nthis is not what the store writes\n");
    auto empty = dir.file("empty.mdb");
    write_bytes(empty, "");
    auto garbage = dir.file("garbage.mdb");
    std::string noise(8192, '\0');
    for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = static_cast<char>((i * 131) % 251);
    write_bytes(garbage, noise);
    auto cut = dir.file("cut.mdb");
    make_store(cut, 400);
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);

    struct Case {
        const char* what;
        std::filesystem::path file;
        Outcome open, create;
    };
    const Case cases[] = {
        {"missing", dir.file("missing.mdb"), Outcome::no_such_file, Outcome::ok},
        {"good", good, Outcome::ok, Outcome::file_exists},
        {"text", text, Outcome::damaged_file, Outcome::file_exists},
        {"empty", empty, Outcome::damaged_file, Outcome::file_exists},
        {"garbage", garbage, Outcome::damaged_file, Outcome::file_exists},
        {"cut short", cut, Outcome::damaged_file, Outcome::file_exists},
        {"folder", dir.file(""), Outcome::damaged_file, Outcome::file_exists},
        {"no folder", dir.file("nowhere/x.mdb"), Outcome::no_such_file, Outcome::cannot_create},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TableStore store;
        EXPECT_EQ(store.open(c.file), c.open);
        EXPECT_EQ(store.is_open(), c.open == Outcome::ok);
        TableStore fresh;
        EXPECT_EQ(fresh.create(c.file), c.create);
    }
}

TEST(StoreFile, DamageInsideIsFoundOnReading) {
    ScratchDir dir;
    auto file = dir.file("hurt.mdb");
    make_store(file, 2000);
    {
        // Spoil the pages after the first few, keeping the header and schema readable.
        std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
        f.seekp(4096 * 3);
        std::string junk(4096 * 8, '\x5A');
        f.write(junk.data(), static_cast<std::streamsize>(junk.size()));
    }
    TableStore store;
    ASSERT_EQ(store.open(file), Outcome::ok);
    EXPECT_EQ(store.check_integrity(), Outcome::damaged_file);
    Recordset rs;
    Outcome opened = store.open_recordset("t", rs);
    Outcome walked = opened;
    while (walked == Outcome::ok && rs.has_current()) walked = rs.move_next();
    EXPECT_EQ(walked, Outcome::damaged_file);
    EXPECT_FALSE(store.last_error().empty());
}

TEST(StoreFile, HealthyFilePassesCheckAndReadOnlyRefusesWrites) {
    ScratchDir dir;
    auto file = dir.file("ro.mdb");
    make_store(file, 5);
    TableStore store;
    ASSERT_EQ(store.open(file, TableStore::Access::read_only), Outcome::ok);
    EXPECT_EQ(store.check_integrity(), Outcome::ok);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    EXPECT_EQ(rs.add_new(), Outcome::read_only);
    EXPECT_EQ(rs.edit(), Outcome::read_only);
    EXPECT_EQ(store.create_table("u", every_type), Outcome::read_only);
    EXPECT_EQ(store.delete_table("t"), Outcome::read_only);
    EXPECT_EQ(rs.record_count(), 5);
}

TEST(StoreTables, CreateListDeleteAndQuotedNames) {
    ScratchDir dir;
    TableStore store;
    ASSERT_EQ(store.create(dir.file("names.mdb")), Outcome::ok);
    const std::string odd = "Bob's \"events\"; DROP";
    const std::vector<FieldDef> fields = {{"key \"x\"", FieldType::text, 10},
                                          {"it's", FieldType::long_integer, 0}};
    const std::vector<IndexDef> indexes = {{"by \"key\"; --", {"key \"x\""}, true, true}};
    ASSERT_EQ(store.create_table(odd, fields, indexes), Outcome::ok);
    ASSERT_EQ(store.create_table("Zodiac", every_type), Outcome::ok);
    ASSERT_EQ(store.create_table("aspects", every_type), Outcome::ok);
    std::vector<std::string> names;
    ASSERT_EQ(store.table_names(names), Outcome::ok);
    EXPECT_EQ(names, (std::vector<std::string>{"aspects", odd, "Zodiac"})); // not the store's own
    EXPECT_TRUE(store.table_exists("ZODIAC"));
    EXPECT_FALSE(store.table_exists("celestark_indexes"));

    Recordset rs;
    ASSERT_EQ(store.open_recordset(odd, rs), Outcome::ok);
    ASSERT_EQ(rs.set_index("BY \"KEY\"; --"), Outcome::ok);
    ASSERT_EQ(add_row(rs, {{"key \"x\"", "a'b\"c"}, {"it's", 7}}), Outcome::ok);
    ASSERT_EQ(rs.seek("=", {"A'B\"C"}), Outcome::ok);
    EXPECT_EQ(rs.get("IT'S").as_int(), 7);
    rs = Recordset();

    EXPECT_EQ(store.delete_table(odd), Outcome::ok);
    EXPECT_FALSE(store.table_exists(odd));
    EXPECT_EQ(store.delete_table(odd), Outcome::no_such_table);
    // The name is free again, with its index.
    EXPECT_EQ(store.create_table(odd, fields, indexes), Outcome::ok);
}

TEST(StoreTables, RefusedDefinitions) {
    ScratchDir dir;
    TableStore store;
    ASSERT_EQ(store.create(dir.file("defs.mdb")), Outcome::ok);
    ASSERT_EQ(store.create_table("taken", every_type), Outcome::ok);
    const FieldDef a{"a", FieldType::text, 10};
    struct Case {
        const char* what;
        std::string table;
        std::vector<FieldDef> fields;
        std::vector<IndexDef> indexes;
        Outcome expected;
    };
    const std::vector<Case> cases = {
        {"table exists", "TAKEN", {a}, {}, Outcome::table_exists},
        {"empty name", "", {a}, {}, Outcome::invalid_name},
        {"dot in name", "a.b", {a}, {}, Outcome::invalid_name},
        {"leading blank", " a", {a}, {}, Outcome::invalid_name},
        {"engine's prefix", "sqlite_x", {a}, {}, Outcome::invalid_name},
        {"store's own", "Celestark_Indexes", {a}, {}, Outcome::invalid_name},
        {"too long", std::string(65, 'x'), {a}, {}, Outcome::invalid_name},
        {"no fields", "t", {}, {}, Outcome::bad_definition},
        {"field twice", "t", {a, {"A", FieldType::memo, 0}}, {}, Outcome::bad_definition},
        {"text width 0", "t", {{"w", FieldType::text, 0}}, {}, Outcome::bad_definition},
        {"text width 256", "t", {{"w", FieldType::text, 256}}, {}, Outcome::bad_definition},
        {"bookmark field", "t", {{"_bookmark", FieldType::byte, 0}}, {}, Outcome::invalid_name},
        {"index on missing field", "t", {a}, {{"i", {"b"}, false, false}}, Outcome::no_such_field},
        {"index without fields", "t", {a}, {{"i", {}, false, false}}, Outcome::bad_definition},
        {"index named twice",
         "t",
         {a},
         {{"i", {"a"}, false, false}, {"I", {"a"}, false, false}},
         Outcome::bad_definition},
        {"two primaries",
         "t",
         {a, {"b", FieldType::byte, 0}},
         {{"i", {"a"}, true, true}, {"j", {"b"}, true, true}},
         Outcome::bad_definition},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(store.create_table(c.table, c.fields, c.indexes), c.expected);
    }
    std::vector<std::string> names;
    store.table_names(names);
    EXPECT_EQ(names, std::vector<std::string>{"taken"}); // nothing half made
}

TEST(StoreTables, SchemaReadsBackAsDeclared) {
    ScratchDir dir;
    auto file = dir.file("schema.mdb");
    const std::vector<IndexDef> indexes = {
        {"Name_Event", split_field_list("name;[jd]"), true, true},
        {"by_day", {"jd"}, false, false},
        {"flags", {"flag", "small"}, true, false},
    };
    {
        TableStore store;
        ASSERT_EQ(store.create(file), Outcome::ok);
        ASSERT_EQ(store.create_table("all", every_type, indexes), Outcome::ok);
    }
    TableStore store;
    ASSERT_EQ(store.open(file), Outcome::ok);
    std::vector<FieldDef> fields;
    ASSERT_EQ(store.table_fields("ALL", fields), Outcome::ok);
    EXPECT_EQ(fields, every_type);
    std::vector<IndexDef> read;
    ASSERT_EQ(store.table_indexes("all", read), Outcome::ok);
    EXPECT_EQ(read, indexes);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("all", rs), Outcome::ok);
    EXPECT_EQ(rs.fields(), every_type);
    EXPECT_EQ(store.table_fields("none", fields), Outcome::no_such_table);
    EXPECT_EQ(store.table_indexes("none", read), Outcome::no_such_table);
    EXPECT_EQ(store.open_recordset("none", rs), Outcome::no_such_table);
    EXPECT_FALSE(rs.is_open());
}

TEST(StoreTransactions, CommitRollbackAndNesting) {
    ScratchDir dir;
    auto file = dir.file("tx.mdb");
    TableStore store;
    ASSERT_EQ(store.create(file), Outcome::ok);
    ASSERT_EQ(store.create_table("t", std::vector<FieldDef>{{"n", FieldType::long_integer, 0}}),
              Outcome::ok);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    {
        Transaction dropped = store.begin_transaction();
        ASSERT_TRUE(dropped.active());
        for (int i = 0; i < 3; ++i) ASSERT_EQ(add_row(rs, {{"n", i}}), Outcome::ok);
        EXPECT_EQ(rs.record_count(), 3);
    } // not committed
    EXPECT_EQ(rs.record_count(), 0);
    {
        Transaction outer = store.begin_transaction();
        ASSERT_EQ(add_row(rs, {{"n", 1}}), Outcome::ok);
        {
            Transaction inner = store.begin_transaction();
            ASSERT_EQ(add_row(rs, {{"n", 2}}), Outcome::ok);
            EXPECT_EQ(outer.commit(), Outcome::not_in_transaction); // inner still open
            EXPECT_EQ(inner.rollback(), Outcome::ok);
            EXPECT_EQ(inner.commit(), Outcome::not_in_transaction);
        }
        Transaction kept = store.begin_transaction();
        ASSERT_EQ(add_row(rs, {{"n", 3}}), Outcome::ok);
        EXPECT_EQ(kept.commit(), Outcome::ok);
        EXPECT_EQ(outer.commit(), Outcome::ok);
    }
    store.close();
    ASSERT_EQ(store.open(file), Outcome::ok);
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    EXPECT_EQ(testing::walk_forward(rs, "n"), (std::vector<Value>{1, 3}));
}

TEST(StoreLifetime, RecordsetsOfAClosedStoreReportNotOpen) {
    ScratchDir dir;
    TableStore store;
    ASSERT_EQ(store.create(dir.file("close.mdb")), Outcome::ok);
    ASSERT_EQ(store.create_table("t", every_type), Outcome::ok);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    Transaction open_work = store.begin_transaction();
    TableStore moved = std::move(store);
    EXPECT_TRUE(rs.is_open());
    moved.close();
    EXPECT_FALSE(rs.is_open());
    EXPECT_EQ(rs.move_first(), Outcome::not_open);
    EXPECT_EQ(rs.add_new(), Outcome::not_open);
    EXPECT_EQ(rs.get("name").outcome(), Outcome::not_open);
    EXPECT_EQ(open_work.commit(), Outcome::not_open);
    std::vector<std::string> names;
    EXPECT_EQ(moved.table_names(names), Outcome::not_open);
}

TEST(StoreLifetime, TwoStoresOnOneFileSeeEachOthersWrites) {
    ScratchDir dir;
    auto file = dir.file("shared.mdb");
    make_store(file, 2);
    TableStore writer, reader;
    ASSERT_EQ(writer.open(file), Outcome::ok);
    ASSERT_EQ(reader.open(file), Outcome::ok);
    Recordset in, out;
    ASSERT_EQ(writer.open_recordset("t", in), Outcome::ok);
    ASSERT_EQ(reader.open_recordset("t", out), Outcome::ok);
    ASSERT_EQ(out.move_last(), Outcome::ok); // the reader now holds a snapshot
    ASSERT_EQ(add_row(in, {{"n", 99}}), Outcome::ok);
    reader.refresh();
    ASSERT_EQ(out.move_last(), Outcome::ok);
    EXPECT_EQ(out.get("n").as_int(), 99);
    // The reader writes too: its snapshot gives way to the write.
    ASSERT_EQ(add_row(out, {{"n", 100}}), Outcome::ok);
    writer.refresh();
    EXPECT_EQ(in.record_count(), 4);
}

TEST(StoreLifetime, DeletingATableUnderAnOpenRecordset) {
    ScratchDir dir;
    auto file = dir.file("gone.mdb");
    make_store(file, 50);
    TableStore store;
    ASSERT_EQ(store.open(file), Outcome::ok);
    Recordset rs;
    ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    ASSERT_EQ(rs.move_next(), Outcome::ok); // a scan stands part way through the table
    ASSERT_EQ(store.delete_table("t"), Outcome::ok);
    EXPECT_EQ(rs.move_first(), Outcome::no_such_table);
    EXPECT_EQ(rs.add_new(), Outcome::ok);
    EXPECT_EQ(rs.update(), Outcome::no_such_table);
}

TEST(StoreTypes, SplitFieldListAndDescribe) {
    struct Case {
        const char* list;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {"F_surname;F_firstname;F_event;[f_version]",
         {"F_surname", "F_firstname", "F_event", "f_version"}},
        {" a ; +b ;[c d];", {"a", "b", "c d"}},
        {"", {}},
    };
    for (const Case& c : cases) EXPECT_EQ(split_field_list(c.list), c.names) << c.list;

    std::set<std::string_view> texts;
    for (int o = 0; o <= static_cast<int>(Outcome::store_error); ++o)
        texts.insert(describe(static_cast<Outcome>(o)));
    EXPECT_EQ(texts.size(), static_cast<std::size_t>(Outcome::store_error) + 1);
}

TEST(StoreTypes, ValueConversions) {
    struct Case {
        Value value;
        std::string text;
        double real;
        std::int64_t whole;
    };
    const Case cases[] = {
        {Value(), "", 0.0, 0},
        {Value(true), "-1", -1.0, -1},
        {Value(false), "0", 0.0, 0},
        {Value(42), "42", 42.0, 42},
        {Value(0.1), "0.1", 0.1, 0},
        {Value(2.5), "2.5", 2.5, 2},
        {Value(3.5), "3.5", 3.5, 4},
        {Value(-2.5), "-2.5", -2.5, -2},
        {Value(1.0 / 3.0), "0.333333333333333", 1.0 / 3.0, 0},
        {Value(" 12.75 "), " 12.75 ", 12.75, 13},
        {Value("12abc"), "12abc", 0.0, 0},
        {Value("0x10"), "0x10", 0.0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.value.as_text(), c.text);
        EXPECT_DOUBLE_EQ(c.value.as_double(), c.real);
        EXPECT_EQ(c.value.as_int(), c.whole);
    }
    Value failed = Value::failure(Outcome::no_such_field);
    EXPECT_TRUE(failed.is_null());
    EXPECT_FALSE(failed.ok());
    EXPECT_NE(failed, Value());
}

} // namespace
} // namespace celestark::store
