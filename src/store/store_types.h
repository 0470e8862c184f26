// Values, outcomes and table definitions shared by the table store and its recordsets.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace celestark::store {

// What an operation of the store came to. Callers tell these apart; nothing is thrown.
enum class Outcome {
    ok,
    no_current_record, // no row is current: empty table, past either end, after a delete
    not_found,         // a seek found no row, or a bookmark names a row that is gone
    bad_bookmark,      // the text is not a bookmark
    duplicate_key,     // a unique index already holds the key; nothing was stored
    no_such_file,      // the file to open does not exist
    file_exists,       // the file to create exists already
    damaged_file,      // the file is not a database, or is damaged
    no_such_table,
    table_exists,
    no_such_field,
    no_such_index,
    invalid_name,       // a table, field or index name the store does not accept
    bad_definition,     // a table definition that cannot be built (duplicate field, bad width...)
    cannot_create,      // the file or table could not be created
    type_mismatch,      // the value cannot become the field's type
    value_out_of_range, // the number does not fit the field's type
    field_too_small,    // the text is longer than the field's width
    not_editing,        // set/update/cancel without add_new or edit first
    bad_seek,           // unknown comparison, or no keys, or more keys than the index has fields
    read_only,          // the file was opened for reading only, or cannot be written
    busy,               // another process holds the file
    not_open,           // the store is closed
    not_in_transaction, // commit or rollback of a transaction that is not the innermost open one
    io_error,           // the operating system failed a read or write
    store_error,        // any other failure of the engine; see TableStore::last_error()
};

// A short English text for an outcome, for messages and test output.
std::string_view describe(Outcome outcome);

// The types a stored field can have. `boolean` holds -1 for True and 0 for False, `byte` 0 to 255,
// `integer` 16 bits, `long_integer` 32 bits, `single` a value rounded to single precision, `date`
// days since 30 December 1899. `unknown` is a column of a file made by another program: its values
// are stored as given.
enum class FieldType {
    text,
    memo,
    boolean,
    byte,
    integer,
    long_integer,
    single,
    double_precision,
    date,
    unknown,
};

struct FieldDef {
    std::string name;
    FieldType type = FieldType::text;
    int width = 0; // characters, for text fields (1 to 255); 0 for every other type

    friend bool operator==(const FieldDef&, const FieldDef&) = default;
};

struct IndexDef {
    std::string name;
    std::vector<std::string> fields; // in index order
    bool unique = false;
    bool primary = false; // at most one per table; a primary index is unique

    friend bool operator==(const IndexDef&, const IndexDef&) = default;
};

// Splits a field list written as "F_surname;F_firstname;[f_version]" into its names: separators are
// semicolons, brackets and surrounding blanks are dropped, and a leading "+" (ascending) is
// allowed.
std::vector<std::string> split_field_list(std::string_view list);

// A field value: null, a whole number, a real number or text. A value read from a field that could
// not be read is null and carries the reason in outcome().
class Value {
  public:
    enum class Kind { null, integer, real, text };

    Value() = default;
    // A flag as the stored tables keep it: True is -1, False is 0.
    Value(bool flag) : data_(std::int64_t{flag ? -1 : 0}) {}
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char>) Value(T number)
        : data_(static_cast<std::int64_t>(number)) {}
    template <std::floating_point T> Value(T number) : data_(static_cast<double>(number)) {}
    Value(std::string text) : data_(std::move(text)) {}
    Value(std::string_view text) : data_(std::string(text)) {}
    Value(const char* text) : data_(std::string(text)) {}
    Value(char) = delete;
    Value(std::nullptr_t) = delete;

    static Value failure(Outcome why) {
        Value v;
        v.outcome_ = why;
        return v;
    }

    Kind kind() const { return static_cast<Kind>(data_.index()); }
    bool is_null() const { return kind() == Kind::null; }
    bool ok() const { return outcome_ == Outcome::ok; }
    Outcome outcome() const { return outcome_; }

    // Conversions. Null gives "" and 0. A real becomes text with up to 15 significant digits and
    // a whole number by rounding half to even. Text that is not a number gives 0.
    std::string as_text() const;
    double as_double() const;
    std::int64_t as_int() const;
    // Text as stored, or nullptr when the value is not text.
    const std::string* text_ptr() const { return std::get_if<std::string>(&data_); }

    friend bool operator==(const Value& a, const Value& b) = default;

  private:
    std::variant<std::monostate, std::int64_t, double, std::string> data_;
    Outcome outcome_ = Outcome::ok;
};

// Reads a number written as decimal text with optional blanks around it; false when the text
// is anything else.
bool parse_number(std::string_view text, double& out);

} // namespace celestark::store
