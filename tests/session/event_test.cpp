#include "session/calendar.h"
#include "session/event.h"
#include "session/event_time.h"
#include "session/messages.h"
#include "session/session.h"

#include <gtest/gtest.h>

namespace celestark {
namespace {

EventRow birth(const char* day, const char* month, const char* year, const char* gj = "G") {
    EventRow r = make_default_event();
    r[col::day] = day;
    r[col::month] = month;
    r[col::year] = year;
    r[col::gj] = gj;
    r[col::hours] = "0";
    return r;
}

TEST(EventSlots, StartStateAndDefaultEvent) {
    Session s;
    initialise_session(s, "/tmp/prog");
    EXPECT_EQ(s.event_slots.active_event, 1);
    for (int r = 0; r < event_rows; ++r) {
        if (r == slot::default_event) continue;
        for (const auto& cell : s.event_slots[r]) EXPECT_TRUE(cell.empty()) << r;
    }
    const EventRow& d = s.event_slots[slot::default_event];
    EXPECT_TRUE(slot_is_empty(s.event_slots[1]));
    EXPECT_FALSE(slot_is_empty(d));
    EXPECT_THROW((void)s.event_slots[22], std::out_of_range);
}

TEST(EventTime, ReductionOfTheZoneCodes) {
    // Local mean time at longitude 0: no offset whatever the meridian fields hold.
    EventRow r = birth("1", "1", "2000");
    r[col::hours] = "12";
    r[col::lz] = "L";
    r[col::long_deg] = "0";
    r[col::long_min] = "0";
    r[col::med_deg] = "75";
    r[col::dst] = "1";
    EXPECT_DOUBLE_EQ(reduce_event_time(r).greenwich_offset, 0.0);
    EXPECT_DOUBLE_EQ(reduce_event_time(r).event_jd, 2451545.0);

    // Zone time with an empty meridian: minus daylight saving only.
    r[col::lz] = "Z";
    r[col::med_deg] = "";
    r[col::med_min] = "";
    r[col::dst] = "1";
    EXPECT_DOUBLE_EQ(reduce_event_time(r).greenwich_offset, -1.0 / 24);

    // Eastern Standard Time, 75 W, on summer time: 5 - 1 hours behind.
    r[col::med_deg] = "75";
    r[col::med_ew] = "W";
    EXPECT_NEAR(reduce_event_time(r).event_jd, 2451545.0 + 4.0 / 24, 1e-9);
    r[col::med_ew] = "E";
    r[col::dst] = "0";
    r[col::lz] = "M";
    EXPECT_NEAR(reduce_event_time(r).event_jd, 2451545.0 - 5.0 / 24, 1e-9);

    // The default event: local mean time at 35 14 E, Julian calendar, a Friday.
    const EventMoment m = reduce_event_time(make_default_event());
    EXPECT_NEAR(m.longitude_deg, -(35 + 14.0 / 60), 1e-12);
    EXPECT_NEAR(m.latitude_deg, 31 + 46.0 / 60, 1e-12);
    EXPECT_NEAR(m.event_jd, julian_date(3, 4, 33, "J", 15.0 / 24 - (35 + 14.0 / 60) / 360), 1e-9);
    EXPECT_EQ(m.day_of_week_number, 5);
}

TEST(EventTime, AddCarriesInOrder) {
    struct Case {
        const char *day, *month, *year, *gj;
        int y, mo, d, h, mi, s, ms;
        const char *e_day, *e_month, *e_year, *e_hours, *e_mins, *e_secs, *e_msecs;
    };
    const Case cases[] = {
        // 31 January plus one month: 3 March in a common year, 2 March in a leap year.
        {"31", "1", "2001", "G", 0, 1, 0, 0, 0, 0, 0, "3", "3", "2001", "0", "0", "0", "0"},
        {"31", "1", "2000", "G", 0, 1, 0, 0, 0, 0, 0, "2", "3", "2000", "0", "0", "0", "0"},
        // 29 February plus one year.
        {"29", "2", "2000", "G", 1, 0, 0, 0, 0, 0, 0, "1", "3", "2001", "0", "0", "0", "0"},
        // 1900 is a leap year on the Julian calendar only.
        {"28", "2", "1900", "J", 0, 0, 1, 0, 0, 0, 0, "29", "2", "1900", "0", "0", "0", "0"},
        {"28", "2", "1900", "G", 0, 0, 1, 0, 0, 0, 0, "1", "3", "1900", "0", "0", "0", "0"},
        // One millisecond back from New Year runs every carry downward.
        {"1", "1", "2000", "G", 0, 0, 0, 0, 0, 0, -1, "31", "12", "1999", "23", "59", "59", "999"},
        // Months carry into years before days are settled.
        {"15", "11", "2000", "G", 0, 14, 0, 0, 0, 0, 0, "15", "1", "2002", "0", "0", "0", "0"},
        {"1", "3", "2000", "G", 0, 0, -1, 0, 0, 0, 0, "29", "2", "2000", "0", "0", "0", "0"},
        {"1", "1", "0", "J", 0, 0, -1, 0, 0, 0, 0, "31", "12", "-1", "0", "0", "0", "0"},
        {"30", "12", "1999", "G", 0, 0, 0, 50, 0, 0, 0, "1", "1", "2000", "2", "0", "0", "0"},
        {"1", "1", "2000", "G", 0, 0, 400, 0, 0, 0, 0, "4", "2", "2001", "0", "0", "0", "0"},
    };
    for (const auto& c : cases) {
        EventRow r = birth(c.day, c.month, c.year, c.gj);
        add_to_event_time(r, c.y, c.mo, c.d, c.h, c.mi, c.s, c.ms);
        SCOPED_TRACE(std::string(c.day) + "/" + c.month + "/" + c.year);
        EXPECT_EQ(r[col::day], c.e_day);
        EXPECT_EQ(r[col::month], c.e_month);
        EXPECT_EQ(r[col::year], c.e_year);
        EXPECT_EQ(r[col::hours], c.e_hours);
        EXPECT_EQ(r[col::mins], c.e_mins);
        EXPECT_EQ(r[col::secs], c.e_secs);
        EXPECT_EQ(r[col::msecs], c.e_msecs);
    }
    // Garbage in the cells counts as 0 and never faults.
    EventRow junk = birth("x", "", "??", "G");
    add_to_event_time(junk, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(junk[col::day], "30"); // month 0 carries to December first, then day 0 to 30 November
    EXPECT_EQ(junk[col::month], "11");
    EXPECT_EQ(junk[col::year], "-1");
}

TEST(EventRows, SearchDateSortsByTimeText) {
    struct Case {
        const char *y, *mo, *d, *h, *mi, *s, *expected;
    };
    constexpr Case cases[] = {
        {"-43", "3", "7", "6", "5", "9", "-000043/03/07 06:05:09"},
        {"0", "1", "1", "0", "0", "0", "000000/01/01 00:00:00"},
        {"2000", "12", "31", "23", "59", "59", "002000/12/31 23:59:59"},
        {"-1234567", "1", "1", "0", "0", "0", "-234567/01/01 00:00:00"},
        {"", "", "", "", "", "", "000000// ::"},
    };
    for (const auto& c : cases) EXPECT_EQ(search_date(c.y, c.mo, c.d, c.h, c.mi, c.s), c.expected);
    EXPECT_EQ(fold_pm("12", "pm"), "24");
    EXPECT_EQ(fold_pm("3", "pm"), "15");
    EXPECT_EQ(fold_pm("3", "am"), "3");
}

TEST(EventRows, DeriveEpochAndSlotSelection) {
    EventSlots slots;
    initialise_event_slots(slots);
    EventRow& b = slots[2];
    b = make_default_event();
    for (int c = col::epoch_place; c <= col::epoch_msecs; ++c)
        b[static_cast<std::size_t>(c)] = "e" + std::to_string(c);
    b[col::gj] = "G";
    b[col::time_zone] = "EST";
    b[col::epoch_exists] = "N";

    select_slot(slots, 2);
    EXPECT_EQ(slots.active_event, 2);
    EXPECT_EQ(slots.active_epoch_event, 18);
    EXPECT_TRUE(slot_is_empty(slots[18])) << "without a stored epoch the epoch row stays as it was";

    b[col::epoch_exists] = "Y";
    select_slot(slots, 2);
    const EventRow& e = slots[18];
    for (int c = col::place; c <= col::year; ++c)
        EXPECT_EQ(e[static_cast<std::size_t>(c)], "e" + std::to_string(c + 23));
    for (int c = col::hours; c <= col::msecs; ++c)
        EXPECT_EQ(e[static_cast<std::size_t>(c)], "e" + std::to_string(c + 22));
    EXPECT_EQ(e[col::event], "Epoch");
    EXPECT_EQ(e[col::gj], "G");
    EXPECT_EQ(e[col::time_zone], "GMT");
    EXPECT_EQ(e[col::lz], "Z");
    EXPECT_EQ(e[col::dst], "0");
    EXPECT_EQ(e[col::med_ew], "W");
    EXPECT_EQ(e[col::surname], b[col::surname]);
    EXPECT_EQ(e[col::epoch_day], "e38"); // the epoch cells still hold the epoch itself
    EXPECT_THROW(select_slot(slots, 5), std::out_of_range);
}

TEST(Messages, FatalErrorTitleAndHandler) {
    RecordingSink sink;
    std::string seen_title;
    fatal_error(sink, "open option database",
                ck_text(1, 3024, "file not found", " Opening OPTIONS database. ") + fatal_tail,
                [&](const std::string& title, const std::string&) { seen_title = title; });
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(seen_title, "Fatal Error in OPEN OPTION DATABASE");
    EXPECT_EQ(sink.messages[0].text.rfind("CK1-Error 3024 - file not found", 0), 0u);
    EXPECT_NE(sink.messages[0].text.find("This is a fatal error. Please contact Ivan Marlow"),
              std::string::npos);
}

} // namespace
} // namespace celestark
