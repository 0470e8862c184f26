// Recordsets: order, seeks, moves, bookmarks, editing and rows changing underneath.
#include "store_test_support.h"

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <tuple>

namespace celestark::store {
namespace {

using testing::add_row;
using testing::ScratchDir;
using testing::walk_forward;

const std::vector<FieldDef> people_fields = {{"last", FieldType::text, 20},
                                             {"first", FieldType::text, 20},
                                             {"n", FieldType::long_integer, 0}};

// Rows n = 1..6 in this order, so rowid = n. In index order (last, first, rowid) they run
// 2 (a y), 6 (a z), 5 (b a), 1 (b x), 3 (b x), 4 (c a): a tie on the key goes by rowid.
const std::vector<std::tuple<const char*, const char*>> people = {
    {"b", "x"}, {"a", "y"}, {"b", "x"}, {"c", "a"}, {"b", "a"}, {"a", "z"}};

class People : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(store.create(dir.file("people.mdb")), Outcome::ok);
        const std::vector<IndexDef> indexes = {{"by_name", {"last", "first"}, false, false},
                                               {"by_n", {"n"}, true, true}};
        ASSERT_EQ(store.create_table("people", people_fields, indexes), Outcome::ok);
        ASSERT_EQ(store.open_recordset("people", rs), Outcome::ok);
        int n = 0;
        for (auto [last, first] : people)
            ASSERT_EQ(add_row(rs, {{"last", last}, {"first", first}, {"n", ++n}}), Outcome::ok);
    }
    std::int64_t n() const { return rs.get("n").as_int(); }
    std::vector<Value> all_n() {
        rs.move_first();
        return walk_forward(rs, "n");
    }

    ScratchDir dir;
    TableStore store;
    Recordset rs;
};

TEST_F(People, OrderByIndexThenRowid) {
    EXPECT_EQ(all_n(), (std::vector<Value>{1, 2, 3, 4, 5, 6})); // rowid order, no index
    ASSERT_EQ(rs.set_index("BY_NAME"), Outcome::ok);
    EXPECT_EQ(rs.index_name(), "by_name");
    EXPECT_EQ(all_n(), (std::vector<Value>{2, 6, 5, 1, 3, 4}));
    EXPECT_EQ(rs.set_index("nope"), Outcome::no_such_index);
    EXPECT_EQ(rs.index_name(), "by_name");
}

TEST_F(People, SeekFullAndPartialKeys) {
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    struct Case {
        const char* op;
        std::vector<Value> keys;
        int expected; // n of the row found, 0 for no match
    };
    const Case cases[] = {
        {"=", {"b"}, 5},       {"=", {"b", "x"}, 1}, {"=", {"B", "X"}, 1},  {"=", {"b", "q"}, 0},
        {"=", {"d"}, 0},       {">=", {"a"}, 2},     {">=", {"b"}, 5},      {">=", {"b", "b"}, 1},
        {">=", {"c", "b"}, 0}, {">", {"b"}, 4},      {">", {"b", "x"}, 4},  {">", {"a", "y"}, 6},
        {">", {"c"}, 0},       {"<", {"b"}, 6},      {"<", {"b", "x"}, 5},  {"<", {"a"}, 0},
        {"<", {"a", "z"}, 2},  {"<=", {"b"}, 3},     {"<=", {"b", "x"}, 3}, {"<=", {"a", "zz"}, 6},
        {"<=", {"0"}, 0},      {"<=", {"z"}, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.op) + " " + c.keys[0].as_text() + " " +
                     (c.keys.size() > 1 ? c.keys[1].as_text() : ""));
        Outcome o = rs.seek(c.op, c.keys);
        EXPECT_EQ(o, c.expected ? Outcome::ok : Outcome::not_found);
        EXPECT_EQ(rs.no_match(), c.expected == 0);
        EXPECT_EQ(rs.has_current(), c.expected != 0);
        if (c.expected)
            EXPECT_EQ(n(), c.expected);
        else
            EXPECT_EQ(rs.get("n").outcome(), Outcome::no_current_record);
    }
}

