#include "store/event_schema.h"

namespace celestark::store {

const std::vector<FieldDef>& event_table_fields() {
    static const std::vector<FieldDef> fields = [] {
        struct F {
            const char* name;
            int width;
        };
        // clang-format off
        constexpr F list[] = {
            {"F_Event", 30}, {"F_Version", 3}, {"F_Title", 30}, {"F_Surname", 40},
            {"F_Firstname", 40}, {"F_Place", 40}, {"F_Lat_deg", 2}, {"F_Lat_ns", 1},
            {"F_lat_min", 2}, {"F_lat_sec", 2}, {"F_long_deg", 3}, {"F_long_ew", 1},
            {"F_long_min", 2}, {"F_long_sec", 2}, {"F_day", 2}, {"F_month", 2}, {"F_year", 6},
            {"F_gj", 1}, {"F_hours", 2}, {"F_mins", 2}, {"F_secs", 2}, {"F_msecs", 3},
            {"F_time_zone", 3}, {"F_lz", 1}, {"F_med_deg", 3}, {"F_med_ew", 1}, {"F_med_min", 2},
            {"F_dst", 3}, {"F_epoch_place", 40}, {"F_epoch_lat_deg", 2}, {"F_epoch_lat_ns", 1},
            {"F_epoch_lat_min", 2}, {"F_epoch_lat_sec", 2}, {"F_epoch_long_deg", 3},
            {"F_epoch_long_ew", 1}, {"F_epoch_long_min", 2}, {"F_epoch_long_sec", 2},
            {"F_epoch_day", 2}, {"F_epoch_month", 2}, {"F_epoch_year", 6}, {"F_epoch_hours", 2},
            {"F_epoch_mins", 2}, {"F_epoch_secs", 2}, {"F_epoch_msecs", 3}, {"F_moon_on_asc", 3},
            {"F_source", 40}, {"F_group", 20}, {"F_reference", 40}, {"F_comments", 255},
            {"F_epoch_exists", 3}, {"F_search_date", 30}, {"F_epoch_months", 2},
            {"F_epoch_moon", 1}, {"F_options", 30},
        };
        // clang-format on
        std::vector<FieldDef> out;
        for (const F& f : list) out.push_back({f.name, FieldType::text, f.width});
        return out;
    }();
    return fields;
}

const std::vector<IndexDef>& event_table_indexes() {
    static const std::vector<IndexDef> indexes = {
        {"Name_Event", split_field_list("F_surname;F_firstname;F_event;[f_version]"), true, true},
        {"Event_Name", split_field_list("f_event;f_version;f_surname;f_firstname"), true, false},
        {"Place_Name", split_field_list("f_place;f_surname;f_firstname"), false, false},
        {"Date_Name", split_field_list("F_search_date;f_surname;f_firstname"), false, false},
    };
    return indexes;
}

} // namespace celestark::store
