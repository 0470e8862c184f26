// celestark-cli: the command-line face of the engine. CSV with a header line on stdout; errors on
// stderr with a non-zero exit.
#include "epoch.h"
#include "houses.h"
#include "positions.h"
#include "predict.h"
#include "render.h"
#include "session/angles.h"
#include "session/calendar.h"
#include "session/event_time.h"
#include "session/fixed_tables.h"
#include "session/session.h"
#include "session/text.h"
#include "similars.h"
#include "stars.h"
#include "stores.h"
#include "tables.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace celestark;

struct Args {
    std::map<std::string, std::string> options; // --name value, or "" for a bare flag
    std::vector<std::string> positional;
};

Args parse_args(int argc, char** argv, int first) {
    Args a;
    for (int i = first; i < argc; ++i) {
        std::string s = argv[i];
        if (s.rfind("--", 0) == 0) {
            const bool has_value = i + 1 < argc && std::string(argv[i + 1]).rfind("--", 0) != 0;
            a.options[s.substr(2)] = has_value ? argv[++i] : "";
        } else {
            a.positional.push_back(s);
        }
    }
    return a;
}

using cli::fail;

// Splits "a<sep>b<sep>c" where the first field may carry a leading minus (negative years).
std::optional<std::vector<double>> split_numbers(const std::string& text, char sep,
                                                 std::size_t count) {
    std::vector<double> out;
    std::size_t start = 0;
    for (std::size_t i = 1; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == sep) {
            const std::string part = text.substr(start, i - start);
            if (part.empty() || part.find_first_not_of("+-0123456789.") != std::string::npos)
                return std::nullopt;
            out.push_back(text_to_number(part));
            start = i + 1;
        }
    }
    if (out.size() != count) return std::nullopt;
    return out;
}

void print_time_row(double jd) {
    const double t = t_from_j2000(jd);
    const double dt = delta_t(t);
    std::printf("%.6f,%.3f,%.8f,%.9f,%d\n", jd, dt, jd + dt / 86400.0, greenwich_sidereal_hours(t),
                day_of_week(jd));
}

int command_jd(const Args& a) {
    const auto date_it = a.options.find("date");
    if (date_it == a.options.end()) return fail("jd needs --date Y-M-D");
    const auto date = split_numbers(date_it->second, '-', 3);
    if (!date) return fail("--date must read Y-M-D, for example 2000-1-1 or -4712-1-1");
    std::vector<double> time{0, 0, 0};
    if (const auto it = a.options.find("time"); it != a.options.end()) {
        const auto t = split_numbers(it->second, ':', 3);
        if (!t) return fail("--time must read h:m:s");
        time = *t;
    }
    std::string cal = "G";
    if (const auto it = a.options.find("cal"); it != a.options.end()) cal = it->second;
    if (cal != "G" && cal != "J") return fail("--cal must be G or J");
    const auto& d = *date;
    const int month = static_cast<int>(d[1]);
    if (month < 1 || month > 12) return fail("month must be 1 to 12");
    if (std::fabs(d[0]) > 32767) return fail("year must lie within -32768 to 32767");
    const double fraction = (time[0] + time[1] / 60.0 + time[2] / 3600.0) / 24.0;
    const double jd = julian_date(d[2], month, static_cast<int>(d[0]), cal, fraction);
    std::printf("jd,delta_t_s,jd_ephemeris,gmst_hours,day_of_week\n");
    print_time_row(jd);
    return 0;
}

int command_default_event() {
    Session session;
    initialise_session(session, std::filesystem::current_path().string());
    const EventRow& row = session.event_slots[slot::default_event];
    const EventMoment m = reduce_event_time(row);
    const double t = t_from_j2000(m.event_jd);
    const double dt = delta_t(t);
    const double gmst = greenwich_sidereal_hours(t);
    std::printf("The default event: %s %s%s, %s/%s/%s %s:%s %s calendar, local mean time at %s%s%s "
                "%s%s%s\n",
                trim(row[col::event]).c_str(), trim(row[col::firstname]).c_str(),
                trim(row[col::surname]).c_str(), row[col::day].c_str(), row[col::month].c_str(),
                row[col::year].c_str(), row[col::hours].c_str(), two_digits(0).c_str(),
                row[col::gj] == "G" ? "Gregorian" : "Julian", row[col::lat_deg].c_str(),
                row[col::lat_ns].c_str(), row[col::lat_min].c_str(), row[col::long_deg].c_str(),
                row[col::long_ew].c_str(), row[col::long_min].c_str());
    std::printf("jd,delta_t_s,jd_ephemeris,gmst_hours,local_sidereal_hours,day_of_week\n");
    std::printf("%.6f,%.3f,%.8f,%.9f,%.9f,%s\n", m.event_jd, dt, m.event_jd + dt / 86400.0, gmst,
                norm_mod(gmst - m.longitude_deg / 15.0, 24.0),
                std::string(day_names[static_cast<std::size_t>(day_of_week(m.event_jd))]).c_str());
    return 0;
}