TEST_F(People, StepsAfterSeeksAndAtTheEnds) {
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    ASSERT_EQ(rs.seek("<=", {"b", "x"}), Outcome::ok);
    EXPECT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_EQ(n(), 4);
    EXPECT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_TRUE(rs.eof());
    EXPECT_FALSE(rs.has_current());
    EXPECT_EQ(rs.move_next(), Outcome::no_current_record);
    EXPECT_EQ(rs.move_previous(), Outcome::ok); // from the end back to the last row
    EXPECT_EQ(n(), 4);

    ASSERT_EQ(rs.seek("<", {"b"}), Outcome::ok);
    rs.move_previous();
    EXPECT_EQ(n(), 2);
    rs.move_previous();
    EXPECT_TRUE(rs.bof());
    EXPECT_EQ(rs.move_previous(), Outcome::no_current_record);
    EXPECT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_EQ(n(), 2);

    // The reading pattern of the ephemeris tables: seek, back two, then six rows forward.
    ASSERT_EQ(rs.seek(">=", {"b", "x"}), Outcome::ok);
    rs.move_previous();
    rs.move_previous();
    EXPECT_EQ(walk_forward(rs, "n"), (std::vector<Value>{6, 5, 1, 3, 4}));

    EXPECT_EQ(rs.seek("~", {"b"}), Outcome::bad_seek);
    EXPECT_EQ(rs.seek("=", std::vector<Value>{}), Outcome::bad_seek);
    EXPECT_EQ(rs.seek("=", {"a", "b", "c"}), Outcome::bad_seek);
    ASSERT_EQ(rs.set_index(""), Outcome::ok);
    EXPECT_EQ(rs.seek("=", {1}), Outcome::bad_seek); // no index chosen
}

TEST_F(People, ChangingIndexKeepsTheCurrentRow) {
    ASSERT_EQ(rs.move_first(), Outcome::ok); // n 1 in rowid order
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    EXPECT_EQ(n(), 1);
    rs.move_next();
    EXPECT_EQ(n(), 3);
    ASSERT_EQ(rs.set_index(""), Outcome::ok);
    rs.move_next();
    EXPECT_EQ(n(), 4);
}

TEST_F(People, BookmarksSurviveInsertsAndDeletes) {
    std::map<int, std::string> marks;
    rs.move_first();
    while (rs.has_current()) {
        marks[static_cast<int>(n())] = rs.bookmark();
        rs.move_next();
    }
    ASSERT_EQ(rs.go_to(marks[6]), Outcome::ok);
    ASSERT_EQ(rs.delete_row(), Outcome::ok); // the newest row
    ASSERT_EQ(rs.go_to(marks[2]), Outcome::ok);
    ASSERT_EQ(rs.delete_row(), Outcome::ok);
    ASSERT_EQ(add_row(rs, {{"last", "a"}, {"first", "a"}, {"n", 7}}), Outcome::ok);
    std::string seventh = rs.last_modified_bookmark();
    EXPECT_NE(seventh, marks[6]); // a deleted row's bookmark is never given again
    for (int k : {1, 3, 4, 5}) {
        ASSERT_EQ(rs.go_to(marks[k]), Outcome::ok);
        EXPECT_EQ(n(), k);
    }
    EXPECT_EQ(rs.go_to(marks[2]), Outcome::not_found);
    EXPECT_EQ(n(), 5); // a failed go_to leaves the position alone
    ASSERT_EQ(rs.go_to(seventh), Outcome::ok);
    EXPECT_EQ(n(), 7);
    for (const char* bad : {"", "abc", "12x", " 3", "99999999999999999999"})
        EXPECT_EQ(rs.go_to(bad), Outcome::bad_bookmark) << bad;
}

TEST_F(People, AddEditCancelAndWhereTheRecordsetStands) {
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    ASSERT_EQ(rs.seek("=", {"b", "a"}), Outcome::ok); // n 5
    std::string here = rs.bookmark();
    ASSERT_EQ(add_row(rs, {{"last", "b"}, {"first", "m"}, {"n", 8}}), Outcome::ok);
    EXPECT_EQ(rs.bookmark(), here); // after an add the current row is what it was
    rs.move_next();
    EXPECT_EQ(n(), 8); // the new row comes next in index order

    ASSERT_EQ(rs.edit(), Outcome::ok);
    ASSERT_EQ(rs.set("LAST", "c"), Outcome::ok);
    ASSERT_EQ(rs.set("first", "z"), Outcome::ok);
    EXPECT_EQ(rs.get("last"), Value("c")); // the edited values are read while editing
    ASSERT_EQ(rs.update(), Outcome::ok);
    EXPECT_EQ(n(), 8); // the edited row stays current, now at its new place
    EXPECT_EQ(rs.last_modified_bookmark(), rs.bookmark());
    EXPECT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_TRUE(rs.eof());

    ASSERT_EQ(rs.seek("=", {"a", "y"}), Outcome::ok);
    ASSERT_EQ(rs.edit(), Outcome::ok);
    ASSERT_EQ(rs.set("first", "changed"), Outcome::ok);
    ASSERT_EQ(rs.cancel_update(), Outcome::ok);
    EXPECT_EQ(rs.get("first"), Value("y"));
    EXPECT_EQ(rs.update(), Outcome::not_editing);
    EXPECT_EQ(rs.set("first", "x"), Outcome::not_editing);
    EXPECT_EQ(rs.cancel_update(), Outcome::not_editing);

    ASSERT_EQ(rs.add_new(), Outcome::ok);
    rs.move_first(); // a move abandons an edit
    EXPECT_FALSE(rs.editing());
    EXPECT_EQ(rs.record_count(), 7);
}

