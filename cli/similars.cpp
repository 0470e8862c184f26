#include "similars.h"

#include "positions.h"
#include "program_session.h"

#include "session/text.h"
#include "store/event_database.h"
#include "tables/similars.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <vector>

namespace celestark::cli {

namespace {

// A text cell, in quotes only when it holds a comma, a quote or a line break.
std::string cell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    return csv_quoted(text);
}

std::string degrees(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

const char* header(SimilarsList list) {
    switch (list) {
    case SimilarsList::planets:
        return "planet,event_planet,aspect,orb";
    case SimilarsList::charts:
        return "planet,event_planet,orb,rotation,score";
    case SimilarsList::constellation:
        return "planet,event_planet,place";
    case SimilarsList::elements:
        return "planet,event_planet,element,aspect,orb,orb_allowed";
    case SimilarsList::angles:
        return "planet,planet_2,event_planet,event_planet_2,angle,event_angle,orb,complementary";
    }
    return "";
}

std::string columns(SimilarsList list, const SimilarLine& l, const StarState& stars) {
    const auto word = [&](const std::string& g) { return cell(similars_glyph_word(g, stars)); };
    const std::string t = word(l.planet), e = word(l.event_planet);
    switch (list) {
    case SimilarsList::planets:
        return t + "," + e + "," + cell(l.aspect_name) + "," + degrees(l.orb);
    case SimilarsList::charts:
        return t + "," + e + "," + degrees(l.orb) + "," + degrees(l.rotation) + "," +
               std::to_string(l.score);
    case SimilarsList::constellation:
        return t + "," + e + "," + cell(symbol_text_utf8(l.place));
    case SimilarsList::elements:
        return t + "," + e + "," + l.element + "," + cell(l.aspect_name) + "," + degrees(l.orb) +
               "," + degrees(l.orb_2);
    case SimilarsList::angles:
        return t + "," + word(l.planet_2) + "," + e + "," + word(l.event_planet_2) + "," +
               degrees(l.angle) + "," + degrees(l.event_angle) + "," + degrees(l.orb) + "," +
               (l.complementary ? "1" : "0");
    }
    return "";
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string item; std::getline(in, item, ',');)
        if (!trim(item).empty()) out.push_back(trim(item));
    return out;
}

} // namespace

int command_similars(const Options& o) {
    const auto against = o.find("against-db");
    const auto names = o.find("tables");
    if (against == o.end() || names == o.end())
        return fail("similars needs --against-db FILE and --tables A,B,... (up to five tables)");
    const std::vector<std::string> table_names = split(names->second);
    if (table_names.empty() || table_names.size() > 5)
        return fail("--tables takes one to five table names separated by commas");
    std::error_code ec;
    const std::filesystem::path file = std::filesystem::absolute(against->second, ec);
    if (ec || !std::filesystem::exists(file, ec))
        return fail("--against-db: there is no file '" + against->second + "'");

    std::string error;
    ProgramFolder folder;
    if (!folder.prepare(error)) return fail(error);
    auto prepared = std::make_unique<Prepared>();
    if (!prepare_session(o, folder.path(), *prepared, error)) return fail(error);
    Session& s = prepared->s;

    std::vector<SimilarsTable> tables;
    for (const std::string& name : table_names) {
        store::TableStore db;
        store::Recordset rs;
        if (open_event_file(file, name, db, rs, store::TableStore::Access::read_only) !=
            store::Outcome::ok)
            return fail("--tables: there is no event table '" + name + "' in " + file.string());
        tables.push_back({file.parent_path().string(), file.filename().string(), name});
    }

    SimilarsParameters p = similars_defaults(s);
    if (!apply_set_option(
            o,
            [&p](const std::string& name, const std::string& value) {
                return set_similars_control(p, name, value);
            },
            error))
        return fail(error);

    SimilarsRun run;
    if (!run.start(s, p, slot::first_user, tables, prepared->sink)) return 1;
    std::printf("table,row,name,date,%s\n", header(run.list()));
    while (!run.finished()) {
        for (const SimilarLine& l : run.next(s, 4096, prepared->sink)) {
            const std::string& table = tables[static_cast<std::size_t>(l.table - 1)].name;
            if (l.fault) {
                std::fprintf(stderr, "table %s row %lld (%s): %s\n", table.c_str(),
                             static_cast<long long>(l.row), l.name.c_str(), l.why.c_str());
                continue;
            }
            std::printf("%s,%lld,%s,%s,%s\n", cell(table).c_str(), static_cast<long long>(l.row),
                        cell(l.name + (l.epoch ? " (E)" : "")).c_str(), cell(l.date).c_str(),
                        columns(run.list(), l, s.stars).c_str());
        }
        if (prepared->fatal) return 1;
    }
    return 0;
}

} // namespace celestark::cli