void usage() {
    std::fprintf(
        stderr, "usage: celestark-cli COMMAND [options]\n"
                "  jd --date Y-M-D [--time h:m:s] [--cal G|J]\n"
                "  default-event\n"
                "  positions (--jd JD | --tt JDE | --tt-list FILE) [--view geo|helio|lemni|tycho]\n"
                "            [--level 1|2|3] [--actual] [--all-bodies]\n"
                "  bench --moments N --step DAYS --level L [--what bodies|chart|render]\n"
                "  bench --what run-transits|run-biography [--direct]\n"
                "  init DIR                 prepare a program folder\n"
                "  start                    start a session in the current folder\n"
                "  chart (--db FILE --table NAME --row N | EVENT) [--houses NAME]\n"
                "        [--progressed secondary|solar-arc|od --to YYYY-MM-DD[THH:MM:SS]]\n"
                "  predict --mode T|B|P (--db FILE --table NAME --row N | EVENT)"
                " [--from YYYY-MM-DD]\n"
                "          [--to YYYY-MM-DD] [--aspect-set NAME] [--zone ZONE]"
                " [--set NAME=VALUE,...]\n"
                "          [--report FILE.pdf]\n"
                "  eclipses --from YYYY-MM-DD --to YYYY-MM-DD\n"
                "  phenomena --from-year Y --to-year Y [--set NAME=VALUE,...]\n"
                "  ephemeris --from YYYY-MM --to YYYY-MM [--world-view VIEW]"
                " [--out FILE.pdf [--star-calendar]]\n"
                "  render --page WORD --out FILE.png|.pdf|.svg (--db FILE --table NAME --row N |"
                " EVENT)\n"
                "         [--outer-date ... or --outer-db ... for the *_double pages]\n"
                "         [--world-view VIEW] [--zodiac NAME] [--houses NAME] [--colour-set NAME]\n"
                "         [--printing] [--width PIXELS] [--layout FILE.json]\n"
                "  epoch (--db FILE --table NAME --row N | EVENT) [--months 6..12]"
                " [--month sidereal|synodic]\n"
                "        [--epoch-lat 40N43 --epoch-lon 74W00 [--epoch-place TEXT]]\n"
                "  build-options FILE\n"
                "  houses (--armc DEG --lat DEG --eps DEG --system NAME | --list FILE)"
                " [--polar NAME]\n"
                "  stars (--jd JD | --tt JDE | --tt-list FILE) [--actual] --names NAME,...\n"
                "  build-stars FILE --source DIR\n"
                "  events add --db FILE --table NAME --csv FILE\n"
                "  export --from-year Y --to-year Y --out FILE.mdb|DIR [--julian] [--replace]"
                " [--zodiac NAME]\n"
                "  analysis (--db FILE --table NAME | --recalculate | --clear) --out analysis.mdb"
                " [--zodiac NAME]\n"
                "  similars (--db FILE --table NAME --row N | EVENT) --against-db FILE"
                " --tables A,B,...\n"
                "           [--set NAME=VALUE,...]\n"
                "EVENT: --date Y-M-D --time h:m:s --zone ZONE --lat 51N30 --lon 0W07 [--cal G|J]"
                " [--name TEXT] [--place TEXT], or --default-event\n");
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        usage();
        return 2;
    }
    const std::string command = argv[1];
    const Args args = parse_args(argc, argv, 2);
    if (command == "jd") return command_jd(args);
    if (command == "default-event") return command_default_event();
    if (command == "positions") return cli::command_positions(args.options);
    if (command == "bench") {
        const auto what = args.options.find("what");
        if (what != args.options.end() && what->second == "render")
            return cli::command_bench_render(args.options);
        if (what != args.options.end() && what->second.rfind("run-", 0) == 0)
            return cli::command_bench_run(args.options);
        return cli::command_bench(args.options);
    }
    if (command == "render") return cli::command_render(args.options);
    if (command == "epoch") return cli::command_epoch(args.options);
    if (command == "predict") return cli::command_predict(args.options);
    if (command == "eclipses") return cli::command_eclipses(args.options);
    if (command == "phenomena") return cli::command_phenomena(args.options);
    if (command == "ephemeris") return cli::command_ephemeris(args.options);
    if (command == "init") return cli::command_init(args.positional);
    if (command == "start") return cli::command_start();
    if (command == "chart") return cli::command_chart(args.options);
    if (command == "build-options") return cli::command_build_options(args.positional);
    if (command == "houses") return cli::command_houses(args.options);
    if (command == "stars") return cli::command_stars(args.options);
    if (command == "build-stars") return cli::command_build_stars(args.positional, args.options);
    if (command == "events") return cli::command_events(args.positional, args.options);
    if (command == "export") return cli::command_export(args.options);
    if (command == "analysis") return cli::command_analysis(args.options);
    if (command == "similars") return cli::command_similars(args.options);
    usage();
    return fail("unknown command '" + command + "'");
}