TEST_F(People, DuplicateKeyIsRefusedAndNothingStored) {
    ASSERT_EQ(add_row(rs, {{"last", "q"}, {"n", 3}}), Outcome::duplicate_key);
    EXPECT_TRUE(rs.editing()); // the edit stays open to be mended or cancelled
    ASSERT_EQ(rs.set("n", 30), Outcome::ok);
    ASSERT_EQ(rs.update(), Outcome::ok);
    EXPECT_EQ(rs.record_count(), 7);

    ASSERT_EQ(rs.set_index("by_n"), Outcome::ok);
    ASSERT_EQ(rs.seek("=", {4}), Outcome::ok);
    ASSERT_EQ(rs.edit(), Outcome::ok);
    ASSERT_EQ(rs.set("n", 5), Outcome::ok);
    EXPECT_EQ(rs.update(), Outcome::duplicate_key);
    ASSERT_EQ(rs.cancel_update(), Outcome::ok);
    EXPECT_EQ(n(), 4);
    EXPECT_EQ(rs.seek("=", {5}), Outcome::ok);
    EXPECT_EQ(rs.get("last"), Value("b"));
    EXPECT_EQ(rs.record_count(), 7);
}

TEST_F(People, DeleteLeavesNoCurrentRowThenMovesOn) {
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    ASSERT_EQ(rs.seek("=", {"b", "x"}), Outcome::ok); // n 1, then 3
    ASSERT_EQ(rs.delete_row(), Outcome::ok);
    EXPECT_FALSE(rs.has_current());
    EXPECT_EQ(rs.get("n").outcome(), Outcome::no_current_record);
    EXPECT_EQ(rs.delete_row(), Outcome::no_current_record);
    EXPECT_EQ(rs.edit(), Outcome::no_current_record);
    ASSERT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_EQ(n(), 3);
    ASSERT_EQ(rs.delete_row(), Outcome::ok);
    ASSERT_EQ(rs.move_previous(), Outcome::ok);
    EXPECT_EQ(n(), 5);
    EXPECT_EQ(all_n(), (std::vector<Value>{2, 6, 5, 4}));
}

// The current row edited through another recordset: its new values are read, and moves go on from
// its new key. (Rows added and deleted elsewhere are the model test's below.)
TEST_F(People, TheCurrentRowEditedThroughAnotherRecordset) {
    Recordset other;
    ASSERT_EQ(store.open_recordset("people", other), Outcome::ok);
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    ASSERT_EQ(rs.seek("=", {"b", "x"}), Outcome::ok); // n 1
    ASSERT_EQ(other.go_to(rs.bookmark()), Outcome::ok);
    ASSERT_EQ(other.edit(), Outcome::ok);
    ASSERT_EQ(other.set("last", "a"), Outcome::ok);
    ASSERT_EQ(other.set("first", "b"), Outcome::ok);
    ASSERT_EQ(other.update(), Outcome::ok);
    ASSERT_EQ(rs.move_next(), Outcome::ok);
    EXPECT_EQ(n(), 2);
    ASSERT_EQ(rs.move_previous(), Outcome::ok);
    EXPECT_EQ(rs.get("last"), Value("a"));
    EXPECT_EQ(n(), 1);
}

