#include "store/dated_rows.h"

#include "store/table_store.h"

namespace celestark::store {

namespace {

class StoredRows : public DatedRowSource {
  public:
    Outcome open(const std::filesystem::path& file, const std::string& table,
                 const std::vector<std::string>& columns) {
        Outcome o = db_.open(file, TableStore::Access::read_only);
        if (o != Outcome::ok) return o;
        if ((o = db_.open_recordset(table, rs_)) != Outcome::ok) return o;
        if ((o = rs_.set_index("day_number")) != Outcome::ok) return o;
        date_field_ = rs_.field_index("julian_day_number");
        if (date_field_ < 0) return Outcome::no_such_field;
        for (const std::string& c : columns) {
            fields_.push_back(rs_.field_index(c));
            if (fields_.back() < 0) return Outcome::no_such_field;
        }
        count_ = rs_.record_count();
        if (count_ < 6) return Outcome::no_current_record;
        if ((o = rs_.move_first()) != Outcome::ok) return o;
        first_ = rs_.get(date_field_).as_double();
        if ((o = rs_.move_next()) != Outcome::ok) return o;
        second_ = rs_.get(date_field_).as_double();
        if ((o = rs_.move_last()) != Outcome::ok) return o;
        last_ = rs_.get(date_field_).as_double();
        return Outcome::ok;
    }

    std::int64_t count() const override { return count_; }
    double first_date() const override { return first_; }
    double second_date() const override { return second_; }
    double last_date() const override { return last_; }

    bool read(double from, std::int64_t n, std::vector<double>& dates,
              std::vector<double>& values) override {
        if (rs_.seek(">=", {Value(from)}) != Outcome::ok) return false;
        Outcome o = Outcome::ok;
        for (std::int64_t i = 0; i < n && o == Outcome::ok && !rs_.eof(); ++i) {
            const Value date = rs_.get(date_field_);
            if (!date.ok() || date.is_null()) return false;
            dates.push_back(date.as_double());
            for (int f : fields_) values.push_back(rs_.get(f).as_double());
            o = rs_.move_next();
        }
        return o == Outcome::ok;
    }

  private:
    TableStore db_;
    Recordset rs_;
    int date_field_ = -1;
    std::vector<int> fields_;
    std::int64_t count_ = 0;
    double first_ = 0, second_ = 0, last_ = 0;
};

} // namespace

std::unique_ptr<DatedRowSource> open_dated_rows(const std::filesystem::path& file,
                                                const std::string& table,
                                                const std::vector<std::string>& columns,
                                                Outcome& outcome) {
    auto rows = std::make_unique<StoredRows>();
    outcome = rows->open(file, table, columns);
    if (outcome != Outcome::ok) return nullptr;
    return rows;
}

} // namespace celestark::store