TEST_F(People, FieldsByName) {
    rs.move_first();
    EXPECT_EQ(rs.get("N").as_int(), 1);
    EXPECT_EQ(rs.field_index("FIRST"), 1);
    EXPECT_EQ(rs.field_index("nope"), -1);
    EXPECT_EQ(rs.get("nope").outcome(), Outcome::no_such_field);
    EXPECT_EQ(rs.get(7).outcome(), Outcome::no_such_field);
    EXPECT_FALSE(rs.is_null("first"));
    ASSERT_EQ(rs.edit(), Outcome::ok);
    EXPECT_EQ(rs.set("nope", 1), Outcome::no_such_field);
    ASSERT_EQ(rs.set("first", Value()), Outcome::ok);
    ASSERT_EQ(rs.update(), Outcome::ok);
    EXPECT_TRUE(rs.is_null("first"));
    EXPECT_EQ(rs.fields(), people_fields);
    EXPECT_EQ(rs.table_name(), "people");
}

// Scans select only the fields read so far: a field first read part way through a walk, or
// after a move, a delete or a change of index, must still come from the right row.
TEST_F(People, FieldsFirstReadPartWayThroughAWalk) {
    ASSERT_EQ(rs.set_index("by_name"), Outcome::ok);
    rs.move_first();
    std::vector<std::string> seen;
    int row = 0;
    while (rs.has_current()) {
        std::string line = rs.get("n").as_text();
        if (row >= 2) line += rs.get("first").as_text();
        if (row >= 4) line += rs.get("last").as_text();
        seen.push_back(line);
        rs.move_next();
        ++row;
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"2", "6", "5a", "1x", "3xb", "4ac"}));

    Recordset fresh;
    ASSERT_EQ(store.open_recordset("people", fresh), Outcome::ok);
    ASSERT_EQ(fresh.set_index("by_n"), Outcome::ok);
    ASSERT_EQ(fresh.seek("=", {3}), Outcome::ok);
    ASSERT_EQ(fresh.move_next(), Outcome::ok); // n 4: nothing read yet
    ASSERT_EQ(fresh.set_index("by_name"), Outcome::ok);
    EXPECT_EQ(fresh.get("first"), Value("a"));
    ASSERT_EQ(fresh.move_previous(), Outcome::ok);
    EXPECT_EQ(fresh.get("n"), Value(3));
    ASSERT_EQ(fresh.delete_row(), Outcome::ok);
    ASSERT_EQ(fresh.move_previous(), Outcome::ok);
    EXPECT_EQ(fresh.get("n"), Value(1));
    EXPECT_EQ(fresh.get("last"), Value("b"));
    ASSERT_EQ(fresh.edit(), Outcome::ok);
    ASSERT_EQ(fresh.update(), Outcome::ok);
    EXPECT_EQ(fresh.get("first"), Value("x"));

    Recordset third; // an edit starts from every field of the row, read or not
    ASSERT_EQ(store.open_recordset("people", third), Outcome::ok);
    ASSERT_EQ(third.set_index("by_n"), Outcome::ok);
    ASSERT_EQ(third.seek("=", {5}), Outcome::ok);
    ASSERT_EQ(third.edit(), Outcome::ok);
    EXPECT_EQ(third.get("last"), Value("b"));
    EXPECT_EQ(third.get("first"), Value("a"));
}

// A new store with the one table "t".
class OneTable : public ::testing::Test {
  protected:
    void make(const std::vector<FieldDef>& fields, const std::vector<IndexDef>& indexes = {}) {
        ASSERT_EQ(store.create(dir.file("t.mdb")), Outcome::ok);
        ASSERT_EQ(store.create_table("t", fields, indexes), Outcome::ok);
        ASSERT_EQ(store.open_recordset("t", rs), Outcome::ok);
    }
    ScratchDir dir;
    TableStore store;
    Recordset rs;
};

TEST_F(OneTable, AnEmptyTableHasNoCurrentRow) {
    make(people_fields, {{"k", {"n"}, false, false}});
    EXPECT_TRUE(rs.eof());
    EXPECT_TRUE(rs.bof());
    EXPECT_EQ(rs.move_first(), Outcome::no_current_record);
    EXPECT_TRUE(rs.eof() && rs.bof());
    EXPECT_EQ(rs.move_last(), Outcome::no_current_record);
    EXPECT_EQ(rs.move_next(), Outcome::no_current_record);
    EXPECT_EQ(rs.move_previous(), Outcome::no_current_record);
    EXPECT_EQ(rs.get("n").outcome(), Outcome::no_current_record);
    EXPECT_EQ(rs.bookmark(), "");
    EXPECT_EQ(rs.record_count(), 0);
    ASSERT_EQ(rs.set_index("k"), Outcome::ok);
    EXPECT_EQ(rs.seek("<", {5}), Outcome::not_found);
}

TEST_F(OneTable, NullsSortFirstAndAreReached) {
    make(people_fields, {{"k", {"last", "first"}, false, false}});
    // Index order: (null,null) 2, (null,null) 4, (a,null) 5, (a,x) 3, (m,null) 6, (m,x) 1.
    const std::vector<std::pair<Value, Value>> rows = {{"m", "x"},     {Value(), Value()},
                                                       {"a", "x"},     {Value(), Value()},
                                                       {"a", Value()}, {"m", Value()}};
    int n = 0;
    for (const auto& [last, first] : rows)
        ASSERT_EQ(add_row(rs, {{"last", last}, {"first", first}, {"n", ++n}}), Outcome::ok);
    ASSERT_EQ(rs.set_index("k"), Outcome::ok);
    rs.move_first();
    EXPECT_EQ(walk_forward(rs, "n"), (std::vector<Value>{2, 4, 5, 3, 6, 1}));
    rs.move_last();
    std::vector<Value> back;
    while (rs.has_current()) {
        back.push_back(rs.get("n"));
        rs.move_previous();
    }
    EXPECT_EQ(back, (std::vector<Value>{1, 6, 3, 5, 4, 2}));

    struct Case {
        const char* op;
        std::vector<Value> keys;
        int expected;
    };
    const Case cases[] = {
        {"<", {"a"}, 4},      {"<", {"m", "x"}, 6}, {"<", {"a", "x"}, 5},      {"=", {Value()}, 2},
        {"<=", {Value()}, 4}, {">", {Value()}, 5},  {">=", {"a", Value()}, 5}, {"<", {Value()}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.op + std::string(" ") + c.keys[0].as_text());
        ASSERT_EQ(rs.seek(c.op, c.keys), c.expected ? Outcome::ok : Outcome::not_found);
        if (c.expected) {
            EXPECT_EQ(rs.get("n").as_int(), c.expected);
        }
    }
}

TEST_F(OneTable, ValuesBecomeTheFieldsType) {
    const std::vector<FieldDef> fields = {
        {"t", FieldType::text, 3},    {"m", FieldType::memo, 0},
        {"f", FieldType::boolean, 0}, {"b", FieldType::byte, 0},
        {"i", FieldType::integer, 0}, {"l", FieldType::long_integer, 0},
        {"s", FieldType::single, 0},  {"d", FieldType::double_precision, 0},
        {"w", FieldType::date, 0}};
    make(fields);
    struct Case {
        const char* field;
        Value in;
        Outcome outcome;
        Value stored;
    };
    const Case cases[] = {
        {"t", "abc", Outcome::ok, "abc"},
        {"t", "abcd", Outcome::field_too_small, {}},
        {"t", "\xC3\xA4\xC3\xB6\xC3\xBC", Outcome::ok, "\xC3\xA4\xC3\xB6\xC3\xBC"}, // 3 letters
        {"t", 12, Outcome::ok, "12"},
        {"t", Value(), Outcome::ok, Value()},
        {"m", std::string(5000, 'm'), Outcome::ok, std::string(5000, 'm')},
        {"f", true, Outcome::ok, -1},
        {"f", 1, Outcome::ok, -1},
        {"f", 0, Outcome::ok, 0},
        {"f", "True", Outcome::ok, -1},
        {"f", "no", Outcome::ok, 0},
        {"f", "maybe", Outcome::type_mismatch, {}},
        {"f", Value(), Outcome::type_mismatch, {}},
        {"b", 255, Outcome::ok, 255},
        {"b", 256, Outcome::value_out_of_range, {}},
        {"b", -1, Outcome::value_out_of_range, {}},
        {"b", " 12 ", Outcome::ok, 12},
        {"b", 2.5, Outcome::ok, 2},
        {"i", 32767, Outcome::ok, 32767},
        {"i", -32768, Outcome::ok, -32768},
        {"i", 32768, Outcome::value_out_of_range, {}},
        {"i", "x", Outcome::type_mismatch, {}},
        {"l", 2147483647, Outcome::ok, 2147483647},
        {"l", 2147483648LL, Outcome::value_out_of_range, {}},
        {"s", 0.1, Outcome::ok, static_cast<double>(0.1f)},
        {"s", 1e39, Outcome::value_out_of_range, {}},
        {"d", "2451545.25", Outcome::ok, 2451545.25},
        {"d", 7, Outcome::ok, 7.0},
        {"d", "", Outcome::type_mismatch, {}},
        {"w", 36526.5, Outcome::ok, 36526.5},
        {"d", Value::failure(Outcome::no_such_field), Outcome::type_mismatch, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.field) + " <- " + c.in.as_text().substr(0, 20));
        ASSERT_EQ(rs.add_new(), Outcome::ok);
        EXPECT_EQ(rs.set(c.field, c.in), c.outcome);
        if (c.outcome != Outcome::ok) continue;
        ASSERT_EQ(rs.update(), Outcome::ok);
        ASSERT_EQ(rs.go_to(rs.last_modified_bookmark()), Outcome::ok);
        EXPECT_EQ(rs.get(c.field), c.stored);
    }
    // A flag not set is False.
    ASSERT_EQ(rs.add_new(), Outcome::ok);
    ASSERT_EQ(rs.update(), Outcome::ok);
    ASSERT_EQ(rs.go_to(rs.last_modified_bookmark()), Outcome::ok);
    EXPECT_EQ(rs.get("f"), Value(false));
    EXPECT_TRUE(rs.is_null("d"));
}

// Random adds, deletes, seeks and steps, checked against an ordered model of the table: every
// move must land on the row the order says, however the rows changed since the last one.
TEST_F(OneTable, StepsStayInOrderWhileRowsChange) {
    make({{"k", FieldType::integer, 0}, {"v", FieldType::long_integer, 0}},
         {{"by_k", {"k"}, false, false}});
    Recordset& walker = rs;
    Recordset writer;
    ASSERT_EQ(store.open_recordset("t", writer), Outcome::ok);
    ASSERT_EQ(walker.set_index("by_k"), Outcome::ok);

    using Key = std::pair<int, std::int64_t>; // k, rowid
    std::map<Key, int> model;
    std::mt19937 random(20240601);
    auto pick = [&](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    auto add = [&](Recordset& through) {
        int k = pick(12);
        ASSERT_EQ(add_row(through, {{"k", k}, {"v", k}}), Outcome::ok);
        model[{k, std::stoll(through.last_modified_bookmark())}] = k;
    };
    for (int i = 0; i < 30; ++i) add(writer);
    walker.move_first();
    std::optional<Key> at = model.begin()->first;
    bool at_deleted = false; // the walker's row was deleted: it has no row to show until a move

    for (int step = 0; step < 600; ++step) {
        int action = pick(10);
        bool moves = (action < 5 && at) || action >= 8;
        if (moves) at_deleted = false;
        if (action < 3 && at) { // move_next
            auto next = model.upper_bound(*at);
            ASSERT_EQ(walker.move_next(), Outcome::ok);
            at = next == model.end() ? std::nullopt : std::optional<Key>(next->first);
        } else if (action < 5 && at) { // move_previous
            auto here = model.lower_bound(*at);
            ASSERT_EQ(walker.move_previous(), Outcome::ok);
            at = here == model.begin() ? std::nullopt : std::optional<Key>(std::prev(here)->first);
        } else if (action < 7) {
            add(pick(2) ? writer : walker);
        } else if (action < 8 && model.size() > 5) { // delete a random row through the writer
            auto victim = std::next(model.begin(), pick(static_cast<int>(model.size())));
            ASSERT_EQ(writer.go_to(std::to_string(victim->first.second)), Outcome::ok);
            ASSERT_EQ(writer.delete_row(), Outcome::ok);
            at_deleted = at_deleted || victim->first == *at;
            model.erase(victim); // `at` may now be a deleted row's key: moves go on from it
        } else {                 // seek "<" a random key, as the ephemeris reader does
            int k = pick(13);
            auto found = model.lower_bound({k, 0});
            Outcome o = walker.seek("<", {k});
            if (found == model.begin()) {
                ASSERT_EQ(o, Outcome::not_found);
                walker.move_first();
                at = model.empty() ? std::nullopt : std::optional<Key>(model.begin()->first);
            } else {
                ASSERT_EQ(o, Outcome::ok);
                at = std::prev(found)->first;
            }
        }
        if (!at) { // fell off an end: start again from the first row
            walker.move_first();
            at = model.begin()->first;
        }
        if (at_deleted) {
            EXPECT_EQ(walker.get("k").outcome(), Outcome::no_current_record);
            continue;
        }
        ASSERT_TRUE(walker.has_current()) << "step " << step;
        ASSERT_EQ(walker.bookmark(), std::to_string(at->second)) << "step " << step;
        ASSERT_EQ(walker.get("k").as_int(), at->first);
    }
}

} // namespace
} // namespace celestark::store
